#include "frame/plugin_entry.h"

#include "frame/host_interface.h"
#include "platform/foundation/cf_string.h"
#include "tests/frame/fake_resolver.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

using fake_resolver::give;

std::vector<REALclassDefinition*> registered;
std::vector<std::string> calls;

void giveRegistration() {
  give(
      "RegisterPluginVersion", +[](Word version) { calls.push_back("version " + std::to_string(version)); });
  give(
      "PluginRegisterClass", +[](REALclassDefinition* definition) {
        calls.emplace_back(definition->name);
        registered.push_back(definition);
      });
}

const REALclassDefinition& definitionOf(const std::string& name) {
  for (const REALclassDefinition* definition : registered) {
    if (definition->name == name) return *definition;
  }
  throw std::runtime_error("not registered: " + name);
}

}  // namespace

TEST(PluginEntry, RegistersItsVersionAndThenTheClassesSuperclassesFirst) {
  giveRegistration();
  REALPluginMain(fake_resolver::resolve);
  const std::vector<std::string> expected{"version 9",   "ABSearchElementVXR", "ABRecordVXR",
                                          "ABPersonVXR", "ABMultiValueVXR",    "ABMutableMultiValueVXR",
                                          "ABGroupVXR",  "ABPickerVXR",        "ABAddressBookVXR"};
  EXPECT_EQ(calls, expected);
  EXPECT_EQ(AddressbookFramework, nullptr);  // this host is a development environment
}

TEST(PluginEntry, ReadsTheHostsVersionWhereThereIsOne) {
  REALPluginMain(fake_resolver::resolve);
  EXPECT_EQ(rbversion_rbversion, 0.0);
  give(
      "REALGetRBVersion", +[] { return 2012.5; });
  REALPluginMain(fake_resolver::resolve);
  EXPECT_EQ(rbversion_rbversion, 2012.5);
}

TEST(PluginEntry, LoadsTheFrameworkInsideABuiltApplication) {
  give(
      "REALinRuntime", +[] { return true; });
  REALPluginMain(fake_resolver::resolve);
  EXPECT_NE(AddressbookFramework, nullptr);
}

TEST(PluginEntry, FindsNoFrameworkThatIsNotThere) {
  EXPECT_EQ(LoadFrameworkBundle(CFSTR("NoSuch.framework")), nullptr);
  EXPECT_EQ(LoadFrameworkBundles(0, CFSTR("../../etc")), nullptr);
}

TEST(PluginEntry, RoundsDataSizesUpToSixteen) {
  for (const auto& [given, rounded] :
       std::vector<std::pair<Word, Word>>{{0, 0}, {1, 16}, {4, 16}, {16, 16}, {17, 32}}) {
    REALclassDefinition definition{.dataSize = given};
    MyREALRegisterClass(&definition);
    EXPECT_EQ(definition.dataSize, rounded);
    MyREALRegisterClass(&definition);
    EXPECT_EQ(definition.dataSize, rounded);
  }
}

TEST(PluginEntry, DescribesTheClassesAsTheyAre) {
  giveRegistration();
  REALPluginMain(fake_resolver::resolve);
  struct Expected {
    const char* name;
    const char* superName;
    bool ownsData;
    Word properties, methods, events, constants, sharedMethods, flags;
  };
  for (const Expected& expected : std::vector<Expected>{
           {"ABSearchElementVXR", nullptr, true, 1, 3, 0, 2, 1, 4},
           {"ABRecordVXR", nullptr, true, 1, 9, 0, 0, 0, 4},
           {"ABPersonVXR", "ABRecordVXR", false, 0, 11, 0, 0, 6, 4},
           {"ABMultiValueVXR", nullptr, true, 1, 14, 0, 0, 0, 4},
           {"ABMutableMultiValueVXR", "ABMultiValueVXR", false, 0, 8, 0, 0, 0, 4},
           {"ABGroupVXR", "ABRecordVXR", false, 0, 10, 0, 0, 6, 4},
           {"ABPickerVXR", nullptr, true, 12, 23, 6, 0, 0, 0x100000},
           {"ABAddressBookVXR", nullptr, true, 1, 24, 1, 59, 120, 4},
       }) {
    SCOPED_TRACE(expected.name);
    const REALclassDefinition& definition = definitionOf(expected.name);
    EXPECT_EQ(definition.version, 9u);
    EXPECT_STREQ(definition.superName, expected.superName);
    EXPECT_EQ(definition.dataSize, expected.ownsData ? 16u : 0u);
    EXPECT_EQ(definition.constructor != nullptr, expected.ownsData);
    EXPECT_EQ(definition.destructor != nullptr, expected.ownsData);
    EXPECT_EQ(definition.propertyCount, expected.properties);
    EXPECT_EQ(definition.methodCount, expected.methods);
    EXPECT_EQ(definition.eventCount, expected.events);
    EXPECT_EQ(definition.constantCount, expected.constants);
    EXPECT_EQ(definition.sharedMethodCount, expected.sharedMethods);
    EXPECT_EQ(definition.flags, expected.flags);
    for (Word i = 0; i < definition.propertyCount; ++i) EXPECT_EQ(definition.properties[i].flags, expected.flags | 2);
    for (Word i = 0; i < definition.methodCount; ++i) {
      const REALmethodDefinition& method = definition.methods[i];
      EXPECT_NE(method.function, nullptr);
      const bool isEmpty = i == 0 && method.flags == 0x84;
      EXPECT_TRUE(method.flags == expected.flags || isEmpty) << method.declaration;
    }
  }
}
