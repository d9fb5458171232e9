#pragma once

#include "platform/contacts/schema.h"
#include "platform/foundation/error.h"
#include "platform/objc/retained.h"

#include <optional>

namespace contacts {

// The value as the property keeps it, immutable and in the form in which it will be read back; nil for one that is no
// value (an empty text, no entries). A value of the wrong type raises NSInvalidArgumentException; one that is of the
// right type but can't be kept gives nothing, with the error filled.
std::optional<Retained<NSObject>> checkedValue(const Property& property, NSObject value, NSError* error);

}  // namespace contacts
