#include "platform/contacts/database.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/log.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

namespace contacts {
namespace {

constexpr char kMe[] = "me";
constexpr char kProperties[] = "properties";

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

std::string Database::fullText(const StoredCard& card) const {
  const std::scoped_lock guard(lock_);
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, card.fileName);
  if (!contents) return card.text;
  const std::string text = vcard::decodeFile(std::move(contents->bytes));
  std::size_t position = 0;
  for (const vcard::Section& section : vcard::splitSections(text)) {
    if (section.isCard && position++ == card.position) return std::string(section.text);
  }
  return card.text;
}

std::vector<CardChange> Database::refresh(const std::set<std::string>* names) {
  const std::scoped_lock guard(lock_);
  if (folder_.follow(Folder::Missing::kKeep)) names = nullptr;
  recover();
  // Another process's save is seen as a whole.
  const FolderLock reading(folder_, FolderLock::Kind::kRead);
  return readFiles(names);
}

std::vector<CardChange> Database::readFiles(const std::set<std::string>* names) {
  std::vector<FoundFile> found;
  std::set<std::string> all;
  if (names == nullptr) {
    all = fileNames();
    for (const auto& [name, file] : files_) all.insert(name);
    names = &all;
  }
  for (const std::string& name : *names) {
    if (!isCardFileName(name)) continue;
    if (std::optional<FoundFile> file = look(name)) found.push_back(*std::move(file));
  }
  readMe();
  adoptPropertyFile(propertyText());
  return adopt(std::move(found));
}

void Database::refreshProperties() {
  const std::scoped_lock guard(lock_);
  recover();
  adoptPropertyFile(propertyText());
}

// Finishes a save that ended in the middle. Where that can't be done, what it asks for is read beside the files.
void Database::recover() {
  overlay_.clear();
  std::optional<std::vector<JournalStep>> steps;
  try {
    steps = pendingJournal(folder_);
    if (!steps) return;
    const FolderLock writing(folder_, FolderLock::Kind::kWrite);
    steps = pendingJournal(folder_);
    if (steps) applyJournal(folder_, *steps);
  } catch (const FileError& error) {
    if (logged_.insert(error.what()).second) log(std::string("a save can't be finished: ") + error.what());
    if (steps) overlay(*steps);
  }
}

void Database::overlay(const std::vector<JournalStep>& steps) {
  for (const JournalStep& step : steps) {
    struct stat status {};
    const bool isDone = !step.temporary.empty() &&
                        fstatat(folder_.data(), step.temporary.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 &&
                        errno == ENOENT;
    if (!isDone) overlay_[{step.target, step.name}] = step.temporary;
  }
}

std::set<std::string> Database::fileNames() const {
  const std::vector<std::string> names = folder_.cardFileNames();
  std::set<std::string> present(names.begin(), names.end());
  for (const auto& [file, temporary] : overlay_) {
    if (file.first != JournalStep::Target::kCard) continue;
    if (temporary.empty()) {
      present.erase(file.second);
    } else {
      present.insert(file.second);
    }
  }
  return present;
}

std::optional<FileContents> Database::read(JournalStep::Target target, const std::string& name) const {
  if (auto over = overlay_.find({target, name}); over != overlay_.end()) {
    if (over->second.empty()) return std::nullopt;
    return readFile(folder_.data(), over->second);
  }
  const int folder = target == JournalStep::Target::kCard ? folder_.cards() : folder_.data();
  return folder < 0 ? std::nullopt : readFile(folder, name);
}

std::optional<FileStamp> Database::stamp(const std::string& name) const {
  auto over = overlay_.find({JournalStep::Target::kCard, name});
  if (over == overlay_.end()) return stampIn(folder_.cards(), name);
  return over->second.empty() ? std::nullopt : stampIn(folder_.data(), over->second);
}

std::optional<Database::FoundFile> Database::look(const std::string& name) {
  auto known = files_.find(name);
  if (known != files_.end() && stamp(name) == known->second.stamp) return std::nullopt;
  std::optional<FileContents> contents = read(JournalStep::Target::kCard, name);
  if (!contents) return FoundFile{name, true, {}, {}};
  if (known != files_.end() && contents->refusal.empty() && known->second.refusal.empty() &&
      contentHash(contents->bytes) == known->second.hash) {
    known->second.stamp = contents->stamp;
    return std::nullopt;
  }
  return parse(name, *std::move(contents));
}

Database::FoundFile Database::parse(const std::string& name, FileContents contents) {
  FoundFile found{name, false, {contents.stamp, contentHash(contents.bytes), std::move(contents.refusal), {}}, {}};
  if (found.file.refusal.empty()) {
    found.cards = cardsIn(vcard::decodeFile(std::move(contents.bytes)));
    if (found.cards.empty()) found.file.refusal = "is not a vCard";
  }
  const std::string& refusal = found.file.refusal;
  if (!refusal.empty() && logged_.insert(name + "\n" + refusal).second) {
    log(printable(name) + ": " + refusal + "; left alone");
  }
  return found;
}

// Cards keep their ids when they move from one file to another, whatever the order in which the files are looked at.
std::vector<CardChange> Database::adopt(std::vector<FoundFile> found) {
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
  for (FoundFile& file : found) {
    if (file.isGone) continue;
    for (StoredCard& card : file.cards) {
      card.database = this;
      card.fileName = file.name;
      card.fileTime = static_cast<double>(file.file.stamp.modified) * 1e-9;
      if (card.uid.empty() || byId_.contains(card.uniqueId())) {
        card.uid = derivedIdentifier(file.name + "/" + std::to_string(card.position));
      }
      const std::string id = card.uniqueId();
      StoredCardPointer before;
      if (auto known = gone.find(id); known != gone.end()) {
        before = std::move(known->second);
        gone.erase(known);
      }
      const bool isSame =
          before && before->hash == card.hash && before->fileName == card.fileName && before->position == card.position;
      StoredCardPointer after = isSame ? before : std::make_shared<const StoredCard>(std::move(card));
      if (!isSame) changes.push_back({before, after});
      byId_.emplace(id, after);
      file.file.cards.push_back(std::move(after));
    }
    files_.insert_or_assign(file.name, std::move(file.file));
  }
  for (const std::string& id : goneIds) {
    if (auto left = gone.find(id); left != gone.end()) changes.push_back({left->second, nullptr});
  }
  return changes;
}

void Database::log(const std::string& message) {
  const AutoreleasePool pool;
  NSLog("contacts folder: %@"_ns, makeString(printable(message)));
}

void Database::readMe() {
  const std::optional<FileContents> contents = read(JournalStep::Target::kData, kMe);
  me_ = contents ? std::string(vcard::trimmed(contents->bytes)) : std::string();
}

std::string Database::propertyText() const {
  const std::optional<FileContents> contents = read(JournalStep::Target::kData, kProperties);
  return contents ? contents->bytes : std::string();
}

}  // namespace contacts
