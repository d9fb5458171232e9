#pragma once

#include <string>
#include <vector>

// One function a subcommand. They print to the standard output and throw host::Error or host::HostException when they
// can't do their work.
namespace contacts {

// Every person, one display name a line, in the order of the address book.
void listPeople();

// Every change to the contacts, as another process makes it, a line each; goes on until the program is ended.
void watchChanges();

// Every member of the class as the host sees it.
void describeClass(const std::string& className);

}  // namespace contacts
