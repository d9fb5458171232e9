#include "platform/contacts/people_picker/window.h"

#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace contacts {
namespace {

constexpr int kWheelRows = 3;

// What control keys send.
enum : char32_t {
  kControlSpace = 0,
  kControlC = 3,
  kControlH = 8,
  kTab = 9,
  kLineFeed = 10,
  kControlL = 12,
  kReturn = 13,
  kControlP = 16,
  kControlT = 20,
  kControlU = 21,
  kEscape = 27,
  kDelete = 127,
};

bool isControl(char32_t character) { return character < 0x20 || (character >= 0x7F && character < 0xA0); }

void appendUtf8(std::string& text, char32_t character) {
  char16_t units[2];
  NSUInteger count = 1;
  if (character < 0x10000) {
    units[0] = static_cast<char16_t>(character);
  } else {
    units[0] = static_cast<char16_t>(0xD7C0 + (character >> 10));
    units[1] = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    count = 2;
  }
  text += utf8Of(NSString::stringWithCharacters(units, count));
}

std::string withoutLastCharacter(std::string text) {
  while (!text.empty() && (text.back() & 0xC0) == 0x80) text.pop_back();
  if (!text.empty()) text.pop_back();
  return text;
}

}  // namespace

PickerWindow::PickerWindow(std::unique_ptr<PickerTerminal> terminal, PickerModel& model)
    : terminal_(std::move(terminal)), model_(model) {
  reload();
}

void PickerWindow::reload() {
  const AutoreleasePool pool;
  Place& place = places_[kNames];
  const auto at = place.cursor < names_.count() ? names_.at(place.cursor).record : Retained<ABRecord>();
  groups_ = groupRows();
  names_.load(model_);
  const std::vector<PickedRecord> selected = model_.selectedRecords();
  const ABRecord wanted = !selected.empty() && !at ? selected.front().record.get() : at.get();
  const std::size_t index = names_.indexOf(wanted);
  if (index < names_.count()) place.cursor = index;
  focus_ = std::min(focus_, lastColumn());
  reloadSelection();
  for (const Column column : {kGroups, kNames, kValues}) keepInSight(column);
}

void PickerWindow::reloadSelection() {
  const AutoreleasePool pool;
  const std::size_t count = model_.selectedRecords().size();
  hasMarks_ = count > 1 || (hasMarks_ && count > 0 && model_.allowsMultiple());
  loadValues();
}

std::size_t PickerWindow::rowCount(Column column) const {
  if (column == kGroups) return groups_.size();
  return column == kNames ? names_.count() : values_.size();
}

// Brings the cursor into the column, and the column's part in sight to the cursor.
void PickerWindow::keepInSight(Column column) {
  Place& place = places_[column];
  const std::size_t count = rowCount(column);
  const auto height = static_cast<std::size_t>(listHeight());
  place.cursor = std::min(place.cursor, count == 0 ? 0 : count - 1);
  place.top = std::min(place.top, count <= height ? 0 : count - height);
  if (place.cursor < place.top) place.top = place.cursor;
  if (place.cursor >= place.top + height) place.top = place.cursor - height + 1;
}

PickerWindow::Outcome PickerWindow::handle(const PickerInput& input) {
  const AutoreleasePool pool;
  const std::ptrdiff_t page = listHeight();
  constexpr std::ptrdiff_t kAll = std::numeric_limits<std::ptrdiff_t>::max() / 2;
  switch (input.key) {
    case PickerInput::Key::kCharacter:
      return type(input.character);
    case PickerInput::Key::kUp:
      move(-1, input.extends);
      break;
    case PickerInput::Key::kDown:
      move(1, input.extends);
      break;
    case PickerInput::Key::kPageUp:
      move(-page, input.extends);
      break;
    case PickerInput::Key::kPageDown:
      move(page, input.extends);
      break;
    case PickerInput::Key::kHome:
      move(-kAll, input.extends);
      break;
    case PickerInput::Key::kEnd:
      move(kAll, input.extends);
      break;
    case PickerInput::Key::kLeft:
      focusBeside(-1);
      break;
    case PickerInput::Key::kRight:
      focusBeside(1);
      break;
    case PickerInput::Key::kBackspace:
      search(withoutLastCharacter(model_.searchText));
      break;
    case PickerInput::Key::kMouse:
    case PickerInput::Key::kWheelUp:
    case PickerInput::Key::kWheelDown:
      return point(input);
    case PickerInput::Key::kResize:
      for (const Column column : {kGroups, kNames, kValues}) keepInSight(column);
      break;
    case PickerInput::Key::kGone:
      return Outcome::kCancelled;
  }
  return Outcome::kNone;
}

