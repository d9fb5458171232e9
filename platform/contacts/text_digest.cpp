#include "platform/contacts/text_digest.h"

#include "platform/contacts/case_folding.h"
#include "platform/contacts/vcard/charset.h"

#include <cstddef>

namespace contacts {
namespace {

// The letters of ASCII in lower case; what else falls together does no harm.
constexpr std::uint32_t folded(char c) { return static_cast<unsigned char>(c) | 0x20U; }

}  // namespace

void TextDigest::add(std::u16string_view text) { addAscii(vcard::utf8FromUtf16(caseFolded(text))); }

void TextDigest::addAscii(std::string_view text) {
  constexpr std::uint32_t kPrime = 0x9E3779B1;
  constexpr unsigned kShift = 22;  // leaves the number of a bit
  if (text.size() < 3) return;
  std::uint32_t last = folded(text[0]) << 16 | folded(text[1]) << 8;  // three characters above eight empty bits
  for (const char c : text.substr(2)) {
    last = (last | folded(c)) << 8;
    const std::uint32_t bit = last * kPrime >> kShift;
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
