#pragma once

#include "platform/carbon/carbon_base.h"

// A point on a clock that never goes back, in nanoseconds. Only differences mean anything.
using AbsoluteTime = std::uint64_t;
// Positive: milliseconds. Negative: microseconds.
using Duration = std::int32_t;

extern "C" {

PLATFORM_API AbsoluteTime UpTime();
PLATFORM_API AbsoluteTime AddDurationToAbsolute(Duration duration, AbsoluteTime base);
// Blocks the calling thread until that time; signals don't cut it short.
PLATFORM_API OSStatus MPDelayUntil(AbsoluteTime* expirationTime);
}
