#include "platform/foundation/data.h"

#include "platform/foundation/string.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(Data, CopiesBytes) {
  char source[] = {'a', 0, 'c', '\xFF', 'e'};
  const NSData data = NSData::dataWithBytes(source, sizeof source);
  std::memset(source, 'x', sizeof source);
  ASSERT_EQ(data.length(), 5U);
  EXPECT_EQ(std::memcmp(data.bytes(), "a\0c\xFF\x65", 5), 0);
  EXPECT_STREQ(data.description().UTF8String(), "<610063ff 65>");
  EXPECT_STREQ(NSData::dataWithBytes(nullptr, 0).description().UTF8String(), "<>");
}

TEST(Data, EqualsDataOfTheSameBytes) {
  const NSData data = NSData::dataWithBytes("abc", 3);
  const NSData same = NSData::dataWithBytes("abcd", 3);
  EXPECT_TRUE(data.isEqual(same));
  EXPECT_EQ(data.hash(), same.hash());
  EXPECT_FALSE(data.isEqual(NSData::dataWithBytes("abcd", 4)));
  EXPECT_FALSE(data.isEqual(NSString::stringWithUTF8String("abc")));
}

}  // namespace
