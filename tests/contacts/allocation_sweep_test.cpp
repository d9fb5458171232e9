#include "platform/foundation/run_loop.h"
#include "tests/contacts/book_test.h"
#include "tests/contacts/in_child.h"
#include "tests/contacts/store_scenarios.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <new>
#include <optional>
#include <string>

// The Nth allocation of a save fails, or all from there on: what is found is all old or all new, and a later save
// brings it to its end.
namespace {

using namespace store_scenarios;

// On this thread, while it is armed.
struct Failure {
  int left = -1;  // allocations that still succeed; negative when not armed
  bool isSticky = false;
  bool isHit = false;
};
thread_local Failure failure;

bool fails() {
  if (failure.left < 0 || failure.left-- > 0) return false;
  failure.isHit = true;
  failure.left = failure.isSticky ? 0 : -1;
  return true;
}

class AllocationSweep : public testing::TestWithParam<std::size_t> {};

// "saved", "failed", or "thrown"; with a hash sign when no allocation failed.
std::string saveShortOfMemory(ABAddressBook book, int at, bool isSticky) {
  std::string answer = "thrown";
  failure = {at, isSticky, false};
  try {
    const bool isSaved = book.save();
    failure.left = -1;
    answer = isSaved ? "saved" : "failed";
  } catch (const std::bad_alloc&) {
    failure.left = -1;
  }
  return failure.isHit ? answer : answer + "#";
}

TEST_P(AllocationSweep, LosesNothing) {
  useMemory();
  const ContactsFolder folder;
  const Scenario& scenario = kScenarios[GetParam()];
  fill(folder.path());
  const std::string before = stateFound();
  std::string after;
  auto run = [&](int at, bool isSticky, bool isTwice) {
    fill(folder.path());
    return answerOfChild([&] {
      const ABAddressBook book = ABAddressBook::addressBook();
      scenario.edit(book);
      const std::string answer = saveShortOfMemory(book, at, isSticky);
      // What is thrown on telling others of the save comes after it.
      if (!answer.starts_with("thrown")) {
        EXPECT_EQ(book.hasUnsavedChanges(), answer.starts_with("failed"));
      }
      EXPECT_TRUE(!isTwice || book.save());
      return answer;
    });
  };
  run(1'000'000, false, false);
  after = stateFound();
  ASSERT_NE(before, after);

  int hits = 0;
  const int stride = isTorture() ? 1 : 41;
  for (const bool isSticky : {false, true}) {
    for (int at = isSticky ? 3 : 0;; at += stride) {
      SCOPED_TRACE(std::string(scenario.name) + (isSticky ? ", from allocation " : ", at allocation ") +
                   std::to_string(at));
      const auto [status, answer] = run(at, isSticky, false);
      EXPECT_EQ(status, 0);
      const std::string found = stateFound();
      EXPECT_TRUE(found == after || (found == before && !answer.starts_with("saved"))) << answer << "\n" << found;
      EXPECT_EQ(run(at, isSticky, true).first, 0);
      EXPECT_EQ(stateFound(), after);
      if (answer.ends_with('#')) break;
      ++hits;
    }
  }
  EXPECT_GT(hits, 5);
}

// What couldn't be read for want of memory is read the next time, and nobody has got another id meanwhile.
TEST(AllocationSweep, KeepsTheIdsOfARefresh) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  auto writeAll = [&folder](const std::string& name) {
    for (const char* uid : {"a", "b", "c"}) {
      folder.writeCard(uid + std::string(".vcf"), "UID:" + std::string(uid) + "\nN:" + name + "\n");
    }
  };
  for (int at = 0;; ++at) {
    SCOPED_TRACE(at);
    const AutoreleasePool round;
    writeAll("Before");
    const ABAddressBook book = ABAddressBook::addressBook();
    writeAll("After" + std::to_string(at));
    failure = {at, false, false};
    try {
      ABAddressBook::addressBook();
    } catch (const std::bad_alloc&) {
    }
    failure.left = -1;
    for (const ABAddressBook each : {book, ABAddressBook::addressBook()}) ASSERT_EQ(uids(each.people()), "a b c");
    if (!failure.isHit) break;
  }
}

