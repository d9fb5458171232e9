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

}  // namespace

bool AddressBookObject::saveOrFail(NSError* error) {
  if (!hasUnsavedChanges_) return true;
  const SaveRequest request = saveRequest();
  SaveResult result;
  try {
    if (!request.updates.empty() || request.me) result = database->save(request);
  } catch (const FileError& reason) {
    return failToSave(error, reason);
  } catch (const FolderError& reason) {
    return failToSave(error, reason);
  }
  finishSave(request, result);
  ChangeFeed& feed = changeFeed();
  feed.add(result.foreign, ChangeFeed::Origin::kOthers);
  feed.add(result.saved, ChangeFeed::Origin::kThisProcess);
  return true;
}

// First the changed records that are still in the book, then those that were taken out of it.
SaveRequest AddressBookObject::saveRequest() const {
  const double now = NSDate::date().timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970;
  SaveRequest request;
  request.me = changedMe_;
  for (const Retained<ABRecord>& record : changed_) {
    RecordObject& object = objectOf(record.get());
    const bool isNew = object.card().database == nullptr;
    if (object.book() == this && (isNew || object.isChanged())) {
      request.updates.push_back({object.sharedCard(), object.changes(now), false});
    }
  }
  for (const Retained<ABRecord>& record : removed_) {
    request.updates.push_back({objectOf(record.get()).sharedCard(), {}, true});
  }
  return request;
}

void AddressBookObject::finishSave(const SaveRequest& request, const SaveResult& result) {
  auto saved = result.saved.begin();
  for (const CardUpdate& update : request.updates) {
    const CardChange& change = *saved++;
    if (update.isRemoval) continue;
    RecordList::Entry* entry = entryOf(*update.card);
    if (entry != nullptr && change.after) objectOf(recordOf(*entry)).adopt(change.after, true);
  }
  const std::vector<Retained<ABRecord>> removed = std::exchange(removed_, {});
  for (std::size_t i = 0; i < removed.size(); ++i) {
    const std::size_t place = request.updates.size() - removed.size() + i;
    objectOf(removed[i].get()).adopt(result.saved[place].before, false);
  }
  links_.reset();
  changed_.clear();
  changedMe_.reset();
  hasUnsavedChanges_ = false;
}

void AddressBookObject::absorb(const std::vector<CardChange>& changes) {
  for (const CardChange& change : changes) absorb(change);
}

void AddressBookObject::absorb(const CardChange& change) {
  links_.reset();
  const StoredCard& card = change.after ? *change.after : *change.before;
  // What was taken out of the book stays out of it.
  for (const Retained<ABRecord>& removed : removed_) {
    const StoredCard& known = objectOf(removed.get()).card();
    if (known.uid != card.uid || known.isGroup != card.isGroup) continue;
    if (change.after) objectOf(removed.get()).adopt(change.after, false);
    return;
  }
  RecordList::Entry* entry = entryOf(card);
  if (entry == nullptr) {
    if (change.after) load(change.after);
  } else if (!entry->record && change.after) {
    entry->unread = change.after;
  } else if (change.after) {
    RecordObject& record = objectOf(entry->record.get());
    if (record.sharedCard() != change.after) record.adopt(change.after, false);
  } else if (!entry->record || !objectOf(entry->record.get()).isChanged()) {
    take(*entry);
  }
}

ABPerson AddressBookObject::me() {
  const std::string uid = changedMe_ ? *changedMe_ : database->me();
  return find(uid + ":ABPerson").as<ABPerson>();
}

void AddressBookObject::setMe(ABPerson person) {
  changedMe_ = person ? objectOf(ABRecord(person)).card().uid : std::string();
  hasUnsavedChanges_ = true;
}

}  // namespace contacts
