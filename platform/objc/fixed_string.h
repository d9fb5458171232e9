#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

// A string literal that can be a template argument.
template <std::size_t N>
struct FixedString {
  char text[N]{};

  constexpr FixedString() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a literal is to be written where a FixedString is expected.
  constexpr FixedString(const char (&literal)[N]) { std::copy_n(literal, N, text); }

  [[nodiscard]] constexpr std::string_view view() const { return {text, N - 1}; }
};
