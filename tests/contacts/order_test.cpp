#include "tests/contacts/file_faults.h"
#include "tests/contacts/in_child.h"
#include "tests/contacts/store_scenarios.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

// What a power failure may lose is what wasn't synced: the order of one save's calls is followed.
namespace {

using namespace store_scenarios;
using file_faults::Call;

ino_t inodeOf(const std::filesystem::path& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_ino;
}

class Lint {
 public:
  Lint(ino_t cards, ino_t data) : cards_(cards), data_(data) {}

  void follow(const Call& call) {
    SCOPED_TRACE(call.name + " " + call.target);
    if (call.name == "write") {
      unsyncedFiles_.insert(call.inode);
    } else if (call.name == "fsync") {
      unsyncedFiles_.erase(call.inode);
      unsyncedNames_.erase(call.inode);
      if (call.inode == data_ && isJournalNamed_) isCommitted_ = true;
    } else if (call.name == "creat" || call.name == "mkdirat") {
      if (call.target != "lock") unsyncedNames_[call.folder].insert(call.target);
    } else if (call.target == "journal") {
      followJournal(call);
    } else if (call.folder == cards_ || call.target == "me") {
      EXPECT_TRUE(isCommitted_) << "before the journal was durable";
      EXPECT_FALSE(unsyncedFiles_.contains(call.inode)) << "with contents that weren't synced";
      unsyncedNames_[call.folder].insert(call.target);
      ++placed_;
    }
  }

  void end() const {
    EXPECT_GT(placed_, 0);
    EXPECT_TRUE(isJournalRemoved_);
    EXPECT_FALSE(unsyncedNames_.contains(cards_));
  }

 private:
  void followJournal(const Call& call) {
    if (call.name == "renameat") {
      EXPECT_FALSE(unsyncedFiles_.contains(call.inode)) << "with contents that weren't synced";
      for (const auto& [folder, names] : unsyncedNames_) {
        // Its own temporary name is of no use to anybody.
        EXPECT_LE(names.size(), folder == data_ ? 1U : 0U) << *names.begin() << " may not be found";
      }
      isJournalNamed_ = true;
    } else {
      EXPECT_TRUE(unsyncedNames_.empty()) << "the journal goes before what it asked for is durable";
      isJournalRemoved_ = true;
    }
  }

  ino_t cards_;
  ino_t data_;
  std::set<ino_t> unsyncedFiles_;
  std::map<ino_t, std::set<std::string>> unsyncedNames_;  // by folder
  bool isJournalNamed_ = false;
  bool isCommitted_ = false;
  bool isJournalRemoved_ = false;
  int placed_ = 0;
};

class Order : public testing::TestWithParam<std::size_t> {};

TEST_P(Order, MakesAllOfASaveDurable) {
  const ContactsFolder folder;
  SCOPED_TRACE(kScenarios[GetParam()].name);
  fill(folder.path());
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    kScenarios[GetParam()].edit(book);
    file_faults::start(std::nullopt);
    EXPECT_TRUE(book.save());
    const std::vector<Call> calls = file_faults::stop().calls;
    Lint lint(inodeOf(folder.path()), inodeOf(folder.path() / ".addressbook"));
    for (const Call& call : calls) lint.follow(call);
    lint.end();
  });
}

INSTANTIATE_TEST_SUITE_P(All, Order, testing::Range(std::size_t{0}, kCount));

// The folders above a new one are found after a power failure, too.
TEST(Order, SyncsTheFoldersThatItMakes) {
  const ContactsFolder above;
  setenv("ADDRESSBOOK_FOLDER", (above.path() / "a/b").c_str(), 1);
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    addLater(book);
    file_faults::start(std::nullopt);
    EXPECT_TRUE(book.save());
    std::set<ino_t> synced;
    for (const Call& call : file_faults::stop().calls) {
      if (call.name == "fsync") synced.insert(call.inode);
    }
    for (const char* folder : {".", "a", "a/b", "a/b/.addressbook"}) {
      EXPECT_TRUE(synced.contains(inodeOf(above.path() / folder))) << folder;
    }
  });
}

}  // namespace
