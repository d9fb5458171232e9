#include "platform/foundation/number.h"

#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

TEST(Number, KeepsTheEncodingItWasMadeWith) {
  const struct {
    NSNumber number;
    const char* type;
    const char* description;
  } rows[] = {
      {NSNumber::numberWithBool(true), "c", "1"},
      {NSNumber::numberWithBool(false), "c", "0"},
      {NSNumber::numberWithChar('A'), "c", "65"},
      {NSNumber::numberWithUnsignedChar(200), "C", "200"},
      {NSNumber::numberWithShort(-300), "s", "-300"},
      {NSNumber::numberWithUnsignedShort(65535), "S", "65535"},
      {NSNumber::numberWithInt(INT_MIN), "i", "-2147483648"},
      {NSNumber::numberWithUnsignedInt(UINT_MAX), "I", "4294967295"},
      {NSNumber::numberWithLong(-7), "l", "-7"},
      {NSNumber::numberWithUnsignedLong(7), "L", "7"},
      {NSNumber::numberWithLongLong(LLONG_MIN), "q", "-9223372036854775808"},
      {NSNumber::numberWithUnsignedLongLong(ULLONG_MAX), "Q", "18446744073709551615"},
      {NSNumber::numberWithFloat(0.1F), "f", "0.1"},
      {NSNumber::numberWithDouble(0.1), "d", "0.1"},
      {NSNumber::numberWithDouble(-1e300), "d", "-1e+300"},
  };
  for (const auto& row : rows) {
    EXPECT_STREQ(row.number.objCType(), row.type) << row.description;
    EXPECT_STREQ(row.number.description().UTF8String(), row.description);
    EXPECT_TRUE(row.number.isKindOfClass("NSValue"_class));
  }
}

TEST(Number, IsReadAsEveryType) {
  const auto number = NSNumber::numberWithInt(-3);
  EXPECT_TRUE(number.boolValue());
  EXPECT_EQ(number.charValue(), -3);
  EXPECT_EQ(number.unsignedCharValue(), 253);
  EXPECT_EQ(number.shortValue(), -3);
  EXPECT_EQ(number.unsignedShortValue(), 65533);
  EXPECT_EQ(number.intValue(), -3);
  EXPECT_EQ(number.unsignedIntValue(), UINT_MAX - 2);
  EXPECT_EQ(number.longValue(), -3);
  EXPECT_EQ(number.unsignedLongValue(), ULONG_MAX - 2);
  EXPECT_EQ(number.longLongValue(), -3);
  EXPECT_EQ(number.unsignedLongLongValue(), ULLONG_MAX - 2);
  EXPECT_EQ(number.floatValue(), -3.0F);
  EXPECT_EQ(number.doubleValue(), -3.0);
}

TEST(Number, IsCutOrRoundedToWhatTheTypeHolds) {
  EXPECT_EQ(NSNumber::numberWithLongLong(0x1'0000'0001).intValue(), 1);
  EXPECT_EQ(NSNumber::numberWithInt(256).charValue(), 0);
  EXPECT_TRUE(NSNumber::numberWithInt(256).boolValue());
  EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(ULLONG_MAX).longLongValue(), -1);
  EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(1ULL << 40).unsignedLongLongValue(), 1ULL << 40);
  EXPECT_EQ(NSNumber::numberWithDouble(2.9).intValue(), 2);
  EXPECT_EQ(NSNumber::numberWithDouble(-2.9).intValue(), -2);
  EXPECT_TRUE(NSNumber::numberWithDouble(0.5).boolValue());
  EXPECT_EQ(NSNumber::numberWithDouble(3e9).intValue(), INT_MAX);
  EXPECT_EQ(NSNumber::numberWithDouble(-3e9).intValue(), INT_MIN);
  EXPECT_EQ(NSNumber::numberWithDouble(-1).unsignedIntValue(), 0U);
  EXPECT_EQ(NSNumber::numberWithDouble(0x1p63).longLongValue(), LLONG_MAX);
  EXPECT_EQ(NSNumber::numberWithDouble(-0x1p63).longLongValue(), LLONG_MIN);
  EXPECT_EQ(NSNumber::numberWithDouble(0x1p64).unsignedLongLongValue(), ULLONG_MAX);
  EXPECT_EQ(NSNumber::numberWithDouble(-INFINITY).shortValue(), SHRT_MIN);
  EXPECT_EQ(NSNumber::numberWithFloat(NAN).intValue(), 0);
  EXPECT_EQ(NSNumber::numberWithDouble(1e300).floatValue(), INFINITY);
}

