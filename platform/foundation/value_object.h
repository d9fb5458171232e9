#pragma once

#include "platform/objc/runtime.h"

namespace foundation {

// NSValue itself holds nothing: what it answers about the boxed value it asks its subclass with objCType and getValue:.
struct ValueObject : objc::Object {};

}  // namespace foundation
