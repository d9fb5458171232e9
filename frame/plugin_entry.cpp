#include "frame/plugin_entry.h"

#include "addressbook/class_tables.h"
#include "frame/host_interface.h"
#include "picker/picker.h"
#include "platform/carbon/folders.h"
#include "platform/foundation/cf_bundle.h"
#include "platform/foundation/cf_string.h"
#include "platform/foundation/cf_url.h"
#include "platform/foundation/url.h"
#include "platform/objc/retained.h"

CFBundleRef AddressbookFramework = nullptr;

namespace {

using OwnedURL = Retained<NSURL>;

CFBundleRef loadBundle(CFURLRef url) {
  auto bundle = Retained<NSObject>::adopt(bridge<NSObject>(CFBundleCreate(kCFAllocatorSystemDefault, url)));
  if (!bundle || !CFBundleLoadExecutable(bridge<CFBundleRef>(bundle.get()))) return nullptr;
  return bridge<CFBundleRef>(bundle.leak());
}

}  // namespace

void PluginEntry() {
  if (REALinRuntime()) AddressbookFramework = LoadFrameworkBundle(CFSTR("AddressBook.framework"));
  // Superclasses first.
  for (REALclassDefinition* definition : {&ABSearchElementVXR, &ABRecordVXR, &ABPersonVXR, &ABMultiValueVXR,
                                          &ABMutableMultiValueVXR, &ABGroupVXR, &ABPickerVXR, &ABAddressBookVXR}) {
    MyREALRegisterClass(definition);
  }
}

void MyREALRegisterClass(REALclassDefinition* definition) {
  constexpr Word kDataUnit = 16;
  definition->dataSize = (definition->dataSize + kDataUnit - 1) / kDataUnit * kDataUnit;
  REALRegisterClass(definition);
}

CFBundleRef LoadFrameworkBundles(std::int16_t domain, CFStringRef frameworkName) {
  if (!PLATFORM_HAS(FSFindFolder)) return nullptr;
  FSRef folder;
  if (FSFindFolder(domain, kFrameworksFolderType, kCreateFolder, &folder) != noErr) return nullptr;
  const auto folderURL = OwnedURL::adopt(bridge<NSURL>(CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder)));
  if (!folderURL) return nullptr;
  const auto bundleURL = OwnedURL::adopt(bridge<NSURL>(CFURLCreateCopyAppendingPathComponent(
      kCFAllocatorSystemDefault, bridge<CFURLRef>(folderURL.get()), frameworkName, false)));
  return bundleURL ? loadBundle(bridge<CFURLRef>(bundleURL.get())) : nullptr;
}

CFBundleRef LoadFrameworkBundle(CFStringRef frameworkName) {
  return LoadFrameworkBundles(kSystemDomain, frameworkName);
}
