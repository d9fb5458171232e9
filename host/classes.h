#pragma once

#include "host/declarations.h"
#include "host/objects.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The classes that the host knows: its own and those that plug-ins register, described by the same records.
namespace host {

struct Method {
  Declaration declaration;
  const REALmethodDefinition* record;
  const HostClass* owner;
};

struct Property {
  Type type;
  const REALproperty* record;
  const HostClass* owner;
};

struct Event {
  Declaration declaration;
  const REALevent* record;
};

class HostClass {
 public:
  REALclassDefinition* definition = nullptr;
  HostClass* superclass = nullptr;
  std::size_t instanceSize = 0;  // bytes, header and superclasses included
  std::vector<Method> methods = {};
  std::vector<Method> sharedMethods = {};
  std::vector<Property> properties = {};
  std::vector<Event> events = {};
  std::vector<ConstantDeclaration> constants = {};
  std::atomic<long> liveInstances{0};

  [[nodiscard]] const char* name() const { return definition->name; }
  [[nodiscard]] bool isKindOf(const HostClass& other) const;
};

// Makes the class and writes its data offset and its events' reserved words. The record and all it points to are kept,
// not copied. Throws Error for an unknown superclass, a name that is taken and a declaration that can't be read; the
// same record again changes nothing.
HostClass& registerClass(REALclassDefinition& definition);

// Null when there is none, or when this host is to lack it.
HostClass* findClass(std::string_view name);
// Throws Error instead.
HostClass& requireClass(std::string_view name);
// In the order of registration, the host's own first.
const std::vector<std::unique_ptr<HostClass>>& allClasses();

// The innermost declaration in the class and its superclasses; null when there is none.
const Property* findProperty(const HostClass& objectClass, std::string_view name);
const Method* findMethod(const HostClass& objectClass, const Declaration& declaration);
const Event* findEvent(const HostClass& objectClass, std::string_view name);

}  // namespace host
