#pragma once

#include "platform/objc/encoding.h"
#include "platform/objc/handle.h"

#include <new>
#include <type_traits>

namespace objc {

// The plain function that dispatch calls for a member function of an implementation class, or for a function whose
// first parameter is the receiver's handle (class methods and categories).
template <auto Method>
struct MethodThunk;

template <class Receiver, class Result, class... Arguments, Result (Receiver::*Method)(Arguments...)>
struct MethodThunk<Method> {
  using Encoding = MethodEncoding<Raw<Result>, Raw<Arguments>...>;
  static Raw<Result> call(Object* self, Selector, Raw<Arguments>... arguments) {
    auto* receiver = static_cast<Receiver*>(self);
    if constexpr (std::is_void_v<Result>) {
      (receiver->*Method)(fromRaw<Arguments>(arguments)...);
    } else {
      return toRaw((receiver->*Method)(fromRaw<Arguments>(arguments)...));
    }
  }
};

template <class Receiver, class Result, class... Arguments, Result (Receiver::*Method)(Arguments...) const>
struct MethodThunk<Method> {
  using Encoding = MethodEncoding<Raw<Result>, Raw<Arguments>...>;
  static Raw<Result> call(Object* self, Selector, Raw<Arguments>... arguments) {
    const auto* receiver = static_cast<const Receiver*>(self);
    if constexpr (std::is_void_v<Result>) {
      (receiver->*Method)(fromRaw<Arguments>(arguments)...);
    } else {
      return toRaw((receiver->*Method)(fromRaw<Arguments>(arguments)...));
    }
  }
};

template <HandleType Receiver, class Result, class... Arguments, Result (*Method)(Receiver, Arguments...)>
struct MethodThunk<Method> {
  using Encoding = MethodEncoding<Raw<Result>, Raw<Arguments>...>;
  static Raw<Result> call(Object* self, Selector, Raw<Arguments>... arguments) {
    if constexpr (std::is_void_v<Result>) {
      Method(Receiver(self), fromRaw<Arguments>(arguments)...);
    } else {
      return toRaw(Method(Receiver(self), fromRaw<Arguments>(arguments)...));
    }
  }
};

// Adds methods to a class, new or found by name. Nothing happens for a class that is nil, so that categories of a
// framework that is missing are dropped.
class ClassBuilder {
 public:
  explicit ClassBuilder(Class existing) : class_(existing) {}

  // A new class whose instances are Implementation, which derives from the superclass's implementation (from Object at
  // the root).
  template <class Implementation>
  static ClassBuilder define(const char* name, const char* superclass) {
    static_assert(std::is_base_of_v<Object, Implementation> && !std::is_polymorphic_v<Implementation>);
    if (!PLATFORM_HAS(objc_registerClass)) return ClassBuilder(nullptr);
    const ClassDescription description{name, superclass, sizeof(Implementation),
                                       [](Object* memory) { new (static_cast<void*>(memory)) Implementation(); },
                                       [](Object* object) { static_cast<Implementation*>(object)->~Implementation(); }};
    return ClassBuilder(Class(objc_registerClass(&description)));
  }

  template <auto Method>
  ClassBuilder& method(const char* selector) {
    return add<Method>(selector, [](Class target) { return target.record(); });
  }

  // Method takes the class as its first argument.
  template <auto Method>
  ClassBuilder& classMethod(const char* selector) {
    return add<Method>(selector, [](Class target) { return class_getMetaclass(target.record()); });
  }

  [[nodiscard]] Class built() const { return class_; }

 private:
  template <auto Method, class Target>
  ClassBuilder& add(const char* selector, Target target) {
    if (class_) {
      class_addMethod(target(class_), sel_registerName(selector),
                      reinterpret_cast<Implementation>(&MethodThunk<Method>::call),
                      MethodThunk<Method>::Encoding::kText.data());
    }
    return *this;
  }

  Class class_;
};

// A new instance, made by its class's constructor, with one reference for the caller.
template <class Implementation>
Implementation* createInstance(Class instanceClass) {
  return static_cast<Implementation*>(class_createInstance(instanceClass.record()));
}

}  // namespace objc
