#pragma once

#include "platform/foundation/cf_base.h"

using CFTimeInterval = double;  // seconds

// What ended a run.
inline constexpr std::int32_t kCFRunLoopRunFinished = 1;  // there is nothing to wait for
inline constexpr std::int32_t kCFRunLoopRunTimedOut = 3;
inline constexpr std::int32_t kCFRunLoopRunHandledSource = 4;

extern "C" {

PLATFORM_API extern const CFStringRef kCFRunLoopDefaultMode;

// Serves the main thread's sources for that time, or until the first was served. With 0 seconds it serves what is ready
// and returns. Sources belong to every mode. On another thread, which has none, and while nobody added a source, it
// returns at once.
PLATFORM_API std::int32_t CFRunLoopRunInMode(CFStringRef mode, CFTimeInterval seconds,
                                             Boolean returnAfterSourceHandled);
}
