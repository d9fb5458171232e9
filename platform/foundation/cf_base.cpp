#include "platform/foundation/cf_base.h"

#include <cassert>

CFTypeRef CFRetain(CFTypeRef reference) {
  assert(reference != nullptr);
  return objc_retain(bridge<NSObject>(reference).get());
}

void CFRelease(CFTypeRef reference) {
  assert(reference != nullptr);
  objc_release(bridge<NSObject>(reference).get());
}
