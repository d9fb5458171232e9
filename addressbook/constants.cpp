#include "addressbook/constants.h"

#include "bridge/strings.h"
#include "frame/member_table.h"
#include "frame/plugin_entry.h"
#include "platform/contacts/constants.h"
#include "platform/foundation/cf_bundle.h"

std::array<REALconstant, kIntegerConstantCount> integerConstants{{
    {"ABAddRecordsError = 1001"},
    {"ABRemoveRecordsError = 1002"},
    {"ABPropertyValueValidationError = 1012"},
    {"ABPropertyUnsupportedBySourceError = 1013"},
    {"ABPropertyReadOnlyError = 1014"},
    {"kABShowAsMask = 7"},
    {"kABShowAsPerson = 0"},
    {"kABShowAsCompany = 1"},
    {"kABShowAsResource = 2"},
    {"kABShowAsRoom = 3"},
    {"kABNameOrderingMask = &h38"},
    {"kABDefaultNameOrdering = 0"},
    {"kABFirstNameFirst = &h20"},
    {"kABLastNameFirst = &h10"},
    {"kABSearchAnd = 0"},
    {"kABSearchOr = 1"},
    {"kABEqual = 0"},
    {"kABNotEqual = 1"},
    {"kABLessThan = 2"},
    {"kABLessThanOrEqual = 3"},
    {"kABGreaterThan = 4"},
    {"kABGreaterThanOrEqual = 5"},
    {"kABEqualCaseInsensitive = 6"},
    {"kABContainsSubString = 7"},
    {"kABContainsSubStringCaseInsensitive = 8"},
    {"kABPrefixMatch = 9"},
    {"kABPrefixMatchCaseInsensitive = 10"},
    {"kABBitsInBitFieldMatch = 11"},
    {"kABDoesNotContainSubString = 12"},
    {"kABDoesNotContainSubStringCaseInsensitive = 13"},
    {"kABNotEqualCaseInsensitive = 14"},
    {"kABSuffixMatch = 15"},
    {"kABSuffixMatchCaseInsensitive = 16"},
    {"kABWithinIntervalAroundToday = 17"},
    {"kABWithinIntervalAroundTodayYearless = 18"},
    {"kABNotWithinIntervalAroundToday = 19"},
    {"kABNotWithinIntervalAroundTodayYearless = 20"},
    {"kABWithinIntervalFromToday = 21"},
    {"kABWithinIntervalFromTodayYearless = 22"},
    {"kABNotWithinIntervalFromToday = 23"},
    {"kABNotWithinIntervalFromTodayYearless = 24"},
    {"kABMultiValueMask = &h100"},
    {"kABErrorInProperty = 0"},
    {"kABStringProperty = 1"},
    {"kABIntegerProperty = 2"},
    {"kABRealProperty = 3"},
    {"kABDateProperty = 4"},
    {"kABArrayProperty = 5"},
    {"kABDictionaryProperty = 6"},
    {"kABDataProperty = 7"},
    {"kABDateComponentsProperty = 8"},
    {"kABMultiStringProperty = 257"},
    {"kABMultiIntegerProperty = 258"},
    {"kABMultiRealProperty = 259"},
    {"kABMultiDateProperty = 260"},
    {"kABMultiArrayProperty = 261"},
    {"kABMultiDictionaryProperty = 262"},
    {"kABMultiDataProperty = 263"},
    {"kABMultiDateComponentsProperty = 264"},
}};

namespace {

// What a look-up found; it is made once, when the framework's bundle is there.
struct LookUp {
  bool loaded = false;
  NSString value;
};

NSString lookedUp(const char* name, LookUp& lookUp) {
  if (lookUp.loaded || AddressbookFramework == nullptr) return lookUp.value;
  lookUp.loaded = true;
  const void* address =
      CFBundleGetDataPointerForName(AddressbookFramework, bridge<CFStringRef>(NSString(NSConstantString(name))));
  if (address != nullptr) lookUp.value = *static_cast<const NSString*>(address);
  return lookUp.value;
}

#define LINKED_CONSTANT(name, text) \
  REALstring get##name() { return PLATFORM_HAS(&name) ? NSStringRB(name) : nullptr; }
#define LOOKED_UP_CONSTANT(name, text)          \
  REALstring get##name() {                      \
    static constinit LookUp lookUp;             \
    return NSStringRB(lookedUp(#name, lookUp)); \
  }
AB_STRING_CONSTANTS(LINKED_CONSTANT, LOOKED_UP_CONSTANT)
#undef LINKED_CONSTANT
#undef LOOKED_UP_CONSTANT

}  // namespace

std::array<REALmethodDefinition, kStringConstantCount> stringConstantMethods() {
#define CONSTANT_ROW(name, text) sharedMethod<#name " as string">(get##name),
  return {AB_STRING_CONSTANTS(CONSTANT_ROW, CONSTANT_ROW)};
#undef CONSTANT_ROW
}
