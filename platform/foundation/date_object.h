#pragma once

#include "platform/foundation/date.h"

namespace foundation {

struct DateObject : objc::Object {
  NSTimeInterval sinceReferenceDate = 0;

  NSDate init();
  NSDate initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds);
  [[nodiscard]] NSTimeInterval timeIntervalSinceReferenceDate() const { return sinceReferenceDate; }
  [[nodiscard]] NSComparisonResult compare(NSDate other) const;
  [[nodiscard]] bool isEqual(NSObject other) const;
  [[nodiscard]] NSUInteger hash() const;
  [[nodiscard]] NSString description() const;
};

}  // namespace foundation
