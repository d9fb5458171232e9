#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace foundation {

// Nullopt for bytes that are no strict UTF-8: overlong forms, surrogates and code points beyond U+10FFFF are refused.
std::optional<std::u16string> decodeUtf8(std::string_view bytes);

// Fills the buffer and answers the number of bytes; nullopt when they don't fit, or at an unpaired surrogate.
std::optional<std::size_t> encodeUtf8(std::u16string_view units, char* buffer, std::size_t capacity);
// Unpaired surrogates become U+FFFD.
std::string encodeUtf8Lossily(std::u16string_view units);

}  // namespace foundation
