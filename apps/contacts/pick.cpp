#include "apps/contacts/pick.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/session.h"
#include "host/entries.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace contacts {

namespace {

constexpr double kSecondsBetweenLooks = 1;

// The window is on the terminal whatever the standard streams are.
void requireTerminal() {
  const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY);
  const bool isMine = terminal >= 0 && tcgetpgrp(terminal) == getpgrp() &&
                      (isatty(STDIN_FILENO) != 0 || isatty(STDOUT_FILENO) != 0 || isatty(STDERR_FILENO) != 0);
  if (terminal >= 0) close(terminal);
  if (!isMine) throw Failure("there is no terminal to show the picker on");
}

host::Value makePicker(const PickOptions& options) {
  if (!options.query.empty()) setenv("ADDRESSBOOK_PICKER_SEARCH", options.query.c_str(), 1);
  host::Value picker = host::newObject("ABPickerVXR");
  picker.call("Create");
  picker.set("AllowMultipleSelection", options.multiple);
  picker.set("AllowGroupSelection", options.groups);
  if (options.multiple) {
    picker.set("AllowSingleValueSelection", false);
    picker.set("AllowMultipleValueSelection", true);
  }
  if (!options.property.empty()) picker.call("AddProperty", options.property);
  return picker;
}

void letUserPick(const host::Value& picker) {
  picker.set("Visible", true);
  if (!picker.get("Visible")) throw Failure("the picker can't be shown on this terminal");
  while (picker.get("Visible") == true) host::idle(kSecondsBetweenLooks);
}

struct Picked {
  host::Value record;
  std::vector<std::string> values;
};

bool isGroup(const host::Value& record) { return record.typeName() == "ABGroupVXR"; }

// The picker gives the values of all records in one list, in the records' order.
std::vector<Picked> pickedRecords(const host::Value& picker, const PickOptions& options) {
  std::vector<Picked> all;
  for (const host::Value& record : picker.call("SelectedRecords").elements()) all.push_back({record, {}});
  if (all.empty() && options.groups) {
    for (const host::Value& group : picker.call("SelectedGroups").elements()) all.push_back({group, {}});
  }
  const std::vector<host::Value> values = picker.call("SelectedValues").elements();
  std::size_t next = 0;
  for (Picked& picked : all) {
    if (options.property.empty() || isGroup(picked.record)) continue;
    const host::Value value = picked.record.call("valueForProperty", options.property);
    std::size_t count = value.isNil() ? 0 : 1;
    if (count > 0 && value.typeName() == "ABMultiValueVXR") {
      count = picker.call("SelectedIdentifiers", picked.record).size();
    }
    for (; count > 0 && next < values.size(); --count) picked.values.push_back(values[next++].text());
  }
  return all;
}

std::string onOneLine(std::string text) {
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) text.replace(at, 1, ", ");
  return text;
}

void printJson(const std::vector<Picked>& all, const PickOptions& options) {
  auto list = nlohmann::ordered_json::array();
  for (const Picked& picked : all) {
    nlohmann::ordered_json entry{{"id", picked.record.call("uniqueId").text()},
                                 {"kind", isGroup(picked.record) ? "group" : "person"},
                                 {"name", picked.record.call("DisplayName").text()}};
    if (!options.property.empty()) entry[options.property] = picked.values;
    list.push_back(std::move(entry));
  }
  std::cout << list.dump(2) << '\n';
}

void printLines(const std::vector<Picked>& all, const PickOptions& options) {
  bool isEmpty = true;
  for (const Picked& picked : all) {
    std::vector<std::string> lines = picked.values;
    if (options.property.empty() || isGroup(picked.record)) lines = {picked.record.call("DisplayName").text()};
    for (const std::string& line : lines) std::cout << onOneLine(line) << '\n';
    isEmpty = isEmpty && lines.empty();
  }
  if (isEmpty) throw Failure("nobody of those picked has a value for " + options.property);
}

}  // namespace

bool pick(const PickOptions& given) {
  requireTerminal();
  const Vocabulary vocabulary(openAddressBook(Manner{.isJson = given.json}));
  PickOptions options = given;
  if (!options.property.empty()) options.property = vocabulary.property(options.property).name;
  const host::Value picker = makePicker(options);
  letUserPick(picker);
  const std::vector<Picked> all = pickedRecords(picker, options);
  if (all.empty()) return false;
  if (options.json) {
    printJson(all, options);
  } else {
    printLines(all, options);
  }
  return true;
}

}  // namespace contacts
