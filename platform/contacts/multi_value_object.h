#pragma once

#include "platform/contacts/constants.h"
#include "platform/contacts/multi_value.h"
#include "platform/objc/retained.h"

#include <vector>

namespace contacts {

struct MultiValueEntry {
  Retained<NSObject> value;
  Retained<NSString> label;
  Retained<NSString> identifier;
};

struct MultiValueObject : objc::Object {
  [[nodiscard]] NSUInteger count() const { return entries.size(); }
  [[nodiscard]] NSObject valueAtIndex(NSUInteger index) const { return entryAt(index).value.get(); }
  [[nodiscard]] NSString labelAtIndex(NSUInteger index) const { return entryAt(index).label.get(); }
  [[nodiscard]] NSString identifierAtIndex(NSUInteger index) const { return entryAt(index).identifier.get(); }
  [[nodiscard]] NSUInteger indexForIdentifier(NSString identifier) const;
  [[nodiscard]] NSString primaryIdentifier() const;
  [[nodiscard]] ABPropertyType propertyType() const;
  [[nodiscard]] NSString description() const;
  [[nodiscard]] bool isEqual(NSObject other) const;
  [[nodiscard]] NSUInteger hash() const;
  [[nodiscard]] ABMultiValue copy();
  [[nodiscard]] ABMutableMultiValue mutableCopy() const;

  std::vector<MultiValueEntry> entries;
  // Nothing, or one that was removed: the first entry counts.
  Retained<NSString> primary;
  // That of the property it was read from; 0 where the entries say it.
  ABPropertyType declaredType = kABErrorInProperty;

 protected:
  [[nodiscard]] const MultiValueEntry& entryAt(NSUInteger index) const;
};

struct MutableMultiValueObject : MultiValueObject {
  NSString addValue(NSObject value, NSString label) { return insertValue(value, label, entries.size()); }
  NSString insertValue(NSObject value, NSString label, NSUInteger index);
  bool removeValueAndLabelAtIndex(NSUInteger index);
  bool replaceValueAtIndex(NSUInteger index, NSObject value);
  bool replaceLabelAtIndex(NSUInteger index, NSString label);
  bool setPrimaryIdentifier(NSString identifier);
  [[nodiscard]] ABMultiValue copy() const;
};

// The single-value type that the object is a value of; kABErrorInProperty for what no property holds.
ABPropertyType elementTypeOf(NSObject value);

Retained<ABMultiValue> newMultiValue(std::vector<MultiValueEntry> entries, NSString primary, ABPropertyType type);

inline const MultiValueObject& objectOf(ABMultiValue value) {
  return *static_cast<const MultiValueObject*>(value.get());
}

}  // namespace contacts
