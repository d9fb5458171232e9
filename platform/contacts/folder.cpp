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
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>
#include <utility>

namespace contacts {
namespace {

using std::chrono::steady_clock;

constexpr char kData[] = ".addressbook";
constexpr char kLock[] = "lock";
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

// Of a path without a slash at its end.
std::string folderAbove(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// mkdir with the folders above; those that are there already stay as they are. A folder that may not be read can't be
// made durable.
int createFolders(const std::string& path) {
  for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const bool isLast = slash == std::string::npos;
    const std::string part = path.substr(0, slash);
    if (mkdir(part.c_str(), 0700) == 0) {
      const FileDescriptor above(::open(folderAbove(part).c_str(), kFolderFlags));
      if (above.isOpen() && again([&] { return fsync(above.number()); }) != 0) return errno;
    } else if (errno != EEXIST) {
      return errno;
    }
    if (isLast) return 0;
  }
}

[[noreturn]] void fail(const std::string& path, std::string_view what, int error) {
  throw FolderError("contacts folder " + printable(path) + ": " + std::string(what) + ": " + std::strerror(error));
}

// Whether the name is that of the file held open.
bool isNamed(int folder, const std::string& name, int flags, int held) {
  struct stat named {};
  struct stat status {};
  return fstatat(folder, name.c_str(), &named, flags) == 0 && fstat(held, &status) == 0 &&
         status.st_dev == named.st_dev && status.st_ino == named.st_ino;
}

// A writer makes the file; where it can't be written, one that is there will do.
FileDescriptor openLock(const Folder& folder, FolderLock::Kind kind) {
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  auto open = [&](int flags) {
    return FileDescriptor(again([&] { return openat(folder.data(), kLock, flags | kFlags, 0600); }));
  };
  FileDescriptor file = kind == FolderLock::Kind::kWrite ? open(O_RDWR | O_CREAT) : FileDescriptor();
  const bool mayRead = kind == FolderLock::Kind::kRead || errno == EACCES || errno == EPERM || errno == EROFS;
  if (!file.isOpen() && mayRead) file = open(O_RDONLY);
  if (!file.isOpen()) throw FileError("cannot lock the folder", errno);
  struct stat status {};
  if (fstat(file.number(), &status) != 0) throw FileError("cannot lock the folder", errno);
  if (!S_ISREG(status.st_mode)) throw FileError("cannot lock the folder, as its lock is no regular file", EINVAL);
  return file;
}

void lockFile(const FileDescriptor& file, FolderLock::Kind kind, steady_clock::time_point end) {
  while (flock(file.number(), (kind == FolderLock::Kind::kWrite ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) throw FileError("cannot lock the folder", errno);
    if (steady_clock::now() > end) throw FileError("cannot lock the folder, as another program keeps it locked", errno);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
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

void NameList::add(std::string_view name) {
  names_ += name;
  names_ += '\0';
  sum_.add(name);
}

std::vector<std::string> NameList::sorted() const {
  // The beginning as one number decides nearly always.
  struct Name {
    explicit Name(std::string_view name) : whole(name) {
      for (std::size_t i = 0; i < sizeof start; ++i) {
        start = start << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0U);
      }
    }
    bool operator<(const Name& other) const { return start == other.start ? whole < other.whole : start < other.start; }

    std::uint64_t start = 0;
    std::string_view whole;
  };
  std::vector<Name> order;
  for (const char* name = names_.data(); name != names_.data() + names_.size(); name += order.back().whole.size() + 1) {
    order.emplace_back(name);
  }
  std::sort(order.begin(), order.end());
  std::vector<std::string> names;
  names.reserve(order.size());
  for (const Name& name : order) {
    if (names.empty() || names.back() != name.whole) names.emplace_back(name.whole);
  }
  return names;
}

Folder::Folder(std::string path) : path_(std::move(path)) {
  while (path_.size() > 1 && path_.ends_with('/')) path_.pop_back();
  open();
}

void Folder::open() {
  FileDescriptor opened(again([&] { return ::open(path_.c_str(), kFolderFlags); }));
  if (!opened.isOpen() && errno != ENOENT) fail(path_, "cannot be read", errno);
  cards_ = std::move(opened);
  openData();
}

// A data folder that is a link, or no folder at all, is none.
void Folder::openData() {
  data_ = FileDescriptor();
  if (cards_.isOpen()) data_ = FileDescriptor(again([&] { return openat(cards(), kData, kFolderFlags | O_NOFOLLOW); }));
}

FileDescriptor Folder::ownCards() const {
  return FileDescriptor(again([&] { return openat(cards(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC); }));
}

bool Folder::isWritable() const {
  if (cards_.isOpen()) return isWritableFolder(cards()) && (!data_.isOpen() || isWritableFolder(data()));
  // Whether it can be made.
  std::string above = path_;
  do {
    above = folderAbove(above);
  } while (access(above.c_str(), F_OK) != 0 && above != "." && above != "/");
  return faccessat(AT_FDCWD, above.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

bool Folder::isCurrent() const { return isNamed(AT_FDCWD, path_, 0, cards()) && isDataCurrent(); }

bool Folder::isDataCurrent() const { return isNamed(cards(), kData, AT_SYMLINK_NOFOLLOW, data()); }

bool Folder::follow() {
  if (access(path_.c_str(), F_OK) == 0 && !isNamed(AT_FDCWD, path_, 0, cards())) {
    open();
    return true;
  }
  if (!isDataCurrent()) openData();
  return false;
}

bool Folder::followOrMake() {
  bool isOther = follow();
  if (access(path_.c_str(), F_OK) != 0) {
    if (const int error = createFolders(path_)) fail(path_, "cannot be made", error);
    open();
    isOther = true;
  }
  if (!cards_.isOpen()) fail(path_, "cannot be read", ENOENT);
  makeData();
  return isOther;
}

void Folder::makeData() {
  if (data_.isOpen()) return;
  const bool isMade = mkdirat(cards(), kData, 0700) == 0;
  if (!isMade && errno != EEXIST) throw FileError("cannot make " + std::string(kData), errno);
  openData();
  if (!data_.isOpen()) throw FileError("cannot open " + std::string(kData), errno);
  if (isMade) syncFolder(cards());
}

NameList Folder::cardFileNames() const {
  NameList names;
  if (!cards_.isOpen()) return names;
  forEachName(cards(), [&names](std::string_view name) {
    if (isCardFileName(name)) names.add(name);
  });
  return names;
}

FolderLock::FolderLock(const Folder& folder, Kind kind, std::chrono::milliseconds patience) {
  const auto end = steady_clock::now() + patience;
  try {
    // Who waits for a file that its holder takes away gets the lock of a file that nobody else sees.
    while (!file_.isOpen()) {
      FileDescriptor file = openLock(folder, kind);
      lockFile(file, kind, end);
      if (isNamed(folder.data(), kLock, AT_SYMLINK_NOFOLLOW, file.number())) {
        file_ = std::move(file);
      } else if (steady_clock::now() > end) {
        throw FileError("cannot lock the folder", ENOENT);
      }
    }
  } catch (const FileError&) {
    if (kind == Kind::kWrite) throw;
  }
}

}  // namespace contacts
