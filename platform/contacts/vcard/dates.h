#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Dates and instants as cards write them, basic (20240504) or extended (2024-05-04).
namespace vcard {

// A day of the Gregorian calendar, or of every year when year is missing.
struct Date {
  std::optional<int> year;
  int month;  // 1 to 12
  int day;    // 1 to the month's last; the 29th of February also without a year

  friend bool operator==(const Date&, const Date&) = default;
};

// The leap year that stands in, by agreement of the programs that write it, where a date has no year, and the parameter
// that says so.
inline constexpr int kNoYear = 1604;
inline constexpr std::string_view kOmittedYear = "X-APPLE-OMIT-YEAR";

// A time after the date is not looked at. Nothing for what is no date, or less than month and day.
std::optional<Date> parseDate(std::string_view text);
// "2024-05-04", or "--05-04" without a year.
std::string formatDate(const Date& date);

// Seconds since 1970, from a date and a time with their zone; without a zone it is taken for UTC.
std::optional<double> parseTimestamp(std::string_view text);
// "2024-05-04T09:12:33Z", fractions cut off.
std::string formatTimestamp(double secondsSince1970);

std::int64_t daysSince1970(int year, int month, int day);
Date dateOfDay(std::int64_t daysSince1970);
int daysInMonth(int year, int month);

// A span of days after a day, or on both its sides.
struct DaySpan {
  Date middle;
  double days;
  bool alsoBefore;
};

// Whether the date lies in the span; without a year it never does.
bool isWithin(const DaySpan& span, const Date& date);
// Whether the date's day of some year lies in the span. The 29th of February is the 28th in a year that doesn't have
// it.
bool isWithinInAnyYear(const DaySpan& span, const Date& date);

}  // namespace vcard
