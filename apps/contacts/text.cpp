#include "apps/contacts/text.h"

#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>

namespace contacts {
namespace {

// Text is UTF-8 whatever the user's locale says of it.
locale_t utf8Locale() {
  static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return locale;
}

class InUtf8 {
 public:
  InUtf8() : before_(uselocale(utf8Locale())) {}
  InUtf8(const InUtf8&) = delete;
  InUtf8& operator=(const InUtf8&) = delete;
  ~InUtf8() { uselocale(before_); }

 private:
  locale_t before_;
};

// Calls back with each character, and with U+FFFD for each byte that is none, and its bytes.
template <class Each>
void forEachCharacter(std::string_view text, Each each) {
  const InUtf8 scope;
  while (!text.empty()) {
    auto character = static_cast<wchar_t>(static_cast<unsigned char>(text.front()));
    std::mbstate_t state{};
    std::size_t length = character < 0x80 ? 1 : std::mbrtowc(&character, text.data(), text.size(), &state);
    if (length > text.size()) {
      length = 1;
      character = L'\uFFFD';
    }
    each(character, text.substr(0, length));
    text.remove_prefix(length);
  }
}

// ASCII without control characters.
bool isPlain(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c >= ' ' && c < 0x7F; });
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  if (isPlain(text)) return text.size();
  std::size_t width = 0;
  forEachCharacter(text, [&](wchar_t character, std::string_view) {
    const int columns = wcwidth(character);
    if (columns > 0) width += static_cast<std::size_t>(columns);
  });
  return width;
}

std::string padded(std::string_view text, std::size_t width) {
  std::string result(text);
  const std::size_t own = displayWidth(text);
  if (own < width) result.append(width - own, ' ');
  return result;
}

std::string printable(std::string_view text) {
  if (isPlain(text)) return std::string(text);
  std::string result;
  forEachCharacter(text, [&](wchar_t character, std::string_view bytes) {
    if (character == L'\uFFFD') {
      result += "\xEF\xBF\xBD";
    } else if (character >= L' ' && character < 0x7F) {
      result += static_cast<char>(character);
    } else if (std::iswcntrl(static_cast<std::wint_t>(character)) != 0) {
      result += ' ';
    } else {
      result += bytes;
    }
  });
  return result;
}

bool isUtf8(std::string_view text) {
  bool isValid = true;
  forEachCharacter(text, [&](wchar_t character, std::string_view bytes) {
    if (character == L'\uFFFD' && bytes.size() == 1) isValid = false;
  });
  return isValid;
}

std::string lowerCase(std::string_view text) {
  std::string result;
  forEachCharacter(text, [&](wchar_t character, std::string_view bytes) {
    const auto lower = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(character)));
    char buffer[16];
    std::mbstate_t state{};
    const std::size_t length = lower == character ? static_cast<std::size_t>(-1) : std::wcrtomb(buffer, lower, &state);
    if (length == static_cast<std::size_t>(-1)) {
      result += bytes;
    } else {
      result.append(buffer, length);
    }
  });
  return result;
}

bool isSame(std::string_view a, std::string_view b) { return lowerCase(a) == lowerCase(b); }

bool contains(std::string_view text, std::string_view part) {
  return lowerCase(text).find(lowerCase(part)) != std::string::npos;
}

std::string base64(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const auto at = [&](std::size_t offset) {
      return i + offset < bytes.size() ? static_cast<unsigned char>(bytes[i + offset]) : 0U;
    };
    const unsigned word = at(0) << 16U | at(1) << 8U | at(2);
    text += kDigits[word >> 18U];
    text += kDigits[word >> 12U & 63U];
    text += i + 1 < bytes.size() ? kDigits[word >> 6U & 63U] : '=';
    text += i + 2 < bytes.size() ? kDigits[word & 63U] : '=';
  }
  return text;
}

bool isTerminal(int descriptor) {
  const char* type = std::getenv("TERM");
  return isatty(descriptor) == 1 && type != nullptr && std::strcmp(type, "dumb") != 0;
}

}  // namespace contacts
