#include "tests/contacts/book_test.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Save : public BookTest {};

ABPerson add(ABAddressBook book, const char* last) {
  auto person = newPerson(book);
  EXPECT_TRUE(person->setValue(NSString::stringWithUTF8(last), kABLastNameProperty));
  return person.autorelease();
}

std::vector<std::string> filesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::ranges::sort(names);
  return names;
}

TEST_F(Save, KeepsWhatWasChanged) {
  folder_.writeCard("b.vcf", "UID:b\nN:Berg\nX-OTHER:kept\n");
  folder_.writeCard("c.vcf", "UID:c\nN:Cruz\n");
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    EXPECT_TRUE(book.save());
    EXPECT_FALSE(fs::exists(folder_.path() / ".addressbook"));
    const ABPerson added = add(book, "Adams");
    EXPECT_TRUE(personIn(book, "b").setValue("Anna"_ns, kABFirstNameProperty));
    EXPECT_TRUE(book.removeRecord(personIn(book, "c")));
    EXPECT_TRUE(book.hasUnsavedChanges());
    EXPECT_TRUE(book.save());
    EXPECT_FALSE(book.hasUnsavedChanges());
    EXPECT_NE(shown(added, "Creation"), "nil");
    EXPECT_EQ(shown(added, "Creation"), shown(added, "Modification"));
  });
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    ASSERT_EQ(book.people().count(), 2U);
    EXPECT_EQ(shown(each(book.people()).front(), "Last"), "Adams");
    EXPECT_EQ(shown(personIn(book, "b"), "First"), "Anna");
    const std::string file = uids(book.people()).substr(0, 36) + ".vcf";
    EXPECT_EQ(filesIn(folder_.path()), (std::vector<std::string>{".addressbook", file, "b.vcf"}));
  });
  EXPECT_NE(bytesOf(folder_.path() / "b.vcf").find("X-OTHER:kept\r\n"), std::string::npos);
  EXPECT_EQ(filesIn(folder_.path() / ".addressbook"), (std::vector<std::string>{"lock"}));
}

TEST_F(Save, KeepsTheOwnerUntilNobodyIs) {
  folder_.writeCard("a.vcf", "UID:a\nN:a\n");
  enum class Step { kName, kForget, kNameAgain, kRemove };
  for (const Step step : {Step::kName, Step::kForget, Step::kNameAgain, Step::kRemove}) {
    inChild([&] {
      const ABAddressBook book = ABAddressBook::addressBook();
      const ABPerson person = personIn(book, "a");
      const bool isNaming = step == Step::kName || step == Step::kNameAgain;
      EXPECT_EQ(book.me().get(), isNaming ? nullptr : person.get());
      step == Step::kRemove ? void(book.removeRecord(person)) : book.setMe(isNaming ? person : ABPerson());
      EXPECT_TRUE(book.hasUnsavedChanges());
      EXPECT_EQ(book.me().get(), isNaming ? person.get() : nullptr);
      EXPECT_TRUE(book.save());
    });
  }
  EXPECT_FALSE(ABAddressBook::addressBook().me());
}

TEST_F(Save, WritesFilesThatNobodyElseReads) {
  folder_.writeCard("old.vcf", "UID:old\nN:Old\n");
  ASSERT_EQ(chmod((folder_.path() / "old.vcf").c_str(), 0640), 0);
  umask(0);
  inChild([&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    add(book, "New");
    EXPECT_TRUE(personIn(book, "old").setValue("x"_ns, kABNoteProperty));
    book.setMe(personIn(book, "old"));
    EXPECT_TRUE(book.save());
  });
  auto mode = [](const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
  };
  EXPECT_EQ(mode(folder_.path() / ".addressbook"), 0700U);
  EXPECT_EQ(mode(folder_.path() / "old.vcf"), 0640U);
  for (const auto& entry : fs::recursive_directory_iterator(folder_.path())) {
    if (entry.is_regular_file() && entry.path().filename() != "old.vcf") {
      EXPECT_EQ(mode(entry.path()), 0600U) << entry.path();
    }
  }
}

