#pragma once

#include "bridge/exceptions.h"
#include "bridge/strings.h"
#include "bridge/wrappers.h"

// The host's form of what the framework answers.
inline bool toHost(bool answer) { return answer; }
inline REALinteger toHost(NSInteger answer) { return answer; }
inline REALinteger toHost(NSUInteger answer) { return static_cast<REALinteger>(answer); }
inline REALstring toHost(NSString answer) { return NSStringRB(answer); }

// A member that sends one message without arguments to the wrapped object and converts the answer. An empty object, and
// an exception, give the neutral value.
template <auto Method>
struct Forward;

template <class Handle, class Answer, Answer (Handle::*Method)() const>
struct Forward<Method> {
  static auto call(REALobject self) -> decltype(toHost(Answer())) {
    decltype(toHost(Answer())) result{};
    guard([&] { result = toHost((wrapped<Handle>(self).*Method)()); });
    return result;
  }
};

template <auto Method>
inline constexpr auto forward = &Forward<Method>::call;
