#pragma once

#include "frame/host_types.h"
#include "platform/objc/handle.h"

// Between host variants and the values of records, multi-values and searches: fewer kinds than variants.h has, and
// other rules for some. Ownership is the same.

// Of a number, the property type decides whether it becomes a double or an integer.
REALvariant GetValue(NSObject value, std::int32_t propertyType);
// The variant's own type decides. An empty string gives nil.
NSObject NewValue(REALvariant variant, std::int32_t propertyType);
