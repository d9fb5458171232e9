#pragma once

#include "platform/contacts/card_text.h"
#include "platform/contacts/text_digest.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace contacts {

class Database;

// What a card is told by before anybody looks at its text.
struct CardOutline {
  std::string_view uid;  // without urn:uuid:; of a card that has none, or another card's, derived from its place
  bool isGroup = false;
  // Of the texts of its properties, the id and the custom ones left out.
  const TextDigest* digest = nullptr;

  // What a record's UID property holds.
  [[nodiscard]] std::string uniqueId() const { return std::string(uid) + (isGroup ? ":ABGroup" : ":ABPerson"); }
};

// A card of the folder as it was last read. Never changes, so that several books share it. Whoever made it keeps what
// it points to for as long.
struct StoredCard {
  StoredCard() = default;
  StoredCard(const StoredCard&) = delete;
  StoredCard& operator=(const StoredCard&) = delete;

  const Database* database = nullptr;  // that has it; null for a card that is not in the folder
  std::string_view fileName;
  std::size_t position = 0;        // among the file's cards
  std::optional<double> fileTime;  // when the file was last changed, in seconds since 1970
  std::uint64_t hash = 0;          // of all of its text
  CardText kept;
  // As in the outline. They are what searches look at, one card after another.
  std::string_view uid;
  const TextDigest* digest = nullptr;
  bool isGroup = false;
  bool hasDerivedUid = false;

  // The card in UTF-8, without pictures and the like: they stay in the file until somebody asks. Where the cache has
  // lost it, all of the card as its file has it now.
  [[nodiscard]] SharedText text() const;
  // The same without another look at the folder; empty where it would take one.
  [[nodiscard]] std::string keptText() const;
  // With all that was left out of it.
  [[nodiscard]] std::string fullText() const;

  operator CardOutline() const { return {uid, isGroup, digest}; }
  [[nodiscard]] std::string uniqueId() const { return CardOutline(*this).uniqueId(); }
};

using StoredCardPointer = std::shared_ptr<const StoredCard>;

// One that has its texts itself. It may be changed as long as nobody else knows of it.
struct SingleCard : StoredCard {
  SingleCard() { digest = &ownDigest; }
  explicit SingleCard(const StoredCard& other);

  void setFileName(std::string name);
  void setUid(std::string text);

  TextDigest ownDigest;

 private:
  std::string ownFileName_;
  std::string ownUid_;
};

using NewCards = std::vector<std::shared_ptr<SingleCard>>;

// What cards with the same unique id have in common.
struct CardIdentity {
  using is_transparent = void;

  std::size_t operator()(const CardOutline& card) const {
    return std::hash<std::string_view>()(card.uid) ^ card.isGroup;
  }
  std::size_t operator()(const StoredCardPointer& card) const { return operator()(*card); }
  bool operator()(const StoredCardPointer& a, const StoredCardPointer& b) const { return operator()(a, *b); }
  bool operator()(const StoredCardPointer& a, const CardOutline& b) const {
    return a->uid == b.uid && a->isGroup == b.isGroup;
  }
  bool operator()(const CardOutline& a, const StoredCardPointer& b) const { return operator()(b, a); }
};

// One card for each unique id.
using CardSet = std::unordered_set<StoredCardPointer, CardIdentity, CardIdentity>;

}  // namespace contacts
