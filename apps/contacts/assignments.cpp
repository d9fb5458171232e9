#include "apps/contacts/assignments.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace contacts {
namespace {

constexpr char kDefaultLabel[] = "other";

void set(const host::Value& record, const PropertyName& property, const host::Value& value) {
  host::Value error;
  if (static_cast<bool>(record.call("setValue", value, property.name, host::Ref(error)))) return;
  throw Failure(property.name + " can't be set" +
                (error.isNil() ? std::string() : ": " + error.get("LocalizedDescription").text()));
}

// What isn't there is removed already.
void remove(const host::Value& record, const PropertyName& property) {
  record.call("removeValueForProperty", property.name);
  if (!record.call("valueForProperty", property.name).isNil()) throw Failure(property.name + " can't be removed");
}

// The dictionary with the key set, or removed where there is no value.
host::Value dictionaryWith(const host::Value& dictionary, const std::string& key, const std::string& value) {
  std::vector<std::pair<std::string, host::Value>> entries;
  if (!dictionary.isNil()) entries = entriesOf(dictionary);
  std::erase_if(entries, [&](const auto& entry) { return entry.first == key; });
  if (!value.empty()) entries.emplace_back(key, value);
  return dictionaryOf(entries);
}

// The assigned entry as it will be; nil for one that is to go.
host::Value newEntry(const Assignment& assignment, const Vocabulary& vocabulary, std::int64_t type,
                     const host::Value& before) {
  if (type != kDictionary) {
    if (!assignment.key.empty()) throw Failure(assignment.property + " has no keys such as " + assignment.key);
    return assignment.value.empty() ? host::Value() : valueFrom(assignment.value, type);
  }
  if (assignment.key.empty()) {
    if (assignment.value.empty()) return nullptr;
    throw Failure(assignment.property + " needs a key: " + assignment.property + ":home.City=...");
  }
  const host::Value dictionary = dictionaryWith(before, vocabulary.keyNamed(assignment.key), assignment.value);
  return entriesOf(dictionary).empty() ? host::Value() : dictionary;
}

void applyToMulti(const Assignment& assignment, const Vocabulary& vocabulary, const PropertyName& property,
                  const host::Value& record) {
  const host::Value before = record.call("valueForProperty", property.name);
  if (assignment.label.empty() && assignment.key.empty() && assignment.value.empty()) {
    remove(record, property);
    return;
  }
  const host::Value entries = before.isNil() ? host::newObject("ABMutableMultiValueVXR") : before.call("edit");
  const std::string label = vocabulary.labelNamed(assignment.label.empty() ? kDefaultLabel : assignment.label);
  const std::vector<Entry> old = entriesOfMultiValue(entries);
  auto place = std::ranges::find_if(old, [&](const Entry& entry) { return isSame(entry.label, label); });
  if (assignment.isAddition) place = old.end();

  const host::Value value =
      newEntry(assignment, vocabulary, property.entryType(), place == old.end() ? host::Value() : place->value);
  const auto index = static_cast<std::uint32_t>(place - old.begin());
  if (value.isNil() && place == old.end()) {
    throw Failure("no " + property.name + " is labelled " + printable(vocabulary.labelText(label)));
  }
  if (value.isNil()) {
    entries.call("removeValueAndLabelAtIndex", index);
  } else if (place == old.end()) {
    entries.call("addValue", value, label);
  } else {
    entries.call("replaceValueAtIndex", index, value);
  }
  set(record, property, entries);
}

}  // namespace

Assignment assignmentFrom(std::string_view text) {
  if (!isUtf8(text)) throw Failure("\"" + printable(text) + "\" is no text; expected UTF-8");
  const std::size_t equals = text.find('=');
  Assignment assignment;
  std::string_view name = text.substr(0, equals);
  assignment.isAddition = name.ends_with('+');
  if (assignment.isAddition) name.remove_suffix(1);
  const std::size_t colon = name.find(':');
  const std::size_t dot = name.find('.', colon == std::string_view::npos ? 0 : colon);
  assignment.property = name.substr(0, std::min(colon, dot));
  if (colon != std::string_view::npos) assignment.label = name.substr(colon + 1, dot - colon - 1);
  if (dot != std::string_view::npos) assignment.key = name.substr(dot + 1);
  if (equals == std::string_view::npos || assignment.property.empty()) {
    throw Failure("\"" + printable(text) + "\" is no assignment; expected PROPERTY[:LABEL][.KEY]=VALUE");
  }
  assignment.value = text.substr(equals + 1);
  if (assignment.isAddition && assignment.value.empty()) {
    throw Failure("\"" + printable(text) + "\" adds nothing; expected a value after +=");
  }
  return assignment;
}

void apply(const Assignment& assignment, const Vocabulary& vocabulary, const host::Value& record) {
  const PropertyName& property = vocabulary.property(assignment.property);
  if (property.isMulti()) {
    applyToMulti(assignment, vocabulary, property, record);
    return;
  }
  if (!assignment.label.empty() || assignment.isAddition) {
    throw Failure(property.name + " has one value and no labels; expected " + property.name + "=VALUE");
  }
  const host::Value value =
      newEntry(assignment, vocabulary, property.type, record.call("valueForProperty", property.name));
  if (value.isNil()) {
    remove(record, property);
  } else {
    set(record, property, value);
  }
}

}  // namespace contacts
