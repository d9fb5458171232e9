#pragma once

#include "host/counted.h"
#include "host/entries.h"

// A service of the host as a plug-in gets it: entry<REALinteger(REALarray)>("RuntimeUBound").
template <class Signature>
Signature* entry(const char* name) {
  return reinterpret_cast<Signature*>(host::resolver()(name));
}

inline host::StringRef buildString(const char* bytes, std::int32_t length, std::uint32_t encoding) {
  auto string = host::StringRef::adopt(entry<REALstring(const char*, std::int32_t)>("REALBuildString")(bytes, length));
  entry<void(REALstring, std::uint32_t)>("REALSetStringEncoding")(string.get(), encoding);
  return string;
}
