#pragma once

#include "platform/contacts/text_digest.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

class Database;

// A card of the folder as it was last read. Never changes, so that several books share it.
struct StoredCard {
  const Database* database = nullptr;  // that has it; null for a card that is not in the folder
  std::string fileName;
  std::size_t position = 0;        // among the file's cards
  std::optional<double> fileTime;  // when the file was last changed, in seconds since 1970
  std::string uid;  // without urn:uuid:; of a card that has none, or another card's, derived from its place
  bool hasDerivedUid = false;
  std::uint64_t hash = 0;  // of all of its text
  bool isGroup = false;
  // Of the texts of its properties that are one text or several, and of its addresses.
  TextDigest digest;
  // The card in UTF-8, without pictures and the like: they stay in the file until somebody asks.
  std::string text;

  // As text, with all that was left out of it.
  [[nodiscard]] std::string fullText() const;

  // What a record's UID property holds.
  [[nodiscard]] std::string uniqueId() const { return uid + (isGroup ? ":ABGroup" : ":ABPerson"); }
};

using StoredCardPointer = std::shared_ptr<const StoredCard>;
// Cards of which nobody else knows yet.
using NewCards = std::vector<std::shared_ptr<StoredCard>>;

}  // namespace contacts
