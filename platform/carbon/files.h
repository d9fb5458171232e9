#pragma once

#include "platform/carbon/carbon_base.h"
#include "platform/foundation/cf_base.h"

// References to files and folders. There is one volume; its root folder is "/".
//
// File names cross these functions in canonically decomposed form, at most 255 UTF-16 units; bytes of a name that are
// not UTF-8 appear as %XX. Whatever form a name has on disk, it is found by its decomposed form. A colon is an ordinary
// character here, and no name holds a slash.

// An opaque reference to an item that existed when the reference was made. It means something only in the process that
// made it. Functions answer fnfErr once the item is deleted or moved, and errFSBadFSRef for what never was a reference.
struct FSRef {
  std::uint8_t hidden[80];
};

struct HFSUniStr255 {
  std::uint16_t length;
  char16_t unicode[255];
};

// A folder's node id and the name of an item in it: a length byte and Mac Roman text.
struct FSSpec {
  std::int16_t vRefNum;
  std::int32_t parID;
  std::uint8_t name[64];
};

struct FSCatalogInfo {
  std::uint32_t nodeID;
};

using FSCatalogInfoBitmap = std::uint32_t;
inline constexpr FSCatalogInfoBitmap kFSCatInfoNone = 0;
inline constexpr FSCatalogInfoBitmap kFSCatInfoNodeID = 0x10;

inline constexpr std::uint32_t fsRtParID = 1;  // the parent of the root folder, which is no folder itself
inline constexpr std::uint32_t fsRtDirID = 2;  // the root folder

extern "C" {

// Checks the reference and fills whatever was asked for; each out pointer may be null. The root folder's name is "/"
// and its parent a reference to nothing (80 zero bytes). bdNamErr when a name doesn't fit its receiver.
PLATFORM_API OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                                    HFSUniStr255* outName, FSSpec* fsSpec, FSRef* parentRef);
// The item of that name in the folder; of a symbolic link, the link itself. fnfErr when it doesn't exist.
PLATFORM_API OSErr FSMakeFSRefUnicode(const FSRef* parentRef, std::uintptr_t nameLength, const char16_t* name,
                                      std::uint32_t textEncodingHint, FSRef* newRef);
PLATFORM_API OSErr FSpMakeFSRef(const FSSpec* source, FSRef* newRef);
// The item at the path, symbolic links followed. isDirectory may be null.
PLATFORM_API OSErr FSPathMakeRef(const std::uint8_t* path, FSRef* ref, Boolean* isDirectory);
// The item's path with a terminating NUL. pathTooLongErr when it doesn't fit.
PLATFORM_API OSErr FSRefMakePath(const FSRef* ref, std::uint8_t* path, std::uint32_t maxPathSize);

// The item of a file URL, symbolic links followed; false when it is no file URL or nothing is there.
PLATFORM_API Boolean CFURLGetFSRef(CFURLRef url, FSRef* fsRef);
// A file URL for the caller to release, with a trailing slash for a folder; null when the item is gone.
PLATFORM_API CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* fsRef);
}
