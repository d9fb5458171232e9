#include "platform/contacts/record_object.h"
#include "platform/contacts/strings.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <utility>

namespace contacts {
namespace {

std::string addressOf(const objc::Object* object) {
  char address[32];
  std::snprintf(address, sizeof address, "(0x%" PRIxPTR ")", reinterpret_cast<std::uintptr_t>(object));
  return address;
}

}  // namespace

// One line a property that has a value, and one for the groups that the record is in, sorted by name.
NSString RecordObject::description() {
  std::vector<std::pair<std::string, std::string>> lines;
  for (const Property* property : schema_->properties()) {
    const NSObject shown = value(*property);
    if (shown) lines.emplace_back(property->name == "UID" ? "Unique ID" : property->name, utf8Of(shown.description()));
  }
  std::string groups;
  const NSArray parents = parentGroups();
  for (NSUInteger i = 0; i < parents.count(); ++i) {
    const auto group = parents.objectAtIndex(i).as<ABRecord>();
    const NSObject name = group.valueForProperty(kABGroupNameProperty);
    groups += (i == 0 ? "" : ", ") + (name ? utf8Of(name.as<NSString>()) + " " : "") + addressOf(group.get());
  }
  if (!groups.empty()) lines.emplace_back("Parent Groups", groups);
  std::ranges::sort(lines);
  std::size_t width = 0;
  for (const auto& [name, text] : lines) width = std::max(width, name.size());

  std::string text = std::string(Class(isa).name()) + " " + addressOf(this) + " {\n";
  for (auto& [name, shown] : lines) {
    name.resize(width, ' ');
    text += "   " + name + " : " + shown + "\n";
  }
  return makeString(text + "}");
}

}  // namespace contacts
