#include "frame/plugin_entry.h"

#include "frame/host_interface.h"
#include "platform/foundation/cf_string.h"
#include "tests/frame/fake_resolver.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

using fake_resolver::give;

std::vector<REALclassDefinition*> registered;
Word version = 0;

void giveRegistration() {
  give("RegisterPluginVersion", [](Word registering) { version = registered.empty() ? registering : 0; });
  give("PluginRegisterClass", [](REALclassDefinition* definition) { registered.push_back(definition); });
}

}  // namespace

TEST(PluginEntry, ReadsTheHostsVersionAndLoadsTheFrameworkInsideABuiltApplication) {
  REALPluginMain(fake_resolver::resolve);
  EXPECT_EQ(rbversion_rbversion, 0.0);
  give("REALGetRBVersion", [] { return 2012.5; });
  give("REALinRuntime", [] { return true; });
  REALPluginMain(fake_resolver::resolve);
  EXPECT_EQ(rbversion_rbversion, 2012.5);
  EXPECT_NE(AddressbookFramework, nullptr);
  EXPECT_EQ(LoadFrameworkBundle(CFSTR("NoSuch.framework")), nullptr);
  EXPECT_EQ(LoadFrameworkBundles(0, CFSTR("../../etc")), nullptr);
}

TEST(PluginEntry, RegistersItsVersionAndThenTheClassesSuperclassesFirst) {
  giveRegistration();
  REALPluginMain(fake_resolver::resolve);
  const struct {
    const char* name;
    const char* superName;
    bool ownsData;
    std::array<Word, 6> members;  // properties, methods, events, constants, shared methods; and flags
  } rows[] = {
      {"ABSearchElementVXR", nullptr, true, {1, 3, 0, 2, 1, 4}},
      {"ABRecordVXR", nullptr, true, {1, 9, 0, 0, 0, 4}},
      {"ABPersonVXR", "ABRecordVXR", false, {0, 11, 0, 0, 6, 4}},
      {"ABMultiValueVXR", nullptr, true, {1, 14, 0, 0, 0, 4}},
      {"ABMutableMultiValueVXR", "ABMultiValueVXR", false, {0, 8, 0, 0, 0, 4}},
      {"ABGroupVXR", "ABRecordVXR", false, {0, 10, 0, 0, 6, 4}},
      {"ABPickerVXR", nullptr, true, {12, 23, 6, 0, 0, 0x100000}},
      {"ABAddressBookVXR", nullptr, true, {1, 24, 1, 59, 120, 4}},
  };
  EXPECT_EQ(version, 9U);
  EXPECT_EQ(AddressbookFramework, nullptr);  // this host is a development environment
  ASSERT_EQ(registered.size(), std::size(rows));
  for (std::size_t row = 0; row < registered.size(); ++row) {
    const auto& expected = rows[row];
    const REALclassDefinition& definition = *registered[row];
    SCOPED_TRACE(expected.name);
    EXPECT_STREQ(definition.name, expected.name);
    EXPECT_EQ(definition.version, 9U);
    EXPECT_STREQ(definition.superName, expected.superName);
    EXPECT_EQ(definition.dataSize, expected.ownsData ? 16u : 0u);
    EXPECT_EQ(definition.constructor != nullptr, expected.ownsData);
    EXPECT_EQ(definition.destructor != nullptr, expected.ownsData);
    EXPECT_EQ((std::array{definition.propertyCount, definition.methodCount, definition.eventCount,
                          definition.constantCount, definition.sharedMethodCount, definition.flags}),
              expected.members);
    for (Word i = 0; i < definition.propertyCount; ++i) EXPECT_EQ(definition.properties[i].flags, definition.flags | 2);
    for (Word i = 0; i < definition.methodCount; ++i) {
      const REALmethodDefinition& method = definition.methods[i];
      EXPECT_NE(method.function, nullptr);
      EXPECT_TRUE(method.flags == definition.flags || (i == 0 && method.flags == 0x84)) << method.declaration;
    }
  }
}
