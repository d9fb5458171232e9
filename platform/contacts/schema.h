#pragma once

#include "platform/contacts/constants.h"

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

namespace contacts {

struct Property {
  std::string name;
  ABPropertyType type;
  bool isCustom = false;
};

// The properties of one kind of record, in order. A property keeps its address for the life of the process.
class Schema {
 public:
  explicit Schema(std::initializer_list<Property> builtIn);

  // Null when there is no such property.
  [[nodiscard]] const Property* find(std::string_view name) const;
  [[nodiscard]] const std::deque<Property>& properties() const { return properties_; }

 private:
  std::deque<Property> properties_;
  std::unordered_map<std::string_view, const Property*> byName_;
};

Schema& personSchema();
Schema& groupSchema();

}  // namespace contacts
