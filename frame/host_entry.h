#pragma once

#include "frame/host_types.h"
#include "platform/objc/fixed_string.h"

#include <atomic>

// Set once, by REALPluginMain, before anything else runs.
inline REALresolver gResolver = nullptr;

// The function that the host gives for an entry name, or null.
template <class Signature>
Signature* resolveHostEntry(const char* name) {
  return gResolver == nullptr ? nullptr : reinterpret_cast<Signature*>(gResolver(name));
}

// A host service, bound to its entry when it is first used. While the host lacks it, it is asked for again at each
// call, and calls answer the neutral value of their type. Two threads that race to bind it store the same pointer.
template <FixedString Name, class Signature>
class HostEntry;

template <FixedString Name, class Result, class... Arguments>
class HostEntry<Name, Result(Arguments...)> {
 public:
  using Signature = Result(Arguments...);

  // The host's function, or null.
  Signature* find() {
    Signature* entry = entry_.load(std::memory_order_relaxed);
    if (entry == nullptr) {
      entry = resolveHostEntry<Signature>(Name.text);
      entry_.store(entry, std::memory_order_relaxed);
    }
    return entry;
  }

  Result operator()(Arguments... arguments) {
    if (Signature* entry = find()) return entry(arguments...);
    return Result();
  }

 private:
  std::atomic<Signature*> entry_{nullptr};
};
