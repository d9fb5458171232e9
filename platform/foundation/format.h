#pragma once

#include "platform/foundation/string.h"

#include <string>

namespace foundation {

// The format with each %@ replaced by the next argument's description ("(null)" for nil) and %% by a percent sign.
// Raises NSInvalidArgumentException for any other directive, for too few arguments and for a nil format.
std::u16string formatted(NSString format, const NSObject* arguments, NSUInteger count);

}  // namespace foundation
