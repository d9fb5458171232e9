#include "platform/contacts/folder_watch.h"

#include "platform/contacts/files.h"
#include "platform/contacts/folder.h"
#include "platform/contacts/journal.h"
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
// A folder that somebody holds open says nothing when it is removed: the one above does.
constexpr std::uint32_t kNameEvents = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ONLYDIR;
constexpr long kSecondsBetweenLooks = 2;

void log(const std::exception& error) {
  const AutoreleasePool pool;
  NSLog("contacts folder: %@"_ns, makeString(printable(error.what())));
}

}  // namespace

FolderWatch::FolderWatch(std::string path, Changed changed)
    : path_(std::move(path)),
      changed_(std::move(changed)),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
  if (timer_.isOpen()) {
    timerSource_ = std::make_unique<RunLoopSource>(timer_.number(), [this] { look(); });
    setTimer(1, 0);
  } else {
    watch();
  }
}

// Where the system refuses, or there is no folder now, the timer looks.
void FolderWatch::watch() {
  if (!events_.isOpen()) {
    events_ = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (events_.isOpen()) {
      eventSource_ = std::make_unique<RunLoopSource>(events_.number(), [this] { readEvents(); });
    }
  }
  if (events_.isOpen()) {
    auto watchOne = [this](const std::string& path, std::uint32_t events) {
      return inotify_add_watch(events_.number(), path.c_str(), events);
    };
    const std::size_t slash = path_.find_last_of('/');
    aboveWatch_ = watchOne(slash == std::string::npos ? "." : path_.substr(0, slash + 1), kNameEvents);
    cardsWatch_ = watchOne(path_, kFileEvents | kFolderEvents);
    dataWatch_ = watchOne(path_ + "/.addressbook", IN_MOVED_TO | IN_DELETE | IN_ONLYDIR);
  }
  setTimer(0, cardsWatch_ < 0 ? kSecondsBetweenLooks : 0);
}

// Goes off after so much, and every so many seconds; never when both are 0.
void FolderWatch::setTimer(long firstNanoseconds, long seconds) {
  const itimerspec time{{seconds, 0}, {seconds, firstNanoseconds}};
  if (timer_.isOpen()) timerfd_settime(timer_.number(), 0, &time, nullptr);
}

void FolderWatch::readEvents() {
  std::set<std::string> names;
  bool isData = false;
  bool isReplaced = false;
  const std::string ownName = path_.substr(path_.find_last_of('/') + 1);
  alignas(inotify_event) char buffer[16384];
  ssize_t length = 0;
  while ((length = read(events_.number(), buffer, sizeof buffer)) > 0) {
    for (ssize_t at = 0; at < length;) {
      inotify_event event{};
      std::memcpy(&event, buffer + at, sizeof event);
      const std::string name = event.len > 0 ? buffer + at + sizeof event : "";
      at += static_cast<ssize_t>(sizeof event + event.len);
      if ((event.mask & IN_Q_OVERFLOW) != 0) {
        isReplaced = true;  // for all that is known
      } else if (event.wd == cardsWatch_) {
        isReplaced = isReplaced || (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) != 0;
        if (name == ".addressbook") isReplaced = true;
        if (!name.empty()) names.insert(name);
      } else if (event.wd == dataWatch_) {
        // A journal that stays is of a save that somebody else has to finish.
        isData = isData || name == kOwnerFile || name == kPropertyFile || name == kJournalFile;
      } else if (event.wd == aboveWatch_) {
        isReplaced = isReplaced || name == ownName;
      }
    }
  }
  if (isReplaced) {
    for (const int watch : {cardsWatch_, dataWatch_, aboveWatch_}) inotify_rm_watch(events_.number(), watch);
    watch();
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
