#pragma once

#include "platform/contacts/cached_block.h"
#include "platform/contacts/card_file.h"
#include "platform/contacts/stored_card.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

class Database;

// A database's card files in the order of their names, each name once, and their cards by id. They stand in leaves of
// some hundred. What the cache has is a block until somebody asks for one of its files or cards; that they are made
// then doesn't count as a change.
class CardFiles {
 public:
  explicit CardFiles(const Database& database) : database_(&database) {}

  [[nodiscard]] std::size_t count() const { return count_; }
  // Null when there is none. Until the next change.
  [[nodiscard]] CardFile* find(std::string_view name);
  // Until the next change, several threads may look for those files.
  void prepare(const std::vector<std::string>& names);
  // Takes the place of one of the same name. Says nothing of the cards' ids.
  void put(CardFile file);
  void remove(std::string_view name);
  // False, and nothing done, where the block has no files, or they don't come behind all others. Of cards with one
  // id, which only a forged cache has, one alone is found by it.
  bool append(std::shared_ptr<const CachedBlock> block);

  // Null when there is no card of that id.
  [[nodiscard]] StoredCardPointer findCard(const CardOutline& id);
  // False when its id is taken.
  bool addCard(const StoredCardPointer& card);
  // Does nothing when another card has its id.
  void removeCard(const StoredCardPointer& card);
  // After a change that failed midway: cards are found by id as the files have them.
  void indexAgain();

  // Whether nothing is left to be made.
  [[nodiscard]] bool areMade() const { return unmadeCount_ == 0; }
  template <class Work>
  void forEach(Work work) {
    makeAll();
    for (const Leaf& leaf : leaves_) {
      for (const CardFile& file : leaf.files) work(file);
    }
  }
  template <class Work>
  void forEachName(Work work) const {
    for (const Leaf& leaf : leaves_) {
      if (!leaf.isMade()) {
        for (const auto* file : leaf.block->files()) work(leaf.block->nameOf(*file));
      }
      for (const CardFile& file : leaf.files) work(std::string_view(file.name));
    }
  }
  // In order, those cards whose outlines pass the test.
  template <class Test>
  [[nodiscard]] std::vector<StoredCardPointer> cardsThat(Test test) {
    std::vector<StoredCardPointer> cards;
    for (Leaf& leaf : leaves_) {
      if (!leaf.isMade() && !leaf.block->hasCardThat(test)) continue;
      make(leaf);
      for (const CardFile& file : leaf.files) {
        for (const StoredCardPointer& card : file.cards) {
          if (test(*card)) cards.push_back(card);
        }
      }
    }
    return cards;
  }

 private:
  struct Leaf {
    [[nodiscard]] bool isMade() const { return !files.empty(); }
    [[nodiscard]] std::string_view firstName() const {
      return isMade() ? std::string_view(files.front().name) : block->nameOf(*block->files().front());
    }

    std::shared_ptr<const CachedBlock> block;  // null once the cards are among those by id
    std::vector<CardFile> files;               // empty until they are made
  };

  void make(Leaf& leaf);
  void makeAll();
  // Makes the files, and their cards can be found by id.
  void index(Leaf& leaf);
  // That which has the name, or can take it; the end when there are none.
  std::vector<Leaf>::iterator leafFor(std::string_view name);
  void split(std::vector<Leaf>::iterator leaf);

  const Database* database_;
  std::vector<Leaf> leaves_;  // none of them empty
  std::size_t count_ = 0;
  CardSet byId_;                 // but for the cards of blocks
  std::size_t blockCount_ = 0;   // of leaves with one
  std::size_t unmadeCount_ = 0;  // of leaves without files
  std::size_t scanCount_ = 0;    // how often the blocks were asked for an id
};

}  // namespace contacts
