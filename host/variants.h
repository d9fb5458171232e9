#pragma once

#include "host/value.h"

// Variants: an object is its own variant, a scalar or string is held by an object of the class "Variant".
namespace host {

// What VarType answers; of an array, kVariantArray + the code of its elements.
inline constexpr std::int32_t kVariantNil = 0;
inline constexpr std::int32_t kVariantInt32 = 2;
inline constexpr std::int32_t kVariantInt64 = 3;  // the unsigned types too, so that every value of theirs is kept
inline constexpr std::int32_t kVariantSingle = 4;
inline constexpr std::int32_t kVariantDouble = 5;
inline constexpr std::int32_t kVariantDate = 7;
inline constexpr std::int32_t kVariantString = 8;
inline constexpr std::int32_t kVariantObject = 9;
inline constexpr std::int32_t kVariantBoolean = 11;
inline constexpr std::int32_t kVariantArray = 0x1000;

// With one reference for the caller; null for nil.
REALvariant newVariant(const Value& value);
// What the variant holds, or itself.
Value fromVariant(ObjectRef variant);
std::int32_t variantType(REALvariant variant);

// A variant that says it is of this type, whatever the value is: for the language's types that nothing here makes.
Value variantOfType(std::int32_t type, const Value& value);

// Conversions as the language does them: what can't be converted is zero, numbers outside the type become its nearest.
REALstring newVariantString(REALvariant variant);  // with one reference for the caller
std::int32_t variantInt32(REALvariant variant);
std::int64_t variantInt64(REALvariant variant);
double variantDouble(REALvariant variant);

}  // namespace host
