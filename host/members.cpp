#include "host/classes.h"
#include "host/error.h"
#include "host/exceptions.h"
#include "host/native_value.h"
#include "host/properties.h"
#include "host/value.h"

#include <algorithm>
#include <optional>
#include <set>

// Members by name: which declaration takes the arguments, and the call itself.
namespace host {

namespace {

// One way to call a member.
struct Callable {
  const Method* method;
  void* function;
  bool isAssignment;  // through a setter, which takes the assigned value behind the declared parameters

  [[nodiscard]] const Declaration& declaration() const { return method->declaration; }
  [[nodiscard]] std::size_t count() const { return declaration().parameters.size() + (isAssignment ? 1 : 0); }
  [[nodiscard]] const Type& type(std::size_t index) const {
    const auto& parameters = declaration().parameters;
    return index < parameters.size() ? parameters[index].type : declaration().result;
  }
  [[nodiscard]] bool isByReference(std::size_t index) const {
    const auto& parameters = declaration().parameters;
    return index < parameters.size() && parameters[index].isByReference;
  }
  [[nodiscard]] const Type& result() const {
    static const Type nothing;
    return isAssignment ? nothing : declaration().result;
  }
};

using Callables = std::vector<Callable>;

bool takesAssignment(const Declaration& declaration) {
  return !declaration.parameters.empty() && declaration.parameters.back().isAssigned;
}

void addMethods(Callables& callables, const std::vector<Method>& methods, std::string_view name) {
  for (const Method& method : methods) {
    if (!sameName(method.declaration.name, name) || takesAssignment(method.declaration)) continue;
    callables.push_back({&method, method.record->function, false});
  }
}

// A method is assigned to through its setter, or is declared to take the assigned value.
void addSetters(Callables& callables, const std::vector<Method>& methods, std::string_view name) {
  for (const Method& method : methods) {
    if (!sameName(method.declaration.name, name)) continue;
    if (takesAssignment(method.declaration)) {
      callables.push_back({&method, method.record->function, false});
    } else if (method.record->setter != nullptr) {
      callables.push_back({&method, method.record->setter, true});
    }
  }
}

// The innermost class's methods come first and win where several fit alike.
template <class Add>
Callables instanceCallables(const HostClass& objectClass, std::string_view name, Add add) {
  Callables callables;
  for (const HostClass* owner = &objectClass; owner != nullptr; owner = owner->superclass) {
    add(callables, owner->methods, name);
  }
  return callables;
}

// Valid until the thread's next call: most callers go through many objects of a class. A class never changes.
const Callables& methodsNamed(const HostClass& objectClass, std::string_view name) {
  struct Found {
    const HostClass* objectClass = nullptr;
    std::string name;
    Callables callables;
  };
  thread_local Found last;
  if (last.objectClass != &objectClass || last.name != name) {
    last = {};
    last = {&objectClass, std::string(name), instanceCallables(objectClass, name, addMethods)};
  }
  return last.callables;
}

std::string memberName(const Callable& callable) {
  return std::string(callable.method->owner->name()) + "." + callable.declaration().name;
}

[[noreturn]] void failCount(const Callables& callables, std::size_t given) {
  std::set<std::size_t> counts;
  for (const Callable& callable : callables) counts.insert(callable.count());
  std::string declared;
  for (const std::size_t count : counts) declared += (declared.empty() ? "" : " or ") + std::to_string(count);
  throw Error(memberName(callables.front()) + ": " + std::to_string(given) + " arguments, declared with " + declared);
}

std::optional<int> argumentDistance(const Callable& callable, std::size_t index, const Argument& argument) {
  if (callable.isByReference(index) && argument.variable() == nullptr) return std::nullopt;
  return distance(argument.value(), callable.type(index));
}

[[noreturn]] void failArgument(const Callable& callable, const Arguments& arguments) {
  std::size_t index = 0;
  while (argumentDistance(callable, index, arguments[index])) ++index;
  const Value& value = arguments[index].value();
  std::string got = value.typeName();
  // A number of the right sort that lies outside the type is told by its value.
  if (distance(value, namedType("Int64")) && distance(0, callable.type(index))) {
    got += " " + std::to_string(value.integer());
  }
  if (callable.isByReference(index) && arguments[index].variable() == nullptr) got += " by value";
  throw Error(memberName(callable) + ": argument " + std::to_string(index + 1) + " is " + got + ", declared " +
              (callable.isByReference(index) ? "byref " : "") + callable.type(index).text());
}

const Callable& chosen(const Callables& callables, const Arguments& arguments) {
  const Callable* best = nullptr;
  const Callable* sameCount = nullptr;
  int bestDistance = 0;
  for (const Callable& callable : callables) {
    if (callable.count() != arguments.size()) continue;
    if (sameCount == nullptr) sameCount = &callable;
    std::optional<int> total = 0;
    for (std::size_t i = 0; i < arguments.size() && total; ++i) {
      const auto step = argumentDistance(callable, i, arguments[i]);
      total = step ? std::optional(*total + *step) : std::nullopt;
    }
    if (total && (best == nullptr || *total < bestDistance)) {
      best = &callable;
      bestDistance = *total;
    }
  }
  if (best != nullptr) return *best;
  if (sameCount == nullptr) failCount(callables, arguments.size());
  failArgument(*sameCount, arguments);
}

// self is null for a shared method.
Value invoke(const Callable& callable, REALobject self, const Arguments& arguments) {
  const ObjectRef kept = ObjectRef::share(self);
  return callPlugin([&] {
    NativeCall call;
    if (self != nullptr) call.addWord(reinterpret_cast<Word>(self));
    std::vector<NativeValue> natives;
    natives.reserve(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      NativeValue& native = natives.emplace_back(callable.type(i), arguments[i].value());
      if (callable.isByReference(i)) {
        // The variable's own reference is what the plug-in may drop.
        *arguments[i].variable() = nullptr;
        call.addWord(reinterpret_cast<Word>(native.address()));
      } else {
        native.passTo(call);
      }
    }
    Value result = NativeValue::resultOf(call, callable.function, callable.result()).value();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (callable.isByReference(i)) *arguments[i].variable() = natives[i].value();
    }
    return result;
  });
}

REALobject requireObject(const Value& self, std::string_view member) {
  if (std::holds_alternative<ObjectRef>(self.data())) return self.object();
  throw Error(std::string(member) + ": called on a value that is " + self.typeName());
}

[[noreturn]] void failMissing(const HostClass& objectClass, const char* what, std::string_view name) {
  throw Error("class " + std::string(objectClass.name()) + " has no " + what + " " + std::string(name));
}

void runClassConstructors(const HostClass& objectClass, REALobject object) {
  if (objectClass.superclass != nullptr) runClassConstructors(*objectClass.superclass, object);
  if (objectClass.definition->constructor == nullptr) return;
  callPlugin([&] { objectClass.definition->constructor(object); });
}

// Declared constructors are inherited only by classes that declare none.
Callables constructors(const HostClass& objectClass) {
  Callables callables;
  for (const HostClass* owner = &objectClass; owner != nullptr && callables.empty(); owner = owner->superclass) {
    addMethods(callables, owner->methods, "Constructor");
  }
  return callables;
}

}  // namespace

