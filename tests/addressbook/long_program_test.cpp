#include "host/dictionaries.h"
#include "host/memory_blocks.h"
#include "tests/addressbook/book_text.h"
#include "tests/addressbook/framework_calls.h"
#include "tests/contacts/in_child.h"

#include <numeric>
#include <set>

// A contacts program as its author writes it: 300 people in nested groups, built, changed and saved by one process,
// and read by another.
namespace {

using host::Value;

constexpr int kPeople = 300;
constexpr int kTowns = 10;

class Program {
 public:
  explicit Program(const Host& host) : host_(host), book_(bookOf(host)) {}

  // People by town, towns by country, countries in the world; one card is the owner's.
  void build() {
    const Value world = newGroup("World");
    std::vector<Value> towns;
    for (int i = 0; i < kTowns; ++i) towns.push_back(newGroup("Town " + std::to_string(i)));
    for (int country = 0; country < 2; ++country) {
      const Value group = newGroup("Country " + std::to_string(country));
      EXPECT_EQ(world.call("addSubgroup", group), true);
      for (int i = country; i < kTowns; i += 2) EXPECT_EQ(group.call("addSubgroup", towns[at(i)]), true);
      EXPECT_EQ(towns[at(country)].call("addSubgroup", world), false);
    }
    std::vector<Value> people;
    for (int i = 0; i < kPeople; ++i) people.push_back(newPerson(i));
    save();  // a person is a member of groups once it is saved
    for (int i = 0; i < kPeople; ++i) {
      EXPECT_EQ(towns[at(i % kTowns)].call("addMember", people[at(i)]), true);
      if (i % 7 != 0) continue;
      EXPECT_EQ(towns[at((i + 1) % kTowns)].call("addMember", people[at(i)]), true);
      for (const char* property : {"Email", "Phone"}) {
        const Value entries = people[at(i)].call("valueForProperty", property);
        towns[at(i % kTowns)].assign("distributionIdentifierForProperty", property, people[at(i)],
                                     entries.call("identifierAtIndex", i % 2));
      }
    }
    book_.call("setMe", people[42]);
    save();
    EXPECT_EQ(towns[7].call("distributionIdentifierForProperty", "Email", people[7]),
              people[7].call("valueForProperty", "Email").call("identifierAtIndex", 1));
  }

  // Edits every third person, found by searching.
  void edit() {
    for (int i = 0; i < kPeople; i += 3) {
      const Value found = peopleWhere("Last", "Name" + std::to_string(i));
      ASSERT_EQ(found.size(), 1U);
      const Value person = found.at(0);
      const Value phones = person.call("valueForProperty", "Phone").call("edit");
      phones.call("removeValueAndLabelAtIndex", 0);
      const Value added = phones.call("insertValue", "+32 " + std::to_string(i), "_$!<Mobile>!$_", 0);
      phones.call("setPrimaryIdentifier", added);
      EXPECT_EQ(person.call("setValue", phones, "Phone"), true);
      EXPECT_EQ(person.call("setValue", "moved in\n2012; \"x\"", "Note"), true);
      if (i % 2 == 0) {
        EXPECT_EQ(person.call("removeValueForProperty", "Nickname"), true);
      }
      if (i % 9 == 0) person.assign("imageData", host::memoryBlock("picture " + std::to_string(i)));
    }
    save();
  }

  // Takes away every tenth person, a town whose people stay, and a country of the world that stays.
  void remove() {
    for (const Value& person : peopleWhere("Nickname", "nick 9").elements()) {
      EXPECT_EQ(book_.call("removeRecord", person), true);
    }
    EXPECT_EQ(book_.call("removeRecord", book_.call("groupForName", "Town 3")), true);
    EXPECT_TRUE(book_.call("groupForName", "Town 3").isNil());
    const Value world = book_.call("groupForName", "World");
    EXPECT_EQ(world.call("removeSubgroup", book_.call("groupForName", "Country 1")), true);
    EXPECT_EQ(book_.call("groupForName", "Country 1").call("addSubgroup", world), true);
    save();
  }

