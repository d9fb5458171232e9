#include "platform/contacts/database_save.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <set>
#include <utility>

namespace contacts {
namespace {

// The sections of a text that are cards, by their position among the cards.
std::vector<std::string_view> cardSections(std::string_view text) {
  std::vector<std::string_view> cards;
  for (const vcard::Section& section : vcard::splitSections(text)) {
    if (section.isCard) cards.push_back(section.text);
  }
  return cards;
}

}  // namespace

SaveResult Database::save(const SaveRequest& request) {
  const std::scoped_lock guard(lock_);
  return DatabaseSave(*this, request).run();
}

SaveResult DatabaseSave::run() {
  constexpr int kTries = 5;
  foreign_ = std::exchange(database_.untold_, {});
  try {
    for (int i = 0; i < kTries; ++i) {
      if (std::optional<SaveResult> result = saveOnce()) return *std::move(result);
    }
    throw FileError("the files keep changing", EBUSY);
  } catch (...) {
    database_.untold_ = std::move(foreign_);
    throw;
  }
}

// Nothing when programs that don't know of the lock have changed a file since it was read.
std::optional<SaveResult> DatabaseSave::saveOnce() {
  constexpr std::chrono::seconds kPatience{10};
  Folder& folder = database_.folder_;
  const bool isOther = folder.followOrMake();
  const FolderLock writing(folder, FolderLock::Kind::kWrite, kPatience);
  try {
    prepare(isOther);
    for (const CardUpdate& update : request_.updates) place(update);
    write();
    if (!isUndisturbed()) {
      dropTemporaries();
      return std::nullopt;
    }
    if (!steps_.empty()) commitJournal(folder, steps_);
  } catch (...) {
    dropTemporaries();
    throw;
  }
  return finish();
}

// Finishes what a save that ended in the middle left, and removes what one left that never came to its end.
void DatabaseSave::prepare(bool isOtherFolder) {
  plans_.clear();
  hasLookedEverywhere_ = false;
  Folder& folder = database_.folder_;
  database_.finishPending();
  const bool wasOverlaid = !database_.overlay_.empty();
  database_.overlay_.clear();
  if (isOtherFolder || wasOverlaid || database_.isBehind_) lookEverywhere();
  for (const std::string& name : namesIn(folder.data())) {
    if (isTemporaryName(name)) removeFileQuietly(folder.data(), name);
  }
}

void DatabaseSave::lookEverywhere() {
  hasLookedEverywhere_ = true;
  const std::vector<CardChange> changes = database_.readFiles(nullptr);
  foreign_.insert(foreign_.end(), changes.begin(), changes.end());
}

// Where others have moved the card, it is changed there; where they have removed it, a change makes it anew. A new one
// may be in the folder since a save that couldn't be taken over.
void DatabaseSave::place(const CardUpdate& update) {
  if (update.card->database != nullptr || database_.files_.findCard(*update.card)) {
    if (placeIn(*update.card, update)) return;
    if (!hasLookedEverywhere_) lookEverywhere();
    const StoredCardPointer found = database_.files_.findCard(*update.card);
    if (found && placeIn(*found, update)) return;
  }
  if (!update.isRemoval) plans_[freeName(std::string(update.card->uid))].added.push_back(&update);
}

// The update is of the card that was last read as known.
bool DatabaseSave::placeIn(const StoredCard& known, const CardUpdate& update) {
  Plan* plan = planFor(std::string(known.fileName));
  if (plan == nullptr) return false;
  auto found = plan->positions.find(known.uniqueId());
  std::size_t position = found == plan->positions.end() ? plan->cards.size() : found->second;
  // A card whose id is derived from its place has none that could be found.
  const bool isInPlace = known.position < plan->cards.size() &&
                         (plan->cards[known.position]->uid.empty() || plan->cards[known.position]->hash == known.hash);
  if (isInPlace) position = known.position;
  if (position == plan->cards.size()) return false;
  plan->byPosition[position] = &update;
  return true;
}

// Null for a file that is gone, or that is no card file any more.
DatabaseSave::Plan* DatabaseSave::planFor(const std::string& name) {
  auto known = plans_.find(name);
  if (known != plans_.end()) return &known->second;
  std::optional<FileContents> contents = database_.read(JournalStep::Target::kCard, name);
  if (contents && contents->error != 0) throw FileError("cannot read " + printable(name), contents->error);
  if (!contents || !contents->refusal.empty()) return nullptr;
  Plan& plan = plans_[name];
  plan.expected = FoundState{contents->stamp, contentHash(contents->bytes)};
  plan.mode = contents->mode & 0777;
  plan.text = vcard::decodeFile(std::move(contents->bytes));
  plan.cards = cardsIn(plan.text);
  for (const auto& card : plan.cards) plan.positions.emplace(card->uniqueId(), card->position);
  return &plan;
}

std::string DatabaseSave::freeName(const std::string& uid) const {
  std::string name = fileNameFor(uid);
  if (plans_.contains(name) || stampIn(database_.folder_.cards(), name)) name = newIdentifier() + ".vcf";
  return name;
}

std::string DatabaseSave::compose(const Plan& plan) {
  std::string text;
  std::size_t position = 0;
  for (const vcard::Section& section : vcard::splitSections(plan.text)) {
    auto update = plan.byPosition.end();
    if (section.isCard) update = plan.byPosition.find(position++);
    if (update == plan.byPosition.end()) {
      text += section.text;
    } else if (!update->second->isRemoval) {
      text += changedCard(section.text, update->second->changes);
    }
  }
  for (const CardUpdate* update : plan.added) {
    const std::optional<SharedText> kept = update->card->kept.read();
    if (!kept) throw FileError("cannot read " + printable(update->card->fileName), EIO);
    text += changedCard(kept->view(), update->changes);
  }
  return text;
}

// All new contents are durable before the journal is: a full disk shows here.
void DatabaseSave::write() {
  for (auto& [name, plan] : plans_) {
    if (plan.byPosition.empty() && plan.added.empty()) continue;
    plan.composed = compose(plan);
    addStep(JournalStep::Target::kCard, name, plan);
  }
  if (request_.me && *request_.me != vcard::trimmed(dataText(kOwnerFile))) {
    Plan plan;
    if (!request_.me->empty()) plan.composed = *request_.me + "\n";
    addStep(JournalStep::Target::kData, kOwnerFile, plan);
  }
  if (request_.properties.empty()) return;
  properties_ = editedPropertyFile(dataText(kPropertyFile), request_.properties);
  if (properties_.count > 0) {
    Plan plan;
    plan.composed = properties_.text;
    addStep(JournalStep::Target::kData, kPropertyFile, plan);
  }
}

// Of a file of the data folder. One that is no file to write over is a reason not to save.
std::string DatabaseSave::dataText(const std::string& name) const {
  std::optional<FileContents> contents = database_.read(JournalStep::Target::kData, name);
  if (!contents) return {};
  if (contents->error != 0) throw FileError("cannot read " + name, contents->error);
  if (!contents->refusal.empty() && contents->refusal != kEmptyFile) {
    throw FileError("cannot write .addressbook/" + name + ", as it " + contents->refusal, EINVAL);
  }
  return std::move(contents->bytes);
}

void DatabaseSave::addStep(JournalStep::Target target, const std::string& name, Plan& plan) {
  const bool isRemoval = vcard::trimmed(plan.composed).empty();
  if (plan.composed.size() > static_cast<std::size_t>(kLargestFile)) {
    throw FileError("cannot write " + printable(name), EFBIG);
  }
  steps_.push_back({target, name, isRemoval ? std::string() : newTemporaryName(), plan.expected});
  if (isRemoval) return;
  const std::string& temporary = steps_.back().temporary;
  writeNewFile(database_.folder_.data(), temporary, plan.composed, plan.mode);
  if (const auto stamp = stampIn(database_.folder_.data(), temporary)) plan.inode = stamp->inode;
}

bool DatabaseSave::isUndisturbed() const {
  return database_.folder_.isCurrent() && std::ranges::all_of(steps_, [this](const JournalStep& step) {
           if (step.target == JournalStep::Target::kData) return true;
           const std::optional<FileContents> contents = readFile(database_.folder_.cards(), step.name);
           if (!contents || !step.expected) return !contents && !step.expected;
           return contents->stamp == step.expected->stamp && contentHash(contents->bytes) == step.expected->hash;
         });
}

void DatabaseSave::dropTemporaries() {
  for (const JournalStep& step : steps_) {
    if (!step.temporary.empty()) removeFileQuietly(database_.folder_.data(), step.temporary);
  }
  steps_.clear();
}

// The save has happened, whatever comes now. Where memory is short, it is found in the folder later.
SaveResult DatabaseSave::finish() {
  database_.isBehind_ = true;
  SaveResult result;
  try {
    if (!steps_.empty()) applyJournal(database_.folder_, steps_);
  } catch (const FileError& error) {
    Database::log(std::string("a save can't be finished yet: ") + error.what());
    database_.overlay(steps_);
  }
  for (const CardUpdate& update : request_.updates) result.saved.push_back({update.card, nullptr});
  keepRemoved(result);
  const std::vector<CardChange> changes = adoptWritten();
  foreign_.insert(foreign_.end(), changes.begin(), changes.end());
  if (request_.me) database_.me_ = *request_.me;
  if (properties_.count > 0) adoptPropertyFile(properties_.text);
  result.changedProperties = properties_.count;

  std::set<std::string> own;
  for (std::size_t i = 0; i < request_.updates.size(); ++i) {
    const CardUpdate& update = request_.updates[i];
    own.insert(update.card->uniqueId());
    if (!update.isRemoval) result.saved[i].after = database_.files_.findCard(*update.card);
  }
  for (const CardChange& change : foreign_) {
    const StoredCard& card = change.after ? *change.after : *change.before;
    if (!own.contains(card.uniqueId())) result.foreign.push_back(change);
  }
  return result;
}

// Takes over what was written, without reading it again.
std::vector<CardChange> DatabaseSave::adoptWritten() {
  std::vector<Database::FoundFile> found;
  for (const JournalStep& step : steps_) {
    if (step.target != JournalStep::Target::kCard) continue;
    const Plan& plan = plans_[step.name];
    FileContents contents;
    contents.bytes = plan.composed;
    try {
      // Where it isn't that file, or can't be told, it will be looked at once more.
      const auto stamp = database_.stamp(step.name, database_.folder_.cards());
      if (stamp && stamp->inode == plan.inode) contents.stamp = *stamp;
    } catch (const FileError&) {
    }
    if (step.temporary.empty()) {
      found.push_back({Database::FoundFile::State::kGone, {step.name}});
    } else {
      found.push_back(database_.parse(step.name, std::move(contents)));
    }
  }
  return database_.adopt(std::move(found));
}

// A record that is removed lives on, and may be added again: with all that its card had.
void DatabaseSave::keepRemoved(SaveResult& result) const {
  for (std::size_t i = 0; i < request_.updates.size(); ++i) {
    if (!request_.updates[i].isRemoval) continue;
    auto whole = std::make_shared<SingleCard>(*request_.updates[i].card);
    whole->database = nullptr;
    result.saved[i].before = std::move(whole);
  }
  for (const auto& [name, plan] : plans_) {
    const std::vector<std::string_view> sections = cardSections(plan.text);
    for (const auto& [position, update] : plan.byPosition) {
      if (!update->isRemoval) continue;
      StoredCardPointer& before = result.saved[static_cast<std::size_t>(update - request_.updates.data())].before;
      auto whole = std::make_shared<SingleCard>(*before);
      whole->kept = CardText(std::string(sections[position]));
      before = std::move(whole);
    }
  }
}

}  // namespace contacts
