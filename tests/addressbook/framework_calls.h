#pragma once

#include "host/classes.h"
#include "platform/foundation/exception.h"
#include "platform/objc/instrumentation.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <string_view>
#include <utility>

// Counts the sends of a selector while it lives, and raises at one of them.
class Sends {
 public:
  explicit Sends(std::string selector, int raiseAt = 0) {
    watched = std::move(selector);
    raising = raiseAt;
    seen = 0;
    objc_setSendHook([](objc::Object*, objc::Selector sent) {
      if (sel_getName(sent) != watched || ++seen != raising) return;
      NSException::raise("Refused"_ns, "because"_ns);
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

// Records by their ids; lists of them; else as the bridge's tests write values. A declared Integer is one at each
// width.
inline std::string told(const host::Value& value) {
  const std::string type = value.typeName();
  if (type == "ABPersonVXR" || type == "ABGroupVXR") return value.call("uniqueId").text();
  if (type == "Int64" && sizeof(REALinteger) == sizeof(std::int64_t))
    return "Integer " + std::to_string(value.integer());
  if (type != "Object()") return shown(value);
  std::string list;
  for (const host::Value& element : value.elements()) list = joined(list, told(element));
  return "[" + list + "]";
}

inline constexpr const char* kBook = "ABAddressBookVXR";

inline host::Value bookOf(const Host& host) { return host.shared(kBook, "sharedAddressbook"); }
inline host::Value recordOf(const Host& host, const char* id) { return bookOf(host).call("recordForUniqueId", id); }
// The first person of each test's contacts.
inline host::Value adaOf(const Host& host) { return recordOf(host, "p1:ABPerson"); }

// One white pixel.
inline const std::string kPicture(
    "GIF89a\x01\0\x01\0\x80\0\0\xff\xff\xff\0\0\0,\0\0\0\0\x01\0\x01\0\0\x02\x02"
    "D\x01\0;",
    35);

// An instance as a host makes it for a plug-in: nothing has run on it.
inline host::Value emptyInstance(std::string_view className) {
  return host::Value::adopt(host::newInstance(host::requireClass(className)));
}
