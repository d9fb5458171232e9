#pragma once

#include "frame/host_types.h"

#include <array>

// The framework's constants, as members of the address book class.

inline constexpr std::size_t kIntegerConstantCount = 59;
inline constexpr std::size_t kStringConstantCount = 113;

extern std::array<REALconstant, kIntegerConstantCount> integerConstants;

// One shared method for each string constant, in the class table's order.
std::array<REALmethodDefinition, kStringConstantCount> stringConstantMethods();
