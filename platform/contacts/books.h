#pragma once

#include "platform/contacts/address_book.h"
#include "platform/contacts/database.h"

namespace contacts {

// The process's one database, which lives as long as the process. Throws FolderError when it isn't open yet and can't
// be opened; the next call tries again.
Database& openDatabase();

// What the class methods of those names answer.
ABAddressBook sharedAddressBook(Class);
ABAddressBook makeAddressBook(Class);

}  // namespace contacts
