#include "host/classes.h"

#include "host/built_in_classes.h"
#include "host/error.h"
#include "host/events.h"
#include "host/options.h"

#include <algorithm>
#include <span>
#include <unordered_map>

namespace host {

namespace {

// The size of each instance, where its subclasses' data starts, is a multiple of this many bytes.
constexpr std::size_t kDataAlignment = 8;

struct NameHash {
  std::size_t operator()(std::string_view name) const {
    std::size_t hash = 0;
    for (char c : name) hash = 31 * hash + (static_cast<unsigned char>(c) | 0x20U);  // letters lose their case
    return hash;
  }
};

struct ClassTable {
  std::vector<std::unique_ptr<HostClass>> classes;
  std::unordered_map<std::string_view, HostClass*, NameHash, decltype(&sameName)> byName{64, NameHash(), sameName};
};

ClassTable& classTable() {
  static auto* table = new ClassTable;
  return *table;
}

HostClass& add(REALclassDefinition& definition);

// The host's own classes are there before anybody asks for one.
ClassTable& completeTable() {
  static const bool registered = [] {
    for (REALclassDefinition* definition : builtInClasses()) add(*definition);
    return true;
  }();
  (void)registered;
  return classTable();
}

template <class Record>
std::span<Record> records(Record* first, Word count) {
  return {first, count};
}

std::vector<Method> readMethods(const HostClass& owner, REALmethodDefinition* first, Word count) {
  std::vector<Method> methods;
  for (const REALmethodDefinition& record : records(first, count)) {
    methods.push_back({parseDeclaration(record.declaration), &record, &owner});
  }
  return methods;
}

void readMembers(HostClass& target, const REALclassDefinition& definition) {
  target.methods = readMethods(target, definition.methods, definition.methodCount);
  target.sharedMethods = readMethods(target, definition.sharedMethods, definition.sharedMethodCount);
  for (const REALproperty& record : records(definition.properties, definition.propertyCount)) {
    target.properties.push_back({namedType(record.type), &record, &target});
  }
  for (REALevent& record : records(definition.events, definition.eventCount)) {
    Declaration declaration = parseDeclaration(record.declaration);
    record.hostReserved = newEventId(declaration);
    target.events.push_back({std::move(declaration), &record});
  }
  for (const REALconstant& record : records(definition.constants, definition.constantCount)) {
    target.constants.push_back(parseConstant(record.declaration));
  }
}

HostClass& add(REALclassDefinition& definition) {
  ClassTable& table = classTable();
  const std::string name = definition.name;
  if (auto found = table.byName.find(name); found != table.byName.end()) {
    if (found->second->definition == &definition) return *found->second;
    throw Error("class " + name + " is registered already");
  }
  auto added = std::make_unique<HostClass>();
  added->definition = &definition;
  std::size_t offset = kObjectDataOffset;
  if (definition.superName != nullptr) {
    auto found = table.byName.find(definition.superName);
    if (found == table.byName.end()) throw Error("class " + name + ": no superclass " + definition.superName);
    added->superclass = found->second;
    offset = added->superclass->instanceSize;
  }
  try {
    readMembers(*added, definition);
  } catch (const Error& error) {
    throw Error("class " + name + ": " + error.what());
  }
  definition.dataOffset = offset;
  added->instanceSize = (offset + definition.dataSize + kDataAlignment - 1) / kDataAlignment * kDataAlignment;
  table.classes.push_back(std::move(added));
  HostClass& result = *table.classes.back();
  table.byName.emplace(result.name(), &result);
  return result;
}

}  // namespace

bool HostClass::isKindOf(const HostClass& other) const {
  for (const HostClass* ancestor = this; ancestor != nullptr; ancestor = ancestor->superclass) {
    if (ancestor == &other) return true;
  }
  return false;
}

HostClass& registerClass(REALclassDefinition& definition) {
  completeTable();
  return add(definition);
}

HostClass* findClass(std::string_view name) {
  ClassTable& table = completeTable();
  auto found = table.byName.find(name);
  return found == table.byName.end() || lacks(found->second->name()) ? nullptr : found->second;
}

HostClass& requireClass(std::string_view name) {
  if (HostClass* found = findClass(name)) return *found;
  throw Error("no class " + std::string(name));
}

const std::vector<std::unique_ptr<HostClass>>& allClasses() { return completeTable().classes; }

const Property* findProperty(const HostClass& objectClass, std::string_view name) {
  for (const HostClass* owner = &objectClass; owner != nullptr; owner = owner->superclass) {
    for (const Property& property : owner->properties) {
      if (!sameName(property.record->name, name)) continue;
      return lacks(owner->name(), property.record->name) ? nullptr : &property;
    }
  }
  return nullptr;
}

const Method* findMethod(const HostClass& objectClass, const Declaration& declaration) {
  for (const HostClass* owner = &objectClass; owner != nullptr; owner = owner->superclass) {
    for (const Method& method : owner->methods) {
      if (!sameSignature(method.declaration, declaration)) continue;
      return lacks(owner->name(), method.declaration.name) ? nullptr : &method;
    }
  }
  return nullptr;
}

const Event* findEvent(const HostClass& objectClass, std::string_view name) {
  for (const HostClass* owner = &objectClass; owner != nullptr; owner = owner->superclass) {
    for (const Event& event : owner->events) {
      if (sameName(event.declaration.name, name)) return &event;
    }
  }
  return nullptr;
}

}  // namespace host
