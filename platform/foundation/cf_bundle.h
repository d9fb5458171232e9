#pragma once

#include "platform/foundation/cf_base.h"

extern "C" {
// A bundle for the caller to release; null when the URL isn't that of a folder <Name>.framework. The allocator is not
// looked at. What was loaded stays in the process, whatever becomes of the bundle.
PLATFORM_API CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL);
// Loads <Name>.framework/<Name>, with its symbols for all to use. False when it is missing or can't be loaded.
PLATFORM_API Boolean CFBundleLoadExecutable(CFBundleRef bundle);
// The address of a variable that the framework exports, which is loaded first if need be; null when there is none.
PLATFORM_API void* CFBundleGetDataPointerForName(CFBundleRef bundle, CFStringRef symbolName);
}
