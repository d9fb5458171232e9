#include "platform/foundation/utf8.h"

#include "platform/foundation/utf16.h"

#include <cstdint>
#include <cstring>
#include <iterator>

namespace {

using foundation::isHighSurrogate;
using foundation::isLowSurrogate;
using foundation::isSurrogate;

// Runs of ASCII, most of all text, go in blocks: a few vector instructions each. What follows a block that isn't ASCII
// alone goes one by one for as long before the next block is tried.
constexpr std::size_t kBlock = 16;
using ByteBlock = std::uint8_t __attribute__((vector_size(kBlock)));
using UnitBlock = std::uint16_t __attribute__((vector_size(2 * kBlock)));

// Whether there is a block and all of its values are below 0x80; mask has the bits of a word of them that are not.
template <class Block, class T>
bool takeAsciiBlock(const T* in, const T* end, std::uint64_t mask, Block& block) {
  if (end - in < static_cast<std::ptrdiff_t>(kBlock)) return false;
  std::uint64_t words[sizeof block / sizeof mask];
  std::memcpy(words, in, sizeof words);
  std::uint64_t any = 0;
  for (const std::uint64_t word : words) any |= word;
  std::memcpy(&block, in, sizeof block);
  return (any & mask) == 0;
}

bool takeAsciiBlock(const unsigned char* in, const unsigned char* end, ByteBlock& block) {
  return takeAsciiBlock(in, end, 0x8080808080808080, block);
}

bool takeAsciiBlock(const char16_t* in, const char16_t* end, UnitBlock& block) {
  return takeAsciiBlock(in, end, 0xFF80FF80FF80FF80, block);
}

// Where the values that go one by one end.
template <class T>
const T* blockEnd(const T* in, const T* end) {
  return end - in < static_cast<std::ptrdiff_t>(kBlock) ? end : in + kBlock;
}

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

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

enum class Unpaired { kRefused, kReplaced };

// The bytes of the units before stop (a pair may end after it), without a check of the room; answers the end of the
// bytes, null at an unpaired surrogate that is refused.
template <Unpaired kUnpaired>
char* encodeUnits(const char16_t*& in, const char16_t* stop, const char16_t* end, char* out) {
  const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
  while (in < stop) {
    char32_t c = *in++;
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0 | c >> 6);
      put(0x80 | (c & 0x3F));
    } else if (isHighSurrogate(c) && in != end && isLowSurrogate(*in)) {
      c = foundation::fromSurrogates(static_cast<char16_t>(c), *in++);
      put(0xF0 | c >> 18);
      put(0x80 | (c >> 12 & 0x3F));
      put(0x80 | (c >> 6 & 0x3F));
      put(0x80 | (c & 0x3F));
    } else {
      if (isSurrogate(c)) {
        if constexpr (kUnpaired == Unpaired::kRefused) return nullptr;
        c = 0xFFFD;
      }
      put(0xE0 | c >> 12);
      put(0x80 | (c >> 6 & 0x3F));
      put(0x80 | (c & 0x3F));
    }
  }
  return out;
}

template <Unpaired kUnpaired>
std::optional<std::size_t> encode(std::u16string_view units, char* buffer, std::size_t capacity) {
  const char16_t* in = units.data();
  const char16_t* const end = in + units.size();
  char* out = buffer;
  char* const limit = buffer + capacity;
  while (in != end) {
    UnitBlock block;
    if (limit - out >= static_cast<std::ptrdiff_t>(kBlock) && takeAsciiBlock(in, end, block)) {
      const ByteBlock bytes = __builtin_convertvector(block, ByteBlock);
      std::memcpy(out, &bytes, sizeof bytes);
      in += kBlock;
      out += kBlock;
      continue;
    }
    char aside[4 * kBlock];  // where room is short the bytes are made here first
    const bool roomy = limit - out >= static_cast<std::ptrdiff_t>(sizeof aside);
    char* const start = roomy ? out : aside;
    const char* const made = encodeUnits<kUnpaired>(in, blockEnd(in, end), end, start);
    if (made == nullptr) return std::nullopt;
    const std::ptrdiff_t count = made - start;
    if (!roomy) {
      if (limit - out < count) return std::nullopt;
      std::memcpy(out, aside, static_cast<std::size_t>(count));
    }
    out += count;
  }
  return static_cast<std::size_t>(out - buffer);
}

// Writes no more units than there are bytes, and answers how many.
std::optional<std::size_t> decode(std::string_view text, char16_t* units) {
  const auto* in = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* const end = in + text.size();
  char16_t* out = units;
  while (in != end) {
    ByteBlock block;
    if (takeAsciiBlock(in, end, block)) {
      const UnitBlock widened = __builtin_convertvector(block, UnitBlock);
      std::memcpy(out, &widened, sizeof widened);
      in += kBlock;
      out += kBlock;
      continue;
    }
    for (const unsigned char* const stop = blockEnd(in, end); in < stop;) {
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
        *out++ = foundation::highSurrogate(decoded.codePoint);
        *out++ = foundation::lowSurrogate(decoded.codePoint);
      }
    }
  }
  return static_cast<std::size_t>(out - units);
}

}  // namespace

std::optional<std::u16string> foundation::decodeUtf8(std::string_view text) {
  if (char16_t buffer[256]; text.size() <= std::size(buffer)) {
    const auto count = decode(text, buffer);
    return count ? std::optional(std::u16string(buffer, *count)) : std::nullopt;
  }
  std::optional units(std::u16string(text.size(), u'\0'));
  const auto count = decode(text, units->data());
  if (!count) return std::nullopt;
  units->resize(*count);
  units->shrink_to_fit();
  return units;
}

std::optional<std::size_t> foundation::encodeUtf8(std::u16string_view units, char* buffer, std::size_t capacity) {
  return encode<Unpaired::kRefused>(units, buffer, capacity);
}

std::string foundation::encodeUtf8Lossily(std::u16string_view units) {
  std::string bytes(3 * units.size(), '\0');
  bytes.resize(*encode<Unpaired::kReplaced>(units, bytes.data(), bytes.size()));
  return bytes;
}
