#include "platform/contacts/address_book.h"
#include "platform/foundation/autorelease_pool.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/in_child.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>

namespace {

std::string ownersId() {
  const ABPerson me = ABAddressBook::addressBook().me();
  return me ? shown(me.uniqueId()) : "nobody";
}

TEST(Owner, IsKeptUntilNobodyIs) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.writeCard("a.vcf", "UID:a\nN:a\n");
  inChild([] { EXPECT_EQ(ownersId(), "nobody"); });
  auto setOwner = [](bool isSomebody) {
    inChild([=] {
      const ABAddressBook book = ABAddressBook::addressBook();
      const ABPerson person = book.people().objectAtIndex(0).as<ABPerson>();
      book.setMe(isSomebody ? person : ABPerson());
      EXPECT_TRUE(book.hasUnsavedChanges());
      EXPECT_EQ(book.me().get(), isSomebody ? person.get() : nullptr);
      EXPECT_TRUE(book.save());
    });
  };
  setOwner(true);
  inChild([] { EXPECT_EQ(ownersId(), "a:ABPerson"); });
  setOwner(false);
  inChild([] { EXPECT_EQ(ownersId(), "nobody"); });
}

TEST(Owner, GoesWithTheCard) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.writeCard("a.vcf", "UID:a\nN:a\n");
  const ABAddressBook book = ABAddressBook::addressBook();
  const ABRecord person = book.people().objectAtIndex(0).as<ABRecord>();
  book.setMe(person.as<ABPerson>());
  EXPECT_TRUE(book.removeRecord(person));
  EXPECT_FALSE(book.me());
  EXPECT_TRUE(book.save());
  EXPECT_EQ(ownersId(), "nobody");
}

}  // namespace
