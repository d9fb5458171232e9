#pragma once

#include "platform/objc/send.h"

class NSEnumerator : public NSObject {
 public:
  using NSObject::NSObject;

  // Nil after the last one.
  [[nodiscard]] NSObject nextObject() const { return send<NSObject>(*this, "nextObject"_sel); }
};
