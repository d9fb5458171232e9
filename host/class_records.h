#pragma once

#include "frame/host_types.h"

// Rows of the host's own classes, which it describes with the records that plug-ins use.
namespace host {

// Lies in the data block, offset bytes from its start.
inline REALproperty storedProperty(const char* name, const char* type, std::size_t offset) {
  return {.name = name, .type = type, .getter = kHostAccessor, .setter = kHostAccessor, .parameter = offset};
}

template <class Result>
REALproperty readOnlyProperty(const char* name, const char* type, Result (*getter)(REALobject, Word)) {
  return {.name = name, .type = type, .getter = reinterpret_cast<void*>(getter)};
}

template <class Result, class... Parameters>
REALmethodDefinition hostMethod(const char* declaration, Result (*function)(REALobject, Parameters...)) {
  return {.function = reinterpret_cast<void*>(function), .declaration = declaration};
}

}  // namespace host
