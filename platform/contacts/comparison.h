#pragma once

#include "platform/contacts/constants.h"

namespace contacts {

// What a comparison asks of one value: NotEqual asks for Equal, and that no value has it.
struct Comparison {
  ABSearchComparison asked;
  bool isNegated;
};

Comparison comparisonOf(ABSearchComparison comparison);
// Whether it is of texts only: parts of them, or with case ignored.
bool isOfText(ABSearchComparison asked);
// Whether values of that single-value type can be compared so with the value.
bool isComparable(ABPropertyType type, ABSearchComparison asked, NSObject value);
// Only for an asked comparison, and values that are comparable.
bool compares(NSObject value, ABSearchComparison asked, NSObject searched);

}  // namespace contacts
