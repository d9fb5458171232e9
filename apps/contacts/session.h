#pragma once

#include "apps/contacts/output.h"
#include "host/value.h"

#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// Starts the host and loads the frameworks and the plug-in that lie beside the program; answers the names of the
// classes that the plug-in registered. From then on the user sees what the store warns of, unless it is to be quiet;
// all that is logged where CONTACTS_LOG is set. Throws host::Error when there is no plug-in.
std::vector<std::string> startHost(const Manner& manner);

// The shared address book; the user sees how far it is where that takes long. Throws host::HostException, whose object
// says why, when the contacts can't be opened.
host::Value openAddressBook(const Manner& manner);

// Throws Failure when the changes can't be saved; nothing is then.
void save(const host::Value& book, const Manner& manner);

// Stands for the standard input or output in the place of a file's name.
constexpr std::string_view kStandardStream = "-";
// The whole file. Throws Failure.
std::string readWhole(const std::string& file);
// As messages name a file that is read.
std::string fileText(const std::string& file);

}  // namespace contacts
