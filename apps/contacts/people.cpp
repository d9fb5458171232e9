#include "apps/contacts/people.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"
#include "apps/contacts/vocabulary.h"
#include "host/arrays.h"

#include <algorithm>
#include <cstddef>

namespace contacts {
namespace {

constexpr std::size_t kCandidatesShown = 8;

bool hasEmail(const host::Value& person, std::string_view address) {
  const host::Value emails = person.call("valueForProperty", "Email");
  if (emails.isNil()) return false;
  return std::ranges::any_of(entriesOfMultiValue(emails), [&](const Entry& each) {
    return each.value.typeName() == "String" && isSame(each.value.text(), address);
  });
}

// The one that a test picks out; nil when there is none.
template <class Test>
host::Value only(const std::vector<host::Value>& records, std::string_view text, Test test) {
  std::vector<host::Value> found;
  for (const host::Value& record : records) {
    if (test(record)) found.push_back(record);
  }
  if (found.empty()) return nullptr;
  if (found.size() == 1) return found.front();
  std::string candidates;
  for (std::size_t i = 0; i < std::min(found.size(), kCandidatesShown); ++i) {
    candidates += (i == 0 ? "" : ", ") + printable(nameOf(found[i])) + " (" + found[i].call("uniqueId").text() + ")";
  }
  if (found.size() > kCandidatesShown) candidates += ", ...";
  throw Failure("\"" + printable(text) + "\" is the name of " + std::to_string(found.size()) + ": " + candidates);
}

host::Value findRecord(const host::Value& book, std::string_view text, const std::string& kind, bool byEmail) {
  const std::string suffix = kind == "person" ? ":ABPerson" : ":ABGroup";
  const std::string id = std::string(text) + (text.ends_with(suffix) ? "" : suffix);
  if (const host::Value record = book.call("recordForUniqueId", id); !record.isNil()) return record;
  const std::vector<host::Value> records = book.call(kind == "person" ? "people" : "groups").elements();
  host::Value found = only(records, text, [&](const host::Value& each) { return isSame(nameOf(each), text); });
  if (found.isNil() && byEmail)
    found = only(records, text, [&](const host::Value& each) { return hasEmail(each, text); });
  if (found.isNil()) found = only(records, text, [&](const host::Value& each) { return contains(nameOf(each), text); });
  if (found.isNil()) throw Failure("no " + kind + " \"" + printable(text) + "\"");
  return found;
}

// Of dictionaries, such as addresses, in any part.
host::Value contains(const PropertyName& property, std::string_view text) {
  return host::callShared("ABPersonVXR", "searchElementForProperty", property.name, nullptr, nullptr, text,
                          host::constant("ABAddressBookVXR", "kABContainsSubStringCaseInsensitive"));
}

}  // namespace

host::Value findPerson(const host::Value& book, std::string_view text) {
  return findRecord(book, text, "person", true);
}

host::Value findGroup(const host::Value& book, std::string_view text) { return findRecord(book, text, "group", false); }

std::vector<host::Value> peopleWith(const host::Value& book, std::string_view text) {
  if (text.empty()) return book.call("people").elements();
  std::vector<host::Value> conditions;
  const Vocabulary vocabulary(book);
  for (const PropertyName& property : vocabulary.properties()) {
    const bool hasText = property.entryType() == kString || property.entryType() == kDictionary;
    if (hasText) conditions.push_back(contains(property, text));
  }
  const host::Value any =
      host::callShared("ABSearchElementVXR", "searchElementForConjunction",
                       host::constant("ABAddressBookVXR", "kABSearchOr"), host::objectArray(conditions));
  std::vector<host::Value> people;
  for (const host::Value& record : book.call("recordsMatchingSearchElement", any).elements()) {
    if (record.typeName() == "ABPersonVXR") people.push_back(record);
  }
  return people;
}

std::string nameOf(const host::Value& record) { return record.call("DisplayName").text(); }

}  // namespace contacts
