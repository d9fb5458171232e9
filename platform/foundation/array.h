#pragma once

#include "platform/foundation/cf_base.h"
#include "platform/foundation/enumerator.h"
#include "platform/objc/send.h"

#include <initializer_list>

// Objects in order; none is nil. An array retains what it holds.
class NSArray : public NSObject {
 public:
  using NSObject::NSObject;

  static NSArray array() { return send<NSArray>("NSArray"_class, "array"_sel); }
  // Nil raises NSInvalidArgumentException, here and wherever an object is put into an array.
  static NSArray arrayWithObject(NSObject object) {
    return send<NSArray>("NSArray"_class, "arrayWithObject:"_sel, object);
  }
  static NSArray arrayWithObjects(std::initializer_list<NSObject> objects) {
    return send<NSArray>("NSArray"_class, "arrayWithObjects:count:"_sel, objects.begin(), NSUInteger{objects.size()});
  }

  [[nodiscard]] NSUInteger count() const { return send<NSUInteger>(*this, "count"_sel); }
  // Raises NSRangeException beyond the end.
  [[nodiscard]] NSObject objectAtIndex(NSUInteger index) const {
    return send<NSObject>(*this, "objectAtIndex:"_sel, index);
  }
  // By isEqual:.
  [[nodiscard]] bool containsObject(NSObject object) const { return send<bool>(*this, "containsObject:"_sel, object); }
  // In index order.
  [[nodiscard]] NSEnumerator objectEnumerator() const { return send<NSEnumerator>(*this, "objectEnumerator"_sel); }
};

class NSMutableArray : public NSArray {
 public:
  using NSArray::NSArray;

  static NSMutableArray array() { return send<NSMutableArray>("NSMutableArray"_class, "array"_sel); }
  static NSMutableArray arrayWithCapacity(NSUInteger capacity) {
    return send<NSMutableArray>("NSMutableArray"_class, "arrayWithCapacity:"_sel, capacity);
  }

  void addObject(NSObject object) const { send<void>(*this, "addObject:"_sel, object); }
};
