#include "bridge/dates.h"

#include "frame/host_ref.h"
#include "host/dates.h"
#include "host/entries.h"
#include "platform/foundation/calendar_date.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <utility>
#include <vector>

namespace {

using Fields = std::array<int, 6>;

host::Value hostDate(const Fields& fields) {
  const auto [year, month, day, hour, minute, second] = fields;
  return host::date(year, month, day, hour, minute, second);
}

std::string shownDate(NSTimeInterval seconds) {
  return shown(take(NSDateRB(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds))));
}

void setTimeZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

constexpr const char* kMiddleEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

}  // namespace

TEST(Dates, AreWallClockTimesOfTheLocalTimeZone) {
  setTimeZone(kMiddleEurope);
  const Host host{};
  for (const auto& [fields, sinceReferenceDate] : std::vector<std::pair<Fields, NSTimeInterval>>{
           {{2012, 7, 14, 9, 5, 7}, 363942307},
           {{2001, 1, 1, 0, 59, 59}, -1},
           {{1969, 12, 31, 23, 59, 59}, -978310801},
           {{1900, 1, 1, 0, 0, 0}, -3187299600},
           {{2038, 1, 19, 4, 14, 8}, 1169176448},
           {{2106, 2, 7, 7, 28, 16}, 3316660096},
           {{9999, 12, 31, 23, 59, 59}, 252423989999},
           {{2012, 10, 28, 2, 30, 0}, 373077000},  // the first of the two
       }) {
    const host::Value date = hostDate(fields);
    const NSDate converted = NewNSDate(date.object());
    ASSERT_TRUE(converted.isKindOfClass("NSCalendarDate"_class)) << shown(date);
    EXPECT_EQ(converted.timeIntervalSinceReferenceDate(), sinceReferenceDate) << shown(date);
    EXPECT_EQ(shown(take(NSDateRB(converted))), shown(date));
  }
  // Fields out of range and skipped times roll over.
  const auto roundTrip = [](const Fields& fields) {
    return shown(take(NSDateRB(NewNSDate(hostDate(fields).object()))));
  };
  EXPECT_EQ(roundTrip({2012, 13, 1, 0, 0, 0}), "Date 2013-01-01 00:00:00");
  EXPECT_EQ(roundTrip({2012, 1, 1, 0, 0, -1}), "Date 2011-12-31 23:59:59");
  EXPECT_EQ(roundTrip({2012, 3, 25, 2, 30, 0}), "Date 2012-03-25 03:30:00");
  constexpr int kMost = std::numeric_limits<int>::max();
  EXPECT_TRUE(NewNSDate(hostDate({kMost, kMost, kMost, kMost, kMost, kMost}).object()));
}

TEST(Dates, DropTheFractionOfASecondDownwards) {
  setTimeZone("UTC0");
  const Host host{};
  EXPECT_EQ(shownDate(363949507.9), "Date 2012-07-14 09:05:07");
  EXPECT_EQ(shownDate(-0.1), "Date 2000-12-31 23:59:59");
  EXPECT_EQ(shownDate(-978307200.5), "Date 1969-12-31 23:59:59");
  for (const NSTimeInterval seconds : {1e300, -1e300, std::nan("")}) EXPECT_NE(shownDate(seconds), "Nil") << seconds;
}

TEST(Dates, AreNothingWithoutEachOfTheirFields) {
  const Host host{};
  const host::Value date = hostDate({2012, 7, 14, 9, 5, 7});
  for (const char* field : {"Year", "Month", "Day", "Hour", "Minute", "Second"}) {
    host::options().without = {std::string("Date.") + field};
    EXPECT_FALSE(NewNSDate(date.object())) << field;
    EXPECT_FALSE(NewNSDateFromVariant(date.object())) << field;
  }
  host::options().without = {};
  EXPECT_EQ(shown(NewNSDate(date.object())), "date 2012-7-14 9:5:7");
  EXPECT_EQ(shown(NewNSDateFromVariant(date.object())), "date 2012-7-14 9:5:7");
  host::options().without = {"Variant.DateValue"};
  EXPECT_FALSE(NewNSDateFromVariant(date.object()));
  host::options().without = {};

  EXPECT_FALSE(NewNSDate(nullptr));
  EXPECT_FALSE(NewNSDateFromVariant(variantOf(5).get()));
  EXPECT_FALSE(NewNSDate(host.make("Dictionary").object()));
  EXPECT_EQ(NSDateRB(nullptr), nullptr);
  host::failNewInstance(1);
  EXPECT_EQ(NSDateRB(NSDate::date()), nullptr);
}
