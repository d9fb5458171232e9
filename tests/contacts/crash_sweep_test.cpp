#include "tests/contacts/file_faults.h"
#include "tests/contacts/store_scenarios.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <set>
#include <string>

// The process is killed before each call that a save makes, and before each that the next opening makes.
namespace {

namespace fs = std::filesystem;
using namespace store_scenarios;

class CrashSweep : public testing::TestWithParam<std::size_t> {
 protected:
  CrashSweep() {
    useMemory();
    folder_.emplace();
    fill(folder_->path());
    before_ = stateFound();
    EXPECT_FALSE(killedAt(100'000, scenario().edit, false));
    after_ = stateFound();
    EXPECT_NE(before_, after_);
  }

  [[nodiscard]] static const Scenario& scenario() { return kScenarios[GetParam()]; }
  [[nodiscard]] fs::path journal() const { return folder_->path() / ".addressbook/journal"; }

  std::optional<ContactsFolder> folder_;
  std::string before_;
  std::string after_;
};

TEST_P(CrashSweep, LeavesAllOrNothing) {
  std::set<std::string> found;
  int at = 0;
  for (bool isKilled = true; isKilled; ++at) {
    SCOPED_TRACE(std::string(scenario().name) + ", killed before call " + std::to_string(at));
    fill(folder_->path());
    isKilled = killedAt(at, scenario().edit, false);
    const bool isCommitted = fs::exists(journal());
    const std::string state = stateFound();
    EXPECT_TRUE(state == before_ || state == after_) << state;
    EXPECT_TRUE(state == after_ || (isKilled && !isCommitted)) << state;
    found.insert(state);
    // Nothing of it is in the way of the next save, which takes away what was left lying about.
    if (!isTorture() && at % 4 != 0) continue;
    EXPECT_FALSE(killedAt(100'000, addLater, false));
    EXPECT_EQ(stateFound().size(), state.size() + std::string("Later, nil, no bytes\n").size());
    for (const auto& file : fs::directory_iterator(folder_->path() / ".addressbook")) {
      EXPECT_TRUE(file.path().filename() == "lock" || file.path().filename() == "me") << file.path();
    }
  }
  EXPECT_EQ(found, (std::set<std::string>{before_, after_}));
  EXPECT_GT(at, 15);
}

TEST_P(CrashSweep, FinishesWhatWasSavedHoweverOftenItIsKilled) {
  fillUnfinished(folder_->path(), scenario());
  const ContactsFolder committed;
  fs::copy(folder_->path(), committed.path(), fs::copy_options::recursive);
  setenv("ADDRESSBOOK_FOLDER", folder_->path().c_str(), 1);
  const std::size_t laterSize = after_.size() + std::string("Later, nil, no bytes\n").size();
  const int stride = isTorture() ? 1 : scenario().isSlow ? 9 : 2;
  int at = static_cast<int>(GetParam()) % stride;
  for (bool isKilled = true; isKilled; at += stride) {
    SCOPED_TRACE(std::string(scenario().name) + ", killed before call " + std::to_string(at));
    fs::remove_all(folder_->path());
    fs::copy(committed.path(), folder_->path(), fs::copy_options::recursive);
    isKilled = killedAt(at, addLater, true);
    const std::string state = stateFound();
    EXPECT_TRUE(state == after_ || state.size() == laterSize) << state;
    EXPECT_TRUE(isKilled || state.size() == laterSize) << state;
  }
}

INSTANTIATE_TEST_SUITE_P(All, CrashSweep, testing::Range(std::size_t{0}, kCount));

}  // namespace
