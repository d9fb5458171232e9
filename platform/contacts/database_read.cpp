#include "platform/contacts/database.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/parallel.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"

#include <algorithm>
#include <iterator>
#include <utility>

// What is found in the folder, and what became of the cards since.
namespace contacts {
namespace {

// Whether so many files that had to be read are reason to write a new cache.
bool isWorthKeeping(std::size_t read, std::size_t all) {
  constexpr std::size_t kWorthwhile = 500;
  constexpr std::size_t kPart = 8;
  return read >= kWorthwhile && read >= all / kPart;
}

// For a card without a UID, or with another one's. What comes behind the place makes it another id.
void deriveUid(StoredCard& card, std::string_view behind = {}) {
  card.uid = derivedIdentifier((card.fileName + "/" + std::to_string(card.position)).append(behind));
  card.hasDerivedUid = true;
}

// A line takes a hundred bytes of memory when it is read: one file could take more than 32 bits can count.
bool hasTooManyLines(std::string_view text) {
  constexpr std::ptrdiff_t kMost = 1'000'000;
  if (text.size() < static_cast<std::size_t>(kMost)) return false;
  return std::ranges::any_of(vcard::splitSections(text), [](const vcard::Section& section) {
    return section.isCard && std::ranges::count_if(section.text, [](char c) { return c == '\n' || c == '\r'; }) > kMost;
  });
}

std::vector<std::string> cardFilesOf(const std::set<std::string>& names) {
  std::vector<std::string> files;
  std::ranges::copy_if(names, std::back_inserter(files), [](const std::string& name) { return isCardFileName(name); });
  return files;
}

}  // namespace

std::vector<CardChange> Database::readFiles(const std::set<std::string>* names) {
  if (isBehind_) {
    byId_.clear();
    for (const auto& [name, file] : files_) byId_.insert(file.cards.begin(), file.cards.end());
  }
  readData();
  const bool isFirst = isNew_ && files_.empty() && overlay_.empty();
  std::vector<FoundFile> found =
      isFirst ? lookWithCache() : lookAt(names == nullptr ? namesToLookAt() : cardFilesOf(*names));
  const auto readCount = std::ranges::count_if(
      found, [](FoundFile& file) { return file.state == FoundFile::State::kRead && file.contents().isSettled; });
  std::vector<CardChange> changes = adopt(std::move(found));
  isNew_ = false;
  if (isWorthKeeping(static_cast<std::size_t>(readCount), files_.size()) && folder_.data() >= 0 && overlay_.empty()) {
    writeCardCache(folder_, files_);
  }
  return changes;
}

// Of the files that are there, and of those that were.
std::vector<std::string> Database::namesToLookAt() const {
  const std::vector<std::string> present = fileNames();
  std::vector<std::string> known;
  for (const auto& [name, file] : files_) known.push_back(name);
  std::vector<std::string> names;
  std::ranges::set_union(present, known, std::back_inserter(names));
  return names;
}

Database::FoundFile::FoundFile(State found, Files::node_type foundFile) : state(found), file(std::move(foundFile)) {}

Database::FoundFile::FoundFile(State found, std::string name, CardFile contents) : state(found) {
  Files one;
  one.try_emplace(std::move(name), std::move(contents));
  file = one.extract(one.begin());
}

std::vector<Database::FoundFile> Database::lookAt(std::vector<std::string> names) {
  constexpr std::size_t kStretch = 32;
  std::vector<FoundFile> found(names.size());
  ParallelWork stretches((names.size() + kStretch - 1) / kStretch, [&](std::size_t stretch) {
    const FileDescriptor own = folder_.ownCards();
    const int folder = own.isOpen() ? own.number() : folder_.cards();
    const std::size_t end = std::min(names.size(), (stretch + 1) * kStretch);
    for (std::size_t i = stretch * kStretch; i < end; ++i) found[i] = look(std::move(names[i]), folder);
  });
  stretches.finish();
  std::erase_if(found, [this](FoundFile& file) {
    if (file.state != FoundFile::State::kSame) return false;
    if (file.file) logOnce(file.name() + ": " + file.contents().refusal + "; what it had before is kept");
    return true;
  });
  return found;
}

Database::FoundFile Database::look(std::string name, int folder) {
  using State = FoundFile::State;
  auto known = files_.find(name);
  const bool isKnown = known != files_.end();
  if (isKnown && known->second.isSettled && stamp(name, folder) == known->second.stamp) return {};
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, name, folder);
  if (!contents) return isKnown ? FoundFile(State::kGone, std::move(name)) : FoundFile();
  if (isKnown && known->second.refusal.empty()) {
    if (contents->error != 0) {
      FoundFile kept(State::kSame, std::move(name));
      kept.contents().refusal = std::move(contents->refusal);
      return kept;
    }
    if (contents->refusal.empty() && contentHash(contents->bytes) == known->second.hash) {
      known->second.stamp = contents->stamp;
      known->second.isSettled = contents->isSettled;
      return {};
    }
  }
  return parse(std::move(name), *std::move(contents));
}

