#include "platform/contacts/constants.h"

#include "host/loader.h"
#include "tests/addressbook/framework_calls.h"
#include "tests/contacts/in_child.h"

namespace {

struct StringConstant {
  const char* name;
  const char* text;
  bool isLater;
};

#define LINKED(name, text) {#name, text, false},
#define LATER(name, text) {#name, text, true},
constexpr StringConstant kStrings[] = {AB_STRING_CONSTANTS(LINKED, LATER)};
#undef LINKED
#undef LATER

}  // namespace

TEST(Constants, OfStringsAreTheFrameworksOwnInOrder) {
  ASSERT_EQ(std::size(kStrings), 113U);
  EXPECT_EQ(std::ranges::count(kStrings, true, &StringConstant::isLater), 31);
  const Host host{};
  const auto& methods = host::requireClass(kBook).sharedMethods;
  ASSERT_EQ(methods.size(), 120U);
  for (std::size_t i = 0; i < std::size(kStrings); ++i) {
    const auto& [name, text, isLater] = kStrings[i];
    EXPECT_EQ(methods[methods.size() - std::size(kStrings) + i].declaration.name, name);
    EXPECT_EQ(host.shared(kBook, name), text) << name;
    EXPECT_EQ(host.shared(kBook, name), text) << name;  // the second time, too
  }
}

// Inside the development environment the bundle isn't loaded; constants are looked up again once it is.
TEST(Constants, OfLaterFrameworksNeedTheBundle) {
  const Host host{.runtime = false};
  for (const auto& [name, text, isLater] : kStrings) {
    EXPECT_EQ(host.shared(kBook, name), isLater ? "" : text) << name;
  }
  inChild([&] {
    host::options().runtime = true;
    const auto build = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
    host::loadPlugin(build / "Plugins" / "addressbook-plugin.so");
    EXPECT_EQ(host.shared(kBook, "kABSocialProfileServiceSinaWeibo"), "sinaweibo");
  });
}

TEST(Constants, OfIntegersHaveTheFrameworksValues) {
  const Host host{};
  std::string values;
  for (const auto& [name, value] : host::requireClass(kBook).constants) values += std::to_string(value) + ' ';
  EXPECT_EQ(values,
            "1001 1002 1012 1013 1014 7 0 1 2 3 56 0 32 16 0 1 "
            "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 "
            "256 0 1 2 3 4 5 6 7 8 257 258 259 260 261 262 263 264 ");
  EXPECT_EQ(host::constant("ABSearchElementVXR", "kABSearchAnd"), 0);
  EXPECT_EQ(host::constant("ABSearchElementVXR", "kABSearchOr"), 1);
}
