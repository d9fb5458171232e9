#include "host/objects.h"
#include "platform/appkit/workspace.h"
#include "platform/contacts/address_book.h"
#include "platform/contacts/people_picker.h"
#include "platform/objc/class_builder.h"
#include "tests/kit/host.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

constexpr const char* kPicker = "ABPickerVXR";
constexpr const char* kSides[] = {"Left", "Top", "Width", "Height"};
constexpr std::pair<const char*, bool> kFlags[] = {{"Visible", false},
                                                   {"AllowSingleValueSelection", true},
                                                   {"AllowMultipleValueSelection", false},
                                                   {"AllowGroupSelection", false},
                                                   {"AllowMultipleSelection", true}};

const std::vector<Card> kContacts{
    person("Ada", "Lovelace", "p1",
           {"EMAIL;TYPE=HOME;X-ABID=a1:ada@home.example", "EMAIL;TYPE=WORK,pref;X-ABID=a2:ada@work.example",
            "ADR;TYPE=HOME;X-ABID=d1:;;12 Main St;Springfield;IL;62701;USA", "BDAY:1815-12-10", "NICKNAME:Countess"}),
    person("Grace", "Hopper", "p2", {"EMAIL;X-ABID=g1:grace@navy.example"}),
    person("Alan", "Turing", "p3"),
    group("Work", "g1", {"p1"}),
    group("Play", "g2"),
};

using Texts = std::vector<std::string>;

Texts textsOf(const host::Value& list) {
  Texts all;
  for (const host::Value& value : list.elements()) all.push_back(value.text());
  return all;
}

// A host with a picker object and the records of the book.
struct Fixture {
  Host host{.contacts = kContacts};
  host::Value book = host.shared("ABAddressBookVXR", "sharedAddressbook");
  host::Value ada = book.call("personForUniqueId", "p1:ABPerson");
  host::Value grace = book.call("personForUniqueId", "p2:ABPerson");
  host::Value work = book.call("groupForName", "Work");
  host::Value play = book.call("groupForName", "Play");
  host::Value picker = host.make(kPicker);

  Fixture() { picker.call("Create"); }

  [[nodiscard]] Texts texts(const char* member) const { return textsOf(picker.call(member)); }
  [[nodiscard]] Texts names(const char* member) const {
    Texts all;
    for (const host::Value& record : picker.call(member).elements()) all.push_back(record.call("DisplayName").text());
    return all;
  }
  [[nodiscard]] Texts identifiers(const host::Value& person) const {
    return textsOf(picker.call("SelectedIdentifiers", person));
  }
};

}  // namespace

TEST(Picker, AnswersNeutrallyBeforeCreate) {
  const Host host{.contacts = kContacts};
  const host::Value book = host.shared("ABAddressBookVXR", "sharedAddressbook");
  const host::Value ada = book.call("people").at(0);
  const host::Value picker = host.make(kPicker);
  EXPECT_EQ(liveObjects()["ABPicker"], 0);
  EXPECT_EQ(picker.get("Handle"), 0);
  EXPECT_EQ(picker.get("Available"), true);
  std::vector<std::pair<const char*, host::Value>> properties{{"DisplayedProperty", "Email"}};
  for (const char* side : kSides) properties.emplace_back(side, 12.0F);
  for (const auto& [flag, isInitiallySet] : kFlags) properties.emplace_back(flag, true);
  for (const auto& [name, value] : properties) {
    const host::Value before = picker.get(name);
    picker.set(name, value);
    EXPECT_EQ(picker.get(name), before) << name;
    EXPECT_TRUE(before == 0.0F || before == false || before == "") << name;
  }
  picker.call("AddProperty", "Email");
  picker.call("RemoveProperty", "Email");
  picker.assign("ColumnTitle", "Email", "Post");
  EXPECT_EQ(picker.call("ColumnTitle", "Email"), "");
  for (const char* list : {"Properties", "SelectedGroups", "SelectedRecords", "SelectedValues", "SelectedStrings",
                           "SelectedDictionaries"}) {
    EXPECT_EQ(picker.call(list).size(), 0U) << list;
  }
  EXPECT_EQ(picker.call("SelectedIdentifiers", ada).size(), 0U);
}

