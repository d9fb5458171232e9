#pragma once

#include "platform/contacts/people_picker/model.h"

#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// The record's name as its card shows it; of a company the company's. Never empty.
std::u16string displayName(ABRecord record);
// Text as it is searched and sorted: without differences of case and without accents.
std::u16string searchable(std::u16string_view text);

struct NameRow {
  Retained<ABRecord> record;  // nil: all of the address book
  std::u16string name;
  std::u16string key;  // searchable: the name and, after a line feed, what else the record is found by
};

// "All", then the groups by name.
std::vector<NameRow> groupRows();

// The names column.
class NameList {
 public:
  // The people of the selected groups and of their subgroups, or of the whole book; the subgroups themselves too where
  // they may be selected.
  void load(const PickerModel& model);
  // Shows the rows in which each word of the text is found.
  void filter(std::string_view text);

  [[nodiscard]] std::size_t count() const { return shown_.size(); }
  [[nodiscard]] std::size_t total() const { return rows_.size(); }
  [[nodiscard]] const NameRow& at(std::size_t index) const { return rows_[shown_[index]]; }
  // count() when it isn't shown.
  [[nodiscard]] std::size_t indexOf(ABRecord record) const;

 private:
  std::vector<NameRow> rows_;       // by name
  std::vector<std::size_t> shown_;  // places in them
};

}  // namespace contacts
