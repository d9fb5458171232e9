#pragma once

#include <array>
#include <cstddef>
#include <string_view>

// Type encodings: one short text a type, as the platform's runtime writes them. A method's encoding is its result,
// receiver, selector and arguments in order ("B@:@"); debug builds hold the sender's against the method's.
namespace objc {

struct Object;
struct SelectorRecord;
using Selector = const SelectorRecord*;

template <class T>
inline constexpr std::string_view encoding = T::kEncoding;  // structures name their own

template <>
inline constexpr std::string_view encoding<void> = "v";
template <>
inline constexpr std::string_view encoding<bool> = "B";
template <>
inline constexpr std::string_view encoding<char> = "c";
template <>
inline constexpr std::string_view encoding<signed char> = "c";
template <>
inline constexpr std::string_view encoding<unsigned char> = "C";
template <>
inline constexpr std::string_view encoding<char16_t> = "S";
template <>
inline constexpr std::string_view encoding<short> = "s";
template <>
inline constexpr std::string_view encoding<unsigned short> = "S";
template <>
inline constexpr std::string_view encoding<int> = "i";
template <>
inline constexpr std::string_view encoding<unsigned int> = "I";
template <>
inline constexpr std::string_view encoding<long> = "l";
template <>
inline constexpr std::string_view encoding<unsigned long> = "L";
template <>
inline constexpr std::string_view encoding<long long> = "q";
template <>
inline constexpr std::string_view encoding<unsigned long long> = "Q";
template <>
inline constexpr std::string_view encoding<float> = "f";
template <>
inline constexpr std::string_view encoding<double> = "d";
template <>
inline constexpr std::string_view encoding<Object*> = "@";
template <>
inline constexpr std::string_view encoding<Object**> = "^@";
template <>
inline constexpr std::string_view encoding<Object* const*> = "^@";
template <>
inline constexpr std::string_view encoding<Selector> = ":";
template <>
inline constexpr std::string_view encoding<const char*> = "*";
template <>
inline constexpr std::string_view encoding<void*> = "^v";
template <>
inline constexpr std::string_view encoding<const void*> = "^v";
template <>
inline constexpr std::string_view encoding<char16_t*> = "^S";
template <>
inline constexpr std::string_view encoding<const char16_t*> = "^S";

// The NUL-terminated encoding of a method with this result and these arguments, receiver and selector included.
template <class Result, class... Arguments>
struct MethodEncoding {
  static constexpr std::array kParts{encoding<Result>, std::string_view("@:"), encoding<Arguments>...};

  static constexpr std::size_t length() {
    std::size_t total = 0;
    for (std::string_view part : kParts) total += part.size();
    return total;
  }

  static constexpr auto joined() {
    std::array<char, length() + 1> text{};
    std::size_t at = 0;
    for (std::string_view part : kParts) {
      for (char c : part) text[at++] = c;
    }
    return text;
  }

  static constexpr auto kText = joined();
};

}  // namespace objc
