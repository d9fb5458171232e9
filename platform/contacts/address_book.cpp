#include "platform/contacts/address_book.h"

#include "platform/contacts/database.h"
#include "platform/contacts/load.h"
#include "platform/contacts/preferences.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace contacts {
namespace {

struct AddressBookObject : objc::Object {
  [[nodiscard]] NSArray people() const { return arrayOf(persons_); }
  [[nodiscard]] NSArray groups() const { return arrayOf(groups_); }
  [[nodiscard]] ABRecord recordForUniqueId(NSString uniqueId) const;

  void add(const StoredCardPointer& card);

 private:
  static NSArray arrayOf(const std::vector<ABRecord>& records);

  // One entry a record; the lists below have the order.
  std::unordered_map<std::string, Retained<ABRecord>> records_;
  std::vector<ABRecord> persons_;
  std::vector<ABRecord> groups_;
};

NSArray AddressBookObject::arrayOf(const std::vector<ABRecord>& records) {
  NSMutableArray array = NSMutableArray::arrayWithCapacity(records.size());
  for (const ABRecord record : records) array.addObject(record);
  return array;
}

ABRecord AddressBookObject::recordForUniqueId(NSString uniqueId) const {
  if (!uniqueId) NSException::raise(NSInvalidArgumentException, "recordForUniqueId: the id is nil");
  auto found = records_.find(utf8Of(uniqueId));
  return found == records_.end() ? ABRecord() : found->second.get();
}

void AddressBookObject::add(const StoredCardPointer& card) {
  auto [entry, isNew] = records_.emplace(card->uniqueId(), newRecord(card));
  (card->isGroup ? groups_ : persons_).push_back(entry->second.get());
}

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
  for (const StoredCardPointer& card : state.database->cards()) book->add(card);
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

NSInteger defaultOrdering(ABAddressBook) { return defaultNameOrdering(); }

NSString defaultCountry(ABAddressBook) { return NSString::stringWithUTF8(defaultCountryCode()); }

}  // namespace

void registerAddressBook() {
  objc::ClassBuilder::define<AddressBookObject>("ABAddressBook", "NSObject")
      .classMethod<&sharedAddressBook>("sharedAddressBook")
      .classMethod<&makeAddressBook>("addressBook")
      .method<&AddressBookObject::people>("people")
      .method<&AddressBookObject::groups>("groups")
      .method<&AddressBookObject::recordForUniqueId>("recordForUniqueId:")
      .method<&defaultOrdering>("defaultNameOrdering")
      .method<&defaultCountry>("defaultCountryCode");
}

}  // namespace contacts
