#pragma once

#include "platform/contacts/constants.h"
#include "platform/foundation/error.h"

#include <string>

namespace contacts {

// Fills the caller's place for an error, if there is one, with an error of the framework's domain; answers false. extra
// may name what userInfo has besides the message.
bool fail(NSError* error, NSInteger code, const std::string& message, NSString extraKey = nullptr,
          NSObject extra = nullptr);

}  // namespace contacts
