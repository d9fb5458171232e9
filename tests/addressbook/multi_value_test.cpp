#include "host/arrays.h"
#include "tests/addressbook/book_text.h"
#include "tests/addressbook/framework_calls.h"

namespace {

using host::Value;

const std::vector<Card> kContacts{
    person("Ada", "Lovelace", "p1", {"TEL;TYPE=HOME:1", "TEL;TYPE=WORK;TYPE=pref:2", "TEL;TYPE=HOME:3"})};

constexpr const char* kHome = "_$!<Home>!$_";

Value phonesOf(const Host& host) { return adaOf(host).call("valueForProperty", "Phone"); }

}  // namespace

TEST(MultiValue, LeavesUnknownEntriesToTheFramework) {
  const Host host{.contacts = kContacts};
  const Value phones = phonesOf(host);
  const Value edited = phones.call("edit");
  EXPECT_EQ(phones.call("indexForIdentifier", "nobody"), 2147483647);
  EXPECT_EQ(phones.call("indexForIdentifier", ""), 2147483647);
  const std::pair<const char*, host::Arguments> calls[] = {
      {"labelForIdentifier", {"nobody"}}, {"valueForIdentifier", {"nobody"}},
      {"labelForIdentifier", {""}},       {"valueAtIndex", {3}},
      {"labelAtIndex", {0xFFFFFFFFU}},    {"identifierAtIndex", {3}},
      {"insertValue", {"x", "y", 4}},     {"replaceValueAtIndex", {3, "x"}},
      {"replaceLabelAtIndex", {3, "x"}},  {"removeValueAndLabelAtIndex", {3}},
  };
  for (const auto& [member, arguments] : calls) {
    const std::string thrown = thrownBy([&, name = member, &given = arguments] { callMember(edited, name, given); });
    EXPECT_TRUE(thrown.starts_with("NSExceptionVXR: A Cocoa NSRangeException was not handled: ")) << member << thrown;
  }
  EXPECT_EQ(edited.call("setPrimaryIdentifier", "nobody"), false);
  EXPECT_EQ(multiValueText(edited), multiValueText(phones));
}

TEST(MultiValue, CopiesAreOneObjectWhereTheFrameworkHasOne) {
  const Host host{.contacts = kContacts};
  const Value phones = phonesOf(host);
  EXPECT_EQ(phonesOf(host), phones);
  EXPECT_EQ(phones.call("copy"), phones);
  const Value edited = phones.call("edit");
  EXPECT_NE(phones.call("edit"), edited);
  const Value copy = edited.call("copy");
  edited.call("addValue", "4", kHome);
  EXPECT_EQ(multiValueText(copy), multiValueText(phones));
  EXPECT_EQ(edited.call("edit").call("count"), 4);
}

// Host code reads neither lists nor dates without a time, but their entries' labels.
TEST(MultiValue, HasEntriesThatTheHostHasNoValueFor) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1",
                                      {"item1.X-ABDATE:2012-07-14", "item1.X-ABLabel:_$!<Anniversary>!$_"})}};
  const Value dates = adaOf(host).call("valueForProperty", "ABDateComponents");
  EXPECT_EQ(dates.call("propertyType"), 264);
  EXPECT_EQ(dates.call("labelAtIndex", 0), "_$!<Anniversary>!$_");
  EXPECT_TRUE(dates.call("valueAtIndex", 0).isNil());

  // Nor can it add what has no counterpart.
  const Value values = host.make("ABMutableMultiValueVXR");
  for (const Value& unfit : {Value(), Value(""), host::stringArray({"a"}), host.make("RuntimeException")}) {
    EXPECT_EQ(values.call("addValue", unfit, "label"), "");
    EXPECT_EQ(values.call("insertValue", unfit, "label", 0), "");
  }
  EXPECT_EQ(values.call("count"), 0);
}
