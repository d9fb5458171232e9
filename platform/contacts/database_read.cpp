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
void deriveUid(SingleCard& card, std::string_view behind = {}) {
  std::string place(card.fileName);
  place.append("/").append(std::to_string(card.position)).append(behind);
  card.setUid(derivedIdentifier(place));
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
  indexFiles();
  readData();
  const bool isFirst = isNew_ && files_.count() == 0 && overlay_.empty();
  std::vector<FoundFile> found =
      isFirst ? lookWithCache() : lookAt(names == nullptr ? namesToLookAt() : cardFilesOf(*names));
  const auto readCount = std::ranges::count_if(
      found, [](const FoundFile& each) { return each.state == FoundFile::State::kRead && each.file.isSettled; });
  std::vector<CardChange> changes = adopt(std::move(found));
  isNew_ = false;
  if (isWorthKeeping(static_cast<std::size_t>(readCount), files_.count()) && folder_.data() >= 0 && overlay_.empty()) {
    writeCardCache(folder_, files_);
  }
  return changes;
}

// Of the files that are there, and of those that were.
std::vector<std::string> Database::namesToLookAt() const {
  const std::vector<std::string> present = fileNames();
  std::vector<std::string> known;
  files_.forEachName([&known](std::string_view name) { known.emplace_back(name); });
  std::vector<std::string> names;
  std::ranges::set_union(present, known, std::back_inserter(names));
  return names;
}

std::vector<Database::FoundFile> Database::lookAt(std::vector<std::string> names) {
  constexpr std::size_t kStretch = 32;
  std::vector<FoundFile> found(names.size());
  files_.prepare(names);
  ParallelWork stretches((names.size() + kStretch - 1) / kStretch, [&](std::size_t stretch) {
    const FileDescriptor own = folder_.ownCards();
    const int folder = own.isOpen() ? own.number() : folder_.cards();
    const std::size_t end = std::min(names.size(), (stretch + 1) * kStretch);
    for (std::size_t i = stretch * kStretch; i < end; ++i) found[i] = look(std::move(names[i]), folder);
  });
  stretches.finish();
  std::erase_if(found, [this](const FoundFile& each) {
    if (each.state != FoundFile::State::kSame) return false;
    if (!each.refusal.empty()) logOnce(each.file.name + ": " + each.refusal + "; what it had before is kept");
    return true;
  });
  return found;
}

Database::FoundFile Database::look(std::string name, int folder) {
  using State = FoundFile::State;
  CardFile* known = files_.find(name);
  if (known != nullptr && known->isSettled && stamp(name, folder) == known->stamp) return {};
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, name, folder);
  if (!contents && known == nullptr) return {};
  if (!contents) return {State::kGone, {std::move(name)}};
  if (known != nullptr && !known->cards.empty()) {
    if (contents->error != 0) return {State::kSame, {std::move(name)}, std::move(contents->refusal)};
    if (contents->refusal.empty() && contentHash(contents->bytes) == known->hash) {
      known->stamp = contents->stamp;
      known->isSettled = contents->isSettled;
      return {};
    }
  }
  return parse(std::move(name), *std::move(contents));
}

Database::FoundFile Database::parse(std::string name, FileContents contents) const {
  FoundFile found{FoundFile::State::kRead, {std::move(name)}};
  CardFile& file = found.file;
  file.stamp = contents.stamp;
  file.isSettled = contents.isSettled;
  file.hash = contentHash(contents.bytes);
  found.refusal = std::move(contents.refusal);
  if (!found.refusal.empty()) return found;
  // Text that is decoded to itself, as nearly every file's.
  const bool isAsWritten = contents.bytes.starts_with("BEGIN");
  const std::string text = vcard::decodeFile(std::move(contents.bytes));
  if (hasTooManyLines(text)) {
    found.refusal = "has a card of more than a million lines";
    return found;
  }
  addCards(file, cardsIn(text, isAsWritten ? std::optional(file.hash) : std::nullopt));
  if (file.cards.empty()) found.refusal = "is not a vCard";
  return found;
}

void Database::addCards(CardFile& file, NewCards cards) const {
  file.cards.reserve(cards.size());
  for (std::shared_ptr<SingleCard>& card : cards) {
    card->database = this;
    card->setFileName(file.name);
    card->fileTime = timeOf(file.stamp);
    if (card->uid.empty()) deriveUid(*card);
    file.cards.push_back(std::move(card));
  }
}

// Cards keep their ids when they move from one file to another, whatever the order in which the files are looked at.
// Where memory is short in the middle, the next one takes it up, so that each change is told.
std::vector<CardChange> Database::adopt(std::vector<FoundFile> found) {
  isBehind_ = true;
  isIndexBehind_ = true;
  for (const FoundFile& each : found) {
    const CardFile* before = files_.find(each.file.name);
    if (before == nullptr) continue;
    known_.insert(known_.end(), before->cards.begin(), before->cards.end());
    for (const StoredCardPointer& card : before->cards) files_.removeCard(card);
  }
  CardSet gone(known_.rbegin(), known_.rend());  // each as it was last known
  for (const CardChange& change : changes_) {
    if (auto old = change.before ? gone.find(change.before) : gone.end(); old != gone.end() && *old == change.before) {
      gone.erase(old);
    }
  }

  for (auto& [state, file, refusal] : found) {
    if (state == FoundFile::State::kGone) {
      files_.remove(file.name);
      continue;
    }
    if (!refusal.empty()) logOnce(file.name + ": " + refusal + "; left alone");
    std::vector<CardChange> changes;
    for (StoredCardPointer& card : file.cards) {
      for (std::string behind; !files_.addCard(card); behind += '/') {
        auto other = std::make_shared<SingleCard>(*card);
        deriveUid(*other, behind);
        card = std::move(other);
      }
      StoredCardPointer before;
      if (auto same = gone.find(card); same != gone.end()) before = std::move(gone.extract(same).value());
      const bool isSame = before && before->hash == card->hash && before->fileName == card->fileName &&
                          before->position == card->position;
      if (isSame) {
        files_.removeCard(card);
        files_.addCard(before);
        card = std::move(before);
      } else {
        changes.push_back({std::move(before), card});
      }
    }
    const std::size_t count = changes_.size() + changes.size();
    if (count > changes_.capacity()) changes_.reserve(2 * count);
    files_.put(std::move(file));
    std::ranges::move(changes, std::back_inserter(changes_));
  }
  for (const StoredCardPointer& card : known_) {
    const auto old = gone.find(card);
    if (old == gone.end() || *old != card) continue;
    StoredCardPointer now = files_.findCard(*card);
    if (now != card) changes_.push_back({card, std::move(now)});
    gone.erase(old);
  }
  known_.clear();
  isBehind_ = false;
  isIndexBehind_ = false;
  return std::exchange(changes_, {});
}

}  // namespace contacts
