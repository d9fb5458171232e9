#include "apps/contacts/vocabulary.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/text.h"
#include "host/describe.h"

#include <algorithm>

namespace contacts {
namespace {

constexpr std::pair<std::int64_t, const char*> kTypes[] = {
    {kString, "string"}, {kInteger, "integer"},       {kReal, "real"}, {kDate, "date"},
    {kArray, "array"},   {kDictionary, "dictionary"}, {kData, "data"}, {kDateComponents, "date-components"},
};

// The values of the shared methods that are named kAB...<ending>.
std::vector<std::string> constantsEnding(std::string_view ending) {
  std::vector<std::string> values;
  for (const std::string& line : host::describe("ABAddressBookVXR").sharedMethods) {
    const std::string name = line.substr(0, line.find(' '));
    if (!name.starts_with("kAB") || !name.ends_with(ending)) continue;
    std::string value = host::callShared("ABAddressBookVXR", name).text();
    if (!value.empty() && std::ranges::find(values, value) == values.end()) values.push_back(std::move(value));
  }
  return values;
}

}  // namespace

std::string typeText(std::int64_t type) {
  const bool isMulti = (type & kMulti) != 0;
  for (const auto& [code, name] : kTypes) {
    if (code == (type & ~std::int64_t{kMulti})) return isMulti ? std::string("multi ") + name : name;
  }
  return "unknown";
}

std::int64_t typeNamed(std::string_view text) {
  for (const auto& [code, name] : kTypes) {
    if (isSame(text, name)) return code;
    if (isSame(text, std::string("multi ") + name) || isSame(text, std::string("multi-") + name)) return kMulti + code;
  }
  throw Failure("no type \"" + printable(text) + "\"; expected string, integer, real, date or another of these, " +
                "or multi-string and so on");
}

Vocabulary::Vocabulary(host::Value book, std::string_view className) : book_(std::move(book)) {
  for (const host::Value& name : host::callShared(className, "properties").elements()) {
    properties_.push_back({name.text(), book_.call("LocalizedPropertyOrLabel", name).text(),
                           host::callShared(className, "typeOfProperty", name).integer()});
  }
  for (std::string& label : constantsEnding("Label")) {
    std::string text = lowerCase(book_.call("LocalizedPropertyOrLabel", label).text());
    labels_.emplace_back(std::move(label), std::move(text));
  }
  keys_ = constantsEnding("Key");
}

const PropertyName& Vocabulary::property(std::string_view text) const {
  auto found = std::ranges::find_if(properties_, [&](const PropertyName& each) { return isSame(each.name, text); });
  if (found == properties_.end()) {
    found = std::ranges::find_if(properties_, [&](const PropertyName& each) { return isSame(each.title, text); });
  }
  if (found == properties_.end()) {
    throw Failure("no property \"" + printable(text) + "\"; contacts properties lists them");
  }
  return *found;
}

std::string Vocabulary::labelText(const std::string& label) const {
  auto found = std::ranges::find_if(labels_, [&](const auto& each) { return each.first == label; });
  return found == labels_.end() ? label : found->second;
}

std::string Vocabulary::labelNamed(std::string_view text) const {
  auto found = std::ranges::find_if(labels_, [&](const auto& each) { return isSame(each.second, text); });
  return found == labels_.end() ? std::string(text) : found->first;
}

std::string Vocabulary::keyNamed(std::string_view text) const {
  auto found = std::ranges::find_if(keys_, [&](const std::string& each) { return isSame(each, text); });
  return found == keys_.end() ? std::string(text) : *found;
}

}  // namespace contacts
