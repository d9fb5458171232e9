#include "platform/foundation/date_fields.h"

#include "platform/foundation/date.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace foundation {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;
constexpr std::int64_t kDaysOfEra = 146097;  // 400 years
// From 0000-03-01 to 1970-01-01.
constexpr std::int64_t kDaysTo1970 = 719468;

constexpr std::int64_t floorDivided(std::int64_t value, std::int64_t divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

}  // namespace

// Years are counted from March, so that the leap day is the last of its year.
std::int64_t daysSince1970(std::int64_t year, std::int64_t month, std::int64_t day) {
  const std::int64_t monthsFromMarch = year * 12 + (month - 1) - 2;
  const std::int64_t marchYear = floorDivided(monthsFromMarch, 12);
  const std::int64_t monthOfYear = monthsFromMarch - marchYear * 12;
  const std::int64_t firstOfMonth = (153 * monthOfYear + 2) / 5;
  const std::int64_t leapDays =
      floorDivided(marchYear, 4) - floorDivided(marchYear, 100) + floorDivided(marchYear, 400);
  return marchYear * 365 + leapDays + firstOfMonth + (day - 1) - kDaysTo1970;
}

DateFields fieldsOfWallClock(std::int64_t wallClock) {
  const std::int64_t days = floorDivided(wallClock, kSecondsOfDay);
  const int second = static_cast<int>(wallClock - days * kSecondsOfDay);

  const std::int64_t era = floorDivided(days + kDaysTo1970, kDaysOfEra);
  const std::int64_t dayOfEra = days + kDaysTo1970 - era * kDaysOfEra;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / (kDaysOfEra - 1)) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
  const int day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
  const int month = static_cast<int>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
  const std::int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
  return {year, month, day, second / 3600, second / 60 % 60, second % 60};
}

std::int64_t wholeSecondSince1970(double sinceReferenceDate) {
  constexpr auto kReference = static_cast<std::int64_t>(NSTimeIntervalSince1970);
  constexpr std::int64_t kEarliest = -kFarthestInstant - kReference;
  constexpr std::int64_t kLatest = kFarthestInstant - kReference;
  const double second = std::floor(sinceReferenceDate);
  if (!(second > static_cast<double>(kEarliest))) return -kFarthestInstant;
  if (second >= static_cast<double>(kLatest)) return kFarthestInstant;
  return static_cast<std::int64_t>(second) + kReference;
}

std::string descriptionOfWallClock(std::int64_t wallClock, int secondsFromGMT) {
  const DateFields fields = fieldsOfWallClock(wallClock);
  const int offset = std::abs(secondsFromGMT) / 60;
  char text[64];
  std::snprintf(text, sizeof text, "%04lld-%02d-%02d %02d:%02d:%02d %c%02d%02d", static_cast<long long>(fields.year),
                fields.month, fields.day, fields.hour, fields.minute, fields.second, secondsFromGMT < 0 ? '-' : '+',
                offset / 60, offset % 60);
  return text;
}

}  // namespace foundation
