#include "platform/foundation/data.h"

#include "platform/foundation/string.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Data, CopiesBytesAndEqualsDataOfTheSame) {
  std::string source("a\0c\xFF\x65", 5);
  const NSData data = NSData::dataWithBytes(source.data(), 5);
  const NSData same = NSData::dataWithBytes(source.data(), 5);
  EXPECT_FALSE(data.isEqual(NSData::dataWithBytes(source.data(), 4)));
  source.assign(5, 'x');
  EXPECT_STREQ(data.description().UTF8String(), "<610063ff 65>");
  EXPECT_STREQ(NSData::dataWithBytes(nullptr, 0).description().UTF8String(), "<>");
  EXPECT_TRUE(data.isEqual(same));
  EXPECT_EQ(data.hash(), same.hash());
  EXPECT_FALSE(data.isEqual(NSString::stringWithUTF8String("abcde")));
}

}  // namespace
