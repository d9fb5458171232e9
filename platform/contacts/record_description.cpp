#include "platform/contacts/record_object.h"
#include "platform/contacts/strings.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <utility>

namespace contacts {

// One line a property that has a value, sorted by name.
NSString RecordObject::description() {
  std::vector<std::pair<std::string, std::string>> lines;
  for (const Property* property : schema_->properties()) {
    const NSObject shown = value(*property);
    if (shown) lines.emplace_back(property->name == "UID" ? "Unique ID" : property->name, utf8Of(shown.description()));
  }
  std::ranges::sort(lines);
  std::size_t width = 0;
  for (const auto& [name, text] : lines) width = std::max(width, name.size());

  char address[32];
  std::snprintf(address, sizeof address, " (0x%" PRIxPTR ") {\n", reinterpret_cast<std::uintptr_t>(this));
  std::string text = std::string(Class(isa).name()) + address;
  for (auto& [name, shown] : lines) {
    name.resize(width, ' ');
    text += "   " + name + " : " + shown + "\n";
  }
  return makeString(text + "}");
}

}  // namespace contacts
