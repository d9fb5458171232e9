#include "apps/contacts/commands.h"
#include "apps/contacts/session.h"

#include <iostream>

namespace contacts {

void listPeople() {
  for (const host::Value& person : openAddressBook().call("people").elements()) {
    std::cout << person.call("DisplayName").text() << '\n';
  }
}

}  // namespace contacts
