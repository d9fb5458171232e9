#pragma once

#include "platform/foundation/object.h"

#include <exception>

// A pool that is ended by release or drain, in the reverse order of their making. One that an exception skips ends with
// the pool around it.
class NSAutoreleasePool : public NSObject {
 public:
  using NSObject::NSObject;

  static NSAutoreleasePool alloc() { return ::alloc<NSAutoreleasePool>("NSAutoreleasePool"_class); }
  [[nodiscard]] NSAutoreleasePool init() const { return send<NSAutoreleasePool>(*this, "init"_sel); }

  void release() const { send<void>(*this, "release"_sel); }
  void drain() const { send<void>(*this, "drain"_sel); }
};

// A pool for a block of code. When an exception leaves the block, what the pool holds goes to the pool around it: the
// exception is one of those objects.
class AutoreleasePool {
 public:
  AutoreleasePool() : token_(PLATFORM_HAS(objc_autoreleasePoolPush) ? objc_autoreleasePoolPush() : nullptr) {}
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;
  ~AutoreleasePool() {
    if (token_ != nullptr && std::uncaught_exceptions() == exceptions_) objc_autoreleasePoolPop(token_);
  }

 private:
  void* token_;
  int exceptions_ = std::uncaught_exceptions();
};
