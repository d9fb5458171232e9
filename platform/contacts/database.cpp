#include "platform/contacts/database.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/log.h"

#include <algorithm>
#include <chrono>
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

}  // namespace

std::string StoredCard::fullText() const { return database == nullptr ? text : database->fullText(*this); }

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
  if (!contents) return card.text;
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
  return card.text;
} catch (const FileError&) {
  return card.text;
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
  std::vector<FoundFile> found;
  const CardCache cache = files_.empty() && names == nullptr ? CardCache(folder_) : CardCache();
  auto lookAt = [&](const std::string& name) {
    if (std::optional<FoundFile> file = look(name, cache)) found.push_back(*std::move(file));
  };
  if (names == nullptr) {
    const std::vector<std::string> all = namesToLookAt();
    if (files_.empty()) found.reserve(all.size());
    std::ranges::for_each(all, lookAt);
  } else {
    for (const std::string& name : *names) {
      if (isCardFileName(name)) lookAt(name);
    }
  }
  readData();
  const auto readCount = std::ranges::count_if(
      found, [](const FoundFile& file) { return file.file.isSettled && !file.isCached && !file.isGone; });
  std::vector<CardChange> changes = adopt(std::move(found));
  if (isWorthKeeping(static_cast<std::size_t>(readCount), files_.size()) && folder_.data() >= 0 && overlay_.empty()) {
    writeCardCache(folder_, files_);
  }
  return changes;
}

// Of the files that are there, and of those that were.
std::vector<std::string> Database::namesToLookAt() const {
  std::vector<std::string> present = fileNames();
  if (files_.empty()) return present;
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

std::optional<Database::FoundFile> Database::look(const std::string& name, const CardCache& cache) {
  auto known = files_.find(name);
  const bool isKnown = known != files_.end();
  if (!cache.isEmpty()) {
    FoundFile found{name, false, true, {}, {}};
    const std::optional<FileStamp> present = stamp(name);
    if (present && cache.find(name, *present, found.file, found.cards)) return found;
  }
  if (isKnown && known->second.isSettled && stamp(name) == known->second.stamp) return std::nullopt;
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, name);
  if (!contents) return isKnown ? std::optional(FoundFile{name, true, false, {}, {}}) : std::nullopt;
  if (isKnown && known->second.refusal.empty()) {
    if (contents->error != 0) {
      logOnce(name + ": " + contents->refusal + "; what it had before is kept");
      return std::nullopt;
    }
    if (contents->refusal.empty() && contentHash(contents->bytes) == known->second.hash) {
      known->second.stamp = contents->stamp;
      known->second.isSettled = contents->isSettled;
      return std::nullopt;
    }
  }
  return parse(name, *std::move(contents));
}

Database::FoundFile Database::parse(const std::string& name, FileContents contents) {
  FoundFile found{name, false, false, {}, {}};
  found.file = {contents.stamp, contents.isSettled, contentHash(contents.bytes), std::move(contents.refusal), {}};
  if (found.file.refusal.empty()) {
    // Text that is decoded to itself, as nearly every file's.
    const bool isAsWritten = contents.bytes.starts_with("BEGIN");
    found.cards = cardsIn(vcard::decodeFile(std::move(contents.bytes)),
                          isAsWritten ? std::optional(found.file.hash) : std::nullopt);
    if (found.cards.empty()) found.file.refusal = "is not a vCard";
  }
  if (!found.file.refusal.empty()) logOnce(name + ": " + found.file.refusal + "; left alone");
  return found;
}

// Cards keep their ids when they move from one file to another, whatever the order in which the files are looked at.
std::vector<CardChange> Database::adopt(std::vector<FoundFile> found) {
  isBehind_ = true;
  std::unordered_map<std::string, StoredCardPointer> gone;
  std::vector<std::string> goneIds;
  for (const FoundFile& file : found) {
    auto known = files_.find(file.name);
    if (known == files_.end()) continue;
    for (const StoredCardPointer& card : known->second.cards) {
      byId_.erase(card->uniqueId());
      goneIds.push_back(card->uniqueId());
      gone.emplace(goneIds.back(), card);
    }
    files_.erase(known);
  }

  std::vector<CardChange> changes;
  byId_.reserve(byId_.size() + found.size());
  for (FoundFile& file : found) {
    if (file.isGone) continue;
    for (const std::shared_ptr<StoredCard>& card : file.cards) {
      card->database = this;
      card->fileName = file.name;
      card->fileTime = static_cast<double>(file.file.stamp.modified) * 1e-9;
      std::string id = card->uniqueId();
      if (card->uid.empty() || byId_.contains(id)) {
        card->uid = derivedIdentifier(file.name + "/" + std::to_string(card->position));
        card->hasDerivedUid = true;
        id = card->uniqueId();
      }
      StoredCardPointer before;
      if (auto known = gone.find(id); known != gone.end()) {
        before = std::move(known->second);
        gone.erase(known);
      }
      const bool isSame = before && before->hash == card->hash && before->fileName == card->fileName &&
                          before->position == card->position;
      StoredCardPointer after = isSame ? before : card;
      if (!isSame) changes.push_back({before, after});
      byId_.emplace(std::move(id), after);
      file.file.cards.push_back(std::move(after));
    }
    files_.insert_or_assign(files_.end(), file.name, std::move(file.file));
  }
  for (const std::string& id : goneIds) {
    if (auto left = gone.find(id); left != gone.end()) changes.push_back({left->second, nullptr});
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
