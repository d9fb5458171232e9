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
#include <tuple>

namespace {

using host::Value;

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1", {"TEL;TYPE=HOME:1"}), group("Work", "g1")};

// The type that the framework was given last.
std::int64_t givenType = 0;

NSInteger noteType(Class, NSDictionary properties) {
  givenType = properties.objectForKey("mine"_ns).as<NSNumber>().longLongValue();
  return -1;
}

}  // namespace

TEST(Record, KeepsEachTypeOfValueAloneAndAmongOthers) {
  const Host host{.contacts = kContacts};
  const struct {
    const char* property;
    int type;
    Value value;
    std::string expected;
  } cases[] = {
      {"string", 1, "Zoë", "'Zoë'"},
      {"integer", 2, 7, "Integer 7"},
      {"real", 3, 2.5, "Double 2.5"},
      {"date", 4, host::date(2012, 7, 14, 9, 5, 7), "Date 2012-07-14 09:05:07"},
      {"dictionary", 6, host::dictionary({{"City", "Ghent"}}), "{'City'='Ghent'}"},
      {"data", 7, host::memoryBlock("abc"), "block abc"},
  };
  const std::tuple<const char*, Value, std::string> converted[] = {{"integer", true, "Integer 1"},
                                                                   {"integer", 2.5, "Integer 2"},
                                                                   {"real", 7, "Double 7"},
                                                                   {"string", "", "Nil"},
                                                                   {"data", nullptr, "Nil"}};
  for (const auto& [className, id] : {std::pair("ABPersonVXR", "p1:ABPerson"), {"ABGroupVXR", "g1:ABGroup"}}) {
    const Value record = recordOf(host, id);
    for (const auto& given : cases) {
      SCOPED_TRACE(given.expected);
      ASSERT_EQ(host.shared(className, "addProperty", given.property, given.type), 1);
      EXPECT_EQ(record.call("setValue", given.value, given.property), true);
      EXPECT_EQ(shown(record.call("valueForProperty", given.property)), given.expected);

      const std::string several = std::string("several ") + given.property;
      ASSERT_EQ(host.shared(className, "addProperty", several, given.type + 256), 1);
      const Value values = host.make("ABMutableMultiValueVXR");
      EXPECT_EQ(values.call("propertyType"), 0);
      for (int i = 0; i < 2; ++i) EXPECT_NE(values.call("addValue", given.value, "label"), "");
      EXPECT_EQ(record.call("setValue", values, several), true);
      for (const Value& each : {values, record.call("valueForProperty", several)}) {
        EXPECT_EQ(each.call("propertyType"), given.type + 256);
        EXPECT_EQ(shown(each.call("valueAtIndex", 1)), given.expected);
        EXPECT_EQ(shown(each.call("valueForLabel", "label")), given.expected);
        EXPECT_EQ(shown(each.call("valueForIdentifier", each.call("identifierAtIndex", 1))), given.expected);
      }
    }
    for (const auto& [property, value, expected] : converted) {
      EXPECT_EQ(record.call("setValue", value, property), true) << property;
      EXPECT_EQ(shown(record.call("valueForProperty", property)), expected) << property;
    }
    const std::string thrown = thrownBy([&] { record.call("setValue", 7, "string"); });
    EXPECT_TRUE(thrown.starts_with("NSExceptionVXR: A Cocoa NSInvalidArgumentException")) << thrown;
  }
}

TEST(Record, HasThePropertiesOfItsClass) {
  const Host host{};
  EXPECT_EQ(host.shared("ABGroupVXR", "properties").at(3), "GroupName");
  EXPECT_EQ(host.shared("ABPersonVXR", "properties").at(3), "First");
  EXPECT_EQ(host.shared("ABGroupVXR", "addProperty", "mine", 3), 1);
  EXPECT_EQ(host.shared("ABPersonVXR", "typeOfProperty", "mine"), 0);
}

