#include "platform/foundation/utf8.h"

#include "platform/foundation/utf16.h"

#include <cstdint>
#include <cstring>

namespace {

using foundation::isHighSurrogate;
using foundation::isLowSurrogate;
using foundation::isSurrogate;

// Runs of ASCII, most of all text, go in blocks that the compiler turns into a few vector instructions.
constexpr std::size_t kBlock = 16;

bool isAsciiBlock(const unsigned char* bytes) {
  unsigned char any = 0;
  for (std::size_t i = 0; i < kBlock; ++i) any |= bytes[i];
  return any < 0x80;
}

bool isAsciiBlock(const char16_t* units) {
  std::uint16_t any = 0;
  for (std::size_t i = 0; i < kBlock; ++i) any |= units[i];
  return any < 0x80;
}

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// How many units the bytes make if they are valid; never fewer than the decoder writes before it meets a fault.
std::size_t countUnits(const unsigned char* bytes, const unsigned char* end) {
  std::size_t count = 0;
  for (; end - bytes >= static_cast<std::ptrdiff_t>(kBlock); bytes += kBlock) {
    unsigned char units = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
      units = static_cast<unsigned char>(units + !isContinuation(bytes[i]) + (bytes[i] >= 0xF0));
    }
    count += units;
  }
  for (; bytes != end; ++bytes) count += static_cast<std::size_t>(!isContinuation(*bytes) + (*bytes >= 0xF0));
  return count;
}

// A code point of two to four bytes, and how many they are; a length of 0 tells of bytes that are no UTF-8.
struct Decoded {
  char32_t codePoint = 0;
  std::size_t length = 0;
};

Decoded decodeMultiByte(const unsigned char* bytes, std::size_t available) {
  const unsigned char lead = bytes[0];
  if (lead >= 0xC2 && lead < 0xE0 && available >= 2 && isContinuation(bytes[1])) {
    return {(lead & 0x1Fu) << 6 | (bytes[1] & 0x3Fu), 2};
  }
  if (lead >= 0xE0 && lead < 0xF0 && available >= 3 && isContinuation(bytes[1]) && isContinuation(bytes[2])) {
    const char32_t c = (lead & 0x0Fu) << 12 | (bytes[1] & 0x3Fu) << 6 | (bytes[2] & 0x3Fu);
    if (c >= 0x800 && !isSurrogate(c)) return {c, 3};
  }
  if (lead >= 0xF0 && lead < 0xF5 && available >= 4 && isContinuation(bytes[1]) && isContinuation(bytes[2]) &&
      isContinuation(bytes[3])) {
    const char32_t c = (lead & 0x07u) << 18 | (bytes[1] & 0x3Fu) << 12 | (bytes[2] & 0x3Fu) << 6 | (bytes[3] & 0x3Fu);
    if (c >= 0x10000 && c <= 0x10FFFF) return {c, 4};
  }
  return {};
}

// A code point's bytes; at most four are written.
char* appendUtf8(char* out, char32_t c) {
  const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
  return out;
}

constexpr std::size_t utf8Length(char32_t c) { return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4; }

struct Lossy {
  static constexpr bool kReplaces = true;
};
struct Strict {
  static constexpr bool kReplaces = false;
};

template <class Policy>
std::optional<std::size_t> encode(std::u16string_view units, char* buffer, std::size_t capacity) {
  const char16_t* in = units.data();
  const char16_t* const end = in + units.size();
  char* out = buffer;
  char* const limit = buffer + capacity;
  while (in != end) {
    if (end - in >= static_cast<std::ptrdiff_t>(kBlock) && limit - out >= static_cast<std::ptrdiff_t>(kBlock) &&
        isAsciiBlock(in)) {
      for (std::size_t i = 0; i < kBlock; ++i) out[i] = static_cast<char>(in[i]);
      in += kBlock;
      out += kBlock;
      continue;
    }
    char32_t c = *in++;
    if (isSurrogate(c)) {
      if (isHighSurrogate(c) && in != end && isLowSurrogate(*in)) {
        c = foundation::fromSurrogates(static_cast<char16_t>(c), *in++);
      } else if constexpr (Policy::kReplaces) {
        c = 0xFFFD;
      } else {
        return std::nullopt;
      }
    }
    if (static_cast<std::size_t>(limit - out) < utf8Length(c)) return std::nullopt;
    out = appendUtf8(out, c);
  }
  return static_cast<std::size_t>(out - buffer);
}

}  // namespace

std::optional<std::u16string> foundation::decodeUtf8(std::string_view text) {
  const auto* in = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* const end = in + text.size();
  std::u16string units(countUnits(in, end), u'\0');
  char16_t* out = units.data();
  while (in != end) {
    if (end - in >= static_cast<std::ptrdiff_t>(kBlock) && isAsciiBlock(in)) {
      for (std::size_t i = 0; i < kBlock; ++i) out[i] = in[i];
      in += kBlock;
      out += kBlock;
      continue;
    }
    if (*in < 0x80) {
      *out++ = *in++;
      continue;
    }
    const Decoded decoded = decodeMultiByte(in, static_cast<std::size_t>(end - in));
    if (decoded.length == 0) return std::nullopt;
    in += decoded.length;
    if (decoded.codePoint < 0x10000) {
      *out++ = static_cast<char16_t>(decoded.codePoint);
    } else {
      *out++ = highSurrogate(decoded.codePoint);
      *out++ = lowSurrogate(decoded.codePoint);
    }
  }
  return units;
}

std::optional<std::size_t> foundation::encodeUtf8(std::u16string_view units, char* buffer, std::size_t capacity) {
  return encode<Strict>(units, buffer, capacity);
}

std::string foundation::encodeUtf8Lossily(std::u16string_view units) {
  std::string bytes(3 * units.size(), '\0');
  bytes.resize(*encode<Lossy>(units, bytes.data(), bytes.size()));
  return bytes;
}
