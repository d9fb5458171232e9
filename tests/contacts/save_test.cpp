#include "platform/contacts/address_book.h"
#include "platform/foundation/error.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/in_child.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

ABPerson personNamed(ABAddressBook book, const std::string& last) {
  const NSArray people = book.people();
  for (NSUInteger i = 0; i < people.count(); ++i) {
    if (shown(people.objectAtIndex(i).as<ABRecord>(), "Last") == last) return people.objectAtIndex(i).as<ABPerson>();
  }
  return nullptr;
}

ABPerson add(ABAddressBook book, const char* last) {
  const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().initWithAddressBook(book));
  EXPECT_TRUE(person->setValue(NSString::stringWithUTF8(last), kABLastNameProperty));
  return Retained<ABPerson>(person).autorelease();
}

std::string lastNames(ABAddressBook book) {
  const NSArray people = book.people();
  std::vector<std::string> names;
  for (NSUInteger i = 0; i < people.count(); ++i)
    names.push_back(shown(people.objectAtIndex(i).as<ABRecord>(), "Last"));
  std::ranges::sort(names);
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

std::vector<std::string> filesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::ranges::sort(names);
  return names;
}

// What the folder shows to a process that opens it now.
void expectFound(const std::string& names) {
  inChild([&] { EXPECT_EQ(lastNames(ABAddressBook::addressBook()), names); });
}

TEST(Save, KeepsWhatWasChanged) {
  const ContactsFolder folder;
  folder.writeCard("b.vcf", "UID:b\nN:Berg\nX-OTHER:kept\n");
  folder.writeCard("c.vcf", "UID:c\nN:Cruz\n");
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    EXPECT_TRUE(book.save());
    EXPECT_FALSE(fs::exists(folder.path() / ".addressbook"));
    const ABPerson added = add(book, "Adams");
    EXPECT_TRUE(personNamed(book, "Berg").setValue("Anna"_ns, kABFirstNameProperty));
    EXPECT_TRUE(book.removeRecord(personNamed(book, "Cruz")));
    EXPECT_TRUE(book.hasUnsavedChanges());
    EXPECT_TRUE(book.save());
    EXPECT_FALSE(book.hasUnsavedChanges());
    EXPECT_EQ(shown(added, "Last"), "Adams");
    EXPECT_NE(shown(added, "Creation"), "nil");
    EXPECT_EQ(shown(added, "Creation"), shown(added, "Modification"));
    EXPECT_EQ(shown(personNamed(book, "Berg"), "First"), "Anna");
  });
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    EXPECT_EQ(lastNames(book), "Adams Berg");
    EXPECT_EQ(shown(personNamed(book, "Berg"), "First"), "Anna");
    const std::string uid = shown(personNamed(book, "Adams").uniqueId());
    EXPECT_EQ(filesIn(folder.path()),
              (std::vector<std::string>{".addressbook", uid.substr(0, uid.find(':')) + ".vcf", "b.vcf"}));
  });
  EXPECT_NE(bytesOf(folder.path() / "b.vcf").find("X-OTHER:kept\r\n"), std::string::npos);
  EXPECT_EQ(filesIn(folder.path() / ".addressbook"), (std::vector<std::string>{"lock"}));
}

