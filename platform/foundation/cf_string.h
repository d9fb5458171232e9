#pragma once

#include "platform/foundation/cf_base.h"
#include "platform/foundation/string.h"

// A constant string as a Core Foundation reference.
#define CFSTR(text) (bridge<CFStringRef>(text##_ns))

enum : CFStringEncoding {
  kCFStringEncodingMacRoman = 0,
  kCFStringEncodingUnicode = 0x0100,  // UTF-16
  kCFStringEncodingISOLatin1 = 0x0201,
  kCFStringEncodingASCII = 0x0600,
  kCFStringEncodingUTF8 = 0x08000100,
  kCFStringEncodingUTF32 = 0x0C000100,
};

using CFStringNormalizationForm = CFIndex;
inline constexpr CFStringNormalizationForm kCFStringNormalizationFormD = 0;

struct CFRange {
  CFIndex location;
  CFIndex length;
};

constexpr CFRange CFRangeMake(CFIndex location, CFIndex length) { return {location, length}; }

extern "C" {
// The caller owns what the Create functions answer. They answer null for bytes that are invalid in the encoding and for
// an encoding that is not listed above. The allocator is not looked at.

// Text up to its zero byte. A byte order mark before UTF-8 is skipped.
PLATFORM_API CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                   CFStringEncoding encoding);
// UTF-16 units as they are, paired or not.
PLATFORM_API CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const char16_t* characters,
                                                      CFIndex count);
// With isExternal, UTF-16 and UTF-32 heed a byte order mark, and are big-endian without one.
PLATFORM_API CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const std::uint8_t* bytes, CFIndex count,
                                                 CFStringEncoding encoding, Boolean isExternal);
// capacity limits nothing.
PLATFORM_API CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                          CFStringRef string);

// In UTF-16 units.
PLATFORM_API CFIndex CFStringGetLength(CFStringRef string);
PLATFORM_API void CFStringGetCharacters(CFStringRef string, CFRange range, char16_t* buffer);
// False, with an empty text in the buffer, when the text and its zero byte don't fit into size bytes or the encoding
// lacks a character (UTF-8: an unpaired surrogate). Zero characters in the text are copied like any other.
PLATFORM_API Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding);
// In place. Form D, the canonical decomposition, is the only one; another raises NSInvalidArgumentException.
PLATFORM_API void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form);
}
