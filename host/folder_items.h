#pragma once

#include "host/value.h"

#include <filesystem>

struct FSRef;
struct FSSpec;
struct HFSUniStr255;

// The class "FolderItem": the path of a file or folder that need not exist.
namespace host {

// Relative paths are taken from the working folder.
Value folderItem(const std::filesystem::path& path);
std::filesystem::path pathOf(const Value& folderItem);

// With one reference for the caller; null when the FSSpec or the parent means nothing.
REALfolderItem newFolderItem(const FSSpec* spec);
REALfolderItem newFolderItem(const FSRef* parent, const HFSUniStr255* name);
// False for what doesn't exist.
bool fillSpec(FSSpec* spec, REALfolderItem item);
// The item itself; with a place for a name, the folder that it is in, or would be in, and its name there. False when
// item or folder doesn't exist.
bool fillRef(REALfolderItem item, FSRef* ref, HFSUniStr255* name);

}  // namespace host
