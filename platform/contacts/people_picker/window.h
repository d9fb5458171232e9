#pragma once

#include "platform/contacts/people_picker/names.h"
#include "platform/contacts/people_picker/terminal.h"
#include "platform/contacts/people_picker/values.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace contacts {

// The picker as the user sees it: what keys and mouse do to a model, and the model drawn on a terminal. What is typed
// goes to the search field; arrow keys move in the column that Tab has chosen.
//
// A plain move selects the row it comes to. Once rows were marked one by one they stay selected, through searches and
// groups as well, until the marks are taken away; plain moves then only move. So they do among values of which any
// number may be selected.
class PickerWindow {
 public:
  enum class Outcome { kNone, kGroupChosen, kNameChosen, kCancelled };

  PickerWindow(std::unique_ptr<PickerTerminal> terminal, PickerModel& model);

  [[nodiscard]] PickerTerminal& terminal() { return *terminal_; }
  Outcome handle(const PickerInput& input);
  // The address book or the model isn't what it was.
  void reload();
  // Nothing of the model but what is selected.
  void reloadSelection();
  void draw();

 private:
  static constexpr int kTitleRow = 1;
  static constexpr int kListRow = 2;

  enum Column : std::size_t { kGroups, kNames, kValues, kColumnCount };

  struct Place {
    std::size_t cursor = 0;
    std::size_t top = 0;  // the first row in sight
  };
  struct ValueRow {
    Retained<ABRecord> person;
    PickerValue value;
    bool isSelected;
    bool isMultiValue;
  };
  // Where a column lies on the terminal.
  struct Span {
    Column column;
    int left;
    int width;
  };

  [[nodiscard]] std::size_t rowCount(Column column) const;
  [[nodiscard]] Column lastColumn() const;
  [[nodiscard]] int listHeight() const;
  [[nodiscard]] std::vector<Span> spans() const;

  Outcome type(char32_t character);
  Outcome point(const PickerInput& input);
  void search(const std::string& text);
  void move(std::ptrdiff_t steps, bool extend);
  void select(bool extend);
  void selectName(bool extend);
  void selectGroup(bool extend);
  void selectValue(bool extend);
  void toggle();
  void focusBeside(int step);
  void displayNextProperty();
  Outcome choose();
  void openSelectedGroups();
  void showNamesAnew(bool selectsFirst);
  void deselectRecords();
  void loadValues();
  void keepInSight(Column column);

  int drawSearch(int columns);
  void drawColumn(const Span& span);
  void drawRow(const Span& span, std::size_t row, int line);
  void drawHelp(int row, int columns);
  [[nodiscard]] std::u16string titleOf(Column column) const;

  std::unique_ptr<PickerTerminal> terminal_;
  PickerModel& model_;
  std::vector<NameRow> groups_;
  NameList names_;
  std::vector<ValueRow> values_;
  std::array<Place, kColumnCount> places_;
  int labelWidth_ = 0;  // cells of the values column; 0 without labels
  Column focus_ = kNames;
  bool hasMarks_ = false;
};

}  // namespace contacts
