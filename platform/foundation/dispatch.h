#pragma once

#include "platform/objc/api.h"

// Work for other threads.
using dispatch_queue_t = struct dispatch_queue_s*;

extern "C" {

// The process's queue of the default priority (0). Null for any other; flags are for the future and must be 0.
PLATFORM_API dispatch_queue_t dispatch_get_global_queue(long identifier, unsigned long flags);
// Runs work(context) on some other thread, with an autorelease pool of its own. Work may run in any order and side by
// side. Only where no thread can be had at all does it run here, before the function returns.
PLATFORM_API void dispatch_async(dispatch_queue_t queue, void* context, void (*work)(void* context));
}
