#include "host/value.h"

#include "host/arrays.h"
#include "host/classes.h"
#include "host/error.h"
#include "host/strings.h"

#include <cmath>
#include <optional>
#include <ostream>

namespace host {

namespace {

template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

template <class T>
concept HostInteger = std::integral<T> && !std::same_as<T, bool>;

[[noreturn]] void wrongType(const Value& value, const char* expected) {
  throw Error("a value is " + value.typeName() + ", expected " + expected);
}

// The value as a whole number, wide enough for every integer type; nothing for other values.
std::optional<std::pair<bool, std::uint64_t>> signAndBits(const Value& value) {
  return std::visit(
      [](const auto& data) -> std::optional<std::pair<bool, std::uint64_t>> {
        if constexpr (HostInteger<std::remove_cvref_t<decltype(data)>>) {
          return std::pair(data < 0, static_cast<std::uint64_t>(data));
        } else {
          return std::nullopt;
        }
      },
      value.data());
}

bool isNumber(const Value& value) {
  return signAndBits(value) || std::holds_alternative<float>(value.data()) ||
         std::holds_alternative<double>(value.data());
}

bool isString(const Value& value) { return std::holds_alternative<StringRef>(value.data()); }

}  // namespace

Value::Value(std::string_view utf8) : data_(StringRef::adopt(newString(utf8, kEncodingUTF8))) {}

Value::Value(ObjectRef object) {
  if (object) data_ = std::move(object);
}

bool Value::isNil() const {
  if (const auto* string = std::get_if<StringRef>(&data_)) return !*string;
  return std::holds_alternative<std::monostate>(data_);
}

std::string Value::typeName() const {
  return std::visit(
      Overloaded{
          [](std::monostate) -> std::string { return "Nil"; }, [](bool) -> std::string { return "Boolean"; },
          [](std::int32_t) -> std::string { return "Integer"; }, [](std::uint32_t) -> std::string { return "UInt32"; },
          [](std::int64_t) -> std::string { return "Int64"; }, [](std::uint64_t) -> std::string { return "UInt64"; },
          [](float) -> std::string { return "Single"; }, [](double) -> std::string { return "Double"; },
          [](const StringRef&) -> std::string { return "String"; },
          [](const ObjectRef& object) -> std::string { return classOf(object.get()).name(); }},
      data_);
}

Value::operator bool() const {
  if (const auto* value = std::get_if<bool>(&data_)) return *value;
  wrongType(*this, "Boolean");
}

std::int64_t Value::integer() const {
  if (const auto whole = signAndBits(*this)) return static_cast<std::int64_t>(whole->second);
  wrongType(*this, "an integer");
}

double Value::number() const {
  return std::visit(
      [this](const auto& data) -> double {
        using T = std::remove_cvref_t<decltype(data)>;
        if constexpr (HostInteger<T> || std::floating_point<T>) {
          return static_cast<double>(data);
        } else {
          wrongType(*this, "a number");
        }
      },
      data_);
}

std::string Value::text() const { return textOf(string()); }

REALobject Value::object() const {
  if (const auto* object = std::get_if<ObjectRef>(&data_)) return object->get();
  if (std::holds_alternative<std::monostate>(data_)) return nullptr;
  wrongType(*this, "an object");
}

REALstring Value::string() const {
  if (const auto* string = std::get_if<StringRef>(&data_)) return string->get();
  wrongType(*this, "String");
}

std::vector<Value> Value::elements() const {
  REALobject array = object();
  if (array == nullptr || !elementTypeOf(array)) wrongType(*this, "an array");
  std::vector<Value> values;
  values.reserve(static_cast<std::size_t>(upperBound(array) + 1));
  for (REALinteger index = 0; index <= upperBound(array); ++index) values.push_back(elementAt(array, index));
  return values;
}

bool operator==(const Value& a, const Value& b) {
  if (isNumber(a) && isNumber(b)) {
    const auto wholeA = signAndBits(a);
    const auto wholeB = signAndBits(b);
    return wholeA && wholeB ? wholeA == wholeB : a.number() == b.number();
  }
  if (isString(a) && isString(b)) return a.text() == b.text();
  if (a.isNil() || b.isNil()) return a.isNil() && b.isNil();
  if (const auto* boolean = std::get_if<bool>(&a.data_)) {
    const auto* other = std::get_if<bool>(&b.data_);
    return other != nullptr && *boolean == *other;
  }
  const auto* object = std::get_if<ObjectRef>(&a.data_);
  const auto* other = std::get_if<ObjectRef>(&b.data_);
  return object != nullptr && other != nullptr && object->get() == other->get();
}

std::ostream& operator<<(std::ostream& stream, const Value& value) {
  std::visit(Overloaded{[&](std::monostate) { stream << "Nil"; },
                        [&](bool boolean) { stream << (boolean ? "True" : "False"); },
                        [&](const StringRef&) { stream << '"' << value.text() << '"'; },
                        [&](const ObjectRef& object) {
                          stream << value.typeName() << " at " << static_cast<const void*>(object.get());
                        },
                        [&](auto number) { stream << number; }},
             value.data());
  return stream;
}

}  // namespace host
