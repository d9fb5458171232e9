#include "platform/contacts/record.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/memory_blocks.h"
#include "platform/contacts/address_book.h"
#include "platform/contacts/constants.h"
#include "platform/foundation/number.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/framework_calls.h"

#include <map>

namespace {

using host::Value;

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1", {"TEL;TYPE=HOME:1"}), group("Work", "g1")};

constexpr const char* kBook = "ABAddressBookVXR";

Value recordOf(const Host& host, const char* id) {
  return host.shared(kBook, "sharedAddressbook").call("recordForUniqueId", id);
}

}  // namespace

TEST(Record, KeepsEachTypeOfValue) {
  const Host host{.contacts = kContacts};
  for (const char* name : {"string", "integer", "real", "date", "dictionary", "data"}) {
    const auto type = host::constant(kBook, std::string("kAB") + name + "Property");
    for (const char* className : {"ABPersonVXR", "ABGroupVXR"}) {
      ASSERT_EQ(host.shared(className, "addProperty", name, type), 1);
    }
  }
  const struct {
    const char* property;
    Value value;
    std::string expected;
  } cases[] = {
      {"string", "Zoë", "'Zoë'"},
      {"integer", 7, "Integer 7"},
      {"integer", true, "Integer 1"},
      {"integer", 2.5, "Integer 2"},
      {"real", 2.5, "Double 2.5"},
      {"real", 7, "Double 7"},
      {"date", host::date(2012, 7, 14, 9, 5, 7), "Date 2012-07-14 09:05:07"},
      {"dictionary", host::dictionary({{"City", "Ghent"}}), "{'City'='Ghent'}"},
      {"data", host::memoryBlock("abc"), "block abc"},
      {"string", "", "Nil"},
      {"data", nullptr, "Nil"},
  };
  for (const char* id : {"p1:ABPerson", "g1:ABGroup"}) {
    const Value record = recordOf(host, id);
    for (const auto& given : cases) {
      EXPECT_EQ(record.call("setValue", given.value, given.property), true) << given.property;
      EXPECT_EQ(shown(record.call("valueForProperty", given.property)), given.expected) << given.property;
    }
    const std::string thrown = thrownBy([&] { record.call("setValue", 7, "string"); });
    EXPECT_TRUE(thrown.starts_with("NSExceptionVXR: A Cocoa NSInvalidArgumentException")) << thrown;
  }
}

TEST(Record, LeavesUnknownPropertiesToTheFramework) {
  const Host host{.contacts = kContacts};
  const Value ada = recordOf(host, "p1:ABPerson");
  EXPECT_TRUE(ada.call("valueForProperty", "NoSuchProperty").isNil());
  EXPECT_EQ(ada.call("setValue", "x", "NoSuchProperty"), false);
}

TEST(Record, HasOneObjectForAMultiValueWhileItLives) {
  const Host host{.contacts = kContacts};
  const Value ada = recordOf(host, "p1:ABPerson");
  const Value phones = ada.call("valueForProperty", "Phone");
  EXPECT_EQ(phones.typeName(), "ABMultiValueVXR");
  EXPECT_EQ(ada.call("valueForProperty", "Phone"), phones);
}

TEST(Record, OfNeitherKindHasNoName) {
  const Host host{.contacts = kContacts};
  const Value book = host.shared(kBook, "sharedAddressbook");
  const Value odd = host.make("ABRecordVXR");
  odd.set("Handle", book.get("Handle"));
  EXPECT_NE(thrownBy([&] { odd.call("DisplayName"); }).find("displayNameVXR]: unrecognized selector"),
            std::string::npos);
  odd.set("Handle", 0);
}

namespace {

// A framework whose people have these values, and whose book this default.
std::map<std::string, const char*> texts;
int flags = 0;
NSInteger defaultOrdering = 0;

NSObject fakeValue(ABPerson, NSString property) {
  if (property.isEqualToString(kABPersonFlags)) return flags < 0 ? NSObject() : NSNumber::numberWithInt(flags);
  const char* text = texts[property.UTF8String()];
  return text == nullptr ? NSObject() : NSString::stringWithUTF8String(text);
}

NSInteger fakeOrdering(ABAddressBook) { return defaultOrdering; }

}  // namespace

