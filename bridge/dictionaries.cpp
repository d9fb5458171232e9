#include "bridge/dictionaries.h"

#include "bridge/variants.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "platform/foundation/null.h"

namespace {

using Setter = void(REALobject, REALvariant key, REALvariant value);
using Getter = REALvariant(REALobject, REALvariant key);
using KeyGetter = REALvariant(REALobject, REALinteger index);

// Known by identity alone: a later object at the same address is served what was found for the earlier one.
REALdictionary LastDictionary = nullptr;
Setter* LastDictionarySetter = nullptr;
Getter* LastDictionaryGetter = nullptr;
KeyGetter* LastDictionaryKeyGetter = nullptr;

template <class Method>
Method* loadMethod(REALdictionary dictionary, const char* declaration) {
  return reinterpret_cast<Method*>(REALLoadObjectMethod(dictionary, declaration));
}

void loadMethods(REALdictionary dictionary) {
  if (dictionary == LastDictionary) return;
  LastDictionary = dictionary;
  LastDictionarySetter = loadMethod<Setter>(dictionary, "Value(key As Variant, Assigns _value As Variant)");
  LastDictionaryGetter = loadMethod<Getter>(dictionary, "Value(key As Variant) As Variant");
  LastDictionaryKeyGetter = loadMethod<KeyGetter>(dictionary, "Key(index As Integer) As Variant");
}

NSObject orNull(NSObject object) { return object ? object : NSNull::null(); }

}  // namespace

bool IsDictionary(REALobject object) { return REALObjectIsA(object, "Dictionary"); }

REALdictionary NewDictionary() { return static_cast<REALdictionary>(REALnewInstance("Dictionary")); }

std::int32_t GetDictionaryCount(REALdictionary dictionary) {
  std::int32_t count = 0;
  return REALGetPropValueInt32(dictionary, "Count", &count) ? count : 0;
}

void SetDictionaryValue(REALdictionary dictionary, REALvariant key, REALvariant value) {
  loadMethods(dictionary);
  if (LastDictionarySetter != nullptr) LastDictionarySetter(dictionary, key, value);
}

REALvariant GetDictionaryValue(REALdictionary dictionary, REALvariant key) {
  loadMethods(dictionary);
  return LastDictionaryGetter == nullptr ? nullptr : LastDictionaryGetter(dictionary, key);
}

REALvariant GetDictionaryKey(REALdictionary dictionary, REALinteger index) {
  loadMethods(dictionary);
  return LastDictionaryKeyGetter == nullptr ? nullptr : LastDictionaryKeyGetter(dictionary, index);
}

REALdictionary NSDictionaryRB(NSDictionary dictionary) {
  if (!dictionary) return nullptr;
  auto result = adoptHost(NewDictionary());
  if (!result) return nullptr;
  NSArray keys = dictionary.allKeys();
  const NSUInteger count = keys.count();
  for (NSUInteger i = 0; i < count; ++i) {
    NSObject key = keys.objectAtIndex(i);
    NSObject value = dictionary.objectForKey(key);
    auto hostKey = adoptHost(NewVariantFromNSObject(key));
    auto hostValue = adoptHost(NewVariantFromNSObject(value));
    SetDictionaryValue(result.get(), hostKey.get(), hostValue.get());
  }
  return result.handOver();
}

NSDictionary NewNSDictionary(REALdictionary dictionary) {
  if (dictionary == nullptr) return nullptr;
  const std::int32_t count = GetDictionaryCount(dictionary);
  if (count < 1) return NSDictionary::dictionary();
  auto result = NSMutableDictionary::dictionaryWithCapacity(static_cast<NSUInteger>(count));
  if (!result) return nullptr;
  for (std::int32_t i = 0; i < count; ++i) {
    auto key = adoptHost(GetDictionaryKey(dictionary, i));
    auto value = adoptHost(GetDictionaryValue(dictionary, key.get()));
    if (!key) continue;
    NSObject foundationKey = GetVariantAsNSObject(key.get());
    NSObject foundationValue = GetVariantAsNSObject(value.get());
    result.setObject(orNull(foundationValue), orNull(foundationKey));
  }
  return result;
}
