#pragma once

#include <cstdint>

#include "platform/objc/handle.h"

// Core Foundation's references. Each is a framework object under another type: a reference and a handle to the same
// object may be exchanged freely.
using CFTypeRef = const void*;
using CFStringRef = const struct OpaqueCFString*;
using CFMutableStringRef = struct OpaqueCFString*;
using CFDictionaryRef = const struct OpaqueCFDictionary*;
using CFMutableDictionaryRef = struct OpaqueCFDictionary*;
using CFArrayRef = const struct OpaqueCFArray*;
using CFURLRef = const struct OpaqueCFURL*;
using CFBundleRef = struct OpaqueCFBundle*;
using CFAllocatorRef = const struct OpaqueCFAllocator*;

using CFIndex = std::intptr_t;
using CFHashCode = std::uintptr_t;
using CFStringEncoding = std::uint32_t;
using Boolean = unsigned char;

using NSInteger = std::intptr_t;
using NSUInteger = std::uintptr_t;
inline constexpr NSUInteger NSNotFound = static_cast<NSUInteger>(INTPTR_MAX);

// There is one allocator, the standard one.
inline constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;
inline constexpr CFAllocatorRef kCFAllocatorSystemDefault = nullptr;

template <objc::HandleType Handle>
Handle bridge(CFTypeRef reference) {
  return Handle(static_cast<objc::Object*>(const_cast<void*>(reference)));
}

template <class Reference>
Reference bridge(NSObject handle) {
  return reinterpret_cast<Reference>(handle.get());
}

extern "C" {
PLATFORM_API CFTypeRef CFRetain(CFTypeRef reference);
PLATFORM_API void CFRelease(CFTypeRef reference);
}
