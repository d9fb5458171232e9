#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace contacts {

// Which sequences of three bytes texts have in UTF-8, whatever their case: enough to tell, without reading the texts,
// that none of them contains another one.
class TextDigest {
 public:
  // Has the text, and all that is a part of it but halves of surrogate pairs.
  void add(std::u16string_view text);
  // The same of valid UTF-8.
  void add(std::string_view text);
  // The same of ASCII.
  void addAscii(std::string_view text) { addFolded(text); }
  // From now on it may have any text.
  void addAnything() { bits_.fill(~std::uint32_t{0}); }
  // False when no text that was added contains what the other was made of.
  [[nodiscard]] bool mayHave(const TextDigest& part) const;
  bool operator==(const TextDigest&) const = default;

 private:
  void addFolded(std::string_view text);

  std::array<std::uint32_t, 32> bits_{};
};

}  // namespace contacts
