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

host::Value firstPerson(const Host& host) {
  return host.shared("ABAddressBookVXR", "sharedAddressbook").call("people").at(0);
}

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1")};

}  // namespace

TEST(Family, LaterPluginsFindTheFirstOnesWrappers) {
  const Host host{.contacts = kContacts};
  const SecondPlugin second = SecondPlugin::load();
  host::Value ada = firstPerson(host);
  void* wrappedObject = wrappedBy(ada);
  EXPECT_EQ(second.find(wrappedObject), nullptr);
  NSUncaughtExceptionHandler* handler = NSGetUncaughtExceptionHandler();
  EXPECT_NE(handler, nullptr);
  second.init();
  EXPECT_EQ(second.find(wrappedObject), ada.object());
  EXPECT_EQ(NSGetUncaughtExceptionHandler(), handler);
  ada = nullptr;
  EXPECT_EQ(second.find(wrappedObject), nullptr);
}

TEST(Family, ThePluginUsesARegistryThatIsThereAlready) {
  const Host host{.contacts = kContacts};
  const SecondPlugin first = SecondPlugin::load();
  first.init();
  const host::Value ada = firstPerson(host);
  EXPECT_EQ(first.find(wrappedBy(ada)), ada.object());
}
