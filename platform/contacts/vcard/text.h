#pragma once

#include "platform/contacts/vcard/card.h"

#include <string>
#include <string_view>
#include <vector>

// Values of lines, and texts for them. All text is UTF-8.
namespace vcard {

// The line's value with its transfer encoding and character set undone, still escaped; always valid UTF-8.
std::string decodedValue(const Line& line);
// The same of a line whose parameters are known.
std::string decodedValue(const Line& line, const std::vector<Parameter>& parameters);
// The bytes of an embedded picture or sound, whether base64 or a data: URI; empty for anything else.
std::string binaryValue(const Line& line);

// Each kind of line break becomes one "\n".
std::string withUnixBreaks(std::string_view text);
// Undoes the backslashes; line breaks come out as "\n". Version 2.1 has none but those before punctuation.
std::string unescape(std::string_view escaped, Version version);
// The parts between unescaped separators, each unescaped.
std::vector<std::string> splitFields(std::string_view escaped, char separator, Version version);
// One of them; empty when there are fewer.
std::string fieldAt(std::string_view escaped, std::size_t index, char separator, Version version);

// As version 3.0 escapes a text or one field of a structured value.
std::string escape(std::string_view text);
// As most programs write an address of the net: only what would break the line is escaped.
std::string escapeUri(std::string_view uri);

}  // namespace vcard
