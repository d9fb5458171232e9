#include "platform/foundation/dictionary.h"

#include "platform/foundation/array_object.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <algorithm>
#include <list>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace foundation {
namespace {

struct KeyHash {
  std::size_t operator()(NSObject key) const { return key.hash(); }
};

struct KeysEqual {
  bool operator()(NSObject a, NSObject b) const { return a == b || a.isEqual(b); }
};

// A key may be changed by its owner unless it is copied; what can't be copied is taken not to change.
Retained<NSObject> ownKey(NSObject key) {
  if (!key.respondsToSelector("copy"_sel)) return Retained<NSObject>::share(key);
  return Retained<NSObject>::adopt(send<NSObject>(key, "copy"_sel));
}

struct DictionaryObject : objc::Object {
  struct Entry {
    Retained<NSObject> key;
    Retained<NSObject> object;
  };
  std::list<Entry> entries;  // in the order in which their keys came
  std::unordered_map<NSObject, std::list<Entry>::iterator, KeyHash, KeysEqual> positions;

  NSUInteger count() const { return entries.size(); }

  NSObject objectForKey(NSObject key) const {
    if (!key) return nullptr;
    const auto found = positions.find(key);
    return found == positions.end() ? nullptr : found->second->object.get();
  }

  NSArray allKeys() const {
    std::vector<Retained<NSObject>> keys;
    keys.reserve(entries.size());
    for (const Entry& entry : entries) keys.push_back(entry.key);
    return makeArray(std::move(keys));
  }

  bool isEqual(NSObject other) const {
    if (!other || !other.isKindOfClass("NSDictionary"_class)) return false;
    const auto& dictionary = *static_cast<const DictionaryObject*>(other.get());
    return count() == dictionary.count() && std::ranges::all_of(entries, [&](const Entry& entry) {
             return entry.object->isEqual(dictionary.objectForKey(entry.key.get()));
           });
  }

  // The same for a mutable dictionary whose values change.
  NSUInteger hash() const { return count(); }

  NSString description() const {
    std::string text = "{\n";
    for (const Entry& entry : entries) {
      text += "    " + utf8Of(entry.key->description()) + " = " + utf8Of(entry.object->description()) + ";\n";
    }
    return makeString(text + '}');
  }

  void set(NSObject object, NSObject key) {
    if (!object || !key) {
      NSException::raise(NSInvalidArgumentException, "-[" + std::string(NSObject(this).objectClass().name()) +
                                                         " setObject:forKey:]: the " + (key ? "object" : "key") +
                                                         " is nil");
    }
    if (const auto found = positions.find(key); found != positions.end()) {
      found->second->object = Retained<NSObject>::share(object);
      return;
    }
    std::list<Entry> added;
    added.push_back({ownKey(key), Retained<NSObject>::share(object)});
    positions.emplace(added.front().key.get(), added.begin());
    entries.splice(entries.end(), added);
  }

  // The same entries in a new dictionary of the class, for the caller to own.
  Retained<NSDictionary> copied(Class dictionaryClass) const {
    auto* made = objc::createInstance<DictionaryObject>(dictionaryClass);
    auto owned = Retained<NSDictionary>::adopt(NSDictionary(made));
    for (const Entry& entry : entries) made->set(entry.object.get(), entry.key.get());
    return owned;
  }

  NSObject copy() { return NSObject(objc_retain(this)); }
  NSObject mutableCopy() const { return copied("NSMutableDictionary"_class).leak(); }
};

struct MutableDictionaryObject : DictionaryObject {
  void remove(NSObject key) {
    if (!key) {
      NSException::raise(NSInvalidArgumentException, "-[NSMutableDictionary removeObjectForKey:]: the key is nil");
    }
    const auto found = positions.find(key);
    if (found == positions.end()) return;
    const auto entry = found->second;
    positions.erase(found);  // looks at the key once more
    entries.erase(entry);
  }

  NSObject copy() const { return copied("NSDictionary"_class).leak(); }
};

Retained<NSDictionary> newDictionary(Class dictionaryClass) {
  return Retained<NSDictionary>::adopt(NSDictionary(objc::createInstance<DictionaryObject>(dictionaryClass)));
}

DictionaryObject& contents(const Retained<NSDictionary>& dictionary) {
  return *static_cast<DictionaryObject*>(dictionary.get().get());
}

NSDictionary dictionary(Class dictionaryClass) { return newDictionary(dictionaryClass).autorelease(); }

NSDictionary dictionaryWithObject(Class dictionaryClass, NSObject object, NSObject key) {
  auto made = newDictionary(dictionaryClass);
  contents(made).set(object, key);
  return made.autorelease();
}

NSDictionary dictionaryWithObjects(Class dictionaryClass, NSArray objects, NSArray keys) {
  if (objects.count() != keys.count()) {
    NSException::raise(NSInvalidArgumentException,
                       "+[NSDictionary dictionaryWithObjects:forKeys:]: " + std::to_string(objects.count()) +
                           " objects for " + std::to_string(keys.count()) + " keys");
  }
  auto made = newDictionary(dictionaryClass);
  for (NSUInteger i = 0; i < keys.count(); ++i) contents(made).set(objects.objectAtIndex(i), keys.objectAtIndex(i));
  return made.autorelease();
}

// A hint, and not taken: entries come one by one either way.
NSDictionary dictionaryWithCapacity(Class dictionaryClass, NSUInteger) { return dictionary(dictionaryClass); }

}  // namespace

void registerDictionary() {
  objc::ClassBuilder::define<DictionaryObject>("NSDictionary", "NSObject")
      .classMethod<&dictionary>("dictionary")
      .classMethod<&dictionaryWithObject>("dictionaryWithObject:forKey:")
      .classMethod<&dictionaryWithObjects>("dictionaryWithObjects:forKeys:")
      .method<&DictionaryObject::count>("count")
      .method<&DictionaryObject::objectForKey>("objectForKey:")
      .method<&DictionaryObject::allKeys>("allKeys")
      .method<&DictionaryObject::isEqual>("isEqual:")
      .method<&DictionaryObject::hash>("hash")
      .method<&DictionaryObject::description>("description")
      .method<&DictionaryObject::copy>("copy")
      .method<&DictionaryObject::mutableCopy>("mutableCopy");
  objc::ClassBuilder::define<MutableDictionaryObject>("NSMutableDictionary", "NSDictionary")
      .classMethod<&dictionaryWithCapacity>("dictionaryWithCapacity:")
      .method<&MutableDictionaryObject::set>("setObject:forKey:")
      .method<&MutableDictionaryObject::remove>("removeObjectForKey:")
      .method<&MutableDictionaryObject::copy>("copy");
}

}  // namespace foundation
