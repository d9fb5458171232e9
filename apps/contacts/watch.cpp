#include "apps/contacts/commands.h"
#include "apps/contacts/session.h"
#include "host/entries.h"
#include "host/events.h"

#include <iostream>
#include <span>
#include <string>

namespace contacts {

namespace {

constexpr double kSecondsBetweenLooks = 1;

// A deleted record has no name any more.
std::string nameOf(const host::Value& book, const host::Value& id) {
  const host::Value record = book.call("recordForUniqueId", id);
  return record.isNil() ? id.text() : record.call("DisplayName").text();
}

void printChange(const host::Value& book, std::span<const host::Value> arguments) {
  constexpr const char* kKinds[] = {"inserted", "updated ", "deleted "};
  for (std::size_t i = 0; i < std::size(kKinds); ++i) {
    for (const host::Value& id : arguments[i + 1].elements()) {
      std::cout << kKinds[i] << "  " << nameOf(book, id) << '\n';
    }
  }
  std::cout.flush();
}

}  // namespace

void watchChanges() {
  host::handleClassEvent("ABAddressBookVXR", "DatabaseChanged", printChange);
  const host::Value book = openAddressBook();
  std::cout << "watching " << book.call("people").size() << " people and " << book.call("groups").size() << " groups"
            << std::endl;
  while (std::cout) host::idle(kSecondsBetweenLooks);
}

}  // namespace contacts
