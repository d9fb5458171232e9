#include "platform/foundation/notification.h"

#include "platform/foundation/run_loop.h"
#include "platform/objc/class_builder.h"
#include "tests/contacts/book_test.h"

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

// One text a notification: "own" or "external", and the ids.
std::vector<std::string> told;

void tell(const char* kind, NSNotification notification) {
  std::string text = kind;
  const std::pair<const char*, NSString> keys[] = {
      {" +", kABInsertedRecords}, {" *", kABUpdatedRecords}, {" -", kABDeletedRecords}};
  for (const auto& [mark, key] : keys) {
    const NSObject ids = notification.userInfo().objectForKey(key);
    if (ids) text += mark + shown(ids);
  }
  EXPECT_EQ(notification.object(), ABAddressBook::sharedAddressBook());
  told.push_back(text);
}

void tellOwn(NSObject, NSNotification notification) { tell("own", notification); }
void tellExternal(NSObject, NSNotification notification) { tell("external", notification); }

class Notifications : public BookTest {
 protected:
  Notifications() {
    folder_.writeCard("a.vcf", "UID:a\nN:Adams\n");
    folder_.writeCard("b.vcf", "UID:b\nN:Berg\n");
    auto builder = objc::ClassBuilder::define<objc::Object>("ChangeObserver", "NSObject");
    builder.method<&tellOwn>("own:").method<&tellExternal>("external:");
    observer_ = Retained<NSObject>::adopt(send<NSObject>(Class("ChangeObserver"), "new"_sel));
    book_ = ABAddressBook::sharedAddressBook();
    const NSNotificationCenter center = NSNotificationCenter::defaultCenter();
    center.addObserver(observer_.get(), "own:"_sel, kABDatabaseChangedNotification, book_);
    center.addObserver(observer_.get(), "external:"_sel, kABDatabaseChangedExternallyNotification, book_);
  }

  [[nodiscard]] ABPerson person(const char* uid) const { return personIn(book_, uid); }

  // Lets the run loop see what happened, until something was told.
  static std::vector<std::string> toldNow() {
    for (int i = 0; i < 100 && told.empty(); ++i) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
    for (int i = 0; i < 4; ++i) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, true);
    return std::exchange(told, {});
  }

  Retained<NSObject> observer_;
  ABAddressBook book_;
};

TEST_F(Notifications, TellWhatASaveChanged) {
  EXPECT_TRUE(book_.save());
  EXPECT_TRUE(told.empty());
  const auto added = newPerson(book_);
  EXPECT_TRUE(person("a").setValue("x"_ns, kABNoteProperty));
  EXPECT_TRUE(book_.removeRecord(person("b")));
  EXPECT_TRUE(book_.save());
  EXPECT_EQ(told, (std::vector<std::string>{"own +(" + shown(added->uniqueId()) + ") *(a:ABPerson) -(b:ABPerson)"}));
  told.clear();
  // The folder's own echo is none.
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.1, false);
  EXPECT_TRUE(told.empty());

  const ABAddressBook other = ABAddressBook::addressBook();
  EXPECT_TRUE(personIn(other, "a").setValue("y"_ns, kABNoteProperty));
  EXPECT_TRUE(other.save());
  EXPECT_EQ(told, (std::vector<std::string>{"own *(a:ABPerson)"}));
  EXPECT_EQ(shown(person("a"), "Note"), "y");
}

TEST_F(Notifications, TellWhatOthersChanged) {
  const ABRecord a = person("a");
  folder_.writeCard("a.vcf", "UID:a\nN:Aalto\n");
  EXPECT_EQ(toldNow(), (std::vector<std::string>{"external *(a:ABPerson)"}));
  EXPECT_EQ(shown(a, "Last"), "Aalto");

  // A new card may appear by a hard link alone, and a card may move to another file.
  folder_.write("c.tmp", "BEGIN:VCARD\nUID:c\nN:Cruz\nEND:VCARD\n");
  fs::create_hard_link(folder_.path() / "c.tmp", folder_.path() / "c.vcf");
  EXPECT_EQ(toldNow(), (std::vector<std::string>{"external +(c:ABPerson)"}));
  fs::rename(folder_.path() / "c.vcf", folder_.path() / "d.vcf");
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.2, false);
  EXPECT_TRUE(told.empty());
  EXPECT_TRUE(person("c").setValue("x"_ns, kABNoteProperty));
  fs::remove(folder_.path() / "b.vcf");
  EXPECT_EQ(toldNow(), (std::vector<std::string>{"external -(b:ABPerson)"}));
  EXPECT_FALSE(person("b"));
  EXPECT_TRUE(book_.save());
  EXPECT_NE(bytesOf(folder_.path() / "d.vcf").find("NOTE:x"), std::string::npos);
}

