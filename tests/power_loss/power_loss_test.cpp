#include "tests/contacts/in_child.h"
#include "tests/contacts/store_scenarios.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

// The machine loses power before each call that a save makes, and after it: what was not synced is gone. For that a
// file system of its own is shut down without writing its log.
namespace {

namespace fs = std::filesystem;
using namespace store_scenarios;

constexpr const char* kFileSystems[][2] = {
    {"mkfs.ext4 -q -F", "loop"}, {"mkfs.ext4 -q -F", "loop,noauto_da_alloc"}, {"mkfs.xfs -q -f", "loop"}};

int run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()); }

class Disk {
 public:
  Disk(const std::string& make, std::string options) : options_(std::move(options)) {
    std::string pattern = (fs::temp_directory_path() / "disk-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    place_ = pattern;
    fs::create_directory(root());
    isMounted_ = run("truncate -s 400M " + image()) == 0 && run(make + " " + image()) == 0 && mount();
  }
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;
  ~Disk() {
    if (isMounted_) run("umount " + root());
    fs::remove_all(place_);
  }

  [[nodiscard]] bool isMounted() const { return isMounted_; }
  [[nodiscard]] fs::path folder() const { return fs::path(root()) / "contacts"; }
  void sync() const {
    const int file = open(root().c_str(), O_RDONLY);
    EXPECT_EQ(syncfs(file), 0);
    close(file);
  }
  // What was not synced by now is lost.
  void losePower() {
    constexpr unsigned long kShutDown = _IOR('X', 125, std::uint32_t);
    std::uint32_t withoutLog = 2;
    const int file = open(root().c_str(), O_RDONLY);
    EXPECT_EQ(ioctl(file, kShutDown, &withoutLog), 0);
    close(file);
    isMounted_ = run("umount " + root()) == 0 && mount();
    ASSERT_TRUE(isMounted_) << "not mounted again";
  }

 private:
  [[nodiscard]] std::string image() const { return (place_ / "image").string(); }
  [[nodiscard]] std::string root() const { return (place_ / "root").string(); }
  [[nodiscard]] bool mount() const { return run("mount -o " + options_ + " " + image() + " " + root()) == 0; }

  std::string options_;
  fs::path place_;
  bool isMounted_ = false;
};

TEST(PowerLoss, LeavesAllOrNothing) {
  for (const auto& [make, options] : kFileSystems) {
    Disk disk(make, options);
    if (!disk.isMounted()) {
      std::printf("%s can't be mounted here\n", make);
      continue;
    }
    setenv("ADDRESSBOOK_FOLDER", disk.folder().c_str(), 1);
    for (const Scenario& scenario : kScenarios) {
      fill(disk.folder());
      const std::string before = stateFound();
      EXPECT_FALSE(killedAt(100'000, scenario.edit, false));
      const std::string after = stateFound();
      std::set<std::string> found;
      int at = 0;
      for (bool isKilled = true; isKilled; ++at) {
        SCOPED_TRACE(std::string(make) + ", " + options + ", " + scenario.name + ", call " + std::to_string(at));
        fill(disk.folder());
        disk.sync();
        isKilled = killedAt(at, scenario.edit, false);
        disk.losePower();
        const std::string state = stateFound();
        EXPECT_TRUE(state == after || (isKilled && state == before)) << state;
        found.insert(state);
      }
      EXPECT_EQ(found, (std::set<std::string>{before, after}));
      std::printf("%s, %s, %s: %d losses\n", make, options, scenario.name, at);
    }
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  testing::InitGoogleTest(&argumentCount, arguments);
  if (!Disk(kFileSystems[0][0], kFileSystems[0][1]).isMounted()) {
    std::puts("Power loss can't be tried here: no file system can be mounted, which takes root and loop devices.");
    return 77;
  }
  return RUN_ALL_TESTS();
}
