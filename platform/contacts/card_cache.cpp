#include "platform/contacts/card_cache.h"

#include "platform/contacts/folder.h"
#include "platform/contacts/journal.h"

#include <algorithm>
#include <concepts>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

// The file: kForm, the hash of what follows, and one entry a card file, sorted by name. Numbers have their size and
// order in memory, which is the same in all builds; each text follows its length.
namespace contacts {
namespace {

constexpr char kCacheFile[] = "cache";
// To be changed with whatever a stored card is made of.
constexpr std::string_view kForm = "contacts cache 1\n";
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

// The hash has been checked: lengths are right.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }
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
  writer.addText(card.text);
  writer.add(card.hash);
  writer.add(card.digest);
  writer.add(card.isGroup);
}

std::shared_ptr<StoredCard> readCard(Reader& reader, std::size_t position) {
  auto card = std::make_shared<StoredCard>();
  card->position = position;
  card->uid = reader.text();
  card->text = reader.text();
  card->hash = reader.number<std::uint64_t>();
  card->digest = reader.number<TextDigest>();
  card->isGroup = reader.number<bool>();
  return card;
}

// Which cards have a derived UID depends on the other files.
bool canBeKept(const CardFile& file) {
  return file.isSettled && file.refusal.empty() &&
         std::ranges::none_of(file.cards, [](const StoredCardPointer& card) { return card->hasDerivedUid; });
}

}  // namespace

CardCache::CardCache(const Folder& folder) {
  if (folder.data() < 0) return;
  std::optional<FileContents> contents = readFile(folder.data(), kCacheFile, kLargestCache);
  if (!contents || !contents->bytes.starts_with(kForm)) return;
  bytes_ = std::move(contents->bytes);
  Reader reader(std::string_view(bytes_).substr(kForm.size()));
  const auto hash = reader.number<std::uint64_t>();
  const std::string_view all = reader.text();
  if (contentHash(all) != hash) return;
  for (Reader entries(all); !entries.isAtEnd();) {
    const std::string_view name = entries.text();
    entries_.push_back({name, entries.text()});
  }
}

bool CardCache::find(std::string_view name, const FileStamp& stamp, CardFile& file, NewCards& cards) const {
  const auto entry = std::ranges::lower_bound(entries_, name, {}, &Entry::name);
  if (entry == entries_.end() || entry->name != name) return false;
  Reader reader(entry->contents);
  if (reader.number<FileStamp>() != stamp) return false;
  file.stamp = stamp;
  file.isSettled = true;
  file.hash = reader.number<std::uint64_t>();
  while (!reader.isAtEnd()) cards.push_back(readCard(reader, cards.size()));
  return true;
}

void writeCardCache(const Folder& folder, const std::map<std::string, CardFile>& files) try {
  Writer all;
  Writer entry;
  for (const auto& [name, file] : files) {
    if (!canBeKept(file)) continue;
    entry.bytes.clear();
    entry.add(file.stamp);
    entry.add(file.hash);
    for (const StoredCardPointer& card : file.cards) addCard(entry, *card);
    all.addText(name);
    all.addText(entry.bytes);
  }
  if (all.bytes.size() > static_cast<std::size_t>(kLargestCache)) return;
  Writer cache;
  cache.bytes = kForm;
  cache.add(contentHash(all.bytes));
  cache.addText(all.bytes);
  const std::string temporary = newTemporaryName();
  // Not durable: one that a power failure damages is seen to be.
  writeNewFile(folder.data(), temporary, cache.bytes, 0600, Durability::kNone);
  renameFile(folder.data(), temporary, folder.data(), kCacheFile);
} catch (const FileError&) {
}

}  // namespace contacts
