#pragma once

#include "platform/contacts/constants.h"
#include "platform/foundation/error.h"
#include "platform/foundation/string.h"

// A person or a group of the contacts database. Changes live in memory until the record's address book is saved.
class ABRecord : public NSObject {
 public:
  using NSObject::NSObject;

  // Nil when unset or unknown. A nil name raises NSInvalidArgumentException, here and below.
  [[nodiscard]] NSObject valueForProperty(NSString property) const {
    return send<NSObject>(*this, "valueForProperty:"_sel, property);
  }
  // Nil clears the property. A value of the wrong type raises NSInvalidArgumentException; false when the framework
  // refuses the value.
  bool setValue(NSObject value, NSString property) const {
    return send<bool>(*this, "setValue:forProperty:"_sel, value, property);
  }
  bool setValue(NSObject value, NSString property, NSError* error) const {
    return send<bool>(*this, "setValue:forProperty:error:"_sel, value, property, error);
  }
  bool removeValueForProperty(NSString property) const {
    return send<bool>(*this, "removeValueForProperty:"_sel, property);
  }
  // "<UID>:ABPerson" or "<UID>:ABGroup".
  [[nodiscard]] NSString uniqueId() const { return send<NSString>(*this, "uniqueId"_sel); }
  [[nodiscard]] bool isReadOnly() const { return send<bool>(*this, "isReadOnly"_sel); }
};
