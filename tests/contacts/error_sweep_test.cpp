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

bool save(ABAddressBook book) {
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

// What becomes of a process's save with the fault: "saved", "failed", or "unopened"; with a hash sign when the fault
// was never met. Where it saves again, without the fault, that has to do.
std::string answerTo(const Fault& fault, void (*edit)(ABAddressBook), bool faultsFromStart, bool savesAgain) {
  const auto [status, answer] = answerOfChild([&] {
    std::string text = "unopened";
    ABAddressBook book;
    if (faultsFromStart) file_faults::start(fault);
    try {
      book = ABAddressBook::addressBook();
      edit(book);
      if (!faultsFromStart) file_faults::start(fault);
      text = save(book) ? "saved" : "failed";
    } catch (const NSException& exception) {
      EXPECT_NE(shown(exception.reason()).find("contacts folder"), std::string::npos);
    }
    if (!file_faults::stop().isHit) text += "#";
    if (!savesAgain) return text;
    if (!book) {
      book = ABAddressBook::addressBook();
      edit(book);
    }
    EXPECT_EQ(book.hasUnsavedChanges(), !text.starts_with("saved"));
    EXPECT_TRUE(save(book));
    return text;
  });
  EXPECT_EQ(status, 0);
  return answer;
}

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
        const std::string answer = answerTo(fault, edit, faultsFromStart, false);
        const bool isSaved = answer.starts_with("saved");
        isHit = !answer.ends_with('#');
        hits += isHit ? 1 : 0;
        const std::string found = stateFound();
        if (after_.empty() && isSaved) after_ = found;
        EXPECT_EQ(found, isSaved ? after_ : before_);
        EXPECT_TRUE(isSaved || (isHit && !isHarmless(fault))) << answer;
        prepare();
        EXPECT_EQ(answerTo(fault, edit, faultsFromStart, true), answer);
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
