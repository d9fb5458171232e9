#include "platform/appkit/workspace.h"

#include "platform/appkit/load.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace appkit {

namespace {

constexpr const char* kOpener = "xdg-open";

// How the opener starts: in a session of its own, out of reach of the terminal's signals, with nothing blocked or
// ignored, and without the terminal, which may show a window of this process.
class SpawnSettings {
 public:
  SpawnSettings() {
    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }

  [[nodiscard]] std::optional<pid_t> start(std::string program, std::string argument) const {
    char* arguments[] = {program.data(), argument.data(), nullptr};
    pid_t process = 0;
    if (posix_spawnp(&process, program.c_str(), &actions_, &attributes_, arguments, environ) != 0) return std::nullopt;
    return process;
  }

 private:
  posix_spawnattr_t attributes_{};
  posix_spawn_file_actions_t actions_{};
};

struct WorkspaceObject : objc::Object {
  bool openUrl(NSURL url) {
    if (!url.scheme()) return false;
    const std::scoped_lock guard(lock);
    // Those that ended are cleared away whenever the next one starts.
    std::erase_if(openers, [](pid_t opener) { return waitpid(opener, nullptr, WNOHANG) != 0; });
    const std::optional<pid_t> opener = SpawnSettings().start(kOpener, url.absoluteString().UTF8String());
    if (opener) openers.push_back(*opener);
    return opener.has_value();
  }

  std::mutex lock;
  std::vector<pid_t> openers;
};

NSWorkspace sharedWorkspace(Class workspaceClass) {
  static const NSWorkspace shared = [workspaceClass] {
    auto* made = objc::createInstance<WorkspaceObject>(workspaceClass);
    objc_makeImmortal(made);
    return NSWorkspace(made);
  }();
  return shared;
}

}  // namespace

void registerWorkspace() {
  objc::ClassBuilder::define<WorkspaceObject>("NSWorkspace", "NSObject")
      .classMethod<&sharedWorkspace>("sharedWorkspace")
      .method<&WorkspaceObject::openUrl>("openURL:");
}

}  // namespace appkit
