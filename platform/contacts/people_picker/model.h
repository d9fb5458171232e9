#pragma once

#include "platform/contacts/address_book.h"
#include "platform/contacts/multi_value.h"
#include "platform/contacts/people_picker.h"
#include "platform/objc/retained.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// The shared book; nil, with a line in the log, when it can't be opened.
ABAddressBook pickerBook();

// A selected record of the names column, with the identifiers of its values that are selected.
struct PickedRecord {
  Retained<ABRecord> record;
  std::vector<std::string> identifiers;

  friend bool operator==(const PickedRecord& a, const PickedRecord& b) {
    return a.record.get() == b.record.get() && a.identifiers == b.identifiers;
  }
};

// What a picker is set to, and what is selected in it. Texts are UTF-8. What the attributes forbid stays selected out
// of sight, so that it doesn't matter in which order a program changes them.
class PickerModel {
 public:
  enum class ValueSelection { kNone, kOne, kMany };

  HIRect frame{{0, 0}, {500, 350}};
  std::string searchText;

  [[nodiscard]] ABPickerAttributes attributes() const { return attributes_; }
  void changeAttributes(ABPickerAttributes set, ABPickerAttributes clear) {
    attributes_ = (attributes_ | set) & ~clear;
  }
  [[nodiscard]] bool allowsGroups() const { return (attributes_ & kABPickerAllowGroupSelection) != 0; }
  [[nodiscard]] bool allowsMultiple() const { return (attributes_ & kABPickerAllowMultipleSelection) != 0; }
  [[nodiscard]] ValueSelection valueSelection() const;

  [[nodiscard]] const std::vector<std::string>& properties() const { return properties_; }
  void addProperty(const std::string& property);
  void removeProperty(const std::string& property);
  void setTitle(const std::string& title, const std::string& property) { titles_[property] = title; }
  // Empty when there is none.
  [[nodiscard]] std::string title(const std::string& property) const;
  // Empty while there is none.
  [[nodiscard]] const std::string& displayedProperty() const { return displayed_; }
  void setDisplayedProperty(const std::string& property);
  [[nodiscard]] bool displaysSeveralValues() const;

  [[nodiscard]] std::vector<ABGroup> selectedGroups() const;
  [[nodiscard]] std::vector<PickedRecord> selectedRecords() const;
  // Of the record's entries, those that are selected.
  [[nodiscard]] std::vector<std::string> selectedIdentifiers(ABRecord record) const;
  [[nodiscard]] NSArray selectedValues() const;
  [[nodiscard]] bool isSelected(ABRecord record) const;

  void selectGroup(NSObject group, bool extend);
  void deselectGroup(NSObject group);
  void selectRecord(NSObject record, bool extend);
  void deselectRecord(NSObject record);
  void selectIdentifier(NSObject person, const std::string& identifier, bool extend);
  void deselectIdentifier(NSObject person, const std::string& identifier);
  void deselectAll();

  // All that the user can change, to see what he did.
  struct State {
    std::vector<ABGroup> groups;
    std::vector<PickedRecord> records;
    std::string displayed;
  };
  [[nodiscard]] State state() const;

 private:
  // The value of the displayed property; nil for groups.
  [[nodiscard]] NSObject value(ABRecord record) const;
  // Where the displayed property has several values.
  [[nodiscard]] ABMultiValue entries(ABRecord record) const;
  [[nodiscard]] std::vector<std::string> primaryIdentifier(ABRecord record) const;
  // As far as they may be selected and are still there.
  [[nodiscard]] std::vector<std::string> validIdentifiers(const PickedRecord& picked) const;
  PickedRecord* find(ABRecord record);
  void reselectPrimaries();

  ABPickerAttributes attributes_ = kABPickerSingleValueSelection | kABPickerAllowMultipleSelection;
  std::vector<std::string> properties_;
  std::map<std::string, std::string> titles_;
  std::string displayed_;
  std::vector<Retained<ABGroup>> groups_;
  std::vector<PickedRecord> records_;
};

}  // namespace contacts
