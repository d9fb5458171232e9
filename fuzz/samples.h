#pragma once

#include "host/value.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// Host values made from a fuzzer's bytes, each with what has to come back when it has crossed to Foundation and back.

// Takes bytes off the front of an input; zeros, once it has ended.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  [[nodiscard]] bool hasEnded() const { return rest_.empty(); }
  [[nodiscard]] std::string_view rest() const { return rest_; }
  std::string_view take(std::size_t count) {
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  template <class Number = std::uint8_t>
  Number number() {
    Number result{};
    const std::string_view bytes = take(sizeof result);
    std::memcpy(&result, bytes.data(), bytes.size());
    return result;
  }
  // As many bytes as the next one says.
  std::string_view text() { return take(number()); }

 private:
  std::string_view rest_;
};

struct Sample {
  host::Value value;
  // What comes back, as shown() writes it; "Nil" for what has no counterpart in Foundation. Unknown for some values,
  // those that hold them included: of these only the second time around is like the first.
  std::string expected = "Nil";
  bool isKnown = true;
  // Equal for objects that Foundation takes for the same key; empty where that is not known.
  std::string identity = "null";
  // Levels that the value is nested, itself included; some values count one less for the bridge.
  int depth = 1;

  [[nodiscard]] bool hasCounterpart() const { return expected != "Nil"; }
};

// The depth that the bridge converts without fail, and the greatest of a sample, which it refuses.
inline constexpr int kSafeDepth = 250;
inline constexpr int kGreatestDepth = 260;

// Any value; and a Dictionary.
Sample takeSample(Input& input);
Sample takeDictionary(Input& input);

// The value that came back stays what it is when it crosses again, but for entries whose key has no counterpart: those
// come back without one and are left out the next time.
void expectStays(const host::Value& once, host::Value (*roundTrip)(const host::Value&));

// A value that came back, in full: numbers exactly, a scalar's type before it.
std::string shown(const host::Value& value);
