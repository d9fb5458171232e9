#pragma once

#include "host/classes.h"
#include "platform/foundation/exception.h"
#include "platform/objc/instrumentation.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Members as rows of tables: what each sends to the framework, what it answers, and what it answers when something is
// missing or the framework raises.

// Counts the sends of a selector while it lives, and raises at one of them.
class Sends {
 public:
  explicit Sends(std::string selector, int raiseAt = 0) {
    watched = std::move(selector);
    raising = raiseAt;
    seen = 0;
    objc_setSendHook([](objc::Object*, objc::Selector sent) {
      if (sel_getName(sent) == watched && ++seen == raising) NSException::raise("Refused"_ns, "because"_ns);
    });
  }
  Sends(const Sends&) = delete;
  Sends& operator=(const Sends&) = delete;
  ~Sends() { objc_setSendHook(nullptr); }

  [[nodiscard]] int count() const { return seen; }

 private:
  static inline std::string watched;
  static inline int raising = 0;
  static inline std::atomic<int> seen{0};
};

// What host code gets of it.
inline constexpr const char* kRefused = "NSExceptionVXR: A Cocoa Refused was not handled: because";

// Records by their ids, what is empty too; lists of them; else as the bridge's tests write values.
inline std::string told(const host::Value& value) {
  const std::string type = value.typeName();
  if (type == "ABPersonVXR" || type == "ABGroupVXR") {
    const std::string id = value.call("uniqueId").text();
    return id.empty() ? "empty " + type : id;
  }
  if (type != "Object()") return shown(value);
  std::string list;
  for (const host::Value& element : value.elements()) list = joined(list, told(element));
  return "[" + list + "]";
}

// An instance as a host makes it for a plug-in: nothing has run on it.
inline host::Value emptyInstance(std::string_view className) {
  return host::Value::adopt(host::newInstance(host::requireClass(className)));
}

inline constexpr const char* kAnything = "*";

struct MemberRow {
  const char* member;
  host::Arguments arguments;
  const char* selector;  // of the framework's part
  std::string result;    // kAnything: not compared
  std::string neutral;
  std::vector<std::size_t> passedOn = {};  // arguments that may be missing
  const char* sharedBy = nullptr;          // the class of a shared method

  [[nodiscard]] host::Value callOn(const host::Value& self, const host::Arguments& given) const {
    return sharedBy == nullptr ? host::callMember(self, member, given)
                               : host::callSharedMember(sharedBy, member, given);
  }
  // The result, and how often the selector was sent.
  [[nodiscard]] std::pair<std::string, int> outcome(const host::Value& self, const host::Arguments& given,
                                                    int raiseAt = 0) const {
    host::Value answer;
    int count = 0;
    {
      const Sends sends(selector, raiseAt);
      answer = callOn(self, given);
      count = sends.count();
    }
    return {told(answer), count};
  }
};

using MemberRows = std::vector<MemberRow>;

inline void expectResults(const host::Value& self, const MemberRows& rows) {
  for (const MemberRow& row : rows) {
    SCOPED_TRACE(row.member);
    const auto [result, count] = row.outcome(self, row.arguments);
    EXPECT_EQ(row.result == kAnything ? kAnything : result, row.result);
    EXPECT_GE(count, 1) << row.selector << " was not sent";
  }
}

// Of a wrapper that wraps nothing.
inline void expectNeutralWhenEmpty(const host::Value& empty, const MemberRows& rows) {
  for (const MemberRow& row : rows) {
    if (row.sharedBy != nullptr) continue;
    SCOPED_TRACE(row.member);
    EXPECT_EQ(row.outcome(empty, row.arguments), std::pair(row.neutral, 0));
  }
}

// With each argument in turn nil, "" and, for an object, an empty one of its class.
inline void expectNeutralWithoutArguments(const host::Value& self, const MemberRows& rows) {
  for (const MemberRow& row : rows) {
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
      if (std::ranges::find(row.passedOn, i) != row.passedOn.end()) continue;
      const host::Value& present = row.arguments[i].value();
      host::Arguments given = row.arguments;
      SCOPED_TRACE(std::string(row.member) + " without argument " + std::to_string(i + 1));
      if (std::holds_alternative<host::StringRef>(present.data())) {
        given[i] = "";
        EXPECT_EQ(row.outcome(self, given), std::pair(row.neutral, 0));
      } else if (std::holds_alternative<host::ObjectRef>(present.data())) {
        given[i] = nullptr;
        EXPECT_EQ(row.outcome(self, given), std::pair(row.neutral, 0));
        if (!present.typeName().ends_with("VXR")) continue;
        given[i] = emptyInstance(present.typeName());
        EXPECT_EQ(row.outcome(self, given), std::pair(row.neutral, 0));
      }
    }
  }
}

// For a host that lacks "RuntimeRaiseException": nothing is left pending, and the answer is seen.
inline void expectNeutralWhenRaising(const host::Value& self, const MemberRows& rows) {
  for (const MemberRow& row : rows) {
    SCOPED_TRACE(row.member);
    EXPECT_EQ(row.outcome(self, row.arguments, 1).first, row.neutral);
  }
}
