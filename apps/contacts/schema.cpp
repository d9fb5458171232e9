#include "apps/contacts/commands.h"
#include "apps/contacts/failure.h"
#include "apps/contacts/json.h"
#include "apps/contacts/people.h"
#include "apps/contacts/session.h"
#include "apps/contacts/text.h"

#include <iostream>

namespace contacts {
namespace {

const char* classOf(bool isOfGroups) { return isOfGroups ? "ABGroupVXR" : "ABPersonVXR"; }

}  // namespace

void printProperties(bool ofGroups, const Manner& manner) {
  const Vocabulary vocabulary(openAddressBook(manner), classOf(ofGroups));
  if (manner.isJson) {
    std::vector<NamedTexts> objects;
    for (const PropertyName& each : vocabulary.properties()) {
      objects.push_back({{"name", each.name}, {"title", each.title}, {"type", typeText(each.type)}});
    }
    std::cout << jsonOf(objects) << '\n';
    return;
  }
  Table table;
  table.add({"Name", "Title", "Type"});
  for (const PropertyName& each : vocabulary.properties()) {
    table.add({printable(each.name), printable(each.title), typeText(each.type)});
  }
  table.print();
}

void addProperty(bool toGroups, const std::string& name, const std::string& type, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const std::int64_t code = typeNamed(type);
  if (host::callShared(classOf(toGroups), "addProperty", name, code).integer() != 1) {
    throw Failure("the property \"" + printable(name) + "\" can't be added; expected a name that isn't taken");
  }
  save(book, manner);
  say(manner, "Added the property " + printable(name));
}

void removeProperty(bool fromGroups, const std::string& name, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  if (host::callShared(classOf(fromGroups), "removeProperty", name).integer() != 1) {
    throw Failure("the property \"" + printable(name) + "\" can't be removed; expected one that somebody has added");
  }
  save(book, manner);
  say(manner, "Removed the property " + printable(name));
}

void printOwner(const Manner& manner) {
  const Vocabulary vocabulary(openAddressBook(manner));
  const host::Value owner = vocabulary.book().call("owner");
  if (owner.isNil()) throw Failure("the address book has no owner; contacts me NAME says who it is");
  printRecord(owner, vocabulary, manner);
}

void setOwner(const std::string& name, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value person = findPerson(book, name);
  book.call("setMe", person);
  save(book, manner);
  say(manner, "The owner is", person);
}

void clearOwner(const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  book.call("setMe", nullptr);
  save(book, manner);
  say(manner, "There is no owner any more");
}

}  // namespace contacts
