#include "platform/contacts/address_book.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/errors.h"
#include "platform/contacts/group_object.h"
#include "platform/contacts/load.h"
#include "platform/contacts/preferences.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>

namespace contacts {
namespace {

constexpr char kPersonSuffix[] = ":ABPerson";
constexpr char kGroupSuffix[] = ":ABGroup";

// The books of a process: the lock is for the shared one, which may first be asked for on any thread.
struct Books {
  std::mutex lock;
  std::unique_ptr<Database> database;
  Retained<ABAddressBook> shared;
};

// Never destroyed: the shared book lives as long as the process.
Books& books() {
  static auto* instance = new Books;
  return *instance;
}

// Under the lock.
Retained<ABAddressBook> newBook(Books& state) {
  try {
    if (!state.database) state.database = std::make_unique<Database>(folderPath());
  } catch (const FolderError& error) {
    NSException::raise(NSInvalidArgumentException, error.what());
  }
  auto* book = objc::createInstance<AddressBookObject>("ABAddressBook"_class);
  auto owner = Retained<ABAddressBook>::adopt(ABAddressBook(book));
  book->database = state.database.get();
  for (const StoredCardPointer& card : state.database->cards()) book->load(card);
  return owner;
}

ABAddressBook sharedAddressBook(Class) {
  Books& state = books();
  const std::scoped_lock guard(state.lock);
  if (!state.shared) state.shared = newBook(state);
  return state.shared.get();
}

ABAddressBook makeAddressBook(Class) {
  Books& state = books();
  const std::scoped_lock guard(state.lock);
  return newBook(state).autorelease();
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
  noteChange();
  return true;
}

bool AddressBookObject::removeRecordOrFail(ABRecord record, NSError* error) {
  if (!record) NSException::raise(NSInvalidArgumentException, "removeRecord: the record is nil");
  RecordObject& removed = objectOf(record);
  const std::string id = removed.card().uniqueId();
  if (removed.book() != this) return fail(error, ABRemoveRecordsError, id + " is not in this address book");
  if (isReadOnly()) return fail(error, ABRemoveRecordsError, "the folder " + database->path() + " can't be written");
  if (removed.card().database != nullptr) removed_.push_back(Retained<ABRecord>::share(record));
  for (const ABRecord group : groups_) objectOf(group.as<ABGroup>()).forget(removed);
  removed.setBook(nullptr);
  std::erase(listOf(record), record);
  records_.erase(id);
  noteChange();
  return true;
}

NSArray AddressBookObject::groupsWith(const RecordObject& record) const {
  NSMutableArray parents = NSMutableArray::array();
  for (const ABRecord group : groups_) {
    if (objectOf(group.as<ABGroup>()).has(record)) parents.addObject(group);
  }
  return parents;
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
}

namespace {

NSInteger nameOrdering(ABAddressBook) { return defaultNameOrdering(); }

NSString countryCode(ABAddressBook) { return NSString::stringWithUTF8(defaultCountryCode()); }

}  // namespace

void registerAddressBook() {
  objc::ClassBuilder::define<AddressBookObject>("ABAddressBook", "NSObject")
      .classMethod<&sharedAddressBook>("sharedAddressBook")
      .classMethod<&makeAddressBook>("addressBook")
      .method<&AddressBookObject::people>("people")
      .method<&AddressBookObject::groups>("groups")
      .method<&AddressBookObject::recordForUniqueId>("recordForUniqueId:")
      .method<&AddressBookObject::recordClassFromUniqueId>("recordClassFromUniqueId:")
      .method<&AddressBookObject::addRecord>("addRecord:")
      .method<&AddressBookObject::addRecordOrFail>("addRecord:error:")
      .method<&AddressBookObject::removeRecord>("removeRecord:")
      .method<&AddressBookObject::removeRecordOrFail>("removeRecord:error:")
      .method<&AddressBookObject::hasUnsavedChanges>("hasUnsavedChanges")
      .method<&nameOrdering>("defaultNameOrdering")
      .method<&countryCode>("defaultCountryCode");
}

}  // namespace contacts
