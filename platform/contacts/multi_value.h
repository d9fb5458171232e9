#pragma once

#include "platform/foundation/object.h"
#include "platform/foundation/string.h"

class ABMutableMultiValue;

// A property's labelled values, in order, each under an identifier that stays with it. Indexes out of range raise
// NSRangeException.
class ABMultiValue : public NSObject {
 public:
  using NSObject::NSObject;

  [[nodiscard]] NSUInteger count() const { return send<NSUInteger>(*this, "count"_sel); }
  [[nodiscard]] NSObject valueAtIndex(NSUInteger index) const {
    return send<NSObject>(*this, "valueAtIndex:"_sel, index);
  }
  [[nodiscard]] NSString labelAtIndex(NSUInteger index) const {
    return send<NSString>(*this, "labelAtIndex:"_sel, index);
  }
  [[nodiscard]] NSString identifierAtIndex(NSUInteger index) const {
    return send<NSString>(*this, "identifierAtIndex:"_sel, index);
  }
  // NSNotFound when there is no such entry.
  [[nodiscard]] NSUInteger indexForIdentifier(NSString identifier) const {
    return send<NSUInteger>(*this, "indexForIdentifier:"_sel, identifier);
  }
  [[nodiscard]] NSString primaryIdentifier() const { return send<NSString>(*this, "primaryIdentifier"_sel); }
  // 0 while it is empty or of mixed types.
  [[nodiscard]] NSInteger propertyType() const { return send<NSInteger>(*this, "propertyType"_sel); }

  // The caller owns the result.
  [[nodiscard]] ABMultiValue copy() const { return send<ABMultiValue>(*this, "copy"_sel); }
  [[nodiscard]] inline ABMutableMultiValue mutableCopy() const;
};

class ABMutableMultiValue : public ABMultiValue {
 public:
  using ABMultiValue::ABMultiValue;

  static ABMutableMultiValue alloc() { return ::alloc<ABMutableMultiValue>("ABMutableMultiValue"_class); }
  [[nodiscard]] ABMutableMultiValue init() const { return send<ABMutableMultiValue>(*this, "init"_sel); }

  // The new entry's identifier. A nil value or label raises NSInvalidArgumentException.
  NSString addValue(NSObject value, NSString label) const {
    return send<NSString>(*this, "addValue:withLabel:"_sel, value, label);
  }
  NSString insertValue(NSObject value, NSString label, NSUInteger index) const {
    return send<NSString>(*this, "insertValue:withLabel:atIndex:"_sel, value, label, index);
  }
  bool removeValueAndLabelAtIndex(NSUInteger index) const {
    return send<bool>(*this, "removeValueAndLabelAtIndex:"_sel, index);
  }
  bool replaceValueAtIndex(NSUInteger index, NSObject value) const {
    return send<bool>(*this, "replaceValueAtIndex:withValue:"_sel, index, value);
  }
  bool replaceLabelAtIndex(NSUInteger index, NSString label) const {
    return send<bool>(*this, "replaceLabelAtIndex:withLabel:"_sel, index, label);
  }
  bool setPrimaryIdentifier(NSString identifier) const {
    return send<bool>(*this, "setPrimaryIdentifier:"_sel, identifier);
  }
};

inline ABMutableMultiValue ABMultiValue::mutableCopy() const {
  return send<ABMutableMultiValue>(*this, "mutableCopy"_sel);
}
