#include "host/arrays.h"
#include "host/dictionaries.h"
#include "host/memory_blocks.h"
#include "platform/appkit/workspace.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/framework_calls.h"

#include <algorithm>
#include <vector>

// Every member as a row: what it sends to the framework, what it answers, and what when something is missing or the
// framework raises.
namespace {

using host::Value;

constexpr const char* kAnything = "*";
constexpr const char* kTrue = "Boolean True";
constexpr const char* kFalse = "Boolean False";

struct Row {
  const char* member;
  host::Arguments arguments;
  const char* selector;  // of the framework's part
  std::string result;    // kAnything: not compared
  std::string neutral;
  std::vector<std::size_t> passedOn = {};  // arguments that may be missing
  const char* sharedBy = nullptr;          // the class of a shared method

  // The answer, and how often the selector was sent.
  [[nodiscard]] std::pair<std::string, int> outcome(const Value& self, const host::Arguments& given,
                                                    int raiseAt = 0) const {
    const Sends sends(selector, raiseAt);
    const Value answer =
        sharedBy == nullptr ? host::callMember(self, member, given) : host::callSharedMember(sharedBy, member, given);
    const int count = sends.count();
    return {told(answer), count};
  }
};

using Rows = std::vector<Row>;

const std::vector<Card> kContacts{
    person("Ada", "Lovelace", "p1",
           {"EMAIL:ada@x.org", "EMAIL:2@x.org", "TEL;TYPE=HOME:1", "TEL;TYPE=WORK:2", "TEL;TYPE=HOME:3"}),
    person("Grace", "Hopper", "p2", {"EMAIL:ADA@x.org"}), group("work", "g1", {"p1", "g2"}),
    group("Work", "g2", {"p1"}), group("Work", "g3", {"g1"})};

Value work(const Host& host) { return recordOf(host, "g1:ABGroup"); }
Value phones(const Host& host) { return adaOf(host).call("valueForProperty", "Phone"); }
Value editedPhones(const Host& host) { return phones(host).call("edit"); }
Value search(const Host& host) {
  return host.shared("ABPersonVXR", "searchElementForProperty", "First", "", "", "Ada", 0);
}

// The rows below stand in an order in which each finds what it needs.

Rows bookRows(const Host& host) {
  return {
      {"recordsMatchingSearchElement", {search(host)}, "recordsMatchingSearchElement:", "[p1:ABPerson]", "[]"},
      {"groups", {}, "groups", "[g1:ABGroup g2:ABGroup g3:ABGroup]", "[]"},
      {"people", {}, "people", "[p1:ABPerson p2:ABPerson]", "[]"},
      {"setMe", {adaOf(host)}, "setMe:", "Nil", "Nil", {0}},
      {"owner", {}, "me", "p1:ABPerson", "Nil"},
      {"hasUnsavedChanges", {}, "hasUnsavedChanges", kTrue, kFalse},
      {"save", {}, "save", kTrue, kFalse},
      {"defaultCountryCode", {}, "defaultCountryCode", "'us'", "''"},
      {"defaultNameOrdering", {}, "defaultNameOrdering", "Integer 32", "Integer 0"},
      {"recordClassFromUniqueId", {"g1:ABGroup"}, "recordClassFromUniqueId:", "'ABGroup'", "''"},
      {"recordForUniqueId", {"g1:ABGroup"}, "recordForUniqueId:", "g1:ABGroup", "Nil"},
      {"personForUniqueId", {"p2:ABPerson"}, "recordForUniqueId:", "p2:ABPerson", "Nil"},
      {"groupForUniqueId", {"g2:ABGroup"}, "recordForUniqueId:", "g2:ABGroup", "Nil"},
      {"groupForName", {"Work"}, "groups", "g2:ABGroup", "Nil", {0}},
      {"peopleForEmail", {"aDA@x.org"}, "recordsMatchingSearchElement:", "[p1:ABPerson p2:ABPerson]", "[]"},
      {"removeRecord", {adaOf(host)}, "removeRecord:", kTrue, kFalse},
      {"addRecord", {adaOf(host)}, "addRecord:", kTrue, kFalse},
      {"formattedAddressFromDictionary",
       {host::dictionary({{"City", "Ghent"}})},
       "formattedAddressFromDictionary:",
       "NSAttributedStringVXR",
       "Nil"},
  };
}

Rows recordRows(const char* id, const char* property) {
  return {
      {"setValue", {"Countess", property}, "setValue:forProperty:", kTrue, kFalse, {0}},
      {"valueForProperty", {property}, "valueForProperty:", "'Countess'", "Nil"},
      {"uniqueId", {}, "uniqueId", id, "''"},
      {"isReadOnly", {}, "isReadOnly", kFalse, kFalse},
      {"DisplayName", {}, "displayNameVXR", kAnything, "''"},
      {"Description", {}, "description", kAnything, "''"},
      {"removeValueForProperty", {property}, "removeValueForProperty:", kTrue, kFalse},
  };
}

bool openNothing(NSWorkspace, NSURL) { return true; }

Rows personRows(const Host&) {
  objc::ClassBuilder(Class("NSWorkspace")).method<&openNothing>("openURL:");
  return {
      {"vCardRepresentation", {}, "vCardRepresentation", kAnything, "Nil"},
      {"parentGroups", {}, "parentGroups", "[g1:ABGroup g2:ABGroup]", "[]"},
      {"setImageData", {host::memoryBlock(kPicture)}, "setImageData:", kTrue, kFalse, {0}},
      {"imageData", {}, "imageData", "block " + kPicture, "Nil"},
      {"image", {}, "imageData", "NSImageVXR", "Nil"},
      {"ShowInAddressbook", {}, "openURL:", kTrue, kFalse},
      {"EditInAddressbook", {}, "uniqueId", kTrue, kFalse},
      {"linkedPeople", {}, "linkedPeople", "[p1:ABPerson]", "[]"},
  };
}

Rows groupRows(const Host& host) {
  const Value grace = recordOf(host, "p2:ABPerson");
  const Value sub = recordOf(host, "g2:ABGroup");
  return {
      {"members", {}, "members", "[p1:ABPerson]", "[]"},
      {"subgroups", {}, "subgroups", "[g2:ABGroup]", "[]"},
      {"parentGroups", {}, "parentGroups", "[g3:ABGroup]", "[]"},
      {"distributionIdentifierForProperty",
       {"Email", adaOf(host)},
       "distributionIdentifierForProperty:person:",
       shown(adaOf(host).call("valueForProperty", "Email").call("identifierAtIndex", 0)),
       "''"},
      {"addMember", {grace}, "addMember:", kTrue, kFalse},
      {"removeMember", {grace}, "removeMember:", kTrue, kFalse},
      {"removeSubgroup", {sub}, "removeSubgroup:", kTrue, kFalse},
      {"addSubgroup", {sub}, "addSubgroup:", kTrue, kFalse},
  };
}

Rows multiValueRows(const Host& host) {
  const Value second = phones(host).call("identifierAtIndex", 1);
  return {
      {"count", {}, "count", "Integer 3", "Integer 0"},
      {"propertyType", {}, "propertyType", "Integer 257", "Integer 0"},
      {"primaryIdentifier", {}, "primaryIdentifier", shown(phones(host).call("identifierAtIndex", 0)), "''"},
      {"indexForIdentifier", {second}, "indexForIdentifier:", "UInt32 1", "UInt32 0", {0}},
      {"identifierAtIndex", {1}, "identifierAtIndex:", shown(second), "''"},
      {"labelAtIndex", {1}, "labelAtIndex:", "'_$!<Work>!$_'", "''"},
      {"valueAtIndex", {1}, "valueAtIndex:", "'2'", "Nil"},
      {"labelForIdentifier", {second}, "labelAtIndex:", "'_$!<Work>!$_'", "''", {0}},
      {"valueForIdentifier", {second}, "valueAtIndex:", "'2'", "Nil", {0}},
      {"valueForLabel", {"_$!<Home>!$_"}, "labelAtIndex:", "'3'", "Nil"},  // the last
      {"valueForLabel", {"_$!<home>!$_"}, "labelAtIndex:", "Nil", "Nil"},
      {"Description", {}, "description", kAnything, "''"},
      {"edit", {}, "mutableCopy", "ABMutableMultiValueVXR", "Nil"},
      {"copy", {}, "copy", "ABMultiValueVXR", "Nil"},
  };
}

Rows editingRows(const Host& host) {
  const Value first = phones(host).call("identifierAtIndex", 0);
  return {
      {"addValue", {"4", "car"}, "addValue:withLabel:", kAnything, "''"},
      {"insertValue", {"0", "car", 0}, "insertValue:withLabel:atIndex:", kAnything, "''"},
      {"replaceValueAtIndex", {0, "5"}, "replaceValueAtIndex:withValue:", kTrue, kFalse},
      {"replaceLabelAtIndex", {0, "boat"}, "replaceLabelAtIndex:withLabel:", kTrue, kFalse},
      {"setPrimaryIdentifier", {first}, "setPrimaryIdentifier:", kTrue, kFalse},
      {"removeValueAndLabelAtIndex", {0}, "removeValueAndLabelAtIndex:", kTrue, kFalse},
  };
}

Rows searchRows(const Host& host) {
  return {{"matchesRecord", {adaOf(host)}, "matchesRecord:", kTrue, kFalse},
          {"Description", {}, "description", kAnything, "''"}};
}

Rows sharedRows(const Host& host) {
  Rows rows;
  constexpr const char* kElement = "ABSearchElementVXR";
  const Value children = host::objectArray({search(host)});
  constexpr const char* kJoin = "searchElementForConjunction:children:";
  for (const char* by : {kBook, kElement}) {
    rows.push_back({"searchElementForConjunction", {0, children}, kJoin, kElement, "Nil", {}, by});
  }
  constexpr const char* kFactory = "searchElementForProperty:label:key:value:comparison:";
  for (const auto& [member, by] : {std::pair("searchElementForPersonProperty", kBook),
                                   {"searchElementForGroupProperty", kBook},
                                   {"searchElementForProperty", "ABPersonVXR"},
                                   {"searchElementForProperty", "ABGroupVXR"}}) {
    rows.push_back({member, {"UID", "", "", "x", 0}, kFactory, kElement, "Nil", {1, 2}, by});
  }
  for (const char* by : {"ABPersonVXR", "ABGroupVXR"}) {
    const Value list = host::stringArray({"mine", ""});
    const Value none = host::stringArray({});
    rows.insert(rows.end(), {{"addProperty", {"mine", 257}, "addPropertiesAndTypes:", "Integer 1", "Integer 0", {}, by},
                             {"typeOfProperty", {"mine"}, "typeOfProperty:", "Integer 257", "Integer 0", {}, by},
                             {"properties", {}, "properties", kAnything, "[]", {}, by},
                             {"removeProperty", {"mine"}, "removeProperties:", "Integer 1", "Integer 0", {}, by},
                             {"removeProperties", {list}, "removeProperties:", "Integer 0", "Integer 0", {}, by},
                             {"removeProperties", {none}, "removeProperties:", "Integer 0", "Integer 0", {}, by}});
  }
  return rows;
}

struct Subject {
  const char* name;
  Value (*object)(const Host& host);
  Rows (*rows)(const Host& host);
};

void PrintTo(const Subject& subject, std::ostream* stream) { *stream << subject.name; }

class Members : public testing::TestWithParam<Subject> {};

constexpr Subject kSubjects[] = {
    {"Book", bookOf, bookRows},
    {"PersonAsRecord", adaOf, [](const Host&) { return recordRows("'p1:ABPerson'", "Nickname"); }},
    {"GroupAsRecord", work, [](const Host&) { return recordRows("'g1:ABGroup'", "GroupName"); }},
    {"Person", adaOf, personRows},
    {"Group", work, groupRows},
    {"MultiValue", phones, multiValueRows},
    {"MutableMultiValue", editedPhones, multiValueRows},
    {"Editing", editedPhones, editingRows},
    {"SearchElement", search, searchRows},
    {"SharedMethods", [](const Host&) { return Value(); }, sharedRows}};

INSTANTIATE_TEST_SUITE_P(Of, Members, testing::ValuesIn(kSubjects),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace

TEST_P(Members, SendAndConvert) {
  const Host host{.contacts = kContacts};
  const Value self = GetParam().object(host);
  for (const Row& row : GetParam().rows(host)) {
    SCOPED_TRACE(row.member);
    const auto [result, count] = row.outcome(self, row.arguments);
    EXPECT_EQ(row.result == kAnything ? kAnything : result, row.result);
    EXPECT_GE(count, 1) << row.selector << " was not sent";
  }
}

// The object is empty, or each argument in turn is nil, "" or an empty object of its class.
TEST_P(Members, AnswerNeutrallyWhenSomethingIsMissing) {
  const Host host{.contacts = kContacts};
  const Value self = GetParam().object(host);
  for (const Row& row : GetParam().rows(host)) {
    SCOPED_TRACE(row.member);
    const std::pair neutral(row.neutral, 0);
    if (!self.isNil()) {
      EXPECT_EQ(row.outcome(emptyInstance(self.typeName()), row.arguments), neutral);
    }
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
      if (std::ranges::find(row.passedOn, i) != row.passedOn.end()) continue;
      const Value& present = row.arguments[i].value();
      std::vector<Value> missing;
      if (std::holds_alternative<host::StringRef>(present.data())) missing = {""};
      if (std::holds_alternative<host::ObjectRef>(present.data())) missing = {nullptr};
      if (present.typeName().ends_with("VXR")) missing.push_back(emptyInstance(present.typeName()));
      for (const Value& value : missing) {
        host::Arguments given = row.arguments;
        given[i] = value;
        EXPECT_EQ(row.outcome(self, given), neutral) << "argument " << i + 1;
      }
    }
  }
}

TEST(Members, KeepTheListSoFarWhenTheFrameworkRaises) {
  const Host host{.contacts = kContacts, .without = {"RuntimeRaiseException"}};
  const std::pair<Value, Row> rows[] = {
      {bookOf(host), {"people", {}, "nextObject", "[p1:ABPerson]", ""}},
      {bookOf(host), {"peopleForEmail", {"ada@x.org"}, "nextObject", "[p1:ABPerson]", ""}},
      {adaOf(host), {"parentGroups", {}, "nextObject", "[g1:ABGroup]", ""}},
      {phones(host), {"valueForLabel", {"_$!<Home>!$_"}, "labelAtIndex:", "'1'", ""}},
      {Value(), {"properties", {}, "nextObject", "['UID']", "", {}, "ABPersonVXR"}},
  };
  for (const auto& [self, row] : rows) {
    EXPECT_EQ(row.outcome(self, row.arguments, 2).first, row.result) << row.member;
  }
}
