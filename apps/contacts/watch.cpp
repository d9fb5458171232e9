#include "apps/contacts/commands.h"
#include "apps/contacts/json.h"
#include "apps/contacts/session.h"
#include "apps/contacts/text.h"
#include "host/entries.h"
#include "host/events.h"

#include <iostream>
#include <span>
#include <string>

namespace contacts {

namespace {

constexpr double kSecondsBetweenLooks = 1;
constexpr std::size_t kKindWidth = 10;  // of the column

// A deleted record has no name any more.
void printChange(const char* kind, const std::string& id, const host::Value& record, const Manner& manner) {
  const std::string name = record.isNil() ? id : record.call("DisplayName").text();
  if (manner.isJson) {
    std::cout << jsonLine({{"change", kind}, {"id", id}, {"name", name}}) << '\n';
  } else {
    std::cout << padded(kind, kKindWidth) << printable(name) << '\n';
  }
}

}  // namespace

void watchChanges(const Manner& manner) {
  host::handleClassEvent("ABAddressBookVXR", "DatabaseChanged",
                         [&manner](const host::Value& book, std::span<const host::Value> arguments) {
                           std::size_t next = 1;
                           for (const char* kind : {"inserted", "updated", "deleted"}) {
                             for (const host::Value& id : arguments[next++].elements()) {
                               printChange(kind, id.text(), book.call("recordForUniqueId", id), manner);
                             }
                           }
                           std::cout.flush();
                         });
  const host::Value book = openAddressBook(manner);
  const std::string what = std::to_string(book.call("people").size()) + " people and " +
                           std::to_string(book.call("groups").size()) + " groups";
  std::cout << (manner.isJson ? jsonLine({{"watching", what}}) : "watching " + what) << std::endl;
  while (std::cout) host::idle(kSecondsBetweenLooks);
}

}  // namespace contacts
