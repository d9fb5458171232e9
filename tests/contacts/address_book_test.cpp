#include "platform/foundation/exception.h"
#include "tests/contacts/book_test.h"
#include "tests/foundation/raised.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

namespace {

class AddressBook : public BookTest {};

TEST_F(AddressBook, ReadsTheFolderInTheOrderOfItsFileNames) {
  folder_.writeCard("b.vcf", "UID:2\nN:Berg;Anna\n");
  folder_.writeCard("a.vcf", "UID:urn:uuid:1\nFN:Friends\nX-ADDRESSBOOKSERVER-KIND:group\n");
  folder_.write("c.vcf",
                "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:4\r\nN:Z;\r\nEND:VCARD\r\n"
                "BEGIN:VCARD\r\nVERSION:2.1\r\nUID:3\r\nN:Y;\r\nEND:VCARD\r\n");
  folder_.writeCard("d.VCF", "UID:5\nKIND:group\nFN:Work\n");
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  EXPECT_EQ(uids(book.people()), "2 4 3");
  EXPECT_EQ(uids(book.groups()), "1 5");
  EXPECT_EQ(ABAddressBook::sharedAddressBook(), book);

  const ABRecord anna = book.recordForUniqueId("2:ABPerson"_ns);
  EXPECT_EQ(anna, book.people().objectAtIndex(0));
  EXPECT_EQ(anna.valueForProperty(kABFirstNameProperty), anna.valueForProperty(kABFirstNameProperty));
  EXPECT_TRUE(book.recordForUniqueId("1:ABGroup"_ns).isKindOfClass("ABGroup"_class));
  EXPECT_FALSE(book.recordForUniqueId("1:ABPerson"_ns));
  EXPECT_EQ(raised([&] { (void)book.recordForUniqueId(nullptr); }), "NSInvalidArgumentException");

  const ABAddressBook other = ABAddressBook::addressBook();
  EXPECT_NE(other, book);
  EXPECT_EQ(shown(personIn(other, "2"), "First"), "Anna");
}

TEST_F(AddressBook, GivesEachCardAnIdOfItsOwn) {
  const std::pair<const char*, const char*> cards[] = {
      {"a.vcf", "UID:1\n"}, {"b.vcf", "UID:1\n"},           {"c.vcf", "FN:no id\n"},
      {"d.vcf", "UID:\n"},  {"\xff.vcf", "UID: x/../y \n"}, {"e.vcf", "UID:1\nKIND:group\n"},
  };
  for (const auto& [file, lines] : cards) folder_.writeCard(file, lines);
  const NSArray people = ABAddressBook::addressBook().people();
  ASSERT_EQ(people.count(), 5U);
  const ABAddressBook again = ABAddressBook::addressBook();
  for (NSUInteger i = 0; i < people.count(); ++i) {
    const NSString id = people.objectAtIndex(i).as<ABRecord>().uniqueId();
    EXPECT_EQ(again.recordForUniqueId(id), again.people().objectAtIndex(i)) << shown(id);
    const std::string own = i == 0 ? "1:ABPerson" : i == 4 ? "x/../y:ABPerson" : "";
    const bool isMade = shown(id).size() == sizeof "01234567-0123-8123-8123-012345678901:ABPerson" - 1;
    EXPECT_TRUE(own.empty() ? isMade : shown(id) == own) << shown(id);
  }
  EXPECT_EQ(uids(again.groups()), "1");
}

// As when a card that had none was saved with the id that it was given, and an older form of it is there.
TEST_F(AddressBook, TellsACardFromOneWithItsDerivedId) {
  folder_.writeCard("b.vcf", "N:Bee\n");
  const std::string derived = answerOfChild([] { return uids(ABAddressBook::addressBook().people()); }).second;
  folder_.writeCard("a.vcf", "UID:" + derived + "\nN:Ay\n");
  ABAddressBook book = ABAddressBook::addressBook();
  EXPECT_EQ(shown(personIn(book, derived), "Last"), "Ay");
  EXPECT_TRUE(book.removeRecord(book.people().objectAtIndex(1).as<ABRecord>()));
  EXPECT_EQ(uids(book.people()), derived);
  EXPECT_TRUE(book.save());
  EXPECT_FALSE(std::filesystem::exists(folder_.path() / "b.vcf"));
  EXPECT_TRUE(std::filesystem::exists(folder_.path() / "a.vcf"));
}

TEST_F(AddressBook, FindsWhatIsLeftWhenMuchIsTakenOut) {
  for (char c = 'a'; c <= 'j'; ++c) folder_.writeCard(std::string(1, c) + ".vcf", "UID:" + std::string(1, c) + "\n");
  ABAddressBook book = ABAddressBook::addressBook();
  for (const char* uid : {"c", "a", "j", "b", "e", "d", "g"}) {
    const ABPerson person = personIn(book, uid);
    EXPECT_TRUE(book.removeRecord(person));
    EXPECT_FALSE(personIn(book, uid));
    const bool isBack = *uid == 'b' && book.addRecord(person);
    EXPECT_EQ(static_cast<bool>(personIn(book, uid)), isBack);
    EXPECT_EQ(shown(personIn(book, "i"), "UID"), "i:ABPerson") << uid;
  }
  EXPECT_EQ(uids(book.people()), "f h i b");
}

TEST_F(AddressBook, SavesOnceWhatWasAddedTwice) {
  const ABAddressBook book = ABAddressBook::addressBook();
  const auto person = newPerson(book);
  EXPECT_TRUE(book.removeRecord(person.get()));
  EXPECT_TRUE(book.addRecord(person.get()));
  EXPECT_TRUE(book.save());
  EXPECT_EQ(ABAddressBook::addressBook().people().count(), 1U);
}

TEST_F(AddressBook, MakesTheFolderThatIsMissingWhenItSaves) {
  unsetenv("ADDRESSBOOK_FOLDER");
  setenv("XDG_DATA_HOME", (folder_.path() / "data/user").c_str(), 1);
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  EXPECT_EQ(book.people().count(), 0U);
  EXPECT_FALSE(std::filesystem::exists(folder_.path() / "data"));
  newPerson(book);
  EXPECT_TRUE(book.save());
  struct stat status {};
  ASSERT_EQ(stat((folder_.path() / "data/user/addressbook").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST_F(AddressBook, SaysWhyAFolderCannotBeOpened) {
  folder_.write("file", "x");
  const std::string file = (folder_.path() / "file").string();
  auto reason = [] {
    try {
      return shown(ABAddressBook::sharedAddressBook());
    } catch (const NSException& exception) {
      return shown(exception.name()) + ": " + shown(exception.reason());
    }
  };
  const std::string start = "NSInvalidArgumentException: contacts folder";
  for (const std::string& path : {file, file + "/below"}) {
    setenv("ADDRESSBOOK_FOLDER", path.c_str(), 1);
    EXPECT_EQ(reason(), start + " " + path + ": cannot be read: Not a directory");
  }
  unsetenv("ADDRESSBOOK_FOLDER");
  setenv("XDG_DATA_HOME", "relative", 1);
  unsetenv("HOME");
  EXPECT_EQ(reason(), start + ": none of ADDRESSBOOK_FOLDER, XDG_DATA_HOME and HOME is set");
  // The next call tries again.
  setenv("ADDRESSBOOK_FOLDER", folder_.path().c_str(), 1);
  EXPECT_TRUE(ABAddressBook::sharedAddressBook());
}

TEST_F(AddressBook, ReadsNamesWhereverTheyStand) {
  const std::string photo = "PHOTO;ENCODING=b:" + std::string(2000, 'A') + "\n";
  const std::pair<std::string, const char*> names[] = {
      {"N:Last;First;Middle;Title;Suffix\n", "Last First Middle Title Suffix"},
      {photo + "item1.N: Last ; First\n" + photo, "Last First nil nil nil"},
      {"N:;;;\nN:L\xC3\xA9on;First\nN:Other;Other\n", "L\xC3\xA9on First nil nil nil"},
      {"N:La\n st;Fi\n rst\n", "Last First nil nil nil"},
      {"N:La\\;st;First\n", "La;st First nil nil nil"},
      {"N;ENCODING=QUOTED-PRINTABLE:L=C3=A9on;First\n", "L\xC3\xA9on First nil nil nil"},
      {"N:;First;;Title\n", "nil First nil Title nil"},
      {"N: ;\nFN:Full Name\n", "nil Full Name nil nil nil"},
  };
  for (std::size_t i = 0; i < std::size(names); ++i) {
    folder_.writeCard(std::to_string(i) + ".vcf", "UID:" + std::to_string(i) + "\n" + names[i].first);
  }
  const ABAddressBook book = ABAddressBook::addressBook();
  for (std::size_t i = 0; i < std::size(names); ++i) {
    const ABPerson person = personIn(book, std::to_string(i));
    std::string found = shown(person, "Last");
    for (const char* property : {"First", "Middle", "Title", "Suffix"}) found += " " + shown(person, property);
    EXPECT_EQ(found, names[i].second) << names[i].first;
  }
}

}  // namespace
