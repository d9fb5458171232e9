#include "host/variants.h"

#include "host/arrays.h"
#include "host/built_in_classes.h"
#include "host/class_records.h"
#include "host/classes.h"
#include "host/dates.h"
#include "host/strings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace host {

namespace {

struct VariantData {
  std::int32_t type;
  Value* value;
};

VariantData& dataOf(REALvariant variant) { return host::dataOf<VariantData>(variant, variantDefinition()); }

bool isBox(REALvariant variant) { return classOf(variant).definition == &variantDefinition(); }

std::int32_t scalarType(const Value& value) {
  static constexpr std::array types{kVariantNil,   kVariantBoolean, kVariantInt32,  kVariantInt64,  kVariantInt64,
                                    kVariantInt64, kVariantSingle,  kVariantDouble, kVariantString, kVariantObject};
  static_assert(types.size() == std::variant_size_v<Value::Data>);
  return types[value.data().index()];
}

std::int32_t elementTypeCode(ElementType type) {
  switch (type) {
    case ElementType::int32:
      return kVariantInt32;
    case ElementType::int64:
      return kVariantInt64;
    case ElementType::single:
      return kVariantSingle;
    case ElementType::real:
      return kVariantDouble;
    case ElementType::string:
      return kVariantString;
    case ElementType::boolean:
      return kVariantBoolean;
    case ElementType::date:
      return kVariantDate;
    case ElementType::object:
      break;
  }
  return kVariantObject;
}

Value box(std::int32_t type, const Value& value) {
  Value boxed = Value::adopt(newInstance(requireClass("Variant")));
  dataOf(boxed.object()) = {type, new Value(value)};
  return boxed;
}

// The scalar or string in a variant; nil for objects.
const Value& content(REALvariant variant) {
  static const Value nil;
  if (variant == nullptr || !isBox(variant)) return nil;
  const Value* value = dataOf(variant).value;
  return value == nullptr ? nil : *value;
}

template <class Number>
Number parsed(const std::string& text) {
  Number number{};
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

template <class Integer>
Integer nearest(double number) {
  if (std::isnan(number)) return 0;
  // The bounds as doubles may lie just outside the type.
  if (number <= static_cast<double>(std::numeric_limits<Integer>::min())) return std::numeric_limits<Integer>::min();
  if (number >= static_cast<double>(std::numeric_limits<Integer>::max())) return std::numeric_limits<Integer>::max();
  return static_cast<Integer>(number);
}

template <class Number>
Number asNumber(REALvariant variant) {
  const Value& value = content(variant);
  return std::visit(
      [&](const auto& data) -> Number {
        using T = std::remove_cvref_t<decltype(data)>;
        if constexpr (std::same_as<T, StringRef>) {
          return parsed<Number>(value.text());
        } else if constexpr (!std::is_arithmetic_v<T>) {
          return 0;
        } else if constexpr (std::floating_point<Number> || std::same_as<T, bool>) {
          return static_cast<Number>(data);
        } else if constexpr (std::floating_point<T>) {
          return nearest<Number>(data);
        } else {
          if (std::in_range<Number>(data)) return static_cast<Number>(data);
          return data < 0 ? std::numeric_limits<Number>::min() : std::numeric_limits<Number>::max();
        }
      },
      value.data());
}

template <class Number>
std::string digits(Number number) {
  std::array<char, 32> buffer;
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

std::int32_t getType(REALobject self, Word) { return variantType(self); }
REALstring getString(REALobject self, Word) { return newVariantString(self); }
std::int32_t getInt32(REALobject self, Word) { return variantInt32(self); }
std::int64_t getInt64(REALobject self, Word) { return variantInt64(self); }
float getSingle(REALobject self, Word) { return static_cast<float>(variantDouble(self)); }
double getDouble(REALobject self, Word) { return variantDouble(self); }

REALobject getObject(REALobject self, Word) {
  if (!isBox(self)) return ObjectRef::share(self).leak();
  const auto* held = std::get_if<ObjectRef>(&content(self).data());
  return held == nullptr ? nullptr : ObjectRef(*held).leak();
}

REALobject getDate(REALobject self, Word) { return variantType(self) == kVariantDate ? getObject(self, 0) : nullptr; }

void destroyVariant(REALobject self) { delete dataOf(self).value; }

REALproperty properties[] = {
    readOnlyProperty("Type", "Int32", getType),           readOnlyProperty("StringValue", "String", getString),
    readOnlyProperty("Int32Value", "Int32", getInt32),    readOnlyProperty("LongValue", "Int64", getInt64),
    readOnlyProperty("SingleValue", "Single", getSingle), readOnlyProperty("DoubleValue", "Double", getDouble),
    readOnlyProperty("DateValue", "Date", getDate),       readOnlyProperty("ObjectValue", "Object", getObject),
};

}  // namespace

REALclassDefinition& variantDefinition() {
  static REALclassDefinition definition{.name = "Variant",
                                        .dataSize = sizeof(VariantData),
                                        .destructor = destroyVariant,
                                        .properties = properties,
                                        .propertyCount = std::size(properties)};
  return definition;
}

REALvariant newVariant(const Value& value) {
  if (std::holds_alternative<std::monostate>(value.data())) return nullptr;
  if (std::holds_alternative<ObjectRef>(value.data())) return ObjectRef::share(value.object()).leak();
  return ObjectRef::share(box(scalarType(value), value).object()).leak();
}

Value fromVariant(ObjectRef variant) {
  if (variant && isBox(variant.get())) {
    const Value& held = content(variant.get());
    if (dataOf(variant.get()).type == scalarType(held)) return held;
  }
  return variant;
}

std::int32_t variantType(REALvariant variant) {
  if (variant == nullptr) return kVariantNil;
  if (isBox(variant)) return dataOf(variant).type;
  if (const auto elements = elementTypeOf(variant)) return kVariantArray + elementTypeCode(*elements);
  return isDate(variant) ? kVariantDate : kVariantObject;
}

Value variantOfType(std::int32_t type, const Value& value) { return box(type, value); }

REALstring newVariantString(REALvariant variant) {
  if (variant != nullptr && isDate(variant)) return newString(dateText(variant), kEncodingUTF8);
  return std::visit(
      [](const auto& data) -> REALstring {
        using T = std::remove_cvref_t<decltype(data)>;
        if constexpr (std::same_as<T, StringRef>) {
          return StringRef(data).leak();
        } else if constexpr (std::same_as<T, bool>) {
          return newString(data ? "True" : "False", kEncodingUTF8);
        } else if constexpr (std::is_arithmetic_v<T>) {
          return newString(digits(data), kEncodingUTF8);
        } else {
          return nullptr;
        }
      },
      content(variant).data());
}

std::int32_t variantInt32(REALvariant variant) { return asNumber<std::int32_t>(variant); }

std::int64_t variantInt64(REALvariant variant) { return asNumber<std::int64_t>(variant); }

double variantDouble(REALvariant variant) { return asNumber<double>(variant); }

}  // namespace host
