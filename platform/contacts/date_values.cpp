#include "platform/contacts/date_values.h"

#include "platform/foundation/time_zone.h"

#include <charconv>
#include <cmath>

namespace contacts {
namespace {

constexpr double kSecondsInDay = 86400;
constexpr double kNoon = kSecondsInDay / 2;
using vcard::kNoYear;
using vcard::kOmittedYear;

// Days of years that no card can have come out as the last before or the first after them.
vcard::Date dayAt(double secondsSince1970) {
  constexpr std::int64_t kBefore = -719529;  // of the year 0
  constexpr std::int64_t kAfter = 2932897;   // the year 9999
  const double day = std::floor(secondsSince1970 / kSecondsInDay);
  if (!(day > static_cast<double>(kBefore))) return vcard::dateOfDay(kBefore);
  return vcard::dateOfDay(day < static_cast<double>(kAfter) ? static_cast<std::int64_t>(day) : kAfter);
}

vcard::Date localDayOf(NSDate date) {
  const auto offset = static_cast<double>(NSTimeZone::localTimeZone().secondsFromGMTForDate(date));
  return dayAt(date.timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970 + offset);
}

}  // namespace

std::optional<vcard::Date> dateOnLine(std::string_view text, const std::vector<vcard::Parameter>& parameters) {
  std::optional<vcard::Date> date = vcard::parseDate(text);
  const std::string_view omitted = vcard::firstParameter(parameters, kOmittedYear);
  int year = 0;
  std::from_chars(omitted.data(), omitted.data() + omitted.size(), year);
  // Many programs don't say that the year stands in.
  const bool isOmitted = date && (date->year == kNoYear || (!omitted.empty() && date->year == year));
  if (isOmitted) date->year.reset();
  return date;
}

void writeDate(LineDraft& draft, NSDateComponents components) {
  std::optional<vcard::Date> date = dateOf(components);
  if (!date) return;
  if (!date->year) {
    date->year = kNoYear;
    draft.parameters.push_back({std::string(kOmittedYear), std::to_string(kNoYear)});
  }
  draft.value = vcard::formatDate(*date);
}

Retained<NSObject> newDateComponents(const vcard::Date& date) {
  auto components = Retained<NSDateComponents>::adopt(NSDateComponents::alloc().init());
  if (date.year) components->setYear(*date.year);
  components->setMonth(date.month);
  components->setDay(date.day);
  return Retained<NSObject>::adopt(components.leak());
}

std::optional<vcard::Date> dateOf(NSDateComponents components) {
  const NSInteger year = components.year();
  const NSInteger month = components.month();
  const NSInteger day = components.day();
  const bool hasYear = year != NSUndefinedDateComponent;
  if (hasYear && (year < 0 || year > 9999)) return std::nullopt;
  if (month < 1 || month > 12 || day < 1) return std::nullopt;
  const int calendarYear = hasYear ? static_cast<int>(year) : kNoYear;
  if (day > vcard::daysInMonth(calendarYear, static_cast<int>(month))) return std::nullopt;
  vcard::Date date{{}, static_cast<int>(month), static_cast<int>(day)};
  if (hasYear && year != kNoYear) date.year = static_cast<int>(year);
  return date;
}

Retained<NSObject> newDate(const vcard::Date& date) {
  const auto days = static_cast<double>(vcard::daysSince1970(date.year.value_or(kNoYear), date.month, date.day));
  return Retained<NSObject>::share(
      NSDate::dateWithTimeIntervalSinceReferenceDate(days * kSecondsInDay + kNoon - NSTimeIntervalSince1970));
}

vcard::Date dayOf(NSDate date) {
  const double seconds = date.timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970;
  const bool isNoon = std::fmod(seconds - kNoon, kSecondsInDay) == 0;
  vcard::Date day = isNoon ? dayAt(seconds) : localDayOf(date);
  if (day.year == kNoYear) day.year.reset();
  return day;
}

vcard::Date today() { return localDayOf(NSDate::date()); }

}  // namespace contacts
