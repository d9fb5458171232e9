#include "platform/foundation/value.h"

#include "platform/foundation/number.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

TEST(Value, BoxesGeometry) {
  const NSRect rect{{1.5F, -2}, {3, 4.25F}};
  const NSValue boxedRect = NSValue::valueWithRect(rect);
  EXPECT_STREQ(boxedRect.objCType(), "{_NSRect={_NSPoint=ff}{_NSSize=ff}}");
  EXPECT_EQ(boxedRect.rectValue(), rect);

  const NSValue boxedSize = NSValue::valueWithSize(rect.size);
  EXPECT_STREQ(boxedSize.objCType(), "{_NSSize=ff}");
  EXPECT_EQ(boxedSize.sizeValue(), rect.size);

  const NSValue boxedPoint = NSValue::valueWithPoint(rect.origin);
  EXPECT_STREQ(boxedPoint.objCType(), "{_NSPoint=ff}");
  EXPECT_EQ(boxedPoint.pointValue(), rect.origin);

  const NSValue boxedRange = NSValue::valueWithRange(NSMakeRange(7, NSNotFound));
  EXPECT_STREQ(boxedRange.objCType(), sizeof(NSUInteger) == 4 ? "{_NSRange=II}" : "{_NSRange=QQ}");
  EXPECT_EQ(boxedRange.rangeValue().location, 7U);
  EXPECT_EQ(boxedRange.rangeValue().length, NSNotFound);

  EXPECT_EQ(raised([&] { (void)boxedSize.rectValue(); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { (void)boxedRect.rangeValue(); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { (void)NSNumber::numberWithFloat(1).pointValue(); }), "NSInvalidArgumentException");
  EXPECT_EQ(NSValue().rectValue(), NSRect());
}

struct Time {
  long long value;
  long scale;
  long flags;
};
struct MediaTime {
  long long value;
  int scale;
  unsigned flags;
  long long epoch;
};
struct TimeRange {
  Time start;
  Time duration;
};
struct MediaTimeMapping {
  MediaTime times[4];
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
      {"{?=qll}", sizeof(Time)},        {"{?={?=qll}{?=qll}}", sizeof(TimeRange)},
      {"{?=qiIq}", sizeof(MediaTime)},  {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", sizeof(MediaTimeMapping)},
      {"{Padded=cds}", sizeof(Padded)}, {"{Pointers=^{Opaque=i}*B}", sizeof(Pointers)},
      {"S", sizeof(unsigned short)},    {"^v", sizeof(void*)},
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

TEST(Value, RefusesEncodingsItDoesNotUnderstand) {
  for (const char* type : {"", "v", "?", "{?=i", "{name}", "{?=i}x", "^", "b3", "(u=if)"}) {
    EXPECT_EQ(raised([&] { (void)NSValue::valueWithBytes("0123456789", type); }), "NSInvalidArgumentException") << type;
  }
}

TEST(Value, EqualsAValueOfTheSameTypeAndBytes) {
  const NSValue size = NSValue::valueWithSize({1, 2});
  const NSValue same = NSValue::valueWithSize({1, 2});
  EXPECT_TRUE(size.isEqual(same));
  EXPECT_EQ(size.hash(), same.hash());
  EXPECT_FALSE(size.isEqual(NSValue::valueWithSize({1, 3})));
  EXPECT_FALSE(size.isEqual(NSValue::valueWithPoint({1, 2})));
  const int one = 1;
  EXPECT_FALSE(NSValue::valueWithBytes(&one, "i").isEqual(NSNumber::numberWithInt(1)));
  EXPECT_FALSE(NSNumber::numberWithInt(1).isEqual(NSValue::valueWithBytes(&one, "i")));
}

}  // namespace
