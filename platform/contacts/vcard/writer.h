#pragma once

#include "platform/contacts/vcard/line.h"

#include <string>
#include <string_view>
#include <vector>

namespace vcard {

// Appends the line as version 3.0 writes it: CR LF at its end, folded so that no physical line is longer than 75 octets
// and no character is cut. group may be empty; value is already escaped and without line breaks.
void appendLine(std::string& card, std::string_view group, std::string_view name,
                const std::vector<Parameter>& parameters, std::string_view value);

// Appends a line's content, folded so and with its end.
void appendFolded(std::string& card, std::string_view content);

}  // namespace vcard
