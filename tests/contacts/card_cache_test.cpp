#include "tests/contacts/book_test.h"
#include "tests/contacts/hash_of.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

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
                      "UID:" + uid + "\nPHOTO;ENCODING=b:" + std::string(2000, 'A') + "\nN:Last;" + name + "\n");
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

// By somebody who knows how its hashes are made. What it says is believed as far as it can be.
TEST_F(CardCache, MayBeForged) {
  fs::create_directory(cache().parent_path());
  const std::string before = names();
  const std::string kept = bytesOf(cache());
  const std::size_t head = kept.find('\n') + 1;
  const std::size_t start = head + 32;  // of what is said of the first block's files
  std::uint64_t size = 0;
  std::memcpy(&size, kept.data() + head, sizeof size);
  constexpr std::size_t kCardCount = 4;
  constexpr std::size_t kCardsOfFile = 66;
  constexpr std::size_t kUidSize = kCardsOfFile + 4;
  constexpr std::size_t kTextSize = kUidSize + 6 + 8 + 128 + 1;
  for (const std::size_t place :
       {std::size_t{0}, kCardCount, kCardsOfFile, kUidSize, kTextSize, kTextSize + 4, kTextSize + 8}) {
    for (const std::uint32_t number : {0U, 127U, 129U, 100'000U, ~0U}) {
      std::string forged = kept;
      std::memcpy(forged.data() + start + place, &number, sizeof number);
      const std::uint64_t hash = hashOf(std::string_view(forged).substr(start, static_cast<std::size_t>(size)));
      std::memcpy(forged.data() + head + 8, &hash, sizeof hash);
      std::ofstream(cache(), std::ios::binary) << forged;
      const std::string after = names();
      EXPECT_TRUE(place > kCardCount ? !after.empty() : after == before) << number << " at " << place << ": " << after;
    }
  }
}

// Texts are read from it when somebody asks for one.
TEST_F(CardCache, MayBeLostWhileItIsInUse) {
  fs::create_directory(cache().parent_path());
  names();
  const auto outcome = answerOfChild([this] {
    const ABAddressBook book = ABAddressBook::addressBook();
    fs::resize_file(cache(), fs::file_size(cache()) / 3);
    fs::remove(folder_.path() / "c598.vcf");
    const ABPerson removed = personIn(book, "c598");
    const std::string text = shown(personIn(book, "c599"), "First") + " " + shown(removed, "First");
    removed.setValue("New"_ns, kABFirstNameProperty);
    return text + (book.save() ? " saved" : " failed");
  });
  EXPECT_EQ(outcome.second, "Name599 nil failed") << "the rest of the card would be lost";
  EXPECT_FALSE(fs::exists(folder_.path() / "c598.vcf"));
  EXPECT_FALSE(fs::exists(cache())) << "the next one writes another";
  EXPECT_NE(names().find("Name599"), std::string::npos);
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
