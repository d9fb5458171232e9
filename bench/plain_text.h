#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// Text to convert, and the plainest conversions of it: what any other must do at least.

// Latin, Greek, Cyrillic, Chinese and an emoji.
inline constexpr std::string_view kMixed =
    "Zo\u00EB \u0391\u03B8\u03AE\u03BD\u03B1 \u041C\u043E\u0441\u043A\u0432\u0430 "
    "\u5317\u4EAC\u5E02 \U0001F600 M\u00FCller, ";
inline constexpr std::string_view kAscii = "John Appleseed, 1 Main Street, Springfield; ";

// The pattern over and over, up to so many characters.
inline std::string sample(std::string_view pattern, std::int64_t characters) {
  std::string text;
  std::int64_t count = 0;
  for (std::size_t at = 0; count < characters || (pattern[at] & 0xC0) == 0x80; at = (at + 1) % pattern.size()) {
    if ((pattern[at] & 0xC0) != 0x80) ++count;
    text += pattern[at];
  }
  return text;
}

// Without checks of any kind. Each answers what it has written; the text ends in a zero.
inline std::size_t plainDecode(const char* text, char16_t* out) {
  char16_t* const start = out;
  const auto* in = reinterpret_cast<const unsigned char*>(text);
  while (*in != 0) {
    if (in[0] < 0x80) {
      *out++ = *in++;
    } else if (in[0] < 0xE0) {
      *out++ = static_cast<char16_t>((in[0] & 0x1F) << 6 | (in[1] & 0x3F));
      in += 2;
    } else if (in[0] < 0xF0) {
      *out++ = static_cast<char16_t>((in[0] & 0x0F) << 12 | (in[1] & 0x3F) << 6 | (in[2] & 0x3F));
      in += 3;
    } else {
      const int c = (in[0] & 0x07) << 18 | (in[1] & 0x3F) << 12 | (in[2] & 0x3F) << 6 | (in[3] & 0x3F);
      *out++ = static_cast<char16_t>(0xD7C0 + (c >> 10));
      *out++ = static_cast<char16_t>(0xDC00 + (c & 0x3FF));
      in += 4;
    }
  }
  return static_cast<std::size_t>(out - start);
}

inline char* plainEncode(const char16_t* in, std::size_t count, char* out) {
  for (std::size_t i = 0; i < count; ++i) {
    unsigned c = in[i];
    if (c < 0x80) {
      *out++ = static_cast<char>(c);
    } else if (c < 0x800) {
      *out++ = static_cast<char>(0xC0 | c >> 6);
      *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0xD800 || c >= 0xE000) {
      *out++ = static_cast<char>(0xE0 | c >> 12);
      *out++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
      *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else {
      c = 0x10000 + ((c - 0xD800) << 10) + (in[++i] - 0xDC00u);
      *out++ = static_cast<char>(0xF0 | c >> 18);
      *out++ = static_cast<char>(0x80 | (c >> 12 & 0x3F));
      *out++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
      *out++ = static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  *out = '\0';
  return out;
}

// The floor of making a string: the plain loop and the two allocations that one of its own needs.
inline void decodePlainly(benchmark::State& state, std::string_view pattern) {
  const std::string text = sample(pattern, state.range(0));
  for (auto _ : state) {
    const auto object = std::make_unique<char[]>(32);
    const std::unique_ptr<char16_t[]> units(new char16_t[text.size()]);
    benchmark::DoNotOptimize(object.get());
    benchmark::DoNotOptimize(plainDecode(text.c_str(), units.get()));
    benchmark::ClobberMemory();
  }
}
