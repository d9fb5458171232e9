#pragma once

#include "platform/foundation/date.h"
#include "platform/foundation/object.h"
#include "platform/foundation/time_zone.h"

// An instant seen in a time zone, by the Gregorian calendar at all times (before its introduction too, and with a year
// 0). An instant more than four million years away has the fields of the farthest one within.
class NSCalendarDate : public NSDate {
 public:
  using NSDate::NSDate;

  static NSCalendarDate alloc() { return ::alloc<NSCalendarDate>("NSCalendarDate"_class); }
  // The date with this wall-clock time. Fields out of range roll over: month 13 is the next January, day 0 the last of
  // the month before. Of a time that occurs twice the first is meant; a time that clocks skip moves forward by what
  // they skip. The zone nil is the local one.
  static NSCalendarDate dateWithYear(int year, int month, int day, int hour, int minute, int second, NSTimeZone zone) {
    return send<NSCalendarDate>("NSCalendarDate"_class, "dateWithYear:month:day:hour:minute:second:timeZone:"_sel, year,
                                month, day, hour, minute, second, zone);
  }
  // In the local time zone.
  [[nodiscard]] NSCalendarDate initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) const {
    return send<NSCalendarDate>(*this, "initWithTimeIntervalSinceReferenceDate:"_sel, seconds);
  }

  [[nodiscard]] NSInteger yearOfCommonEra() const { return send<NSInteger>(*this, "yearOfCommonEra"_sel); }
  // 1 to 12.
  [[nodiscard]] NSInteger monthOfYear() const { return send<NSInteger>(*this, "monthOfYear"_sel); }
  // 1 to 31.
  [[nodiscard]] NSInteger dayOfMonth() const { return send<NSInteger>(*this, "dayOfMonth"_sel); }
  // 0, a Sunday, to 6.
  [[nodiscard]] NSInteger dayOfWeek() const { return send<NSInteger>(*this, "dayOfWeek"_sel); }
  // 1 to 366.
  [[nodiscard]] NSInteger dayOfYear() const { return send<NSInteger>(*this, "dayOfYear"_sel); }
  // Day 1 is the 1st of January of the year 1.
  [[nodiscard]] NSInteger dayOfCommonEra() const { return send<NSInteger>(*this, "dayOfCommonEra"_sel); }
  [[nodiscard]] NSInteger hourOfDay() const { return send<NSInteger>(*this, "hourOfDay"_sel); }
  [[nodiscard]] NSInteger minuteOfHour() const { return send<NSInteger>(*this, "minuteOfHour"_sel); }
  // Of the whole second at or before the instant.
  [[nodiscard]] NSInteger secondOfMinute() const { return send<NSInteger>(*this, "secondOfMinute"_sel); }
};
