#include "apps/contacts/json.h"

#include "apps/contacts/people.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"
#include "host/memory_blocks.h"

#include <nlohmann/json.hpp>

namespace contacts {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kIndent = 2;

Json jsonValue(const host::Value& value, const host::Value& book) {
  const std::string type = value.typeName();
  if (value.isNil()) return nullptr;
  if (type == "MemoryBlock") return base64(host::bytesOf(value));
  if (type == "Dictionary") {
    Json object = Json::object();
    for (const auto& [key, each] : entriesOf(value)) object[key] = jsonValue(each, book);
    return object;
  }
  if (type.ends_with("()")) {
    Json array = Json::array();
    for (const host::Value& each : value.elements()) array.push_back(jsonValue(each, book));
    return array;
  }
  if (type == "Boolean") return static_cast<bool>(value);
  if (type == "Single" || type == "Double") return value.number();
  if (type.starts_with("Int") || type.starts_with("UInt")) return value.integer();
  return valueText(book, value);
}

Json jsonRecord(const host::Value& record, const Vocabulary& vocabulary) {
  const host::Value& book = vocabulary.book();
  Json object;
  object["id"] = record.call("uniqueId").text();
  object["kind"] = record.typeName() == "ABGroupVXR" ? "group" : "person";
  object["name"] = nameOf(record);
  for (const PropertyName& property : vocabulary.properties()) {
    const host::Value value = record.call("valueForProperty", property.name);
    if (value.isNil() || property.name == "UID") continue;
    if (!property.isMulti()) {
      object[property.name] = jsonValue(value, book);
      continue;
    }
    Json& entries = object[property.name] = Json::array();
    for (const Entry& entry : entriesOfMultiValue(value)) {
      Json each{{"label", vocabulary.labelText(entry.label)},
                {"value", jsonValue(entry.value, book)},
                {"id", entry.identifier}};
      if (entry.isPrimary) each["primary"] = true;
      entries.push_back(std::move(each));
    }
  }
  return object;
}

Json jsonObject(const NamedTexts& texts) {
  Json object = Json::object();
  for (const auto& [name, text] : texts) object[name] = text;
  return object;
}

// What a foreign card has of invalid text is replaced.
std::string textOf(const Json& json, int indent = kIndent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string jsonOf(const host::Value& record, const Vocabulary& vocabulary) {
  return textOf(jsonRecord(record, vocabulary));
}

std::string jsonOf(const std::vector<host::Value>& records, const Vocabulary& vocabulary) {
  Json array = Json::array();
  for (const host::Value& record : records) array.push_back(jsonRecord(record, vocabulary));
  return textOf(array);
}

std::string jsonOf(const std::vector<NamedTexts>& objects) {
  Json array = Json::array();
  for (const NamedTexts& each : objects) array.push_back(jsonObject(each));
  return textOf(array);
}

std::string jsonLine(const NamedTexts& object) {
  constexpr int kOneLine = -1;
  return textOf(jsonObject(object), kOneLine);
}

std::string jsonOf(const std::vector<std::string>& texts) { return textOf(Json(texts)); }

std::string jsonOf(const host::ClassDescription& description) {
  return textOf(Json{{"name", description.name},
                     {"super", description.superName},
                     {"constants", description.constants},
                     {"sharedMethods", description.sharedMethods},
                     {"properties", description.properties},
                     {"methods", description.methods},
                     {"events", description.events}});
}

}  // namespace contacts
