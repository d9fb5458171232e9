#include "platform/contacts/address_book.h"

#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/log.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

std::string textOf(NSObject value) { return value ? value.as<NSString>().UTF8String() : "(nil)"; }

std::string valueOf(NSObject record, const NSString& property) {
  return textOf(record.as<ABRecord>().valueForProperty(property));
}

// "uniqueId=value " for each record.
std::string listOf(NSArray records, const NSString& property) {
  std::string text;
  for (NSUInteger i = 0; i < records.count(); ++i) {
    const auto record = records.objectAtIndex(i).as<ABRecord>();
    text += textOf(record.uniqueId()) + "=" + valueOf(record, property) + " ";
  }
  return text;
}

std::vector<std::string> logged;
void rememberLogged(NSString message) { logged.emplace_back(message.UTF8String()); }

std::string reasonOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const NSException& exception) {
    return exception.reason().UTF8String();
  }
  return "nothing raised";
}

TEST(AddressBook, ReadsTheFolderInTheOrderOfItsFileNames) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.writeCard("b.vcf", "UID:2\nN:Berg;Anna\n");
  folder.writeCard("a.vcf", "UID:urn:uuid:1\nFN:Friends\nX-ADDRESSBOOKSERVER-KIND:group\n");
  folder.write("c.vcf",
               "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:4\r\nN:Z;\r\nEND:VCARD\r\n"
               "BEGIN:VCARD\r\nVERSION:2.1\r\nUID:3\r\nN:Y;\r\nEND:VCARD\r\n");
  folder.writeCard("d.VCF", "UID:5\nKIND:group\nFN:Work\n");
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  EXPECT_EQ(listOf(book.people(), kABLastNameProperty), "2:ABPerson=Berg 4:ABPerson=Z 3:ABPerson=Y ");
  EXPECT_EQ(listOf(book.groups(), kABGroupNameProperty), "1:ABGroup=Friends 5:ABGroup=Work ");
  EXPECT_EQ(ABAddressBook::sharedAddressBook(), book);

  const ABRecord anna = book.recordForUniqueId("2:ABPerson"_ns);
  EXPECT_EQ(anna, book.people().objectAtIndex(0));
  EXPECT_TRUE(anna.isKindOfClass("ABPerson"_class));
  EXPECT_EQ(valueOf(anna, kABFirstNameProperty), "Anna");
  EXPECT_EQ(valueOf(anna, kABUIDProperty), "2:ABPerson");
  EXPECT_EQ(anna.valueForProperty(kABFirstNameProperty), anna.valueForProperty(kABFirstNameProperty));
  EXPECT_TRUE(book.recordForUniqueId("1:ABGroup"_ns).isKindOfClass("ABGroup"_class));
  EXPECT_FALSE(book.recordForUniqueId("1:ABPerson"_ns));
  EXPECT_EQ(raised([&] { (void)book.recordForUniqueId(nullptr); }), "NSInvalidArgumentException");

  const ABAddressBook other = ABAddressBook::addressBook();
  EXPECT_NE(other, book);
  EXPECT_NE(other, ABAddressBook::addressBook());
  EXPECT_EQ(valueOf(other.recordForUniqueId("2:ABPerson"_ns), kABFirstNameProperty), "Anna");
}

TEST(AddressBook, LeavesAloneWhatIsNoCard) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.writeCard("good.vcf", "UID:1\n");
  folder.write("text.vcf", "Dear diary\n");
  folder.write("cut.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Cut\n");
  folder.write("empty.vcf", "");
  folder.write("\xff.vcf", "x");
  for (const char* ignored : {".hidden.vcf", "a.tmp", "a.vcf.tmp", "color", "notes.txt", ".vcf"}) {
    folder.write(ignored, "BEGIN:VCARD\nEND:VCARD\n");
  }
  std::filesystem::create_directory(folder.path() / "folder.vcf");
  std::filesystem::create_symlink(folder.path() / "good.vcf", folder.path() / "link.vcf");
  ASSERT_EQ(mkfifo((folder.path() / "pipe.vcf").c_str(), 0600), 0);
  NSSetLogHook(rememberLogged);
  EXPECT_EQ(ABAddressBook::sharedAddressBook().people().count(), 1U);
  EXPECT_EQ(logged, (std::vector<std::string>{
                        "contacts folder: cut.vcf: is not a vCard; left alone",
                        "contacts folder: empty.vcf: is empty; left alone",
                        "contacts folder: folder.vcf: is no regular file; left alone",
                        "contacts folder: link.vcf: is a symbolic link; left alone",
                        "contacts folder: pipe.vcf: is no regular file; left alone",
                        "contacts folder: text.vcf: is not a vCard; left alone",
                        "contacts folder: \\xFF.vcf: is not a vCard; left alone",
                    }));
}

