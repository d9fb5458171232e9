#include "platform/contacts/database.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/parallel.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/blocked_signals.h"
#include "platform/foundation/log.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <future>
#include <iterator>
#include <utility>

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

std::string StoredCard::fullText() const {
  return database == nullptr ? std::string(text.view()) : database->fullText(*this);
}

Database::Database(std::string path) : folder_(std::move(path)) {}

bool Database::isWritable() const {
  const std::scoped_lock guard(lock_);
  return folder_.isWritable();
}

std::vector<StoredCardPointer> Database::cards() const {
  const std::scoped_lock guard(lock_);
  std::vector<StoredCardPointer> cards;
  cards.reserve(byId_.size());
  for (const auto& [name, file] : files_) cards.insert(cards.end(), file.cards.begin(), file.cards.end());
  return cards;
}

std::string Database::me() const {
  const std::scoped_lock guard(lock_);
  return me_;
}

// The card itself, or what others have made of it meanwhile, but never another that has come to its place.
std::string Database::fullText(const StoredCard& card) const try {
  const std::scoped_lock guard(lock_);
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, card.fileName);
  if (!contents) return std::string(card.text.view());
  const std::string text = vcard::decodeFile(std::move(contents->bytes));
  std::vector<std::string_view> sections;
  for (const vcard::Section& section : vcard::splitSections(text)) {
    if (section.isCard) sections.push_back(section.text);
  }
  if (card.position < sections.size() && contentHash(sections[card.position]) == card.hash) {
    return std::string(sections[card.position]);
  }
  for (const auto& found : cardsIn(text)) {
    if (found->uniqueId() == card.uniqueId()) return std::string(sections[found->position]);
  }
  return std::string(card.text.view());
} catch (const FileError&) {
  return std::string(card.text.view());
}

std::vector<CardChange> Database::refresh(const std::set<std::string>* names) {
  const std::scoped_lock guard(lock_);
  const bool wasOverlaid = !overlay_.empty();
  if (folder_.follow()) names = nullptr;
  const FolderLock reading = settle();
  if (wasOverlaid || !overlay_.empty() || isBehind_) names = nullptr;
  std::vector<CardChange> changes = readFiles(names);
  changes.insert(changes.begin(), untold_.begin(), untold_.end());
  untold_.clear();
  return changes;
}

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

void Database::refreshProperties() {
  const std::scoped_lock guard(lock_);
  folder_.follow();
  const FolderLock reading = settle();
  readData();
}

// Finishes a save that ended in the middle, and keeps others from making one. Where it can't be finished, what it asks
// for is read beside the files.
FolderLock Database::settle() {
  constexpr std::chrono::seconds kPatience{1};
  overlay_.clear();
  try {
    if (pendingJournal(folder_)) {
      const FolderLock writing(folder_, FolderLock::Kind::kWrite, kPatience);
      finishPending();
    }
  } catch (const FileError& error) {
    logOnce(std::string("a save can't be finished: ") + error.what());
  }
  FolderLock reading(folder_, FolderLock::Kind::kRead, kPatience);
  try {
    if (const auto steps = pendingJournal(folder_)) overlay(*steps);
  } catch (const FileError& error) {
    logOnce(std::string("a save can't be finished: ") + error.what());
  }
  return reading;
}

void Database::finishPending() {
  if (const auto steps = pendingJournal(folder_)) applyJournal(folder_, *steps);
}

void Database::overlay(const std::vector<JournalStep>& steps) {
  for (const JournalStep& step : steps) {
    std::optional<JournalStep> left = step;
    try {
      left = remainder(folder_, step);
    } catch (const FileError&) {
      // What was asked for is the better guess.
    }
    if (left) overlay_[{left->target, left->name}] = left->temporary;
  }
}

std::vector<std::string> Database::fileNames() const {
  std::vector<std::string> names = folder_.cardFileNames();
  for (const auto& [file, temporary] : overlay_) {
    if (file.first != JournalStep::Target::kCard) continue;
    auto place = std::ranges::lower_bound(names, file.second);
    const bool isListed = place != names.end() && *place == file.second;
    if (isListed && temporary.empty()) names.erase(place);
    if (!isListed && !temporary.empty()) names.insert(place, file.second);
  }
  return names;
}

std::optional<FileContents> Database::read(JournalStep::Target target, const std::string& name) const {
  if (auto over = overlay_.find({target, name}); over != overlay_.end()) {
    if (over->second.empty()) return std::nullopt;
    std::optional<FileContents> contents = readFile(folder_.data(), over->second);
    // It isn't there any more when another process was able to put it in its place.
    if (contents) return contents;
  }
  const int folder = target == JournalStep::Target::kCard ? folder_.cards() : folder_.data();
  return folder < 0 ? std::nullopt : readFile(folder, name);
}

std::optional<FileStamp> Database::stamp(const std::string& name) const {
  if (auto over = overlay_.find({JournalStep::Target::kCard, name}); over != overlay_.end()) {
    if (over->second.empty()) return std::nullopt;
    if (const auto stamp = stampIn(folder_.data(), over->second)) return stamp;
  }
  return folder_.cards() < 0 ? std::nullopt : stampIn(folder_.cards(), name);
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

void Database::log(const std::string& message) {
  const AutoreleasePool pool;
  NSLog("contacts folder: %@"_ns, makeString(printable(message)));
}

void Database::logOnce(const std::string& message) {
  if (logged_.insert(message).second) log(message);
}

// What can't be read now stays as it was.
void Database::readData() {
  if (const auto me = read(JournalStep::Target::kData, kOwnerFile); !me || me->error == 0) {
    me_ = me ? std::string(vcard::trimmed(me->bytes)) : std::string();
  }
  if (const auto file = read(JournalStep::Target::kData, kPropertyFile); !file || file->error == 0) {
    adoptPropertyFile(file ? file->bytes : std::string());
  }
}

}  // namespace contacts
