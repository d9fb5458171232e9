#pragma once

#include "platform/foundation/attributed_string.h"
#include "platform/foundation/dictionary.h"

#include <string_view>

namespace contacts {

// The address as it is written in the country that it names, else in the default one. Each part has an attribute under
// its key, whose value is what the part is called there. Autoreleased.
NSAttributedString formattedAddress(NSDictionary address, std::string_view defaultCountryCode);

}  // namespace contacts
