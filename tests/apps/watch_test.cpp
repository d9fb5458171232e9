#include "tests/contacts/contacts_folder.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

// The command as it runs, its standard output line by line.
class RunningCommand {
 public:
  explicit RunningCommand(const char* subcommand) {
    const fs::path build = fs::read_symlink("/proc/self/exe").parent_path().parent_path();
    const std::string program = build / "bin" / "contacts";
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) std::abort();
    process_ = fork();
    if (process_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      close(ends[0]);
      execl(program.c_str(), "contacts", subcommand, nullptr);
      _exit(127);
    }
    close(ends[1]);
    output_ = ends[0];
  }
  RunningCommand(const RunningCommand&) = delete;
  RunningCommand& operator=(const RunningCommand&) = delete;
  ~RunningCommand() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    close(output_);
  }

  // Waits some seconds for it; what there is without its end when none comes.
  std::string line() {
    constexpr int kMostMilliseconds = 20000;
    for (;;) {
      if (const std::size_t end = buffer_.find('\n'); end != std::string::npos) {
        const std::string found = buffer_.substr(0, end);
        buffer_.erase(0, end + 1);
        return found;
      }
      pollfd ready{output_, POLLIN, 0};
      std::array<char, 256> bytes{};
      const ssize_t count = poll(&ready, 1, kMostMilliseconds) > 0 ? read(output_, bytes.data(), bytes.size()) : 0;
      if (count <= 0) return buffer_;
      buffer_.append(bytes.data(), static_cast<std::size_t>(count));
    }
  }

 private:
  pid_t process_ = -1;
  int output_ = -1;
  std::string buffer_;
};

}  // namespace

TEST(Watch, PrintsWhatAnotherProcessDoesToTheFolder) {
  const ContactsFolder folder;
  folder.writeCard("1.vcf", "UID:p1\nN:Lovelace;Ada\n");
  folder.writeCard("2.vcf", "UID:g1\nX-ADDRESSBOOKSERVER-KIND:group\nN:Work\n");
  RunningCommand watch("watch");
  EXPECT_EQ(watch.line(), "watching 1 people and 1 groups");

  folder.writeCard("3.vcf", "UID:p3\nN:Turing;Alan\n");
  EXPECT_EQ(watch.line(), "inserted  Alan Turing");
  folder.writeCard("1.vcf", "UID:p1\nN:King;Ada\n");
  EXPECT_EQ(watch.line(), "updated   Ada King");
  folder.writeCard("2.vcf", "UID:g1\nX-ADDRESSBOOKSERVER-KIND:group\nN:Play\n");
  EXPECT_EQ(watch.line(), "updated   Play");
  fs::remove(folder.path() / "3.vcf");
  EXPECT_EQ(watch.line(), "deleted   p3:ABPerson");
}
