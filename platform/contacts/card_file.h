#pragma once

#include "platform/contacts/files.h"
#include "platform/contacts/stored_card.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// A card file as it was last read.
struct CardFile {
  std::string name;
  FileStamp stamp{};
  bool isSettled = false;                  // whether a file of that stamp has those bytes
  std::uint64_t hash = 0;                  // of its bytes
  std::vector<StoredCardPointer> cards{};  // none where it is refused
};

// The cards of a file's text in order. Cards without a UID have an empty one. Pictures and the like are left out. hash
// is that of the text where it is known.
NewCards cardsIn(std::string_view text, std::optional<std::uint64_t> hash = std::nullopt);

// When a file of that stamp was last changed, in seconds since 1970.
inline double timeOf(const FileStamp& stamp) { return static_cast<double>(stamp.modified) * 1e-9; }

// A file name that a card of that UID can have: the UID where all of it is harmless, else a name of its own.
std::string fileNameFor(const std::string& uid);

}  // namespace contacts