Database::FoundFile Database::parse(std::string name, FileContents contents) const {
  FoundFile found(FoundFile::State::kRead, std::move(name));
  CardFile& file = found.contents();
  file = {contents.stamp, contents.isSettled, contentHash(contents.bytes), std::move(contents.refusal), {}};
  if (!file.refusal.empty()) return found;
  // Text that is decoded to itself, as nearly every file's.
  const bool isAsWritten = contents.bytes.starts_with("BEGIN");
  const std::string text = vcard::decodeFile(std::move(contents.bytes));
  if (hasTooManyLines(text)) {
    file.refusal = "has a card of more than a million lines";
    return found;
  }
  addCards(found, cardsIn(text, isAsWritten ? std::optional(file.hash) : std::nullopt));
  if (file.cards.empty()) file.refusal = "is not a vCard";
  return found;
}

// The file's cards.
void Database::addCards(FoundFile& found, NewCards cards) const {
  CardFile& file = found.contents();
  file.cards.reserve(cards.size());
  for (std::shared_ptr<StoredCard>& card : cards) {
    setPlace(*card, *this, found.name(), file.stamp);
    if (card->uid.empty()) deriveUid(*card);
    file.cards.push_back(std::move(card));
  }
}

// Cards keep their ids when they move from one file to another, whatever the order in which the files are looked at.
std::vector<CardChange> Database::adopt(std::vector<FoundFile> found) {
  isBehind_ = true;
  std::vector<StoredCardPointer> known;
  for (const FoundFile& file : found) {
    auto before = files_.find(file.name());
    if (before == files_.end()) continue;
    known.insert(known.end(), before->second.cards.begin(), before->second.cards.end());
    files_.erase(before);
  }
  for (const StoredCardPointer& card : known) byId_.erase(card);
  CardSet gone(known.begin(), known.end());

  std::vector<CardChange> changes;
  changes.reserve(found.size());
  byId_.reserve(byId_.size() + found.size());
  for (FoundFile& file : found) {
    if (file.state == FoundFile::State::kGone) continue;
    if (!file.contents().refusal.empty()) logOnce(file.name() + ": " + file.contents().refusal + "; left alone");
    for (StoredCardPointer& card : file.contents().cards) {
      for (std::string behind; !byId_.insert(card).second; behind += '/') {
        auto other = std::make_shared<StoredCard>(*card);
        deriveUid(*other, behind);
        card = std::move(other);
      }
      StoredCardPointer before;
      if (auto same = gone.find(card); same != gone.end()) before = std::move(gone.extract(same).value());
      const bool isSame = before && before->hash == card->hash && before->fileName == card->fileName &&
                          before->position == card->position;
      if (isSame) {
        byId_.erase(card);
        byId_.insert(before);
        card = std::move(before);
      } else {
        changes.push_back({std::move(before), card});
      }
    }
    files_.insert(files_.end(), std::move(file.file));
  }
  for (const StoredCardPointer& card : known) {
    if (gone.contains(card)) changes.push_back({card, nullptr});
  }
  isBehind_ = false;
  return changes;
}

}  // namespace contacts
