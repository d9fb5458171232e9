#pragma once

#include "platform/objc/runtime.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

// The runtime's own view of classes and selectors; not for use outside platform/objc.
namespace objc {

struct SelectorRecord {
  std::string name;
  std::size_t hash;
};

struct Method {
  Implementation implementation;
  const char* encoding;
};

// Open addressing over a power of two, at most half full, written under the class lock and read without it. A reader
// that still walks a table that was replaced finds what it held: tables are kept for the life of the class.
struct MethodCache {
  struct Entry {
    std::atomic<Selector> selector{nullptr};
    Method method{};
  };

  explicit MethodCache(std::size_t size) : entries(std::make_unique<Entry[]>(size)), mask(size - 1) {}

  [[nodiscard]] const Method* find(Selector selector) const {
    for (std::size_t i = selector->hash & mask;; i = (i + 1) & mask) {
      Selector found = entries[i].selector.load(std::memory_order_acquire);
      if (found == selector) return &entries[i].method;
      if (found == nullptr) return nullptr;
    }
  }

  std::unique_ptr<Entry[]> entries;
  std::size_t mask;
  std::size_t used = 0;
};

struct ClassRecord : Object {
  std::string name;
  ClassRecord* superclass = nullptr;
  bool isMetaclass = false;
  std::size_t instanceSize = 0;
  void (*construct)(Object*) = nullptr;
  void (*destroy)(Object*) = nullptr;
  std::unordered_map<Selector, Method> methods;
  std::atomic<MethodCache*> cache{nullptr};
  std::vector<std::unique_ptr<MethodCache>> caches;  // all there ever were
  std::atomic<long> liveInstances{0};
};

// Empties every class's cache, after a method was added or hidden. Takes the class lock.
void flushCaches();
// Calls the function for every class; metaclasses are not visited.
void visitClasses(void (*visitor)(const ClassRecord& objectClass, void* context), void* context);

}  // namespace objc
