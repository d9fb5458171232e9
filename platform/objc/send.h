#pragma once

#include "platform/objc/encoding.h"
#include "platform/objc/fixed_string.h"
#include "platform/objc/handle.h"

#include <algorithm>
#include <atomic>

// A selector that knows its text. Interned once for each text and library; null while there is no runtime.
template <FixedString Text>
struct SelectorLiteral {
  static constexpr auto kColons = std::ranges::count(Text.view(), ':');

  // NOLINTNEXTLINE(google-explicit-constructor): a literal is to be written where a selector is expected.
  operator objc::Selector() const {
    objc::Selector selector = interned.load(std::memory_order_relaxed);
    if (selector == nullptr && PLATFORM_HAS(sel_registerName)) {
      selector = sel_registerName(Text.text);
      interned.store(selector, std::memory_order_relaxed);
    }
    return selector;
  }

 private:
  static inline constinit std::atomic<objc::Selector> interned{nullptr};
};

template <FixedString Text>
constexpr SelectorLiteral<Text> operator""_sel() {
  return {};
}

// The class of a literal, once it is found. Not a variable of the function's own: clang 14 breaks on those within
// braces.
template <FixedString Text>
inline constinit std::atomic<objc::ClassRecord*> foundClass{nullptr};

// The class of that name, looked up until it is found and then remembered; nil as long as there is none.
template <FixedString Text>
Class operator""_class() {
  std::atomic<objc::ClassRecord*>& found = foundClass<Text>;
  objc::ClassRecord* record = found.load(std::memory_order_acquire);
  if (record == nullptr) {
    record = Class(Text.text).record();
    found.store(record, std::memory_order_release);
  }
  return Class(record);
}

// Sends a message: the result and argument types must be the method's own. A nil receiver answers Result() and nothing
// is called. What the method throws passes through.
template <class Result, class... Arguments>
Result sendSelector(NSObject receiver, objc::Selector selector, Arguments... arguments) {
  if (!receiver) return Result();
  using Method = objc::Raw<Result> (*)(objc::Object*, objc::Selector, objc::Raw<Arguments>...);
#if defined(NDEBUG)
  objc::Implementation found = objc_msg_lookup(receiver.get(), selector);
#else
  objc::Implementation found = objc_msg_lookup_checked(
      receiver.get(), selector, objc::MethodEncoding<objc::Raw<Result>, objc::Raw<Arguments>...>::kText.data());
#endif
  auto method = reinterpret_cast<Method>(found);
  if constexpr (std::is_void_v<Result>) {
    method(receiver.get(), selector, objc::toRaw(arguments)...);
  } else {
    return objc::fromRaw<Result>(method(receiver.get(), selector, objc::toRaw(arguments)...));
  }
}

template <class Result, FixedString Text, class... Arguments>
Result send(NSObject receiver, SelectorLiteral<Text> selector, Arguments... arguments) {
  static_assert(SelectorLiteral<Text>::kColons == sizeof...(Arguments), "one argument for each colon");
  return sendSelector<Result>(receiver, selector, arguments...);
}

inline Class NSObject::objectClass() const { return send<Class>(*this, "class"_sel); }

inline bool NSObject::isKindOfClass(Class kind) const { return send<bool>(*this, "isKindOfClass:"_sel, kind); }

inline bool NSObject::respondsToSelector(objc::Selector selector) const {
  return send<bool>(*this, "respondsToSelector:"_sel, selector);
}

inline bool NSObject::isEqual(NSObject other) const { return send<bool>(*this, "isEqual:"_sel, other); }

inline std::uintptr_t NSObject::hash() const { return send<std::uintptr_t>(*this, "hash"_sel); }
