#include "platform/foundation/object.h"

#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"

#include <cinttypes>
#include <cstdio>
#include <string>

namespace {

Class classOf(NSObject object) { return Class(object.get()->isa); }

NSObject allocObject(Class receiver) { return NSObject(class_createInstance(receiver.record())); }

NSObject newObject(Class receiver) { return send<NSObject>(allocObject(receiver), "init"_sel); }

Class classOfClass(Class receiver) { return receiver; }

Class superclassOfClass(Class receiver) { return receiver.superclass(); }

NSString describeClass(Class receiver) { return foundation::makeString(receiver.name()); }

NSObject initObject(NSObject receiver) { return receiver; }

Class superclassOf(NSObject receiver) { return classOf(receiver).superclass(); }

bool isKindOf(NSObject receiver, Class kind) {
  for (Class current = classOf(receiver); current; current = current.superclass()) {
    if (current == kind) return true;
  }
  return false;
}

bool respondsTo(NSObject receiver, objc::Selector selector) {
  return selector != nullptr && class_respondsToSelector(classOf(receiver).record(), selector);
}

bool isSame(NSObject receiver, NSObject other) { return receiver == other; }

NSUInteger hashOf(NSObject receiver) { return reinterpret_cast<NSUInteger>(receiver.get()); }

NSString describe(NSObject receiver) {
  char address[32];
  std::snprintf(address, sizeof address, ": 0x%" PRIxPTR ">", hashOf(receiver));
  return foundation::makeString(std::string("<") + classOf(receiver).name() + address);
}

}  // namespace

void foundation::registerObject() {
  objc::ClassBuilder::define<objc::Object>("NSObject", nullptr)
      .classMethod<&allocObject>("alloc")
      .classMethod<&newObject>("new")
      .classMethod<&classOfClass>("class")
      .classMethod<&superclassOfClass>("superclass")
      .classMethod<&describeClass>("description")
      .method<&initObject>("init")
      .method<&classOf>("class")
      .method<&superclassOf>("superclass")
      .method<&isKindOf>("isKindOfClass:")
      .method<&respondsTo>("respondsToSelector:")
      .method<&isSame>("isEqual:")
      .method<&hashOf>("hash")
      .method<&describe>("description");
}
