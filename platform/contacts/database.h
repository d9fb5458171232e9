#pragma once

#include "platform/contacts/folder.h"
#include "platform/contacts/stored_card.h"

#include <string>
#include <vector>

namespace contacts {

// The process's view of the folder: what its books are made from. Made on the main thread or under the caller's lock.
class Database {
 public:
  // Throws FolderError.
  explicit Database(std::string path);

  // In the order of file names and, within a file, of position. A file that is no card is logged and left out.
  [[nodiscard]] const std::vector<StoredCardPointer>& cards() const { return cards_; }

  [[nodiscard]] const std::string& path() const { return folder_.path(); }
  // The card as its file has it now; its text where the file is gone.
  [[nodiscard]] std::string fullText(const StoredCard& card) const;
  [[nodiscard]] bool isWritable() const { return folder_.isWritable(); }

 private:
  void load();

  Folder folder_;
  std::vector<StoredCardPointer> cards_;
};

}  // namespace contacts
