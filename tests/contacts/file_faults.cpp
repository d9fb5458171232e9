#include "tests/contacts/file_faults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace file_faults {
namespace {

bool isOn = false;
std::optional<Fault> fault;
Seen seen;

// Which calls can fail that way.
bool canFail(std::string_view name, bool makes, int error) {
  switch (error) {
    case EINTR:
      return name == "openat" || name == "read" || name == "write" || name == "fsync" || name == "flock";
    case EMFILE:
      return name == "openat";
    case ENOSPC:
    case EDQUOT:
      return name == "write" || name == "fsync" || (makes && name != "unlinkat" && name != "fchmod");
    case EROFS:
      return makes;
    case EACCES:
      return (makes && name != "fchmod") || name == "openat" || name == "fstatat";
    default:
      return true;
  }
}

bool canHave(const Fault& wanted, std::string_view name, bool makes) {
  if (wanted.effect == Fault::Effect::kShortWrite) return name == "write";
  return wanted.effect == Fault::Effect::kKill || canFail(name, makes, wanted.error);
}

// Whether this call is the one, or one of those, that the fault hits.
bool isHit(std::string_view name, bool makes) {
  if (!isOn || !fault || !canHave(*fault, name, makes)) return false;
  const int place = seen.count++;
  const bool hit = fault->isSticky ? place >= fault->at : place == fault->at;
  seen.isHit = seen.isHit || hit;
  if (hit && fault->effect == Fault::Effect::kKill) kill(getpid(), SIGKILL);
  return hit;
}

// What the body answers, unless the call is to fail. makes: it changes what names there are, or what they stand for.
template <class Body>
auto faulty(const char* name, bool makes, Body body) -> decltype(body()) {
  if (!isHit(name, makes)) return body();
  errno = fault->error;
  return -1;
}

ino_t inodeOf(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 ? status.st_ino : 0;
}

ino_t inodeIn(int folder, const char* name) {
  const int file = static_cast<int>(syscall(SYS_openat, folder, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
  const ino_t inode = inodeOf(file);
  if (file >= 0) syscall(SYS_close, file);
  return inode;
}

void record(const char* name, ino_t file, ino_t folder, const char* fileName = "") {
  if (isOn) seen.calls.push_back({name, file, folder, fileName});
}

using LookAt = int (*)(int, const char*, struct stat*, int);

LookAt lookAt() {
#ifdef __i386__
  static const auto real = reinterpret_cast<LookAt>(dlsym(RTLD_NEXT, "__fstatat64_time64"));
#else
  static const auto real = reinterpret_cast<LookAt>(dlsym(RTLD_NEXT, "fstatat64"));
#endif
  return real;
}

}  // namespace

void start(const std::optional<Fault>& wanted) {
  fault = wanted;
  seen = {};
  lookAt();
  isOn = true;
}

Seen stop() {
  isOn = false;
  return std::exchange(seen, {});
}

}  // namespace file_faults

#pragma GCC visibility push(default)

extern "C" {

int openat(int folder, const char* name, int flags, ...) {
  using namespace file_faults;
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const bool makes = (flags & O_CREAT) != 0;
  const int file = faulty(
      "openat", makes, [&] { return static_cast<int>(syscall(SYS_openat, folder, name, flags | O_LARGEFILE, mode)); });
  if (makes && file >= 0) record("creat", inodeOf(file), inodeOf(folder), name);
  return file;
}

ssize_t read(int file, void* bytes, size_t size) {
  return file_faults::faulty("read", false, [&] { return static_cast<ssize_t>(syscall(SYS_read, file, bytes, size)); });
}

ssize_t write(int file, const void* bytes, size_t size) {
  using namespace file_faults;
  auto call = [&](std::size_t length) { return static_cast<ssize_t>(syscall(SYS_write, file, bytes, length)); };
  if (file <= STDERR_FILENO) return call(size);
  record("write", inodeOf(file), 0);
  if (fault && fault->effect == Fault::Effect::kShortWrite) {
    return call(isHit("write", false) ? std::max<std::size_t>(size / 2, 1) : size);
  }
  return faulty("write", false, [&] { return call(size); });
}

int fsync(int file) {
  using namespace file_faults;
  const int result = faulty("fsync", false, [&] { return static_cast<int>(syscall(SYS_fsync, file)); });
  if (result == 0) record("fsync", inodeOf(file), 0);
  return result;
}

int fchmod(int file, mode_t mode) noexcept {
  return file_faults::faulty("fchmod", true, [&] { return static_cast<int>(syscall(SYS_fchmod, file, mode)); });
}

int flock(int file, int operation) noexcept {
  return file_faults::faulty("flock", false, [&] { return static_cast<int>(syscall(SYS_flock, file, operation)); });
}

int fstatat(int folder, const char* name, struct stat* status, int flags) noexcept {
  using namespace file_faults;
  return faulty("fstatat", false, [&] { return lookAt()(folder, name, status, flags); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  using namespace file_faults;
  const ino_t inode = inodeIn(fromFolder, from);
  const int result = faulty("renameat", true, [&] {
    return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
  });
  if (result == 0) record("renameat", inode, inodeOf(toFolder), to);
  return result;
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  return renameat2(fromFolder, from, toFolder, to, 0);
}

int unlinkat(int folder, const char* name, int flags) noexcept {
  using namespace file_faults;
  const int result =
      faulty("unlinkat", true, [&] { return static_cast<int>(syscall(SYS_unlinkat, folder, name, flags)); });
  if (result == 0) record("unlinkat", 0, inodeOf(folder), name);
  return result;
}

int mkdirat(int folder, const char* name, mode_t mode) noexcept {
  using namespace file_faults;
  const int result =
      faulty("mkdirat", true, [&] { return static_cast<int>(syscall(SYS_mkdirat, folder, name, mode)); });
  if (result == 0) record("mkdirat", 0, inodeOf(folder), name);
  return result;
}

}  // extern "C"

#pragma GCC visibility pop
