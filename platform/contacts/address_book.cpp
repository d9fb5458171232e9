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
  for (RecordList* list : {&persons_, &groups_}) {
    list->forEach([](RecordList::Entry& entry) {
      if (entry.record) objectOf(entry.record.get()).setBook(nullptr);
    });
  }
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
  auto findIn = [&](RecordList& list, std::string_view suffix) -> ABRecord {
    RecordList::Entry* entry = list.find(uniqueId.substr(0, uniqueId.size() - suffix.size()));
    return entry == nullptr ? ABRecord() : recordOf(*entry);
  };
  if (uniqueId.ends_with(kPersonSuffix)) return findIn(persons_, kPersonSuffix);
  return uniqueId.ends_with(kGroupSuffix) ? findIn(groups_, kGroupSuffix) : ABRecord();
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
  NSMutableArray found = NSMutableArray::array();
  for (RecordList* list : {&persons_, &groups_}) {
    list->forEach([&](RecordList::Entry& entry) {
      const bool isAsRead = !entry.record || objectOf(entry.record.get()).isAsRead();
      if (isAsRead && !mayMatch(search, entry.card())) return;
      const AutoreleasePool pool;
      const ABRecord record = recordOf(entry);
      if (search.matchesRecord(record)) found.addObject(record);
    });
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
  listOf(added.card()).add({nullptr, Retained<ABRecord>::share(record)});
  added.setBook(this);
  links_.reset();
  added.noteChange();
  return true;
}

bool AddressBookObject::removeRecordOrFail(ABRecord record, NSError* error) {
  if (!record) NSException::raise(NSInvalidArgumentException, "removeRecord: the record is nil");
  RecordObject& removed = objectOf(record);
  const std::string id = removed.card().uniqueId();
  if (removed.book() != this) return fail(error, ABRemoveRecordsError, id + " is not in this address book");
  if (isReadOnly()) return fail(error, ABRemoveRecordsError, "the folder " + database->path() + " can't be written");
  groups_.forEach([&](RecordList::Entry& entry) { objectOf(recordOf(entry).as<ABGroup>()).forget(removed); });
  if (me() == record) setMe(nullptr);
  if (removed.card().database != nullptr) removed_.push_back(Retained<ABRecord>::share(record));
  take(*entryOf(removed.card()));
  hasUnsavedChanges_ = true;
  return true;
}

NSArray AddressBookObject::groupsWith(const RecordObject& record) {
  NSMutableArray parents = NSMutableArray::array();
  groups_.forEach([&](RecordList::Entry& entry) {
    const ABRecord group = recordOf(entry);
    if (objectOf(group.as<ABGroup>()).has(record)) parents.addObject(group);
  });
  return parents;
}

NSArray AddressBookObject::linkedWith(ABRecord person) {
  if (!links_) {
    Links links;
    persons_.forEach([&links](const RecordList::Entry& entry) { links.add(entry.card()); });
    links_ = std::move(links);
  }
  NSMutableArray people = NSMutableArray::array();
  for (const std::string& uid : links_->linkedWith(objectOf(person).uid())) {
    if (RecordList::Entry* linked = persons_.find(uid)) people.addObject(recordOf(*linked));
  }
  return people;
}

void AddressBookObject::load(std::vector<StoredCardPointer> cards) {
  persons_.reserve(cards.size());
  for (StoredCardPointer& card : cards) {
    RecordList& list = listOf(*card);
    list.add({std::move(card), {}});
  }
}

void AddressBookObject::load(StoredCardPointer card) {
  RecordList& list = listOf(*card);
  list.add({std::move(card), {}});
  links_.reset();
}

void AddressBookObject::take(RecordList::Entry& entry) {
  if (entry.record) {
    objectOf(entry.record.get()).setBook(nullptr);
    Retained<ABRecord>(entry.record).autorelease();
  }
  listOf(entry.card()).remove(entry);
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
