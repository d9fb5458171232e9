#include "platform/carbon/folders.h"

#include <filesystem>
#include <string>

#include <dlfcn.h>

namespace {

// Lies in this library for certain: a function's address may be that of the program's stub for it.
const char anchor = 0;

}  // namespace

OSErr FSFindFolder(std::int16_t domain, OSType folderType, Boolean, FSRef* foundRef) {
  Dl_info library{};
  if (domain != kSystemDomain || folderType != kFrameworksFolderType || dladdr(&anchor, &library) == 0) return fnfErr;
  // Frameworks/Carbon.framework/Carbon; links aren't followed before the folder is found.
  const std::string folder = std::filesystem::absolute(library.dli_fname).parent_path().parent_path().string();
  return FSPathMakeRef(reinterpret_cast<const std::uint8_t*>(folder.c_str()), foundRef, nullptr);
}
