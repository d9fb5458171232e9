#include "frame/host_types.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

// The plug-in with a host that shares no code with ours and has little more than classes, in a program that links no
// framework.
namespace {

std::map<std::string, REALclassDefinition*> classes;
int instances = 0;

void registerClass(REALclassDefinition* definition) {
  definition->dataOffset = kObjectDataOffset;
  classes[definition->name] = definition;
}

REALobject newInstance(const char*) {
  ++instances;
  return static_cast<REALobject>(std::calloc(1, kObjectDataOffset + 64));
}

void unlockObject(REALobject object) {
  --instances;
  std::free(object);
}

void* resolve(const char* name) {
  static const std::map<std::string, void*> entries{
      {"PluginRegisterClass", reinterpret_cast<void*>(registerClass)},
      {"PluginNewInstance", reinterpret_cast<void*>(newInstance)},
      {"REALUnlockObject", reinterpret_cast<void*>(unlockObject)},
  };
  const auto found = entries.find(name);
  return found == entries.end() ? nullptr : found->second;
}

template <class Result, class... Arguments>
Result call(const char* className, const std::string& declaration, Arguments... arguments) {
  const REALclassDefinition& definition = *classes.at(className);
  for (Word i = 0; i < definition.sharedMethodCount; ++i) {
    const REALmethodDefinition& method = definition.sharedMethods[i];
    if (method.declaration == declaration)
      return reinterpret_cast<Result (*)(Arguments...)>(method.function)(arguments...);
  }
  throw std::runtime_error("no shared method " + declaration);
}

class PluginWith : public testing::TestWithParam<std::vector<std::string>> {};

INSTANTIATE_TEST_SUITE_P(Frameworks, PluginWith,
                         testing::Values(std::vector<std::string>{"Foundation", "Carbon", "AppKit"},
                                         std::vector<std::string>{"Foundation"}, std::vector<std::string>{}));

}  // namespace

TEST_P(PluginWith, TooFewGetsNothing) {
  const auto build = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
  for (const std::string& name : GetParam()) {
    const auto library = build / "Frameworks" / (name + ".framework") / name;
    ASSERT_NE(dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL), nullptr) << dlerror();
  }
  void* plugin = dlopen((build / "Plugins" / "addressbook-plugin.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(plugin, nullptr) << dlerror();
  reinterpret_cast<void (*)(REALresolver)>(dlsym(plugin, "REALPluginMain"))(resolve);
  EXPECT_EQ(classes.size(), 8U);

  constexpr const char* kBook = "ABAddressBookVXR";
  EXPECT_EQ(call<REALobject>(kBook, "sharedAddressbook as ABAddressBookVXR"), nullptr);
  EXPECT_EQ(call<REALobject>(kBook, "sharedAddressbookMT as ABAddressBookVXR"), nullptr);
  EXPECT_EQ(call<REALstring>(kBook, "kABFirstNameProperty as string"), nullptr);
  EXPECT_EQ(call<REALstring>(kBook, "kABSocialProfileProperty as string"), nullptr);
  REALstringRecord name{};
  name.buffer = " First";
  name.length = 5;
  auto* text = reinterpret_cast<REALstring>(&name);
  EXPECT_EQ(call<REALinteger>("ABPersonVXR", "typeOfProperty(propertyName as string) as integer", text), 0);
  EXPECT_EQ(instances, 0);
}
