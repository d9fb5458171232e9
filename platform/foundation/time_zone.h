#pragma once

#include "platform/foundation/cf_base.h"
#include "platform/foundation/date.h"
#include "platform/objc/send.h"

class NSTimeZone : public NSObject {
 public:
  using NSObject::NSObject;

  // The process's zone, from TZ or the system's setting, as they are now.
  static NSTimeZone localTimeZone() { return send<NSTimeZone>("NSTimeZone"_class, "localTimeZone"_sel); }
  // Seconds east of Greenwich, all the year round; nil beyond 18 hours.
  static NSTimeZone timeZoneForSecondsFromGMT(NSInteger seconds) {
    return send<NSTimeZone>("NSTimeZone"_class, "timeZoneForSecondsFromGMT:"_sel, seconds);
  }

  // Seconds east of Greenwich at that instant.
  [[nodiscard]] NSInteger secondsFromGMTForDate(NSDate date) const {
    return send<NSInteger>(*this, "secondsFromGMTForDate:"_sel, date);
  }
};