TEST(Save, KeepsIdentifiersOwnerGroupsAndPictures) {
  const ContactsFolder folder;
  auto state = [](ABAddressBook book) {
    const ABPerson person = personNamed(book, "Adams");
    const auto phones = person.valueForProperty(kABPhoneProperty).as<ABMultiValue>();
    const auto group = book.groups().objectAtIndex(0).as<ABGroup>();
    EXPECT_EQ(book.me(), person);
    EXPECT_EQ(group.members().count(), 1U);
    return shown(phones) + shown(phones.identifierAtIndex(0)) + shown(phones.identifierAtIndex(1)) +
           shown(group, "GroupName") + shown(group.distributionIdentifier(kABPhoneProperty, person)) +
           shown(person.imageData());
  };
  const fs::path told = folder.path() / "told";
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    const ABPerson person = add(book, "Adams");
    const auto phones = Retained<ABMutableMultiValue>::adopt(ABMutableMultiValue::alloc().init());
    phones->setPrimaryIdentifier(phones->addValue("1"_ns, kABPhoneMobileLabel));
    phones->addValue("2"_ns, "boat"_ns);
    EXPECT_TRUE(person.setValue(phones.get(), kABPhoneProperty));
    EXPECT_TRUE(person.setImageData(NSData::dataWithBytes("GIF89a", 6)));
    EXPECT_TRUE(book.save());
    const auto group = Retained<ABGroup>::adopt(ABGroup::alloc().initWithAddressBook(book));
    EXPECT_TRUE(group->setValue("Friends"_ns, kABGroupNameProperty));
    EXPECT_TRUE(group->addMember(person));
    EXPECT_TRUE(group->setDistributionIdentifier(phones->identifierAtIndex(1), kABPhoneProperty, person));
    book.setMe(person);
    EXPECT_TRUE(book.save());
    folder.write("told", state(book));
  });
  inChild([&] { EXPECT_EQ(state(ABAddressBook::sharedAddressBook()), bytesOf(told)); });
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    EXPECT_TRUE(book.removeRecord(personNamed(book, "Adams")));
    EXPECT_TRUE(book.save());
  });
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    EXPECT_FALSE(book.me());
    EXPECT_EQ(book.groups().objectAtIndex(0).as<ABGroup>().members().count(), 0U);
  });
}

TEST(Save, WritesFilesThatNobodyElseReads) {
  const ContactsFolder folder;
  folder.writeCard("old.vcf", "UID:old\nN:Old\n");
  ASSERT_EQ(chmod((folder.path() / "old.vcf").c_str(), 0640), 0);
  umask(0);
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    add(book, "New");
    EXPECT_TRUE(personNamed(book, "Old").setValue("x"_ns, kABNoteProperty));
    book.setMe(personNamed(book, "Old"));
    EXPECT_TRUE(book.save());
  });
  auto mode = [](const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  };
  EXPECT_EQ(mode(folder.path() / ".addressbook"), 0700U);
  EXPECT_EQ(mode(folder.path() / "old.vcf"), 0640U);
  for (const auto& entry : fs::recursive_directory_iterator(folder.path())) {
    if (entry.is_regular_file() && entry.path().filename() != "old.vcf") {
      EXPECT_EQ(mode(entry.path()), 0600U) << entry.path();
    }
  }
}

TEST(Save, MergesWhatOthersChanged) {
  const ContactsFolder folder;
  folder.writeCard("a.vcf", "UID:a\nN:Adams\nTITLE:old\n");
  folder.write("two.vcf", "BEGIN:VCARD\nUID:b\nN:Berg\nEND:VCARD\nloose text\nBEGIN:VCARD\nUID:c\nN:Cruz\nEND:VCARD\n");
  folder.writeCard("d.vcf", "UID:d\nN:Dahl\n");
  folder.writeCard("e.vcf", "UID:e\nN:Eder\n");
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    EXPECT_TRUE(personNamed(book, "Adams").setValue("mine"_ns, kABNoteProperty));
    EXPECT_TRUE(personNamed(book, "Berg").setValue("mine"_ns, kABNoteProperty));
    EXPECT_TRUE(personNamed(book, "Dahl").setValue("mine"_ns, kABNoteProperty));
    EXPECT_TRUE(personNamed(book, "Eder").setValue("mine"_ns, kABNoteProperty));
    folder.writeCard("a.vcf", "UID:a\nN:Adams\nTITLE:theirs\nX-THEIRS:1\nNOTE:theirs\n");
    fs::rename(folder.path() / "d.vcf", folder.path() / "moved.vcf");
    fs::remove(folder.path() / "e.vcf");
    EXPECT_TRUE(book.save());
    EXPECT_EQ(shown(personNamed(book, "Adams"), "JobTitle"), "theirs");
  });
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    EXPECT_EQ(lastNames(book), "Adams Berg Cruz Dahl Eder");
    for (const char* name : {"Adams", "Berg", "Dahl", "Eder"})
      EXPECT_EQ(shown(personNamed(book, name), "Note"), "mine");
    EXPECT_EQ(shown(personNamed(book, "Adams"), "JobTitle"), "theirs");
    EXPECT_EQ(shown(personNamed(book, "Cruz"), "Note"), "nil");
  });
  EXPECT_NE(bytesOf(folder.path() / "a.vcf").find("X-THEIRS:1"), std::string::npos);
  const std::string two = bytesOf(folder.path() / "two.vcf");
  EXPECT_NE(two.find("loose text\nBEGIN:VCARD\nUID:c\nN:Cruz\nEND:VCARD\n"), std::string::npos) << two;
  EXPECT_EQ(filesIn(folder.path()),
            (std::vector<std::string>{".addressbook", "a.vcf", "e.vcf", "moved.vcf", "two.vcf"}));
}

