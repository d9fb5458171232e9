#pragma once

#include "platform/carbon/carbon_base.h"

inline constexpr OSErr gestaltUndefSelectorErr = -5551;

extern "C" {

// Reads the value that the process keeps under the selector. Values are as wide as a pointer, so that an address can
// be shared on every width. gestaltUndefSelectorErr when nothing was stored; response then keeps its value.
PLATFORM_API OSErr Gestalt(OSType selector, std::intptr_t* response);
// Stores a value for the whole process, replacing an earlier one.
PLATFORM_API OSErr SetGestaltValue(OSType selector, std::intptr_t value);
}
