#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace contacts {

// Makes the system call again as long as a signal interrupts it.
template <class Call>
auto again(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

// Owns an open file, or nothing.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() {
    if (number_ >= 0) close(number_);
  }

  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] bool isOpen() const { return number_ >= 0; }
  // Gives the file up to the caller.
  int leak() { return std::exchange(number_, -1); }

 private:
  int number_ = -1;
};

}  // namespace contacts
