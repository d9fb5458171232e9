#include "platform/contacts/text_digest.h"

#include "platform/contacts/case_folding.h"
#include "platform/contacts/vcard/charset.h"

#include <cstddef>

namespace contacts {

void TextDigest::add(std::u16string_view text) { add(vcard::utf8FromUtf16(text)); }

void TextDigest::add(std::string_view text) { addFolded(caseFolded(text)); }

// But for letters of ASCII, which may have either case.
void TextDigest::addFolded(std::string_view text) {
  constexpr std::uint32_t kPrime = 0x9E3779B1;
  constexpr unsigned kShift = 22;  // leaves the number of a bit
  // The letters of ASCII in lower case; what else falls together does no harm.
  constexpr std::uint32_t kLowerCase = 0x20202000;
  auto byte = [](char c) { return std::uint32_t{static_cast<unsigned char>(c)}; };
  if (text.size() < 3) return;
  std::uint32_t last = byte(text[0]) << 16 | byte(text[1]) << 8;  // three bytes above eight empty bits
  for (const char c : text.substr(2)) {
    last = (last | byte(c)) << 8;
    const std::uint32_t bit = (last | kLowerCase) * kPrime >> kShift;
    bits_[bit / 32] |= std::uint32_t{1} << bit % 32;
  }
}

bool TextDigest::mayHave(const TextDigest& part) const {
  for (std::size_t i = 0; i < bits_.size(); ++i) {
    if ((part.bits_[i] & ~bits_[i]) != 0) return false;
  }
  return true;
}

}  // namespace contacts