PickerWindow::Outcome PickerWindow::type(char32_t character) {
  switch (character) {
    case kControlC:
    case kEscape:
      return Outcome::kCancelled;
    case kReturn:
    case kLineFeed:
      return choose();
    case kTab:
      focusBeside(focus_ == lastColumn() ? -static_cast<int>(focus_) : 1);
      break;
    case kControlH:
    case kDelete:
      search(withoutLastCharacter(model_.searchText));
      break;
    case kControlSpace:
    case kControlT:
      toggle();
      break;
    case kControlP:
      displayNextProperty();
      break;
    case kControlU:
      search("");
      break;
    case kControlL:
      terminal_->repaint();
      break;
    default:
      if (!isControl(character)) {
        std::string text = model_.searchText;
        appendUtf8(text, character);
        search(text);
      }
  }
  return Outcome::kNone;
}

PickerWindow::Outcome PickerWindow::point(const PickerInput& input) {
  for (const Span& span : spans()) {
    if (input.column < span.left || input.column >= span.left + span.width) continue;
    Place& place = places_[span.column];
    const std::size_t count = rowCount(span.column);
    if (input.key != PickerInput::Key::kMouse) {
      const auto height = static_cast<std::size_t>(listHeight());
      const std::size_t last = count <= height ? 0 : count - height;
      const std::size_t up = place.top - std::min<std::size_t>(place.top, kWheelRows);
      place.top = input.key == PickerInput::Key::kWheelUp ? up : std::min(place.top + kWheelRows, last);
      return Outcome::kNone;
    }
    if (input.row == kTitleRow && span.column == kValues) displayNextProperty();
    if (input.row < kListRow || input.row >= kListRow + listHeight()) return Outcome::kNone;
    focus_ = span.column;
    const std::size_t row = place.top + static_cast<std::size_t>(input.row - kListRow);
    if (row >= count) return Outcome::kNone;
    place.cursor = row;
    if (input.isDouble) return choose();
    if (input.extends) {
      toggle();
      return Outcome::kNone;
    }
    hasMarks_ = hasMarks_ && focus_ != kNames;
    select(false);
    return Outcome::kNone;
  }
  return Outcome::kNone;
}

void PickerWindow::search(const std::string& text) {
  model_.searchText = text;
  names_.filter(text);
  focus_ = kNames;
  showNamesAnew(!text.empty());
}

// The names column has other rows: goes to the selected one if it is among them, and else selects the first, or
// nothing.
void PickerWindow::showNamesAnew(bool selectsFirst) {
  Place& place = places_[kNames];
  place = {};
  const std::vector<PickedRecord> selected = model_.selectedRecords();
  const std::size_t kept = selected.empty() ? names_.count() : names_.indexOf(selected.front().record.get());
  if (kept < names_.count()) {
    if (!hasMarks_) place.cursor = kept;
  } else if (!hasMarks_) {
    deselectRecords();
    if (selectsFirst && names_.count() > 0) model_.selectRecord(names_.at(0).record.get(), false);
  }
  keepInSight(kNames);
  loadValues();
}

void PickerWindow::deselectRecords() {
  for (const PickedRecord& picked : model_.selectedRecords()) model_.deselectRecord(picked.record.get());
}

void PickerWindow::move(std::ptrdiff_t steps, bool extend) {
  const auto count = static_cast<std::ptrdiff_t>(rowCount(focus_));
  if (count == 0) return;
  Place& place = places_[focus_];
  const auto from = static_cast<std::ptrdiff_t>(place.cursor);
  const std::ptrdiff_t to = std::clamp<std::ptrdiff_t>(from + steps, 0, count - 1);
  if (extend && model_.allowsMultiple()) {
    for (std::ptrdiff_t row = from; row != to; row += to > from ? 1 : -1) {
      place.cursor = static_cast<std::size_t>(row);
      select(true);
    }
  }
  place.cursor = static_cast<std::size_t>(to);
  const bool onlyMoves = focus_ == kValues && !extend && model_.valueSelection() == PickerModel::ValueSelection::kMany;
  if (!onlyMoves && (to != from || rowCount(focus_) == 1)) select(extend);
  keepInSight(focus_);
}

// Of the row under the cursor.
void PickerWindow::select(bool extend) {
  if (places_[focus_].cursor >= rowCount(focus_)) return;
  if (focus_ == kGroups) {
    selectGroup(extend);
  } else if (focus_ == kNames) {
    selectName(extend);
  } else {
    selectValue(extend);
  }
}

void PickerWindow::selectName(bool extend) {
  if (extend && model_.allowsMultiple()) hasMarks_ = true;
  if (!hasMarks_ || extend) model_.selectRecord(names_.at(places_[kNames].cursor).record.get(), extend);
  loadValues();
}

void PickerWindow::selectGroup(bool extend) {
  const NameRow& row = groups_[places_[kGroups].cursor];
  if (row.record) {
    model_.selectGroup(row.record.get(), extend);
  } else {
    for (const ABGroup group : model_.selectedGroups()) model_.deselectGroup(group);
  }
  openSelectedGroups();
}

