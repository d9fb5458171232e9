#pragma once

#include <span>
#include <string>
#include <string_view>

namespace contacts {

// The text with all differences of case taken out, as Unicode's full case folding does.
std::u16string caseFolded(std::u16string_view text);
// The same of valid UTF-8.
std::string caseFolded(std::string_view utf8);

// A character that folds to others, unused places 0. Generated from Unicode's data, sorted by the character.
struct CaseFolding {
  char32_t character;
  char32_t folded[3];
};

extern const std::span<const CaseFolding> kCaseFoldings;

}  // namespace contacts
