#pragma once

#include "platform/foundation/array.h"
#include "platform/objc/retained.h"

#include <vector>

// Arrays as Foundation itself sees them.
namespace foundation {

struct ArrayObject : objc::Object {
  std::vector<Retained<NSObject>> objects;
};

struct MutableArrayObject : ArrayObject {};

// The array isn't nil.
inline const std::vector<Retained<NSObject>>& objectsOf(NSArray array) {
  return static_cast<const ArrayObject*>(array.get())->objects;
}

// Autoreleased. No object is nil.
NSArray makeArray(std::vector<Retained<NSObject>> objects);
NSEnumerator makeEnumerator(NSArray array);

}  // namespace foundation
