#include "platform/foundation/date.h"

#include "platform/foundation/date_fields.h"
#include "platform/foundation/date_object.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/object.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <chrono>
#include <functional>

namespace foundation {
namespace {

NSDate initialized(NSDate allocated, NSTimeInterval seconds) {
  return send<NSDate>(allocated, "initWithTimeIntervalSinceReferenceDate:"_sel, seconds);
}

NSDate dateWithTimeInterval(Class dateClass, NSTimeInterval seconds) {
  return Retained<NSDate>::adopt(initialized(alloc<NSDate>(dateClass), seconds)).autorelease();
}

NSDate now(Class dateClass) {
  return Retained<NSDate>::adopt(send<NSDate>(alloc<NSDate>(dateClass), "init"_sel)).autorelease();
}

}  // namespace

NSDate DateObject::init() {
  const std::chrono::duration<NSTimeInterval> since1970 = std::chrono::system_clock::now().time_since_epoch();
  return initialized(NSDate(this), since1970.count() - NSTimeIntervalSince1970);
}

NSDate DateObject::initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
  sinceReferenceDate = seconds;
  return NSDate(this);
}

NSComparisonResult DateObject::compare(NSDate other) const {
  if (!other) NSException::raise(NSInvalidArgumentException, "-[NSDate compare:]: date is nil");
  const NSTimeInterval theirs = other.timeIntervalSinceReferenceDate();
  return NSComparisonResult{sinceReferenceDate > theirs} - NSComparisonResult{sinceReferenceDate < theirs};
}

bool DateObject::isEqual(NSObject other) const {
  if (!other || !other.isKindOfClass("NSDate"_class)) return false;
  return sinceReferenceDate == other.as<NSDate>().timeIntervalSinceReferenceDate();
}

NSUInteger DateObject::hash() const { return std::hash<NSTimeInterval>{}(sinceReferenceDate); }

NSString DateObject::description() const {
  return makeString(descriptionOfWallClock(wholeSecondSince1970(sinceReferenceDate), 0));
}

void registerDate() {
  objc::ClassBuilder::define<DateObject>("NSDate", "NSObject")
      .classMethod<&now>("date")
      .classMethod<&dateWithTimeInterval>("dateWithTimeIntervalSinceReferenceDate:")
      .method<&DateObject::init>("init")
      .method<&DateObject::initWithTimeIntervalSinceReferenceDate>("initWithTimeIntervalSinceReferenceDate:")
      .method<&DateObject::timeIntervalSinceReferenceDate>("timeIntervalSinceReferenceDate")
      .method<&DateObject::compare>("compare:")
      .method<&DateObject::isEqual>("isEqual:")
      .method<&DateObject::hash>("hash")
      .method<&DateObject::description>("description");
}

}  // namespace foundation
