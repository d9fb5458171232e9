#include "platform/contacts/folder.h"

#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>
#include <utility>

namespace contacts {
namespace {

constexpr char kData[] = ".addressbook";
constexpr char kLock[] = "lock";
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

// mkdir with the folders above; those that are there already stay as they are.
int createFolders(const std::string& path) {
  for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const bool isLast = slash == std::string::npos;
    const std::string part = path.substr(0, slash);
    if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return errno;
    if (isLast) return 0;
  }
}

[[noreturn]] void fail(const std::string& path, std::string_view what, int error) {
  throw FolderError("contacts folder " + printable(path) + ": " + std::string(what) + ": " + std::strerror(error));
}

}  // namespace

bool isCardFileName(std::string_view name) {
  constexpr std::string_view kExtension = ".vcf";
  return !name.starts_with('.') && name.size() > kExtension.size() &&
         vcard::equalsIgnoringCase(name.substr(name.size() - kExtension.size()), kExtension);
}

std::string folderPath() {
  if (const std::string_view folder = environment("ADDRESSBOOK_FOLDER"); !folder.empty()) return std::string(folder);
  if (const std::string_view data = environment("XDG_DATA_HOME"); data.starts_with('/')) {
    return std::string(data) + "/addressbook";
  }
  if (const std::string_view home = environment("HOME"); !home.empty()) {
    return std::string(home) + "/.local/share/addressbook";
  }
  throw FolderError("contacts folder: none of ADDRESSBOOK_FOLDER, XDG_DATA_HOME and HOME is set");
}

Folder::Folder(std::string path) : path_(std::move(path)) { open(); }

void Folder::open() {
  FileDescriptor opened(::open(path_.c_str(), kFolderFlags));
  if (!opened.isOpen() && errno == ENOENT) {
    if (const int error = createFolders(path_)) fail(path_, "cannot be created", error);
    opened = FileDescriptor(::open(path_.c_str(), kFolderFlags));
  }
  if (!opened.isOpen()) fail(path_, "cannot be read", errno);
  cards_ = std::move(opened);
  data_ = FileDescriptor();
  openData();
}

// A data folder that is a link, or no folder at all, is none.
void Folder::openData() { data_ = FileDescriptor(openat(cards(), kData, kFolderFlags | O_NOFOLLOW)); }

bool Folder::isWritable() const { return faccessat(cards(), ".", W_OK | X_OK, AT_EACCESS) == 0; }

void Folder::makeData() {
  if (data_.isOpen()) return;
  const bool isMade = mkdirat(cards(), kData, 0700) == 0;
  if (!isMade && errno != EEXIST) throw FileError("cannot make " + std::string(kData), errno);
  openData();
  if (!data_.isOpen()) throw FileError("cannot open " + std::string(kData), errno);
  if (isMade) syncFolder(cards());
}

bool Folder::follow(Missing missing) {
  struct stat named {};
  struct stat held {};
  const bool isThere = stat(path_.c_str(), &named) == 0;
  const bool isSame =
      isThere && fstat(cards(), &held) == 0 && named.st_dev == held.st_dev && named.st_ino == held.st_ino;
  if (isSame || (!isThere && missing == Missing::kKeep)) {
    if (!data_.isOpen()) openData();
    return false;
  }
  open();
  return true;
}

std::vector<std::string> Folder::cardFileNames() const {
  std::vector<std::string> names = namesIn(cards());
  std::erase_if(names, [](const std::string& name) { return !isCardFileName(name); });
  std::ranges::sort(names);
  return names;
}

FolderLock::FolderLock(const Folder& folder, Kind kind) {
  using std::chrono::steady_clock;
  const bool isWrite = kind == Kind::kWrite;
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  FileDescriptor file;
  if (folder.data() >= 0) {
    file = FileDescriptor(isWrite ? openat(folder.data(), kLock, O_RDWR | O_CREAT | kFlags, 0600)
                                  : openat(folder.data(), kLock, O_RDONLY | kFlags));
  }
  if (!file.isOpen()) {
    if (isWrite) throw FileError("cannot lock the folder", errno);
    return;
  }
  const auto end = steady_clock::now() + std::chrono::seconds(isWrite ? 10 : 1);
  while (flock(file.number(), (isWrite ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
    const bool isTaken = errno == EWOULDBLOCK || errno == EINTR;
    if (!isTaken || steady_clock::now() > end) {
      if (isWrite) throw FileError("cannot lock the folder", errno);
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  file_ = std::move(file);
}

}  // namespace contacts
