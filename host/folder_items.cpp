#include "host/folder_items.h"

#include "host/built_in_classes.h"
#include "host/class_records.h"
#include "host/classes.h"
#include "host/strings.h"
#include "platform/carbon/files.h"
#include "platform/foundation/cf_string.h"

#include <algorithm>
#include <array>
#include <climits>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

namespace host {

namespace {

// Null until the item is said to be somewhere.
struct ItemData {
  std::filesystem::path* path;
};

std::filesystem::path pathOf(REALobject item) {
  const std::filesystem::path* path = dataOf<ItemData>(item, folderItemDefinition()).path;
  return path == nullptr ? std::filesystem::path() : *path;
}

// A path with a trailing slash names the folder before it.
std::filesystem::path withoutTrailingSlash(const std::filesystem::path& path) {
  return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
}

std::optional<FSRef> refOf(const std::filesystem::path& path) {
  if (path.native().find('\0') != std::string::npos) return std::nullopt;
  FSRef ref;
  const auto* text = reinterpret_cast<const std::uint8_t*>(path.c_str());
  return FSPathMakeRef(text, &ref, nullptr) == noErr ? std::optional(ref) : std::nullopt;
}

std::optional<std::filesystem::path> pathOf(const FSRef& ref) {
  std::array<std::uint8_t, PATH_MAX> buffer;
  if (FSRefMakePath(&ref, buffer.data(), buffer.size()) != noErr) return std::nullopt;
  return reinterpret_cast<const char*>(buffer.data());
}

std::string utf8Of(const HFSUniStr255& name) {
  CFStringRef text = CFStringCreateWithCharacters(kCFAllocatorDefault, name.unicode, name.length);
  const auto string = StringRef::adopt(newString(text));
  CFRelease(text);
  return std::string(bytesOf(string.get()));
}

// Whether it names an item in a folder, and not a place elsewhere.
bool isItemName(std::string_view name) {
  constexpr std::string_view kNotInNames("/\0", 2);
  return !name.empty() && name != "." && name != ".." && name.find_first_of(kNotInNames) == std::string_view::npos;
}

bool fillName(HFSUniStr255* name, const std::string& utf8) {
  if (!isItemName(utf8)) return false;
  const auto string = StringRef::adopt(newString(utf8, kEncodingUTF8));
  CFStringRef text = copyCFString(string.get());
  if (text == nullptr) return false;
  const CFIndex length = CFStringGetLength(text);
  const bool fits = length <= static_cast<CFIndex>(std::size(name->unicode));
  if (fits) {
    name->length = static_cast<std::uint16_t>(length);
    CFStringGetCharacters(text, CFRangeMake(0, length), name->unicode);
  }
  CFRelease(text);
  return fits;
}

REALfolderItem handOver(const Value& item) {
  return static_cast<REALfolderItem>(ObjectRef::share(item.object()).leak());
}

// The folder's items are numbered from 1, in the order of their names.
REALobject trueItem(REALobject self, REALinteger index) {
  std::vector<std::filesystem::path> items;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(pathOf(self), error)) items.push_back(entry.path());
  std::ranges::sort(items);
  if (index < 1 || static_cast<std::size_t>(index) > items.size()) return nullptr;
  return handOver(folderItem(items[static_cast<std::size_t>(index - 1)]));
}

REALstring nativePath(REALobject self, Word) { return newString(pathOf(self).native(), kEncodingUTF8); }

bool exists(REALobject self, Word) {
  std::error_code error;
  return std::filesystem::exists(pathOf(self), error);
}

void destroyFolderItem(REALobject self) { delete dataOf<ItemData>(self, folderItemDefinition()).path; }

REALproperty properties[] = {
    readOnlyProperty("NativePath", "String", nativePath),
    readOnlyProperty("Exists", "Boolean", exists),
};

REALmethodDefinition methods[] = {hostMethod("TrueItem(Index as integer) as Folderitem", trueItem)};

}  // namespace

REALclassDefinition& folderItemDefinition() {
  static REALclassDefinition definition{.name = "FolderItem",
                                        .dataSize = sizeof(ItemData),
                                        .destructor = destroyFolderItem,
                                        .properties = properties,
                                        .propertyCount = std::size(properties),
                                        .methods = methods,
                                        .methodCount = std::size(methods)};
  return definition;
}

Value folderItem(const std::filesystem::path& path) {
  Value item = Value::adopt(newInstance(requireClass("FolderItem")));
  dataOf<ItemData>(item.object(), folderItemDefinition()).path =
      new std::filesystem::path(withoutTrailingSlash(std::filesystem::absolute(path)));
  return item;
}

std::filesystem::path pathOf(const Value& folderItem) { return pathOf(folderItem.object()); }

REALfolderItem newFolderItem(const FSSpec* spec) {
  FSRef ref;
  if (spec == nullptr || FSpMakeFSRef(spec, &ref) != noErr) return nullptr;
  const auto path = pathOf(ref);
  return path ? handOver(folderItem(*path)) : nullptr;
}

REALfolderItem newFolderItem(const FSRef* parent, const HFSUniStr255* name) {
  if (parent == nullptr || name == nullptr) return nullptr;
  // An existing item may be written otherwise on disk.
  FSRef ref;
  if (FSMakeFSRefUnicode(parent, name->length, name->unicode, 0, &ref) == noErr) {
    if (const auto path = pathOf(ref)) return handOver(folderItem(*path));
  }
  const auto folder = pathOf(*parent);
  const std::string item = utf8Of(*name);
  return folder && isItemName(item) ? handOver(folderItem(*folder / item)) : nullptr;
}

bool fillSpec(FSSpec* spec, REALfolderItem item) {
  if (spec == nullptr || item == nullptr) return false;
  const auto ref = refOf(pathOf(item));
  return ref && FSGetCatalogInfo(&*ref, kFSCatInfoNone, nullptr, nullptr, spec, nullptr) == noErr;
}

bool fillRef(REALfolderItem item, FSRef* ref, HFSUniStr255* name) {
  if (item == nullptr || ref == nullptr) return false;
  const std::filesystem::path path = pathOf(item);
  const auto found = refOf(name == nullptr ? path : path.parent_path());
  if (!found || (name != nullptr && !fillName(name, path.filename()))) return false;
  *ref = *found;
  return true;
}

}  // namespace host
