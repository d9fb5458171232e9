#include "picker/picker.h"
#include "host/classes.h"
#include "host/events.h"
#include "host/objects.h"
#include "platform/contacts/people_picker.h"
#include "tests/kit/host.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

constexpr const char* kPicker = "ABPickerVXR";
constexpr const char* kUnsupported = "UnsupportedOperationException: This function is only for Mac OS X Carbon.";

const std::vector<Card> kContacts{
    person("Ada", "Lovelace", "p1",
           {"EMAIL;TYPE=HOME;X-ABID=a1:ada@home.example", "EMAIL;TYPE=WORK,pref;X-ABID=a2:ada@work.example",
            "ADR;TYPE=HOME;X-ABID=d1:;;12 Main St;Springfield;IL;62701;USA", "BDAY:1815-12-10", "NICKNAME:Countess"}),
    person("Grace", "Hopper", "p2", {"EMAIL;X-ABID=g1:grace@navy.example"}),
    person("Alan", "Turing", "p3"),
    group("Work", "g1", {"p1"}),
    group("Play", "g2"),
};

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

  [[nodiscard]] std::vector<std::string> texts(const char* member) const {
    std::vector<std::string> all;
    for (const host::Value& value : picker.call(member).elements()) all.push_back(value.text());
    return all;
  }
  [[nodiscard]] std::vector<std::string> names(const char* member) const {
    std::vector<std::string> all;
    for (const host::Value& record : picker.call(member).elements()) all.push_back(record.call("DisplayName").text());
    return all;
  }
  [[nodiscard]] std::vector<std::string> identifiers(const host::Value& person) const {
    std::vector<std::string> all;
    for (const host::Value& id : picker.call("SelectedIdentifiers", person).elements()) all.push_back(id.text());
    return all;
  }
};

using Texts = std::vector<std::string>;

}  // namespace

TEST(Picker, AnswersNeutrallyBeforeCreate) {
  Host host{.contacts = kContacts};
  const host::Value book = host.shared("ABAddressBookVXR", "sharedAddressbook");
  const host::Value ada = book.call("people").at(0);
  const host::Value work = book.call("groups").at(0);
  const host::Value picker = host.make(kPicker);
  EXPECT_EQ(liveObjects()["ABPicker"], 0);
  EXPECT_EQ(picker.get("Handle"), 0);
  for (const char* side : {"Left", "Top", "Width", "Height"}) {
    picker.set(side, 12.0F);
    EXPECT_EQ(picker.get(side), 0.0F) << side;
  }
  for (const char* flag : {"Visible", "AllowSingleValueSelection", "AllowMultipleValueSelection", "AllowGroupSelection",
                           "AllowMultipleSelection"}) {
    picker.set(flag, true);
    EXPECT_EQ(picker.get(flag), false) << flag;
  }
  EXPECT_EQ(picker.get("Available"), true);
  picker.set("DisplayedProperty", "Email");
  EXPECT_EQ(picker.get("DisplayedProperty"), "");
  picker.call("AddProperty", "Email");
  picker.call("RemoveProperty", "Email");
  picker.assign("ColumnTitle", "Email", "Post");
  EXPECT_EQ(picker.call("ColumnTitle", "Email"), "");
  picker.call("SelectGroup", work, false);
  picker.call("SelectPerson", ada, false);
  picker.call("SelectIdentifier", ada, "a1", false);
  picker.call("DeselectGroup", work);
  picker.call("DeselectPerson", ada);
  picker.call("DeselectIdentifier", ada, "a1");
  for (const char* action : {"DeselectAll", "ClearSearchField", "EditInAddressBook", "SelectInAddressBook"}) {
    picker.call(action);
  }
  for (const char* list : {"Properties", "SelectedGroups", "SelectedRecords", "SelectedValues", "SelectedStrings",
                           "SelectedDictionaries"}) {
    EXPECT_EQ(picker.call(list).size(), 0U) << list;
  }
  EXPECT_EQ(picker.call("SelectedIdentifiers", ada).size(), 0U);
}

TEST(Picker, IsHiddenAndEmptyWhenItIsNew) {
  const Fixture fixture;
  EXPECT_NE(fixture.picker.get("Handle"), 0);
  EXPECT_EQ(fixture.picker.get("Visible"), false);
  EXPECT_EQ(fixture.picker.get("AllowSingleValueSelection"), true);
  EXPECT_EQ(fixture.picker.get("AllowMultipleValueSelection"), false);
  EXPECT_EQ(fixture.picker.get("AllowGroupSelection"), false);
  EXPECT_EQ(fixture.picker.get("AllowMultipleSelection"), true);
  EXPECT_EQ(fixture.picker.get("DisplayedProperty"), "");
  EXPECT_EQ(fixture.texts("Properties"), Texts());
  EXPECT_EQ(fixture.texts("SelectedValues"), Texts());
}

