#include "platform/foundation/exception.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

// A further plug-in library of the family, loaded beside the one under test.
struct SecondPlugin {
  void (*init)();
  REALobject (*find)(void* frameworkObject);

  static SecondPlugin load() {
    void* library = dlopen(SECOND_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    return {reinterpret_cast<void (*)()>(dlsym(library, "secondPluginInit")),
            reinterpret_cast<REALobject (*)(void*)>(dlsym(library, "secondPluginFind"))};
  }
};

void* wrappedBy(const host::Value& wrapper) { return reinterpret_cast<void*>(wrapper.get("Handle").integer()); }

}  // namespace

TEST(Family, LaterPluginsFindTheFirstOnesWrappers) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1")}};
  const SecondPlugin second = SecondPlugin::load();
  void* wrappedObject = nullptr;
  {
    const host::Value ada = host.shared("ABAddressBookVXR", "sharedAddressbook").call("people").at(0);
    wrappedObject = wrappedBy(ada);
    EXPECT_EQ(second.find(wrappedObject), nullptr);
    NSUncaughtExceptionHandler* handler = NSGetUncaughtExceptionHandler();
    EXPECT_NE(handler, nullptr);
    second.init();
    EXPECT_EQ(second.find(wrappedObject), ada.object());
    EXPECT_EQ(NSGetUncaughtExceptionHandler(), handler);
  }
  EXPECT_EQ(second.find(wrappedObject), nullptr);
}

TEST(Family, ThePluginUsesARegistryThatIsThereAlready) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1")}};
  const SecondPlugin first = SecondPlugin::load();
  first.init();
  const host::Value ada = host.shared("ABAddressBookVXR", "sharedAddressbook").call("people").at(0);
  EXPECT_EQ(first.find(wrappedBy(ada)), ada.object());
}
