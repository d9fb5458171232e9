#include "platform/contacts/case_folding.h"

#include "platform/contacts/vcard/charset.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace contacts {
namespace {

void append(std::u16string& text, char32_t c) {
  if (c < 0x10000) {
    text.push_back(static_cast<char16_t>(c));
  } else {
    text.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
  }
}

void append(std::string& text, char32_t c) { vcard::appendUtf8(text, c); }

// Takes a character beyond ASCII off the front of text.
char32_t take(std::u16string_view& text) {
  const char32_t c = text.front();
  const char32_t next = c >= 0xD800 && c < 0xDC00 && text.size() > 1 ? text[1] : 0;
  const bool isPair = next >= 0xDC00 && next < 0xE000;
  text.remove_prefix(isPair ? 2 : 1);
  return isPair ? 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00) : c;
}

char32_t take(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  char32_t c = lead & (0x7FU >> length);
  for (const char next : text.substr(1, length - 1)) c = c << 6 | (static_cast<unsigned char>(next) & 0x3F);
  text.remove_prefix(std::min(length, text.size()));
  return c;
}

template <class Character>
std::basic_string<Character> folded(std::basic_string_view<Character> text) {
  std::basic_string<Character> result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto first = static_cast<std::make_unsigned_t<Character>>(text.front());
    if (first < 0x80) {
      result.push_back(static_cast<Character>(first >= 'A' && first <= 'Z' ? first + ('a' - 'A') : first));
      text.remove_prefix(1);
      continue;
    }
    const char32_t c = take(text);
    const auto found = std::ranges::lower_bound(kCaseFoldings, c, {}, &CaseFolding::character);
    if (found == kCaseFoldings.end() || found->character != c) {
      append(result, c);
      continue;
    }
    for (const char32_t to : found->folded) {
      if (to != 0) append(result, to);
    }
  }
  return result;
}

}  // namespace

std::u16string caseFolded(std::u16string_view text) { return folded(text); }
std::string caseFolded(std::string_view utf8) { return folded(utf8); }

}  // namespace contacts
