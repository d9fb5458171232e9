#include "host/dictionaries.h"

#include "host/built_in_classes.h"
#include "host/class_records.h"
#include "host/classes.h"
#include "host/exceptions.h"
#include "host/memory.h"
#include "host/variants.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace host {

namespace {

struct KeyHash {
  std::size_t operator()(const Value& key) const {
    return std::visit(
        [&](const auto& data) -> std::size_t {
          using T = std::remove_cvref_t<decltype(data)>;
          if constexpr (std::same_as<T, std::monostate>) {
            return 0;
          } else if constexpr (std::same_as<T, StringRef>) {
            return std::hash<std::string>()(key.text());
          } else if constexpr (std::same_as<T, ObjectRef>) {
            return std::hash<const void*>()(data.get());
          } else {
            // Equal numbers have equal hashes whatever their types.
            return std::hash<double>()(static_cast<double>(data));
          }
        },
        key.data());
  }
};

// Nil and the empty string are different keys.
struct KeysEqual {
  bool operator()(const Value& a, const Value& b) const {
    const auto isString = [](const Value& key) { return std::holds_alternative<StringRef>(key.data()); };
    return isString(a) == isString(b) && a == b;
  }
};

// Entries in the order in which they came, and where each key's is.
struct Entries {
  std::vector<std::pair<Value, Value>> inOrder;
  std::unordered_map<Value, std::size_t, KeyHash, KeysEqual> positions;

  void set(const Value& key, const Value& value) {
    const auto [position, isNew] = positions.try_emplace(key, inOrder.size());
    if (isNew) {
      inOrder.emplace_back(key, value);
    } else {
      inOrder[position->second].second = value;
    }
    if (isHostile()) reverse();
  }

  bool remove(const Value& key) {
    const auto found = positions.find(key);
    if (found == positions.end()) return false;
    const std::size_t removed = found->second;
    positions.erase(found);
    inOrder.erase(inOrder.begin() + static_cast<std::ptrdiff_t>(removed));
    for (auto& [name, position] : positions) {
      if (position > removed) --position;
    }
    if (isHostile()) reverse();
    return true;
  }

 private:
  void reverse() {
    std::ranges::reverse(inOrder);
    for (auto& [name, position] : positions) position = inOrder.size() - 1 - position;
  }
};

// Null until something is stored.
Entries*& entriesOf(REALobject dictionary) { return dataOf<Entries*>(dictionary, dictionaryDefinition()); }

Entries& madeEntriesOf(REALobject dictionary) {
  Entries*& entries = entriesOf(dictionary);
  if (entries == nullptr) entries = new Entries;
  return *entries;
}

Value borrowed(REALvariant variant) { return fromVariant(ObjectRef::share(variant)); }

void setValue(REALobject self, REALvariant key, REALvariant value) {
  madeEntriesOf(self).set(borrowed(key), borrowed(value));
}

REALvariant getValue(REALobject self, REALvariant key) {
  const Entries& entries = madeEntriesOf(self);
  const auto found = entries.positions.find(borrowed(key));
  if (found != entries.positions.end()) return newVariant(entries.inOrder[found->second].second);
  raise("KeyNotFoundException", "The dictionary has no such key.");
  return nullptr;
}

REALvariant getKey(REALobject self, REALinteger index) {
  const Entries& entries = madeEntriesOf(self);
  if (index >= 0 && static_cast<std::size_t>(index) < entries.inOrder.size()) {
    return newVariant(entries.inOrder[static_cast<std::size_t>(index)].first);
  }
  raise("OutOfBoundsException", "The dictionary has no key at that index.");
  return nullptr;
}

bool hasKey(REALobject self, REALvariant key) { return madeEntriesOf(self).positions.contains(borrowed(key)); }

void removeKey(REALobject self, REALvariant key) {
  if (!madeEntriesOf(self).remove(borrowed(key))) {
    raise("KeyNotFoundException", "The dictionary has no such key.");
  }
}

std::int32_t getCount(REALobject self, Word) { return static_cast<std::int32_t>(madeEntriesOf(self).inOrder.size()); }

void destroyDictionary(REALobject self) { delete entriesOf(self); }

REALproperty properties[] = {readOnlyProperty("Count", "Int32", getCount)};

REALmethodDefinition methods[] = {
    hostMethod("Value(key As Variant, Assigns _value As Variant)", setValue),
    hostMethod("Value(key As Variant) As Variant", getValue),
    hostMethod("Key(index As Integer) As Variant", getKey),
    hostMethod("HasKey(key As Variant) As Boolean", hasKey),
    hostMethod("Remove(key As Variant)", removeKey),
};

}  // namespace

REALclassDefinition& dictionaryDefinition() {
  static REALclassDefinition definition{.name = "Dictionary",
                                        .dataSize = sizeof(Entries*),
                                        .destructor = destroyDictionary,
                                        .properties = properties,
                                        .propertyCount = std::size(properties),
                                        .methods = methods,
                                        .methodCount = std::size(methods)};
  return definition;
}

Value dictionary(std::initializer_list<std::pair<Value, Value>> entries) {
  Value made = Value::adopt(newInstance(requireClass("Dictionary")));
  for (const auto& [key, value] : entries) madeEntriesOf(made.object()).set(key, value);
  return made;
}

}  // namespace host
