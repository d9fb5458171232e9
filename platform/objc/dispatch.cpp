#include "platform/objc/class_record.h"
#include "platform/objc/instrumentation.h"
#include "platform/objc/raise.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_set>

namespace {

using objc::ClassRecord;
using objc::Method;
using objc::MethodCache;
using objc::Object;
using objc::Selector;

constexpr std::size_t kFirstCacheSize = 16;

// Guards method tables, the writing side of caches, and the hidden selectors.
struct DispatchState {
  std::mutex lock;
  std::unordered_set<Selector> hidden;
};

DispatchState& dispatchState() {
  static auto* state = new DispatchState;
  return *state;
}

// While it is set nothing is cached, so that the fast path needs no test for it.
std::atomic<objc::SendHook> sendHook{nullptr};

const Method* findMethod(const ClassRecord* objectClass, Selector selector) {
  if (dispatchState().hidden.contains(selector)) return nullptr;
  for (; objectClass != nullptr; objectClass = objectClass->superclass) {
    if (auto found = objectClass->methods.find(selector); found != objectClass->methods.end()) return &found->second;
  }
  return nullptr;
}

MethodCache* newCache(ClassRecord* objectClass, std::size_t size) {
  objectClass->caches.push_back(std::make_unique<MethodCache>(size));
  return objectClass->caches.back().get();
}

void put(MethodCache* cache, Selector selector, const Method& method) {
  std::size_t i = selector->hash & cache->mask;
  while (cache->entries[i].selector.load(std::memory_order_relaxed) != nullptr) i = (i + 1) & cache->mask;
  cache->entries[i].method = method;
  cache->entries[i].selector.store(selector, std::memory_order_release);
  ++cache->used;
}

void remember(ClassRecord* objectClass, Selector selector, const Method& method) {
  MethodCache* cache = objectClass->cache.load(std::memory_order_relaxed);
  if (cache == nullptr) {
    cache = newCache(objectClass, kFirstCacheSize);
  } else if (cache->find(selector) != nullptr) {
    return;  // another thread was first
  } else if (2 * (cache->used + 1) > cache->mask + 1) {
    MethodCache* larger = newCache(objectClass, 2 * (cache->mask + 1));
    for (std::size_t i = 0; i <= cache->mask; ++i) {
      if (Selector kept = cache->entries[i].selector.load(std::memory_order_relaxed)) {
        put(larger, kept, cache->entries[i].method);
      }
    }
    cache = larger;
  }
  put(cache, selector, method);
  objectClass->cache.store(cache, std::memory_order_release);
}

// Never a part of lookUp, which would save registers for it at each send.
[[gnu::noinline]] Method lookUpSlowly(Object* self, Selector selector) {
  if (const objc::SendHook hook = sendHook.load()) hook(self, selector);
  ClassRecord* objectClass = self->isa;
  {
    const std::scoped_lock guard(dispatchState().lock);
    if (const Method* found = findMethod(objectClass, selector)) {
      // The hook changes under this lock only: what is remembered here is forgotten when it is set.
      if (sendHook.load() == nullptr) remember(objectClass, selector, *found);
      return *found;
    }
  }
  objc::raiseUnrecognizedSelector(self, selector);
}

Method lookUp(Object* self, Selector selector) {
  if (const MethodCache* cache = self->isa->cache.load(std::memory_order_acquire)) {
    if (const Method* found = cache->find(selector)) return *found;
  }
  return lookUpSlowly(self, selector);
}

}  // namespace

void objc::flushCaches() {
  visitClasses(
      [](const ClassRecord& visited, void*) {
        auto& objectClass = const_cast<ClassRecord&>(visited);
        objectClass.cache.store(nullptr, std::memory_order_release);
        objectClass.isa->cache.store(nullptr, std::memory_order_release);
      },
      nullptr);
}

objc::Implementation objc_msg_lookup(objc::Object* self, objc::Selector selector) {
  return lookUp(self, selector).implementation;
}

objc::Implementation objc_msg_lookup_checked(objc::Object* self, objc::Selector selector, const char* encoding) {
  const Method method = lookUp(self, selector);
  if (std::strcmp(method.encoding, encoding) != 0) {
    std::fprintf(stderr, "objc: %s: %s: sent as %s, method is %s\n", self->isa->name.c_str(), selector->name.c_str(),
                 encoding, method.encoding);
    std::abort();
  }
  return method.implementation;
}

bool class_respondsToSelector(objc::ClassRecord* objectClass, objc::Selector selector) {
  const MethodCache* cache = objectClass->cache.load(std::memory_order_acquire);
  if (cache != nullptr && cache->find(selector) != nullptr) return true;
  const std::scoped_lock guard(dispatchState().lock);
  return findMethod(objectClass, selector) != nullptr;
}

void class_addMethod(objc::ClassRecord* objectClass, objc::Selector selector, objc::Implementation implementation,
                     const char* encoding) {
  const std::scoped_lock guard(dispatchState().lock);
  objectClass->methods[selector] = Method{implementation, encoding};
  objc::flushCaches();
}

void objc_setSendHook(objc::SendHook hook) {
  const std::scoped_lock guard(dispatchState().lock);
  sendHook.store(hook);
  objc::flushCaches();
}

void objc_hideSelector(const char* name) {
  Selector selector = sel_registerName(name);
  const std::scoped_lock guard(dispatchState().lock);
  dispatchState().hidden.insert(selector);
  objc::flushCaches();
}
