#include "platform/contacts/case_folding.h"

#include <algorithm>
#include <cstddef>

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

}  // namespace

std::u16string caseFolded(std::u16string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (c < 0x80) {
      result.push_back(static_cast<char16_t>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c));
      continue;
    }
    const bool isPair =
        c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
    if (isPair) c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00U);
    auto found = std::ranges::lower_bound(kCaseFoldings, c, {}, &CaseFolding::character);
    if (found == kCaseFoldings.end() || found->character != c) {
      append(result, c);
      continue;
    }
    for (const char32_t folded : found->folded) {
      if (folded != 0) append(result, folded);
    }
  }
  return result;
}

}  // namespace contacts