TEST_F(Save, MergesWhatOthersChanged) {
  folder_.writeCard("a.vcf", "UID:a\nN:Adams\nTITLE:old\n");
  folder_.write("two.vcf",
                "BEGIN:VCARD\nUID:b\nN:Berg\nEND:VCARD\nloose text\nBEGIN:VCARD\nUID:c\nN:Cruz\nEND:VCARD\n");
  folder_.writeCard("d.vcf", "UID:d\nN:Dahl\n");
  folder_.writeCard("e.vcf", "UID:e\nN:Eder\n");
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    for (const char* uid : {"a", "b", "d", "e"}) {
      EXPECT_TRUE(personIn(book, uid).setValue("mine"_ns, kABNoteProperty));
    }
    folder_.writeCard("a.vcf", "UID:a\nN:Adams\nTITLE:theirs\nX-THEIRS:1\nNOTE:theirs\n");
    fs::rename(folder_.path() / "d.vcf", folder_.path() / "moved.vcf");
    fs::remove(folder_.path() / "e.vcf");
    EXPECT_TRUE(book.save());
    EXPECT_EQ(shown(personIn(book, "a"), "JobTitle"), "theirs");
  });
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    EXPECT_EQ(uids(book.people()), "a e d b c");
    for (const char* uid : {"a", "b", "d", "e"}) EXPECT_EQ(shown(personIn(book, uid), "Note"), "mine");
    EXPECT_EQ(shown(personIn(book, "a"), "JobTitle"), "theirs");
    EXPECT_EQ(shown(personIn(book, "c"), "Note"), "nil");
  });
  EXPECT_NE(bytesOf(folder_.path() / "a.vcf").find("X-THEIRS:1"), std::string::npos);
  const std::string two = bytesOf(folder_.path() / "two.vcf");
  EXPECT_NE(two.find("loose text\nBEGIN:VCARD\nUID:c\nN:Cruz\nEND:VCARD\n"), std::string::npos) << two;
  EXPECT_EQ(filesIn(folder_.path()),
            (std::vector<std::string>{".addressbook", "a.vcf", "e.vcf", "moved.vcf", "two.vcf"}));
}

TEST_F(Save, FindsNamesForHostileUids) {
  const std::string hostile[] = {"../../x", "/etc/x", "a/b", ".", "..", "-rf", ".lock", "x.tmp", std::string(300, 'u')};
  int i = 0;
  for (const std::string& uid : hostile) {
    folder_.writeCard("card" + std::to_string(i++) + ".vcf", "UID:" + uid + "\nN:a\n");
  }
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    ASSERT_EQ(book.people().count(), std::size(hostile));
    for (const ABPerson person : each(book.people())) EXPECT_TRUE(person.setValue("x"_ns, kABNoteProperty));
    // They are made anew under names of their own.
    for (const std::string& name : filesIn(folder_.path())) fs::remove(folder_.path() / name);
    EXPECT_TRUE(book.save());
  });
  EXPECT_EQ(filesIn(folder_.path()).size(), std::size(hostile) + 1);
  inChild([&] { EXPECT_EQ(ABAddressBook::addressBook().people().count(), std::size(hostile)); });
  EXPECT_FALSE(fs::exists(folder_.path() / "../../x.vcf"));
}

TEST_F(Save, GivesARemovedRecordBack) {
  const std::string base64(4000, 'A');
  folder_.writeCard("a.vcf", "UID:a\nN:Adams\nPHOTO;ENCODING=b:" + base64 + "\n");
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    const auto person = Retained<ABPerson>::share(personIn(book, "a"));
    EXPECT_TRUE(book.removeRecord(person.get()));
    EXPECT_TRUE(book.save());
    EXPECT_EQ(filesIn(folder_.path()), (std::vector<std::string>{".addressbook"}));
    EXPECT_EQ(shown(person.get(), "Last"), "Adams");
    EXPECT_TRUE(book.addRecord(person.get()));
    EXPECT_TRUE(book.save());
  });
  EXPECT_NE(bytesOf(folder_.path() / "a.vcf").find("AAAA\r\n"), std::string::npos);
}

}  // namespace
