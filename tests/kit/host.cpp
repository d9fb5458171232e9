#include "tests/kit/host.h"

#include "host/classes.h"
#include "host/entries.h"
#include "host/error.h"
#include "host/foreign_classes.h"
#include "host/loader.h"
#include "host/memory.h"
#include "host/memory_blocks.h"
#include "host/objects.h"
#include "platform/carbon/gestalt.h"
#include "platform/contacts/address_book.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

// There when the plug-in's objects are linked into the program.
extern "C" __attribute__((weak)) void REALPluginMain(REALresolver resolver);

namespace {

constexpr OSType kRegistrySelector = 0x56585269;  // 'VXRi'

// Programs of the tests lie beside the folders of the plug-in and the frameworks.
std::filesystem::path buildFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
}

// The plug-in keeps the object of the shared book for the life of the process; here it ends with the test.
void dropSharedBookObject() {
  if (host::liveCounts()["ABAddressBookVXR"] == 0) return;
  EXPECT_EQ(thrownBy([] { host::unlock(host::callShared("ABAddressBookVXR", "sharedAddressbook").object()); }),
            "nothing thrown");
}

// So does the framework with its shared book.
void dropSharedBook() {
  const host::PluginScope scope;
  if (liveObjects().contains("ABAddressBook")) objc_release(ABAddressBook::sharedAddressBook().get());
}

// A hostile host opens an address book and closes it whenever a plug-in yields, unless the test does something else.
std::function<void()> yieldOf(const Host& settings) {
  if (!host::isHostile() || !settings.plugin || settings.yield) return settings.yield;
  return [] {
    const host::Value other = host::callShared("ABAddressBookVXR", "addressBook");
    EXPECT_TRUE(other.isNil() || other.call("hasUnsavedChanges") == false);
    host::idle();
  };
}

}  // namespace

HostSession::HostSession(const Host& settings) {
  for (const Card& card : settings.contacts) folder_.writeCard(card.uid + ".vcf", card.lines);
  host::options() = {.version = settings.version,
                     .runtime = settings.runtime,
                     .without = settings.without,
                     .messageBox = settings.messageBox,
                     .yield = yieldOf(settings)};
  for (const auto& [name, reason] : host::loadFrameworks(buildFolder() / "Frameworks")) {
    if (settings.plugin) ADD_FAILURE() << reason;
  }
  for (const std::string& selector : settings.withoutSelectors) objc_hideSelector(selector.c_str());
  if (settings.foreignClasses) host::registerForeignClasses();
  if (settings.plugin) {
    if (REALPluginMain != nullptr) {
      host::startPlugin(REALPluginMain);
    } else {
      host::loadPlugin(buildFolder() / "Plugins" / "addressbook-plugin.so");
    }
  }
  platformObjects_ = liveObjects();
  scope_.emplace();
}

HostSession::~HostSession() {
  objc_setSendHook(nullptr);
  host::options() = {};
  host::failNewInstance(0);
  host::failMemoryBlock(0);
  if (const auto pending = host::takePendingException()) ADD_FAILURE() << "left pending: " << pending->what();
  dropSharedBookObject();
  scope_.reset();
  dropSharedBook();
  EXPECT_EQ(host::liveReport(), "") << "host objects are left over";

  std::map<std::string, long> left = liveObjects();
  std::intptr_t registry = 0;
  if (Gestalt(kRegistrySelector, &registry) == noErr && registry != 0) --left["CFDictionary"];
  for (const auto& [name, count] : platformObjects_) left[name] -= count;
  std::erase_if(left, [](const auto& entry) { return entry.second == 0; });
  for (const auto& [name, count] : left) ADD_FAILURE() << "platform objects are left over: " << count << ' ' << name;
}

std::string thrownBy(const std::function<void()>& action) {
  try {
    action();
  } catch (const host::HostException& exception) {
    return exception.what();
  } catch (const host::Error& error) {
    return error.what();
  }
  return "nothing thrown";
}
