#include "host/arrays.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/memory_blocks.h"
#include "tests/addressbook/book_text.h"
#include "tests/addressbook/framework_calls.h"
#include "tests/contacts/in_child.h"

namespace {

using host::Value;

const std::vector<Card> kContacts{
    person("Ada", "Lovelace", "p1", {"TEL;TYPE=HOME:1", "TEL;TYPE=WORK;TYPE=pref:2", "TEL;TYPE=HOME:3"})};

constexpr const char* kBook = "ABAddressBookVXR";
constexpr const char* kHome = "_$!<Home>!$_";
constexpr const char* kWork = "_$!<Work>!$_";

Value adaOf(const Host& host) {
  return host.shared(kBook, "sharedAddressbook").call("recordForUniqueId", "p1:ABPerson");
}

Value phonesOf(const Host& host) { return adaOf(host).call("valueForProperty", "Phone"); }

}  // namespace

TEST(MultiValue, LeavesUnknownEntriesToTheFramework) {
  const Host host{.contacts = kContacts};
  const Value phones = phonesOf(host);
  const Value edited = phones.call("edit");
  EXPECT_EQ(phones.call("indexForIdentifier", "nobody"), 2147483647);
  EXPECT_EQ(phones.call("indexForIdentifier", ""), 2147483647);
  const std::function<void()> calls[] = {
      [&] { phones.call("labelForIdentifier", "nobody"); }, [&] { phones.call("valueForIdentifier", "nobody"); },
      [&] { phones.call("labelForIdentifier", ""); },       [&] { phones.call("valueAtIndex", 3); },
      [&] { phones.call("labelAtIndex", 0xFFFFFFFFU); },    [&] { phones.call("identifierAtIndex", 3); },
      [&] { edited.call("insertValue", "x", "y", 4); },     [&] { edited.call("replaceValueAtIndex", 3, "x"); },
      [&] { edited.call("replaceLabelAtIndex", 3, "x"); },  [&] { edited.call("removeValueAndLabelAtIndex", 3); },
  };
  for (std::size_t i = 0; i < std::size(calls); ++i) {
    const std::string thrown = thrownBy(calls[i]);
    EXPECT_TRUE(thrown.starts_with("NSExceptionVXR: A Cocoa NSRangeException was not handled: ")) << i << thrown;
  }
  EXPECT_EQ(edited.call("setPrimaryIdentifier", "nobody"), false);
  EXPECT_EQ(multiValueText(edited), multiValueText(phones));
}

TEST(MultiValue, FindsTheLastEntryOfALabel) {
  const Host host{.contacts = kContacts};
  const Value phones = phonesOf(host);
  EXPECT_EQ(phones.call("valueForLabel", kHome), "3");
  EXPECT_TRUE(phones.call("valueForLabel", "_$!<home>!$_").isNil());
  EXPECT_TRUE(phones.call("valueForLabel", "boat").isNil());
}

TEST(MultiValue, CopiesAreOneObjectWhereTheFrameworkHasOne) {
  const Host host{.contacts = kContacts};
  const Value phones = phonesOf(host);
  EXPECT_EQ(phones.call("copy"), phones);
  const Value edited = phones.call("edit");
  EXPECT_NE(phones.call("edit"), edited);
  const Value copy = edited.call("copy");
  edited.call("addValue", "4", kHome);
  EXPECT_EQ(multiValueText(copy), multiValueText(phones));
  EXPECT_EQ(edited.call("edit").call("count"), 4);
}

