#pragma once

#include "platform/foundation/array.h"
#include "platform/foundation/cf_base.h"
#include "platform/objc/send.h"

class NSMutableDictionary;

// Objects by key. Keys are compared with isEqual: and hash, and copied if they can be; values are retained. allKeys has
// the order in which the keys were first set.
class NSDictionary : public NSObject {
 public:
  using NSObject::NSObject;

  static NSDictionary dictionary() { return send<NSDictionary>("NSDictionary"_class, "dictionary"_sel); }
  // nil raises NSInvalidArgumentException.
  static NSDictionary dictionaryWithObject(NSObject object, NSObject key) {
    return send<NSDictionary>("NSDictionary"_class, "dictionaryWithObject:forKey:"_sel, object, key);
  }
  // Of two equal keys the later one's object counts. Arrays of different length raise NSInvalidArgumentException.
  static NSDictionary dictionaryWithObjects(NSArray objects, NSArray keys) {
    return send<NSDictionary>("NSDictionary"_class, "dictionaryWithObjects:forKeys:"_sel, objects, keys);
  }

  [[nodiscard]] NSUInteger count() const { return send<NSUInteger>(*this, "count"_sel); }
  [[nodiscard]] NSObject objectForKey(NSObject key) const { return send<NSObject>(*this, "objectForKey:"_sel, key); }
  [[nodiscard]] NSArray allKeys() const { return send<NSArray>(*this, "allKeys"_sel); }

  // The caller owns the result. A copy of an immutable dictionary is the dictionary itself.
  [[nodiscard]] NSDictionary copy() const { return send<NSDictionary>(*this, "copy"_sel); }
  [[nodiscard]] inline NSMutableDictionary mutableCopy() const;
};

class NSMutableDictionary : public NSDictionary {
 public:
  using NSDictionary::NSDictionary;

  static NSMutableDictionary dictionary() {
    return send<NSMutableDictionary>("NSMutableDictionary"_class, "dictionary"_sel);
  }
  static NSMutableDictionary dictionaryWithCapacity(NSUInteger capacity) {
    return send<NSMutableDictionary>("NSMutableDictionary"_class, "dictionaryWithCapacity:"_sel, capacity);
  }

  // nil raises NSInvalidArgumentException.
  void setObject(NSObject object, NSObject key) const { send<void>(*this, "setObject:forKey:"_sel, object, key); }
  // Does nothing for a key that isn't there; nil raises NSInvalidArgumentException.
  void removeObjectForKey(NSObject key) const { send<void>(*this, "removeObjectForKey:"_sel, key); }
};

inline NSMutableDictionary NSDictionary::mutableCopy() const {
  return send<NSMutableDictionary>(*this, "mutableCopy"_sel);
}
