#include "tests/contacts/book_test.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

class CardCache : public BookTest {
 protected:
  // Enough for a cache to be worth its writing, and old enough that the files' times can be relied on.
  CardCache() {
    constexpr int kCount = 600;
    for (int i = 0; i < kCount; ++i) writeCard("c" + std::to_string(i), "Name" + std::to_string(i));
    folder_.write("no card.vcf", "no card");
    sleep(3);
  }

  void writeCard(const std::string& uid, const std::string& name) const {
    folder_.writeCard(uid + ".vcf",
                      "UID:" + uid + "\nFN:" + name + "\nPHOTO;ENCODING=b:" + std::string(2000, 'A') + "\n");
  }
  [[nodiscard]] fs::path cache() const { return folder_.path() / ".addressbook" / "cache"; }

  // Of all people, and what is found, as a process that starts has them.
  static std::string names() {
    return answerOfChild([] {
             const ABAddressBook book = ABAddressBook::addressBook();
             std::string text = std::to_string(book.people().count());
             for (const ABPerson person : each(book.people())) {
               if (shown(person, "UID").starts_with("c59")) text += " " + shown(person, "First");
             }
             text += " " + std::to_string(personIn(book, "c599").imageData().length());
             return text + " " +
                    uids(book.recordsMatchingSearchElement(ABPerson::searchElement(
                        kABFirstNameProperty, nullptr, nullptr, "name599"_ns, kABEqualCaseInsensitive)));
           })
        .second;
  }
};

TEST_F(CardCache, SaysWhatTheFilesSay) {
  const std::string before = names();
  EXPECT_FALSE(fs::exists(cache())) << "a folder that nothing was ever saved to stays as it is";
  fs::create_directory(cache().parent_path());
  EXPECT_EQ(names(), before);
  const std::string kept = bytesOf(cache());
  EXPECT_GT(kept.size(), 100'000U);
  EXPECT_LT(kept.size(), 600'000U) << "pictures aren't kept";

  EXPECT_EQ(names(), before);
  // What it says is believed for unchanged files.
  std::string other = kept;
  other.replace(other.find("Name598"), 7, "Name000");
  std::ofstream(cache(), std::ios::binary) << other;
  EXPECT_EQ(names(), before) << "one whose hash is wrong counts as none";
  for (const std::string& damaged : {std::string(), kept.substr(0, kept.size() / 8), kept.substr(0, 20), "x" + kept}) {
    std::ofstream(cache(), std::ios::binary) << damaged;
    EXPECT_EQ(names(), before) << damaged.size();
    EXPECT_EQ(bytesOf(cache()), kept) << "written anew";
  }
}

TEST_F(CardCache, KnowsWhatHasChanged) {
  fs::create_directory(cache().parent_path());
  names();
  const std::string kept = bytesOf(cache());
  writeCard("c599", "NAME599");
  writeCard("c5990", "Added");
  fs::remove(folder_.path() / "c598.vcf");
  fs::rename(folder_.path() / "c597.vcf", folder_.path() / "c590.vcf");
  EXPECT_EQ(names(), "599 Name59 Name597 Name591 Name592 Name593 Name594 Name595 Name596 NAME599 Added 1500 c599");
  EXPECT_EQ(bytesOf(cache()), kept) << "a few files aren't worth a new one";
}

// Which of two cards with one UID keeps it depends on the file that is there besides.
TEST_F(CardCache, GivesEachUidAway) {
  writeCard("other", "Other");
  folder_.writeCard("z.vcf", "UID:c0\nFN:Last\n");
  fs::create_directory(cache().parent_path());
  sleep(3);
  names();
  fs::remove(folder_.path() / "c0.vcf");
  const auto holder = [] { return shown(personIn(ABAddressBook::addressBook(), "c0"), "First"); };
  EXPECT_EQ(answerOfChild(holder).second, "Last");
}

}  // namespace