TEST(MultiValue, IsTheSameAfterEditingStoringAndReopening) {
  const Host host{.contacts = kContacts};
  const auto expected = host.folder() / "expected";
  inChild([&] {
    const Value ada = adaOf(host);
    const Value phones = phonesOf(host);
    const std::string before = multiValueText(phones);
    const Value edited = phones.call("edit");
    const Value last = edited.call("addValue", "+32 4 999", "boat; \"x\", y");
    edited.call("insertValue", "0", kWork, 0);
    edited.call("removeValueAndLabelAtIndex", 1);
    edited.call("replaceValueAtIndex", 1, "22");
    edited.call("replaceLabelAtIndex", 2, "car");
    edited.call("setPrimaryIdentifier", last);
    const std::string text = multiValueText(edited);
    EXPECT_EQ(multiValueText(phonesOf(host)), before);

    EXPECT_EQ(ada.call("setValue", edited, "Phone"), true);
    EXPECT_EQ(multiValueText(phonesOf(host)), text);
    EXPECT_EQ(multiValueText(phones), before);
    edited.call("addValue", "later", kHome);
    EXPECT_EQ(multiValueText(phonesOf(host)), text);
    EXPECT_EQ(host.shared(kBook, "sharedAddressbook").call("save"), true);
    std::ofstream(expected) << text;
  });
  EXPECT_EQ(multiValueText(phonesOf(host)), bytesOf(expected));
}

TEST(MultiValue, HoldsEachTypeOfEntry) {
  const Host host{.contacts = kContacts};
  const struct {
    const char* name;
    int type;
    Value first, second;
    std::string expected;  // of the second
  } cases[] = {
      {"string", 257, "a", "b", "'b'"},
      {"integer", 258, 1, 2, "Integer 2"},
      {"real", 259, 1.5, 2.5, "Double 2.5"},
      {"date", 260, host::date(2001, 1, 1), host::date(2012, 7, 14, 9, 5, 7), "Date 2012-07-14 09:05:07"},
      {"dictionary", 262, host::dictionary({{"a", 1}}), host::dictionary({{"b", "c"}}), "{'b'='c'}"},
      {"data", 263, host::memoryBlock("a"), host::memoryBlock("b"), "block b"},
  };
  const auto check = [&](const Value& values, const auto& given) {
    EXPECT_EQ(values.call("propertyType"), given.type);
    EXPECT_EQ(shown(values.call("valueAtIndex", 1)), given.expected);
    EXPECT_EQ(shown(values.call("valueForLabel", "label")), given.expected);
    EXPECT_EQ(shown(values.call("valueForIdentifier", values.call("identifierAtIndex", 1))), given.expected);
  };
  const Value ada = adaOf(host);
  for (const auto& given : cases) {
    SCOPED_TRACE(given.name);
    const Value values = host.make("ABMutableMultiValueVXR");
    EXPECT_EQ(values.call("propertyType"), 0);
    EXPECT_NE(values.call("addValue", given.first, "label"), "");
    EXPECT_NE(values.call("addValue", given.second, "label"), "");
    check(values, given);
    EXPECT_EQ(host.shared("ABPersonVXR", "addProperty", given.name, given.type), 1);
    EXPECT_EQ(ada.call("setValue", values, given.name), true);
    check(ada.call("valueForProperty", given.name), given);
  }
  // What has no counterpart isn't added: of lists and of dates without a time nothing comes from the host.
  const Value values = host.make("ABMutableMultiValueVXR");
  for (const Value& unfit : {Value(), Value(""), host::stringArray({"a"}), host.make("RuntimeException")}) {
    EXPECT_EQ(values.call("addValue", unfit, "label"), "");
    EXPECT_EQ(values.call("insertValue", unfit, "label", 0), "");
  }
  EXPECT_EQ(values.call("count"), 0);
}

// Host code reads neither lists nor dates without a time, but their entries' labels.
TEST(MultiValue, HasEntriesThatTheHostHasNoValueFor) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1",
                                      {"item1.X-ABDATE:2012-07-14", "item1.X-ABLabel:_$!<Anniversary>!$_"})}};
  const Value dates = adaOf(host).call("valueForProperty", "ABDateComponents");
  EXPECT_EQ(dates.call("propertyType"), 264);
  EXPECT_EQ(dates.call("labelAtIndex", 0), "_$!<Anniversary>!$_");
  EXPECT_TRUE(dates.call("valueAtIndex", 0).isNil());
}