void PickerWindow::openSelectedGroups() {
  names_.load(model_);
  const bool opensGroup = !model_.selectedGroups().empty();
  if (opensGroup && model_.allowsGroups() && !hasMarks_) deselectRecords();
  showNamesAnew(opensGroup && !model_.allowsGroups());
}

void PickerWindow::selectValue(bool extend) {
  const ValueRow row = values_[places_[kValues].cursor];
  if (!row.isMultiValue || model_.valueSelection() == PickerModel::ValueSelection::kNone) return;
  if (!extend) {
    for (const std::string& other : model_.selectedIdentifiers(row.person.get())) {
      if (other != row.value.identifier) model_.deselectIdentifier(row.person.get(), other);
    }
  }
  model_.selectIdentifier(row.person.get(), row.value.identifier, true);
  loadValues();
}

void PickerWindow::toggle() {
  Place& place = places_[focus_];
  if (place.cursor >= rowCount(focus_)) return;
  if (focus_ == kGroups) {
    const ABRecord group = groups_[place.cursor].record.get();
    const std::vector<ABGroup> selected = model_.selectedGroups();
    if (group && std::ranges::find(selected, group) != selected.end()) {
      model_.deselectGroup(group);
      openSelectedGroups();
    } else {
      selectGroup(true);
    }
    return;
  }
  if (focus_ == kValues) {
    const ValueRow row = values_[place.cursor];
    if (row.isSelected) {
      model_.deselectIdentifier(row.person.get(), row.value.identifier);
      loadValues();
    } else {
      selectValue(true);
    }
    return;
  }
  const ABRecord record = names_.at(place.cursor).record.get();
  // A row that is selected because the cursor is there becomes marked.
  if (hasMarks_ && model_.isSelected(record)) {
    model_.deselectRecord(record);
    hasMarks_ = !model_.selectedRecords().empty();
    loadValues();
  } else {
    selectName(true);
  }
}

PickerWindow::Column PickerWindow::lastColumn() const { return model_.displayedProperty().empty() ? kNames : kValues; }

void PickerWindow::focusBeside(int step) {
  focus_ = static_cast<Column>(std::clamp(static_cast<int>(focus_) + step, 0, static_cast<int>(lastColumn())));
  if (focus_ != kValues) return;
  const auto selected = std::ranges::find_if(values_, &ValueRow::isSelected);
  places_[kValues].cursor = selected == values_.end() ? 0 : static_cast<std::size_t>(selected - values_.begin());
  keepInSight(kValues);
}

void PickerWindow::displayNextProperty() {
  const std::vector<std::string>& properties = model_.properties();
  const auto shown = std::ranges::find(properties, model_.displayedProperty());
  if (shown == properties.end()) return;
  model_.setDisplayedProperty(shown + 1 == properties.end() ? properties.front() : *(shown + 1));
  reload();
}

PickerWindow::Outcome PickerWindow::choose() {
  if (focus_ == kGroups) {
    select(false);
    if (model_.allowsGroups() && !model_.selectedGroups().empty()) return Outcome::kGroupChosen;
    focus_ = kNames;
    return Outcome::kNone;
  }
  if (model_.selectedRecords().empty()) {
    if (places_[kNames].cursor >= names_.count()) return Outcome::kNone;
    focus_ = kNames;
    select(false);
  }
  return Outcome::kNameChosen;
}

// Of the selected people, or of the one under the cursor while nobody is selected.
void PickerWindow::loadValues() {
  values_.clear();
  std::vector<ABRecord> shown;
  for (const PickedRecord& picked : model_.selectedRecords()) shown.push_back(picked.record.get());
  if (shown.empty() && places_[kNames].cursor < names_.count()) {
    shown.push_back(names_.at(places_[kNames].cursor).record.get());
  }
  const bool isMultiValue = model_.displaysSeveralValues();
  const bool isSelectable = model_.valueSelection() != PickerModel::ValueSelection::kNone;
  for (const ABRecord record : shown) {
    const std::vector<std::string> selected = model_.selectedIdentifiers(record);
    for (PickerValue& value : valuesOf(record, model_.displayedProperty())) {
      const bool isSelected = isMultiValue ? std::ranges::find(selected, value.identifier) != selected.end()
                                           : isSelectable && model_.isSelected(record);
      if (shown.size() > 1) value.label = displayName(record) + (value.label.empty() ? u"" : u" ") + value.label;
      values_.push_back({Retained<ABRecord>::share(record), std::move(value), isSelected, isMultiValue});
    }
  }
  constexpr std::size_t kLongestLabel = 24;
  labelWidth_ = 0;
  for (const ValueRow& row : values_) {
    const std::size_t length = std::min(row.value.label.size(), kLongestLabel);
    labelWidth_ = std::max(labelWidth_, static_cast<int>(length));
  }
  keepInSight(kValues);
}

}  // namespace contacts