TEST(Number, ComparesByValueAcrossTypes) {
  // Each row is less than the next; within a row all are equal.
  const std::vector<std::vector<NSNumber>> rows = {
      {NSNumber::numberWithDouble(NAN), NSNumber::numberWithFloat(NAN)},
      {NSNumber::numberWithDouble(-INFINITY)},
      {NSNumber::numberWithLongLong(LLONG_MIN), NSNumber::numberWithDouble(-0x1p63)},
      {NSNumber::numberWithChar(-1), NSNumber::numberWithLong(-1), NSNumber::numberWithFloat(-1)},
      {NSNumber::numberWithBool(false), NSNumber::numberWithUnsignedInt(0), NSNumber::numberWithDouble(-0.0)},
      {NSNumber::numberWithDouble(0.1)},
      {NSNumber::numberWithFloat(0.1F)},
      {NSNumber::numberWithBool(true), NSNumber::numberWithUnsignedLong(1), NSNumber::numberWithDouble(1)},
      {NSNumber::numberWithUnsignedInt(UINT_MAX), NSNumber::numberWithLongLong(UINT_MAX)},
      {NSNumber::numberWithLongLong(1LL << 53), NSNumber::numberWithDouble(0x1p53)},
      {NSNumber::numberWithLongLong((1LL << 53) + 1)},
      {NSNumber::numberWithLongLong(LLONG_MAX), NSNumber::numberWithUnsignedLongLong(LLONG_MAX)},
      {NSNumber::numberWithUnsignedLongLong(1ULL << 63), NSNumber::numberWithDouble(0x1p63)},
      {NSNumber::numberWithUnsignedLongLong(ULLONG_MAX)},
      {NSNumber::numberWithDouble(0x1p64)},
      {NSNumber::numberWithFloat(INFINITY)},
  };
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows.size(); ++j) {
      for (NSNumber left : rows[i]) {
        for (NSNumber right : rows[j]) {
          const NSComparisonResult expected = i < j ? NSOrderedAscending : i > j ? NSOrderedDescending : NSOrderedSame;
          EXPECT_EQ(left.compare(right), expected) << i << " " << j;
          EXPECT_EQ(left.isEqual(right), i == j) << i << " " << j;
          if (i == j) {
            EXPECT_EQ(left.hash(), right.hash()) << i;
          }
        }
      }
    }
  }
  EXPECT_FALSE(NSNumber::numberWithInt(1).isEqual(NSString::stringWithUTF8String("1")));
  EXPECT_FALSE(NSNumber::numberWithInt(1).isEqual(nullptr));
  EXPECT_EQ(raised([] { (void)NSNumber::numberWithInt(1).compare(nullptr); }), "NSInvalidArgumentException");
}

TEST(Number, GivesItsBytesInItsOwnType) {
  unsigned char bytes[] = {0xAA, 0xAA, 0xAA};
  NSNumber::numberWithShort(-2).getValue(bytes);
  EXPECT_EQ(bytes[0], 0xFE);
  EXPECT_EQ(bytes[1], 0xFF);
  EXPECT_EQ(bytes[2], 0xAA);
  NSNumber::numberWithBool(true).getValue(bytes);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(bytes[1], 0xFF);
}

}  // namespace
