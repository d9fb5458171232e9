#pragma once

#include "platform/contacts/file_descriptor.h"

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Files in an open folder. Nothing here follows a symbolic link, or blocks on what is no regular file. Calls that are
// interrupted are made again.
namespace contacts {

class FileError : public std::runtime_error {
 public:
  // "save: cannot write x: No space left on device"
  FileError(const std::string& what, int code);

  [[nodiscard]] int code() const { return code_; }

 private:
  int code_;
};

// What tells whether a file is still the one that was read: a change in place, or another file under its name, shows.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modified = 0;  // nanoseconds since 1970, as the next
  std::int64_t changed = 0;

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

FileStamp stampOf(const struct stat& status);
// Nothing when there is no such file.
std::optional<FileStamp> stampIn(int folder, const std::string& name);

struct FileContents {
  std::string bytes;
  FileStamp stamp;
  bool isSettled = false;  // whether any later change shows in the stamp, which has the system's clock's steps
  mode_t mode = 0;
  std::string refusal;  // why it is not read; empty when it was
  int error = 0;        // of the system, which may be gone the next time; 0 when the file itself is refused
};

// What is larger is refused. Photos are the largest thing in a card; a whole address book exported into one file is
// well below.
inline constexpr std::int64_t kLargestFile = std::int64_t{32} << 20;

// The refusal of one without contents.
inline constexpr char kEmptyFile[] = "is empty";

// Nothing when there is no such file. Throws FileError when the process lacks the means to read on.
std::optional<FileContents> readFile(int folder, const std::string& name);

// Fills bytes with what the file has at that place; false when it has fewer, or they can't be read.
bool readAt(const FileDescriptor& file, std::int64_t place, std::span<char> bytes);

// A file under way, which must not be there yet. It is removed where it isn't kept.
class NewFile {
 public:
  // Throws FileError, as the next.
  NewFile(int folder, std::string name, mode_t mode);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  void add(std::string_view bytes);
  void sync();
  // The file stays, or has been given another name.
  void keep() { isKept_ = true; }

 private:
  const int folder_;
  const std::string name_;
  FileDescriptor file_;
  bool isKept_ = false;
};

// Makes a file that must not be there yet, durably. Throws FileError, and leaves nothing.
void writeNewFile(int folder, const std::string& name, std::string_view bytes, mode_t mode);
void removeFile(int folder, const std::string& name);
// Whether there is no such file any more.
bool removeFileQuietly(int folder, const std::string& name);
void renameFile(int fromFolder, const std::string& from, int toFolder, const std::string& to);
// As renameFile; false, and nothing done, when the new name is taken.
bool renameToFreeName(int fromFolder, const std::string& from, int toFolder, const std::string& to);
void syncFolder(int folder);

// Whether a file can be made in the folder, and taken out of it.
bool isWritableFolder(int folder);

// Without "." and ".."; in no order.
void forEachName(int folder, const std::function<void(std::string_view)>& visit);
std::vector<std::string> namesIn(int folder);

// Of a file's bytes; not against malice.
std::uint64_t contentHash(std::string_view bytes);

}  // namespace contacts
