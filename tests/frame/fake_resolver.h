#pragma once

#include "frame/host_entry.h"

#include <map>
#include <string>

// A host of which a test decides, entry by entry, what it has. It counts how often each entry was asked for.
namespace fake_resolver {

inline std::map<std::string, void*> entries;
inline std::map<std::string, int> asked;

inline void* resolve(const char* name) {
  ++asked[name];
  auto found = entries.find(name);
  return found == entries.end() ? nullptr : found->second;
}

// The function is one that a lambda without captures turns into.
template <class Function>
void give(const char* name, Function function) {
  entries[name] = reinterpret_cast<void*>(+function);
}

// To be called first: from then on the plug-in asks this host.
inline void install() { gResolver = resolve; }

}  // namespace fake_resolver
