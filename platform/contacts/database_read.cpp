#include "platform/contacts/database.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/parallel.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/blocked_signals.h"

#include <algorithm>
#include <exception>
#include <future>
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

// Of use, but not needed.
CardCache cacheOf(const Folder& folder) try { return CardCache(folder); } catch (const std::exception&) {
  return {};
}

// A large cache takes about as long to read as the names.
std::future<CardCache> startReadingCache(const Folder& folder) {
  const auto policy = hasCardCache(folder) ? std::launch::async | std::launch::deferred : std::launch::deferred;
  const BlockedSignals blocked;
  return std::async(policy, [&folder] { return cacheOf(folder); });
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
  std::vector<FoundFile> found;
  if (names != nullptr) {
    found = lookAt(cardFilesOf(*names), CardCache());
  } else if (!files_.empty()) {
    found = lookAt(namesToLookAt(), CardCache());
  } else {
    std::future<CardCache> cache = startReadingCache(folder_);
    std::vector<std::string> all = fileNames();
    found = lookAt(std::move(all), cache.get());
  }
  readData();
  const auto readCount = std::ranges::count_if(
      found, [](const FoundFile& file) { return file.file.isSettled && file.state == FoundFile::State::kRead; });
  std::vector<CardChange> changes = adopt(std::move(found));
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

std::vector<Database::FoundFile> Database::lookAt(std::vector<std::string> names, const CardCache& cache) {
  std::vector<std::vector<FoundFile>> stretches(names.size() / kStretch + 1);
  inStretches(names.size(), [&](std::size_t begin, std::size_t end) {
    std::vector<FoundFile>& found = stretches[begin / kStretch];
    if (files_.empty()) found.reserve(end - begin);
    std::size_t place = begin;
    for (std::size_t i = begin; i < end; ++i) {
      FoundFile file = look(std::move(names[i]), cache, place);
      if (file.state != FoundFile::State::kSame || !file.file.refusal.empty()) found.push_back(std::move(file));
    }
  });
  std::vector<FoundFile> found;
  found.reserve(files_.empty() ? names.size() : 0);
  for (std::vector<FoundFile>& stretch : stretches) {
    for (FoundFile& file : stretch) {
      if (file.state != FoundFile::State::kSame) {
        found.push_back(std::move(file));
      } else {
        logOnce(file.name + ": " + file.file.refusal + "; what it had before is kept");
      }
    }
  }
  return found;
}

Database::FoundFile Database::look(std::string name, const CardCache& cache, std::size_t& place) {
  using State = FoundFile::State;
  auto known = files_.find(name);
  const bool isKnown = known != files_.end();
  if (!cache.isEmpty()) {
    FoundFile found{std::move(name), State::kCached, {}};
    NewCards cards;
    const std::optional<FileStamp> present = stamp(found.name);
    if (present && cache.find(found.name, *present, place, found.file, cards)) {
      addCards(found, std::move(cards));
      return found;
    }
    name = std::move(found.name);
  }
  if (isKnown && known->second.isSettled && stamp(name) == known->second.stamp) return {};
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, name);
  if (!contents) return {std::move(name), isKnown ? State::kGone : State::kSame, {}};
  if (isKnown && known->second.refusal.empty()) {
    if (contents->error != 0) {
      FoundFile kept{std::move(name), State::kSame, {}};
      kept.file.refusal = std::move(contents->refusal);
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
  FoundFile found{std::move(name), FoundFile::State::kRead, {}};
  found.file = {contents.stamp, contents.isSettled, contentHash(contents.bytes), std::move(contents.refusal), {}};
  if (!found.file.refusal.empty()) return found;
  // Text that is decoded to itself, as nearly every file's.
  const bool isAsWritten = contents.bytes.starts_with("BEGIN");
  const std::string text = vcard::decodeFile(std::move(contents.bytes));
  if (hasTooManyLines(text)) {
    found.file.refusal = "has a card of more than a million lines";
    return found;
  }
  addCards(found, cardsIn(text, isAsWritten ? std::optional(found.file.hash) : std::nullopt));
  if (found.file.cards.empty()) found.file.refusal = "is not a vCard";
  return found;
}

// The file's cards.
void Database::addCards(FoundFile& found, NewCards cards) const {
  found.file.cards.reserve(cards.size());
  for (std::shared_ptr<StoredCard>& card : cards) {
    card->database = this;
    card->fileName = found.name;
    card->fileTime = static_cast<double>(found.file.stamp.modified) * 1e-9;
    if (card->uid.empty()) deriveUid(*card);
    found.file.cards.push_back(std::move(card));
  }
}

// Cards keep their ids when they move from one file to another, whatever the order in which the files are looked at.
std::vector<CardChange> Database::adopt(std::vector<FoundFile> found) {
  isBehind_ = true;
  std::vector<StoredCardPointer> known;
  for (const FoundFile& file : found) {
    auto before = files_.find(file.name);
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
    if (!file.file.refusal.empty()) logOnce(file.name + ": " + file.file.refusal + "; left alone");
    for (StoredCardPointer& card : file.file.cards) {
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
    files_.insert_or_assign(files_.end(), std::move(file.name), std::move(file.file));
  }
  for (const StoredCardPointer& card : known) {
    if (gone.contains(card)) changes.push_back({card, nullptr});
  }
  isBehind_ = false;
  return changes;
}

}  // namespace contacts
