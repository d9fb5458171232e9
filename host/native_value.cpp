#include "host/native_value.h"

#include "host/arrays.h"
#include "host/classes.h"
#include "host/variants.h"

#include <bit>
#include <concepts>
#include <cstring>
#include <limits>

namespace host {

namespace {

enum class Form { none, integer, boolean, single, real, string, object };

Form formOf(const Type& type) {
  if (type.isArray) return Form::object;
  switch (type.kind) {
    case TypeKind::none:
      return Form::none;
    case TypeKind::boolean:
      return Form::boolean;
    case TypeKind::single:
      return Form::single;
    case TypeKind::real:
      return Form::real;
    case TypeKind::string:
      return Form::string;
    case TypeKind::variant:
    case TypeKind::object:
      return Form::object;
    default:
      return Form::integer;
  }
}

// Calls the function with a zero of the C++ type of an integer kind.
template <class Function>
auto withIntegerType(TypeKind kind, Function function) {
  switch (kind) {
    case TypeKind::int32:
      return function(std::int32_t{});
    case TypeKind::uint32:
      return function(std::uint32_t{});
    case TypeKind::int64:
      return function(std::int64_t{});
    case TypeKind::uint64:
      return function(std::uint64_t{});
    default:
      if constexpr (sizeof(REALinteger) == sizeof(std::int32_t)) return function(std::int32_t{});
      return function(std::int64_t{});
  }
}

constexpr int kWidened = 1;
constexpr int kBoxed = 10;  // in a variant, which takes anything

std::optional<int> integerDistance(const Value& value, const Type& type) {
  return withIntegerType(type.kind, [&](auto target) {
    return std::visit(
        [](const auto& data) -> std::optional<int> {
          using Target = decltype(target);
          using Source = std::remove_cvref_t<decltype(data)>;
          if constexpr (std::integral<Source> && !std::same_as<Source, bool>) {
            if (!std::in_range<Target>(data)) return std::nullopt;
            return std::same_as<Source, Target> ? 0 : kWidened;
          } else {
            return std::nullopt;
          }
        },
        value.data());
  });
}

std::optional<int> floatingDistance(const Value& value, const Type& type) {
  return std::visit(
      [&](const auto& data) -> std::optional<int> {
        using Source = std::remove_cvref_t<decltype(data)>;
        if constexpr (std::floating_point<Source>) {
          return std::same_as<Source, double> == (type.kind == TypeKind::real) ? 0 : kWidened;
        } else if constexpr (std::integral<Source> && !std::same_as<Source, bool>) {
          return 2 * kWidened;
        } else {
          return std::nullopt;
        }
      },
      value.data());
}

std::optional<int> objectDistance(REALobject object, const Type& type) {
  if (sameName(type.name, "Object")) return kBoxed;
  const HostClass* declared = findClass(type.name);
  int steps = 0;
  for (const HostClass* ancestor = &classOf(object); ancestor != nullptr; ancestor = ancestor->superclass) {
    if (ancestor == declared) return steps;
    ++steps;
  }
  return std::nullopt;
}

bool arrayFits(REALobject array, const Type& type) {
  const std::optional<ElementType> elements = elementTypeOf(array);
  if (!elements) return false;
  switch (*elements) {
    case ElementType::int32:
      return type.kind == TypeKind::int32 || type.kind == TypeKind::integer;
    case ElementType::int64:
      return type.kind == TypeKind::int64;
    case ElementType::single:
      return type.kind == TypeKind::single;
    case ElementType::real:
      return type.kind == TypeKind::real;
    case ElementType::boolean:
      return type.kind == TypeKind::boolean;
    case ElementType::string:
      return type.kind == TypeKind::string;
    case ElementType::object:
    case ElementType::date:
      break;
  }
  Type element = type;
  element.isArray = false;
  if (formOf(element) != Form::object) return false;
  for (const Value& value : Value::share(array).elements()) {
    if (!distance(value, element)) return false;
  }
  return true;
}

}  // namespace

std::optional<int> distance(const Value& value, const Type& type) {
  const auto* object = std::get_if<ObjectRef>(&value.data());
  const bool isNil = std::holds_alternative<std::monostate>(value.data());
  if (type.isArray)
    return isNil || (object != nullptr && arrayFits(object->get(), type)) ? std::optional(0) : std::nullopt;
  switch (formOf(type)) {
    case Form::none:
      return std::nullopt;
    case Form::integer:
      return integerDistance(value, type);
    case Form::boolean:
      return std::holds_alternative<bool>(value.data()) ? std::optional(0) : std::nullopt;
    case Form::single:
    case Form::real:
      return floatingDistance(value, type);
    case Form::string:
      if (std::holds_alternative<StringRef>(value.data())) return 0;
      return isNil ? std::optional(kWidened) : std::nullopt;
    case Form::object:
      break;
  }
  if (type.kind == TypeKind::variant) return kBoxed;
  if (isNil) return 0;
  return object == nullptr ? std::nullopt : objectDistance(object->get(), type);
}

std::size_t sizeOf(const Type& type) {
  switch (formOf(type)) {
    case Form::none:
      return 0;
    case Form::integer:
      return withIntegerType(type.kind, [](auto integer) { return sizeof integer; });
    case Form::boolean:
      return sizeof(bool);
    case Form::single:
      return sizeof(float);
    case Form::real:
      return sizeof(double);
    case Form::string:
    case Form::object:
      return sizeof(Word);
  }
  return 0;
}

NativeValue::NativeValue(const Type& type, const Value& value) : type_(&type) {
  switch (formOf(type)) {
    case Form::none:
      break;
    case Form::integer:
      bits_ = static_cast<std::uint64_t>(value.integer());
      break;
    case Form::boolean:
      bits_ = static_cast<bool>(value) ? 1 : 0;
      break;
    case Form::single:
      bits_ = std::bit_cast<std::uint32_t>(static_cast<float>(value.number()));
      break;
    case Form::real:
      bits_ = std::bit_cast<std::uint64_t>(value.number());
      break;
    case Form::string: {
      REALstring string = std::holds_alternative<StringRef>(value.data()) ? value.string() : nullptr;
      lock(string);
      bits_ = reinterpret_cast<Word>(string);
      break;
    }
    case Form::object:
      bits_ = reinterpret_cast<Word>(newVariant(value));
      break;
  }
}

NativeValue NativeValue::adopt(const Type& type, const void* address) {
  NativeValue adopted(type);
  std::memcpy(&adopted.bits_, address, sizeOf(type));
  return adopted;
}

NativeValue NativeValue::share(const Type& type, const void* address) {
  NativeValue shared = adopt(type, address);
  if (formOf(type) == Form::string) lock(shared.string());
  if (formOf(type) == Form::object) lock(shared.object());
  return shared;
}

NativeValue NativeValue::resultOf(NativeCall& call, void* function, const Type& type) {
  NativeValue result(type);
  switch (formOf(type)) {
    case Form::single:
      result.bits_ = std::bit_cast<std::uint32_t>(call.callForSingle(function));
      break;
    case Form::real:
      result.bits_ = std::bit_cast<std::uint64_t>(call.callForDouble(function));
      break;
    default: {
      const std::uint64_t answer = call.callForInteger(function);
      std::memcpy(&result.bits_, &answer, sizeOf(type));
      break;
    }
  }
  return result;
}

NativeValue::~NativeValue() {
  if (formOf(*type_) == Form::string) unlock(string());
  if (formOf(*type_) == Form::object) unlock(object());
}

Value NativeValue::value() const {
  switch (formOf(*type_)) {
    case Form::none:
      return nullptr;
    case Form::integer:
      return withIntegerType(type_->kind,
                             [this](auto integer) { return Value(static_cast<decltype(integer)>(bits_)); });
    case Form::boolean:
      return (bits_ & 0xFF) != 0;
    case Form::single:
      return std::bit_cast<float>(static_cast<std::uint32_t>(bits_));
    case Form::real:
      return std::bit_cast<double>(bits_);
    case Form::string:
      return StringRef::share(string());
    case Form::object:
      return fromVariant(ObjectRef::share(object()));
  }
  return nullptr;
}

void NativeValue::passTo(NativeCall& call) const {
  switch (formOf(*type_)) {
    case Form::single:
      return call.addSingle(std::bit_cast<float>(static_cast<std::uint32_t>(bits_)));
    case Form::real:
      return call.addDouble(std::bit_cast<double>(bits_));
    default:
      return sizeOf(*type_) > sizeof(Word) ? call.addInt64(bits_) : call.addWord(static_cast<Word>(bits_));
  }
}

void NativeValue::leakTo(void* address) {
  std::memcpy(address, &bits_, sizeOf(*type_));
  bits_ = 0;
}

}  // namespace host