TEST(Picker, ReleasesWhatItsHandleNames) {
  Fixture fixture;
  fixture.picker.set("Width", 7.0F);
  fixture.picker.call("AddProperty", "Email");
  fixture.picker.call("Create");
  EXPECT_EQ(liveObjects()["ABPicker"], 1);
  EXPECT_NE(fixture.picker.get("Width"), 7.0F);
  EXPECT_EQ(fixture.texts("Properties"), Texts());

  const host::Value first = fixture.picker.get("Handle");
  fixture.picker.set("Handle", 0);
  EXPECT_EQ(fixture.picker.get("Width"), 0.0F);
  EXPECT_EQ(liveObjects()["ABPicker"], 1);
  fixture.picker.set("Handle", first);
  EXPECT_NE(fixture.picker.get("Width"), 0.0F);
  fixture.picker = nullptr;
  EXPECT_EQ(liveObjects()["ABPicker"], 0);
}

TEST(Picker, MovesOneSideOfItsFrame) {
  const Fixture fixture;
  std::map<std::string, double> expected;
  for (const char* side : kSides) expected[side] = fixture.picker.get(side).number();
  double value = 100.25;
  for (const char* changed : kSides) {
    expected[changed] = value += 10.5;
    fixture.picker.set(changed, static_cast<float>(expected[changed]));
    for (const char* side : kSides) EXPECT_EQ(fixture.picker.get(side).number(), expected[side]) << changed << side;
  }
}

TEST(Picker, IsHiddenWhenItIsNewAndChangesOneAttribute) {
  const Fixture fixture;
  for (const auto& [flag, isInitiallySet] : kFlags) EXPECT_EQ(fixture.picker.get(flag), isInitiallySet) << flag;
  for (const bool isShown : {true, false}) {
    fixture.picker.set("Visible", isShown);
    EXPECT_EQ(fixture.picker.get("Visible"), isShown);
  }
  auto picker = reinterpret_cast<ABPickerRef>(fixture.picker.get("Handle").integer());
  for (unsigned place = 0; place < 4; ++place) {
    const char* name = kFlags[place + 1].first;
    const ABPickerAttributes bit = 1U << place;
    for (const ABPickerAttributes others : {0U, 15U & ~bit}) {
      ABPickerChangeAttributes(picker, others, ~others);
      for (const bool isSet : {true, false}) {
        fixture.picker.set(name, isSet);
        EXPECT_EQ(ABPickerGetAttributes(picker), isSet ? others | bit : others) << name;
        EXPECT_EQ(fixture.picker.get(name), isSet) << name;
      }
    }
  }
}

TEST(Picker, KeepsItsColumnsAndTheirTitles) {
  const Fixture fixture;
  const host::Value& picker = fixture.picker;
  for (const char* property : {"Phone", "Email", "Email", ""}) picker.call("AddProperty", property);
  EXPECT_EQ(fixture.texts("Properties"), (Texts{"Phone", "Email"}));
  EXPECT_EQ(picker.get("DisplayedProperty"), "Phone");
  picker.set("DisplayedProperty", "Address");  // no column
  picker.set("DisplayedProperty", "");
  EXPECT_EQ(picker.get("DisplayedProperty"), "Phone");
  picker.set("DisplayedProperty", "Email");
  EXPECT_EQ(picker.get("DisplayedProperty"), "Email");
  EXPECT_EQ(picker.call("ColumnTitle", "Email"), "Email");
  picker.assign("ColumnTitle", "Email", "Post");
  EXPECT_EQ(picker.call("ColumnTitle", "Email"), "Post");
  EXPECT_EQ(picker.call("ColumnTitle", "Post"), "");
  EXPECT_EQ(picker.call("ColumnTitle", "ABDepartment"), "Department");
  EXPECT_EQ(picker.call("ColumnTitle", ""), "");
  picker.assign("ColumnTitle", "", "Post");
  picker.assign("ColumnTitle", "Email", "");
  EXPECT_EQ(picker.call("ColumnTitle", "Email"), "Post");

  picker.call("RemoveProperty", "Email");
  EXPECT_EQ(fixture.texts("Properties"), Texts{"Phone"});
  EXPECT_EQ(picker.get("DisplayedProperty"), "Phone");
  picker.call("RemoveProperty", "Phone");
  EXPECT_EQ(picker.get("DisplayedProperty"), "");
}

