#include "platform/foundation/time_zone.h"

#include "platform/foundation/date_fields.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/time_zone_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <ctime>

static_assert(sizeof(std::time_t) == 8, "dates after 2038 need a 64-bit time_t");

namespace foundation {
namespace {

constexpr NSInteger kMostFixedOffset = 18 * 3600;
// Farther from Greenwich than any zone, and less than half of what lies between two changes of any zone.
constexpr std::int64_t kMoreThanAnyOffset = 26 * 3600;

NSTimeZone makeTimeZone(Class zoneClass, std::optional<int> fixedOffset) {
  auto* zone = objc::createInstance<TimeZoneObject>(zoneClass);
  zone->fixedOffset = fixedOffset;
  return Retained<NSTimeZone>::adopt(NSTimeZone(zone)).autorelease();
}

NSTimeZone localTimeZone(Class zoneClass) {
  tzset();  // localtime_r alone would keep to the zone that the process started with
  return makeTimeZone(zoneClass, std::nullopt);
}

NSTimeZone timeZoneForSecondsFromGMT(Class zoneClass, NSInteger seconds) {
  if (seconds < -kMostFixedOffset || seconds > kMostFixedOffset) return nullptr;
  return makeTimeZone(zoneClass, static_cast<int>(seconds));
}

NSInteger secondsFromGMTForDate(NSTimeZone self, NSDate date) {
  if (!date) NSException::raise(NSInvalidArgumentException, "-[NSTimeZone secondsFromGMTForDate:]: date is nil");
  return static_cast<const TimeZoneObject*>(self.get())
      ->offsetAt(wholeSecondSince1970(date.timeIntervalSinceReferenceDate()));
}

}  // namespace

int TimeZoneObject::offsetAt(std::int64_t instant) const {
  if (fixedOffset) return *fixedOffset;
  const std::time_t time = instant;
  std::tm fields{};
  // It fails only where the year doesn't fit in an int.
  return localtime_r(&time, &fields) != nullptr ? static_cast<int>(fields.tm_gmtoff) : 0;
}

std::int64_t TimeZoneObject::instantOf(std::int64_t wallClock) const {
  const int before = offsetAt(wallClock - kMoreThanAnyOffset);
  const int after = offsetAt(wallClock + kMoreThanAnyOffset);
  const std::int64_t first = wallClock - before;
  const std::int64_t second = wallClock - after;
  const bool isSecond = offsetAt(first) != before && offsetAt(second) == after;
  return isSecond ? second : first;
}

void registerTimeZone() {
  objc::ClassBuilder::define<TimeZoneObject>("NSTimeZone", "NSObject")
      .classMethod<&localTimeZone>("localTimeZone")
      .classMethod<&timeZoneForSecondsFromGMT>("timeZoneForSecondsFromGMT:")
      .method<&secondsFromGMTForDate>("secondsFromGMTForDate:");
}

}  // namespace foundation
