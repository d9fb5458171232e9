#pragma once

#include "platform/contacts/file_descriptor.h"
#include "platform/contacts/files.h"

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

// The folder of card files, held open, and within it the data folder .addressbook, which has what isn't in cards.
class Folder {
 public:
  // A missing folder is created, with those above it. Throws FolderError.
  explicit Folder(std::string path);

  [[nodiscard]] const std::string& path() const { return path_; }
  // Descriptors of the folder and of the data folder, -1 when there is none or it can't be used.
  [[nodiscard]] int cards() const { return cards_.number(); }
  [[nodiscard]] int data() const { return data_.number(); }

  // Whether files can be made in it and taken out of it.
  [[nodiscard]] bool isWritable() const;
  // Makes the data folder where it is missing. Throws FileError.
  void makeData();
  enum class Missing { kKeep, kCreate };
  // Opens the folder anew when its path has come to name another. Answers whether it did. One that is missing is
  // created anew on request, else the one that was is kept. Throws FolderError.
  bool follow(Missing missing);

  // The names of what may be card files, sorted by their bytes. Throws FileError.
  [[nodiscard]] std::vector<std::string> cardFileNames() const;

 private:
  void open();
  void openData();

  std::string path_;
  FileDescriptor cards_;
  FileDescriptor data_;
};

// Keeps other processes' saves, or with kWrite other processes altogether, out of the folder for as long as it lives.
// Processes that don't know of the lock are not kept out.
class FolderLock {
 public:
  enum class Kind { kRead, kWrite };

  // For kRead no lock is taken where there is no lock file, or no right to it; nor when it isn't free within a second.
  // For kWrite the data folder must be there; throws FileError when the lock can't be had within ten seconds.
  FolderLock(const Folder& folder, Kind kind);

  [[nodiscard]] bool isHeld() const { return file_.isOpen(); }

 private:
  FileDescriptor file_;
};

}  // namespace contacts
