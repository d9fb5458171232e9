#include "platform/contacts/vcard/encoding.h"

#include <array>
#include <cstdint>

namespace vcard {
namespace {

constexpr std::string_view kBase64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kNotBase64 = 255;

constexpr std::array<std::uint8_t, 256> base64Values() {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNotBase64);
  for (std::size_t i = 0; i < kBase64Alphabet.size(); ++i) {
    values[static_cast<unsigned char>(kBase64Alphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}

constexpr int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

std::string decodeQuotedPrintable(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '=' && i + 2 < text.size()) {
      const int high = hexDigit(text[i + 1]);
      const int low = hexDigit(text[i + 2]);
      if (high >= 0 && low >= 0) {
        bytes.push_back(static_cast<char>(high * 16 + low));
        i += 2;
        continue;
      }
    }
    bytes.push_back(text[i]);
  }
  return bytes;
}

std::string decodeBase64(std::string_view text) {
  static constexpr std::array<std::uint8_t, 256> kValues = base64Values();
  std::string bytes(text.size() / 4 * 3 + 3, '\0');
  std::size_t length = 0;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    if (c == '=') break;
    const std::uint8_t value = kValues[static_cast<unsigned char>(c)];
    if (value == kNotBase64) continue;
    bits = bits << 6 | value;
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes[length++] = static_cast<char>(bits >> count & 0xFF);
    }
  }
  bytes.resize(length);
  return bytes;
}

std::string encodeBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::string_view group = bytes.substr(i, 3);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8 | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text.push_back(k <= group.size() ? kBase64Alphabet[bits >> (18 - 6 * k) & 0x3F] : '=');
    }
  }
  return text;
}

}  // namespace vcard
