#pragma once

#include "platform/contacts/file_descriptor.h"

#include <optional>
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

// One folder of card files, held open, so that it stays the same one when its path comes to name another. The files in
// it are reached without following symbolic links out of it.
class Folder {
 public:
  // A missing folder is created, with those above it. Throws FolderError.
  explicit Folder(std::string path);

  [[nodiscard]] const std::string& path() const { return path_; }

  // Whether files can be made in it and taken out of it.
  [[nodiscard]] bool isWritable() const;

  // The names of what may be card files, sorted by their bytes: *.vcf without a leading dot. Throws FolderError.
  [[nodiscard]] std::vector<std::string> cardFileNames() const;

  struct Contents {
    std::string bytes;
    double modified = 0;  // seconds since 1970
    std::string refusal;  // why the file is no card file; empty when it was read
  };
  // Nothing when the file is gone. Never blocks on what is no regular file. Throws FolderError when the process lacks
  // the means to read on.
  [[nodiscard]] std::optional<Contents> read(const std::string& name) const;

 private:
  [[noreturn]] void fail(std::string_view what, int error) const;

  std::string path_;
  FileDescriptor directory_;
};

}  // namespace contacts
