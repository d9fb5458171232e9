#include "platform/foundation/cf_dictionary.h"

#include "platform/foundation/load.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/send.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

struct KeyHash {
  std::size_t operator()(const void* key) const {
    return hash != nullptr ? hash(key) : reinterpret_cast<std::size_t>(key);
  }
  CFHashCode (*hash)(const void*) = nullptr;
};

struct KeyEqual {
  bool operator()(const void* first, const void* second) const {
    return equal != nullptr ? equal(first, second) != 0 : first == second;
  }
  Boolean (*equal)(const void*, const void*) = nullptr;
};

using Entries = std::unordered_map<const void*, const void*, KeyHash, KeyEqual>;

template <class CallBacks>
const void* retained(const CallBacks& calls, const void* value) {
  return calls.retain != nullptr ? calls.retain(kCFAllocatorDefault, value) : value;
}

template <class CallBacks>
void release(const CallBacks& calls, const void* value) {
  if (calls.release != nullptr) calls.release(kCFAllocatorDefault, value);
}

struct DictionaryObject : objc::Object {
  DictionaryObject() = default;
  DictionaryObject(const DictionaryObject&) = delete;
  DictionaryObject& operator=(const DictionaryObject&) = delete;
  ~DictionaryObject() {
    for (const auto& [key, value] : entries) {
      release(keyCalls, key);
      release(valueCalls, value);
    }
  }

  CFDictionaryKeyCallBacks keyCalls{};
  CFDictionaryValueCallBacks valueCalls{};
  Entries entries;
};

DictionaryObject* objectOf(CFDictionaryRef dictionary) {
  return static_cast<DictionaryObject*>(bridge<NSObject>(dictionary).get());
}

}  // namespace

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  auto* made = objc::createInstance<DictionaryObject>("CFDictionary"_class);
  if (keyCallBacks != nullptr) made->keyCalls = *keyCallBacks;
  if (valueCallBacks != nullptr) made->valueCalls = *valueCallBacks;
  made->entries = Entries(static_cast<std::size_t>(std::max<CFIndex>(capacity, 0)), KeyHash{made->keyCalls.hash},
                          KeyEqual{made->keyCalls.equal});
  return bridge<CFMutableDictionaryRef>(NSObject(made));
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  DictionaryObject* object = objectOf(dictionary);
  const void* kept = retained(object->valueCalls, value);
  if (auto found = object->entries.find(key); found != object->entries.end()) {
    const void* replaced = std::exchange(found->second, kept);
    release(object->valueCalls, replaced);
  } else {
    object->entries.emplace(retained(object->keyCalls, key), kept);
  }
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
  DictionaryObject* object = objectOf(dictionary);
  auto found = object->entries.find(key);
  if (found == object->entries.end()) return;
  const auto [removedKey, removedValue] = *found;
  object->entries.erase(found);
  release(object->keyCalls, removedKey);
  release(object->valueCalls, removedValue);
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  DictionaryObject* object = objectOf(dictionary);
  auto found = object->entries.find(key);
  return found == object->entries.end() ? nullptr : found->second;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
  return static_cast<CFIndex>(objectOf(dictionary)->entries.size());
}

void foundation::registerCFDictionary() { objc::ClassBuilder::define<DictionaryObject>("CFDictionary", "NSObject"); }
