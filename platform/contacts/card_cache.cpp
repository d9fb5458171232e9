#include "platform/contacts/card_cache.h"

#include "platform/contacts/folder.h"
#include "platform/contacts/journal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

// The file: kForm, and blocks: the sizes and hashes of a block's two parts, what is said of the files (cached_block.h),
// and their cards' texts. Numbers have their size and order in memory, which is the same in all builds.
namespace contacts {
namespace {

constexpr char kCacheFile[] = "cache";
// To be changed with whatever a stored card is made of.
constexpr std::string_view kForm = "contacts cache 9\n";
constexpr std::int64_t kLargestCache = std::int64_t{512} << 20;
// A block has this at most, but for its last file.
constexpr std::size_t kBlockSize = std::size_t{1} << 20;

template <class Values>
std::string_view bytesOf(const Values& values) {
  return {reinterpret_cast<const char*>(std::data(values)), std::size(values) * sizeof *std::data(values)};
}

TextStretch append(std::string& all, std::string_view text) {
  const auto begin = static_cast<std::uint32_t>(all.size());
  all += text;
  return {begin, static_cast<std::uint32_t>(text.size())};
}

// A block under way.
struct BlockWriter {
  // Nothing is added of a file with a text that the cache before doesn't have any more.
  void add(const CardFile& file) {
    std::vector<SharedText> cardTexts;
    for (const StoredCardPointer& card : file.cards) {
      std::optional<SharedText> text = card->kept.read();
      if (!text) return;
      cardTexts.push_back(*std::move(text));
    }
    files.push_back({file.stamp, file.hash, append(names, file.name), static_cast<std::uint32_t>(cards.size()),
                     static_cast<std::uint32_t>(file.cards.size())});
    for (std::size_t i = 0; i < file.cards.size(); ++i) {
      const StoredCard& card = *file.cards[i];
      cards.push_back({card.hash, append(names, card.uid), append(texts, cardTexts[i].view()), card.kept.name(),
                       card.isGroup, 0, *card.digest});
    }
  }

  [[nodiscard]] bool isFull() const {
    return files.size() == CachedBlock::kMostFiles || bytesOf(cards).size() + texts.size() > kBlockSize;
  }

  [[nodiscard]] std::string finished() const {
    const std::array start{
        CachedBlock::Start{static_cast<std::uint32_t>(files.size()), static_cast<std::uint32_t>(cards.size())}};
    std::string said;
    for (const std::string_view part : {bytesOf(start), bytesOf(files), bytesOf(cards)}) said += part;
    said += names;
    const std::array<std::uint64_t, 4> head{said.size(), contentHash(said), texts.size(), contentHash(texts)};
    return std::string(bytesOf(head)) + said + texts;
  }

  std::vector<CachedBlock::FileRecord> files;
  std::vector<CachedBlock::CardRecord> cards;
  std::string names;
  std::string texts;
};

// Which cards have a derived UID depends on the other files.
bool canBeKept(const CardFile& file) {
  return file.isSettled && !file.cards.empty() &&
         std::ranges::none_of(file.cards, [](const StoredCardPointer& card) { return card->hasDerivedUid; });
}

}  // namespace

CardCache::CardCache(const Folder& folder) {
  if (folder.data() < 0) return;
  constexpr int kFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  FileDescriptor file(again([&] { return openat(folder.data(), kCacheFile, kFlags); }));
  std::array<char, kForm.size()> form{};
  if (!file.isOpen() || !readAt(file, 0, form) || std::string_view(form.data(), form.size()) != kForm) return;
  struct stat status {};
  if (fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > kLargestCache) return;
  std::array<std::uint64_t, 4> head{};
  const std::span<char> headBytes(reinterpret_cast<char*>(head.data()), sizeof head);
  for (std::int64_t place = form.size(); readAt(file, place, headBytes);) {
    place += sizeof head;
    const Block block{{head[0], head[1]}, {head[2], head[3]}, place};
    if (place > status.st_size) break;  // it has grown meanwhile
    const auto rest = static_cast<std::uint64_t>(status.st_size - place);
    if (block.files.size == 0 || block.files.size > rest || block.texts.size > rest - block.files.size) break;
    blocks_.push_back(block);
    place += static_cast<std::int64_t>(block.files.size + block.texts.size);
  }
  file_ = std::make_shared<const FileDescriptor>(std::move(file));
}

std::unique_ptr<CachedBlock> CardCache::read(std::size_t block) const {
  const auto& [files, texts, place] = blocks_[block];
  const auto size = static_cast<std::size_t>(files.size);
  const auto textsSize = static_cast<std::size_t>(texts.size);
  auto said = std::make_unique_for_overwrite<std::byte[]>(size);
  const std::span bytes(reinterpret_cast<char*>(said.get()), size);
  if (!readAt(*file_, place, bytes) || contentHash({bytes.data(), size}) != files.hash) return nullptr;
  auto unread =
      std::make_shared<const UnreadTexts>(file_, place + static_cast<std::int64_t>(size), textsSize, texts.hash);
  return CachedBlock::read(std::move(said), size, std::move(unread), textsSize);
}

void writeCardCache(const Folder& folder, CardFiles& files) try {
  const std::string temporary = newTemporaryName();
  NewFile cache(folder.data(), temporary, 0600);
  cache.add(kForm);
  std::size_t size = kForm.size();
  BlockWriter block;
  const auto isTooLarge = [&size] { return size > static_cast<std::size_t>(kLargestCache); };
  const auto finish = [&] {
    const std::string finished = std::exchange(block, {}).finished();
    size += finished.size();
    if (!isTooLarge()) cache.add(finished);
  };
  files.forEach([&](const CardFile& file) {
    if (isTooLarge()) return;
    if (canBeKept(file)) block.add(file);
    if (block.isFull()) finish();
  });
  if (!block.files.empty()) finish();
  if (isTooLarge()) return;
  // Not synced: what a power failure damages is seen to be.
  renameFile(folder.data(), temporary, folder.data(), kCacheFile);
  cache.keep();
} catch (const std::exception&) {
}

void removeCardCache(const Folder& folder) {
  if (folder.data() >= 0) removeFileQuietly(folder.data(), kCacheFile);
}

}  // namespace contacts
