#pragma once

#include <cstdint>
#include <vector>

#include "platform/foundation/cf_base.h"
#include "platform/objc/send.h"

// Immutable bytes.
class NSData : public NSObject {
 public:
  using NSObject::NSObject;

  static NSData dataWithBytes(const void* bytes, NSUInteger length) {
    return send<NSData>("NSData"_class, "dataWithBytes:length:"_sel, bytes, length);
  }
  // Takes the vector's buffer over without a copy; for callers built together with the platform.
  static NSData dataWithBuffer(std::vector<std::uint8_t>&& buffer) {
    return send<NSData>("NSData"_class, "dataByTakingBuffer:"_sel, static_cast<void*>(&buffer));
  }

  // Valid for as long as the data is.
  [[nodiscard]] const void* bytes() const { return send<const void*>(*this, "bytes"_sel); }
  [[nodiscard]] NSUInteger length() const { return send<NSUInteger>(*this, "length"_sel); }
};
