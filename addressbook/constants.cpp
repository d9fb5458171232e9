#include "addressbook/constants.h"

#include "bridge/strings.h"
#include "frame/member_table.h"
#include "frame/plugin_entry.h"
#include "platform/contacts/constants.h"
#include "platform/foundation/cf_bundle.h"

#include <utility>

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

struct StringConstant {
  const char* name;
  const char* declaration;
  bool isLinked;           // else looked up by name: the framework may be older than the constant
  const NSString* symbol;  // null while the framework is missing
};

#define LINKED_CONSTANT(name, text) StringConstant{#name, #name " as string", true, &name},
#define LOOKED_UP_CONSTANT(name, text) StringConstant{#name, #name " as string", false, nullptr},
constinit const std::array kStringConstants{AB_STRING_CONSTANTS(LINKED_CONSTANT, LOOKED_UP_CONSTANT)};
#undef LINKED_CONSTANT
#undef LOOKED_UP_CONSTANT
static_assert(kStringConstants.size() == kStringConstantCount);

// What a look-up found; it is made once, when the framework's bundle is there.
struct LookUp {
  bool loaded = false;
  NSString value;
};

std::array<LookUp, kStringConstantCount> lookUps;

NSString lookedUp(const StringConstant& constant, LookUp& lookUp) {
  if (lookUp.loaded || AddressbookFramework == nullptr) return lookUp.value;
  lookUp.loaded = true;
  NSString name = NSString::stringWithUTF8String(constant.name);
  const void* address = CFBundleGetDataPointerForName(AddressbookFramework, bridge<CFStringRef>(name));
  if (address != nullptr) lookUp.value = *static_cast<const NSString*>(address);
  return lookUp.value;
}

template <std::size_t Index>
REALstring getStringConstant() {
  const StringConstant& constant = kStringConstants[Index];
  if (!constant.isLinked) return NSStringRB(lookedUp(constant, lookUps[Index]));
  return constant.symbol == nullptr ? nullptr : NSStringRB(*constant.symbol);
}

template <std::size_t... Index>
void describe(std::span<REALmethodDefinition> methods, std::index_sequence<Index...>) {
  ((methods[Index] = {reinterpret_cast<void*>(&getStringConstant<Index>), nullptr, kStringConstants[Index].declaration,
                      kMethodFlags}),
   ...);
}

}  // namespace

void describeStringConstants(std::span<REALmethodDefinition, kStringConstantCount> methods) {
  describe(methods, std::make_index_sequence<kStringConstantCount>());
}
