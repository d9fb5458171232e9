#pragma once

#include "platform/foundation/string.h"

// A property's value as text, autoreleased: an address in the form of its country, of an account its name, a date as
// its day. Nil for nil.
NSString readableText(NSObject value);
