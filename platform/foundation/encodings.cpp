#include "platform/foundation/encodings.h"

#include "platform/foundation/cf_string.h"
#include "platform/foundation/utf16.h"
#include "platform/foundation/utf8.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::array<char16_t, 128> kMacRoman{
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7};

struct MacRomanUnit {
  char16_t unit;
  unsigned char byte;
};

constexpr auto kMacRomanByUnit = [] {
  std::array<MacRomanUnit, kMacRoman.size() + 1> units{};
  for (std::size_t i = 0; i < kMacRoman.size(); ++i) units[i] = {kMacRoman[i], static_cast<unsigned char>(0x80 + i)};
  units.back() = {0x2126, 0xBD};  // the ohm sign, which equals the omega of the table
  std::ranges::sort(units, {}, &MacRomanUnit::unit);
  return units;
}();

template <class Unit>
Unit swapBytes(Unit unit) {
  auto bytes = std::bit_cast<std::array<unsigned char, sizeof(Unit)>>(unit);
  std::ranges::reverse(bytes);
  return std::bit_cast<Unit>(bytes);
}

template <class Unit>
Unit load(const char* bytes) {
  Unit unit;
  std::memcpy(&unit, bytes, sizeof unit);
  return unit;
}

// Takes a byte order mark off the front and answers whether the rest is in the other byte order than the machine's.
template <class Unit>
bool takeByteOrder(std::string_view& bytes, bool isExternal) {
  constexpr Unit kMark = 0xFEFF;
  const Unit first = bytes.size() < sizeof(Unit) ? Unit{} : load<Unit>(bytes.data());
  if (first == kMark || first == swapBytes(kMark)) {
    bytes.remove_prefix(sizeof(Unit));
    return first != kMark;
  }
  return isExternal && std::endian::native == std::endian::little;
}

std::optional<std::u16string> decodeUtf16(std::string_view bytes, bool isExternal) {
  if (isExternal && bytes.size() == 1) return std::nullopt;
  const bool swapped = isExternal && takeByteOrder<char16_t>(bytes, isExternal);
  std::u16string units(bytes.size() / 2, u'\0');
  std::memcpy(units.data(), bytes.data(), 2 * units.size());
  if (swapped) std::ranges::transform(units, units.begin(), swapBytes<char16_t>);
  return units;
}

std::optional<std::u16string> decodeUtf32(std::string_view bytes, bool isExternal) {
  const bool swapped = takeByteOrder<char32_t>(bytes, isExternal);
  std::u16string units;
  units.reserve(bytes.size() / 4);
  for (; bytes.size() >= 4; bytes.remove_prefix(4)) {
    auto c = load<char32_t>(bytes.data());
    if (swapped) c = swapBytes(c);
    if (c > 0x10FFFF || foundation::isSurrogate(c)) return std::nullopt;
    if (c < 0x10000) {
      units += static_cast<char16_t>(c);
    } else {
      units += foundation::highSurrogate(c);
      units += foundation::lowSurrogate(c);
    }
  }
  return units;
}

// ASCII takes the upper half too, as the platform does.
std::u16string decodeLatin1(std::string_view bytes) {
  std::u16string units(bytes.size(), u'\0');
  std::ranges::transform(bytes, units.begin(), [](char byte) { return static_cast<unsigned char>(byte); });
  return units;
}

std::u16string decodeMacRoman(std::string_view bytes) {
  std::u16string units = decodeLatin1(bytes);
  for (char16_t& unit : units) {
    if (unit >= 0x80) unit = kMacRoman[unit - 0x80u];
  }
  return units;
}

std::optional<std::size_t> encodeUtf16(std::u16string_view units, char* buffer, std::size_t capacity) {
  if (capacity / 2 < units.size()) return std::nullopt;
  if (!units.empty()) std::memcpy(buffer, units.data(), 2 * units.size());
  return 2 * units.size();
}

std::optional<std::size_t> encodeUtf32(std::u16string_view units, char* buffer, std::size_t capacity) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t c = units[i];
    if (foundation::isSurrogate(c)) {
      if (!foundation::isHighSurrogate(c) || i + 1 == units.size() || !foundation::isLowSurrogate(units[i + 1])) {
        return std::nullopt;
      }
      c = foundation::fromSurrogates(units[i], units[i + 1]);
      ++i;
    }
    if (capacity - written < 4) return std::nullopt;
    std::memcpy(buffer + written, &c, 4);
    written += 4;
  }
  return written;
}

std::optional<unsigned char> macRomanByte(char16_t unit) {
  if (unit < 0x80) return static_cast<unsigned char>(unit);
  const auto found = std::ranges::lower_bound(kMacRomanByUnit, unit, {}, &MacRomanUnit::unit);
  if (found == kMacRomanByUnit.end() || found->unit != unit) return std::nullopt;
  return found->byte;
}

template <char16_t Limit>
std::optional<unsigned char> byteBelow(char16_t unit) {
  if (unit >= Limit) return std::nullopt;
  return static_cast<unsigned char>(unit);
}

template <class ByteOf>
std::optional<std::size_t> encodeBytes(std::u16string_view units, char* buffer, std::size_t capacity, ByteOf byteOf) {
  if (capacity < units.size()) return std::nullopt;
  for (const char16_t unit : units) {
    const std::optional<unsigned char> byte = byteOf(unit);
    if (!byte) return std::nullopt;
    *buffer++ = static_cast<char>(*byte);
  }
  return units.size();
}

}  // namespace

std::optional<std::u16string> foundation::decode(std::string_view bytes, CFStringEncoding encoding, bool isExternal) {
  switch (encoding) {
    case kCFStringEncodingUTF8:
      return decodeUtf8(isExternal && bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes);
    case kCFStringEncodingUnicode:
      return decodeUtf16(bytes, isExternal);
    case kCFStringEncodingUTF32:
      return decodeUtf32(bytes, isExternal);
    case kCFStringEncodingASCII:
    case kCFStringEncodingISOLatin1:
      return decodeLatin1(bytes);
    case kCFStringEncodingMacRoman:
      return decodeMacRoman(bytes);
    default:
      return std::nullopt;
  }
}

std::optional<std::size_t> foundation::encode(std::u16string_view units, CFStringEncoding encoding, char* buffer,
                                              std::size_t capacity) {
  switch (encoding) {
    case kCFStringEncodingUTF8:
      return encodeUtf8(units, buffer, capacity);
    case kCFStringEncodingUnicode:
      return encodeUtf16(units, buffer, capacity);
    case kCFStringEncodingUTF32:
      return encodeUtf32(units, buffer, capacity);
    case kCFStringEncodingASCII:
      return encodeBytes(units, buffer, capacity, byteBelow<0x80>);
    case kCFStringEncodingISOLatin1:
      return encodeBytes(units, buffer, capacity, byteBelow<0x100>);
    case kCFStringEncodingMacRoman:
      return encodeBytes(units, buffer, capacity, macRomanByte);
    default:
      return std::nullopt;
  }
}
