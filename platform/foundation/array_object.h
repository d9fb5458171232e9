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

// Autoreleased. No object is nil.
NSArray makeArray(std::vector<Retained<NSObject>> objects);

}  // namespace foundation
