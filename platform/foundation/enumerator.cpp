#include "platform/foundation/enumerator.h"

#include "platform/foundation/array_object.h"
#include "platform/foundation/load.h"
#include "platform/objc/class_builder.h"

namespace {

struct EnumeratorObject : objc::Object {
  NSObject nextObject() {
    const auto& objects = foundation::objectsOf(array.get());
    return next < objects.size() ? objects[next++].get() : nullptr;
  }

  Retained<NSArray> array;
  std::size_t next = 0;
};

}  // namespace

NSEnumerator foundation::makeEnumerator(NSArray array) {
  auto* made = objc::createInstance<EnumeratorObject>("NSEnumerator"_class);
  made->array = Retained<NSArray>::share(array);
  return Retained<NSEnumerator>::adopt(NSEnumerator(made)).autorelease();
}

void foundation::registerEnumerator() {
  objc::ClassBuilder::define<EnumeratorObject>("NSEnumerator", "NSObject")
      .method<&EnumeratorObject::nextObject>("nextObject");
}
