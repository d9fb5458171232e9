#include "platform/contacts/files.h"

#include "platform/contacts/strings.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <utility>

namespace contacts {
namespace {

[[noreturn]] void fail(std::string_view doing, const std::string& name) {
  const int code = errno;
  throw FileError("cannot " + std::string(doing) + " " + printable(name), code);
}

std::int64_t nanoseconds(const timespec& time) { return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec; }

// FAT counts in steps of two seconds.
bool isSettled(const FileStamp& stamp) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return nanoseconds(now) - std::max(stamp.modified, stamp.changed) > 2'000'000'000;
}

struct DirectoryCloser {
  void operator()(DIR* directory) const { closedir(directory); }
};

}  // namespace

FileError::FileError(const std::string& what, int code)
    : std::runtime_error(what + ": " + std::strerror(code)), code_(code) {}

FileStamp stampOf(const struct stat& status) {
  return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

std::optional<FileStamp> stampIn(int folder, const std::string& name) {
  struct stat status {};
  if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return std::nullopt;
    fail("look at", name);
  }
  return stampOf(status);
}

std::optional<FileContents> readFile(int folder, const std::string& name) {
  auto refuse = [](std::string reason) { return FileContents{{}, {}, false, 0, std::move(reason)}; };
  auto refuseForNow = [](int error) { return FileContents{{}, {}, false, 0, std::strerror(error), error}; };
  const FileDescriptor file(
      again([&] { return openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); }));
  if (!file.isOpen()) {
    if (errno == ENOENT) return std::nullopt;
    if (errno == EMFILE || errno == ENFILE || errno == ENOMEM) fail("read", name);
    if (errno == ELOOP) return refuse("is a symbolic link");
    return errno == ENXIO ? refuse("is no regular file") : refuseForNow(errno);
  }
  struct stat status {};
  if (fstat(file.number(), &status) != 0) return refuseForNow(errno);
  if (!S_ISREG(status.st_mode)) return refuse("is no regular file");
  if (status.st_size == 0) return refuse(kEmptyFile);
  if (status.st_size > kLargestFile) return refuse("is larger than " + std::to_string(kLargestFile >> 20) + " MB");

  // The file may change meanwhile: what is read is what counts, never more than its size was.
  const FileStamp stamp = stampOf(status);
  FileContents contents{
      std::string(static_cast<std::size_t>(status.st_size), '\0'), stamp, isSettled(stamp), status.st_mode, {}, 0};
  std::size_t length = 0;
  while (length < contents.bytes.size()) {
    const ssize_t count =
        again([&] { return read(file.number(), contents.bytes.data() + length, contents.bytes.size() - length); });
    if (count < 0) return refuseForNow(errno);
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  contents.bytes.resize(length);
  return contents;
}

bool readAt(const FileDescriptor& file, std::int64_t place, std::span<char> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = again([&] { return pread(file.number(), bytes.data(), bytes.size(), place); });
    if (count <= 0) return false;
    place += count;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

NewFile::NewFile(int folder, std::string name, mode_t mode) : folder_(folder), name_(std::move(name)) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  file_ = FileDescriptor(again([&] { return openat(folder_, name_.c_str(), kFlags, 0600); }));
  if (!file_.isOpen()) fail("write", name_);
  if (mode == 0600 || fchmod(file_.number(), mode) == 0) return;
  const int code = errno;
  unlinkat(folder_, name_.c_str(), 0);
  errno = code;
  fail("write", name_);
}

NewFile::~NewFile() {
  if (!isKept_) unlinkat(folder_, name_.c_str(), 0);
}

void NewFile::add(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = again([&] { return write(file_.number(), bytes.data(), bytes.size()); });
    if (count < 0) fail("write", name_);
    if (count == 0) throw FileError("cannot write " + printable(name_), EIO);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

void NewFile::sync() {
  if (again([&] { return fsync(file_.number()); }) != 0) fail("write", name_);
}

void writeNewFile(int folder, const std::string& name, std::string_view bytes, mode_t mode) {
  NewFile file(folder, name, mode);
  file.add(bytes);
  file.sync();
  file.keep();
}

void removeFile(int folder, const std::string& name) {
  if (unlinkat(folder, name.c_str(), 0) != 0 && errno != ENOENT) fail("remove", name);
}

bool removeFileQuietly(int folder, const std::string& name) {
  return unlinkat(folder, name.c_str(), 0) == 0 || errno == ENOENT;
}

void renameFile(int fromFolder, const std::string& from, int toFolder, const std::string& to) {
  if (renameat(fromFolder, from.c_str(), toFolder, to.c_str()) != 0) fail("write", to);
}

bool renameToFreeName(int fromFolder, const std::string& from, int toFolder, const std::string& to) {
  if (renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno == EEXIST) return false;
  // Not every file system can do it at once.
  if (errno != EINVAL && errno != ENOSYS) fail("write", to);
  if (stampIn(toFolder, to)) return false;
  renameFile(fromFolder, from, toFolder, to);
  return true;
}

void syncFolder(int folder) {
  if (again([&] { return fsync(folder); }) != 0) fail("write", "the folder");
}

bool isWritableFolder(int folder) { return faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) == 0; }

void forEachName(int folder, const std::function<void(std::string_view)>& visit) {
  // A descriptor of its own: the position in the folder belongs to it.
  FileDescriptor listing(again([&] { return openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!listing.isOpen()) fail("read", "the folder");
  const std::unique_ptr<DIR, DirectoryCloser> directory(fdopendir(listing.number()));
  if (!directory) fail("read", "the folder");
  listing.leak();

  while (true) {
    errno = 0;
    const dirent* entry = readdir(directory.get());
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") visit(name);
  }
  if (errno != 0) fail("read", "the folder");
}

std::vector<std::string> namesIn(int folder) {
  std::vector<std::string> names;
  forEachName(folder, [&names](std::string_view name) { names.emplace_back(name); });
  return names;
}

std::uint64_t contentHash(std::string_view bytes) {
  constexpr std::uint64_t kPrime = 0x9E3779B97F4A7C15;
  auto mixed = [](std::uint64_t hash, std::uint64_t word) {
    hash = (hash ^ word) * kPrime;
    return hash ^ hash >> 29;
  };
  // The length goes in, so that trailing zeros count.
  std::uint64_t hash = bytes.size() * kPrime;
  std::array<std::uint64_t, 4> words{};
  if (bytes.size() >= 2 * sizeof words) {
    // Four that don't wait for each other.
    std::array<std::uint64_t, 4> hashes{hash, 1, 2, 3};
    for (; bytes.size() >= sizeof words; bytes.remove_prefix(sizeof words)) {
      std::memcpy(&words, bytes.data(), sizeof words);
      hashes[0] = mixed(hashes[0], words[0]);
      hashes[1] = mixed(hashes[1], words[1]);
      hashes[2] = mixed(hashes[2], words[2]);
      hashes[3] = mixed(hashes[3], words[3]);
    }
    hash = mixed(mixed(mixed(hashes[0], hashes[1]), hashes[2]), hashes[3]);
  }
  while (!bytes.empty()) {
    std::uint64_t word = 0;
    const std::size_t count = std::min(bytes.size(), sizeof word);
    std::memcpy(&word, bytes.data(), count);
    hash = mixed(hash, word);
    bytes.remove_prefix(count);
  }
  return hash;
}

}  // namespace contacts