TEST(Picker, IsReleasedByASecondCreateAndByItsObjectsEnd) {
  Fixture fixture;
  fixture.picker.set("Width", 7.0F);
  fixture.picker.call("AddProperty", "Email");
  fixture.picker.call("Create");
  EXPECT_EQ(liveObjects()["ABPicker"], 1);
  EXPECT_NE(fixture.picker.get("Width"), 7.0F);
  EXPECT_EQ(fixture.texts("Properties"), Texts());
  fixture.picker = nullptr;
  EXPECT_EQ(liveObjects()["ABPicker"], 0);
}

TEST(Picker, ReleasesWhatItsHandleNames) {
  Fixture fixture;
  const host::Value first = fixture.picker.get("Handle");
  fixture.picker.set("Handle", 0);
  EXPECT_EQ(fixture.picker.get("Width"), 0.0F);
  EXPECT_EQ(liveObjects()["ABPicker"], 1);
  fixture.picker.set("Handle", first);
  EXPECT_NE(fixture.picker.get("Width"), 0.0F);
}

TEST(Picker, MovesOneSideOfItsFrame) {
  const Fixture fixture;
  constexpr const char* kSides[] = {"Left", "Top", "Width", "Height"};
  std::map<std::string, double> expected;
  for (const char* side : kSides) expected[side] = fixture.picker.get(side).number();
  double value = 100.25;
  for (const char* changed : kSides) {
    expected[changed] = value += 10.5;
    fixture.picker.set(changed, static_cast<float>(expected[changed]));
    for (const char* side : kSides) EXPECT_EQ(fixture.picker.get(side).number(), expected[side]) << changed << side;
  }
}

TEST(Picker, ChangesOneAttribute) {
  const Fixture fixture;
  auto picker = reinterpret_cast<ABPickerRef>(fixture.picker.get("Handle").integer());
  for (const auto& [name, bit] :
       std::vector<std::pair<const char*, ABPickerAttributes>>{{"AllowSingleValueSelection", 1},
                                                               {"AllowMultipleValueSelection", 2},
                                                               {"AllowGroupSelection", 4},
                                                               {"AllowMultipleSelection", 8}}) {
    for (const ABPickerAttributes others : {0U, 15U & ~bit}) {
      ABPickerChangeAttributes(picker, others, ~others);
      fixture.picker.set(name, true);
      EXPECT_EQ(ABPickerGetAttributes(picker), others | bit) << name;
      EXPECT_EQ(fixture.picker.get(name), true);
      fixture.picker.set(name, false);
      EXPECT_EQ(ABPickerGetAttributes(picker), others) << name;
      EXPECT_EQ(fixture.picker.get(name), false);
    }
  }
}

TEST(Picker, ShowsAndHides) {
  const Fixture fixture;
  fixture.picker.set("Visible", true);
  EXPECT_EQ(fixture.picker.get("Visible"), true);
  fixture.picker.set("Visible", false);
  EXPECT_EQ(fixture.picker.get("Visible"), false);
}

TEST(Picker, KeepsItsColumnsAndTheirTitles) {
  const Fixture fixture;
  const host::Value& picker = fixture.picker;
  picker.call("AddProperty", "Phone");
  picker.call("AddProperty", "Email");
  picker.call("AddProperty", "Email");
  picker.call("AddProperty", "");
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

// In place of the desktop's opener: a program that keeps what it was given.
TEST(Picker, OpensTheSelectionInTheDesktopsApplication) {
  const Fixture fixture;
  const std::filesystem::path opened = fixture.host.folder() / "opened.txt";
  std::ofstream(fixture.host.folder() / "xdg-open")
      << "#!/bin/sh\nprintf '%s' \"$1\" > " << opened << ".new; mv " << opened << ".new " << opened << "\n";
  permissions(fixture.host.folder() / "xdg-open", std::filesystem::perms::owner_all);
  setenv("PATH", (fixture.host.folder().string() + ":/bin:/usr/bin").c_str(), 1);
  const auto openedBy = [&](const char* member) {
    remove(opened);
    fixture.picker.call(member);
    for (int tries = 0; !exists(opened) && tries < 500; ++tries) usleep(10'000);
    return bytesOf(opened);
  };
  fixture.picker.call("SelectGroup", fixture.work, false);
  EXPECT_EQ(openedBy("SelectInAddressBook"), "addressbook://g1:ABGroup");
  fixture.picker.call("SelectPerson", fixture.ada, false);
  EXPECT_EQ(openedBy("EditInAddressBook"), "addressbook://p1:ABPerson?edit");
}

TEST(Picker, RefusesCarbonEvents) {
  const Fixture fixture;
  EXPECT_EQ(thrownBy([&] { fixture.picker.call("RemoveEvents"); }), kUnsupported);
  EXPECT_EQ(thrownBy([&] { fixture.picker.call("InstallEvents", nullptr); }), kUnsupported);
  EXPECT_EQ(globalinstance, nullptr);
  EXPECT_EQ(eventHandler, &MyEventHandler);
}
