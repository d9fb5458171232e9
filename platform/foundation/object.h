#pragma once

#include "platform/objc/send.h"

// What alloc answers is handed to an init method at once; the caller owns the result.
template <objc::HandleType Handle>
Handle alloc(Class objectClass) {
  return send<Handle>(objectClass, "alloc"_sel);
}
