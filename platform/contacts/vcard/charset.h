#pragma once

#include <string>
#include <string_view>

namespace vcard {

bool isValidUtf8(std::string_view bytes);
void appendUtf8(std::string& text, char32_t c);
// Unpaired surrogates come out as U+FFFD.
std::string utf8FromUtf16(std::u16string_view units);

// Text in the named character set as valid UTF-8. An empty or unknown name, and bytes that the set doesn't have, are
// read as UTF-8 when they are that, else as windows-1252, which takes any byte.
std::string decodeCharset(std::string_view bytes, std::string_view charset);

// A whole file as text: UTF-16 (told by its byte order mark, or by the zero bytes of its first letter) becomes UTF-8, a
// byte order mark of UTF-8 is dropped, all else stays byte for byte.
std::string decodeFile(std::string bytes);

}  // namespace vcard
