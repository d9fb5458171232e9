#include "bridge/instance_registry.h"

#include "bridge/exceptions.h"
#include "platform/carbon/gestalt.h"
#include "platform/foundation/cf_dictionary.h"
#include "platform/foundation/cf_string.h"

namespace {

// 'VXRi': its Gestalt value is the address of the registry.
constexpr OSType kRegistrySelector = 0x56585269;
constexpr CFIndex kRegistryCapacity = 1024;

CFMutableDictionaryRef instances = nullptr;
bool Inited = false;
bool FirstInstancesPlugin = false;

const void* retainNothing(CFAllocatorRef, const void* value) { return value; }
void releaseNothing(CFAllocatorRef, const void*) {}
CFStringRef describe(const void*) { return CFSTR("object"); }
Boolean isIdentical(const void* a, const void* b) { return a == b; }
CFHashCode hashOfPointer(const void* value) { return reinterpret_cast<CFHashCode>(value); }

CFMutableDictionaryRef createRegistry() {
  if (!PLATFORM_HAS(CFDictionaryCreateMutable)) return nullptr;
  constexpr CFDictionaryKeyCallBacks keys{0, retainNothing, releaseNothing, describe, isIdentical, hashOfPointer};
  constexpr CFDictionaryValueCallBacks values{0, retainNothing, releaseNothing, describe, isIdentical};
  return CFDictionaryCreateMutable(kCFAllocatorDefault, kRegistryCapacity, &keys, &values);
}

}  // namespace

void CocoaInit() {
  if (Inited) return;
  Inited = true;
  std::intptr_t published = 0;
  FirstInstancesPlugin = !PLATFORM_HAS(Gestalt) || Gestalt(kRegistrySelector, &published) != noErr;
  if (!FirstInstancesPlugin) {
    instances = reinterpret_cast<CFMutableDictionaryRef>(published);
    return;
  }
  instances = createRegistry();
  if (PLATFORM_HAS(SetGestaltValue)) SetGestaltValue(kRegistrySelector, reinterpret_cast<std::intptr_t>(instances));
  if (PLATFORM_HAS(NSSetUncaughtExceptionHandler)) NSSetUncaughtExceptionHandler(MyNSUncaughtExceptionHandler);
}

void RegisterInstance(REALobject hostObject, NSObject object) {
  if (object && instances != nullptr) CFDictionarySetValue(instances, object.get(), hostObject);
}

void UnregisterInstance(NSObject object) {
  if (instances != nullptr) CFDictionaryRemoveValue(instances, object.get());
}

REALobject FindInstance(NSObject object) {
  if (!object || instances == nullptr) return nullptr;
  return static_cast<REALobject>(const_cast<void*>(CFDictionaryGetValue(instances, object.get())));
}
