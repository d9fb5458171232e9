#pragma once

#include "platform/objc/runtime.h"

#include <type_traits>

// A handle: one pointer to an object, trivially copyable, may be nil, owns nothing. The classes derived from it, one a
// framework class, add what may be sent; they hold no data of their own.
class NSObject {
 public:
  constexpr NSObject() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): nil is written as nullptr.
  constexpr NSObject(std::nullptr_t) {}
  constexpr explicit NSObject(objc::Object* object) : object_(object) {}

  [[nodiscard]] constexpr objc::Object* get() const { return object_; }
  constexpr explicit operator bool() const { return object_ != nullptr; }
  // Identity, not equality of contents.
  friend constexpr bool operator==(NSObject a, NSObject b) { return a.object_ == b.object_; }

  // The same object as another handle type; nothing is checked.
  template <class Handle>
  [[nodiscard]] constexpr Handle as() const {
    return Handle(object_);
  }

  // Defined in send.h, which every handle's header includes.
  [[nodiscard]] inline class Class objectClass() const;
  [[nodiscard]] inline bool isKindOfClass(class Class kind) const;
  [[nodiscard]] inline bool respondsToSelector(objc::Selector selector) const;
  // Equality of contents, and the number that equal objects share.
  [[nodiscard]] inline bool isEqual(NSObject other) const;
  [[nodiscard]] inline std::uintptr_t hash() const;
  // Defined in platform/foundation/string.h.
  [[nodiscard]] inline class NSString description() const;

 protected:
  objc::Object* object_ = nullptr;
};

// The handle of a class object.
class Class : public NSObject {
 public:
  using NSObject::NSObject;
  // The class of that name; nil when no loaded framework has it, or there is no runtime at all.
  explicit Class(const char* name) : NSObject(PLATFORM_HAS(objc_getClass) ? asObject(objc_getClass(name)) : nullptr) {}
  explicit Class(objc::ClassRecord* record) : NSObject(asObject(record)) {}

  [[nodiscard]] objc::ClassRecord* record() const { return reinterpret_cast<objc::ClassRecord*>(object_); }
  [[nodiscard]] const char* name() const { return class_getName(record()); }
  [[nodiscard]] Class superclass() const { return Class(class_getSuperclass(record())); }

 private:
  // A class record starts with the object that it is.
  static objc::Object* asObject(objc::ClassRecord* record) { return reinterpret_cast<objc::Object*>(record); }
};

namespace objc {

// An incomplete type is never a handle: what an opaque pointer points to.
template <class T>
concept HandleType = (sizeof(T) > 0) && std::is_base_of_v<NSObject, T>;

template <class T>
struct RawType {
  using type = T;
};
template <HandleType T>
struct RawType<T> {
  using type = Object*;
};
template <HandleType T>
struct RawType<T*> {
  using type = Object**;
};
template <HandleType T>
struct RawType<const T*> {
  using type = Object* const*;
};

// What crosses a dispatch: handles as plain pointers (a structure is returned differently from a pointer on i386), all
// else as it is.
template <class T>
using Raw = typename RawType<T>::type;

template <class T>
Raw<T> toRaw(T value) {
  if constexpr (HandleType<T>) {
    return value.get();
  } else if constexpr (!std::is_same_v<Raw<T>, T>) {
    return reinterpret_cast<Raw<T>>(value);  // a handle is its one pointer
  } else {
    return value;
  }
}

template <class T>
T fromRaw(Raw<T> value) {
  if constexpr (HandleType<T>) {
    return T(value);
  } else if constexpr (!std::is_same_v<Raw<T>, T>) {
    return reinterpret_cast<T>(value);
  } else {
    return value;
  }
}

}  // namespace objc
