#pragma once

#include "host/value.h"

#include <exception>
#include <optional>
#include <string>

// Host exceptions: objects, pending from when they are raised until the plug-in's function has returned, then thrown.
namespace host {

// An exception of the host language, with a reference to its object.
class HostException : public std::exception {
 public:
  explicit HostException(Value object);

  [[nodiscard]] const Value& object() const { return object_; }
  // "ClassName: Message"
  [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

 private:
  Value object_;
  std::string text_;
};

// Makes the object the pending exception, in place of one that is pending already.
void raise(REALobject exception);
void raise(const char* className, const char* message);

// The pending exception, which then no longer is.
std::optional<HostException> takePendingException();

// A stretch of time in which a plug-in runs: an autorelease pool of the platform, drained at the end.
class PluginScope {
 public:
  PluginScope();
  PluginScope(const PluginScope&) = delete;
  PluginScope& operator=(const PluginScope&) = delete;
  ~PluginScope();

 private:
  void* pool_;
};

// Runs what calls into a plug-in, and then throws what it left pending. An exception that was left from before, by a
// destructor for instance, is thrown instead of running it.
template <class Body>
auto callPlugin(Body body) {
  const auto throwPending = [] {
    if (auto pending = takePendingException()) throw *std::move(pending);
  };
  throwPending();
  if constexpr (std::is_void_v<decltype(body())>) {
    {
      const PluginScope scope;
      body();
    }
    throwPending();
  } else {
    auto result = [&] {
      const PluginScope scope;
      return body();
    }();
    throwPending();
    return result;
  }
}

}  // namespace host
