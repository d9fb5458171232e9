#pragma once

#include "platform/foundation/string.h"

#include <string>
#include <string_view>

namespace contacts {

// Autoreleased; utf8 must be valid.
inline NSString makeString(std::string_view utf8) { return NSString::stringWithUTF8(utf8); }
std::u16string unitsOf(NSString string);
// Zero characters included; unpaired surrogates come out as U+FFFD, and nil as an empty text.
std::string utf8Of(NSString string);
// For messages: bytes that are no UTF-8 come out as \xNN.
std::string printable(std::string_view bytes);

}  // namespace contacts
