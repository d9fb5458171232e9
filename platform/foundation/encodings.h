#pragma once

#include "platform/foundation/cf_base.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace foundation {

// The text of bytes in an encoding that cf_string.h lists; nullopt for bytes that are invalid in it and for any other
// encoding. With isExternal, UTF-16 heeds a byte order mark and is big-endian without one; UTF-32 always heeds a mark,
// and isExternal tells the order without one.
std::optional<std::u16string> decode(std::string_view bytes, CFStringEncoding encoding, bool isExternal);

// Fills the buffer, in the machine's byte order, and answers the number of bytes; nullopt when they don't fit, when the
// encoding lacks a character and when it isn't listed.
std::optional<std::size_t> encode(std::u16string_view units, CFStringEncoding encoding, char* buffer,
                                  std::size_t capacity);

}  // namespace foundation
