#include "platform/contacts/address_book.h"
#include "platform/contacts/constants.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/shown.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class Group : public ::testing::Test {
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
    for (std::size_t at = 0; at < members.size();) {
      const std::size_t end = std::min(members.find(' ', at), members.size());
      lines += "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + members.substr(at, end - at) + "\n";
      at = end + 1;
    }
    folder_.writeCard(uid + ".vcf", lines);
  }

  [[nodiscard]] ABPerson person(const std::string& uid) const { return record(uid + ":ABPerson").as<ABPerson>(); }
  [[nodiscard]] ABGroup group(const std::string& uid) const { return record(uid + ":ABGroup").as<ABGroup>(); }
  [[nodiscard]] ABRecord record(const std::string& id) const {
    return book_.recordForUniqueId(NSString::stringWithUTF8(id));
  }

  static std::string uids(NSArray records) {
    std::string text;
    for (NSUInteger i = 0; i < records.count(); ++i) {
      const std::string id = shown(records.objectAtIndex(i).as<ABRecord>().uniqueId());
      text += (i == 0 ? "" : " ") + id.substr(0, id.find(':'));
    }
    return text;
  }

  AutoreleasePool pool_;
  ContactsFolder folder_;
  ABAddressBook book_;
};

TEST_F(Group, ShowsWhoIsInIt) {
  EXPECT_EQ(uids(group("g1").members()), "p1 p2");
  EXPECT_EQ(uids(group("g1").subgroups()), "g2");
  EXPECT_EQ(uids(group("g2").members()), "p1");
  EXPECT_EQ(uids(group("g3").members()), "");
  EXPECT_EQ(uids(group("g2").parentGroups()), "g1");
  EXPECT_EQ(uids(person("p1").parentGroups()), "g1 g2");
  const auto alone = Retained<ABPerson>::adopt(ABPerson::alloc().init());
  EXPECT_EQ(uids(alone->parentGroups()), "");
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

  const auto unsaved = Retained<ABPerson>::adopt(ABPerson::alloc().initWithAddressBook(book_));
  EXPECT_FALSE(group("g3").addMember(unsaved.get()));
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
  const NSString work = person("p1").valueForProperty(kABEmailProperty).as<ABMultiValue>().identifierAtIndex(1);
  const NSString home = person("p1").valueForProperty(kABEmailProperty).as<ABMultiValue>().identifierAtIndex(0);
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
  const std::string expected = "NSInvalidArgumentException";
  const ABGroup one = group("g1");
  EXPECT_EQ(raised([&] { one.addMember(nullptr); }), expected);
  EXPECT_EQ(raised([&] { one.removeMember(nullptr); }), expected);
  EXPECT_EQ(raised([&] { one.addSubgroup(nullptr); }), expected);
  EXPECT_EQ(raised([&] { one.removeSubgroup(nullptr); }), expected);
  EXPECT_EQ(raised([&] { (void)one.distributionIdentifier(nullptr, person("p1")); }), expected);
  EXPECT_EQ(raised([&] { (void)one.distributionIdentifier(kABEmailProperty, nullptr); }), expected);
  EXPECT_EQ(raised([&] { one.setDistributionIdentifier(nullptr, nullptr, person("p1")); }), expected);
  EXPECT_EQ(raised([&] { one.setDistributionIdentifier(nullptr, kABEmailProperty, nullptr); }), expected);
}

TEST_F(Group, IsNamedInItsMembersDescriptions) {
  EXPECT_TRUE(group("g2").removeValueForProperty(kABGroupNameProperty));
  const std::string text = shown(person("p1").description());
  const std::size_t line = text.find("   Parent Groups : g1 (0x");
  ASSERT_NE(line, std::string::npos) << text;
  EXPECT_NE(text.find("), (0x", line), std::string::npos) << text;
  EXPECT_EQ(shown(group("g1").description()).find("Parent Groups"), std::string::npos);
}

}  // namespace