  // Each record by what it has and where it stands.
  [[nodiscard]] std::string describe() const {
    std::set<std::string> records;
    for (const Value& person : book_.call("people").elements()) {
      records.insert(recordText(person) + shown(person.call("imageData")) + " " + person.call("DisplayName").text() +
                     sorted(person.call("parentGroups")));
    }
    for (const Value& group : book_.call("groups").elements()) {
      std::string text = recordText(group) + sorted(group.call("subgroups")) + sorted(group.call("parentGroups"));
      for (const Value& member : group.call("members").elements()) {
        text += "\n" + told(member);
        for (const char* property : {"Email", "Phone"}) {
          text += " " + group.call("distributionIdentifierForProperty", property, member).text();
        }
      }
      records.insert(text);
    }
    return std::accumulate(records.begin(), records.end(), "owner " + told(book_.call("owner")) + "\n");
  }

 private:
  static std::size_t at(int index) { return static_cast<std::size_t>(index); }

  static std::string sorted(const Value& records) {
    std::set<std::string> ids;
    for (const Value& record : records.elements()) ids.insert(" " + told(record));
    return std::accumulate(ids.begin(), ids.end(), std::string());
  }

  void save() const {
    EXPECT_EQ(book_.call("hasUnsavedChanges"), true);
    EXPECT_EQ(book_.call("save"), true);
    EXPECT_EQ(book_.call("hasUnsavedChanges"), false);
  }

  [[nodiscard]] Value newGroup(const std::string& name) const {
    const Value group = host_.make("ABGroupVXR", book_);
    group.call("setValue", name, "GroupName");
    return group;
  }

  [[nodiscard]] Value newPerson(int number) const {
    const std::string text = std::to_string(number);
    const Value person = host_.make("ABPersonVXR");
    person.call("setValue", "First, " + text, "First");
    person.call("setValue", "Name" + text, "Last");
    person.call("setValue", "nick " + std::to_string(number % 10), "Nickname");
    person.call("setValue", number % 90, "age");
    const std::pair<const char*, std::vector<Value>> multiValues[] = {
        {"Phone", {"1 " + text, "2 " + text}},
        {"Email", {"home" + text + "@example.org", "work" + text + "@example.org"}},
        {"Address", {host::dictionary({{"Street", text + " Quay"}, {"City", "Town " + std::to_string(number % 10)}})}}};
    for (const auto& [property, values] : multiValues) {
      const Value entries = host_.make("ABMutableMultiValueVXR");
      for (const Value& value : values) entries.call("addValue", value, "label " + text);
      EXPECT_EQ(person.call("setValue", entries, property), true);
    }
    EXPECT_EQ(book_.call("addRecord", person), true);
    return person;
  }

  [[nodiscard]] Value peopleWhere(const char* property, const std::string& text) const {
    return book_.call("recordsMatchingSearchElement",
                      host_.shared("ABPersonVXR", "searchElementForProperty", property, "", "", text, 0));
  }

  const Host& host_;
  Value book_;
};

}  // namespace

TEST(LongProgram, FindsEverythingAgainInANewProcess) {
  const Host host{};
  const auto description = host.folder() / "description";
  inChild([&] {
    ASSERT_EQ(host.shared("ABPersonVXR", "addProperty", "age", host::constant(kBook, "kABIntegerProperty")), 1);
    Program program(host);
    program.build();
    program.edit();
    program.remove();
    std::ofstream(description) << program.describe();
  });
  const Program program(host);
  EXPECT_EQ(bookOf(host).call("people").size(), 270U);
  EXPECT_EQ(bookOf(host).call("groups").size(), 12U);
  EXPECT_EQ(program.describe(), bytesOf(description));
}
