#include "platform/contacts/strings.h"

#include "platform/contacts/vcard/charset.h"

#include <cstdio>

namespace contacts {

std::u16string unitsOf(NSString string) {
  std::u16string units(string.length(), u'\0');
  if (!units.empty()) string.getCharacters(units.data(), NSMakeRange(0, units.size()));
  return units;
}

std::string utf8Of(NSString string) { return vcard::utf8FromUtf16(unitsOf(string)); }

std::string printable(std::string_view bytes) {
  if (vcard::isValidUtf8(bytes)) return std::string(bytes);
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= ' ' && byte < 0x7F) {
      text.push_back(c);
    } else {
      char escaped[5];
      std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(byte));
      text += escaped;
    }
  }
  return text;
}

}  // namespace contacts
