#pragma once

#include "platform/contacts/record.h"

#include <string>
#include <vector>

namespace contacts {

// An entry of a property as the values column shows it.
struct PickerValue {
  std::string identifier;  // empty for a property of one value
  std::u16string label;
  std::u16string text;  // one line
};

// None for groups and for an empty property.
std::vector<PickerValue> valuesOf(ABRecord record, const std::string& property);

}  // namespace contacts
