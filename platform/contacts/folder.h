#pragma once

#include "platform/contacts/file_descriptor.h"
#include "platform/contacts/files.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// Why the folder of cards can't be used: "contacts folder /x: cannot be read: Permission denied".
class FolderError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What ADDRESSBOOK_FOLDER names, else addressbook in the user's data folder. Throws FolderError when the environment
// names neither.
std::string folderPath();

// *.vcf without a leading dot.
bool isCardFileName(std::string_view name);

// Which names there are, in any order.
class NameSum {
 public:
  void add(std::string_view name) {
    ++count_;
    sum_ += contentHash(name);
  }
  void add(const NameSum& others) {
    count_ += others.count_;
    sum_ += others.sum_;
  }
  // Another set of names has the same as rarely as other bytes have the same hash.
  friend bool operator==(const NameSum&, const NameSum&) = default;

 private:
  std::size_t count_ = 0;
  std::uint64_t sum_ = 0;
};

// File names as a folder lists them, in little memory.
class NameList {
 public:
  void add(std::string_view name);
  [[nodiscard]] const NameSum& sum() const { return sum_; }
  // By their bytes. Some file systems list a name again when the folder changes meanwhile: each is there once.
  [[nodiscard]] std::vector<std::string> sorted() const;

 private:
  std::string names_;  // each with a zero behind it
  NameSum sum_;
};

// The folder of card files, held open, and within it the data folder .addressbook, which has what isn't in cards. One
// that is missing is empty, until something is saved to it.
class Folder {
 public:
  // Throws FolderError.
  explicit Folder(std::string path);

  [[nodiscard]] const std::string& path() const { return path_; }
  // Descriptors of the folder and of the data folder, -1 when there is none or it can't be used.
  [[nodiscard]] int cards() const { return cards_.number(); }
  [[nodiscard]] int data() const { return data_.number(); }

  // Another descriptor of the folder of cards, not to list it; none when there is none to be had. Threads that look at
  // files by the same one wait for each other.
  [[nodiscard]] FileDescriptor ownCards() const;

  // Whether files can be made in it and taken out of it.
  [[nodiscard]] bool isWritable() const;
  // Whether the paths still name the folders.
  [[nodiscard]] bool isCurrent() const;
  // Opens the folders anew when their paths have come to name others. Answers whether that of the cards has; where none
  // is there now, the one that was is kept. Throws FolderError.
  bool follow();
  // As follow, and then makes what is missing of both folders, and of those above, durably. Throws FolderError and
  // FileError.
  bool followOrMake();

  // The names of what may be card files. Throws FileError.
  [[nodiscard]] NameList cardFileNames() const;

 private:
  void open();
  void openData();
  void makeData();
  [[nodiscard]] bool isDataCurrent() const;

  std::string path_;
  FileDescriptor cards_;
  FileDescriptor data_;
};

// Keeps other processes' saves, or with kWrite other processes altogether, out of the folder for as long as it lives.
// Processes that don't know of the lock are not kept out.
class FolderLock {
 public:
  enum class Kind { kRead, kWrite };

  // For kRead no lock is taken where there is no lock file, or no right to it; nor when it isn't free in time. For
  // kWrite the data folder must be there; throws FileError when the lock can't be had in time.
  FolderLock(const Folder& folder, Kind kind, std::chrono::milliseconds patience);

  [[nodiscard]] bool isHeld() const { return file_.isOpen(); }

 private:
  FileDescriptor file_;
};

}  // namespace contacts
