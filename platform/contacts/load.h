#pragma once

namespace contacts {

// Each registers the classes of one file; load.cpp calls them when the library is loaded.
void registerRecord();
void registerPerson();
void registerGroup();
void registerMultiValues();
void registerSearchElement();
void registerAddressBook();
void registerPeoplePicker();

}  // namespace contacts
