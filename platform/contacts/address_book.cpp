#include "platform/contacts/address_book.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/address_format.h"
#include "platform/contacts/books.h"
#include "platform/contacts/errors.h"
#include "platform/contacts/group_object.h"
#include "platform/contacts/load.h"
#include "platform/contacts/preferences.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <utility>

namespace contacts {
namespace {

constexpr char kPersonSuffix[] = ":ABPerson";
constexpr char kGroupSuffix[] = ":ABGroup";

NSInteger nameOrdering(ABAddressBook) { return defaultNameOrdering(); }

NSString countryCode(ABAddressBook) { return NSString::stringWithUTF8(defaultCountryCode()); }

NSAttributedString formattedAddressFromDictionary(ABAddressBook, NSDictionary address) {
  return formattedAddress(address, defaultCountryCode());
}

}  // namespace

AddressBookObject::~AddressBookObject() {
  for (const auto& [id, record] : records_) objectOf(record.get()).setBook(nullptr);
}

NSArray AddressBookObject::arrayOf(const std::vector<ABRecord>& records) {
  NSMutableArray array = NSMutableArray::arrayWithCapacity(records.size());
  for (const ABRecord record : records) array.addObject(record);
  return array;
}

ABRecord AddressBookObject::find(const std::string& uniqueId) const {
  auto found = records_.find(uniqueId);
  return found == records_.end() ? ABRecord() : found->second.get();
}

ABRecord AddressBookObject::recordForUniqueId(NSString uniqueId) const {
  if (!uniqueId) NSException::raise(NSInvalidArgumentException, "recordForUniqueId: the id is nil");
  return Retained<ABRecord>::share(find(utf8Of(uniqueId))).autorelease();
}

NSString AddressBookObject::recordClassFromUniqueId(NSString uniqueId) const {
  if (!uniqueId) NSException::raise(NSInvalidArgumentException, "recordClassFromUniqueId: the id is nil");
  const std::string text = utf8Of(uniqueId);
  if (text.ends_with(kPersonSuffix)) return "ABPerson"_ns;
  return text.ends_with(kGroupSuffix) ? "ABGroup"_ns : NSString();
}

NSArray AddressBookObject::recordsMatchingSearchElement(ABSearchElement search) const {
  if (!search) NSException::raise(NSInvalidArgumentException, "recordsMatchingSearchElement: the element is nil");
  NSMutableArray found = NSMutableArray::array();
  for (const auto* records : {&persons_, &groups_}) {
    for (const ABRecord record : *records) {
      const AutoreleasePool pool;
      if (search.matchesRecord(record)) found.addObject(record);
    }
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
  insert(Retained<ABRecord>::share(record));
  added.noteChange();
  return true;
}

bool AddressBookObject::removeRecordOrFail(ABRecord record, NSError* error) {
  if (!record) NSException::raise(NSInvalidArgumentException, "removeRecord: the record is nil");
  RecordObject& removed = objectOf(record);
  const std::string id = removed.card().uniqueId();
  if (removed.book() != this) return fail(error, ABRemoveRecordsError, id + " is not in this address book");
  if (isReadOnly()) return fail(error, ABRemoveRecordsError, "the folder " + database->path() + " can't be written");
  for (const ABRecord group : groups_) objectOf(group.as<ABGroup>()).forget(removed);
  if (me() == record) setMe(nullptr);
  if (removed.card().database != nullptr) removed_.push_back(Retained<ABRecord>::share(record));
  take(record);
  hasUnsavedChanges_ = true;
  return true;
}

NSArray AddressBookObject::groupsWith(const RecordObject& record) const {
  NSMutableArray parents = NSMutableArray::array();
  for (const ABRecord group : groups_) {
    if (objectOf(group.as<ABGroup>()).has(record)) parents.addObject(group);
  }
  return parents;
}

NSArray AddressBookObject::linkedWith(ABRecord person) const {
  if (!links_) {
    links_.emplace();
    for (const ABRecord other : persons_) links_->add(objectOf(other).card());
  }
  NSMutableArray people = NSMutableArray::array();
  for (const std::string& uid : links_->linkedWith(objectOf(person).card().uid)) {
    const ABRecord linked = find(uid + kPersonSuffix);
    if (linked) people.addObject(linked);
  }
  return people;
}

void AddressBookObject::load(const StoredCardPointer& card) { insert(newRecord(card)); }

std::vector<ABRecord>& AddressBookObject::listOf(ABRecord record) {
  return objectOf(record).isGroup() ? groups_ : persons_;
}

void AddressBookObject::insert(Retained<ABRecord> record) {
  RecordObject& object = objectOf(record.get());
  object.setBook(this);
  listOf(record.get()).push_back(record.get());
  records_.emplace(object.card().uniqueId(), std::move(record));
  links_.reset();
}

void AddressBookObject::take(ABRecord record) {
  RecordObject& object = objectOf(record);
  Retained<ABRecord>::share(record).autorelease();
  object.setBook(nullptr);
  std::erase(listOf(record), record);
  records_.erase(object.card().uniqueId());
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
