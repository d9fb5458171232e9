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
           {"Zoë"_ns, kABStringProperty, "'Zoë'"},
           {nullptr, kABStringProperty, "Nil"},
           {""_ns, kABStringProperty, "Nil"},
           {number, kABRealProperty, "Double 2.5"},
           {number, kABIntegerProperty, "Integer 2"},
           {number, kABStringProperty, "Integer 2"},
           {NSNumber::numberWithBool(true), kABIntegerProperty, "Integer 1"},
           {NSNumber::numberWithInt(-7), kABRealProperty, "Double -7"},
           {NSCalendarDate::dateWithYear(2012, 7, 14, 9, 5, 7, nullptr), kABDateProperty, "Date 2012-07-14 09:05:07"},
           {NSDictionary::dictionaryWithObject("value"_ns, "key"_ns), kABDictionaryProperty, "{'key'='value'}"},
           {NSData::dataWithBytes("abc", 3), kABDataProperty, "block abc"},
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
