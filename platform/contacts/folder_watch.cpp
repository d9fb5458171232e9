#include "platform/contacts/folder_watch.h"

#include "platform/contacts/files.h"
#include "platform/contacts/folder.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/log.h"

#include <sys/inotify.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <utility>

namespace contacts {
namespace {

// A new hard link shows as IN_CREATE alone.
constexpr std::uint32_t kFileEvents = IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
constexpr std::uint32_t kFolderEvents = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr long kSecondsBetweenLooks = 2;

void log(const std::exception& error) {
  const AutoreleasePool pool;
  NSLog("contacts folder: %@"_ns, makeString(printable(error.what())));
}

}  // namespace

FolderWatch::FolderWatch(std::string path, Changed changed)
    : path_(std::move(path)),
      changed_(std::move(changed)),
      events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
  if (events_.isOpen()) {
    eventSource_ = std::make_unique<RunLoopSource>(events_.number(), [this] { readEvents(); });
  }
  if (timer_.isOpen()) timerSource_ = std::make_unique<RunLoopSource>(timer_.number(), [this] { look(); });
  watch();
}

// Where the system refuses, or there is no folder now, the timer looks.
void FolderWatch::watch() {
  if (events_.isOpen()) {
    cardsWatch_ = inotify_add_watch(events_.number(), path_.c_str(), kFileEvents | kFolderEvents);
    dataWatch_ =
        inotify_add_watch(events_.number(), (path_ + "/.addressbook").c_str(), IN_MOVED_TO | IN_DELETE | IN_ONLYDIR);
  }
  setTimer(cardsWatch_ < 0);
}

void FolderWatch::setTimer(bool isOn) {
  itimerspec time{};
  if (isOn) time.it_value.tv_sec = time.it_interval.tv_sec = kSecondsBetweenLooks;
  if (timer_.isOpen()) timerfd_settime(timer_.number(), 0, &time, nullptr);
}

void FolderWatch::readEvents() {
  std::set<std::string> names;
  bool isAnything = false;
  bool isData = false;
  bool isReplaced = false;
  alignas(inotify_event) char buffer[16384];
  ssize_t length = 0;
  while ((length = read(events_.number(), buffer, sizeof buffer)) > 0) {
    for (ssize_t at = 0; at < length;) {
      inotify_event event{};
      std::memcpy(&event, buffer + at, sizeof event);
      const char* name = event.len > 0 ? buffer + at + sizeof event : "";
      at += static_cast<ssize_t>(sizeof event + event.len);
      if ((event.mask & IN_Q_OVERFLOW) != 0) {
        isAnything = true;
      } else if (event.wd == dataWatch_) {
        isData = isData || std::strcmp(name, "me") == 0 || std::strcmp(name, "properties") == 0;
      } else if (event.wd == cardsWatch_) {
        isReplaced = isReplaced || (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) != 0;
        if (std::strcmp(name, ".addressbook") == 0) isReplaced = true;
        if (*name != '\0') names.insert(name);
      }
    }
  }
  if (isReplaced) {
    inotify_rm_watch(events_.number(), cardsWatch_);
    inotify_rm_watch(events_.number(), dataWatch_);
    watch();
    tell(nullptr);
  } else if (isAnything) {
    tell(nullptr);
  } else if (isData || !names.empty()) {
    tell(&names);
  }
}

void FolderWatch::look() {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t taken = read(timer_.number(), &count, sizeof count);
  watch();
  tell(nullptr);
}

void FolderWatch::tell(const std::set<std::string>* names) {
  try {
    changed_(names);
  } catch (const FileError& error) {
    log(error);
  } catch (const FolderError& error) {
    log(error);
  }
}

}  // namespace contacts
