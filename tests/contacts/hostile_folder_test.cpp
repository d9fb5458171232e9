#include "platform/foundation/log.h"
#include "tests/contacts/book_test.h"
#include "tests/contacts/hash_of.h"
#include "tests/contacts/store_scenarios.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<std::string> logged;

void keepLog(NSString message) { logged.push_back(message.UTF8String()); }

std::ptrdiff_t timesLogged(const std::string& text) {
  return std::ranges::count_if(logged, [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

std::string card(const std::string& lines) { return "BEGIN:VCARD\nVERSION:3.0\n" + lines + "END:VCARD\n"; }

NSArray everybody() { return ABAddressBook::addressBook().people(); }

// Every record gets a note, and all of it is saved.
void changeAll() {
  const ABAddressBook book = ABAddressBook::addressBook();
  for (const ABPerson person : each(book.people())) EXPECT_TRUE(person.setValue("changed"_ns, kABNoteProperty));
  for (const ABGroup group : each<ABGroup>(book.groups())) {
    EXPECT_TRUE(group.setValue("changed"_ns, kABGroupNameProperty));
  }
  NSError error;
  EXPECT_TRUE(book.save(&error)) << shown(error.localizedDescription());
}

class HostileFolder : public BookTest {
 protected:
  HostileFolder() {
    outside_.write("victim.vcf", card("UID:victim\nN:Victim\n"));
    setenv("ADDRESSBOOK_FOLDER", folder_.path().c_str(), 1);
  }
  ~HostileFolder() override {
    EXPECT_EQ(bytesOf(victim()), card("UID:victim\nN:Victim\n"));
    EXPECT_EQ(std::distance(fs::directory_iterator(outside_.path()), fs::directory_iterator()), 1);
  }

  [[nodiscard]] fs::path victim() const { return outside_.path() / "victim.vcf"; }
  [[nodiscard]] fs::path data(const char* name) const { return folder_.path() / ".addressbook" / name; }

  ContactsFolder outside_;
};

TEST_F(HostileFolder, RefusesWhatIsNoCardFileOnceByName) {
  fs::create_symlink(victim(), folder_.path() / "link.vcf");
  fs::create_symlink("nowhere", folder_.path() / "dangling.vcf");
  fs::create_directory(folder_.path() / "directory.vcf");
  EXPECT_EQ(mkfifo((folder_.path() / "fifo.vcf").c_str(), 0600), 0);
  folder_.write("empty.vcf", "");
  folder_.write("text.vcf", "not a card\n");
  folder_.write("open.vcf", "BEGIN:VCARD\nVERSION:3.0\nN:Open\n");
  folder_.write("large.vcf", "");
  fs::resize_file(folder_.path() / "large.vcf", std::uintmax_t{33} << 20);
  folder_.write("lines.vcf", card(std::string(1'000'000, '\n')));
  folder_.write("new\nline \xFF.vcf", "nothing");
  const char* ignored[] = {".hidden.vcf", "a.vcf.tmp", "noextension", "b.vcf~", "c.vcfx1y2z3"};
  for (const char* name : ignored) folder_.writeCard(name, "UID:x\nN:Ignored\n");
  folder_.writeCard("good.vcf", "UID:good\nN:Good\n");
  fs::create_hard_link(folder_.path() / "good.vcf", folder_.path() / "hard.vcf");
  inChild([&] {
    NSSetLogHook(&keepLog);
    EXPECT_EQ(everybody().count(), 2U);
    EXPECT_EQ(everybody().count(), 2U);
    const char* refused[] = {"link.vcf: is a symbolic link",
                             "dangling.vcf: is a symbolic link",
                             "directory.vcf: is no regular file",
                             "fifo.vcf: is no regular file",
                             "empty.vcf: is empty",
                             "text.vcf: is not a vCard",
                             "open.vcf: is not a vCard",
                             "large.vcf: is larger than 32 MB",
                             "lines.vcf: has a card of more than a million lines",
                             "\\xFF.vcf: is not a vCard"};
    for (const char* text : refused) EXPECT_EQ(timesLogged(text), 1) << text;
    EXPECT_EQ(logged.size(), std::size(refused));
    for (const std::string& line : logged) EXPECT_EQ(line.find('\n'), std::string::npos) << line;
    changeAll();
  });
  for (const char* name : {"text.vcf", "open.vcf", "large.vcf", "fifo.vcf", "link.vcf", "directory.vcf"}) {
    EXPECT_TRUE(fs::exists(fs::symlink_status(folder_.path() / name))) << name;
  }
  EXPECT_EQ(fs::file_size(folder_.path() / "empty.vcf"), 0U);
}

TEST_F(HostileFolder, ReadsAbsurdContentsAndSavesThem) {
  const std::pair<const char*, std::string> files[] = {
      {"nul.vcf", card(std::string("UID:nul\nN:a\0b\nX-NUL:\0\n", 22))},
      {"bytes.vcf", card("UID:bytes\nN:\xFF\xFE\x80\n")},
      {"line.vcf", card("UID:line\nN:Line\nNOTE:" + std::string(std::size_t{4} << 20, 'x') + "\n")},
      {"lines.vcf", card("UID:lines\nN:Lines\n" + repeated("X:1\n", 200'000))},
      {"parameters.vcf", card("UID:parameters\nN:P\nTEL" + repeated(";TYPE=x", 100'000) + ":1\n")},
      {"nested.vcf", repeated("BEGIN:VCARD\n", 100'000) + card("UID:nested\nN:Nested\n")},
      {"agents.vcf", repeated("BEGIN:VCARD\nAGENT:\n", 50'000) + "N:A\nUID:agents\n" + repeated("END:VCARD\n", 50'000)},
      {"folds.vcf", card("UID:folds\nN:F\nX-LONG\n" + repeated(" a\"\n", 200'000))},
      {"picture.vcf", card("UID:picture\nN:P\nX-PHOTO;ENCODING=b:" + repeated("\n AAAA", 200'000) + "\n")},
      {"fields.vcf", card("UID:fields\nN:" + repeated("\\;;", 200'000) + "\n")},
      {"breaks.vcf",
       "BEGIN:VCARD\nUID:breaks\nN:B\nTITLE;QUOTED-PRINTABLE:" + repeated("=41=\n", 200'000) + "END:VCARD\n"},
      {"quotes.vcf", card("UID:quotes\nN:Q\nTEL;TYPE=\"open:1\nEMAIL;TYPE=,,;=;:x@y\n")},
      {"base64.vcf", card("UID:base64\nN:B\nPHOTO;ENCODING=b:!!!" + std::string(3000, '=') + "\n")},
      {"soft.vcf",
       "BEGIN:VCARD\nVERSION:2.1\nUID:soft\nN;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:=C3=\n=A4\nEND:VCARD\n"},
      {"twin1.vcf", card("UID:twin\nN:First\n")},
      {"twin2.vcf", card("UID:twin\nN:Second\n")},
      {"Case.vcf", card("UID:CASE\nN:Upper\n")},
      {"case.vcf", card("UID:case\nN:Lower\n")},
      {"caf\xC3\xA9.vcf", card("UID:composed\nN:Composed\n")},
      {"cafe\xCC\x81.vcf", card("UID:decomposed\nN:Decomposed\n")},
      {"-rf.vcf", card("N:No Uid\n")},
      {"ring1.vcf",
       card("UID:ring1\nN:Ring\nX-ADDRESSBOOKSERVER-KIND:group\nX-ADDRESSBOOKSERVER-MEMBER:urn:uuid:ring2\n")},
      {"ring2.vcf",
       card("UID:ring2\nN:Ring\nX-ADDRESSBOOKSERVER-KIND:group\nX-ADDRESSBOOKSERVER-MEMBER:urn:uuid:ring1\n"
            "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:nobody\n")},
  };
  for (const auto& [name, bytes] : files) folder_.write(name, bytes);
  const auto start = std::chrono::steady_clock::now();
  inChild([&] {
    const NSArray people = everybody();
    EXPECT_EQ(people.count(), std::size(files) - 2);
    for (const ABPerson person : each(people)) {
      for (const NSString& property : {kABPhoneProperty, kABEmailProperty, kABLastNameProperty, kABNoteProperty}) {
        shown(person, property.UTF8String());
      }
      EXPECT_FALSE(person.imageData());
    }
    EXPECT_EQ(ABAddressBook::addressBook().groups().count(), 2U);
    changeAll();
  });
  inChild([&] {
    const NSArray people = everybody();
    EXPECT_EQ(people.count(), std::size(files) - 2);
    for (const ABPerson person : each(people)) EXPECT_EQ(shown(person, "Note"), "changed");
  });
  // In time that grows with their size alone; in that of its square it would take hours.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes(5));
}

// TORTURE=1 makes it a hundred thousand.
TEST_F(HostileFolder, HoldsVeryManyFiles) {
  const int count = store_scenarios::isTorture() ? 100'000 : 3'000;
  for (int i = 0; i < count; ++i) {
    const std::string uid = std::to_string(i);
    folder_.write(uid + ".vcf", i % 1'000 == 999 ? "no card" : card("UID:" + uid + "\nN:Name " + uid + "\n"));
  }
  NSSetLogHook(&keepLog);
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  EXPECT_EQ(book.people().count(), static_cast<NSUInteger>(count - count / 1'000));
  EXPECT_EQ(timesLogged("is not a vCard"), count / 1'000);
  EXPECT_EQ(timesLogged("folder: 2999.vcf: is not a vCard"), 1);
  const ABSearchElement search =
      ABPerson::searchElement(kABLastNameProperty, nullptr, nullptr, "name 1998"_ns, kABEqualCaseInsensitive);
  EXPECT_EQ(uids(book.recordsMatchingSearchElement(search)), "1998");
  personIn(book, "1998").setValue("Changed"_ns, kABLastNameProperty);
  EXPECT_TRUE(book.save());
  EXPECT_EQ(shown(personIn(ABAddressBook::addressBook(), "1998"), "Last"), "Changed");
  EXPECT_EQ(everybody().count(), book.people().count());
}

TEST_F(HostileFolder, FollowsAUidThatOthersChange) {
  folder_.writeCard("a.vcf", "UID:old\nN:Adams\n");
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    EXPECT_TRUE(personIn(book, "old").setValue("mine"_ns, kABNoteProperty));
    folder_.writeCard("a.vcf", "UID:new\nN:Adams\n");
    EXPECT_TRUE(book.save());
  });
  // Which of both it is nobody knows: nothing of either is lost.
  inChild([] {
    EXPECT_EQ(everybody().count(), 2U);
    EXPECT_TRUE(personIn(ABAddressBook::addressBook(), "new"));
    EXPECT_EQ(shown(personIn(ABAddressBook::addressBook(), "old"), "Note"), "mine");
  });
}

TEST_F(HostileFolder, WritesNothingThroughItsOwnFiles) {
  enum class Kind { kLink, kDirectory, kFifo };
  for (const char* name : {"journal", "me", "properties", "lock"}) {
    for (const Kind kind : {Kind::kLink, Kind::kDirectory, Kind::kFifo}) {
      SCOPED_TRACE(std::string(name) + " of kind " + std::to_string(static_cast<int>(kind)));
      fs::remove_all(folder_.path());
      fs::create_directories(data(name).parent_path());
      folder_.writeCard("a.vcf", "UID:a\nN:Adams\n");
      if (kind == Kind::kLink) fs::create_symlink(victim(), data(name));
      if (kind == Kind::kDirectory) fs::create_directory(data(name));
      if (kind == Kind::kFifo) mkfifo(data(name).c_str(), 0600);
      inChild([&] {
        const ABAddressBook book = ABAddressBook::addressBook();
        EXPECT_TRUE(personIn(book, "a").setValue("x"_ns, kABNoteProperty));
        book.setMe(personIn(book, "a"));
        NSError error;
        EXPECT_EQ(book.save(&error), std::string(name) == "properties");
        EXPECT_TRUE(!error || shown(error.localizedDescription()).find(name) != std::string::npos)
            << shown(error.localizedDescription());
        fs::remove_all(data(name));
        EXPECT_TRUE(book.save());
      });
      EXPECT_NE(bytesOf(folder_.path() / "a.vcf").find("NOTE:x"), std::string::npos);
    }
  }
}

TEST_F(HostileFolder, AppliesNoJournalThatLeadsOutOfIt) {
  const std::string way = "../" + outside_.path().filename().string();
  const std::tuple<const char*, std::string, std::string, bool> steps[] = {
      {"card", "bmV3LnZjZg==", "bmV3LTEudG1w", true},               // new.vcf from new-1.tmp
      {"card", "Li4vZXZpbC52Y2Y=", "bmV3LTEudG1w", false},          // ../evil.vcf
      {"card", "bmV3LnZjZg==", "bmV3LS8uLi8uLi9hLnRtcA==", false},  // from new-/../../a.tmp
      {"data", "Li4vbmV3LnZjZg==", "bmV3LTEudG1w", false},          // ../new.vcf
      {"data", "bG9jaw==", "bmV3LTEudG1w", false},                  // lock
      {"other", "bmV3LnZjZg==", "bmV3LTEudG1w", false},
  };
  for (const auto& [target, name, temporary, isGood] : steps) {
    SCOPED_TRACE(std::string(target) + " " + name);
    fs::remove_all(folder_.path());
    fs::create_directories(folder_.path() / ".addressbook");
    std::ofstream(data("new-1.tmp")) << card("UID:new\nN:New\n");
    const std::string text = std::string("addressbook-journal 3\n") + target + " " + name + " " + temporary + " -\n";
    std::ofstream(data("journal")) << text << "end " << hashOf(text) << "\n";
    inChild([&, isGood = isGood] {
      const ABAddressBook book = ABAddressBook::addressBook();
      EXPECT_EQ(book.people().count(), isGood ? 1U : 0U);
      store_scenarios::addLater(book);
      EXPECT_EQ(book.save(), isGood);
    });
    EXPECT_EQ(fs::exists(data("journal")), !isGood);
    EXPECT_FALSE(fs::exists(folder_.path().parent_path() / "evil.vcf"));
  }
}

}  // namespace
