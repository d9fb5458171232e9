#include "platform/objc/class_record.h"

#include <cxxabi.h>

#include <cstdlib>
#include <utility>
#include <vector>

// This library, as the end of a thread knows it.
extern "C" __attribute__((visibility("hidden"))) void* __dso_handle;

namespace {

using objc::Object;

void destroy(Object* object) {
  objc::ClassRecord* objectClass = object->isa;
  objectClass->destroy(object);
  std::free(object);
  objectClass->liveInstances.fetch_sub(1, std::memory_order_relaxed);
}

// A thread's autoreleased objects; a pool is a position in it.
class AutoreleaseStack {
 public:
  AutoreleaseStack() = default;
  AutoreleaseStack(const AutoreleaseStack&) = delete;
  AutoreleaseStack& operator=(const AutoreleaseStack&) = delete;

  void add(Object* object) { objects_.push_back(object); }

  // A marker in the stack is a null object; the token is its position plus one, so that no token is null.
  void* push() {
    objects_.push_back(nullptr);
    return reinterpret_cast<void*>(objects_.size());
  }

  void pop(void* token) {
    const auto size = reinterpret_cast<std::size_t>(token);
    if (size <= objects_.size()) releaseDownTo(size - 1);
  }

  // Releasing may autorelease more, which goes too.
  void releaseDownTo(std::size_t size) {
    while (objects_.size() > size) {
      Object* object = objects_.back();
      objects_.pop_back();
      objc_release(object);
    }
  }

 private:
  std::vector<Object*> objects_;
};

// Null before a thread's first use and after its end. The pointer has a fixed place in every thread, which is found
// without a call.
constinit thread_local AutoreleaseStack* currentStack __attribute__((tls_model("initial-exec"))) = nullptr;

void endStack(void*) {
  currentStack->releaseDownTo(0);
  delete std::exchange(currentStack, nullptr);
}

AutoreleaseStack& autoreleaseStack() {
  if (currentStack == nullptr) {
    currentStack = new AutoreleaseStack;
    // Not a thread_local object: a destructor that runs after its end may autorelease too, and starts anew here.
    abi::__cxa_thread_atexit(&endStack, currentStack, &__dso_handle);
  }
  return *currentStack;
}

}  // namespace

objc::Object* objc_retain(objc::Object* object) {
  if (object != nullptr && object->references.load(std::memory_order_relaxed) != objc::kImmortal) {
    object->references.fetch_add(1, std::memory_order_relaxed);
  }
  return object;
}

void objc_release(objc::Object* object) {
  if (object == nullptr || object->references.load(std::memory_order_relaxed) == objc::kImmortal) return;
  if (object->references.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy(object);
}

void objc_makeImmortal(objc::Object* object) {
  if (object->references.exchange(objc::kImmortal, std::memory_order_relaxed) != objc::kImmortal) {
    object->isa->liveInstances.fetch_sub(1, std::memory_order_relaxed);
  }
}

objc::Object* objc_autorelease(objc::Object* object) {
  if (object != nullptr) autoreleaseStack().add(object);
  return object;
}

void* objc_autoreleasePoolPush() { return autoreleaseStack().push(); }

void objc_autoreleasePoolPop(void* pool) { autoreleaseStack().pop(pool); }
