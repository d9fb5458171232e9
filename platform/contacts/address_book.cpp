#include "platform/contacts/address_book.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/address_format.h"
#include "platform/contacts/books.h"
#include "platform/contacts/errors.h"
#include "platform/contacts/group_object.h"
#include "platform/contacts/load.h"
#include "platform/contacts/preferences.h"
#include "platform/contacts/search_element_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace contacts {
namespace {

constexpr std::string_view kPersonSuffix = ":ABPerson";
constexpr std::string_view kGroupSuffix = ":ABGroup";

NSInteger nameOrdering(ABAddressBook) { return defaultNameOrdering(); }

NSString countryCode(ABAddressBook) { return NSString::stringWithUTF8(defaultCountryCode()); }

NSAttributedString formattedAddressFromDictionary(ABAddressBook, NSDictionary address) {
  return formattedAddress(address, defaultCountryCode());
}

}  // namespace

AddressBookObject::~AddressBookObject() {
  for (const auto& [id, record] : early_) objectOf(record.get()).setBook(nullptr);
  if (!records_) return;
  for (RecordList* list : {&records_->persons, &records_->groups}) {
    list->forEach([](RecordList::Entry& entry) {
      if (entry.record) objectOf(entry.record.get()).setBook(nullptr);
    });
  }
}

AddressBookObject::Records& AddressBookObject::records() {
  if (records_) return *records_;
  std::vector<StoredCardPointer> cards = database->cards();
  Records all;
  all.persons.reserve(cards.size());
  for (StoredCardPointer& card : cards) {
    RecordList& list = all.listOf(*card);
    list.add({std::move(card), {}});
  }
  for (const auto& [id, record] : early_) {
    const StoredCard& card = objectOf(record.get()).card();
    if (RecordList::Entry* entry = all.find(card)) {
      *entry = {nullptr, record};
    } else {
      all.listOf(card).add({nullptr, record});
    }
  }
  early_.clear();
  return records_.emplace(std::move(all));
}

ABRecord AddressBookObject::earlyRecord(const StoredCardPointer& card) {
  const std::string id = card->uniqueId();
  auto known = early_.find(id);
  if (known == early_.end()) {
    known = early_.emplace(id, newRecord(card)).first;
    objectOf(known->second.get()).setBook(this);
  } else if (objectOf(known->second.get()).sharedCard() != card) {
    objectOf(known->second.get()).adopt(card, false);
  }
  return known->second.get();
}

ABRecord AddressBookObject::recordOf(RecordList::Entry& entry) {
  if (!entry.record) {
    entry.record = newRecord(entry.unread);
    entry.unread.reset();
    objectOf(entry.record.get()).setBook(this);
  }
  return entry.record.get();
}

NSArray AddressBookObject::arrayOf(RecordList& records) {
  NSMutableArray array = NSMutableArray::arrayWithCapacity(records.count());
  records.forEach([&](RecordList::Entry& entry) { array.addObject(recordOf(entry)); });
  return array;
}

ABRecord AddressBookObject::find(const std::string& uniqueId) {
  const bool isGroup = uniqueId.ends_with(kGroupSuffix);
  const std::string_view suffix = isGroup ? kGroupSuffix : kPersonSuffix;
  if (!uniqueId.ends_with(suffix)) return nullptr;
  const CardOutline id{std::string_view(uniqueId).substr(0, uniqueId.size() - suffix.size()), isGroup};
  if (!records_) {
    if (const auto known = early_.find(uniqueId); known != early_.end()) return known->second.get();
    const StoredCardPointer card = database->card(id);
    return card ? earlyRecord(card) : ABRecord();
  }
  RecordList::Entry* entry = records_->find(id);
  return entry == nullptr ? ABRecord() : recordOf(*entry);
}

ABRecord AddressBookObject::recordForUniqueId(NSString uniqueId) {
  if (!uniqueId) NSException::raise(NSInvalidArgumentException, "recordForUniqueId: the id is nil");
  return Retained<ABRecord>::share(find(utf8Of(uniqueId))).autorelease();
}

NSString AddressBookObject::recordClassFromUniqueId(NSString uniqueId) const {
  if (!uniqueId) NSException::raise(NSInvalidArgumentException, "recordClassFromUniqueId: the id is nil");
  const std::string text = utf8Of(uniqueId);
  if (text.ends_with(kPersonSuffix)) return "ABPerson"_ns;
  return text.ends_with(kGroupSuffix) ? "ABGroup"_ns : NSString();
}

NSArray AddressBookObject::recordsMatchingSearchElement(ABSearchElement search) {
  if (!search) NSException::raise(NSInvalidArgumentException, "recordsMatchingSearchElement: the element is nil");
  // All before the first is asked about: an element of another class may change the book meanwhile.
  std::vector<Retained<ABRecord>> candidates;
  if (!records_ && !hasUnsavedChanges_ && !database->hasAllCards()) {
    const auto cards = database->cardsThat([&](const CardOutline& card) { return mayMatch(search, card); });
    for (const bool areGroups : {false, true}) {
      for (const StoredCardPointer& card : cards) {
        if (card->isGroup == areGroups) candidates.push_back(Retained<ABRecord>::share(earlyRecord(card)));
      }
    }
  } else {
    for (RecordList* list : {&records().persons, &records().groups}) {
      list->forEach([&](RecordList::Entry& entry) {
        const bool isAsRead = !entry.record || objectOf(entry.record.get()).isAsRead();
        if (!isAsRead || mayMatch(search, entry.card()))
          candidates.push_back(Retained<ABRecord>::share(recordOf(entry)));
      });
    }
  }
  NSMutableArray found = NSMutableArray::array();
  for (const Retained<ABRecord>& record : candidates) {
    const AutoreleasePool pool;
    const bool isThere = objectOf(record.get()).book() == this;
    if (isThere && search.matchesRecord(record.get())) found.addObject(record.get());
  }
  return found;
}