TEST(DisplayName, FollowsFlagsAndTheBooksDefault) {
  objc::ClassBuilder(Class("ABPerson")).method<&fakeValue>("valueForProperty:");
  objc::ClassBuilder(Class("ABAddressBook")).method<&fakeOrdering>("defaultNameOrdering");
  const Host host{.contacts = kContacts};
  const Value ada = recordOf(host, "p1:ABPerson");
  constexpr const char* kNone = nullptr;
  const struct {
    const char *title, *first, *middle, *last, *suffix, *organization;
    int flags;
    NSInteger defaultOrdering;
    const char* expected;
  } cases[] = {
      {"Dr.", "Mira", kNone, "Tolen", kNone, "Co", 0, 32, "Dr. Mira Tolen"},
      {"Dr.", "Mira", kNone, "Tolen", kNone, "Co", 16, 32, "Dr. Tolen Mira"},
      {"Dr.", "Mira", "Jo", "Tolen", "Jr.", kNone, 32, 16, "Dr. Mira Jo Tolen Jr."},
      {"Dr.", "Mira", "Jo", "Tolen", "Jr.", kNone, 16, 16, "Dr. Tolen Mira Jo Jr."},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 0, 16, "Tolen Mira"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, -1, 16, "Tolen Mira"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 0, 0, "Mira Tolen"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 48, 16, "Mira Tolen"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 8, 16, "Mira Tolen"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 64 + 16, 32, "Tolen Mira"},
      {kNone, kNone, kNone, "Tolen", kNone, kNone, 0, 32, "Tolen"},
      // Parts that are empty, but there, keep their blank.
      {kNone, "Mira", "", "Tolen", kNone, kNone, 0, 32, "Mira  Tolen"},
      {"", "Mira", kNone, "Tolen", "", kNone, 0, 32, " Mira Tolen "},
      {kNone, "", kNone, kNone, kNone, kNone, 0, 32, ""},
      // Nobody, and what isn't shown as a person.
      {kNone, kNone, kNone, kNone, kNone, "Co", 0, 32, "?"},
      {kNone, "Mira", kNone, kNone, kNone, "Co", 1, 32, "Co"},
      {kNone, "Mira", kNone, kNone, kNone, "Co", 2, 32, "Co"},
      {kNone, "Mira", kNone, kNone, kNone, "Co", 3 + 16, 32, "Co"},
      {kNone, "Mira", kNone, kNone, kNone, "Co", 4, 32, "Co"},
      {kNone, "Mira", kNone, kNone, kNone, kNone, 1, 32, ""},
  };
  for (const auto& given : cases) {
    texts = {{"Title", given.title}, {"First", given.first},   {"Middle", given.middle},
             {"Last", given.last},   {"Suffix", given.suffix}, {"Organization", given.organization}};
    flags = given.flags;
    defaultOrdering = given.defaultOrdering;
    EXPECT_EQ(ada.call("DisplayName"), given.expected) << given.flags << ", " << given.defaultOrdering;
  }
}

TEST(DisplayName, IsOfTheRecordAsItIsNow) {
  const Host host{.contacts = kContacts};
  const Value ada = recordOf(host, "p1:ABPerson");
  ada.call("setValue", "Engines", "Organization");
  ada.call("setValue", host::constant(kBook, "kABLastNameFirst"), "ABPersonFlags");
  EXPECT_EQ(ada.call("DisplayName"), "Lovelace Ada");
  ada.call("setValue", host::constant(kBook, "kABShowAsCompany"), "ABPersonFlags");
  EXPECT_EQ(ada.call("DisplayName"), "Engines");
  const Value work = recordOf(host, "g1:ABGroup");
  EXPECT_EQ(work.call("DisplayName"), "Work");
  work.call("removeValueForProperty", "GroupName");
  EXPECT_EQ(work.call("DisplayName"), "");
}
