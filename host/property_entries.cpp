#include "host/property_entries.h"

#include "host/properties.h"

#include <concepts>
#include <optional>

namespace host {

namespace {

template <class Out, class Accept>
bool readInto(REALobject object, const char* name, Out* out, Accept accept) {
  if (object == nullptr) return false;
  const std::optional<Value> value = readProperty(object, name);
  if (!value) return false;
  const std::optional<Out> result = accept(*value);
  if (result) *out = *result;
  return result.has_value();
}

// Whole numbers and booleans, cut to the width asked for.
template <class Integer>
std::optional<Integer> asInteger(const Value& value) {
  return std::visit(
      [](const auto& data) -> std::optional<Integer> {
        if constexpr (std::integral<std::remove_cvref_t<decltype(data)>>) return static_cast<Integer>(data);
        return std::nullopt;
      },
      value.data());
}

template <class Number>
std::optional<Number> asNumber(const Value& value) {
  return std::visit(
      [](const auto& data) -> std::optional<Number> {
        using T = std::remove_cvref_t<decltype(data)>;
        if constexpr (std::is_arithmetic_v<T> && !std::same_as<T, bool>) return static_cast<Number>(data);
        return std::nullopt;
      },
      value.data());
}

std::optional<REALstring> asString(const Value& value) {
  if (!std::holds_alternative<StringRef>(value.data())) return std::nullopt;
  return StringRef::share(value.string()).leak();
}

std::optional<REALobject> asObject(const Value& value) {
  if (std::holds_alternative<std::monostate>(value.data())) return nullptr;
  if (!std::holds_alternative<ObjectRef>(value.data())) return std::nullopt;
  return ObjectRef::share(value.object()).leak();
}

}  // namespace

bool getPropValueInt(REALobject object, const char* name, std::int32_t* out) {
  return readInto(object, name, out, asInteger<std::int32_t>);
}

bool getPropValueInt64(REALobject object, const char* name, std::int64_t* out) {
  return readInto(object, name, out, asInteger<std::int64_t>);
}

bool getPropValueSingle(REALobject object, const char* name, float* out) {
  return readInto(object, name, out, asNumber<float>);
}

bool getPropValueDouble(REALobject object, const char* name, double* out) {
  return readInto(object, name, out, asNumber<double>);
}

bool getPropValueString(REALobject object, const char* name, REALstring* out) {
  return readInto(object, name, out, asString);
}

bool getPropValueObject(REALobject object, const char* name, REALobject* out) {
  return readInto(object, name, out, asObject);
}

bool setPropValueInt(REALobject object, const char* name, std::int32_t value) {
  return object != nullptr && writeProperty(object, name, value);
}

bool setPropValueString(REALobject object, const char* name, REALstring value) {
  return object != nullptr && writeProperty(object, name, StringRef::share(value));
}

}  // namespace host
