#include "bridge/files.h"

#include "bridge/strings.h"
#include "frame/host_interface.h"
#include "frame/runtime_support.h"
#include "platform/carbon/files.h"
#include "platform/foundation/cf_string.h"
#include "platform/objc/retained.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace {

using OwnedString = Retained<NSString>;
using OwnedURL = Retained<NSURL>;

OwnedURL urlOfRef(const FSRef& ref) {
  return OwnedURL::adopt(bridge<NSURL>(CFURLCreateFromFSRef(kCFAllocatorDefault, &ref)));
}

// A decomposed copy, or the name itself where there can be no copy.
OwnedString decomposed(OwnedString name) {
  auto copy = OwnedString::adopt(
      bridge<NSString>(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, bridge<CFStringRef>(name.get()))));
  if (!copy) return name;
  CFStringNormalize(bridge<CFMutableStringRef>(copy.get()), kCFStringNormalizationFormD);
  return copy;
}

// The URL of an item that doesn't exist yet: its name behind the parent's URL. Nothing when the host can't name the
// item or its parent; a nil URL when the name has no place in one.
std::optional<OwnedURL> urlOfMissingItem(REALfolderItem item) {
  FSRef parent;
  HFSUniStr255 name{};
  if (!REALFSRefFromFolderItem(item, &parent, &name)) return std::nullopt;
  const OwnedURL parentURL = urlOfRef(parent);
  if (!parentURL || name.length == 0) return std::nullopt;
  auto text = OwnedString::adopt(
      bridge<NSString>(CFStringCreateWithCharacters(kCFAllocatorDefault, name.unicode, name.length)));
  if (!text) return std::nullopt;
  text = decomposed(std::move(text));
  return OwnedURL::adopt(bridge<NSURL>(CFURLCreateCopyAppendingPathComponent(
      kCFAllocatorDefault, bridge<CFURLRef>(parentURL.get()), bridge<CFStringRef>(text.get()), false)));
}

}  // namespace

CFURLRef MakeCFURLfromFolderItem(REALfolderItem item) {
  if (item == nullptr || !PLATFORM_HAS(CFURLCreateFromFSRef)) return nullptr;
  FSRef ref;
  if (REALFSRefFromFolderItem(item, &ref, nullptr)) {
    if (OwnedURL url = urlOfRef(ref)) return bridge<CFURLRef>(url.leak());
  }
  if (auto url = urlOfMissingItem(item)) return bridge<CFURLRef>(url->leak());
  FSSpec spec;
  if (!REALFSSpecFromFolderItem(&spec, item) || FSpMakeFSRef(&spec, &ref) != noErr) return nullptr;
  return bridge<CFURLRef>(urlOfRef(ref).leak());
}

NSURL NewNSURLfile(REALfolderItem item) {
  return OwnedURL::adopt(bridge<NSURL>(MakeCFURLfromFolderItem(item))).autorelease();
}

REALfolderItem CFURL2RBFile(CFURLRef url) {
  if (url == nullptr || !PLATFORM_HAS(CFURLGetFSRef)) return nullptr;
  FSRef ref;
  if (CFURLGetFSRef(url, &ref)) return REALFolderItemFromFSRef(ref);

  const auto parentURL =
      OwnedURL::adopt(bridge<NSURL>(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url)));
  FSRef parent;
  if (!parentURL || !CFURLGetFSRef(bridge<CFURLRef>(parentURL.get()), &parent)) return nullptr;
  auto component = OwnedString::adopt(bridge<NSString>(CFURLCopyLastPathComponent(url)));
  if (!component) return nullptr;
  component = decomposed(std::move(component));

  HFSUniStr255 name{};
  const auto text = bridge<CFStringRef>(component.get());
  const CFIndex length = std::clamp<CFIndex>(CFStringGetLength(text), 0, std::size(name.unicode));
  CFStringGetCharacters(text, CFRangeMake(0, length), name.unicode);
  name.length = static_cast<std::uint16_t>(length);
  return REALFolderItemFromParentFSRef(&parent, &name);
}

REALfolderItem NSURLRBFile(NSURL url) { return CFURL2RBFile(bridge<CFURLRef>(url)); }

REALfolderItem REALFolderItemFromFSRef(const FSRef& ref) {
  constexpr std::uint32_t kRootFolderNodeID = 2;
  FSCatalogInfo info{};
  FSRef parent;
  if (FSGetCatalogInfo(&ref, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent) == noErr) {
    if (info.nodeID == kRootFolderNodeID) ClearMemory(&parent, sizeof parent);
    HFSUniStr255 name{};
    if (FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr) == noErr &&
        FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr) == noErr) {
      return REALFolderItemFromParentFSRef(&parent, &name);
    }
  }
  FSSpec spec;
  if (FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr) != noErr) return nullptr;
  return REALFolderItemFromFSSpec(&spec);
}

REALstring NSURLRB(NSURL url) { return NSStringRB(url.absoluteString()); }
