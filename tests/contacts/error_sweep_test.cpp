#include "platform/foundation/error.h"
#include "platform/foundation/exception.h"
#include "tests/contacts/file_faults.h"
#include "tests/contacts/in_child.h"
#include "tests/contacts/shown.h"
#include "tests/contacts/store_scenarios.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Each call that a save makes fails once, or from then on. What the save answered is what a restart finds.
namespace {

namespace fs = std::filesystem;
using namespace store_scenarios;
using file_faults::Fault;

const Fault kFaults[] = {
    {Fault::Effect::kFail, ENOSPC, false},  {Fault::Effect::kFail, ENOSPC, true},  {Fault::Effect::kFail, EIO, false},
    {Fault::Effect::kFail, EIO, true},      {Fault::Effect::kFail, EACCES, false}, {Fault::Effect::kFail, EACCES, true},
    {Fault::Effect::kFail, EMFILE, false},  {Fault::Effect::kFail, EMFILE, true},  {Fault::Effect::kFail, EROFS, false},
    {Fault::Effect::kFail, EROFS, true},    {Fault::Effect::kFail, EDQUOT, true},  {Fault::Effect::kFail, EINTR, false},
    {Fault::Effect::kShortWrite, 0, false}, {Fault::Effect::kShortWrite, 0, true},
};

// Those that a program goes on after.
bool isHarmless(const Fault& fault) { return fault.effect == Fault::Effect::kShortWrite || fault.error == EINTR; }

std::string textOf(const Fault& fault) {
  const std::string effect = fault.effect == Fault::Effect::kFail ? std::strerror(fault.error) : "short write";
  return effect + (fault.isSticky ? " from" : " at") + " call " + std::to_string(fault.at);
}

// A process that saves twice, the first time with the fault, and waits in between.
class Saver {
 public:
  Saver(void (*edit)(ABAddressBook), const Fault& fault, bool faultsFromStart) {
    if (pipe(toParent_) != 0 || pipe(toChild_) != 0) std::abort();
    std::fflush(nullptr);
    const bool hadFailed = testing::Test::HasFailure();
    child_ = fork();
    if (child_ != 0) return;
    run(edit, fault, faultsFromStart);
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() && !hadFailed ? 1 : 0);
  }
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;
  ~Saver() {
    int status = -1;
    waitpid(child_, &status, 0);
    EXPECT_EQ(status, 0);
    for (const int end : {toParent_[0], toParent_[1], toChild_[0], toChild_[1]}) close(end);
  }

  // "saved", "failed", or "unopened"; with a hash sign when the fault was never met.
  std::string answer() const {
    char text[64];
    const ssize_t length = read(toParent_[0], text, sizeof text);
    return {text, length < 0 ? 0 : static_cast<std::size_t>(length)};
  }
  void goOn() const { EXPECT_EQ(write(toChild_[1], "x", 1), 1); }

 private:
  void run(void (*edit)(ABAddressBook), const Fault& fault, bool faultsFromStart) const {
    const AutoreleasePool pool;
    std::string answer = "unopened";
    ABAddressBook book;
    if (faultsFromStart) file_faults::start(fault);
    try {
      book = ABAddressBook::addressBook();
      edit(book);
      if (!faultsFromStart) file_faults::start(fault);
      answer = save(book) ? "saved" : "failed";
    } catch (const NSException& exception) {
      EXPECT_NE(shown(exception.reason()).find("contacts folder"), std::string::npos);
    }
    if (!file_faults::stop().isHit) answer += "#";
    tell(answer);
    char go = 0;
    EXPECT_EQ(read(toChild_[0], &go, 1), 1);
    if (!book) {
      book = ABAddressBook::addressBook();
      edit(book);
    }
    EXPECT_EQ(book.hasUnsavedChanges(), !answer.starts_with("saved"));
    tell(save(book) ? "saved" : "failed");
  }

