#pragma once

#include "platform/foundation/string.h"
#include "platform/objc/send.h"

// Seconds, with fractions.
using NSTimeInterval = double;

// From 1970-01-01 00:00:00 GMT to the reference date of NSDate, 2001-01-01 00:00:00 GMT.
inline constexpr NSTimeInterval NSTimeIntervalSince1970 = 978307200.0;

// An instant.
class NSDate : public NSObject {
 public:
  using NSObject::NSObject;

  // Now.
  static NSDate date() { return send<NSDate>("NSDate"_class, "date"_sel); }
  static NSDate dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
    return send<NSDate>("NSDate"_class, "dateWithTimeIntervalSinceReferenceDate:"_sel, seconds);
  }

  [[nodiscard]] NSTimeInterval timeIntervalSinceReferenceDate() const {
    return send<NSTimeInterval>(*this, "timeIntervalSinceReferenceDate"_sel);
  }
  // Earlier is less. nil raises NSInvalidArgumentException.
  [[nodiscard]] NSComparisonResult compare(NSDate other) const {
    return send<NSComparisonResult>(*this, "compare:"_sel, other);
  }
};
