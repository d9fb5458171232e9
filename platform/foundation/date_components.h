#pragma once

#include <climits>

#include "platform/foundation/cf_base.h"
#include "platform/foundation/object.h"

// A component that is not set, at either width.
inline constexpr NSInteger NSUndefinedDateComponent = INT_MAX;

// Calendar fields of which any may be missing: a birthday without its year.
class NSDateComponents : public NSObject {
 public:
  using NSObject::NSObject;

  static NSDateComponents alloc() { return ::alloc<NSDateComponents>("NSDateComponents"_class); }
  // All components undefined.
  [[nodiscard]] NSDateComponents init() const { return send<NSDateComponents>(*this, "init"_sel); }

  [[nodiscard]] NSInteger year() const { return send<NSInteger>(*this, "year"_sel); }
  // 1 to 12 when defined.
  [[nodiscard]] NSInteger month() const { return send<NSInteger>(*this, "month"_sel); }
  // 1 to 31 when defined.
  [[nodiscard]] NSInteger day() const { return send<NSInteger>(*this, "day"_sel); }

  // The caller owns the result.
  [[nodiscard]] NSDateComponents copy() const { return send<NSDateComponents>(*this, "copy"_sel); }

  void setYear(NSInteger year) const { send<void>(*this, "setYear:"_sel, year); }
  void setMonth(NSInteger month) const { send<void>(*this, "setMonth:"_sel, month); }
  void setDay(NSInteger day) const { send<void>(*this, "setDay:"_sel, day); }
};
