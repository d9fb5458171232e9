#pragma once

#include "platform/contacts/card_file.h"
#include "platform/contacts/card_text.h"
#include "platform/contacts/stored_card.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace contacts {

class Database;

// What the cache says of some files. The numbers have their size and order in memory, which is the same in all builds.
class CachedBlock {
 public:
  struct FileRecord {
    FileStamp stamp;
    std::uint64_t hash = 0;
    TextStretch name;  // among the names
    std::uint32_t firstCard = 0;
    std::uint32_t cardCount = 0;
  };

  struct CardRecord {
    std::uint64_t hash = 0;
    TextStretch uid;         // among the names
    TextStretch text;        // among the texts
    TextStretch personName;  // in its text
    std::uint32_t isGroup = 0;
    std::uint32_t unused = 0;  // what follows has its alignment
    TextDigest digest;
  };

  // What a block begins with. The records of the files and of the cards follow and, as names, those of the files and
  // the cards' UIDs.
  struct Start {
    std::uint32_t fileCount = 0;
    std::uint32_t cardCount = 0;
  };

  static constexpr std::size_t kMostFiles = 128;
  // So many are worth a thread.
  static constexpr std::size_t kWorthAThread = 8;

  // What so many bytes say; the texts have textsSize. Null where it can't be.
  static std::unique_ptr<CachedBlock> read(std::unique_ptr<std::byte[]> said, std::size_t size,
                                           std::shared_ptr<const UnreadTexts> texts, std::size_t textsSize);
  // Of a card with such an id.
  static std::uint64_t idHash(const CardOutline& card);

  // Those that are left, in the order of their names.
  [[nodiscard]] const std::vector<const FileRecord*>& files() const { return files_; }
  [[nodiscard]] std::string_view nameOf(const FileRecord& file) const { return textAt(file.name); }
  template <class Test>
  void keepIf(Test test) {
    std::erase_if(files_, [&](const FileRecord* file) { return !test(*file); });
  }

  // False when it has no card with an id of that hash.
  [[nodiscard]] bool mayHave(std::uint64_t idHash) const;
  template <class Test>
  [[nodiscard]] bool hasCardThat(Test test) const {
    for (const FileRecord* file : files_) {
      for (const CardRecord& card : cardsOf(*file)) {
        if (test(outlineOf(card))) return true;
      }
    }
    return false;
  }

  // Makes the files that are left, as files of the database that were read when they had those stamps.
  static std::vector<CardFile> make(const std::shared_ptr<const CachedBlock>& block, const Database& database);

 private:
  CachedBlock() = default;
  [[nodiscard]] std::string_view textAt(TextStretch stretch) const {
    return names_.substr(stretch.begin, stretch.size);
  }
  [[nodiscard]] std::span<const CardRecord> cardsOf(const FileRecord& file) const {
    return cards_.subspan(file.firstCard, file.cardCount);
  }
  [[nodiscard]] CardOutline outlineOf(const CardRecord& card) const {
    return {textAt(card.uid), card.isGroup != 0, &card.digest};
  }

  std::unique_ptr<std::byte[]> said_;
  std::vector<const FileRecord*> files_;
  std::span<const CardRecord> cards_;
  std::vector<std::uint64_t> ids_;  // hashes of the cards' ids
  std::string_view names_;
  std::shared_ptr<const UnreadTexts> texts_;
};

}  // namespace contacts
