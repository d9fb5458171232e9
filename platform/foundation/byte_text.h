#pragma once

#include "platform/foundation/string.h"

#include <string>
#include <string_view>

namespace foundation {

// The text that bytes stand for that needn't be text: a file's name, an unescaped URL. Bytes that aren't UTF-8 as a
// whole give their ASCII part, with each other byte as %XX, so that different bytes hardly ever look alike.
inline NSString textOfBytes(std::string_view bytes) {
  if (NSString text = NSString::stringWithUTF8(bytes)) return text;
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      escaped += c;
    } else {
      escaped += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
  }
  return NSString::stringWithUTF8(escaped);
}

}  // namespace foundation
