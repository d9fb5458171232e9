#include "platform/contacts/text_digest.h"

#include "platform/contacts/case_folding.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"

#include <cstddef>
#include <string>

namespace contacts {
namespace {

// Adds character after character.
class Sequences {
 public:
  explicit Sequences(std::array<std::uint32_t, 32>& bits) : bits_(bits) {}

  void add(char c) {
    constexpr std::uint32_t kPrime = 0x9E3779B1;
    constexpr unsigned kShift = 22;  // leaves the number of a bit
    last_ = (last_ << 8 | static_cast<unsigned char>(c)) & 0xFFFFFF;
    if (++count_ < 3) return;
    const std::uint32_t bit = last_ * kPrime >> kShift;
    bits_[bit / 32] |= std::uint32_t{1} << bit % 32;
  }

 private:
  std::array<std::uint32_t, 32>& bits_;
  std::uint32_t last_ = 0;
  std::size_t count_ = 0;
};

}  // namespace

void TextDigest::add(std::u16string_view text) {
  Sequences sequences(bits_);
  for (const char c : vcard::utf8FromUtf16(caseFolded(text))) sequences.add(c);
}

void TextDigest::addAscii(std::string_view text) {
  Sequences sequences(bits_);
  for (const char c : text) sequences.add(vcard::lower(c));
}

bool TextDigest::mayHave(const TextDigest& part) const {
  for (std::size_t i = 0; i < bits_.size(); ++i) {
    if ((part.bits_[i] & ~bits_[i]) != 0) return false;
  }
  return true;
}

}  // namespace contacts
