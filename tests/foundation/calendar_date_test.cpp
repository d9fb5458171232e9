#include "platform/foundation/calendar_date.h"

#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

namespace {

void useZone(const char* name) {
  setenv("TZ", name, 1);
  tzset();
}

// Central European time by rule, which needs no zone files.
constexpr char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";

Retained<NSCalendarDate> seenLocally(NSTimeInterval seconds) {
  return Retained<NSCalendarDate>::adopt(NSCalendarDate::alloc().initWithTimeIntervalSinceReferenceDate(seconds));
}

// Without the zone.
std::string wallClockOf(NSCalendarDate date) {
  const std::string text = date.description().UTF8String();
  return text.substr(0, text.rfind(' '));
}

TEST(CalendarDate, MakesTheInstantOfAWallClockTime) {
  useZone(kBerlin);
  const struct {
    int fields[6];
    const char* description;
  } rows[] = {
      {{2012, 7, 14, 9, 5, 7}, "2012-07-14 09:05:07 +0200"},
      // The hour that clocks skip, its edges, and the hour that they show twice.
      {{2012, 3, 25, 1, 59, 59}, "2012-03-25 01:59:59 +0100"},
      {{2012, 3, 25, 2, 30, 0}, "2012-03-25 03:30:00 +0200"},
      {{2012, 3, 25, 3, 0, 0}, "2012-03-25 03:00:00 +0200"},
      {{2012, 10, 28, 2, 0, 0}, "2012-10-28 02:00:00 +0200"},
      {{2012, 10, 28, 2, 59, 59}, "2012-10-28 02:59:59 +0200"},
      {{2012, 10, 28, 3, 0, 0}, "2012-10-28 03:00:00 +0100"},
      // Fields out of range.
      {{2012, 0, 31, 0, 0, 0}, "2011-12-31 00:00:00 +0100"},
      {{2012, 1, 1, -1, -1, -1}, "2011-12-31 22:58:59 +0100"},
      {{2012, 1, 1, 24, 1440, 86400}, "2012-01-04 00:00:00 +0100"},
      // Beyond 32-bit seconds, and before any zone.
      {{2400, 2, 29, 0, 0, 0}, "2400-02-29 00:00:00 +0100"},
      {{1582, 10, 10, 0, 0, 0}, "1582-10-10 00:00:00 +0100"},
      {{1, 1, 1, 0, 0, 0}, "0001-01-01 00:00:00 +0100"},
  };
  for (const auto& row : rows) {
    const auto [year, month, day, hour, minute, second] = row.fields;
    const auto date = NSCalendarDate::dateWithYear(year, month, day, hour, minute, second, NSTimeZone::localTimeZone());
    EXPECT_STREQ(date.description().UTF8String(), row.description);
    const auto again = seenLocally(date.timeIntervalSinceReferenceDate());
    EXPECT_STREQ(again->description().UTF8String(), row.description);
  }
}

TEST(CalendarDate, AgreesWithTheStandardCalendar) {
  const auto utc = NSTimeZone::timeZoneForSecondsFromGMT(0);
  using namespace std::chrono;
  const auto first = static_cast<sys_days>(year(-32000) / 1 / 1);
  const auto last = static_cast<sys_days>(year(32000) / 12 / 31);
  for (auto day = first; day <= last; day += days(61)) {
    const year_month_day expected(day);
    const auto date =
        NSCalendarDate::dateWithYear(1970, 1, 1 + static_cast<int>(day.time_since_epoch().count()), 0, 0, 0, utc);
    const auto monthOfYear = static_cast<int>(static_cast<unsigned>(expected.month()));
    const auto dayOfMonth = static_cast<int>(static_cast<unsigned>(expected.day()));
    const auto same =
        NSCalendarDate::dateWithYear(static_cast<int>(expected.year()), monthOfYear, dayOfMonth, 0, 0, 0, utc);
    ASSERT_EQ(date.timeIntervalSinceReferenceDate(), same.timeIntervalSinceReferenceDate());
    ASSERT_EQ(date.yearOfCommonEra(), static_cast<int>(expected.year()));
    ASSERT_EQ(date.monthOfYear(), monthOfYear);
    ASSERT_EQ(date.dayOfMonth(), dayOfMonth);
    ASSERT_EQ(date.dayOfWeek(), static_cast<NSInteger>(weekday(day).c_encoding()));
    ASSERT_EQ(date.dayOfYear(), (day - static_cast<sys_days>(expected.year() / 1 / 1)).count() + 1);
    ASSERT_EQ(date.dayOfCommonEra(), (day - static_cast<sys_days>(year(1) / 1 / 1)).count() + 1);
  }
}

// Zones with half hours, a skipped day, half-hour summer time, sun time before zones, and summer time in the south.
TEST(CalendarDate, AgreesWithTheSystemsZones) {
  for (const char* zone : {"Europe/Berlin", "America/New_York", "Asia/Kolkata", "Pacific/Apia", "Australia/Lord_Howe",
                           "America/St_Johns", "Africa/Monrovia"}) {
    if (!std::filesystem::exists(std::filesystem::path("/usr/share/zoneinfo") / zone)) {
      GTEST_SKIP() << zone << " isn't installed";
    }
    useZone(zone);
    for (std::time_t instant = -4'000'000'000; instant < 6'000'000'000; instant += 1'234'567) {
      std::tm expected{};
      localtime_r(&instant, &expected);
      char wallClock[64];
      std::strftime(wallClock, sizeof wallClock, "%Y-%m-%d %H:%M:%S", &expected);
      const auto date = seenLocally(static_cast<NSTimeInterval>(instant) - NSTimeIntervalSince1970);
      const auto again = NSCalendarDate::dateWithYear(expected.tm_year + 1900, expected.tm_mon + 1, expected.tm_mday,
                                                      expected.tm_hour, expected.tm_min, expected.tm_sec, nullptr);
      ASSERT_EQ(wallClockOf(date.get()), wallClock) << zone << " " << instant;
      ASSERT_EQ(wallClockOf(again), wallClock) << zone << " " << instant;
      ASSERT_LE(again.compare(date.get()), NSOrderedSame) << zone << " " << instant;
    }
  }
}

TEST(TimeZone, TellsItsDistanceFromGreenwich) {
  useZone(kBerlin);
  const auto summer = NSCalendarDate::dateWithYear(2012, 7, 1, 0, 0, 0, nullptr);
  const auto winter = NSCalendarDate::dateWithYear(2012, 1, 1, 0, 0, 0, nullptr);
  const auto zone = NSTimeZone::localTimeZone();
  EXPECT_EQ(zone.secondsFromGMTForDate(summer), 7200);
  EXPECT_EQ(zone.secondsFromGMTForDate(winter), 3600);
  EXPECT_EQ(raised([&] { (void)zone.secondsFromGMTForDate(nullptr); }), "NSInvalidArgumentException");
  useZone("JST-9");
  EXPECT_EQ(NSTimeZone::localTimeZone().secondsFromGMTForDate(summer), 32400);

  const auto newfoundland = NSTimeZone::timeZoneForSecondsFromGMT(-12600);
  const auto date = NSCalendarDate::dateWithYear(2012, 7, 1, 0, 0, 0, newfoundland);
  EXPECT_STREQ(date.description().UTF8String(), "2012-07-01 00:00:00 -0330");
  EXPECT_EQ(wallClockOf(seenLocally(date.timeIntervalSinceReferenceDate()).get()), "2012-07-01 12:30:00");
  EXPECT_FALSE(NSTimeZone::timeZoneForSecondsFromGMT(18 * 3600 + 1));
}

}  // namespace
