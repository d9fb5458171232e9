#include "host/arrays.h"

#include "host/built_in_classes.h"
#include "host/classes.h"
#include "host/error.h"
#include "host/memory.h"
#include "host/native_value.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace host {

namespace {

struct ArrayData {
  std::size_t count;
  std::size_t capacity;
};

// Storage is never empty: a plug-in that has to take the upper bound for 0 reads the first element whatever it is.
constexpr std::size_t kFirstCapacity = 4;

void destroyArray(REALobject array);

constexpr REALclassDefinition definition(const char* className) {
  return {.name = className, .dataSize = sizeof(ArrayData), .destructor = destroyArray};
}

// By element type.
constinit std::array definitions{definition("Int32()"),   definition("Int64()"),  definition("Single()"),
                                 definition("String()"),  definition("Object()"), definition("Double()"),
                                 definition("Boolean()"), definition("Date()")};

const Type& elementType(REALobject array) {
  static const std::array<Type, definitions.size()> types{
      namedType("Int32"),   namedType("Int64"),  namedType("Single"),  namedType("String"),
      namedType("Variant"), namedType("Double"), namedType("Boolean"), namedType("Date")};
  return types[static_cast<std::size_t>(*elementTypeOf(array))];
}

ArrayData& dataOf(REALobject array) { return host::dataOf<ArrayData>(array, *classOf(array).definition); }

std::size_t elementSize(REALobject array) { return sizeOf(elementType(array)); }

bool holds(REALarray array, REALinteger index) {
  return index >= 0 && static_cast<std::size_t>(index) < dataOf(array).count;
}

char* elementAddress(REALobject array, std::size_t index) {
  return static_cast<char*>(header(array).storage) + index * elementSize(array);
}

void releaseStorage(REALobject array) {
  releaseMemory(header(array).storage, dataOf(array).capacity * elementSize(array));
}

void reserve(REALobject array, std::size_t count) {
  ArrayData& data = dataOf(array);
  if (count <= data.capacity && !isHostile()) return;
  const std::size_t capacity = isHostile() ? count : std::max({count, 2 * data.capacity, kFirstCapacity});
  void* storage = newMemory(capacity * elementSize(array));
  if (data.count > 0) std::memcpy(storage, header(array).storage, data.count * elementSize(array));
  releaseStorage(array);
  header(array).storage = storage;
  data.capacity = capacity;
}

void destroyArray(REALobject array) {
  for (std::size_t i = 0; i < dataOf(array).count; ++i)
    NativeValue::adopt(elementType(array), elementAddress(array, i));
  releaseStorage(array);
}

// The value's reference becomes the array's.
void insertNative(REALobject array, std::size_t index, NativeValue value) {
  ArrayData& data = dataOf(array);
  reserve(array, data.count + 1);
  char* place = elementAddress(array, index);
  const std::size_t size = elementSize(array);
  std::memmove(place + size, place, (data.count - index) * size);
  value.leakTo(place);
  ++data.count;
}

template <class Element>
Element directGet(REALarray array, REALinteger index) {
  if (!holds(array, index)) return Element();
  Element element;
  std::memcpy(&element, elementAddress(array, static_cast<std::size_t>(index)), sizeof element);
  if constexpr (std::is_pointer_v<Element>) lock(element);
  return element;
}

// Booleans are asked for as sign-extended bytes.
std::int32_t directGetByte(REALarray array, REALinteger index) { return directGet<std::int8_t>(array, index); }

template <class Element>
void directInsert(REALarray array, REALinteger index, Element element) {
  if (index < 0 || static_cast<std::size_t>(index) > dataOf(array).count) return;
  lock(element);
  insertNative(array, static_cast<std::size_t>(index), NativeValue::adopt(elementType(array), &element));
}

}  // namespace

std::span<REALclassDefinition> arrayDefinitions() { return definitions; }

REALarray newArray(std::int32_t type, REALinteger upper) {
  if (type < 0 || static_cast<std::size_t>(type) >= definitions.size() || upper < -1) return nullptr;
  auto created = ObjectRef::adopt(newInstance(requireClass(definitions[static_cast<std::size_t>(type)].name)));
  reserve(created.get(), std::max<std::size_t>(static_cast<std::size_t>(upper + 1), 1));
  dataOf(created.get()).count = static_cast<std::size_t>(upper + 1);
  return static_cast<REALarray>(created.leak());
}

std::optional<ElementType> elementTypeOf(REALobject object) {
  const REALclassDefinition* definition = classOf(object).definition;
  if (definition < definitions.data() || definition >= definitions.data() + definitions.size()) {
    return std::nullopt;
  }
  return static_cast<ElementType>(definition - definitions.data());
}

REALinteger upperBound(REALobject array) { return static_cast<REALinteger>(dataOf(array).count) - 1; }

Value elementAt(REALobject array, REALinteger index) {
  if (index < 0 || index > upperBound(array)) {
    throw Error(std::string(classOf(array).name()) + ": no element " + std::to_string(index));
  }
  return NativeValue::share(elementType(array), elementAddress(array, static_cast<std::size_t>(index))).value();
}

void insertAt(REALobject array, REALinteger index, const Value& value) {
  if (index < 0 || index > upperBound(array) + 1 || !distance(value, elementType(array))) {
    throw Error(std::string(classOf(array).name()) + ": " + value.typeName() + " can't be inserted at " +
                std::to_string(index));
  }
  insertNative(array, static_cast<std::size_t>(index), NativeValue(elementType(array), value));
}

Value array(ElementType type, const std::vector<Value>& elements) {
  Value made = Value::adopt(newArray(static_cast<std::int32_t>(type), -1));
  for (const Value& element : elements) insertAt(made.object(), upperBound(made.object()) + 1, element);
  return made;
}

void* directGetter(REALarray array) {
  switch (*elementTypeOf(array)) {
    case ElementType::int32:
      return reinterpret_cast<void*>(directGet<std::int32_t>);
    case ElementType::int64:
      return reinterpret_cast<void*>(directGet<std::int64_t>);
    case ElementType::single:
      return reinterpret_cast<void*>(directGet<float>);
    case ElementType::real:
      return reinterpret_cast<void*>(directGet<double>);
    case ElementType::boolean:
      return reinterpret_cast<void*>(directGetByte);
    case ElementType::string:
      return reinterpret_cast<void*>(directGet<REALstring>);
    case ElementType::object:
    case ElementType::date:
      return reinterpret_cast<void*>(directGet<REALobject>);
  }
  return nullptr;
}

void* directInserter(REALarray array) {
  switch (*elementTypeOf(array)) {
    case ElementType::string:
      return reinterpret_cast<void*>(directInsert<REALstring>);
    case ElementType::object:
    case ElementType::date:
      return reinterpret_cast<void*>(directInsert<REALobject>);
    default:
      return nullptr;
  }
}

REALstring directReadString(REALarray array, REALinteger index) { return directGet<REALstring>(array, index); }

REALobject directReadObject(REALarray array, REALinteger index) { return directGet<REALobject>(array, index); }

}  // namespace host
