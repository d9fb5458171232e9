#include "platform/appkit/workspace.h"

#include "tests/objc/live_objects.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// A folder that holds the only programs there are.
class Workspace : public LiveObjectsTest {
 protected:
  Workspace() {
    NSWorkspace::sharedWorkspace();
    std::string made = testing::TempDir() + "workspace_test_XXXXXX";
    folder_ = mkdtemp(made.data());
    setenv("PATH", folder_.c_str(), 1);
    setenv("NOTES", (folder_ / "notes").c_str(), 1);
  }
  ~Workspace() override { fs::remove_all(folder_); }

  void installOpener(const std::string& script, mode_t mode = 0755) const {
    std::ofstream(folder_ / "xdg-open") << script;
    chmod((folder_ / "xdg-open").c_str(), mode);
  }

  static bool open(const char* url) {
    return NSWorkspace::sharedWorkspace().openURL(NSURL::URLWithString(NSString::stringWithUTF8String(url)));
  }

  // What the opener wrote before it renamed its notes.
  [[nodiscard]] std::string notes() const {
    for (int i = 0; i < 500 && !fs::exists(folder_ / "notes"); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    std::stringstream text;
    text << std::ifstream(folder_ / "notes").rdbuf();
    return text.str();
  }

  fs::path folder_;
};

constexpr const char* kNoteArguments = R"sh(#!/bin/sh
printf '%s\n' "$#" "$@" > "$NOTES.new"
/bin/mv "$NOTES.new" "$NOTES"
)sh";

TEST_F(Workspace, HandsTheUrlToTheOpener) {
  installOpener(kNoteArguments);
  EXPECT_TRUE(open("addressbook://1B2C$(touch%20x)':ABPerson?edit&a=b"));
  EXPECT_EQ(notes(), "1\naddressbook://1B2C$(touch%20x)':ABPerson?edit&a=b\n");
}

TEST_F(Workspace, StartsTheOpenerApartFromTheTerminal) {
  // 0x4002: SIGINT and SIGTERM.
  installOpener(R"sh(#!/bin/sh
read -r pid name state parent group session rest < /proc/$$/stat
{ [ "$session" = "$$" ] && echo session; /bin/readlink /proc/$$/fd/0; } > "$NOTES.new"
while read -r key value; do
  case $key in SigBlk: | SigIgn:) echo "$((0x$value & 0x4002))" ;; esac
done < /proc/self/status >> "$NOTES.new"
/bin/mv "$NOTES.new" "$NOTES"
)sh");
  signal(SIGINT, SIG_IGN);
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_BLOCK, &blocked, nullptr);
  EXPECT_TRUE(open("x:y"));
  EXPECT_EQ(notes(), "session\n/dev/null\n0\n0\n");
}

TEST_F(Workspace, OpensAbsoluteUrlsOnlyAndOnlyWithAnOpener) {
  EXPECT_FALSE(open("x:y"));
  installOpener(kNoteArguments, 0644);
  EXPECT_FALSE(open("x:y"));
  fs::remove(folder_ / "xdg-open");
  installOpener(kNoteArguments);
  EXPECT_FALSE(NSWorkspace::sharedWorkspace().openURL(nullptr));
  for (const char* relative : {"--version", "a/b"}) EXPECT_FALSE(open(relative)) << relative;
  EXPECT_FALSE(fs::exists(folder_ / "notes"));
}

TEST_F(Workspace, LeavesNoEndedOpenersBehind) {
  installOpener("#!/bin/sh\n");
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(open("x:y"));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  std::ifstream list("/proc/self/task/" + std::to_string(getpid()) + "/children");
  EXPECT_LE(std::distance(std::istream_iterator<int>(list), {}), 2);
}

}  // namespace