TEST(Picker, SelectsGroupsAndPeople) {
  const Fixture fixture;
  const host::Value& picker = fixture.picker;
  picker.call("SelectGroup", fixture.work, false);
  picker.call("SelectGroup", fixture.play, true);
  EXPECT_EQ(fixture.names("SelectedGroups"), (Texts{"Work", "Play"}));
  picker.call("DeselectGroup", fixture.work);
  EXPECT_EQ(fixture.names("SelectedGroups"), Texts{"Play"});
  EXPECT_EQ(picker.call("SelectedGroups").at(0), fixture.play);

  picker.call("SelectPerson", fixture.ada, false);
  picker.call("SelectPerson", fixture.grace, true);
  EXPECT_EQ(fixture.names("SelectedRecords"), (Texts{"Ada Lovelace", "Grace Hopper"}));
  EXPECT_EQ(picker.call("SelectedRecords").at(0), fixture.ada);
  picker.set("AllowMultipleSelection", false);
  EXPECT_EQ(fixture.names("SelectedRecords"), Texts{"Ada Lovelace"});
  picker.call("SelectPerson", fixture.grace, true);
  EXPECT_EQ(fixture.names("SelectedRecords"), Texts{"Grace Hopper"});
  picker.call("DeselectPerson", fixture.grace);
  EXPECT_EQ(fixture.names("SelectedRecords"), Texts());
  picker.call("SelectPerson", fixture.ada, false);
  picker.call("DeselectAll");
  EXPECT_EQ(fixture.names("SelectedRecords"), Texts());
  EXPECT_EQ(fixture.names("SelectedGroups"), Texts());
}

TEST(Picker, FindsTheRecordsThatItGaveBefore) {
  const Host host{.contacts = kContacts};
  const host::Value picker = host.make(kPicker);
  picker.call("Create");
  // As the user does, before host code has met any record.
  ABPickerSelectRecord(reinterpret_cast<ABPickerRef>(picker.get("Handle").integer()),
                       ABAddressBook::sharedAddressBook().people().objectAtIndex(0).get(), false);
  const host::Value records = picker.call("SelectedRecords");
  EXPECT_EQ(picker.call("SelectedRecords").at(0), records.at(0));
}

TEST(Picker, LeavesNothingSelectedThatIsNotInTheBook) {
  const Fixture fixture;
  const host::Value& picker = fixture.picker;
  picker.call("SelectPerson", nullptr, false);
  picker.call("SelectPerson", fixture.host.make("ABPersonVXR"), false);
  picker.call("SelectGroup", nullptr, false);
  EXPECT_EQ(fixture.names("SelectedRecords"), Texts());
  picker.call("SelectPerson", fixture.ada, false);
  EXPECT_EQ(fixture.book.call("removeRecord", fixture.ada), true);
  EXPECT_EQ(fixture.names("SelectedRecords"), Texts());
  // A record of another book stands for the shared one's.
  const host::Value other = fixture.host.shared("ABAddressBookVXR", "addressBook");
  picker.call("SelectPerson", other.call("personForUniqueId", "p2:ABPerson"), false);
  EXPECT_EQ(picker.call("SelectedRecords").at(0), fixture.grace);
}

