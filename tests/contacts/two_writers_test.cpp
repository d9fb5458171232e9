#include "platform/foundation/notification.h"
#include "platform/foundation/run_loop.h"
#include "platform/objc/class_builder.h"
#include "tests/contacts/book_test.h"
#include "tests/contacts/store_scenarios.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

// Two processes with the shared book change one folder at once.
namespace {

namespace fs = std::filesystem;

constexpr int kRecords = 500;
constexpr int kBatch = 25;

std::set<std::string> inserted;
std::set<std::string> updated;
std::set<std::string> deleted;

void note(NSObject, NSNotification notification) {
  const std::pair<NSString, std::set<std::string>*> kinds[] = {
      {kABInsertedRecords, &inserted}, {kABUpdatedRecords, &updated}, {kABDeletedRecords, &deleted}};
  for (const auto& [key, ids] : kinds) {
    const auto list = notification.userInfo().objectForKey(key).as<NSArray>();
    for (NSUInteger i = 0; list && i < list.count(); ++i) ids->insert(shown(list.objectAtIndex(i)));
  }
}

void idle(double seconds) { CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, false); }

std::map<std::string, std::string> idsByName(ABAddressBook book) {
  std::map<std::string, std::string> ids;
  for (const ABPerson person : each(book.people())) {
    EXPECT_TRUE(ids.emplace(shown(person, "Last"), shown(person.uniqueId())).second);
  }
  return ids;
}

class Writer {
 public:
  Writer(fs::path folder, char own, char other) : folder_(std::move(folder)), own_(own), other_(other) {
    auto builder = objc::ClassBuilder::define<objc::Object>("ExternalObserver", "NSObject");
    builder.method<&note>("note:");
    observer_ = Retained<NSObject>::adopt(send<NSObject>(Class("ExternalObserver"), "new"_sel));
    book_ = ABAddressBook::sharedAddressBook();
    NSNotificationCenter::defaultCenter().addObserver(observer_.get(), "note:"_sel,
                                                      kABDatabaseChangedExternallyNotification, book_);
  }

  // Adds all its records and changes two shared ones, then changes half of its own and removes the others.
  void run() {
    meet("ready");
    for (int i = 0; i < kRecords; ++i) {
      const auto person = newPerson(book_);
      const std::string name = own_ + std::to_string(i);
      EXPECT_TRUE(person->setValue(NSString::stringWithUTF8(name.c_str()), kABLastNameProperty));
      records_.push_back(person);
      if (i % kBatch == 0) saveBatch(i);
    }
    saveBatch(kRecords);
    meet("added");
    for (int i = 0; i < kRecords; ++i) {
      const ABPerson person = records_[static_cast<std::size_t>(i)].get();
      const bool isKept = i % 2 == 0;
      EXPECT_TRUE(isKept ? person.setValue("changed"_ns, kABNoteProperty) : book_.removeRecord(person));
      if (i % kBatch == 0) saveBatch(i);
    }
    saveBatch(kRecords);
    meet("done");
    check();
  }

 private:
  // Each writer changes a property of its own in a record of both.
  void saveBatch(int i) {
    const auto both = personIn(book_, "both");
    const std::string value = own_ + std::to_string(i);
    const NSString property = own_ == 'a' ? kABNoteProperty : kABJobTitleProperty;
    EXPECT_TRUE(both.setValue(NSString::stringWithUTF8(value.c_str()), property));
    NSError error;
    EXPECT_TRUE(book_.save(&error)) << shown(error.localizedDescription());
    idle(0.001);
  }

  // Waits for the other, and comes to know of all that it has done.
  void meet(const std::string& place) {
    std::ofstream(folder_ / (place + own_));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!fs::exists(folder_ / (place + other_)) && std::chrono::steady_clock::now() < end) idle(0.01);
    idle(0.05);
  }

  void check() {
    const std::map<std::string, std::string> ids = idsByName(book_);
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(kRecords) + 1);
    const auto both = personIn(book_, "both");
    EXPECT_EQ(shown(both, "Note"), "a500");
    EXPECT_EQ(shown(both, "JobTitle"), "b500");
    EXPECT_TRUE(updated.contains("both:ABPerson"));
    std::set<std::string> own;
    for (const auto& record : records_) own.insert(shown(record->uniqueId()));
    for (int i = 0; i < kRecords; ++i) {
      for (const char writer : {own_, other_}) {
        const auto found = ids.find(writer + std::to_string(i));
        ASSERT_EQ(found != ids.end(), i % 2 == 0) << writer << i;
        if (i % 2 != 0) continue;
        EXPECT_EQ(inserted.contains(found->second), writer == other_);
        EXPECT_EQ(updated.contains(found->second), writer == other_);
        const auto record = book_.recordForUniqueId(NSString::stringWithUTF8(found->second.c_str()));
        EXPECT_EQ(shown(record, "Note"), "changed");
      }
    }
    for (const std::string& id : deleted) {
      EXPECT_FALSE(own.contains(id));
      EXPECT_FALSE(book_.recordForUniqueId(NSString::stringWithUTF8(id.c_str())));
    }
    EXPECT_EQ(inserted.size(), static_cast<std::size_t>(kRecords));
    EXPECT_EQ(deleted.size(), static_cast<std::size_t>(kRecords / 2));
  }

  fs::path folder_;
  char own_;
  char other_;
  Retained<NSObject> observer_;
  ABAddressBook book_;
  std::vector<Retained<ABPerson>> records_;
};

TEST(TwoWriters, LoseNothingAndAgree) {
  store_scenarios::useMemory();
  const ContactsFolder folder;
  folder.writeCard("both.vcf", "UID:both\nN:Both\n");
  std::fflush(nullptr);
  const pid_t other = fork();
  if (other == 0) {
    {
      const AutoreleasePool pool;
      Writer(folder.path(), 'b', 'a').run();
    }
    std::fflush(nullptr);
    _exit(HasFailure() ? 1 : 0);
  }
  inChild([&] { Writer(folder.path(), 'a', 'b').run(); });
  int status = -1;
  waitpid(other, &status, 0);
  EXPECT_EQ(status, 0);
  inChild([] { EXPECT_EQ(idsByName(ABAddressBook::addressBook()).size(), static_cast<std::size_t>(kRecords) + 1); });
}

}  // namespace
