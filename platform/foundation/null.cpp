#include "platform/foundation/null.h"

#include "platform/foundation/load.h"
#include "platform/foundation/string.h"
#include "platform/objc/class_builder.h"

namespace {

NSNull makeNull() {
  objc::Object* made = class_createInstance("NSNull"_class.record());
  objc_makeImmortal(made);
  return NSNull(made);
}

NSNull sharedNull(Class) {
  static const NSNull instance = makeNull();
  return instance;
}

NSString describeNull(NSNull) { return "<null>"_ns; }

}  // namespace

void foundation::registerNull() {
  objc::ClassBuilder::define<objc::Object>("NSNull", "NSObject")
      .classMethod<&sharedNull>("null")
      .method<&describeNull>("description");
}
