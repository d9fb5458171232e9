#include "platform/foundation/value.h"

#include "platform/foundation/data.h"
#include "platform/foundation/number.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(Value, BoxesGeometry) {
  const NSRect rect{{1.5F, -2}, {3, 4.25F}};
  const NSValue boxed = NSValue::valueWithRect(rect);
  EXPECT_STREQ(boxed.objCType(), "{_NSRect={_NSPoint=ff}{_NSSize=ff}}");
  const char* range = sizeof(NSUInteger) == 4 ? "{_NSRange=II}" : "{_NSRange=QQ}";
  EXPECT_STREQ(NSValue::valueWithRange(NSMakeRange(7, NSNotFound)).objCType(), range);
  EXPECT_EQ(raised([&] { (void)boxed.sizeValue(); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { (void)boxed.rangeValue(); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { (void)NSNumber::numberWithFloat(1).pointValue(); }), "NSInvalidArgumentException");
}

struct MediaTime {
  long long value;
  int scale;
  unsigned flags;
  long long epoch;
};
struct Padded {
  char first;
  double second;
  short third;
};
struct Pointers {
  void* data;
  const char* text;
  char last;
};

TEST(Value, BoxesTheBytesOfAnyStructure) {
  const struct {
    const char* type;
    std::size_t size;
  } rows[] = {
      {"{?=qiIq}", sizeof(MediaTime)},
      {"{?={?=qiIq}{?=qiIq}}", sizeof(MediaTime[2])},
      {"{Padded=cds}", sizeof(Padded)},
      {"{Pointers=^{Opaque=i}*B}", sizeof(Pointers)},
      {"^v", sizeof(void*)},
  };
  for (const auto& row : rows) {
    std::vector<unsigned char> bytes(row.size);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i + 1);
    const NSValue value = NSValue::valueWithBytes(bytes.data(), row.type);
    EXPECT_STREQ(value.objCType(), row.type);
    std::vector<unsigned char> copied(row.size + 1, 0xAA);
    value.getValue(copied.data());
    EXPECT_EQ(copied.back(), 0xAA) << row.type;
    copied.pop_back();
    EXPECT_EQ(copied, bytes) << row.type;
  }
}

TEST(Value, OfDataIsDescribedByItsBytes) {
  EXPECT_STREQ(NSData::dataWithBytes("a\0c\xFF\x65", 5).description().UTF8String(), "<610063ff 65>");
  EXPECT_STREQ(NSData::dataWithBytes(nullptr, 0).description().UTF8String(), "<>");
}

TEST(Value, RefusesEncodingsItDoesNotUnderstand) {
  for (const char* type : {"", "v", "?", "{?=i", "{name}", "{?=i}x", "^", "b3", "(u=if)"}) {
    EXPECT_EQ(raised([&] { (void)NSValue::valueWithBytes("0123456789", type); }), "NSInvalidArgumentException") << type;
  }
}

TEST(Value, EqualsAValueOfTheSameTypeAndBytes) {
  const int one = 1;
  const NSValue value = NSValue::valueWithBytes(&one, "i");
  const NSValue same = NSValue::valueWithBytes(&one, "i");
  EXPECT_TRUE(value.isEqual(same));
  EXPECT_EQ(value.hash(), same.hash());
  EXPECT_FALSE(value.isEqual(NSValue::valueWithBytes(&one, "I")));
  EXPECT_FALSE(value.isEqual(NSValue::valueWithBytes("abcd", "i")));
  EXPECT_FALSE(value.isEqual(NSNumber::numberWithInt(1)));
  EXPECT_FALSE(NSNumber::numberWithInt(1).isEqual(value));
}

}  // namespace