// The same where cards move, come and go, and a book is told of it.
TEST(AllocationSweep, TellsWhatARefreshFound) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  const auto write = [&folder](const std::string& file, const std::string& uid, const std::string& name) {
    folder.writeCard(file + ".vcf", "UID:" + uid + "\nN:" + name + "\n");
  };
  for (int at = 0;; ++at) {
    SCOPED_TRACE(at);
    for (const char* uid : {"gone", "moved", "same", "changed"}) write(uid, uid, "Before");
    std::filesystem::remove(folder.path() / "a.vcf");
    const auto [status, answer] = answerOfChild([&] {
      const ABAddressBook book = ABAddressBook::sharedAddressBook();
      const ABPerson gone = personIn(book, "gone");
      std::filesystem::remove(folder.path() / "gone.vcf");
      write("a", "moved", "Before");
      write("moved", "new", "After");
      write("changed", "changed", "After");
      failure = {at, false, false};
      try {
        ABAddressBook::addressBook();
      } catch (const std::bad_alloc&) {
      }
      failure.left = -1;
      const ABAddressBook other = ABAddressBook::addressBook();
      CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true);
      EXPECT_EQ(uids(other.people()), "moved changed new same");
      for (const char* uid : {"moved", "changed", "new", "same"}) {
        const bool isAfter = uid == std::string("changed") || uid == std::string("new");
        for (const ABAddressBook each : {book, other}) {
          EXPECT_EQ(shown(personIn(each, uid), "Last"), isAfter ? "After" : "Before") << uid;
        }
      }
      EXPECT_EQ(book.people().count(), 4U);
      EXPECT_FALSE(book.removeRecord(gone));
      return std::string(failure.isHit ? "hit" : "");
    });
    EXPECT_EQ(status, 0);
    if (answer.empty()) break;
  }
}

// What the cache has is made when somebody asks for it: where memory is short, the next time.
TEST(AllocationSweep, KeepsWhatTheCacheHas) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  constexpr int kCount = 600;
  for (int i = 0; i < kCount; ++i) folder.writeCard(std::to_string(i) + ".vcf", "UID:" + std::to_string(i) + "\n");
  sleep(3);
  std::filesystem::create_directory(folder.path() / ".addressbook");
  const auto everybody = [] { return uids(ABAddressBook::addressBook().people()); };
  inChild(everybody);
  // Beside those that it has, some that have to be read.
  folder.write("0.vcf", "nobody");
  folder.write("3.vcf", "BEGIN:VCARD\nUID:x\nEND:VCARD\nBEGIN:VCARD\nUID:y\nEND:VCARD\n");
  const std::string expected = answerOfChild(everybody).second;
  ASSERT_NE(expected.find("x y"), std::string::npos);
  int hits = 0;
  for (int at = 0;; at += isTorture() ? 1 : 97) {
    SCOPED_TRACE(at);
    const auto [status, answer] = answerOfChild([at] {
      const ABAddressBook book = ABAddressBook::sharedAddressBook();
      const auto matching = [&book] {
        return uids(book.recordsMatchingSearchElement(
            ABPerson::searchElement(kABUIDProperty, nullptr, nullptr, "599:ABPerson"_ns, kABEqual)));
      };
      failure = {at, false, false};
      try {
        personIn(book, "400");
        matching();
        static_cast<void>(book.people());
      } catch (const std::bad_alloc&) {
      }
      failure.left = -1;
      return (failure.isHit ? "" : "#") + shown(personIn(book, "400").uniqueId()) + matching() + uids(book.people());
    });
    EXPECT_EQ(status, 0);
    if (answer.starts_with('#')) break;
    ++hits;
    ASSERT_EQ(answer, "400:ABPerson599" + expected);
  }
  EXPECT_GT(hits, 5);
}

INSTANTIATE_TEST_SUITE_P(All, AllocationSweep, testing::Range(std::size_t{0}, kCount));

}  // namespace

void* operator new(std::size_t size) {
  void* memory = fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
