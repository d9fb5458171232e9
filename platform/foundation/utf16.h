#pragma once

// The arithmetic of surrogate pairs.
namespace foundation {

constexpr bool isSurrogate(char32_t c) { return (c & 0xFFFFF800) == 0xD800; }
constexpr bool isHighSurrogate(char32_t c) { return (c & 0xFFFFFC00) == 0xD800; }
constexpr bool isLowSurrogate(char32_t c) { return (c & 0xFFFFFC00) == 0xDC00; }

constexpr char32_t fromSurrogates(char16_t high, char16_t low) {
  return 0x10000 + ((static_cast<char32_t>(high) - 0xD800) << 10) + (static_cast<char32_t>(low) - 0xDC00);
}
// Of a code point beyond U+FFFF.
constexpr char16_t highSurrogate(char32_t c) { return static_cast<char16_t>(0xD7C0 + (c >> 10)); }
constexpr char16_t lowSurrogate(char32_t c) { return static_cast<char16_t>(0xDC00 + (c & 0x3FF)); }

}  // namespace foundation
