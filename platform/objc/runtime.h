#pragma once

#include "platform/objc/api.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

// The runtime's exported functions and the two layouts that implementations need. Handles (handle.h), typed sends
// (send.h) and class definitions (class_builder.h) are written over these.
namespace objc {

struct ClassRecord;
struct SelectorRecord;
using Selector = const SelectorRecord*;
using Implementation = void (*)();

inline constexpr std::int32_t kImmortal = INT32_MAX;

// What every object starts with. An object whose count is kImmortal is never freed: classes and constant strings.
struct Object {
  ClassRecord* isa = nullptr;
  std::atomic<std::int32_t> references{1};

  Object() = default;
  Object(ClassRecord* objectClass, std::int32_t count) : isa(objectClass), references(count) {}
};

// What a new class is made from. construct runs on zeroed memory of instanceSize bytes; destroy runs before the memory
// is freed.
struct ClassDescription {
  const char* name;
  const char* superclass;  // null for a root class
  std::size_t instanceSize;
  void (*construct)(Object*);
  void (*destroy)(Object*);
};

}  // namespace objc

extern "C" {

// The selector of that text; the same text always gives the same selector.
PLATFORM_API objc::Selector sel_registerName(const char* name);
PLATFORM_API const char* sel_getName(objc::Selector selector);

// The class of that name, or null.
PLATFORM_API objc::ClassRecord* objc_getClass(const char* name);
PLATFORM_API const char* class_getName(objc::ClassRecord* objectClass);
// Null at the end of the chain.
PLATFORM_API objc::ClassRecord* class_getSuperclass(objc::ClassRecord* objectClass);

// Makes the class and its metaclass, and answers it; null when the superclass is unknown or the name is taken.
PLATFORM_API objc::ClassRecord* objc_registerClass(const objc::ClassDescription* description);
// Adds a method, or replaces the class's own of that selector. encoding is kept, not copied.
PLATFORM_API void class_addMethod(objc::ClassRecord* objectClass, objc::Selector selector,
                                  objc::Implementation implementation, const char* encoding);
PLATFORM_API objc::ClassRecord* class_getMetaclass(objc::ClassRecord* objectClass);
// Whether it is the class of a class object.
PLATFORM_API bool class_isMetaclass(objc::ClassRecord* objectClass);
// A new instance with one reference for the caller.
PLATFORM_API objc::Object* class_createInstance(objc::ClassRecord* objectClass);

// The method that a send to self runs, never null. An unknown selector raises NSInvalidArgumentException.
PLATFORM_API objc::Implementation objc_msg_lookup(objc::Object* self, objc::Selector selector);
// As objc_msg_lookup; aborts with both encodings when the method's differs from the sender's.
PLATFORM_API objc::Implementation objc_msg_lookup_checked(objc::Object* self, objc::Selector selector,
                                                          const char* encoding);
// Whether instances of the class have the method.
PLATFORM_API bool class_respondsToSelector(objc::ClassRecord* objectClass, objc::Selector selector);

// Reference counts, safe between threads. The object may be null.
PLATFORM_API objc::Object* objc_retain(objc::Object* object);
PLATFORM_API void objc_release(objc::Object* object);
// From now on the object is never freed, and not counted as alive. To be called before others can see it.
PLATFORM_API void objc_makeImmortal(objc::Object* object);
// Gives the caller's reference to the thread's current pool. Without a pool the object lives until the thread ends.
PLATFORM_API objc::Object* objc_autorelease(objc::Object* object);
// Pools nest per thread; pop releases all that came since the matching push, inner pools included.
PLATFORM_API void* objc_autoreleasePoolPush();
PLATFORM_API void objc_autoreleasePoolPop(void* pool);
}
