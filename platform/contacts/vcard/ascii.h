#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// Letters of the ASCII range, whatever the locale: what the keywords of a card are written in.
namespace vcard {

constexpr char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }

inline bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, upper, upper);
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
  constexpr std::string_view kSpace = " \t\r\n";
  while (!text.empty() && kSpace.find(text.front()) != std::string_view::npos) text.remove_prefix(1);
  while (!text.empty() && kSpace.find(text.back()) != std::string_view::npos) text.remove_suffix(1);
  return text;
}

}  // namespace vcard
