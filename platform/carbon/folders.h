#pragma once

#include "platform/carbon/files.h"

inline constexpr std::int16_t kSystemDomain = -32767;
inline constexpr OSType kFrameworksFolderType = 0x6672616D;  // 'fram'
inline constexpr Boolean kCreateFolder = 1;

extern "C" {

// The folder of that type. The system's frameworks folder is the one that this library's own framework lies in; there
// is no other: fnfErr. Nothing is ever created.
PLATFORM_API OSErr FSFindFolder(std::int16_t domain, OSType folderType, Boolean createFolder, FSRef* foundRef);
}
