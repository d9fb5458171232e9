#include "platform/contacts/database.h"

#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/log.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace contacts {

SingleCard::SingleCard(const StoredCard& other) : SingleCard() {
  database = other.database;
  setFileName(std::string(other.fileName));
  position = other.position;
  fileTime = other.fileTime;
  setUid(std::string(other.uid));
  hasDerivedUid = other.hasDerivedUid;
  hash = other.hash;
  isGroup = other.isGroup;
  ownDigest = *other.digest;
  kept = other.kept;
}

void SingleCard::setFileName(std::string name) {
  ownFileName_ = std::move(name);
  fileName = ownFileName_;
}

void SingleCard::setUid(std::string text) {
  ownUid_ = std::move(text);
  uid = ownUid_;
}

std::string StoredCard::keptText() const {
  const std::optional<SharedText> text = kept.read();
  return text ? std::string(text->view()) : std::string();
}

SharedText StoredCard::text() const {
  std::optional<SharedText> text = kept.read();
  if (text) return *std::move(text);
  if (database != nullptr) database->noteDamagedCache();
  return SharedText(fullText());
}

std::string StoredCard::fullText() const { return database == nullptr ? keptText() : database->fullText(*this); }

Database::Database(std::string path) : folder_(std::move(path)) {}

bool Database::isWritable() const {
  const std::scoped_lock guard(lock_);
  return folder_.isWritable();
}

std::vector<StoredCardPointer> Database::cards() {
  const std::scoped_lock guard(lock_);
  indexFiles();
  std::vector<StoredCardPointer> cards;
  cards.reserve(files_.count());
  files_.forEach([&](const CardFile& file) { cards.insert(cards.end(), file.cards.begin(), file.cards.end()); });
  return present(std::move(cards));
}

std::vector<StoredCardPointer> Database::cardsThat(const std::function<bool(const CardOutline&)>& test) {
  const std::scoped_lock guard(lock_);
  indexFiles();
  return present(files_.cardsThat(test));
}

bool Database::hasAllCards() const {
  const std::scoped_lock guard(lock_);
  return files_.areMade();
}

StoredCardPointer Database::card(const CardOutline& id) {
  const std::scoped_lock guard(lock_);
  indexFiles();
  return files_.findCard(id);
}

void Database::indexFiles() {
  if (!isIndexBehind_) return;
  files_.indexAgain();
  isIndexBehind_ = false;
}

std::vector<StoredCardPointer> Database::present(std::vector<StoredCardPointer> cards) {
  if (isBehind_) std::erase_if(cards, [this](const StoredCardPointer& card) { return files_.findCard(*card) != card; });
  return cards;
}

StoredCardPointer Database::outcome(const CardChange& change) {
  const std::scoped_lock guard(lock_);
  if (isBehind_) return change.after;
  return files_.findCard(change.after ? *change.after : *change.before);
}

std::string Database::me() const {
  const std::scoped_lock guard(lock_);
  return me_;
}

// The card itself, or what others have made of it meanwhile, but never another that has come to its place.
std::string Database::fullText(const StoredCard& card) const try {
  const std::scoped_lock guard(lock_);
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, std::string(card.fileName));
  if (!contents) return card.keptText();
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
  return card.keptText();
} catch (const FileError&) {
  return card.keptText();
}

// Without it, who opens the folder next reads the files and writes another.
void Database::noteDamagedCache() const {
  const std::scoped_lock guard(lock_);
  if (!std::exchange(isCacheDamaged_, true)) removeCardCache(folder_);
}

std::vector<CardChange> Database::refresh(const std::set<std::string>* names) {
  const std::scoped_lock guard(lock_);
  const bool wasOverlaid = !overlay_.empty();
  if (folder_.follow()) names = nullptr;
  const FolderLock reading = settle();
  if (wasOverlaid || !overlay_.empty() || isBehind_ || isNew_) names = nullptr;
  std::vector<CardChange> changes = readFiles(names);
  if (untold_.empty()) return changes;
  untold_.insert(untold_.end(), changes.begin(), changes.end());
  return std::exchange(untold_, {});
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
  std::vector<std::string> names = folder_.cardFileNames().sorted();
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
  return read(target, name, target == JournalStep::Target::kCard ? folder_.cards() : folder_.data());
}

std::optional<FileContents> Database::read(JournalStep::Target target, const std::string& name, int folder) const {
  if (auto over = overlay_.find({target, name}); over != overlay_.end()) {
    if (over->second.empty()) return std::nullopt;
    std::optional<FileContents> contents = readFile(folder_.data(), over->second);
    // It isn't there any more when another process was able to put it in its place.
    if (contents) return contents;
  }
  return folder < 0 ? std::nullopt : readFile(folder, name);
}

std::optional<FileStamp> Database::stamp(const std::string& name, int folder) const {
  if (!overlay_.empty()) {
    auto over = overlay_.find({JournalStep::Target::kCard, name});
    if (over != overlay_.end() && over->second.empty()) return std::nullopt;
    if (over != overlay_.end()) {
      if (const auto stamp = stampIn(folder_.data(), over->second)) return stamp;
    }
  }
  return folder < 0 ? std::nullopt : stampIn(folder, name);
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
