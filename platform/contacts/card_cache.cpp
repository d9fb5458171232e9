#include "platform/contacts/card_cache.h"

#include "platform/contacts/folder.h"
#include "platform/contacts/journal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

// The file: kForm, and blocks of files: the sizes and hashes of its two parts, what is said of the files, and their
// cards' texts. Numbers have their size and order in memory, which is the same in all builds; each text follows its
// length.
namespace contacts {
namespace {

constexpr char kCacheFile[] = "cache";
// To be changed with whatever a stored card is made of.
constexpr std::string_view kForm = "contacts cache 8\n";
constexpr std::int64_t kLargestCache = std::int64_t{512} << 20;
// A block has this at most, but for its last file.
constexpr std::size_t kBlockSize = std::size_t{1} << 20;
constexpr std::size_t kBlockHead = 4 * sizeof(std::uint64_t);

template <class Value>
concept Plain =
    std::is_trivially_copyable_v<Value> && !std::is_pointer_v<Value> && !std::same_as<Value, std::string_view>;

class Writer {
 public:
  template <Plain Value>
  void add(const Value& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void addText(std::string_view text) {
    add(static_cast<std::uint32_t>(text.size()));
    bytes += text;
  }

  std::string bytes;
};

// Bytes that end too early read as zeros.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  std::string_view take(std::size_t length) {
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  template <Plain Value>
  Value number() {
    if (rest_.size() < sizeof(Value)) {
      rest_ = {};
      return {};
    }
    Value value;
    std::memcpy(&value, take(sizeof value).data(), sizeof value);
    return value;
  }
  std::string_view text() { return take(number<std::uint32_t>()); }
  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }

 private:
  std::string_view rest_;
};

// A block under way.
struct BlockWriter {
  // Nothing is added of a file with a text that the cache before doesn't have any more.
  void add(const std::string& name, const CardFile& file) {
    Writer cards;
    std::string cardTexts;
    for (const StoredCardPointer& card : file.cards) {
      const std::optional<SharedText> text = card->kept.read();
      if (!text) return;
      cards.addText(card->uid);
      cards.add(card->hash);
      cards.add(card->digest);
      cards.add(static_cast<std::uint8_t>(card->isGroup));
      cards.add(static_cast<std::uint32_t>(text->view().size()));
      cards.add(card->kept.name());
      cardTexts += text->view();
    }
    files.addText(name);
    files.add(file.stamp);
    files.add(file.hash);
    files.add(static_cast<std::uint32_t>(file.cards.size()));
    files.bytes += cards.bytes;
    texts += cardTexts;
    ++fileCount;
    cardCount += static_cast<std::uint32_t>(file.cards.size());
  }

  [[nodiscard]] bool isFull() const {
    return fileCount == CardCache::kBlockFiles || files.bytes.size() + texts.size() > kBlockSize;
  }

  [[nodiscard]] std::string finished() const {
    Writer said;
    said.add(fileCount);
    said.add(cardCount);
    said.bytes += files.bytes;
    Writer head;
    for (const std::string_view part : {std::string_view(said.bytes), std::string_view(texts)}) {
      head.add(std::uint64_t{part.size()});
      head.add(contentHash(part));
    }
    return head.bytes + said.bytes + texts;
  }

  Writer files;
  std::string texts;
  std::uint32_t fileCount = 0;
  std::uint32_t cardCount = 0;
};

// Which cards have a derived UID depends on the other files.
bool canBeKept(const CardFile& file) {
  return file.isSettled && file.refusal.empty() &&
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
  std::array<char, kBlockHead> head{};
  for (std::int64_t place = form.size(); readAt(file, place, head);) {
    Reader reader({head.data(), head.size()});
    place += kBlockHead;
    const Block block{reader.number<Stretch>(), reader.number<Stretch>(), place};
    if (place > status.st_size) break;  // it has grown meanwhile
    const auto rest = static_cast<std::uint64_t>(status.st_size - place);
    if (block.files.size == 0 || block.files.size > rest || block.texts.size > rest - block.files.size) break;
    blocks_.push_back(block);
    place += static_cast<std::int64_t>(block.files.size + block.texts.size);
  }
  file_ = std::make_shared<const FileDescriptor>(std::move(file));
}

void CardCache::read(std::size_t block, const Database& database, const AddFile& add) const {
  const auto& [said, texts, place] = blocks_[block];
  std::string bytes(static_cast<std::size_t>(said.size), '\0');
  if (!readAt(*file_, place, bytes) || contentHash(bytes) != said.hash) return;
  const auto unread = std::make_shared<const UnreadTexts>(file_, place + static_cast<std::int64_t>(said.size),
                                                          static_cast<std::size_t>(texts.size), texts.hash);
  Reader reader(bytes);
  const auto fileCount = reader.number<std::uint32_t>();
  const auto cardCount = reader.number<std::uint32_t>();
  if (cardCount > bytes.size() / sizeof(TextDigest)) return;
  // In one piece: most of them will be there as long as the process.
  auto cards = std::make_shared<std::vector<StoredCard>>(cardCount);
  auto card = cards->begin();
  std::uint64_t textsEnd = 0;
  for (std::uint32_t file = 0; file < fileCount && !reader.isAtEnd(); ++file) {
    std::string name(reader.text());
    CardFile contents;
    contents.stamp = reader.number<FileStamp>();
    contents.isSettled = true;
    contents.hash = reader.number<std::uint64_t>();
    const auto count = reader.number<std::uint32_t>();
    if (count > static_cast<std::size_t>(cards->end() - card)) return;
    for (std::size_t position = 0; position < count; ++position, ++card) {
      card->position = position;
      setPlace(*card, database, name, contents.stamp);
      card->uid = reader.text();
      card->hash = reader.number<std::uint64_t>();
      card->digest = reader.number<TextDigest>();
      card->isGroup = reader.number<std::uint8_t>() != 0;
      const TextStretch text{static_cast<std::uint32_t>(textsEnd), reader.number<std::uint32_t>()};
      const auto personName = reader.number<TextStretch>();
      textsEnd += text.size;
      const bool isInText = personName.begin <= text.size && personName.size <= text.size - personName.begin;
      if (textsEnd > texts.size || !isInText) return;
      card->kept = CardText(unread, text, personName);
      contents.cards.emplace_back(cards, &*card);
    }
    add(std::move(name), std::move(contents));
  }
}

void writeCardCache(const Folder& folder, const std::map<std::string, CardFile>& files) try {
  const std::string temporary = newTemporaryName();
  NewFile cache(folder.data(), temporary, 0600);
  cache.add(kForm);
  std::size_t size = kForm.size();
  for (auto file = files.begin(); file != files.end();) {
    BlockWriter block;
    for (; file != files.end() && !block.isFull(); ++file) {
      if (canBeKept(file->second)) block.add(file->first, file->second);
    }
    const std::string finished = block.finished();
    size += finished.size();
    if (size > static_cast<std::size_t>(kLargestCache)) return;
    cache.add(finished);
  }
  // Not synced: what a power failure damages is seen to be.
  renameFile(folder.data(), temporary, folder.data(), kCacheFile);
  cache.keep();
} catch (const std::exception&) {
}

void removeCardCache(const Folder& folder) {
  if (folder.data() >= 0) removeFileQuietly(folder.data(), kCacheFile);
}

}  // namespace contacts
