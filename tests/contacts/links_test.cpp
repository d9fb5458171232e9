#include "platform/contacts/address_book.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/run_loop.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/in_child.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string linkedWith(ABAddressBook book, const char* uid) {
  const NSString id = NSString::stringWithUTF8((std::string(uid) + ":ABPerson").c_str());
  const NSArray people = book.recordForUniqueId(id).as<ABPerson>().linkedPeople();
  std::string uids;
  for (NSUInteger i = 0; i < people.count(); ++i) {
    const std::string linked = shown(people.objectAtIndex(i).as<ABRecord>().uniqueId());
    uids += linked.substr(0, linked.find(':'));
  }
  return uids;
}

class Links : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_.writeCard("a.vcf", "UID:a\nN:a\nX-ABLINK:urn:uuid:b\nX-ABLINK:gone\n");
    folder_.writeCard("b.vcf", "UID:b\nN:b\n");
    folder_.writeCard("c.vcf", "UID:c\nN:c\nx-ablink:b\nX-ABLINK:c\n");
    folder_.writeCard("d.vcf", "UID:d\nN:d\nNOTE:X-ABLINK:a\n");
    folder_.writeCard("g.vcf", "UID:g\nFN:g\nKIND:group\nX-ABLINK:d\n");
  }

  AutoreleasePool pool_;
  ContactsFolder folder_;
};

TEST_F(Links, JoinCardsFromBothSidesAndOverOthers) {
  const ABAddressBook book = ABAddressBook::addressBook();
  EXPECT_EQ(linkedWith(book, "a"), "abc");
  EXPECT_EQ(linkedWith(book, "b"), "bac");
  EXPECT_EQ(linkedWith(book, "c"), "cba");
  EXPECT_EQ(linkedWith(book, "d"), "d");
  const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().init());
  EXPECT_EQ(person->linkedPeople().count(), 1U);
  EXPECT_EQ(person->linkedPeople().objectAtIndex(0), person.get());
}

TEST_F(Links, OutliveChangesAndEndWithTheCard) {
  {
    const ABAddressBook book = ABAddressBook::addressBook();
    const ABRecord a = book.recordForUniqueId("a:ABPerson"_ns);
    EXPECT_TRUE(a.setValue("changed"_ns, kABNoteProperty));
    EXPECT_TRUE(book.save());
    EXPECT_EQ(linkedWith(book, "b"), "bac");
    EXPECT_TRUE(book.removeRecord(book.recordForUniqueId("c:ABPerson"_ns)));
    EXPECT_EQ(linkedWith(book, "b"), "ba");
    EXPECT_TRUE(book.save());
  }
  inChild([] { EXPECT_EQ(linkedWith(ABAddressBook::addressBook(), "b"), "ba"); });
}

TEST_F(Links, AreNotedWhenOthersMakeThem) {
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  EXPECT_EQ(linkedWith(book, "d"), "d");
  folder_.writeCard("d.vcf", "UID:d\nN:d\nX-ABLINK:e\n");
  folder_.writeCard("e.vcf", "UID:e\nN:e\n");
  for (int i = 0; i < 100 && linkedWith(book, "d") != "de"; ++i) {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
  }
  EXPECT_EQ(linkedWith(book, "d"), "de");
}

TEST_F(Links, AreNotTakenOverByAnImport) {
  const ABAddressBook book = ABAddressBook::addressBook();
  const NSData card = book.recordForUniqueId("a:ABPerson"_ns).as<ABPerson>().vCardRepresentation();
  const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().initWithVCardRepresentation(card));
  EXPECT_TRUE(book.addRecord(person.get()));
  EXPECT_TRUE(book.save());
  EXPECT_EQ(person->linkedPeople().count(), 1U);
  EXPECT_EQ(linkedWith(book, "a"), "abc");
}

}  // namespace
