#pragma once

#include "frame/host_types.h"

#include <array>
#include <span>

// The framework's constants, as members of the address book class.

inline constexpr std::size_t kIntegerConstantCount = 59;
inline constexpr std::size_t kStringConstantCount = 113;

extern std::array<REALconstant, kIntegerConstantCount> integerConstants;

// Fills in one shared method for each string constant, in the class table's order.
void describeStringConstants(std::span<REALmethodDefinition, kStringConstantCount> methods);
