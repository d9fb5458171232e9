#pragma once

namespace contacts {

// Each registers the classes of one file; load.cpp calls them when the library is loaded.
void registerRecords();
void registerAddressBook();

}  // namespace contacts
