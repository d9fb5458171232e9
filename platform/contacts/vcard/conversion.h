#pragma once

#include "platform/contacts/vcard/card.h"

#include <string>
#include <vector>

namespace vcard {

// Appends the line of a card of that version as it stands in one of version 3.0. A line that version 3.0 knows gets its
// form; any other line keeps its content.
void appendConverted(std::string& text, const Line& line, Version version);

// The parameters without those that say how the value is encoded.
std::vector<Parameter> withoutEncoding(std::vector<Parameter> parameters);

}  // namespace vcard
