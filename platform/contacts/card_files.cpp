#include "platform/contacts/card_files.h"

#include "platform/contacts/parallel.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace contacts {
namespace {

constexpr std::size_t kLargestLeaf = 256;

auto placeIn(std::vector<CardFile>& files, std::string_view name) {
  return std::lower_bound(files.begin(), files.end(), name,
                          [](const CardFile& file, std::string_view wanted) { return file.name < wanted; });
}

}  // namespace

void CardFiles::make(Leaf& leaf) {
  if (leaf.isMade()) return;
  leaf.files = CachedBlock::make(leaf.block, *database_);
  --unmadeCount_;
}

void CardFiles::makeAll() {
  if (unmadeCount_ == 0) return;
  const auto makeFiles = [this](std::size_t i) {
    Leaf& leaf = leaves_[i];
    if (!leaf.isMade()) leaf.files = CachedBlock::make(leaf.block, *database_);
  };
  ParallelWork work(leaves_.size(), makeFiles, CachedBlock::kWorthAThread);
  work.finish();
  unmadeCount_ = 0;
}

// All or nothing, whatever memory there is.
void CardFiles::index(Leaf& leaf) {
  if (!leaf.block) return;
  make(leaf);
  CardSet cards;
  for (const CardFile& file : leaf.files) cards.insert(file.cards.begin(), file.cards.end());
  const std::size_t count = byId_.size() + cards.size();
  if (count > byId_.bucket_count()) byId_.reserve(2 * count);
  byId_.merge(cards);
  leaf.block.reset();
  --blockCount_;
}

std::vector<CardFiles::Leaf>::iterator CardFiles::leafFor(std::string_view name) {
  const auto next =
      std::upper_bound(leaves_.begin(), leaves_.end(), name,
                       [](std::string_view wanted, const Leaf& leaf) { return wanted < leaf.firstName(); });
  return next == leaves_.begin() ? next : std::prev(next);
}

CardFile* CardFiles::find(std::string_view name) {
  const auto leaf = leafFor(name);
  if (leaf == leaves_.end()) return nullptr;
  make(*leaf);
  const auto file = placeIn(leaf->files, name);
  return file == leaf->files.end() || file->name != name ? nullptr : &*file;
}

void CardFiles::prepare(const std::vector<std::string>& names) {
  for (auto name = names.begin(); unmadeCount_ != 0 && name != names.end(); ++name) make(*leafFor(*name));
}

void CardFiles::put(CardFile file) {
  auto leaf = leafFor(file.name);
  if (leaf != leaves_.end()) index(*leaf);
  if (CardFile* known = find(file.name)) {
    *known = std::move(file);
    return;
  }
  const bool isFull = leaf != leaves_.end() && leaf->files.size() >= kLargestLeaf;
  const bool isBehindAll = isFull && std::next(leaf) == leaves_.end() && leaf->files.back().name < file.name;
  if (leaf == leaves_.end() || isBehindAll) {
    Leaf last;
    last.files.push_back(std::move(file));
    leaves_.push_back(std::move(last));
  } else {
    if (isFull) {
      split(leaf);
      leaf = leafFor(file.name);
    }
    leaf->files.insert(placeIn(leaf->files, file.name), std::move(file));
  }
  ++count_;
}

void CardFiles::split(std::vector<Leaf>::iterator leaf) {
  const auto place = leaf - leaves_.begin();
  Leaf upper;
  upper.files.reserve(kLargestLeaf);
  leaves_.reserve(leaves_.size() + 1);
  std::vector<CardFile>& lower = leaves_[static_cast<std::size_t>(place)].files;
  std::move(lower.begin() + kLargestLeaf / 2, lower.end(), std::back_inserter(upper.files));
  lower.resize(kLargestLeaf / 2);
  leaves_.insert(leaves_.begin() + place + 1, std::move(upper));
}

void CardFiles::remove(std::string_view name) {
  const CardFile* file = find(name);
  if (file == nullptr) return;
  const auto leaf = leafFor(name);
  index(*leaf);
  leaf->files.erase(leaf->files.begin() + (file - leaf->files.data()));
  if (leaf->files.empty()) leaves_.erase(leaf);
  --count_;
}

bool CardFiles::append(std::shared_ptr<const CachedBlock> block) {
  if (!block || block->files().empty()) return false;
  if (!leaves_.empty()) {
    const Leaf& last = leaves_.back();
    const std::string_view lastName =
        last.isMade() ? std::string_view(last.files.back().name) : last.block->nameOf(*last.block->files().back());
    if (lastName >= block->nameOf(*block->files().front())) return false;
  }
  count_ += block->files().size();
  leaves_.push_back({std::move(block), {}});
  ++blockCount_;
  ++unmadeCount_;
  return true;
}

// To look through the blocks takes a while: where it is done often, all their cards are better made.
StoredCardPointer CardFiles::findCard(const CardOutline& id) {
  constexpr std::size_t kOften = 256;
  if (const auto found = byId_.find(id); found != byId_.end()) return *found;
  if (blockCount_ == 0) return nullptr;
  const bool isOften = ++scanCount_ > kOften;
  if (isOften) makeAll();
  const std::uint64_t hash = CachedBlock::idHash(id);
  for (Leaf& leaf : leaves_) {
    if (leaf.block && (isOften || leaf.block->mayHave(hash))) index(leaf);
  }
  const auto found = byId_.find(id);
  return found == byId_.end() ? nullptr : *found;
}

bool CardFiles::addCard(const StoredCardPointer& card) {
  return (blockCount_ == 0 || !findCard(*card)) && byId_.insert(card).second;
}

void CardFiles::removeCard(const StoredCardPointer& card) {
  if (findCard(*card) == card) byId_.erase(card);
}

void CardFiles::indexAgain() {
  byId_.clear();
  for (const Leaf& leaf : leaves_) {
    if (leaf.block) continue;
    for (const CardFile& file : leaf.files) byId_.insert(file.cards.begin(), file.cards.end());
  }
}

}  // namespace contacts
