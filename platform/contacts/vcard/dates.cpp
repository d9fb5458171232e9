#include "platform/contacts/vcard/dates.h"

#include "platform/contacts/vcard/ascii.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace vcard {
namespace {

constexpr int kLeapYear = 2000;  // stands in where there is no year

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Takes a number of exactly that many digits off the front.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
  if (text.size() < digits) return std::nullopt;
  int number = 0;
  for (std::size_t i = 0; i < digits; ++i) {
    if (!isDigit(text[i])) return std::nullopt;
    number = number * 10 + (text[i] - '0');
  }
  text.remove_prefix(digits);
  return number;
}

bool take(std::string_view& text, char c) {
  if (!text.starts_with(c)) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<Date> takeDate(std::string_view& text) {
  Date date{};
  if (text.starts_with("--")) {
    text.remove_prefix(2);
  } else {
    date.year = takeNumber(text, 4);
    if (!date.year) return std::nullopt;
    take(text, '-');
  }
  const std::optional<int> month = takeNumber(text, 2);
  take(text, '-');
  const std::optional<int> day = takeNumber(text, 2);
  if (!month || !day || *month < 1 || *month > 12 || *day < 1) return std::nullopt;
  if (*day > daysInMonth(date.year.value_or(kLeapYear), *month)) return std::nullopt;
  date.month = *month;
  date.day = *day;
  return date;
}

// The zone's offset from UTC in seconds, east positive.
std::optional<int> takeZone(std::string_view& text) {
  if (text.empty() || take(text, 'Z') || take(text, 'z')) return 0;
  const int sign = text.front() == '-' ? -1 : 1;
  if (!take(text, '-') && !take(text, '+')) return std::nullopt;
  const std::optional<int> hours = takeNumber(text, 2);
  take(text, ':');
  const std::optional<int> minutes = text.empty() ? 0 : takeNumber(text, 2);
  if (!hours || !minutes) return std::nullopt;
  return sign * (*hours * 3600 + *minutes * 60);
}

}  // namespace

std::optional<Date> parseDate(std::string_view text) {
  text = trimmed(text);
  const std::optional<Date> date = takeDate(text);
  const bool isWhole = text.empty() || upper(text.front()) == 'T' || isBlank(text.front());
  return isWhole ? date : std::nullopt;
}

std::string formatDate(const Date& date) {
  char text[32];
  if (date.year) {
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", *date.year, date.month, date.day);
  } else {
    std::snprintf(text, sizeof text, "--%02d-%02d", date.month, date.day);
  }
  return text;
}

std::optional<double> parseTimestamp(std::string_view text) {
  text = trimmed(text);
  const std::optional<Date> date = takeDate(text);
  if (!date || !date->year) return std::nullopt;
  const double midnight = 86400.0 * static_cast<double>(daysSince1970(*date->year, date->month, date->day));
  if (text.empty()) return midnight;
  if (!take(text, 'T') && !take(text, 't') && !take(text, ' ')) return std::nullopt;

  const std::optional<int> hour = takeNumber(text, 2);
  take(text, ':');
  const std::optional<int> minute = takeNumber(text, 2);
  take(text, ':');
  const std::optional<int> second = !text.empty() && isDigit(text.front()) ? takeNumber(text, 2) : 0;
  if (!hour || !minute || !second) return std::nullopt;
  double fraction = 0;
  if (take(text, '.') || take(text, ',')) {
    for (double weight = 0.1; !text.empty() && isDigit(text.front()); weight /= 10) {
      fraction += weight * (text.front() - '0');
      text.remove_prefix(1);
    }
  }
  const std::optional<int> zone = takeZone(text);
  if (!zone || !text.empty()) return std::nullopt;
  return midnight + *hour * 3600 + *minute * 60 + *second - *zone + fraction;
}

std::string formatTimestamp(double secondsSince1970) {
  const double day = std::floor(secondsSince1970 / 86400);
  const int second = static_cast<int>(secondsSince1970 - day * 86400);
  char text[32];
  std::snprintf(text, sizeof text, "T%02d:%02d:%02dZ", second / 3600, second / 60 % 60, second % 60);
  return formatDate(dateOfDay(static_cast<std::int64_t>(day))) + text;
}

std::int64_t daysSince1970(int year, int month, int day) {
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  return std::chrono::sys_days(date).time_since_epoch().count();
}

Date dateOfDay(std::int64_t daysSince1970) {
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(daysSince1970))};
  return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day()))};
}

int daysInMonth(int year, int month) {
  const std::chrono::year_month_day_last last{
      std::chrono::year(year), std::chrono::month_day_last(std::chrono::month(static_cast<unsigned>(month)))};
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

bool isWithin(const DaySpan& span, const Date& date) {
  if (!date.year || !span.middle.year) return false;
  const auto distance = static_cast<double>(daysSince1970(*date.year, date.month, date.day) -
                                            daysSince1970(*span.middle.year, span.middle.month, span.middle.day));
  return distance <= span.days && distance >= (span.alsoBefore ? -span.days : 0);
}

bool isWithinInAnyYear(const DaySpan& span, const Date& date) {
  if (!span.middle.year) return false;
  // The day of the year before, of this one or of the next is the one that is nearest to the middle on either side.
  for (int year = *span.middle.year - 1; year <= *span.middle.year + 1; ++year) {
    const int day = std::min(date.day, daysInMonth(year, date.month));
    if (isWithin(span, {year, date.month, day})) return true;
  }
  return false;
}

}  // namespace vcard
