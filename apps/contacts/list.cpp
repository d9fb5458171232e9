#include "apps/contacts/commands.h"
#include "apps/contacts/failure.h"
#include "apps/contacts/people.h"
#include "apps/contacts/session.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"
#include "host/describe.h"

#include <charconv>
#include <iostream>

namespace contacts {
namespace {

constexpr double kSecondsPerDay = 86400;

// The constant's value. Throws Failure for a text that names no comparison.
std::int64_t comparisonNamed(std::string_view text) {
  for (const std::string& line : host::describe("ABAddressBookVXR").constants) {
    const std::string name = line.substr(0, line.find(' '));
    if (name.starts_with("kABSearch") || (!isSame(name, text) && !isSame(name, "kAB" + std::string(text)))) continue;
    for (const char* kind : {"Equal", "LessThan", "GreaterThan", "SubString", "Match", "Today"}) {
      if (name.find(kind) != std::string::npos) return host::constant("ABAddressBookVXR", name);
    }
  }
  throw Failure("no comparison \"" + printable(text) +
                "\"; contacts classes ABAddressBookVXR lists them, from kABEqual");
}

// What the comparison compares with: for those with today, days, given as "30d".
host::Value comparedValue(std::string_view text, std::int64_t type) {
  double days = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), days);
  if (error == std::errc{} && std::string_view(end, text.data() + text.size()) == "d") return days * kSecondsPerDay;
  return valueFrom(text, type == kDictionary ? kString : type);
}

host::Value condition(const Query& query, const Vocabulary& vocabulary) {
  const PropertyName& property = vocabulary.property(query.property);
  const bool isText = property.entryType() == kString || property.entryType() == kDictionary;
  const std::string comparison = !query.comparison.empty() ? query.comparison
                                 : isText                  ? "ContainsSubStringCaseInsensitive"
                                                           : "Equal";
  if (!query.label.empty() && !property.isMulti()) throw Failure(property.name + " has one value and no labels");
  if (!query.key.empty() && property.entryType() != kDictionary) {
    throw Failure(property.name + " has no keys such as " + printable(query.key));
  }
  const auto orNil = [](const std::string& text) { return text.empty() ? host::Value() : host::Value(text); };
  return host::callShared("ABPersonVXR", "searchElementForProperty", property.name,
                          orNil(query.label.empty() ? std::string() : vocabulary.labelNamed(query.label)),
                          orNil(query.key.empty() ? std::string() : vocabulary.keyNamed(query.key)),
                          comparedValue(query.text, property.entryType()), comparisonNamed(comparison));
}

}  // namespace

void listPeople(const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const std::vector<host::Value> people = book.call("people").elements();
  if (manner.isJson) {
    printPeople(people, book, manner);
    return;
  }
  for (const host::Value& person : people) std::cout << printable(nameOf(person)) << '\n';
}

void showPeople(const std::vector<std::string>& names, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const Vocabulary vocabulary(book);
  for (const std::string& name : names) {
    if (&name != &names.front() && !manner.isJson) std::cout << '\n';
    printRecord(findPerson(book, name), vocabulary, manner);
  }
}

bool findPeople(const Query& query, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  std::vector<host::Value> people;
  if (query.property.empty()) {
    if (!query.label.empty() || !query.key.empty() || !query.comparison.empty()) {
      throw Failure("--label, --key and --comparison need --property");
    }
    people = peopleWith(book, query.text);
  } else {
    people = book.call("recordsMatchingSearchElement", condition(query, Vocabulary(book))).elements();
  }
  printPeople(people, book, manner);
  return !people.empty();
}

}  // namespace contacts
