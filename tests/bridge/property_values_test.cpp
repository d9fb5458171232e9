#include "bridge/property_values.h"

#include "bridge/instance_registry.h"
#include "frame/host_ref.h"
#include "host/entries.h"
#include "platform/contacts/address_book.h"
#include "platform/contacts/constants.h"
#include "platform/contacts/multi_value.h"
#include "platform/objc/retained.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <vector>

TEST(PropertyValues, ReachTheHostByKind) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1")}};
  const NSNumber number = NSNumber::numberWithDouble(2.5);
  struct Case {
    NSObject value;
    std::int32_t type;
    std::string expected;
  };
  for (const Case& given : std::vector<Case>{
           {""_ns, kABStringProperty, "Nil"},
           {nullptr, kABStringProperty, "Nil"},
           {number, kABStringProperty, "Integer 2"},
           {NSNumber::numberWithInt(-7), kABRealProperty, "Double -7"},
           {NSData::dataWithBytes("", 0), kABDataProperty, "Nil"},
           {NSArray::arrayWithObject("x"_ns), kABArrayProperty, "Nil"},
           {NSURL::URLWithString("http://example.com"_ns), kABStringProperty, "Nil"},
           {NSNull::null(), kABStringProperty, "Nil"},
           {ABAddressBook::sharedAddressBook().people().objectAtIndex(0), kABStringProperty, "Nil"},
       }) {
    const REALvariant variant = GetValue(given.value, given.type);
    EXPECT_EQ(variant == nullptr, given.expected == "Nil");
    EXPECT_EQ(shown(take(variant)), given.expected) << given.type;
  }
}

TEST(PropertyValues, OfMultiValuesAreTheirOneWrapper) {
  const Host host{};
  CocoaInit();
  const auto values = Retained<ABMutableMultiValue>::adopt(ABMutableMultiValue::alloc().init());
  {
    const host::Value first = take(GetValue(values.get(), kABMultiStringProperty));
    const host::Value second = take(GetValue(values.get(), kABMultiStringProperty));
    EXPECT_EQ(first.typeName(), "ABMultiValueVXR");
    EXPECT_EQ(first.object(), second.object());
    EXPECT_EQ(FindInstance(values.get()), first.object());
    EXPECT_EQ(NewValue(first.object(), kABMultiStringProperty), values.get());
  }
  EXPECT_EQ(FindInstance(values.get()), nullptr);
  host::failNewInstance(1);
  EXPECT_EQ(GetValue(values.get(), kABMultiStringProperty), nullptr);
}
