#pragma once

#include "platform/foundation/string.h"

namespace contacts {

// What a built-in property, label or key is called in English; anything else, nil included, comes back as it is.
NSString localizedPropertyOrLabel(NSString text);

}  // namespace contacts
