#include "platform/contacts/group.h"
#include "tests/addressbook/framework_calls.h"

namespace {

using host::Value;

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1", {"EMAIL:1@x.org", "EMAIL:2@x.org", "TEL:1", "TEL:2"}),
                                  group("Work", "g1", {"p1"})};

}  // namespace

TEST(Group, AssignsDistributionIdentifiersThatAreThere) {
  const Host host{.contacts = kContacts};
  const Value work = recordOf(host, "g1:ABGroup");
  const Value ada = adaOf(host);
  const Value second = ada.call("valueForProperty", "Email").call("identifierAtIndex", 1);
  constexpr const char* kMember = "distributionIdentifierForProperty";
  EXPECT_NE(work.call(kMember, "Email", ada), second);
  const struct {
    Value self, whom, identifier;
    int sends;
  } cases[] = {
      {emptyInstance("ABGroupVXR"), ada, second, 0},
      {work, nullptr, second, 0},
      {work, emptyInstance("ABPersonVXR"), second, 0},
      {work, ada, "", 0},
      {work, ada, second, 1},
      {work, ada, "nobody", 1},  // the framework decides
  };
  for (const auto& given : cases) {
    const Sends sends("setDistributionIdentifier:forProperty:person:");
    given.self.assign(kMember, "Email", given.whom, given.identifier);
    EXPECT_EQ(sends.count(), given.sends) << given.identifier;
  }
  EXPECT_EQ(work.call(kMember, "Email", ada), second);
  // A missing name is passed on, and refused there.
  EXPECT_NE(thrownBy([&] { work.assign(kMember, "", ada, second); }).find("NSInvalidArgumentException"),
            std::string::npos);
}
