#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// Letters of the ASCII range, whatever the locale: what the keywords of a card are written in.
namespace vcard {

constexpr char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool isSpace(char c) { return isBlank(c) || c == '\r' || c == '\n'; }

inline bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, upper, upper);
}

inline bool containsIgnoringCase(std::string_view text, std::string_view part) {
  auto isSame = [](char a, char b) { return upper(a) == upper(b); };
  return std::search(text.begin(), text.end(), part.begin(), part.end(), isSame) != text.end();
}

inline std::string uppercased(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), upper);
  return result;
}

inline std::string lowercased(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), lower);
  return result;
}

// Without blanks and line breaks at its ends.
constexpr std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace vcard
