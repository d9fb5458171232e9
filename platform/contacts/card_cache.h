#pragma once

#include "platform/contacts/card_file.h"
#include "platform/contacts/files.h"
#include "platform/contacts/stored_card.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

class Folder;

// What was read from the card files of a folder, in one file of its data folder, so that the files that are still the
// same need not be read when the folder is opened again. It may be removed at any time; what is damaged in it
// counts as not there, as does one that another version wrote.
class CardCache {
 public:
  // Has nothing.
  CardCache() = default;
  // What the folder has.
  explicit CardCache(const Folder& folder);

  [[nodiscard]] bool isEmpty() const { return entries_.empty(); }
  // Fills in the file of that name, all but its stored cards, and its cards, as they were read when it had that stamp.
  // False, and nothing done, when that isn't known. place is where the search begins and then where the next name is
  // likely to be found. Any thread.
  bool find(std::string_view name, const FileStamp& stamp, std::size_t& place, CardFile& file, NewCards& cards) const;

 private:
  struct Entry {
    std::string_view name;
    std::string_view contents;
    std::string_view all;  // both, as written
    std::uint64_t hash;    // what all's is to be
  };

  SharedText bytes_;
  std::vector<Entry> entries_;  // sorted by name
};

[[nodiscard]] bool hasCardCache(const Folder& folder);

// Writes the cache anew. Says nothing when that fails: the folder is as good without it.
void writeCardCache(const Folder& folder, const std::map<std::string, CardFile>& files);

}  // namespace contacts
