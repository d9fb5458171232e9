#include "platform/contacts/people_picker/model.h"

#include "platform/contacts/localization.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/schema.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/log.h"

#include <algorithm>
#include <optional>

namespace contacts {
namespace {

// The shared book's record of that id; nil when it has none.
ABRecord known(NSObject record) {
  const ABAddressBook book = pickerBook();
  return record && book ? book.recordForUniqueId(record.as<ABRecord>().uniqueId()) : ABRecord();
}

bool isInBook(ABRecord record) { return objectOf(record).book() != nullptr; }

bool isGroup(ABRecord record) { return objectOf(record).isGroup(); }

}  // namespace

ABAddressBook pickerBook() {
  try {
    return ABAddressBook::sharedAddressBook();
  } catch (const NSException& exception) {
    NSLog("The people picker has no address book: %@"_ns, exception.reason());
    return nullptr;
  }
}

PickerModel::ValueSelection PickerModel::valueSelection() const {
  if ((attributes_ & kABPickerSingleValueSelection) != 0) return ValueSelection::kOne;
  return (attributes_ & kABPickerMultipleValueSelection) != 0 ? ValueSelection::kMany : ValueSelection::kNone;
}

void PickerModel::addProperty(const std::string& property) {
  if (std::ranges::find(properties_, property) != properties_.end()) return;
  properties_.push_back(property);
  if (displayed_.empty()) setDisplayedProperty(property);
}

void PickerModel::removeProperty(const std::string& property) {
  std::erase(properties_, property);
  if (displayed_ != property) return;
  displayed_ = properties_.empty() ? "" : properties_.front();
  reselectPrimaries();
}

std::string PickerModel::title(const std::string& property) const {
  if (const auto found = titles_.find(property); found != titles_.end()) return found->second;
  const bool isKnown =
      personSchema().find(property) != nullptr || std::ranges::find(properties_, property) != properties_.end();
  return isKnown ? utf8Of(localizedPropertyOrLabel(makeString(property))) : "";
}

void PickerModel::setDisplayedProperty(const std::string& property) {
  if (displayed_ == property || std::ranges::find(properties_, property) == properties_.end()) return;
  displayed_ = property;
  reselectPrimaries();
}

bool PickerModel::displaysSeveralValues() const {
  const Property* property = personSchema().find(displayed_);
  return property != nullptr && (property->type & kABMultiValueMask) != 0;
}

NSObject PickerModel::value(ABRecord record) const {
  return displayed_.empty() || isGroup(record) ? NSObject() : record.valueForProperty(makeString(displayed_));
}

ABMultiValue PickerModel::entries(ABRecord record) const {
  return displaysSeveralValues() ? value(record).as<ABMultiValue>() : ABMultiValue();
}

std::vector<std::string> PickerModel::primaryIdentifier(ABRecord record) const {
  const NSString primary = entries(record).primaryIdentifier();
  return primary ? std::vector{utf8Of(primary)} : std::vector<std::string>();
}

void PickerModel::reselectPrimaries() {
  for (PickedRecord& picked : records_) picked.identifiers = primaryIdentifier(picked.record.get());
}

std::vector<ABGroup> PickerModel::selectedGroups() const {
  std::vector<ABGroup> groups;
  for (const Retained<ABGroup>& group : groups_) {
    if (isInBook(group.get()) && (allowsMultiple() || groups.empty())) groups.push_back(group.get());
  }
  return groups;
}

std::vector<PickedRecord> PickerModel::selectedRecords() const {
  std::vector<PickedRecord> records;
  for (const PickedRecord& picked : records_) {
    if (!isInBook(picked.record.get()) || (isGroup(picked.record.get()) && !allowsGroups())) continue;
    records.push_back(picked);
    if (!allowsMultiple()) break;
  }
  return records;
}

bool PickerModel::isSelected(ABRecord record) const {
  return std::ranges::any_of(records_, [&](const PickedRecord& picked) { return picked.record.get() == record; });
}

std::vector<std::string> PickerModel::validIdentifiers(const PickedRecord& picked) const {
  const ABMultiValue shown = entries(picked.record.get());
  std::vector<std::string> identifiers;
  if (!shown || valueSelection() == ValueSelection::kNone) return identifiers;
  for (const std::string& identifier : picked.identifiers) {
    if (shown.indexForIdentifier(makeString(identifier)) == NSNotFound) continue;
    identifiers.push_back(identifier);
    if (valueSelection() == ValueSelection::kOne) break;
  }
  return identifiers;
}

std::vector<std::string> PickerModel::selectedIdentifiers(ABRecord record) const {
  const ABRecord wanted = known(record);
  for (const PickedRecord& picked : selectedRecords()) {
    if (picked.record.get() == wanted) return validIdentifiers(picked);
  }
  return {};
}

NSArray PickerModel::selectedValues() const {
  NSMutableArray values = NSMutableArray::array();
  if (valueSelection() == ValueSelection::kNone) return values;
  for (const PickedRecord& picked : selectedRecords()) {
    const NSObject value = this->value(picked.record.get());
    if (!value) continue;
    if (!displaysSeveralValues()) {
      values.addObject(value);
      continue;
    }
    const auto shown = value.as<ABMultiValue>();
    for (const std::string& identifier : validIdentifiers(picked)) {
      values.addObject(shown.valueAtIndex(shown.indexForIdentifier(makeString(identifier))));
    }
  }
  return values;
}

void PickerModel::selectGroup(NSObject group, bool extend) {
  const ABRecord selected = known(group);
  if (!selected || !isGroup(selected)) return;
  if (!extend || !allowsMultiple()) groups_.clear();
  deselectGroup(selected);
  groups_.push_back(Retained<ABGroup>::share(selected.as<ABGroup>()));
}

void PickerModel::deselectGroup(NSObject group) {
  const ABRecord deselected = known(group);
  std::erase_if(groups_, [&](const Retained<ABGroup>& selected) { return selected.get() == deselected; });
}

PickedRecord* PickerModel::find(ABRecord record) {
  const auto found = std::ranges::find_if(records_, [&](const auto& picked) { return picked.record.get() == record; });
  return found == records_.end() ? nullptr : &*found;
}

void PickerModel::selectRecord(NSObject record, bool extend) {
  const ABRecord selected = known(record);
  if (!selected || (isGroup(selected) && !allowsGroups())) return;
  if (!extend || !allowsMultiple()) records_.clear();
  if (find(selected) != nullptr) return;
  records_.push_back({Retained<ABRecord>::share(selected), primaryIdentifier(selected)});
}

void PickerModel::deselectRecord(NSObject record) {
  const ABRecord deselected = known(record);
  std::erase_if(records_, [&](const PickedRecord& picked) { return picked.record.get() == deselected; });
}

void PickerModel::selectIdentifier(NSObject person, const std::string& identifier, bool extend) {
  const ABRecord selected = known(person);
  if (!selected) return;
  const ABMultiValue shown = entries(selected);
  if (!shown || shown.indexForIdentifier(makeString(identifier)) == NSNotFound) return;
  const bool wasSelected = extend && find(selected) != nullptr;
  selectRecord(selected, extend);
  std::vector<std::string>& identifiers = find(selected)->identifiers;
  // The primary value that came with the person wasn't asked for.
  if (!wasSelected || valueSelection() != ValueSelection::kMany) identifiers.clear();
  std::erase(identifiers, identifier);
  identifiers.push_back(identifier);
}

void PickerModel::deselectIdentifier(NSObject person, const std::string& identifier) {
  if (PickedRecord* picked = find(known(person))) std::erase(picked->identifiers, identifier);
}

void PickerModel::deselectAll() {
  groups_.clear();
  records_.clear();
}

PickerModel::State PickerModel::state() const { return {selectedGroups(), records_, displayed_}; }

}  // namespace contacts
