#include "platform/contacts/property_file.h"

#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace contacts {
namespace {

constexpr std::string_view kPerson = "person";
constexpr std::string_view kGroup = "group";

std::string_view takeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(std::min(word.size() + 1, text.size()));
  return word;
}

std::optional<PropertyChange> propertyOn(std::string_view line) {
  const std::string_view kind = takeWord(line);
  const std::string_view number = takeWord(line);
  PropertyChange property{kind == kGroup, vcard::unescape(line, vcard::Version::k30), kABErrorInProperty};
  const auto read = std::from_chars(number.data(), number.data() + number.size(), property.type);
  const bool isNumber = read.ec == std::errc() && read.ptr == number.data() + number.size();
  if (!isNumber || !isPropertyType(property.type) || property.name.empty()) return std::nullopt;
  return kind == kGroup || kind == kPerson ? std::optional(std::move(property)) : std::nullopt;
}

std::string lineFor(const PropertyChange& property) {
  return std::string(property.isForGroups ? kGroup : kPerson) + " " + std::to_string(property.type) + " " +
         vcard::escape(property.name);
}

bool isBuiltIn(const PropertyChange& property) {
  const Property* known = (property.isForGroups ? groupSchema() : personSchema()).find(property.name);
  return known != nullptr && !known->isCustom;
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) lines.emplace_back(vcard::withoutBreak(vcard::takePhysicalLine(text)));
  return lines;
}

}  // namespace

PropertyFileEdit editedPropertyFile(std::string_view text, const std::vector<PropertyChange>& changes) {
  std::vector<std::string> lines = linesOf(text);
  PropertyFileEdit edit;
  for (const PropertyChange& change : changes) {
    auto isMeant = [&](const std::string& line) {
      const std::optional<PropertyChange> property = propertyOn(line);
      return property && property->isForGroups == change.isForGroups && property->name == change.name;
    };
    if (change.type == kABErrorInProperty) {
      if (std::erase_if(lines, isMeant) > 0) ++edit.count;
    } else if (!isBuiltIn(change) && std::ranges::none_of(lines, isMeant)) {
      lines.push_back(lineFor(change));
      ++edit.count;
    }
  }
  for (const std::string& line : lines) edit.text += line + "\n";
  return edit;
}

void adoptPropertyFile(std::string_view text) {
  std::vector<Property> ofPersons;
  std::vector<Property> ofGroups;
  for (const std::string& line : linesOf(text)) {
    const std::optional<PropertyChange> property = propertyOn(line);
    if (property) (property->isForGroups ? ofGroups : ofPersons).push_back({property->name, property->type, true});
  }
  personSchema().setCustom(ofPersons);
  groupSchema().setCustom(ofGroups);
}

}  // namespace contacts
