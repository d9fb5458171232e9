#pragma once

#include "platform/contacts/constants.h"
#include "platform/objc/retained.h"

#include <string>
#include <string_view>

// Values of custom properties as text, one form for each single-value type.
namespace contacts {

// Whether the value, with all that it holds, can be written: strings, numbers, dates, data, date components, and arrays
// and dictionaries (with strings as keys) of these, not too deeply nested.
bool canBeWritten(NSObject value);
std::string typedText(NSObject value);
// Nil for a text that no value of the type has.
Retained<NSObject> valueFromText(ABPropertyType type, std::string_view text);

}  // namespace contacts
