#include "platform/foundation/notification.h"
#include "platform/foundation/run_loop.h"
#include "platform/objc/class_builder.h"
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
  constexpr std::size_t kHeadSize = 32;
  const std::size_t start = head + kHeadSize;  // of what is said of the first block's files
  const auto numberAt = [&kept](std::size_t place) {
    std::uint64_t number = 0;
    std::memcpy(&number, kept.data() + place, sizeof number);
    return static_cast<std::size_t>(number);
  };
  const std::size_t size = numberAt(head);
  const auto namesWith = [&](std::initializer_list<std::pair<std::size_t, std::uint32_t>> numbers) {
    std::string forged = kept;
    for (const auto& [place, number] : numbers) std::memcpy(forged.data() + start + place, &number, sizeof number);
    const std::uint64_t hash = hashOf(std::string_view(forged).substr(start, size));
    std::memcpy(forged.data() + head + 8, &hash, sizeof hash);
    std::ofstream(cache(), std::ios::binary) << forged;
    return names();
  };
  constexpr std::size_t kFile = 8;
  constexpr std::size_t kFileSize = 64;
  constexpr std::size_t kCard = kFile + 128 * kFileSize;
  constexpr std::size_t kCardSize = 168;
  for (const std::size_t place : {std::size_t{0}, std::size_t{4}, kFile + 48, kFile + 52, kFile + 56, kFile + 60,
                                  kCard + 8, kCard + 12, kCard + 16, kCard + 20, kCard + 24, kCard + 28, kCard + 32}) {
    for (const std::uint32_t number : {0U, 127U, 129U, 100'000U, ~0U}) {
      const std::string after = namesWith({{place, number}});
      EXPECT_TRUE(place >= kCard ? !after.empty() : after == before) << number << " at " << place << ": " << after;
    }
  }
  // Numbers of cards that come out right when 32 bits overflow.
  EXPECT_EQ(
      namesWith({{kFile + 60, 100'000}, {kFile + kFileSize + 56, 100'000}, {kFile + kFileSize + 60, 2U - 100'000}}),
      before);
  // Ids and texts that lie one over another.
  const auto namesSize = static_cast<std::uint32_t>(size - kCard - 128 * kCardSize);
  EXPECT_EQ(namesWith({{kCard + 8, 0}, {kCard + 12, namesSize}}), before);
  const auto textsSize = static_cast<std::uint32_t>(numberAt(head + 16));
  EXPECT_EQ(namesWith({{kCard + 16, 0}, {kCard + 20, textsSize}}), before);
  // Two cards with one id.
  EXPECT_FALSE(namesWith({{kCard + kCardSize + 8, 6}}).empty());
  inChild([] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    EXPECT_TRUE(personIn(book, "c0"));
    for (const ABPerson person : each(book.people())) book.removeRecord(person);
    EXPECT_LE(book.people().count(), 1U);
  });
  // Blocks in another order, or twice.
  const std::size_t second = start + size + numberAt(head + 16);
  const std::size_t third = second + kHeadSize + numberAt(second) + numberAt(second + 16);
  const std::string blocks[] = {kept.substr(head, second - head), kept.substr(second, third - second)};
  for (const std::string& twoBlocks : {blocks[1] + blocks[0], blocks[0] + blocks[0], blocks[1] + blocks[1]}) {
    std::ofstream(cache(), std::ios::binary) << kept.substr(0, head) + twoBlocks + kept.substr(third);
    EXPECT_EQ(names(), before);
  }
}

// What notifications have told.
struct {
  std::string updated;
  std::size_t insertedCount = 0;
  std::size_t deletedCount = 0;
} told;

void note(NSObject, NSNotification notification) {
  const auto ids = [&](NSString key) { return notification.userInfo().objectForKey(key).as<NSArray>(); };
  if (ids(kABUpdatedRecords)) told.updated += shown(ids(kABUpdatedRecords));
  told.insertedCount += ids(kABInsertedRecords).count();
  told.deletedCount += ids(kABDeletedRecords).count();
}

// What was there when the folder was opened isn't told of; what the cache has, but the folder got later, is.
TEST_F(CardCache, IsTheStateThatChangesAreToldFrom) {
  fs::create_directory(cache().parent_path());
  names();
  const auto toldOf = [](auto change) {
    objc::ClassBuilder::define<objc::Object>("CacheObserver", "NSObject").method<&note>("note:");
    const auto observer = Retained<NSObject>::adopt(send<NSObject>(Class("CacheObserver"), "new"_sel));
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    const NSUInteger before = book.people().count();
    NSNotificationCenter::defaultCenter().addObserver(observer.get(), "note:"_sel,
                                                      kABDatabaseChangedExternallyNotification, book);
    change();
    for (int i = 0; i < 100; ++i) {
      CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
      if (!told.updated.empty() || book.people().count() == 600) break;
    }
    return told.updated + " +" + std::to_string(told.insertedCount) + " -" + std::to_string(told.deletedCount) +
           " of " + std::to_string(before);
  };
  const auto ofChange = answerOfChild([&] { return toldOf([this] { writeCard("c599", "NAME599"); }); });
  EXPECT_EQ(ofChange.second, "(c599:ABPerson) +0 -0 of 600");

  const fs::path aside = folder_.path().string() + ".aside";
  fs::rename(folder_.path(), aside);
  const auto ofAll = answerOfChild([&] { return toldOf([&] { fs::rename(aside, folder_.path()); }); });
  EXPECT_EQ(ofAll.second, " +600 -0 of 0");
}

// As long as nobody asks for all records, a book has those that were asked for.
TEST_F(CardCache, LetsABookMakeSomeRecordsBeforeTheOthers) {
  fs::create_directory(cache().parent_path());
  names();
  inChild([] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    const auto found = [&book](NSString name) {
      return book.recordsMatchingSearchElement(
          ABPerson::searchElement(kABFirstNameProperty, nullptr, nullptr, name, kABPrefixMatch));
    };
    EXPECT_EQ(uids(found("Name59"_ns)), "c59 c590 c591 c592 c593 c594 c595 c596 c597 c598 c599");
    const ABPerson early = personIn(book, "c599");
    EXPECT_TRUE(found("Name599"_ns).objectAtIndex(0) == early);
    EXPECT_FALSE(personIn(book, "none"));
    EXPECT_TRUE(early.setValue("Saved"_ns, kABFirstNameProperty));
    EXPECT_TRUE(book.save());
    EXPECT_EQ(uids(found("Saved"_ns)), "c599");
    EXPECT_TRUE(early.setValue("Unsaved"_ns, kABFirstNameProperty));
    EXPECT_EQ(uids(found("Unsaved"_ns)), "c599");
    EXPECT_EQ(found("Saved"_ns).count(), 0U);
    EXPECT_TRUE(book.people().containsObject(early));
    EXPECT_EQ(book.people().count(), 600U);
    EXPECT_EQ(shown(personIn(ABAddressBook::addressBook(), "c599"), "First"), "Saved");
  });
  inChild([this] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    const ABPerson changed = personIn(book, "c598");
    const ABPerson removed = personIn(book, "c597");
    writeCard("c598", "NAME598");
    fs::remove(folder_.path() / "c597.vcf");
    for (int i = 0; i < 100 && shown(changed, "First") == "Name598"; ++i) {
      CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
    }
    EXPECT_EQ(shown(changed, "First"), "NAME598");
    EXPECT_FALSE(personIn(book, "c597"));
    EXPECT_FALSE(book.removeRecord(removed)) << "it is in no book";
    EXPECT_TRUE(book.removeRecord(changed));
    EXPECT_TRUE(book.save());
    EXPECT_EQ(book.people().count(), 598U);
  });
}

