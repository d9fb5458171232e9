#pragma once

#include "platform/foundation/cf_base.h"
#include "platform/foundation/url.h"

extern "C" {
// The caller owns what the Create and Copy functions answer. The allocator is not looked at. A CFURL is an NSURL.

// With the component escaped (slashes in it too) and, for a directory, a slash after it. What follows the path stays.
// Null when the URL has no path, or the component has no UTF-8 form.
PLATFORM_API CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                                            CFStringRef component, Boolean isDirectory);
// With the path cut after the slash before its last component; with "../" added where there is no name to cut, as in
// file:///. Null when the URL has no path.
PLATFORM_API CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);
// Unescaped, without a slash at the end; bytes that are no UTF-8 as %XX. "/" for the root, empty without a path.
PLATFORM_API CFStringRef CFURLCopyLastPathComponent(CFURLRef url);

// A file URL of the path's bytes, which must begin with a slash (else null); for a directory with a slash at the end.
PLATFORM_API CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const std::uint8_t* path,
                                                              CFIndex length, Boolean isDirectory);
// The path's bytes with a terminating zero. False for a URL that is no file URL of this computer, that has an escaped
// zero or slash, or whose path doesn't fit into size bytes. There are no base URLs to resolve against.
PLATFORM_API Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, std::uint8_t* buffer,
                                                      CFIndex size);
}
