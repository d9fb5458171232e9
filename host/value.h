#pragma once

#include "host/counted.h"

#include <concepts>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace host {

class Argument;

// A value of the host language as host code sees it: nil, a scalar, a string or an object, with a reference of its own.
// Arrays are objects; a variant that holds a scalar becomes that scalar.
class Value {
 public:
  using Data = std::variant<std::monostate, bool, std::int32_t, std::uint32_t, std::int64_t, std::uint64_t, float,
                            double, StringRef, ObjectRef>;

  Value() = default;
  // Literals are to be written where values are expected.
  // NOLINTBEGIN(google-explicit-constructor)
  Value(std::nullptr_t) {}
  // No pointer is to become a boolean on the way.
  template <std::same_as<bool> Boolean>
  Value(Boolean value) : data_(value) {}
  template <std::integral Integer>
  requires(!std::same_as<Integer, bool>) Value(Integer value) : data_(widened(value)) {}
  Value(float value) : data_(value) {}
  Value(double value) : data_(value) {}
  Value(const char* utf8) : Value(std::string_view(utf8)) {}
  Value(const std::string& utf8) : Value(std::string_view(utf8)) {}
  Value(std::string_view utf8);
  Value(StringRef string) : data_(std::move(string)) {}
  // Nil for no object.
  Value(ObjectRef object);
  // NOLINTEND(google-explicit-constructor)
  static Value adopt(REALobject object) { return ObjectRef::adopt(object); }
  static Value share(REALobject object) { return ObjectRef::share(object); }
  static Value adopt(REALstring string) { return StringRef::adopt(string); }

  [[nodiscard]] const Data& data() const { return data_; }
  // Nil, or a string without a handle.
  [[nodiscard]] bool isNil() const;
  // "Integer", "String", a class's name, "Nil", "String()".
  [[nodiscard]] std::string typeName() const;

  // These throw Error for a value of another type.
  explicit operator bool() const;
  [[nodiscard]] std::int64_t integer() const;
  [[nodiscard]] double number() const;
  [[nodiscard]] std::string text() const;  // UTF-8
  // Borrowed; null for nil.
  [[nodiscard]] REALobject object() const;
  [[nodiscard]] REALstring string() const;

  // Of an array.
  [[nodiscard]] std::vector<Value> elements() const;
  [[nodiscard]] std::size_t size() const { return elements().size(); }
  [[nodiscard]] Value at(std::size_t index) const { return elements().at(index); }

  // Members by name, as host code uses them. What the plug-in leaves pending is thrown as HostException; a member that
  // isn't there, or arguments that no declaration takes, as Error.
  template <class... Arguments>
  Value call(std::string_view name, Arguments&&... arguments) const;
  // Assigns to a method that can be assigned to: the value comes last.
  template <class... Arguments>
  void assign(std::string_view name, Arguments&&... argumentsAndValue) const;
  [[nodiscard]] Value get(std::string_view property) const;
  void set(std::string_view property, const Value& value) const;

  // Numbers by value whatever their types, strings by text, objects by identity.
  friend bool operator==(const Value& a, const Value& b);
  friend std::ostream& operator<<(std::ostream& stream, const Value& value);

 private:
  template <std::integral Integer>
  static Data widened(Integer value) {
    if constexpr (sizeof(Integer) <= sizeof(std::int32_t)) {
      if constexpr (std::signed_integral<Integer>) return std::int32_t{value};
      return std::uint32_t{static_cast<std::uint32_t>(value)};
    } else {
      if constexpr (std::signed_integral<Integer>) return std::int64_t{value};
      return std::uint64_t{static_cast<std::uint64_t>(value)};
    }
  }

  Data data_;
};

// A by-reference argument: the variable that the call may change.
class Ref {
 public:
  explicit Ref(Value& variable) : variable_(&variable) {}

 private:
  friend class Argument;
  Value* variable_;
};

class Argument {
 public:
  template <class T>
  requires std::constructible_from<Value, T&&> &&(!std::same_as<std::remove_cvref_t<T>, Argument>)
      // NOLINTNEXTLINE(google-explicit-constructor): arguments are written as they are.
      Argument(T&& value)
      : value_(std::forward<T>(value)) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  Argument(Ref reference) : variable_(reference.variable_) {}

  [[nodiscard]] const Value& value() const { return variable_ == nullptr ? value_ : *variable_; }
  // Null unless passed by reference.
  [[nodiscard]] Value* variable() const { return variable_; }

 private:
  Value value_;
  Value* variable_ = nullptr;
};

using Arguments = std::vector<Argument>;

Value callMember(const Value& self, std::string_view name, const Arguments& arguments);
void assignMember(const Value& self, std::string_view name, const Arguments& argumentsAndValue);
Value callSharedMember(std::string_view className, std::string_view name, const Arguments& arguments);
// Host code's "new": class constructors from the root down, then the declared constructor that takes the arguments.
Value newObjectWith(std::string_view className, const Arguments& arguments);
// The value of a class constant.
std::int64_t constant(std::string_view className, std::string_view name);

template <class... Given>
Value callShared(std::string_view className, std::string_view name, Given&&... arguments) {
  return callSharedMember(className, name, Arguments{Argument(std::forward<Given>(arguments))...});
}

template <class... Given>
Value newObject(std::string_view className, Given&&... arguments) {
  return newObjectWith(className, Arguments{Argument(std::forward<Given>(arguments))...});
}

template <class... Given>
Value Value::call(std::string_view name, Given&&... arguments) const {
  return callMember(*this, name, Arguments{Argument(std::forward<Given>(arguments))...});
}

template <class... Given>
void Value::assign(std::string_view name, Given&&... argumentsAndValue) const {
  assignMember(*this, name, Arguments{Argument(std::forward<Given>(argumentsAndValue))...});
}

}  // namespace host
