#include "platform/contacts/constants.h"

#include "host/loader.h"
#include "tests/addressbook/framework_calls.h"
#include "tests/contacts/in_child.h"

#include <cstdint>
#include <sstream>
#include <vector>

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
  // Names without kAB; those of a group count up from its first value.
  const std::pair<std::int64_t, const char*> groups[] = {
      {1001, "ABAddRecordsError ABRemoveRecordsError"},
      {1012, "ABPropertyValueValidationError ABPropertyUnsupportedBySourceError ABPropertyReadOnlyError"},
      {7, "ShowAsMask"},
      {0, "ShowAsPerson ShowAsCompany ShowAsResource ShowAsRoom"},
      {56, "NameOrderingMask"},
      {0, "DefaultNameOrdering"},
      {32, "FirstNameFirst"},
      {16, "LastNameFirst"},
      {0, "SearchAnd SearchOr"},
      {0,
       "Equal NotEqual LessThan LessThanOrEqual GreaterThan GreaterThanOrEqual EqualCaseInsensitive ContainsSubString "
       "ContainsSubStringCaseInsensitive PrefixMatch PrefixMatchCaseInsensitive BitsInBitFieldMatch "
       "DoesNotContainSubString DoesNotContainSubStringCaseInsensitive NotEqualCaseInsensitive SuffixMatch "
       "SuffixMatchCaseInsensitive WithinIntervalAroundToday WithinIntervalAroundTodayYearless "
       "NotWithinIntervalAroundToday NotWithinIntervalAroundTodayYearless WithinIntervalFromToday "
       "WithinIntervalFromTodayYearless NotWithinIntervalFromToday NotWithinIntervalFromTodayYearless"},
      {256, "MultiValueMask"},
      {0,
       "ErrorInProperty StringProperty IntegerProperty RealProperty DateProperty ArrayProperty DictionaryProperty "
       "DataProperty DateComponentsProperty"},
      {257,
       "MultiStringProperty MultiIntegerProperty MultiRealProperty MultiDateProperty MultiArrayProperty "
       "MultiDictionaryProperty MultiDataProperty MultiDateComponentsProperty"},
  };
  const Host host{};
  const auto& constants = host::requireClass(kBook).constants;
  std::size_t count = 0;
  for (auto [value, text] : groups) {
    std::istringstream names(text);
    for (std::string name; names >> name; ++value) {
      ASSERT_LT(count, constants.size());
      const auto& [declared, declaredValue] = constants[count++];
      EXPECT_EQ(declared, name.starts_with("AB") ? name : "kAB" + name);
      EXPECT_EQ(declaredValue, value) << declared;
    }
  }
  EXPECT_EQ(count, 59U);
  EXPECT_EQ(constants.size(), 59U);
  EXPECT_EQ(host::constant("ABSearchElementVXR", "kABSearchAnd"), 0);
  EXPECT_EQ(host::constant("ABSearchElementVXR", "kABSearchOr"), 1);
}
