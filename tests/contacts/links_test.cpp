#include "platform/foundation/run_loop.h"
#include "tests/contacts/book_test.h"

#include <string>

namespace {

std::string linkedWith(ABAddressBook book, const char* uid) { return uids(personIn(book, uid).linkedPeople()); }

class Links : public BookTest {
 protected:
  void SetUp() override {
    folder_.writeCard("a.vcf", "UID:a\nN:a\nX-ABLINK:urn:uuid:b\nX-ABLINK:gone\n");
    folder_.writeCard("b.vcf", "UID:b\nN:b\n");
    folder_.writeCard("c.vcf", "UID:c\nN:c\nx-ablink:b\nX-ABLINK:c\n");
    folder_.writeCard("d.vcf", "UID:d\nN:d\nNOTE:X-ABLINK:a\n");
    folder_.writeCard("g.vcf", "UID:g\nFN:g\nKIND:group\nX-ABLINK:d\n");
  }
};

TEST_F(Links, JoinCardsFromBothSidesAndOverOthers) {
  const ABAddressBook book = ABAddressBook::addressBook();
  EXPECT_EQ(linkedWith(book, "a"), "a b c");
  EXPECT_EQ(linkedWith(book, "b"), "b a c");
  EXPECT_EQ(linkedWith(book, "c"), "c b a");
  EXPECT_EQ(linkedWith(book, "d"), "d");
  const auto person = newPerson();
  EXPECT_EQ(person->linkedPeople().count(), 1U);
  EXPECT_EQ(person->linkedPeople().objectAtIndex(0), person.get());
}

TEST_F(Links, OutliveChangesAndEndWithTheCard) {
  {
    const ABAddressBook book = ABAddressBook::addressBook();
    EXPECT_TRUE(personIn(book, "a").setValue("changed"_ns, kABNoteProperty));
    EXPECT_TRUE(book.save());
    EXPECT_EQ(linkedWith(book, "b"), "b a c");
    EXPECT_TRUE(book.removeRecord(personIn(book, "c")));
    EXPECT_EQ(linkedWith(book, "b"), "b a");
    EXPECT_TRUE(book.save());
  }
  inChild([] { EXPECT_EQ(linkedWith(ABAddressBook::addressBook(), "b"), "b a"); });
}

TEST_F(Links, AreNotedWhenOthersMakeThem) {
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  EXPECT_EQ(linkedWith(book, "d"), "d");
  folder_.writeCard("d.vcf", "UID:d\nN:d\nX-ABLINK:e\n");
  folder_.writeCard("e.vcf", "UID:e\nN:e\n");
  for (int i = 0; i < 100 && linkedWith(book, "d") != "d e"; ++i) {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
  }
  EXPECT_EQ(linkedWith(book, "d"), "d e");
}

TEST_F(Links, AreNotTakenOverByAnImport) {
  const ABAddressBook book = ABAddressBook::addressBook();
  const auto person = imported(shown(personIn(book, "a").vCardRepresentation()));
  EXPECT_TRUE(book.addRecord(person.get()));
  EXPECT_TRUE(book.save());
  EXPECT_EQ(person->linkedPeople().count(), 1U);
  EXPECT_EQ(linkedWith(book, "a"), "a b c");
}

}  // namespace
