#include "platform/foundation/calendar_date.h"

#include "platform/foundation/date_fields.h"
#include "platform/foundation/date_object.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/foundation/time_zone_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

namespace foundation {
namespace {

const TimeZoneObject& zoneObject(NSTimeZone zone) { return *static_cast<const TimeZoneObject*>(zone.get()); }

struct CalendarDateObject : DateObject {
  Retained<NSTimeZone> zone;

  NSDate initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
    // The receiver is the caller's no more: it is answered, or given up.
    auto owned = Retained<NSDate>::adopt(NSDate(this));
    zone = Retained<NSTimeZone>::share(NSTimeZone::localTimeZone());
    DateObject::initWithTimeIntervalSinceReferenceDate(seconds);
    return owned.leak();
  }

  [[nodiscard]] NSInteger yearOfCommonEra() const { return static_cast<NSInteger>(fields().year); }
  [[nodiscard]] NSInteger monthOfYear() const { return fields().month; }
  [[nodiscard]] NSInteger dayOfMonth() const { return fields().day; }
  [[nodiscard]] NSInteger hourOfDay() const { return fields().hour; }
  [[nodiscard]] NSInteger minuteOfHour() const { return fields().minute; }
  [[nodiscard]] NSInteger secondOfMinute() const { return fields().second; }

  [[nodiscard]] NSInteger dayOfCommonEra() const { return static_cast<NSInteger>(day() - daysSince1970(1, 1, 1) + 1); }
  [[nodiscard]] NSInteger dayOfYear() const {
    return static_cast<NSInteger>(day() - daysSince1970(fields().year, 1, 1) + 1);
  }
  // The first day of the common era was a Monday.
  [[nodiscard]] NSInteger dayOfWeek() const { return (dayOfCommonEra() % 7 + 7) % 7; }

  [[nodiscard]] NSString description() const {
    return makeString(descriptionOfWallClock(wallClock(), secondsFromGMT()));
  }

 private:
  [[nodiscard]] int secondsFromGMT() const {
    return zoneObject(zone.get()).offsetAt(wholeSecondSince1970(sinceReferenceDate));
  }
  [[nodiscard]] std::int64_t wallClock() const { return wholeSecondSince1970(sinceReferenceDate) + secondsFromGMT(); }
  [[nodiscard]] DateFields fields() const { return fieldsOfWallClock(wallClock()); }
  [[nodiscard]] std::int64_t day() const {
    const DateFields today = fields();
    return daysSince1970(today.year, today.month, today.day);
  }
};

NSCalendarDate dateWithYear(Class dateClass, int year, int month, int day, int hour, int minute, int second,
                            NSTimeZone zone) {
  if (!zone) zone = NSTimeZone::localTimeZone();
  const std::int64_t wallClock =
      daysSince1970(year, month, day) * 86400 + std::int64_t{hour} * 3600 + std::int64_t{minute} * 60 + second;
  auto* date = objc::createInstance<CalendarDateObject>(dateClass);
  date->sinceReferenceDate =
      static_cast<NSTimeInterval>(zoneObject(zone).instantOf(wallClock)) - NSTimeIntervalSince1970;
  date->zone = Retained<NSTimeZone>::share(zone);
  return Retained<NSCalendarDate>::adopt(NSCalendarDate(date)).autorelease();
}

}  // namespace

void registerCalendarDate() {
  objc::ClassBuilder::define<CalendarDateObject>("NSCalendarDate", "NSDate")
      .classMethod<&dateWithYear>("dateWithYear:month:day:hour:minute:second:timeZone:")
      .method<&CalendarDateObject::initWithTimeIntervalSinceReferenceDate>("initWithTimeIntervalSinceReferenceDate:")
      .method<&CalendarDateObject::yearOfCommonEra>("yearOfCommonEra")
      .method<&CalendarDateObject::monthOfYear>("monthOfYear")
      .method<&CalendarDateObject::dayOfMonth>("dayOfMonth")
      .method<&CalendarDateObject::dayOfWeek>("dayOfWeek")
      .method<&CalendarDateObject::dayOfYear>("dayOfYear")
      .method<&CalendarDateObject::dayOfCommonEra>("dayOfCommonEra")
      .method<&CalendarDateObject::hourOfDay>("hourOfDay")
      .method<&CalendarDateObject::minuteOfHour>("minuteOfHour")
      .method<&CalendarDateObject::secondOfMinute>("secondOfMinute")
      .method<&CalendarDateObject::description>("description");
}

}  // namespace foundation
