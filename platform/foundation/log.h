#pragma once

#include "platform/foundation/string.h"

#include <concepts>

// Runs instead of the writing, on the logging thread; message is without time and program, and has no line end.
using NSLogHook = void (*)(NSString message);

extern "C" {
PLATFORM_API void NSLogWithArguments(NSString format, const NSObject* arguments, NSUInteger count);
// Null takes the hook away.
PLATFORM_API void NSSetLogHook(NSLogHook hook);
}

// Writes one line to the standard error stream: time, program, process and thread, and the message, a format as
// NSString's stringWithFormat takes. Lines of several threads don't mix. Nothing happens while there is no platform.
template <std::convertible_to<NSObject>... Arguments>
void NSLog(NSString format, Arguments... arguments) {
  if (!PLATFORM_HAS(NSLogWithArguments)) return;
  const NSObject list[] = {NSObject(arguments)..., NSObject()};
  NSLogWithArguments(format, list, sizeof...(arguments));
}
