#pragma once

#include "platform/contacts/schema.h"

#include <string>
#include <string_view>
#include <vector>

// The custom properties of a folder, kept in a file of its data folder. One property a line: "person" or "group", its
// type and its name, escaped as in a card.
namespace contacts {

// What is to be done to the file.
struct PropertyChange {
  bool isForGroups = false;
  std::string name;
  ABPropertyType type = kABErrorInProperty;  // kABErrorInProperty: it is to go
};

struct PropertyFileEdit {
  std::string text;
  int count = 0;  // of the changes that changed something
};

// Lines that can't be understood stay. A property that is there already, or built in, isn't added.
PropertyFileEdit editedPropertyFile(std::string_view text, const std::vector<PropertyChange>& changes);

// The custom properties of both schemas are those of the file from now on.
void adoptPropertyFile(std::string_view text);

}  // namespace contacts
