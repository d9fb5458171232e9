#include "platform/foundation/autorelease_pool.h"

#include "platform/foundation/load.h"
#include "platform/objc/class_builder.h"

namespace {

struct PoolObject : objc::Object {
  PoolObject() = default;
  PoolObject(const PoolObject&) = delete;
  PoolObject& operator=(const PoolObject&) = delete;
  ~PoolObject() {
    if (token != nullptr) objc_autoreleasePoolPop(token);
  }

  NSAutoreleasePool init() {
    token = objc_autoreleasePoolPush();
    return NSAutoreleasePool(this);
  }

  void release() { objc_release(this); }

  void* token = nullptr;
};

}  // namespace

void foundation::registerAutoreleasePool() {
  objc::ClassBuilder::define<PoolObject>("NSAutoreleasePool", "NSObject")
      .method<&PoolObject::init>("init")
      .method<&PoolObject::release>("release")
      .method<&PoolObject::release>("drain");
}