// One of another class, which changes the book that looks for it.
struct BusyElement : objc::Object {
  bool matchesRecord(ABRecord record) {
    newPerson(ABAddressBook::sharedAddressBook());
    const std::string id = shown(record.uniqueId());
    return id == "c5:ABPerson" || id == "c599:ABPerson";
  }
};

TEST_F(CardCache, LetsABookBeChangedWhileItLooks) {
  fs::create_directory(cache().parent_path());
  names();
  inChild([] {
    objc::ClassBuilder::define<BusyElement>("BusyElement", "NSObject")
        .method<&BusyElement::matchesRecord>("matchesRecord:");
    const auto element = Retained<NSObject>::adopt(send<NSObject>(Class("BusyElement"), "new"_sel));
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    for (const NSUInteger count : {600 + 600U, 600 + 600 + 1200U}) {
      const NSArray found = book.recordsMatchingSearchElement(element.get().as<ABSearchElement>());
      ASSERT_EQ(uids(found), "c5 c599");
      EXPECT_TRUE(found.objectAtIndex(0) == personIn(book, "c5"));
      EXPECT_TRUE(found.objectAtIndex(1) == personIn(book, "c599"));
      EXPECT_EQ(book.people().count(), count);
    }
  });
}

// More than have room between those that it has; others are gone, and one has moved.
TEST_F(CardCache, TakesInWhatComesBetween) {
  fs::create_directory(cache().parent_path());
  names();
  const auto everybody = [] { return uids(ABAddressBook::addressBook().people()); };
  const auto foundLater = answerOfChild([&] {
    ABAddressBook::sharedAddressBook();
    for (int i = 0; i < 700; ++i) writeCard("c3-" + std::to_string(i), "Between");
    for (int i = 100; i < 300; ++i) fs::remove(folder_.path() / ("c" + std::to_string(i) + ".vcf"));
    fs::rename(folder_.path() / "c599.vcf", folder_.path() / "c0-599.vcf");
    return everybody();
  });
  EXPECT_EQ(foundLater.first, 0);
  EXPECT_TRUE(foundLater.second.starts_with("c599 c0 c1 c10 c11 c12 c13 "));
  EXPECT_EQ(answerOfChild(everybody), foundLater);
  fs::remove_all(cache().parent_path());
  EXPECT_EQ(answerOfChild(everybody), foundLater);
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
  folder_.writeCard("a.vcf", "UID:c1\nFN:Before\n");
  folder_.writeCard("zz.vcf", "UID:c2\nFN:Behind\n");
  const auto holders = [] {
    const ABAddressBook book = ABAddressBook::addressBook();
    std::string first;
    for (const char* uid : {"c0", "c1", "c2"}) first += shown(personIn(book, uid), "First") + " ";
    return first;
  };
  EXPECT_EQ(answerOfChild(holders).second, "Last Before Name2 ");
}

// Two cards that it hasn't have one UID, and it has a card with the id that one of them gets.
TEST_F(CardCache, GivesTheIdsThatAreGivenWithoutIt) {
  const auto writeDoubles = [this] {
    for (const char* name : {"n1.vcf", "n2.vcf"}) folder_.writeCard(name, "UID:n\nFN:Double\n");
  };
  const auto ids = [] { return uids(ABAddressBook::addressBook().people()); };
  writeDoubles();
  const std::string withDoubles = answerOfChild(ids).second;
  const std::string derived = withDoubles.substr(withDoubles.rfind(' ') + 1);
  for (const char* name : {"n1.vcf", "n2.vcf"}) fs::remove(folder_.path() / name);
  writeCard(derived, "Taken");
  fs::rename(folder_.path() / (derived + ".vcf"), folder_.path() / "z.vcf");
  fs::create_directory(cache().parent_path());
  sleep(3);
  names();
  writeDoubles();
  const std::string withCache = answerOfChild(ids).second;
  fs::remove_all(cache().parent_path());
  EXPECT_EQ(answerOfChild(ids).second, withCache);
}

}  // namespace
