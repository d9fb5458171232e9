#pragma once

#include "platform/contacts/cached_block.h"
#include "platform/contacts/card_files.h"
#include "platform/contacts/file_descriptor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace contacts {

class Folder;

// What was read from the card files of a folder, in one file of its data folder, so that the files that are still the
// same need not be read when the folder is opened again. It may be removed at any time; what is damaged in it
// counts as not there, as does one that another version wrote.
class CardCache {
 public:
  // That of the folder; empty when there is none.
  explicit CardCache(const Folder& folder);

  // The files are in several blocks, sorted by name.
  [[nodiscard]] std::size_t blockCount() const { return blocks_.size(); }
  // Null where it is damaged. Any thread.
  [[nodiscard]] std::unique_ptr<CachedBlock> read(std::size_t block) const;

 private:
  // What a stretch of the file is to be.
  struct Stretch {
    std::uint64_t size;
    std::uint64_t hash;
  };
  // The texts follow what is said of the files.
  struct Block {
    Stretch files;
    Stretch texts;
    std::int64_t place;
  };

  std::shared_ptr<const FileDescriptor> file_;
  std::vector<Block> blocks_;
};

// Writes the cache anew. Says nothing when that fails: the folder is as good without it.
void writeCardCache(const Folder& folder, CardFiles& files);
// Leaves it where it can't be.
void removeCardCache(const Folder& folder);

}  // namespace contacts