Value callMember(const Value& self, std::string_view name, const Arguments& arguments) {
  const HostClass& objectClass = classOf(requireObject(self, name));
  const Callables& callables = methodsNamed(objectClass, name);
  if (callables.empty()) failMissing(objectClass, "method", name);
  const Callable callable = chosen(callables, arguments);  // a copy: the plug-in may call back
  return invoke(callable, self.object(), arguments);
}

void assignMember(const Value& self, std::string_view name, const Arguments& argumentsAndValue) {
  const HostClass& objectClass = classOf(requireObject(self, name));
  const Callables callables = instanceCallables(objectClass, name, addSetters);
  if (callables.empty()) failMissing(objectClass, "assignable method", name);
  invoke(chosen(callables, argumentsAndValue), self.object(), argumentsAndValue);
}

Value callSharedMember(std::string_view className, std::string_view name, const Arguments& arguments) {
  const HostClass& objectClass = requireClass(className);
  Callables callables;
  for (const HostClass* owner = &objectClass; owner != nullptr; owner = owner->superclass) {
    addMethods(callables, owner->sharedMethods, name);
  }
  if (callables.empty()) failMissing(objectClass, "shared method", name);
  return invoke(chosen(callables, arguments), nullptr, arguments);
}

Value newObjectWith(std::string_view className, const Arguments& arguments) {
  HostClass& objectClass = requireClass(className);
  const Callables callables = constructors(objectClass);
  if (callables.empty() && !arguments.empty()) failMissing(objectClass, "method", "Constructor");
  const Callable* constructor = callables.empty() ? nullptr : &chosen(callables, arguments);
  Value object = Value::adopt(newInstance(objectClass));
  runClassConstructors(objectClass, object.object());
  if (constructor != nullptr) invoke(*constructor, object.object(), arguments);
  return object;
}

std::int64_t constant(std::string_view className, std::string_view name) {
  const HostClass& objectClass = requireClass(className);
  for (const HostClass* owner = &objectClass; owner != nullptr; owner = owner->superclass) {
    for (const ConstantDeclaration& declared : owner->constants) {
      if (sameName(declared.name, name)) return declared.value;
    }
  }
  failMissing(objectClass, "constant", name);
}

Value Value::get(std::string_view property) const {
  const ObjectRef self = ObjectRef::share(requireObject(*this, property));
  std::optional<Value> value = callPlugin([&] { return readProperty(self.get(), property); });
  if (!value) failMissing(classOf(self.get()), "readable property", property);
  return *std::move(value);
}

void Value::set(std::string_view property, const Value& value) const {
  const ObjectRef self = ObjectRef::share(requireObject(*this, property));
  const Property* found = findProperty(classOf(self.get()), property);
  if (found == nullptr || found->record->setter == nullptr) {
    failMissing(classOf(self.get()), "writable property", property);
  }
  if (!distance(value, found->type)) {
    throw Error(std::string(found->owner->name()) + "." + found->record->name + ": value is " + value.typeName() +
                ", declared " + found->type.text());
  }
  callPlugin([&] { writeProperty(self.get(), property, value); });
}

}  // namespace host
