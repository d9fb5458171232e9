#pragma once

#include "platform/foundation/geometry.h"
#include "platform/foundation/range.h"
#include "platform/objc/send.h"

// Boxes a C value together with its type encoding.
class NSValue : public NSObject {
 public:
  using NSObject::NSObject;

  // Copies as many bytes as the encoding says; an encoding that is not understood raises NSInvalidArgumentException.
  static NSValue valueWithBytes(const void* bytes, const char* encoding) {
    return send<NSValue>("NSValue"_class, "valueWithBytes:objCType:"_sel, bytes, encoding);
  }
  static NSValue valueWithRect(NSRect rect) { return send<NSValue>("NSValue"_class, "valueWithRect:"_sel, rect); }
  static NSValue valueWithSize(NSSize size) { return send<NSValue>("NSValue"_class, "valueWithSize:"_sel, size); }
  static NSValue valueWithPoint(NSPoint point) { return send<NSValue>("NSValue"_class, "valueWithPoint:"_sel, point); }
  static NSValue valueWithRange(NSRange range) { return send<NSValue>("NSValue"_class, "valueWithRange:"_sel, range); }

  [[nodiscard]] const char* objCType() const { return send<const char*>(*this, "objCType"_sel); }
  // Copies the boxed bytes; the buffer holds what objCType encodes.
  void getValue(void* buffer) const { send<void>(*this, "getValue:"_sel, buffer); }

  // A value of any other structure raises NSInvalidArgumentException.
  [[nodiscard]] NSRect rectValue() const { return send<NSRect>(*this, "rectValue"_sel); }
  [[nodiscard]] NSSize sizeValue() const { return send<NSSize>(*this, "sizeValue"_sel); }
  [[nodiscard]] NSPoint pointValue() const { return send<NSPoint>(*this, "pointValue"_sel); }
  [[nodiscard]] NSRange rangeValue() const { return send<NSRange>(*this, "rangeValue"_sel); }
};
