#include "tests/contacts/book_test.h"
#include "tests/foundation/raised.h"

#include <functional>
#include <sstream>
#include <string>

namespace {

class Group : public BookTest {
 protected:
  Group() {
    folder_.writeCard("p1.vcf", "UID:p1\nN:One\nEMAIL;type=HOME:a\nEMAIL;type=WORK:b\n");
    folder_.writeCard("p2.vcf", "UID:p2\nN:Two\nEMAIL:c\n");
    writeGroup("g1", "p1 p2 gone g2");
    writeGroup("g2", "p1 p1");
    writeGroup("g3", "");
    book_ = ABAddressBook::addressBook();
  }

  void writeGroup(const std::string& uid, const std::string& members) const {
    std::string lines = "UID:" + uid + "\nFN:" + uid + "\nX-ADDRESSBOOKSERVER-KIND:group\n";
    std::istringstream words(members);
    for (std::string member; words >> member;) lines += "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + member + "\n";
    folder_.writeCard(uid + ".vcf", lines);
  }

  [[nodiscard]] ABPerson person(const std::string& uid) const { return personIn(book_, uid); }
  [[nodiscard]] ABGroup group(const std::string& uid) const {
    return book_.recordForUniqueId(NSString::stringWithUTF8(uid + ":ABGroup")).as<ABGroup>();
  }

  ABAddressBook book_;
};

TEST_F(Group, ShowsWhoIsInIt) {
  EXPECT_EQ(uids(group("g1").members()), "p1 p2");
  EXPECT_EQ(uids(group("g1").subgroups()), "g2");
  EXPECT_EQ(uids(group("g2").members()), "p1");
  EXPECT_EQ(uids(group("g3").members()), "");
  EXPECT_EQ(uids(group("g2").parentGroups()), "g1");
  EXPECT_EQ(uids(person("p1").parentGroups()), "g1 g2");
  EXPECT_EQ(uids(newPerson()->parentGroups()), "");
}

TEST_F(Group, TakesMembersInAndOut) {
  EXPECT_FALSE(group("g1").addMember(person("p1")));
  EXPECT_FALSE(book_.hasUnsavedChanges());
  EXPECT_TRUE(group("g3").addMember(person("p2")));
  EXPECT_FALSE(group("g3").addMember(person("p2")));
  EXPECT_TRUE(book_.hasUnsavedChanges());
  EXPECT_EQ(uids(group("g3").members()), "p2");
  EXPECT_FALSE(group("g3").removeMember(person("p1")));
  EXPECT_TRUE(group("g3").removeMember(person("p2")));
  EXPECT_EQ(uids(group("g3").members()), "");
  EXPECT_TRUE(book_.removeRecord(person("p1")));
  EXPECT_EQ(uids(group("g1").members()) + uids(group("g2").members()), "p2");

  EXPECT_FALSE(group("g3").addMember(newPerson(book_).get()));
  const auto outside = Retained<ABGroup>::adopt(ABGroup::alloc().init());
  EXPECT_FALSE(outside->addMember(person("p2")));
}

TEST_F(Group, RefusesCirclesOfGroups) {
  EXPECT_FALSE(group("g1").addSubgroup(group("g1")));
  EXPECT_FALSE(group("g1").addSubgroup(group("g2")));
  EXPECT_FALSE(group("g2").addSubgroup(group("g1")));
  EXPECT_TRUE(group("g2").addSubgroup(group("g3")));
  EXPECT_FALSE(group("g3").addSubgroup(group("g1")));
  EXPECT_TRUE(group("g1").removeSubgroup(group("g2")));
  EXPECT_FALSE(group("g1").removeSubgroup(group("g2")));
  EXPECT_TRUE(group("g3").addSubgroup(group("g1")));
  const auto fresh = Retained<ABGroup>::adopt(ABGroup::alloc().initWithAddressBook(book_));
  EXPECT_TRUE(fresh->addSubgroup(group("g2")));
}

TEST_F(Group, RemembersWhichEntryItUses) {
  const auto emails = person("p1").valueForProperty(kABEmailProperty).as<ABMultiValue>();
  const NSString home = emails.identifierAtIndex(0);
  const NSString work = emails.identifierAtIndex(1);
  auto used = [&] { return shown(group("g1").distributionIdentifier(kABEmailProperty, person("p1"))); };
  EXPECT_EQ(used(), shown(home));
  EXPECT_TRUE(group("g1").setDistributionIdentifier(work, kABEmailProperty, person("p1")));
  EXPECT_EQ(used(), shown(work));
  EXPECT_TRUE(group("g1").setDistributionIdentifier(nullptr, kABEmailProperty, person("p1")));
  EXPECT_EQ(used(), shown(home));
  EXPECT_FALSE(group("g1").setDistributionIdentifier("x"_ns, kABEmailProperty, person("p1")));
  EXPECT_FALSE(group("g3").setDistributionIdentifier(work, kABEmailProperty, person("p1")));
  EXPECT_FALSE(group("g1").setDistributionIdentifier(work, kABLastNameProperty, person("p1")));
  EXPECT_FALSE(group("g1").distributionIdentifier(kABLastNameProperty, person("p1")));
  EXPECT_FALSE(group("g1").distributionIdentifier(kABPhoneProperty, person("p1")));
}

TEST_F(Group, RaisesForWhatIsMissing) {
  const ABGroup one = group("g1");
  const std::function<void()> wrong[] = {
      [&] { one.addMember(nullptr); },
      [&] { one.addSubgroup(nullptr); },
      [&] { (void)one.distributionIdentifier(kABEmailProperty, nullptr); },
      [&] { one.setDistributionIdentifier(nullptr, nullptr, person("p1")); },
  };
  for (const auto& action : wrong) EXPECT_EQ(raised(action), "NSInvalidArgumentException");
}

TEST_F(Group, IsDescribedAndNamedInItsMembersDescriptions) {
  const auto outside = Retained<ABGroup>::adopt(ABGroup::alloc().init());
  outside->setValue("Friends"_ns, kABGroupNameProperty);
  const std::string own = shown(outside->description());
  EXPECT_TRUE(own.starts_with("ABGroup (0x")) << own;
  EXPECT_TRUE(own.ends_with("{\n   GroupName : Friends\n   Unique ID : " + shown(outside->uniqueId()) + "\n}")) << own;
  EXPECT_TRUE(group("g2").removeValueForProperty(kABGroupNameProperty));
  const std::string text = shown(person("p1").description());
  const std::size_t line = text.find("   Parent Groups : g1 (0x");
  ASSERT_NE(line, std::string::npos) << text;
  EXPECT_NE(text.find("), (0x", line), std::string::npos) << text;
}

}  // namespace