  static bool save(ABAddressBook book) {
    NSError error;
    const bool isSaved = book.save(&error);
    if (isSaved) return true;
    const std::string reason = shown(error.localizedDescription());
    EXPECT_EQ(shown(error.domain()), "ABAddressBookErrorDomain");
    EXPECT_EQ(error.code(), 0);
    EXPECT_TRUE(reason.starts_with("the address book can't be saved: ")) << reason;
    EXPECT_NE(error.userInfo().objectForKey(NSUnderlyingErrorKey).as<NSError>().code(), 0) << reason;
    return false;
  }

  void tell(const std::string& text) const {
    EXPECT_EQ(write(toParent_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  int toParent_[2];
  int toChild_[2];
  pid_t child_;
};

class ErrorSweep : public testing::TestWithParam<std::size_t> {
 protected:
  ErrorSweep() {
    useMemory();
    folder_.emplace();
  }

  [[nodiscard]] static const Scenario& scenario() { return kScenarios[GetParam()]; }

  // Each fault at each call, or at every so many; the folder is prepared for each, and is so when it begins.
  void sweep(int stride, const std::function<void()>& prepare, void (*edit)(ABAddressBook), bool faultsFromStart) {
    before_ = stateFound();
    if (isTorture()) stride = 1;
    int offset = 0;
    int hits = 0;
    for (Fault fault : kFaults) {
      fault.at = offset++ % stride;
      for (bool isHit = true; isHit; fault.at += stride) {
        SCOPED_TRACE(std::string(scenario().name) + ", " + textOf(fault));
        prepare();
        {
          const Saver saver(edit, fault, faultsFromStart);
          const std::string answer = saver.answer();
          const bool isSaved = answer.starts_with("saved");
          isHit = !answer.ends_with('#');
          hits += isHit ? 1 : 0;
          const std::string found = stateFound();
          if (after_.empty() && isSaved) after_ = found;
          EXPECT_EQ(found, isSaved ? after_ : before_);
          EXPECT_TRUE(isSaved || (isHit && !isHarmless(fault))) << answer;
          saver.goOn();
          EXPECT_EQ(saver.answer(), "saved");
        }
        const std::string end = stateFound();
        if (after_.empty()) after_ = end;
        EXPECT_EQ(end, after_);
      }
    }
    EXPECT_GT(hits, 3);
  }

  std::optional<ContactsFolder> folder_;
  std::string before_;
  std::string after_;
};

TEST_P(ErrorSweep, AnswersWhatARestartFinds) {
  fill(folder_->path());
  sweep(
      scenario().isSlow ? 43 : 5, [this] { fill(folder_->path()); }, scenario().edit, false);
  EXPECT_NE(before_, after_);
}

TEST_P(ErrorSweep, LosesNothingOfAnEarlierSave) {
  fillUnfinished(folder_->path(), scenario());
  const ContactsFolder committed;
  fs::copy(folder_->path(), committed.path(), fs::copy_options::recursive);
  setenv("ADDRESSBOOK_FOLDER", folder_->path().c_str(), 1);
  auto restore = [&] {
    fs::remove_all(folder_->path());
    fs::copy(committed.path(), folder_->path(), fs::copy_options::recursive);
  };
  sweep(scenario().isSlow ? 67 : 7, restore, addLater, true);
  EXPECT_EQ(after_.size(), before_.size() + std::string("Later, nil, no bytes\n").size());
}

// A disk that is full or read-only hides no save that couldn't be finished, and no save pretends to have happened.
TEST_P(ErrorSweep, ReadsWithoutWriting) {
  for (const int error : {EROFS, ENOSPC}) {
    SCOPED_TRACE(std::string(scenario().name) + ", " + std::strerror(error));
    fillUnfinished(folder_->path(), scenario());
    const auto [status, shownState] = answerOfChild([error] {
      file_faults::start(Fault{Fault::Effect::kFail, error, true});
      const std::string state = stateOf(ABAddressBook::addressBook());
      EXPECT_TRUE(file_faults::stop().isHit);
      return state;
    });
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(fs::exists(folder_->path() / ".addressbook/journal"));
    EXPECT_EQ(shownState, stateFound());
  }
}

INSTANTIATE_TEST_SUITE_P(All, ErrorSweep, testing::Range(std::size_t{0}, kCount));

}  // namespace