TEST(Record, HasPropertyTypesWithoutSign) {
  for (const char* className : {"ABPerson", "ABGroup"}) {
    objc::ClassBuilder(Class(className)).classMethod<&noteType>("addPropertiesAndTypes:");
  }
  const Host host{};
  for (const char* className : {"ABPersonVXR", "ABGroupVXR"}) {
    for (const auto& [type, expected] : {std::pair(-1, 4294967295), {257, 257}, {-2147483647 - 1, 2147483648}}) {
      EXPECT_EQ(host.shared(className, "addProperty", "mine", type), -1);
      EXPECT_EQ(givenType, expected) << className;
    }
  }
}

TEST(Record, LeavesWhatIsUnknownToTheFramework) {
  const Host host{.contacts = kContacts, .withoutSelectors = {"linkedPeople"}};
  const Value ada = adaOf(host);
  EXPECT_TRUE(ada.call("valueForProperty", "NoSuchProperty").isNil());
  EXPECT_EQ(ada.call("setValue", "x", "NoSuchProperty"), false);
  EXPECT_NE(thrownBy([&] { ada.call("linkedPeople"); }).find("unrecognized selector"), std::string::npos);
}

TEST(Record, IsMadeWithOrWithoutABook) {
  const Host host{.contacts = kContacts};
  for (const char* className : {"ABRecordVXR", "ABMultiValueVXR", "ABSearchElementVXR"}) {
    EXPECT_EQ(host.make(className).get("Handle"), 0) << className;  // the framework makes these
  }
  const Value book = bookOf(host);
  for (const auto& [className, list] : {std::pair("ABPersonVXR", "people"), {"ABGroupVXR", "groups"}}) {
    EXPECT_NE(host.make(className).get("Handle"), 0);
    for (const Value& nobody : {Value(), emptyInstance(kBook)}) {
      EXPECT_TRUE(book.call("recordForUniqueId", host.make(className, nobody).call("uniqueId")).isNil());
    }
    const Value added = host.make(className, book);
    EXPECT_EQ(book.call("recordForUniqueId", added.call("uniqueId")), added);  // registered
    EXPECT_EQ(book.call(list).size(), 2U);
  }
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
  const Value ada = adaOf(host);
  constexpr const char* kNone = nullptr;
  const struct {
    const char *title, *first, *middle, *last, *suffix, *organization;
    int flags;
    NSInteger defaultOrdering;
    const char* expected;
  } cases[] = {
      {"Dr.", "Mira", kNone, "Tolen", kNone, "Co", 0, 32, "Dr. Mira Tolen"},
      {"Dr.", "Mira", kNone, "Tolen", kNone, "Co", 16, 32, "Dr. Tolen Mira"},
      {"Dr.", "Mira", "Jo", "Tolen", "Jr.", kNone, 16, 16, "Dr. Tolen Mira Jo Jr."},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 0, 16, "Tolen Mira"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, -1, 16, "Tolen Mira"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 0, 0, "Mira Tolen"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 48, 16, "Mira Tolen"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 8, 16, "Mira Tolen"},
      {kNone, "Mira", kNone, "Tolen", kNone, kNone, 64 + 16, 32, "Tolen Mira"},
      // Parts that are empty, but there, keep their blank.
      {kNone, "Mira", "", "Tolen", kNone, kNone, 0, 32, "Mira  Tolen"},
      {"", "Mira", kNone, "Tolen", "", kNone, 0, 32, " Mira Tolen "},
      {kNone, "", kNone, kNone, kNone, kNone, 0, 32, ""},
      // Nobody, and what isn't shown as a person.
      {kNone, kNone, kNone, kNone, kNone, "Co", 0, 32, "?"},
      {kNone, "Mira", kNone, kNone, kNone, "Co", 1, 32, "Co"},
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
  const Value ada = adaOf(host);
  ada.call("setValue", host::constant(kBook, "kABLastNameFirst"), "ABPersonFlags");
  EXPECT_EQ(ada.call("DisplayName"), "Lovelace Ada");
  const Value work = recordOf(host, "g1:ABGroup");
  EXPECT_EQ(work.call("DisplayName"), "Work");
  work.call("removeValueForProperty", "GroupName");
  EXPECT_EQ(work.call("DisplayName"), "");
}
