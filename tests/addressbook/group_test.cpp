#include "platform/contacts/group.h"
#include "tests/addressbook/framework_calls.h"

namespace {

using host::Value;

constexpr const char* kBook = "ABAddressBookVXR";

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1", {"EMAIL:1@x.org", "EMAIL:2@x.org", "TEL:1", "TEL:2"}),
                                  person("Grace", "Hopper", "p2", {"EMAIL:3@x.org"}), group("Work", "g1", {"p1", "g2"}),
                                  group("Play", "g2"), group("All", "g3", {"g1"})};

Value bookOf(const Host& host) { return host.shared(kBook, "sharedAddressbook"); }

Value recordOf(const Host& host, const char* id) { return bookOf(host).call("recordForUniqueId", id); }

}  // namespace

TEST(Group, IsMadeWithOrWithoutABook) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  for (const Value& nobody : {Value(), emptyInstance(kBook)}) {
    EXPECT_TRUE(book.call("recordForUniqueId", host.make("ABGroupVXR", nobody).call("uniqueId")).isNil());
  }
  EXPECT_NE(host.make("ABGroupVXR").get("Handle"), 0);
  const Value added = host.make("ABGroupVXR", book);
  EXPECT_EQ(book.call("groups").at(3), added);
}

TEST(Group, RefusesCycles) {
  const Host host{.contacts = kContacts};
  const Value work = recordOf(host, "g1:ABGroup");
  const Value play = recordOf(host, "g2:ABGroup");
  const Value all = recordOf(host, "g3:ABGroup");
  EXPECT_EQ(work.call("addSubgroup", work), false);
  EXPECT_EQ(play.call("addSubgroup", work), false);
  EXPECT_EQ(play.call("addSubgroup", all), false);
  EXPECT_EQ(work.call("addSubgroup", play), false);  // is one
  EXPECT_EQ(all.call("addSubgroup", play), true);    // by another way down
  EXPECT_EQ(told(play.call("parentGroups")), "[g1:ABGroup g3:ABGroup]");
}

TEST(Group, AssignsDistributionIdentifiersThatAreThere) {
  const Host host{.contacts = kContacts};
  const Value work = recordOf(host, "g1:ABGroup");
  const Value ada = recordOf(host, "p1:ABPerson");
  const Value second = ada.call("valueForProperty", "Email").call("identifierAtIndex", 1);
  constexpr const char* kMember = "distributionIdentifierForProperty";
  const auto sendsOf = [&](const Value& self, const Value& property, const Value& whom, const Value& identifier) {
    const Sends sends("setDistributionIdentifier:forProperty:person:");
    self.assign(kMember, property, whom, identifier);
    return sends.count();
  };
  EXPECT_EQ(sendsOf(emptyInstance("ABGroupVXR"), "Email", ada, second), 0);
  EXPECT_EQ(sendsOf(work, "Email", nullptr, second), 0);
  EXPECT_EQ(sendsOf(work, "Email", emptyInstance("ABPersonVXR"), second), 0);
  EXPECT_EQ(sendsOf(work, "Email", ada, ""), 0);
  EXPECT_NE(work.call(kMember, "Email", ada), second);
  EXPECT_EQ(sendsOf(work, "Email", ada, second), 1);
  EXPECT_EQ(work.call(kMember, "Email", ada), second);
  EXPECT_EQ(sendsOf(work, "Email", ada, "nobody"), 1);  // the framework decides
  EXPECT_EQ(work.call(kMember, "Email", ada), second);
  // A missing name is passed on, and refused there.
  EXPECT_NE(thrownBy([&] { work.assign(kMember, "", ada, second); }).find("NSInvalidArgumentException"),
            std::string::npos);
}
