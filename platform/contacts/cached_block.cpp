#include "platform/contacts/cached_block.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace contacts {
namespace {

bool isIn(const TextStretch& stretch, std::size_t size) {
  return stretch.begin <= size && stretch.size <= size - stretch.begin;
}

// What a block says, from its beginning.
class Parts {
 public:
  explicit Parts(std::span<const std::byte> said) : rest_(said) {}

  // Fewer where there aren't as many.
  template <class Value>
  std::span<const Value> take(std::size_t count) {
    static_assert(std::has_unique_object_representations_v<Value>, "no bytes of no meaning in the file");
    count = std::min(count, rest_.size() / sizeof(Value));
    const std::span taken(reinterpret_cast<const Value*>(rest_.data()), count);
    rest_ = rest_.subspan(taken.size_bytes());
    return taken;
  }
  [[nodiscard]] std::size_t size() const { return rest_.size(); }

 private:
  std::span<const std::byte> rest_;
};

}  // namespace

std::unique_ptr<CachedBlock> CachedBlock::read(std::unique_ptr<std::byte[]> said, std::size_t size,
                                               std::shared_ptr<const UnreadTexts> texts, std::size_t textsSize) {
  Parts parts({said.get(), size});
  const std::span<const Start> start = parts.take<Start>(1);
  if (start.empty() || start.front().fileCount > kMostFiles) return nullptr;
  const std::span<const FileRecord> files = parts.take<FileRecord>(start.front().fileCount);
  std::unique_ptr<CachedBlock> block(new CachedBlock);
  block->cards_ = parts.take<CardRecord>(start.front().cardCount);
  if (files.size() != start.front().fileCount || block->cards_.size() != start.front().cardCount) return nullptr;
  const std::span<const char> names = parts.take<char>(parts.size());
  block->names_ = {names.data(), names.size()};
  block->said_ = std::move(said);
  block->texts_ = std::move(texts);

  block->files_.reserve(files.size());
  std::size_t firstCard = 0;
  std::string_view last;
  for (const FileRecord& file : files) {
    if (!isIn(file.name, names.size()) || file.firstCard != firstCard) return nullptr;
    if (file.cardCount > block->cards_.size() - firstCard) return nullptr;
    firstCard += file.cardCount;
    const std::string_view name = block->nameOf(file);
    if (name <= last) return nullptr;
    last = name;
    block->files_.push_back(&file);
  }
  if (firstCard != block->cards_.size()) return nullptr;
  // Stretches that lie one over another could be more than anybody has the time for.
  std::uint64_t uidsSize = 0;
  std::uint64_t allTextsSize = 0;
  block->ids_.reserve(firstCard);
  for (const CardRecord& card : block->cards_) {
    const bool isSound =
        isIn(card.uid, names.size()) && isIn(card.text, textsSize) && isIn(card.personName, card.text.size);
    uidsSize += card.uid.size;
    allTextsSize += card.text.size;
    if (!isSound || uidsSize > names.size() || allTextsSize > textsSize) return nullptr;
    block->ids_.push_back(idHash(block->outlineOf(card)));
  }
  return block;
}

std::uint64_t CachedBlock::idHash(const CardOutline& card) { return contentHash(card.uid) ^ (card.isGroup ? 1 : 0); }

bool CachedBlock::mayHave(std::uint64_t idHash) const {
  return std::find(ids_.begin(), ids_.end(), idHash) != ids_.end();
}

std::vector<CardFile> CachedBlock::make(const std::shared_ptr<const CachedBlock>& block, const Database& database) {
  // In one piece with what they point to: most of them will be there as long as the process.
  struct Made {
    std::shared_ptr<const CachedBlock> block;
    std::vector<StoredCard> cards;
  };
  const auto made = std::make_shared<Made>();
  made->block = block;
  made->cards = std::vector<StoredCard>(block->cards_.size());
  std::vector<CardFile> files(block->files_.size());
  auto found = files.begin();
  for (const FileRecord* file : block->files_) {
    found->name = block->nameOf(*file);
    found->stamp = file->stamp;
    found->isSettled = true;
    found->hash = file->hash;
    found->cards.reserve(file->cardCount);
    for (const CardRecord& record : block->cardsOf(*file)) {
      StoredCard& card = made->cards[static_cast<std::size_t>(&record - block->cards_.data())];
      card.uid = block->textAt(record.uid);
      card.digest = &record.digest;
      card.isGroup = record.isGroup != 0;
      card.database = &database;
      card.fileName = block->nameOf(*file);
      card.position = found->cards.size();
      card.fileTime = timeOf(file->stamp);
      card.hash = record.hash;
      card.kept = CardText(block->texts_, record.text, record.personName);
      found->cards.emplace_back(made, &card);
    }
    ++found;
  }
  return files;
}

}  // namespace contacts
