#include "apps/contacts/output.h"

#include "apps/contacts/json.h"
#include "apps/contacts/people.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace contacts {
namespace {

std::string firstEntry(const host::Value& person, const char* property, const host::Value& book) {
  const host::Value entries = person.call("valueForProperty", property);
  if (entries.isNil() || entries.call("count").integer() == 0) return {};
  return printable(valueText(book, entries.call("valueAtIndex", 0U)));
}

}  // namespace

void Table::print() const {
  std::vector<std::size_t> widths;
  for (const std::vector<std::string>& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], displayWidth(row[i]));
  }
  const bool isBold = isTerminal(STDOUT_FILENO);
  for (const std::vector<std::string>& row : rows_) {
    const bool isHead = isBold && &row == &rows_.front();
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += i + 1 < row.size() ? padded(row[i], widths[i]) + "  " : row[i];
    }
    line.erase(line.find_last_not_of(' ') + 1);
    std::cout << (isHead ? "\x1B[1m" : "") << line << (isHead ? "\x1B[0m" : "") << '\n';
  }
}

void printPeople(const std::vector<host::Value>& people, const host::Value& book, const Manner& manner) {
  if (manner.isJson) {
    std::cout << jsonOf(people, Vocabulary(book)) << '\n';
    return;
  }
  Table table;
  if (!people.empty()) table.add({"Name", "Email", "Phone"});
  for (const host::Value& person : people) {
    table.add({printable(nameOf(person)), firstEntry(person, "Email", book), firstEntry(person, "Phone", book)});
  }
  table.print();
}

void printRecord(const host::Value& record, const Vocabulary& vocabulary, const Manner& manner) {
  if (manner.isJson) {
    std::cout << jsonOf(record, vocabulary) << '\n';
    return;
  }
  const host::Value& book = vocabulary.book();
  Table table;
  table.add({printable(nameOf(record)), record.call("uniqueId").text()});
  for (const PropertyName& property : vocabulary.properties()) {
    const host::Value value = record.call("valueForProperty", property.name);
    if (value.isNil() || property.name == "UID") continue;
    if (!property.isMulti()) {
      table.add({property.title, printable(valueText(book, value))});
      continue;
    }
    for (const Entry& entry : entriesOfMultiValue(value)) {
      table.add({property.title + " (" + printable(vocabulary.labelText(entry.label)) + ")",
                 printable(valueText(book, entry.value))});
    }
  }
  table.print();
}

void say(const Manner& manner, std::string_view what, const host::Value& record) {
  if (manner.isQuiet) return;
  if (manner.isJson) {
    NamedTexts line{{manner.isDryRun ? "planned" : "done", std::string(what)}};
    if (!record.isNil()) line.insert(line.end(), {{"id", record.call("uniqueId").text()}, {"name", nameOf(record)}});
    std::cout << jsonLine(line) << '\n';
    return;
  }
  std::cout << (manner.isDryRun ? "(not saved) " : "") << what;
  if (!record.isNil()) std::cout << ' ' << printable(nameOf(record)) << " (" << record.call("uniqueId").text() << ')';
  std::cout << '\n';
}

}  // namespace contacts
