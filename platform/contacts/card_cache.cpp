#include "platform/contacts/card_cache.h"

#include "platform/contacts/folder.h"
#include "platform/contacts/journal.h"

#include <unistd.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

// The file: kForm and one entry a card file, sorted by name: the hash of what follows, the name, and what was read.
// Numbers have their size and order in memory, which is the same in all builds; each text follows its length.
namespace contacts {
namespace {

constexpr char kCacheFile[] = "cache";
// To be changed with whatever a stored card is made of.
constexpr std::string_view kForm = "contacts cache 6\n";
constexpr std::int64_t kLargestCache = std::int64_t{512} << 20;

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

  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }
  [[nodiscard]] std::string_view rest() const { return rest_; }
  std::string_view take(std::size_t length) {
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  template <Plain Value>
  Value number() {
    Value value{};
    const std::string_view taken = take(sizeof value);
    std::memcpy(&value, taken.data(), taken.size());
    return value;
  }
  std::string_view text() { return take(number<std::uint32_t>()); }

 private:
  std::string_view rest_;
};

void addCard(Writer& writer, const StoredCard& card) {
  writer.addText(card.uid);
  writer.addText(card.text.view());
  writer.add(card.hash);
  writer.add(card.digest);
  writer.add(static_cast<std::uint8_t>(card.isGroup));
}

// The text stays a part of all.
std::shared_ptr<StoredCard> readCard(Reader& reader, const SharedText& all, std::size_t position) {
  auto card = std::make_shared<StoredCard>();
  card->position = position;
  card->uid = reader.text();
  card->text = all.part(reader.text());
  card->hash = reader.number<std::uint64_t>();
  card->digest = reader.number<TextDigest>();
  card->isGroup = reader.number<std::uint8_t>() != 0;
  return card;
}

// Which cards have a derived UID depends on the other files.
bool canBeKept(const CardFile& file) {
  return file.isSettled && file.refusal.empty() &&
         std::ranges::none_of(file.cards, [](const StoredCardPointer& card) { return card->hasDerivedUid; });
}

}  // namespace

bool hasCardCache(const Folder& folder) {
  return folder.data() >= 0 && faccessat(folder.data(), kCacheFile, R_OK, 0) == 0;
}

CardCache::CardCache(const Folder& folder) {
  if (!hasCardCache(folder)) return;
  std::optional<FileContents> contents = readFile(folder.data(), kCacheFile, kLargestCache);
  if (!contents || !contents->bytes.starts_with(kForm)) return;
  bytes_ = SharedText(std::move(contents->bytes));
  for (Reader reader(bytes_.view().substr(kForm.size())); !reader.isAtEnd();) {
    Entry entry{};
    entry.hash = reader.number<std::uint64_t>();
    const std::string_view rest = reader.rest();
    entry.name = reader.text();
    if (entry.name.empty()) break;  // zeros, as a power failure leaves them
    entry.contents = reader.text();
    entry.all = rest.substr(0, rest.size() - reader.rest().size());
    entries_.push_back(entry);
  }
}

bool CardCache::find(std::string_view name, const FileStamp& stamp, std::size_t& place, CardFile& file,
                     NewCards& cards) const {
  if (place >= entries_.size() || entries_[place].name != name) {
    place = static_cast<std::size_t>(std::ranges::lower_bound(entries_, name, {}, &Entry::name) - entries_.begin());
  }
  if (place == entries_.size() || entries_[place].name != name) return false;
  const Entry& entry = entries_[place++];
  Reader reader(entry.contents);
  if (reader.number<FileStamp>() != stamp || contentHash(entry.all) != entry.hash) return false;
  file.stamp = stamp;
  file.isSettled = true;
  file.hash = reader.number<std::uint64_t>();
  while (!reader.isAtEnd()) cards.push_back(readCard(reader, bytes_, cards.size()));
  return true;
}

void writeCardCache(const Folder& folder, const std::map<std::string, CardFile>& files) try {
  std::string cache(kForm);
  for (const auto& [name, file] : files) {
    if (!canBeKept(file)) continue;
    Writer contents;
    contents.add(file.stamp);
    contents.add(file.hash);
    for (const StoredCardPointer& card : file.cards) addCard(contents, *card);
    Writer entry;
    entry.addText(name);
    entry.addText(contents.bytes);
    Writer hash;
    hash.add(contentHash(entry.bytes));
    cache += hash.bytes + entry.bytes;
  }
  if (cache.size() > static_cast<std::size_t>(kLargestCache)) return;
  const std::string temporary = newTemporaryName();
  // Not durable: what a power failure damages is seen to be.
  writeNewFile(folder.data(), temporary, cache, 0600, Durability::kNone);
  renameFile(folder.data(), temporary, folder.data(), kCacheFile);
} catch (const std::exception&) {
}

}  // namespace contacts
