#pragma once

#include "bridge/data.h"
#include "bridge/exceptions.h"
#include "bridge/strings.h"
#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"

// Members that only send and convert, as rows of the class tables.

// The host's form of what the framework answers.
inline bool toHost(bool answer) { return answer; }
inline REALinteger toHost(NSInteger answer) { return answer; }
inline REALinteger toHost(NSUInteger answer) { return static_cast<REALinteger>(answer); }
inline REALstring toHost(NSString answer) { return NSStringRB(answer); }
inline REALmemoryBlock toHost(NSData answer) { return NSDataRB(answer); }

template <class Answer>
using HostForm = decltype(toHost(Answer()));

template <auto Method>
struct Forward;

template <class Handle, class Answer, Answer (Handle::*Method)() const>
struct Forward<Method> {
  static HostForm<Answer> call(REALobject self) {
    HostForm<Answer> result{};
    guard([&] { result = toHost((wrapped<Handle>(self).*Method)()); });
    return result;
  }
};

template <class Handle, class Answer, Answer (Handle::*Method)(NSUInteger index) const>
struct Forward<Method> {
  static HostForm<Answer> call(REALobject self, std::uint32_t index) {
    HostForm<Answer> result{};
    guard([&] { result = toHost((wrapped<Handle>(self).*Method)(index)); });
    return result;
  }
};

template <class Handle, class Answer, objc::HandleType Argument, Answer (Handle::*Method)(Argument) const>
struct Forward<Method> {
  static HostForm<Answer> call(REALobject self, REALobject argument) {
    HostForm<Answer> result{};
    guard([&] {
      auto receiver = wrapped<Handle>(self);
      auto needed = wrapped<Argument>(argument);
      if (receiver && needed) result = toHost((receiver.*Method)(needed));
    });
    return result;
  }
};

// Sends the one message to the wrapped object, with what the argument wraps or with an index, and converts the answer.
// An empty object, an empty argument and an exception give the neutral value.
template <auto Method>
inline constexpr auto forward = &Forward<Method>::call;

template <FixedString Selector, auto Method>
struct ForwardIfKnown;

template <FixedString Selector, class Handle, class Answer, Answer (Handle::*Method)() const>
struct ForwardIfKnown<Selector, Method> {
  static HostForm<Answer> call(REALobject self) {
    HostForm<Answer> result{};
    guard([&] {
      auto receiver = wrapped<Handle>(self);
      if (receiver.respondsToSelector(SelectorLiteral<Selector>())) result = toHost((receiver.*Method)());
    });
    return result;
  }
};

// The same for a message that older frameworks don't know.
template <FixedString Selector, auto Method>
inline constexpr auto forwardIfKnown = &ForwardIfKnown<Selector, Method>::call;

template <auto List, void (*Fill)(REALobjectArray, NSArray)>
struct ForwardList;

template <class Handle, NSArray (Handle::*List)() const, void (*Fill)(REALobjectArray, NSArray)>
struct ForwardList<List, Fill> {
  static REALobjectArray call(REALobject self) {
    auto result = adoptHost(REALCreateArrayObject(-1));
    guard([&] { Fill(result.get(), (wrapped<Handle>(self).*List)()); });
    return result.handOver();
  }
};

// The wrappers of a list of the wrapped object's, as far as they could be made.
template <auto List, void (*Fill)(REALobjectArray, NSArray)>
inline constexpr auto forwardList = &ForwardList<List, Fill>::call;
