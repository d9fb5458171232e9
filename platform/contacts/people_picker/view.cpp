#include "platform/contacts/people_picker/window.h"

#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"

#include <algorithm>
#include <string>

// The window as it is drawn: the search field, the columns' titles, the columns, and a line of help.
namespace contacts {
namespace {

constexpr int kNarrow = 60;  // columns; below, two of the picker's columns show
constexpr int kMarkWidth = 2;
constexpr std::u16string_view kSearchTitle = u"Search: ";

std::u16string decimal(std::size_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

std::u16string wide(const std::string& utf8) { return unitsOf(makeString(utf8)); }

}  // namespace

int PickerWindow::listHeight() const { return std::max(1, terminal_->size().rows - kListRow - 1); }

std::vector<PickerWindow::Span> PickerWindow::spans() const {
  const int columns = terminal_->size().columns;
  const bool hasValues = lastColumn() == kValues;
  if (columns < kNarrow) {
    const Column left = focus_ == kGroups ? kGroups : kNames;
    if (left == kNames && !hasValues) return {{kNames, 0, columns}};
    const int width = columns / 2;
    const Column right = left == kGroups ? kNames : kValues;
    return {{left, 0, width}, {right, width + 1, columns - width - 1}};
  }
  const int groups = std::clamp(columns / 5, 14, 28);
  const int rest = columns - groups - 1;
  if (!hasValues) return {{kGroups, 0, groups}, {kNames, groups + 1, rest}};
  const int names = rest * 2 / 5;
  return {{kGroups, 0, groups}, {kNames, groups + 1, names}, {kValues, groups + names + 2, rest - names - 1}};
}

std::u16string PickerWindow::titleOf(Column column) const {
  if (column == kGroups) return u"Groups";
  if (column == kNames) return u"Names";
  const std::u16string title = wide(model_.title(model_.displayedProperty()));
  return model_.properties().size() > 1 ? title + u" \u25BE" : title;
}

void PickerWindow::draw() {
  const AutoreleasePool pool;
  const PickerSize size = terminal_->size();
  terminal_->erase();
  for (const Span& span : spans()) drawColumn(span);
  drawHelp(size.rows - 1, size.columns);
  terminal_->present(0, drawSearch(size.columns));
}

// Answers where the text ends.
int PickerWindow::drawSearch(int columns) {
  std::u16string count = decimal(names_.count());
  if (names_.count() != names_.total()) count += u" of " + decimal(names_.total());
  const int countWidth = static_cast<int>(count.size());
  const int title = static_cast<int>(kSearchTitle.size());
  terminal_->put(0, 0, title, kSearchTitle, PickerStyle::kDim);
  const int width = std::max(1, columns - title - countWidth - 2);
  const std::u16string typed = wide(model_.searchText);
  std::u16string_view text = typed;
  // The end of a long text is what is being typed.
  while (static_cast<int>(text.size()) >= width) text.remove_prefix(1);
  const int end = title + terminal_->put(0, title, width, text, PickerStyle::kPlain);
  if (columns > title + countWidth) terminal_->put(0, columns - countWidth, countWidth, count, PickerStyle::kDim);
  return end;
}

void PickerWindow::drawColumn(const Span& span) {
  const auto style = span.column == focus_ ? PickerStyle::kFocusedTitle : PickerStyle::kTitle;
  terminal_->put(kTitleRow, span.left, span.width, u"  " + titleOf(span.column), style);
  for (int line = 0; line < listHeight(); ++line) {
    const std::size_t row = places_[span.column].top + static_cast<std::size_t>(line);
    if (row < rowCount(span.column)) drawRow(span, row, kListRow + line);
    if (span.left > 0) terminal_->put(kListRow + line, span.left - 1, 1, u"\u2502", PickerStyle::kDim);
  }
}

void PickerWindow::drawRow(const Span& span, std::size_t row, int line) {
  const std::vector<ABGroup> groups = model_.selectedGroups();
  const bool isCursor = span.column == focus_ && row == places_[span.column].cursor;
  bool isSelected = false;
  std::u16string text;
  std::u16string label;
  if (span.column == kGroups) {
    const ABRecord group = groups_[row].record.get();
    isSelected = group ? std::ranges::find(groups, group) != groups.end() : groups.empty();
    text = groups_[row].name;
  } else if (span.column == kNames) {
    isSelected = model_.isSelected(names_.at(row).record.get());
    text = names_.at(row).name;
  } else {
    isSelected = values_[row].isSelected;
    text = values_[row].value.text;
    label = values_[row].value.label;
  }
  const auto chosen = span.column == focus_ ? PickerStyle::kChosen : PickerStyle::kChosenBeside;
  const auto style = isSelected ? chosen : PickerStyle::kPlain;
  const std::u16string mark = {isCursor ? u'>' : u' ', isSelected ? u'*' : u' '};
  int left = span.left;
  int width = span.width;
  const auto put = [&](int cells, std::u16string_view part, PickerStyle partStyle) {
    const int taken = std::clamp(cells, 0, width);
    if (taken > 0) terminal_->put(line, left, taken, part, partStyle);
    left += taken;
    width -= taken;
  };
  put(kMarkWidth, mark, style);
  if (span.column == kValues) {
    const int labelWidth = std::min(labelWidth_, span.width / 2);
    put(labelWidth, label, isSelected ? style : PickerStyle::kDim);
    if (labelWidth > 0) put(1, u" ", style);
  }
  put(width, text, style);
}

void PickerWindow::drawHelp(int row, int columns) {
  std::u16string help = u"Enter choose  Esc cancel  Tab column";
  if (model_.allowsMultiple()) help += u"  Ctrl-T mark";
  if (model_.properties().size() > 1) help += u"  Ctrl-P next property";
  terminal_->put(row, 0, columns, help, PickerStyle::kDim);
}

}  // namespace contacts
