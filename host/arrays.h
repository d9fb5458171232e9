#pragma once

#include "host/value.h"

#include <optional>
#include <vector>

// One-dimensional arrays. An array is an object whose third header word is its element storage, so that a plug-in may
// read elements straight from it.
namespace host {

// Codes for making arrays; objects include variants and dictionaries.
enum class ElementType : std::int32_t {
  int32 = 0,
  int64 = 1,
  single = 2,
  string = kArrayOfStrings,
  object = kArrayOfObjects,
  real = 5,
  boolean = 6,
  date = 7,
};

// Zeroed elements up to the bound, -1 for none; one reference for the caller. Null for a type that isn't one.
REALarray newArray(std::int32_t elementType, REALinteger upper);
// Nothing for an object that is no array.
std::optional<ElementType> elementTypeOf(REALobject object);
REALinteger upperBound(REALobject array);

// Throws Error for an index outside the array.
Value elementAt(REALobject array, REALinteger index);
// Before the element at the index, or at the end. Throws Error for any other index and a value that doesn't fit.
void insertAt(REALobject array, REALinteger index, const Value& value);

Value array(ElementType type, const std::vector<Value>& elements);
inline Value stringArray(const std::vector<Value>& elements) { return array(ElementType::string, elements); }
// Of objects or variants.
inline Value objectArray(const std::vector<Value>& elements) { return array(ElementType::object, elements); }

// What the host gives plug-ins for direct access. Outside the array they read zero and insert nothing. References: the
// caller gets one of its own for what it reads, the array takes one of its own to what is inserted. Null for element
// types that a plug-in has no procedure for.
void* directGetter(REALarray array);
void* directInserter(REALarray array);
REALstring directReadString(REALarray array, REALinteger index);
REALobject directReadObject(REALarray array, REALinteger index);

}  // namespace host
