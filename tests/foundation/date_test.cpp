#include "platform/foundation/date.h"

#include "platform/foundation/calendar_date.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

namespace {

NSDate at(NSTimeInterval seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

TEST(Date, IsDescribedInUniversalTime) {
  const struct {
    NSTimeInterval seconds;
    const char* text;
  } rows[] = {
      {0, "2001-01-01 00:00:00 +0000"},
      {-0.1, "2000-12-31 23:59:59 +0000"},
      {-NSTimeIntervalSince1970 - 1, "1969-12-31 23:59:59 +0000"},
      {0x7FFFFFFF - NSTimeIntervalSince1970 + 1, "2038-01-19 03:14:08 +0000"},
      {-63113904000, "0001-01-01 00:00:00 +0000"},
  };
  for (const auto& row : rows) EXPECT_STREQ(at(row.seconds).description().UTF8String(), row.text) << row.seconds;
}

TEST(Date, ComparesInstants) {
  EXPECT_EQ(at(1).compare(at(2)), NSOrderedAscending);
  EXPECT_EQ(at(2).compare(at(1.5)), NSOrderedDescending);
  EXPECT_EQ(at(-5).compare(at(-5)), NSOrderedSame);
  EXPECT_EQ(raised([] { (void)at(0).compare(nullptr); }), "NSInvalidArgumentException");

  const auto calendarDate =
      NSCalendarDate::dateWithYear(2001, 1, 1, 1, 0, 0, NSTimeZone::timeZoneForSecondsFromGMT(3600));
  EXPECT_TRUE(at(0).isEqual(calendarDate));
  EXPECT_TRUE(calendarDate.isEqual(at(0)));
  EXPECT_EQ(calendarDate.hash(), at(-0.0).hash());
  EXPECT_FALSE(at(0).isEqual(at(0.001)));
}

}  // namespace
