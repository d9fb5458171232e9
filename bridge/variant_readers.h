#pragma once

#include "frame/host_types.h"

// A host variant's type code, and its value as one C++ type; 0 or null where the host can't tell.

// The codes that the plug-in understands. An array's is that of its elements with kVariantArray added.
enum VariantType : std::int32_t {
  kVariantInteger = 2,
  kVariantInt64 = 3,
  kVariantSingle = 4,
  kVariantDouble = 5,
  kVariantDate = 7,
  kVariantString = 8,
  kVariantObject = 9,
  kVariantBoolean = 11,
  kVariantIntegerValued = 16,
  kVariantArray = 0x1000,
};

std::int32_t GetVariantType(REALvariant variant);
// The caller's; null for null.
REALstring GetVariantString(REALvariant variant);
std::int32_t GetVariantInteger(REALvariant variant);
std::int64_t GetVariantLong(REALvariant variant);
float GetVariantSingle(REALvariant variant);
double GetVariantDouble(REALvariant variant);
