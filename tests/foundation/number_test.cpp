#include "platform/foundation/number.h"

#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {

using Number = NSNumber;

TEST(Numbers, AreCutOrRoundedToWhatTheTypeHolds) {
  const auto wide = Number::numberWithLongLong(0x7654'3210'89AB'CDEF);
  EXPECT_TRUE(Number::numberWithInt(256).boolValue());
  EXPECT_EQ(wide.intValue(), -0x7654'3211);
  EXPECT_EQ(wide.unsignedIntValue(), 0x89AB'CDEF);
  EXPECT_EQ(wide.longValue(), static_cast<long>(0x7654'3210'89AB'CDEF));
  EXPECT_EQ(wide.unsignedLongValue(), static_cast<unsigned long>(0x7654'3210'89AB'CDEF));
  EXPECT_EQ(wide.floatValue(), 0x7654'3210'89AB'CDEFp0F);
  EXPECT_EQ(wide.doubleValue(), 0x7654'3210'89AB'CDEFp0);
  EXPECT_EQ(Number::numberWithUnsignedLongLong(ULLONG_MAX).longLongValue(), -1);
  EXPECT_EQ(Number::numberWithLongLong(-3).unsignedLongLongValue(), ULLONG_MAX - 2);

  const auto real = [](double value) { return Number::numberWithDouble(value); };
  EXPECT_TRUE(real(0.5).boolValue());
  const std::pair<double, int> ints[] = {{2.9, 2}, {-2.9, -2}, {3e9, INT_MAX}, {-3e9, INT_MIN}, {NAN, 0}};
  for (const auto& [value, expected] : ints) EXPECT_EQ(real(value).intValue(), expected) << value;
  EXPECT_EQ(real(-1).unsignedIntValue(), 0U);
  EXPECT_EQ(real(0x1p63).longLongValue(), LLONG_MAX);
  EXPECT_EQ(real(-0x1p63).longLongValue(), LLONG_MIN);
  EXPECT_EQ(real(0x1p64).unsignedLongLongValue(), ULLONG_MAX);
  EXPECT_EQ(real(-INFINITY).shortValue(), SHRT_MIN);
  EXPECT_EQ(real(1e300).floatValue(), INFINITY);
}

TEST(Numbers, CompareByValueAcrossTypes) {
  // Each row is less than the next; within a row all are equal.
  const std::vector<std::vector<NSNumber>> rows = {
      {Number::numberWithDouble(NAN), Number::numberWithFloat(NAN)},
      {Number::numberWithDouble(-INFINITY)},
      {Number::numberWithLongLong(LLONG_MIN), Number::numberWithDouble(-0x1p63)},
      {Number::numberWithChar(-1), Number::numberWithLong(-1), Number::numberWithFloat(-1)},
      {Number::numberWithBool(false), Number::numberWithUnsignedInt(0), Number::numberWithDouble(-0.0)},
      {Number::numberWithDouble(0.1)},
      {Number::numberWithFloat(0.1F)},
      {Number::numberWithBool(true), Number::numberWithUnsignedLong(1), Number::numberWithDouble(1)},
      {Number::numberWithUnsignedInt(UINT_MAX), Number::numberWithLongLong(UINT_MAX)},
      {Number::numberWithLongLong(1LL << 53), Number::numberWithDouble(0x1p53)},
      {Number::numberWithLongLong((1LL << 53) + 1)},
      {Number::numberWithLongLong(LLONG_MAX), Number::numberWithUnsignedLongLong(LLONG_MAX)},
      {Number::numberWithUnsignedLongLong(1ULL << 63), Number::numberWithDouble(0x1p63)},
      {Number::numberWithUnsignedLongLong(ULLONG_MAX)},
      {Number::numberWithDouble(0x1p64)},
      {Number::numberWithFloat(INFINITY)},
  };
  std::vector<std::pair<std::size_t, NSNumber>> numbers;
  for (const auto& row : rows) {
    for (const NSNumber number : row) numbers.emplace_back(&row - rows.data(), number);
  }
  for (const auto& [i, left] : numbers) {
    for (const auto& [j, right] : numbers) {
      EXPECT_EQ(left.compare(right), i < j   ? NSOrderedAscending
                                     : i > j ? NSOrderedDescending
                                             : NSOrderedSame)
          << i << j;
      EXPECT_EQ(left.isEqual(right), i == j) << i << " " << j;
      EXPECT_TRUE(i != j || left.hash() == right.hash()) << i;
    }
  }
  EXPECT_FALSE(Number::numberWithInt(1).isEqual(NSString::stringWithUTF8String("1")));
  EXPECT_EQ(raised([] { (void)Number::numberWithInt(1).compare(nullptr); }), "NSInvalidArgumentException");
}

TEST(Numbers, GiveTheirBytesInTheirOwnType) {
  std::string bytes = "\xAA\xAA\xAA";
  Number::numberWithShort(-2).getValue(bytes.data());
  EXPECT_EQ(bytes, "\xFE\xFF\xAA");
}

}  // namespace
