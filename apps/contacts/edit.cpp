#include "apps/contacts/assignments.h"
#include "apps/contacts/commands.h"
#include "apps/contacts/failure.h"
#include "apps/contacts/people.h"
#include "apps/contacts/session.h"
#include "apps/contacts/text.h"

namespace contacts {
namespace {

void applyAll(const std::vector<std::string>& assignments, const Vocabulary& vocabulary, const host::Value& record) {
  for (const std::string& text : assignments) apply(assignmentFrom(text), vocabulary, record);
}

void report(const Manner& manner, const char* what, const host::Value& person, const Vocabulary& vocabulary) {
  if (manner.isJson) {
    printRecord(person, vocabulary, manner);
  } else {
    say(manner, what, person);
  }
}

}  // namespace

void addPerson(const std::vector<std::string>& assignments, const Manner& manner) {
  const Vocabulary vocabulary(openAddressBook(manner));
  const host::Value& book = vocabulary.book();
  for (const std::string& text : assignments) {
    if (text.ends_with('=')) throw Failure("\"" + printable(text) + "\" adds nothing; expected a value after =");
  }
  const host::Value person = host::newObject("ABPersonVXR", book);
  applyAll(assignments, vocabulary, person);
  save(book, manner);
  report(manner, "Added", person, vocabulary);
}

void editPerson(const std::string& name, const std::vector<std::string>& assignments, const Manner& manner) {
  const Vocabulary vocabulary(openAddressBook(manner));
  const host::Value person = findPerson(vocabulary.book(), name);
  applyAll(assignments, vocabulary, person);
  save(vocabulary.book(), manner);
  report(manner, "Changed", person, vocabulary);
}

void removePeople(const std::vector<std::string>& names, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  std::vector<host::Value> people;
  for (const std::string& name : names) people.push_back(findPerson(book, name));
  for (const host::Value& person : people) {
    if (!static_cast<bool>(book.call("removeRecord", person)))
      throw Failure(printable(nameOf(person)) + " can't be removed");
  }
  save(book, manner);
  for (const host::Value& person : people) say(manner, "Removed", person);
}

}  // namespace contacts
