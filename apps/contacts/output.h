#pragma once

#include "apps/contacts/vocabulary.h"
#include "host/value.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// How a command speaks to its user.
struct Manner {
  bool isJson = false;
  bool isQuiet = false;   // says nothing of what went well, and doesn't warn
  bool isDryRun = false;  // writes nothing
};

// Rows of texts in aligned columns, the first row in bold on a terminal.
class Table {
 public:
  void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  void print() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

// Names, and the first e-mail address and telephone number of each; or all their values as JSON.
void printPeople(const std::vector<host::Value>& people, const host::Value& book, const Manner& manner);
// All values of the record that it has, as lines or as JSON.
void printRecord(const host::Value& record, const Vocabulary& vocabulary, const Manner& manner);
// "Added Anna Berg (id)"; as JSON {"done": "Added", "id", "name"} on one line.
void say(const Manner& manner, std::string_view what, const host::Value& record = nullptr);

}  // namespace contacts
