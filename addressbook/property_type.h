#pragma once

#include "platform/contacts/constants.h"

#include <cstdint>

// The type of the single values of a property: a multi-value's type without the multi-value flag.
inline std::int32_t GetDataPropertyType(ABPropertyType type) { return static_cast<std::int32_t>(type & 0xFF); }