TEST(Picker, SelectsValues) {
  const Fixture fixture;
  const host::Value& picker = fixture.picker;
  picker.call("AddProperty", "Email");
  picker.call("SelectPerson", fixture.ada, false);
  EXPECT_EQ(fixture.identifiers(fixture.ada), Texts{"a2"});  // the primary one
  picker.call("SelectPerson", fixture.grace, true);
  EXPECT_EQ(fixture.texts("SelectedValues"), (Texts{"ada@work.example", "grace@navy.example"}));

  picker.call("SelectIdentifier", fixture.ada, "a1", true);
  EXPECT_EQ(fixture.identifiers(fixture.ada), Texts{"a1"});
  EXPECT_EQ(fixture.texts("SelectedValues"), (Texts{"ada@home.example", "grace@navy.example"}));
  picker.set("AllowSingleValueSelection", false);
  EXPECT_EQ(fixture.texts("SelectedValues"), Texts());
  picker.set("AllowMultipleValueSelection", true);
  picker.call("SelectIdentifier", fixture.ada, "a2", true);
  EXPECT_EQ(fixture.identifiers(fixture.ada), (Texts{"a1", "a2"}));
  picker.set("AllowSingleValueSelection", true);  // the stricter rules
  EXPECT_EQ(fixture.identifiers(fixture.ada), Texts{"a1"});
  picker.set("AllowSingleValueSelection", false);
  picker.call("DeselectIdentifier", fixture.ada, "a1");
  EXPECT_EQ(fixture.identifiers(fixture.ada), Texts{"a2"});

  picker.call("SelectIdentifier", fixture.ada, "", false);
  picker.call("SelectIdentifier", fixture.ada, "no such", false);
  picker.call("SelectIdentifier", nullptr, "a1", false);
  EXPECT_EQ(fixture.names("SelectedRecords"), (Texts{"Ada Lovelace", "Grace Hopper"}));
  picker.call("SelectIdentifier", fixture.ada, "a1", false);
  EXPECT_EQ(fixture.names("SelectedRecords"), Texts{"Ada Lovelace"});
  EXPECT_EQ(fixture.texts("SelectedStrings"), Texts{"ada@home.example"});
}

TEST(Picker, GivesValuesAsReadableText) {
  const Fixture fixture;
  for (const auto& [property, text] :
       std::vector<std::pair<const char*, const char*>>{{"Nickname", "Countess"},
                                                        {"Address", "12 Main St\nSpringfield IL 62701\nUSA"},
                                                        {"Birthday", "1815-12-10"},
                                                        {"BirthdayComponents", "1815-12-10"}}) {
    fixture.picker.call("Create");
    fixture.picker.call("AddProperty", property);
    fixture.picker.call("SelectPerson", fixture.ada, false);
    EXPECT_EQ(fixture.texts("SelectedValues"), Texts{text}) << property;
    const bool isSingle = std::string(property) != "Address";
    EXPECT_EQ(fixture.identifiers(fixture.ada).size(), isSingle ? 0U : 1U) << property;
  }
}

namespace {

// What the workspace was asked to open.
std::string opened;

bool noteOpened(NSWorkspace, NSURL url) {
  opened = url.absoluteString().UTF8String();
  return true;
}

}  // namespace

TEST(Picker, OpensTheSelectionInTheDesktopsApplication) {
  const Fixture fixture;
  objc::ClassBuilder(Class("NSWorkspace")).method<&noteOpened>("openURL:");
  const auto openedBy = [&](const char* member) {
    fixture.picker.call(member);
    return std::exchange(opened, "");
  };
  fixture.picker.call("SelectGroup", fixture.work, false);
  EXPECT_EQ(openedBy("SelectInAddressBook"), "addressbook://g1:ABGroup");
  fixture.picker.call("SelectPerson", fixture.ada, false);
  EXPECT_EQ(openedBy("EditInAddressBook"), "addressbook://p1:ABPerson?edit");
}
