#include "platform/contacts/books.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/change_feed.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <memory>
#include <mutex>
#include <utility>

namespace contacts {
namespace {

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
Database& open(Books& state) {
  if (!state.database) state.database = std::make_unique<Database>(folderPath());
  return *state.database;
}

// Brings the database up to date and answers what had changed. Under the lock.
std::vector<CardChange> readFolder(Books& state, bool isWatched) {
  try {
    Database& database = open(state);
    if (isWatched) changeFeed().watch(database);
    return database.refresh();
  } catch (const FolderError& error) {
    NSException::raise(NSInvalidArgumentException, error.what());
  } catch (const FileError& error) {
    NSException::raise(NSInvalidArgumentException,
                       "contacts folder " + printable(state.database->path()) + ": " + error.what());
  }
}

// Under the lock. One that isn't told of changes has the records of now.
Retained<ABAddressBook> newBook(const Books& state, bool isTold) {
  auto* book = objc::createInstance<AddressBookObject>("ABAddressBook"_class);
  auto owner = Retained<ABAddressBook>::adopt(ABAddressBook(book));
  book->database = state.database.get();
  if (!isTold || book->database->hasAllCards()) book->loadRecords();
  return owner;
}

}  // namespace

Database& openDatabase() {
  Books& state = books();
  const std::scoped_lock guard(state.lock);
  return open(state);
}

ABAddressBook sharedAddressBook(Class) {
  Books& state = books();
  const std::scoped_lock guard(state.lock);
  if (!state.shared) {
    readFolder(state, true);
    state.shared = newBook(state, true);
    changeFeed().setShared(*static_cast<AddressBookObject*>(state.shared->get()));
  }
  return state.shared.get();
}

ABAddressBook makeAddressBook(Class) {
  Books& state = books();
  std::vector<CardChange> changes;
  {
    const std::scoped_lock guard(state.lock);
    changes = readFolder(state, false);
  }
  changeFeed().add(std::move(changes), ChangeFeed::Origin::kOthers);
  const std::scoped_lock guard(state.lock);
  return newBook(state, false).autorelease();
}

}  // namespace contacts
