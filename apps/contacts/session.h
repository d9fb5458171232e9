#pragma once

#include "host/value.h"

namespace contacts {

// Starts the host and loads the frameworks and the plug-in that lie beside the program. Throws host::Error when there
// is no plug-in.
void startHost();

// The shared address book. Throws host::HostException, whose object says why, when the contacts can't be opened.
host::Value openAddressBook();

}  // namespace contacts
