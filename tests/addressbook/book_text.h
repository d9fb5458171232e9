#pragma once

#include "tests/bridge/shown_values.h"

#include <string>

// Records as host code sees them, as texts that can be compared between processes.

// Its type and its entries, with identifiers and labels; a star before the primary one.
inline std::string multiValueText(const host::Value& values) {
  std::string text = "type " + std::to_string(values.call("propertyType").integer());
  const std::string primary = values.call("primaryIdentifier").text();
  for (int i = 0; i < values.call("count").integer(); ++i) {
    const std::string identifier = values.call("identifierAtIndex", i).text();
    text += std::string("\n  ") + (identifier == primary ? "*" : "") + identifier + " " +
            values.call("labelAtIndex", i).text() + ": " + shown(values.call("valueAtIndex", i));
  }
  return text;
}

// All its properties that have values, in the schema's order.
inline std::string recordText(const host::Value& record) {
  std::string text;
  for (const host::Value& property : host::callShared(record.typeName(), "properties").elements()) {
    const host::Value value = record.call("valueForProperty", property);
    if (value.isNil()) continue;
    const bool isMultiValue = value.typeName() == "ABMultiValueVXR";
    text += property.text() + " " + (isMultiValue ? multiValueText(value) : shown(value)) + "\n";
  }
  return text;
}
