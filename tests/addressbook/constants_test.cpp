#include "platform/contacts/constants.h"

#include "platform/foundation/cf_bundle.h"
#include "tests/addressbook/member_rows.h"

#include <cstdint>
#include <map>

namespace {

constexpr const char* kBook = "ABAddressBookVXR";

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

// Inside the development environment the bundle isn't loaded.
TEST(Constants, OfLaterFrameworksNeedTheBundle) {
  const Host host{.runtime = false};
  for (const auto& [name, text, isLater] : kStrings) {
    EXPECT_EQ(host.shared(kBook, name), isLater ? "" : text) << name;
  }
}

TEST(Constants, OfIntegersHaveTheFrameworksValues) {
  const Host host{};
  std::map<std::string, std::int64_t> expected{
      {"ABAddRecordsError", 1001},
      {"ABRemoveRecordsError", 1002},
      {"ABPropertyValueValidationError", 1012},
      {"ABPropertyUnsupportedBySourceError", 1013},
      {"ABPropertyReadOnlyError", 1014},
      {"kABShowAsMask", 7},
      {"kABShowAsPerson", 0},
      {"kABShowAsCompany", 1},
      {"kABShowAsResource", 2},
      {"kABShowAsRoom", 3},
      {"kABNameOrderingMask", 56},
      {"kABDefaultNameOrdering", 0},
      {"kABFirstNameFirst", 32},
      {"kABLastNameFirst", 16},
      {"kABSearchAnd", 0},
      {"kABSearchOr", 1},
      {"kABMultiValueMask", 256},
      {"kABErrorInProperty", 0},
  };
  const char* const comparisons[] = {
      "kABEqual",
      "kABNotEqual",
      "kABLessThan",
      "kABLessThanOrEqual",
      "kABGreaterThan",
      "kABGreaterThanOrEqual",
      "kABEqualCaseInsensitive",
      "kABContainsSubString",
      "kABContainsSubStringCaseInsensitive",
      "kABPrefixMatch",
      "kABPrefixMatchCaseInsensitive",
      "kABBitsInBitFieldMatch",
      "kABDoesNotContainSubString",
      "kABDoesNotContainSubStringCaseInsensitive",
      "kABNotEqualCaseInsensitive",
      "kABSuffixMatch",
      "kABSuffixMatchCaseInsensitive",
      "kABWithinIntervalAroundToday",
      "kABWithinIntervalAroundTodayYearless",
      "kABNotWithinIntervalAroundToday",
      "kABNotWithinIntervalAroundTodayYearless",
      "kABWithinIntervalFromToday",
      "kABWithinIntervalFromTodayYearless",
      "kABNotWithinIntervalFromToday",
      "kABNotWithinIntervalFromTodayYearless",
  };
  for (std::size_t i = 0; i < std::size(comparisons); ++i) expected[comparisons[i]] = static_cast<std::int64_t>(i);
  const char* const kinds[] = {"String", "Integer", "Real", "Date", "Array", "Dictionary", "Data", "DateComponents"};
  for (std::size_t i = 0; i < std::size(kinds); ++i) {
    const auto type = static_cast<std::int64_t>(i + 1);
    expected["kAB" + std::string(kinds[i]) + "Property"] = type;
    expected["kABMulti" + std::string(kinds[i]) + "Property"] = 256 + type;
  }

  std::map<std::string, std::int64_t> declared;
  for (const auto& [name, value] : host::requireClass(kBook).constants) declared[name] = value;
  EXPECT_EQ(declared, expected);
  EXPECT_EQ(host::requireClass(kBook).constants.size(), 59U);
  for (const char* name : {"kABSearchAnd", "kABSearchOr"}) {
    EXPECT_EQ(host::constant("ABSearchElementVXR", name), expected[name]);
  }
}
