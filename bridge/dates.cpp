#include "bridge/dates.h"

#include "frame/host_ref.h"
#include "platform/foundation/calendar_date.h"
#include "platform/foundation/time_zone.h"
#include "platform/objc/retained.h"

#include <array>

namespace {

constexpr std::array kFieldNames{"Year", "Month", "Day", "Hour", "Minute", "Second"};

}  // namespace

NSDate NewNSDate(REALobject date) {
  if (date == nullptr) return nullptr;
  std::array<std::int32_t, kFieldNames.size()> fields{};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!REALGetPropValueInt32(date, kFieldNames[i], &fields[i])) return nullptr;
  }
  const auto [year, month, day, hour, minute, second] = fields;
  return NSCalendarDate::dateWithYear(year, month, day, hour, minute, second, NSTimeZone::localTimeZone());
}

NSDate NewNSDateFromVariant(REALvariant variant) {
  REALobject date = nullptr;
  if (!REALGetPropValueObject(variant, "DateValue", &date)) return nullptr;
  return NewNSDate(adoptHost(date).get());
}

REALobject NSDateRB(NSDate date) {
  if (!date) return nullptr;
  const NSTimeInterval seconds = date.timeIntervalSinceReferenceDate();
  NSCalendarDate calendarDate =
      Retained<NSCalendarDate>::adopt(NSCalendarDate::alloc().initWithTimeIntervalSinceReferenceDate(seconds))
          .autorelease();
  if (!calendarDate) return nullptr;
  auto result = adoptHost(REALnewInstance("Date"));
  if (!result) return nullptr;
  const std::array<NSInteger, kFieldNames.size()> fields{calendarDate.yearOfCommonEra(), calendarDate.monthOfYear(),
                                                         calendarDate.dayOfMonth(),      calendarDate.hourOfDay(),
                                                         calendarDate.minuteOfHour(),    calendarDate.secondOfMinute()};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    REALSetPropValueInt32(result.get(), kFieldNames[i], static_cast<std::int32_t>(fields[i]));
  }
  return result.handOver();
}
