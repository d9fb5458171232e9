#include "host/objects.h"
#include "platform/contacts/people_picker.h"
#include "platform/foundation/date.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/exception.h"
#include "platform/objc/retained.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include <dlfcn.h>

namespace {

// What the picker of a test answers; unset: the real values.
CFArrayRef (*selectedValues)() = nullptr;

CFArrayRef owned(NSArray array) { return bridge<CFArrayRef>(Retained<NSArray>::share(array).leak()); }

NSDate dateAt(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

NSDictionary address() { return NSDictionary::dictionaryWithObject("Paris"_ns, "City"_ns); }

}  // namespace

// Stands before the framework's own.
extern "C" CFArrayRef ABPickerCopySelectedValues(ABPickerRef picker) {
  if (selectedValues != nullptr) return selectedValues();
  static const auto real =
      reinterpret_cast<CFArrayRef (*)(ABPickerRef)>(dlsym(RTLD_NEXT, "ABPickerCopySelectedValues"));
  return real(picker);
}

TEST(MixedValues, AreSortedByKindWithoutGapsAndMayBeMissingOrRaise) {
  const Host host{};
  const host::Value picker = host.make("ABPickerVXR");
  picker.call("Create");
  setenv("TZ", "Pacific/Kiritimati", 1);  // 14 hours ahead: an evening is on the next day, a noon GMT stays on its own
  selectedValues = [] {
    return owned(NSArray::arrayWithObjects(
        {"a@b"_ns, address(), dateAt(43200), dateAt(-3600), dateAt(-12498494400), "c@d"_ns, address()}));
  };
  EXPECT_EQ(picker.call("SelectedStrings").elements(), (std::vector<host::Value>{"a@b", "c@d"}));
  EXPECT_EQ(picker.call("SelectedValues").elements(),
            (std::vector<host::Value>{"a@b", "Paris", "2001-01-01", "2001-01-01", "--12-09", "c@d", "Paris"}));
  const host::Value dictionaries = picker.call("SelectedDictionaries");
  ASSERT_EQ(dictionaries.size(), 2U);
  EXPECT_EQ(dictionaries.at(1).call("Value", "City"), "Paris");

  for (const char* member : {"SelectedValues", "SelectedStrings", "SelectedDictionaries"}) {
    selectedValues = [] { return CFArrayRef(); };
    EXPECT_EQ(picker.call(member).size(), 0U) << member;
    selectedValues = []() -> CFArrayRef { NSException::raise("Refused"_ns, "because"_ns); };
    EXPECT_EQ(thrownBy([&] { picker.call(member); }), "NSExceptionVXR: A Cocoa Refused was not handled: because");
  }
}
