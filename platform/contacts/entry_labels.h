#pragma once

#include "platform/contacts/entry_codec.h"

#include <span>
#include <string>
#include <string_view>

namespace contacts {

inline constexpr std::string_view kHome = "_$!<Home>!$_";
inline constexpr std::string_view kWork = "_$!<Work>!$_";
inline constexpr std::string_view kOther = "_$!<Other>!$_";

// A label that is written as type words: the line has it when it has all of `needed`, and gets all of `written`.
struct LabelWords {
  std::string_view label;
  std::string_view needed[2];
  std::string_view written[3];
};

// Home and work, as most properties have them.
extern const std::span<const LabelWords> kPlaceWords;

// What X-ABLabel says, else the first label whose words the line has, else the fallback.
std::string labelOf(const EntryLine& line, std::span<const LabelWords> words, std::string_view fallback);
// Adds the label's type words, or makes it the draft's custom label.
void writeLabel(LineDraft& draft, const std::string& label, std::span<const LabelWords> words);

}  // namespace contacts