TEST(Save, FindsNamesForHostileUids) {
  const ContactsFolder folder;
  const std::string uids[] = {"../../x", "/etc/x", "a/b", ".", "..", "-rf", ".lock", "x.tmp", std::string(300, 'u')};
  int i = 0;
  for (const std::string& uid : uids) {
    folder.writeCard("card" + std::to_string(i++) + ".vcf", "UID:" + uid + "\nN:a\n");
  }
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    const NSArray people = book.people();
    ASSERT_EQ(people.count(), std::size(uids));
    for (NSUInteger k = 0; k < people.count(); ++k) {
      EXPECT_TRUE(people.objectAtIndex(k).as<ABPerson>().setValue("x"_ns, kABNoteProperty));
    }
    // They are made anew under names of their own.
    for (NSUInteger k = 0; k < people.count(); ++k) fs::remove(folder.path() / ("card" + std::to_string(k) + ".vcf"));
    EXPECT_TRUE(book.save());
  });
  const std::vector<std::string> names = filesIn(folder.path());
  EXPECT_EQ(names.size(), std::size(uids) + 1);
  inChild([&] { EXPECT_EQ(ABAddressBook::addressBook().people().count(), std::size(uids)); });
  EXPECT_FALSE(fs::exists(folder.path() / "../../x.vcf"));
}

TEST(Save, SaysWhyItFails) {
  const ContactsFolder folder;
  folder.writeCard("a.vcf", "UID:a\nN:Adams\n");
  fs::create_directories(folder.path() / ".addressbook");
  const fs::path lock = folder.path() / ".addressbook/lock";
  fs::create_symlink("/tmp/elsewhere", lock);
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    EXPECT_TRUE(personNamed(book, "Adams").setValue("x"_ns, kABNoteProperty));
    add(book, "New");
    NSError error;
    EXPECT_FALSE(book.save(&error));
    ASSERT_TRUE(error);
    EXPECT_EQ(shown(error.domain()), "ABAddressBookErrorDomain");
    EXPECT_EQ(error.code(), 0);
    EXPECT_EQ(shown(error.localizedDescription()),
              "the address book can't be saved: cannot lock the folder: Too many levels of symbolic links");
    EXPECT_EQ(error.userInfo().objectForKey(NSUnderlyingErrorKey).as<NSError>().code(), ELOOP);
    EXPECT_TRUE(book.hasUnsavedChanges());
    EXPECT_FALSE(book.save());
    fs::remove(lock);
    EXPECT_TRUE(book.save());
  });
  EXPECT_FALSE(fs::exists("/tmp/elsewhere"));
  expectFound("Adams New");
}

TEST(Save, GivesARemovedRecordBack) {
  const ContactsFolder folder;
  const std::string base64(4000, 'A');
  folder.writeCard("a.vcf", "UID:a\nN:Adams\nPHOTO;ENCODING=b:" + base64 + "\n");
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    const auto person = Retained<ABPerson>::share(personNamed(book, "Adams"));
    EXPECT_TRUE(book.removeRecord(person.get()));
    EXPECT_TRUE(book.save());
    EXPECT_EQ(filesIn(folder.path()), (std::vector<std::string>{".addressbook"}));
    EXPECT_EQ(shown(person.get(), "Last"), "Adams");
    EXPECT_TRUE(book.addRecord(person.get()));
    EXPECT_TRUE(book.save());
  });
  EXPECT_NE(bytesOf(folder.path() / "a.vcf").find("AAAA\r\n"), std::string::npos);
}

}  // namespace
