#include "host/properties.h"

#include "host/built_in_classes.h"
#include "host/classes.h"
#include "host/native_value.h"

namespace host {

namespace {

const Property* find(REALobject object, std::string_view name) {
  if (const Property* found = findProperty(classOf(object), name)) return found;
  return findProperty(requireClass(variantDefinition().name), name);
}

// Where a property lies that the host reads and writes by itself.
char* storedAt(REALobject object, const Property& property) {
  return &dataOf<char>(object, *property.owner->definition) + property.record->parameter;
}

NativeCall accessorCall(REALobject object, const Property& property) {
  NativeCall call;
  call.addWord(reinterpret_cast<Word>(object));
  call.addWord(property.record->parameter);
  return call;
}

}  // namespace

std::optional<Value> readProperty(REALobject object, std::string_view name) {
  const Property* property = find(object, name);
  if (property == nullptr || property->record->getter == nullptr) return std::nullopt;
  void* getter = property->record->getter;
  if (getter == kHostAccessor) return NativeValue::share(property->type, storedAt(object, *property)).value();
  NativeCall call = accessorCall(object, *property);
  return NativeValue::resultOf(call, getter, property->type).value();
}

bool writeProperty(REALobject object, std::string_view name, const Value& value) {
  const Property* property = find(object, name);
  if (property == nullptr || property->record->setter == nullptr || !distance(value, property->type)) return false;
  void* setter = property->record->setter;
  NativeValue native(property->type, value);
  if (setter == kHostAccessor) {
    char* place = storedAt(object, *property);
    const NativeValue replaced = NativeValue::adopt(property->type, place);
    native.leakTo(place);
    return true;
  }
  NativeCall call = accessorCall(object, *property);
  native.passTo(call);
  call.callForInteger(setter);
  return true;
}

}  // namespace host