bool AddressBookObject::addRecordOrFail(ABRecord record, NSError* error) {
  if (!record) NSException::raise(NSInvalidArgumentException, "addRecord: the record is nil");
  RecordObject& added = objectOf(record);
  if (added.book() == this) return true;
  const std::string id = added.card().uniqueId();
  if (added.book() != nullptr) return fail(error, ABAddRecordsError, id + " belongs to another address book");
  if (find(id)) return fail(error, ABAddRecordsError, id + " is taken by another record");
  if (isReadOnly()) return fail(error, ABAddRecordsError, "the folder " + database->path() + " can't be written");
  std::erase_if(removed_, [record](const Retained<ABRecord>& removed) { return removed.get() == record; });
  records().listOf(added.card()).add({nullptr, Retained<ABRecord>::share(record)});
  added.setBook(this);
  links_.reset();
  added.noteChange();
  return true;
}

bool AddressBookObject::removeRecordOrFail(ABRecord record, NSError* error) {
  if (!record) NSException::raise(NSInvalidArgumentException, "removeRecord: the record is nil");
  RecordObject& removed = objectOf(record);
  const std::string id = removed.card().uniqueId();
  RecordList::Entry* entry = removed.book() == this ? records().find(removed.card()) : nullptr;
  if (entry == nullptr || entry->record.get() != record) {
    return fail(error, ABRemoveRecordsError, id + " is not in this address book");
  }
  if (isReadOnly()) return fail(error, ABRemoveRecordsError, "the folder " + database->path() + " can't be written");
  records().groups.forEach([&](RecordList::Entry& each) { objectOf(recordOf(each).as<ABGroup>()).forget(removed); });
  if (me() == record) setMe(nullptr);
  if (removed.card().database != nullptr) removed_.push_back(Retained<ABRecord>::share(record));
  take(*entry);
  hasUnsavedChanges_ = true;
  return true;
}

NSArray AddressBookObject::groupsWith(const RecordObject& record) {
  NSMutableArray parents = NSMutableArray::array();
  records().groups.forEach([&](RecordList::Entry& entry) {
    const ABRecord group = recordOf(entry);
    if (objectOf(group.as<ABGroup>()).has(record)) parents.addObject(group);
  });
  return parents;
}

NSArray AddressBookObject::linkedWith(ABRecord person) {
  if (!links_) {
    Links links;
    records().persons.forEach([&links](const RecordList::Entry& entry) { links.add(entry.card()); });
    links_ = std::move(links);
  }
  NSMutableArray people = NSMutableArray::array();
  for (const std::string& uid : links_->linkedWith(objectOf(person).uid())) {
    if (RecordList::Entry* linked = records().persons.find(uid)) people.addObject(recordOf(*linked));
  }
  return people;
}

void AddressBookObject::letGo(Retained<ABRecord> record) {
  std::erase_if(changed_, [&record](const Retained<ABRecord>& changed) { return changed.get() == record.get(); });
  objectOf(record.get()).setBook(nullptr);
  std::move(record).autorelease();
}

void AddressBookObject::take(RecordList::Entry& entry) {
  if (entry.record) letGo(entry.record);
  records_->listOf(entry.card()).remove(entry);
  links_.reset();
}

void AddressBookObject::noteChange(ABRecord record) {
  changed_.push_back(Retained<ABRecord>::share(record));
  hasUnsavedChanges_ = true;
}

void registerAddressBook() {
  objc::ClassBuilder::define<AddressBookObject>("ABAddressBook", "NSObject")
      .classMethod<&sharedAddressBook>("sharedAddressBook")
      .classMethod<&makeAddressBook>("addressBook")
      .method<&AddressBookObject::people>("people")
      .method<&AddressBookObject::groups>("groups")
      .method<&AddressBookObject::recordForUniqueId>("recordForUniqueId:")
      .method<&AddressBookObject::recordClassFromUniqueId>("recordClassFromUniqueId:")
      .method<&AddressBookObject::recordsMatchingSearchElement>("recordsMatchingSearchElement:")
      .method<&AddressBookObject::addRecord>("addRecord:")
      .method<&AddressBookObject::addRecordOrFail>("addRecord:error:")
      .method<&AddressBookObject::removeRecord>("removeRecord:")
      .method<&AddressBookObject::removeRecordOrFail>("removeRecord:error:")
      .method<&AddressBookObject::hasUnsavedChanges>("hasUnsavedChanges")
      .method<&AddressBookObject::save>("save")
      .method<&AddressBookObject::saveOrFail>("saveAndReturnError:")
      .method<&AddressBookObject::me>("me")
      .method<&AddressBookObject::setMe>("setMe:")
      .method<&nameOrdering>("defaultNameOrdering")
      .method<&countryCode>("defaultCountryCode")
      .method<&formattedAddressFromDictionary>("formattedAddressFromDictionary:");
}

}  // namespace contacts