TEST(AddressBook, GivesEachCardAnIdOfItsOwn) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.writeCard("a.vcf", "UID:1\n");
  folder.writeCard("b.vcf", "UID:1\n");
  folder.writeCard("c.vcf", "FN:no id\n");
  folder.writeCard("d.vcf", "UID:\n");
  folder.writeCard("\xff.vcf", "UID: x/../y \n");
  folder.writeCard("e.vcf", "UID:1\nKIND:group\n");
  const std::string list = listOf(ABAddressBook::addressBook().people(), kABUIDProperty);
  EXPECT_EQ(list, listOf(ABAddressBook::addressBook().people(), kABUIDProperty));
  const NSArray people = ABAddressBook::addressBook().people();
  ASSERT_EQ(people.count(), 5U);
  EXPECT_EQ(textOf(people.objectAtIndex(0).as<ABRecord>().uniqueId()), "1:ABPerson");
  EXPECT_EQ(textOf(people.objectAtIndex(4).as<ABRecord>().uniqueId()), "x/../y:ABPerson");
  for (NSUInteger i = 0; i < people.count(); ++i) {
    const NSString id = people.objectAtIndex(i).as<ABRecord>().uniqueId();
    EXPECT_EQ(ABAddressBook::addressBook().recordForUniqueId(id).uniqueId().UTF8String(), textOf(id));
    if (i >= 1 && i <= 3) {
      EXPECT_EQ(textOf(id).size(), sizeof "01234567-0123-8123-8123-012345678901:ABPerson" - 1);
    }
  }
  EXPECT_EQ(textOf(ABAddressBook::addressBook().groups().objectAtIndex(0).as<ABRecord>().uniqueId()), "1:ABGroup");
}

TEST(AddressBook, MakesTheFolderThatIsMissingWhenItSaves) {
  const AutoreleasePool pool;
  const ContactsFolder parent;
  unsetenv("ADDRESSBOOK_FOLDER");
  setenv("XDG_DATA_HOME", (parent.path() / "data/user").c_str(), 1);
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  EXPECT_EQ(book.people().count(), 0U);
  EXPECT_FALSE(std::filesystem::exists(parent.path() / "data"));
  const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().initWithAddressBook(book));
  EXPECT_TRUE(book.save());
  struct stat status {};
  ASSERT_EQ(stat((parent.path() / "data/user/addressbook").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST(AddressBook, SaysWhyAFolderCannotBeOpened) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.write("file", "x");
  const std::string file = (folder.path() / "file").string();
  setenv("ADDRESSBOOK_FOLDER", file.c_str(), 1);
  EXPECT_EQ(raised([] { ABAddressBook::sharedAddressBook(); }), "NSInvalidArgumentException");
  EXPECT_EQ(reasonOf([] { ABAddressBook::sharedAddressBook(); }),
            "contacts folder " + file + ": cannot be read: Not a directory");
  setenv("ADDRESSBOOK_FOLDER", (file + "/below").c_str(), 1);
  EXPECT_EQ(reasonOf([] { ABAddressBook::addressBook(); }),
            "contacts folder " + file + "/below: cannot be read: Not a directory");
  unsetenv("ADDRESSBOOK_FOLDER");
  setenv("XDG_DATA_HOME", "relative", 1);
  unsetenv("HOME");
  EXPECT_EQ(reasonOf([] { ABAddressBook::addressBook(); }),
            "contacts folder: none of ADDRESSBOOK_FOLDER, XDG_DATA_HOME and HOME is set");
  // The next call tries again.
  setenv("ADDRESSBOOK_FOLDER", folder.path().c_str(), 1);
  EXPECT_TRUE(ABAddressBook::sharedAddressBook());
}

TEST(AddressBook, RefusesAFolderWithoutPermission) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may read anything";
  const AutoreleasePool pool;
  const ContactsFolder folder;
  ASSERT_EQ(chmod(folder.path().c_str(), 0), 0);
  EXPECT_EQ(reasonOf([] { ABAddressBook::addressBook(); }),
            "contacts folder " + folder.path().string() + ": cannot be read: Permission denied");
  ASSERT_EQ(chmod(folder.path().c_str(), 0700), 0);
}

}  // namespace