// What another thread has found is told later than the save that comes after it.
TEST_F(Notifications, DontUndoASave) {
  static_cast<void>(book_.people());
  for (const char* uid : {"a", "b"})
    folder_.writeCard(uid + std::string(".vcf"), "UID:" + std::string(uid) + "\nN:Two\n");
  std::thread([] {
    const AutoreleasePool pool;
    ABAddressBook::addressBook();
  }).join();
  EXPECT_TRUE(book_.removeRecord(person("a")));
  EXPECT_TRUE(person("b").setValue("Mine"_ns, kABLastNameProperty));
  EXPECT_TRUE(book_.save());
  EXPECT_EQ(toldNow(),
            (std::vector<std::string>{"external *(a:ABPerson b:ABPerson)", "own *(b:ABPerson) -(a:ABPerson)"}));
  EXPECT_EQ(uids(book_.people()), "b");
  EXPECT_EQ(shown(person("b"), "Last"), "Mine");
}

// The same where all of it happens elsewhere: a record that was added again, and isn't saved yet, stays.
TEST_F(Notifications, LeaveWhatWasAddedAgain) {
  const ABPerson a = person("a");
  folder_.writeCard("a.vcf", "UID:a\nN:Two\n");
  std::thread([&] {
    const AutoreleasePool pool;
    ABAddressBook::addressBook();
    EXPECT_TRUE(book_.removeRecord(a));
    EXPECT_TRUE(book_.save());
    EXPECT_TRUE(book_.addRecord(a));
  }).join();
  toldNow();
  EXPECT_EQ(uids(book_.people()), "b a");
  EXPECT_TRUE(book_.save());
  EXPECT_EQ(uids(ABAddressBook::addressBook().people()), "a b");
}

TEST_F(Notifications, FollowAFolderThatIsReplacedOrRemovedAndMadeAgain) {
  const fs::path old = folder_.path().string() + ".old";
  fs::rename(folder_.path(), old);
  fs::create_directory(folder_.path());
  folder_.writeCard("a.vcf", "UID:a\nN:Adams\n");
  folder_.writeCard("z.vcf", "UID:z\nN:Zola\n");
  EXPECT_EQ(toldNow(), (std::vector<std::string>{"external +(z:ABPerson) -(b:ABPerson)"}));
  folder_.writeCard("y.vcf", "UID:y\nN:Yun\n");
  EXPECT_EQ(toldNow(), (std::vector<std::string>{"external +(y:ABPerson)"}));
  fs::remove_all(old);

  fs::remove_all(folder_.path());
  EXPECT_EQ(toldNow(), (std::vector<std::string>{"external -(a:ABPerson y:ABPerson z:ABPerson)"}));
  fs::create_directory(folder_.path());
  folder_.writeCard("x.vcf", "UID:x\nN:Xu\n");
  EXPECT_EQ(toldNow(), (std::vector<std::string>{"external +(x:ABPerson)"}));
  EXPECT_TRUE(person("x").setValue("x"_ns, kABNoteProperty));
  EXPECT_TRUE(book_.save());
  EXPECT_NE(bytesOf(folder_.path() / "x.vcf").find("NOTE:x"), std::string::npos);
}

// Two changes of one size may fall into one step of the file system's clock.
TEST_F(Notifications, NoticeChangesThatComeTooFastForTimes) {
  for (const char* name : {"Aalto", "Adler", "Anker", "Arndt", "Asche"}) {
    folder_.writeCard("a.vcf", std::string("UID:a\nN:") + name + "\n");
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, true);
    EXPECT_EQ(shown(person("a"), "Last"), name);
  }
}

}  // namespace
