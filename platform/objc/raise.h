#pragma once

#include "platform/objc/runtime.h"

namespace objc {

// Throws the NSInvalidArgumentException of a message that the receiver has no method for. Defined beside NSException.
[[noreturn]] void raiseUnrecognizedSelector(Object* self, Selector selector);

}  // namespace objc
