#pragma once

#include "platform/foundation/cf_base.h"

// What a dictionary does with its keys and values. A null function does nothing; without equal they are compared by
// address, and without hash the address is the hash.
struct CFDictionaryKeyCallBacks {
  CFIndex version;
  const void* (*retain)(CFAllocatorRef allocator, const void* value);
  void (*release)(CFAllocatorRef allocator, const void* value);
  CFStringRef (*copyDescription)(const void* value);
  Boolean (*equal)(const void* first, const void* second);
  CFHashCode (*hash)(const void* value);
};

struct CFDictionaryValueCallBacks {
  CFIndex version;
  const void* (*retain)(CFAllocatorRef allocator, const void* value);
  void (*release)(CFAllocatorRef allocator, const void* value);
  CFStringRef (*copyDescription)(const void* value);
  Boolean (*equal)(const void* first, const void* second);
};

extern "C" {
// Owned by the caller. The callbacks are copied; null stands for callbacks that are all null. capacity is a hint, 0 for
// none.
PLATFORM_API CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                              const CFDictionaryKeyCallBacks* keyCallBacks,
                                                              const CFDictionaryValueCallBacks* valueCallBacks);
// Where an equal key is present it stays and only the value is replaced.
PLATFORM_API void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
PLATFORM_API void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
// Null when the key is absent.
PLATFORM_API const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
PLATFORM_API CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
}
