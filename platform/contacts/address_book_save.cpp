#include "platform/contacts/address_book_object.h"
#include "platform/contacts/change_feed.h"
#include "platform/contacts/errors.h"
#include "platform/foundation/date.h"
#include "platform/foundation/dictionary.h"

#include <exception>
#include <utility>

namespace contacts {
namespace {

bool failToSave(NSError* error, const std::exception& reason) {
  const auto* file = dynamic_cast<const FileError*>(&reason);
  const int code = file == nullptr ? 0 : file->code();
  const NSError cause = code == 0 ? NSError() : NSError::errorWithDomain(NSPOSIXErrorDomain, code, nullptr);
  return fail(error, 0, std::string("the address book can't be saved: ") + reason.what(), NSUnderlyingErrorKey, cause);
}

// Also what was added and has no other values than its card.
bool isUnsaved(const RecordObject& record) { return record.card().database == nullptr || record.isChanged(); }

// Takes over what the record's card is now; false where there is none, and the record goes with it.
bool stays(RecordObject& record, const StoredCardPointer& now) {
  if (!now) return isUnsaved(record);
  if (record.sharedCard() != now) record.adopt(now, false);
  return true;
}

}  // namespace

bool AddressBookObject::saveOrFail(NSError* error) {
  if (!hasUnsavedChanges_) return true;
  const std::vector<Retained<ABRecord>> changed = changedRecords();
  const SaveRequest request = saveRequest(changed);
  SaveResult result;
  try {
    if (!request.updates.empty() || request.me) result = database->save(request);
  } catch (const FileError& reason) {
    return failToSave(error, reason);
  } catch (const FolderError& reason) {
    return failToSave(error, reason);
  }
  finishSave(changed, result);
  ChangeFeed& feed = changeFeed();
  feed.add(result.foreign, ChangeFeed::Origin::kOthers);
  feed.add(result.saved, ChangeFeed::Origin::kThisProcess, this);
  return true;
}

// Those that are still in the book.
std::vector<Retained<ABRecord>> AddressBookObject::changedRecords() const {
  std::vector<Retained<ABRecord>> changed;
  for (const Retained<ABRecord>& record : changed_) {
    const RecordObject& object = objectOf(record.get());
    if (object.book() == this && isUnsaved(object)) changed.push_back(record);
  }
  return changed;
}

// First the changed records, then those that were taken out of the book.
SaveRequest AddressBookObject::saveRequest(const std::vector<Retained<ABRecord>>& changed) const {
  const double now = NSDate::date().timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970;
  SaveRequest request;
  request.me = changedMe_;
  for (const Retained<ABRecord>& record : changed) {
    RecordObject& object = objectOf(record.get());
    request.updates.push_back({object.sharedCard(), object.changes(now), false});
  }
  for (const Retained<ABRecord>& record : removed_) {
    request.updates.push_back({objectOf(record.get()).sharedCard(), {}, true});
  }
  return request;
}

void AddressBookObject::finishSave(const std::vector<Retained<ABRecord>>& changed, const SaveResult& result) {
  auto saved = result.saved.begin();
  for (const Retained<ABRecord>& record : changed) {
    const StoredCardPointer& card = saved++->after;
    if (card) objectOf(record.get()).adopt(card, true);
  }
  for (const Retained<ABRecord>& record : std::exchange(removed_, {})) {
    objectOf(record.get()).adopt(saved++->before, false);
  }
  links_.reset();
  // Also those that have nothing to save any more note the next change.
  for (const Retained<ABRecord>& record : changed_) {
    RecordObject& object = objectOf(record.get());
    if (object.book() == this) object.noteAgain();
  }
  changed_.clear();
  changedMe_.reset();
  hasUnsavedChanges_ = false;
}

void AddressBookObject::absorb(const std::vector<CardChange>& changes) {
  for (const CardChange& change : changes) absorb(change);
}

// What is there now counts: it may be told of a change when the book has saved another one since.
void AddressBookObject::absorb(const CardChange& change) {
  const StoredCard& card = change.after ? *change.after : *change.before;
  if (!records_ && !early_.contains(card.uniqueId())) return;
  links_.reset();
  const StoredCardPointer now = database->outcome(change);
  // What was taken out of the book stays out of it.
  for (const Retained<ABRecord>& removed : removed_) {
    const StoredCard& known = objectOf(removed.get()).card();
    if (known.uid != card.uid || known.isGroup != card.isGroup) continue;
    if (now) objectOf(removed.get()).adopt(now, false);
    return;
  }
  if (!records_) {
    const auto early = early_.find(card.uniqueId());
    if (stays(objectOf(early->second.get()), now)) return;
    letGo(early->second);
    early_.erase(early);
    return;
  }
  RecordList::Entry* entry = records_->find(card);
  if (entry == nullptr) {
    if (now) records_->listOf(*now).add({now, {}});
  } else if (!entry->record && now) {
    entry->unread = now;
  } else if (!entry->record || !stays(objectOf(entry->record.get()), now)) {
    take(*entry);
  }
}

ABPerson AddressBookObject::me() {
  const std::string uid = changedMe_ ? *changedMe_ : database->me();
  return find(uid + ":ABPerson").as<ABPerson>();
}

void AddressBookObject::setMe(ABPerson person) {
  changedMe_ = person ? objectOf(ABRecord(person)).uid() : std::string();
  hasUnsavedChanges_ = true;
}

}  // namespace contacts
