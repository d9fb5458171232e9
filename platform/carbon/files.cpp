#include "platform/carbon/files.h"

#include "platform/carbon/items.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/cf_string.h"
#include "platform/foundation/cf_url.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <sys/stat.h>

namespace {

using carbon::ItemTable;

constexpr std::int16_t kVolume = -100;  // the only one

// What the bytes of a reference are; the rest is zero.
struct Reference {
  std::array<char, 4> mark{'i', 't', 'e', 'm'};
  std::uint32_t number = 0;
};
static_assert(sizeof(Reference) <= sizeof(FSRef));

FSRef makeRef(std::uint32_t number) {
  const Reference reference{.number = number};
  FSRef ref{};
  std::memcpy(ref.hidden, &reference, sizeof(reference));
  return ref;
}

// The number that makeRef was given.
std::optional<std::uint32_t> numberOf(const FSRef& ref) {
  Reference reference;
  std::memcpy(&reference, ref.hidden, sizeof(reference));
  const FSRef same = makeRef(reference.number);
  if (std::memcmp(&ref, &same, sizeof(ref)) != 0) return std::nullopt;
  return reference.number;
}

// The reference's number and its item's path, or why there is none.
struct Found {
  OSErr error;
  std::uint32_t number;
  std::string path;
};

Found find(const FSRef* ref) {
  const std::optional<std::uint32_t> number = ref != nullptr ? numberOf(*ref) : std::nullopt;
  if (!number) return {.error = errFSBadFSRef, .number = 0, .path = {}};
  std::optional<std::string> path = ItemTable::shared().path(*number);
  if (!path) return {.error = fnfErr, .number = 0, .path = {}};
  return {.error = noErr, .number = *number, .path = std::move(*path)};
}

OSErr refer(const std::optional<std::string>& path, FSRef* ref) {
  const std::optional<std::uint32_t> number = path ? ItemTable::shared().add(*path) : std::nullopt;
  if (!number) return fnfErr;
  *ref = makeRef(*number);
  return noErr;
}

bool isFolder(const std::string& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

OSErr giveName(const std::string& path, HFSUniStr255* name) {
  const std::u16string units = path == "/" ? u"/" : carbon::decomposedName(carbon::nameOf(path));
  if (units.size() > std::size(name->unicode)) return bdNamErr;
  name->length = static_cast<std::uint16_t>(units.size());
  std::ranges::copy(units, name->unicode);
  return noErr;
}

OSErr giveSpec(const std::string& path, FSSpec* spec) {
  FSSpec filled{.vRefNum = kVolume, .parID = fsRtParID, .name = {1, '/'}};
  if (path != "/") {
    const std::optional<std::uint32_t> parent = ItemTable::shared().add(carbon::parentOf(path));
    if (!parent) return fnfErr;
    filled.parID = static_cast<std::int32_t>(*parent);
    const AutoreleasePool pool;
    // Accented characters are single ones in Mac Roman, and so they usually are on disk.
    const NSString name = NSString::stringWithUTF8(carbon::nameOf(path));
    std::array<char, sizeof(filled.name)> text{};
    if (!name || !CFStringGetCString(bridge<CFStringRef>(name), text.data(), text.size(), kCFStringEncodingMacRoman)) {
      return bdNamErr;
    }
    filled.name[0] = static_cast<std::uint8_t>(std::strlen(text.data()));
    std::memcpy(filled.name + 1, text.data(), filled.name[0]);
  }
  *spec = filled;
  return noErr;
}

OSErr giveParent(const std::string& path, FSRef* parent) {
  if (path != "/") return refer(carbon::parentOf(path), parent);
  *parent = FSRef{};
  return noErr;
}

}  // namespace

OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                       HFSUniStr255* outName, FSSpec* fsSpec, FSRef* parentRef) {
  if ((whichInfo & ~kFSCatInfoNodeID) != 0) return paramErr;
  // A copy, as parentRef may be ref itself.
  const Found found = find(ref);
  OSErr error = found.error;
  if (error == noErr && outName != nullptr) error = giveName(found.path, outName);
  if (error == noErr && fsSpec != nullptr) error = giveSpec(found.path, fsSpec);
  if (error == noErr && parentRef != nullptr) error = giveParent(found.path, parentRef);
  if (error == noErr && catalogInfo != nullptr && whichInfo != kFSCatInfoNone) catalogInfo->nodeID = found.number;
  return error;
}

OSErr FSMakeFSRefUnicode(const FSRef* parentRef, std::uintptr_t nameLength, const char16_t* name, std::uint32_t,
                         FSRef* newRef) {
  const Found parent = find(parentRef);
  if (parent.error != noErr) return parent.error;
  return refer(carbon::findInFolder(parent.path, {name, nameLength}), newRef);
}

OSErr FSpMakeFSRef(const FSSpec* source, FSRef* newRef) {
  if (source->vRefNum != kVolume) return nsvErr;
  if (source->name[0] >= sizeof(source->name)) return bdNamErr;
  const std::string_view bytes(reinterpret_cast<const char*>(source->name) + 1, source->name[0]);
  if (source->parID == fsRtParID) return refer(bytes == "/" ? std::optional<std::string>("/") : std::nullopt, newRef);
  const std::optional<std::string> folder = ItemTable::shared().path(static_cast<std::uint32_t>(source->parID));
  if (!folder) return dirNFErr;
  CFStringRef name =
      CFStringCreateWithBytes(kCFAllocatorDefault, source->name + 1, source->name[0], kCFStringEncodingMacRoman, false);
  std::u16string units(static_cast<std::size_t>(CFStringGetLength(name)), u'\0');
  CFStringGetCharacters(name, CFRangeMake(0, CFStringGetLength(name)), units.data());
  CFRelease(name);
  return refer(carbon::findInFolder(*folder, units), newRef);
}

OSErr FSPathMakeRef(const std::uint8_t* path, FSRef* ref, Boolean* isDirectory) {
  const std::optional<std::string> real = carbon::resolvePath(reinterpret_cast<const char*>(path));
  const OSErr error = refer(real, ref);
  if (error == noErr && isDirectory != nullptr) *isDirectory = isFolder(*real);
  return error;
}

OSErr FSRefMakePath(const FSRef* ref, std::uint8_t* path, std::uint32_t maxPathSize) {
  const Found found = find(ref);
  if (found.error != noErr) return found.error;
  if (found.path.size() >= maxPathSize) return pathTooLongErr;
  std::memcpy(path, found.path.c_str(), found.path.size() + 1);
  return noErr;
}

Boolean CFURLGetFSRef(CFURLRef url, FSRef* fsRef) {
  std::array<std::uint8_t, PATH_MAX> path{};
  return CFURLGetFileSystemRepresentation(url, true, path.data(), path.size()) &&
         FSPathMakeRef(path.data(), fsRef, nullptr) == noErr;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* fsRef) {
  const Found found = find(fsRef);
  if (found.error != noErr) return nullptr;
  return CFURLCreateFromFileSystemRepresentation(allocator, reinterpret_cast<const std::uint8_t*>(found.path.data()),
                                                 static_cast<CFIndex>(found.path.size()), isFolder(found.path));
}
