#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// Letters of the ASCII range, whatever the locale: what the keywords of a card are written in.
namespace vcard {

constexpr char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool isSpace(char c) { return isBlank(c) || c == '\r' || c == '\n'; }

// Whether there is nothing else in the text. Eight characters at a step.
inline bool isAscii(std::string_view text) {
  std::uint64_t word = 0;
  for (; text.size() >= sizeof word; text.remove_prefix(sizeof word)) {
    std::memcpy(&word, text.data(), sizeof word);
    if ((word & 0x8080808080808080) != 0) return false;
  }
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Characters that are looked up rather than compared.
class CharacterSet {
 public:
  explicit constexpr CharacterSet(std::string_view characters) {
    for (const char c : characters) has_[static_cast<unsigned char>(c)] = true;
  }
  [[nodiscard]] constexpr bool has(char c) const { return has_[static_cast<unsigned char>(c)]; }
  [[nodiscard]] constexpr bool hasAll(std::string_view text) const {
    for (const char c : text) {
      if (!has(c)) return false;
    }
    return true;
  }

 private:
  std::array<bool, 256> has_{};
};

constexpr bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && upper(a[i]) != upper(b[i])) return false;
  }
  return true;
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
