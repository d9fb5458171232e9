#pragma once

#include "apps/contacts/vocabulary.h"
#include "host/value.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Values of the contacts in the words of the command line.
namespace contacts {

// "2012-07-14", with the time of day where there is one; "--07-14" for a day of no year.
std::string dateText(const host::Value& date);
// An address as letters have it, on one line; without a book, and other dictionaries, as "key: value, key: value". Data
// by its size.
std::string valueText(const host::Value& book, const host::Value& value);
// Throws Failure for a text that is no value of that type, of a property's entry or of the property itself.
host::Value valueFrom(std::string_view text, std::int64_t type);

std::vector<std::pair<std::string, host::Value>> entriesOf(const host::Value& dictionary);
host::Value dictionaryOf(const std::vector<std::pair<std::string, host::Value>>& entries);
// An array of that type, or of variants where not all elements are of it or the type isn't one of the language's own.
host::Value arrayOf(std::string_view type, const std::vector<host::Value>& elements);

// An entry of a multi-value.
struct Entry {
  std::string identifier;
  std::string label;
  host::Value value;
  bool isPrimary = false;
};
std::vector<Entry> entriesOfMultiValue(const host::Value& multiValue);

}  // namespace contacts
