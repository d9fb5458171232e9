#include "platform/contacts/vcard/charset.h"

#include "platform/contacts/vcard/ascii.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <utility>

namespace vcard {
namespace {

// windows-1252 from 0x80 to 0x9F; the five bytes that it leaves open keep their number.
constexpr std::array<char16_t, 32> kWindows1252{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

std::string fromWindows1252(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char byte : bytes) {
    const auto c = static_cast<unsigned char>(byte);
    appendUtf8(text, c >= 0x80 && c < 0xA0 ? kWindows1252[c - 0x80U] : c);
  }
  return text;
}

std::string fromUtf16(std::string_view bytes, bool bigEndian) {
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto first = static_cast<unsigned char>(bytes[2 * i]);
    const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
    units[i] = static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
  }
  return utf8FromUtf16(units);
}

class Converter {
 public:
  explicit Converter(const std::string& charset) : handle_(iconv_open("UTF-8", charset.c_str())) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (isOpen()) iconv_close(handle_);
  }

  [[nodiscard]] bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  std::optional<std::string> convert(std::string bytes) {
    std::string text;
    char* in = bytes.data();
    std::size_t inLeft = bytes.size();
    while (true) {
      std::array<char, 1024> chunk;
      char* out = chunk.data();
      std::size_t outLeft = chunk.size();
      const bool isFlush = inLeft == 0;  // what a multi-byte set still holds back
      const std::size_t result = iconv(handle_, isFlush ? nullptr : &in, &inLeft, &out, &outLeft);
      const int error = errno;
      text.append(chunk.data(), chunk.size() - outLeft);
      if (result != static_cast<std::size_t>(-1)) {
        if (isFlush) return text;
      } else if (error != E2BIG) {
        return std::nullopt;
      }
    }
  }

 private:
  iconv_t handle_;
};

std::optional<std::string> convert(std::string_view bytes, const std::string& charset) {
  constexpr std::size_t kLongestName = 40;
  const bool isName =
      charset.size() <= kLongestName && std::ranges::all_of(charset, [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.' || c == ':';
      });
  if (!isName) return std::nullopt;
  Converter converter(charset);
  if (!converter.isOpen()) return std::nullopt;
  return converter.convert(std::string(bytes));
}

}  // namespace

void appendUtf8(std::string& text, char32_t c) {
  if (c < 0x80) {
    text.push_back(static_cast<char>(c));
    return;
  }
  const std::size_t length = c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
  std::array<char, 4> bytes{};
  for (std::size_t i = length; i-- > 1; c >>= 6) bytes[i] = static_cast<char>(0x80 | (c & 0x3F));
  bytes[0] = static_cast<char>(0xF00U >> length | c);
  text.append(bytes.data(), length);
}

bool isValidUtf8(std::string_view bytes) {
  if (isAscii(bytes)) return true;
  std::size_t i = 0;
  while (i < bytes.size()) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      ++i;
      continue;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() - i < length) return false;
    char32_t c = lead & (0x7FU >> length);
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(bytes[i + k]);
      if ((next & 0xC0) != 0x80) return false;
      c = c << 6 | (next & 0x3F);
    }
    const bool isOverlong = (length == 3 && c < 0x800) || (length == 4 && c < 0x10000);
    if (isOverlong || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return false;
    i += length;
  }
  return true;
}

std::string utf8FromUtf16(std::u16string_view units) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string text;
  text.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t c = units[i];
    if (c >= 0xD800 && c < 0xE000) {
      const char32_t next = c < 0xDC00 && i + 1 < units.size() ? units[i + 1] : 0;
      if (next >= 0xDC00 && next < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00);
        ++i;
      } else {
        c = kReplacement;
      }
    }
    appendUtf8(text, c);
  }
  return text;
}

std::string decodeCharset(std::string_view bytes, std::string_view charset) {
  const std::string name = uppercased(trimmed(charset));
  // Windows programs say ISO-8859-1 and mean their own superset of it.
  if (name == "ISO-8859-1" || name == "WINDOWS-1252" || name == "LATIN1") return fromWindows1252(bytes);
  if (!name.empty() && name != "UTF-8" && name != "UTF8" && name != "US-ASCII") {
    if (auto text = convert(bytes, name)) return *std::move(text);
  }
  return isValidUtf8(bytes) ? std::string(bytes) : fromWindows1252(bytes);
}

std::string decodeFile(std::string bytes) {
  using namespace std::string_view_literals;
  const std::string_view view = bytes;
  if (view.starts_with("\xEF\xBB\xBF")) return bytes.substr(3);
  if (view.starts_with("\xFE\xFF")) return fromUtf16(view.substr(2), true);
  if (view.starts_with("\xFF\xFE")) return fromUtf16(view.substr(2), false);
  if (view.starts_with("\0B"sv) || view.starts_with("\0b"sv)) return fromUtf16(view, true);
  if (view.starts_with("B\0"sv) || view.starts_with("b\0"sv)) return fromUtf16(view, false);
  return bytes;
}

}  // namespace vcard
