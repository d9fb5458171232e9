#include "bridge/instance_registry.h"

// A second plug-in of the family: the same bridge under another entry, with a registry pointer of its own.

extern "C" __attribute__((visibility("default"))) void secondPluginInit() { CocoaInit(); }

extern "C" __attribute__((visibility("default"))) REALobject secondPluginFind(void* frameworkObject) {
  return FindInstance(NSObject(static_cast<objc::Object*>(frameworkObject)));
}
