#pragma once

#include "frame/host_types.h"
#include "platform/objc/fixed_string.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <type_traits>

// Rows of the class tables. A method's row compiles only if its function fits the declaration that the host is told.
namespace member_table {

constexpr char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

// The host language doesn't tell letter case apart.
constexpr bool same(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lowered(x) == lowered(y); });
}

constexpr std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

struct DeclaredType {
  std::string_view name;  // empty: no type
  bool isArray = false;
  bool isByReference = false;
};

// "[byref] name[()] as type[()]"; what stands before " as " is a parameter's or a method's name.
constexpr DeclaredType declaredType(std::string_view text) {
  DeclaredType type;
  const std::size_t as = text.rfind(" as ");
  if (as == std::string_view::npos) return type;
  std::string_view name = trimmed(text.substr(0, as));
  type.name = trimmed(text.substr(as + 4));
  type.isByReference = name.size() > 6 && same(name.substr(0, 6), "byref ");
  for (std::string_view* side : {&name, &type.name}) {
    if (side->ends_with("()")) {
      type.isArray = true;
      side->remove_suffix(2);
    }
  }
  return type;
}

struct Declaration {
  std::string_view parameters;  // between the parentheses
  DeclaredType result;

  constexpr explicit Declaration(std::string_view text) {
    // An array result's "()" comes after " as "; a parameter list never does.
    const std::size_t open = text.find('(');
    if (open == std::string_view::npos || text.substr(0, open).find(" as ") != std::string_view::npos) {
      result = declaredType(text);
      return;
    }
    std::size_t close = open;
    for (int depth = 0; close < text.size(); ++close) {
      if (text[close] == '(') ++depth;
      if (text[close] == ')' && --depth == 0) break;
    }
    parameters = text.substr(open + 1, close - open - 1);
    result = declaredType(text.substr(close + 1));
  }

  [[nodiscard]] constexpr std::size_t parameterCount() const {
    return trimmed(parameters).empty() ? 0 : 1 + static_cast<std::size_t>(std::ranges::count(parameters, ','));
  }

  [[nodiscard]] constexpr DeclaredType parameter(std::size_t index) const {
    std::string_view rest = parameters;
    for (; index > 0; --index) rest.remove_prefix(rest.find(',') + 1);
    return declaredType(rest.substr(0, rest.find(',')));
  }
};

template <class T>
constexpr bool fitsArray(std::string_view element) {
  if (same(element, "string")) return std::is_same_v<T, REALstringArray>;
  if (same(element, "dictionary")) return std::is_same_v<T, REALdictionaryArray>;
  return std::is_same_v<T, REALobjectArray>;
}

template <class T>
constexpr bool fitsScalar(std::string_view name) {
  if (name.empty()) return std::is_void_v<T>;
  if (same(name, "string")) return std::is_same_v<T, REALstring>;
  if (same(name, "integer")) return std::is_same_v<T, REALinteger>;
  if (same(name, "uint32")) return std::is_same_v<T, std::uint32_t>;
  if (same(name, "boolean")) return std::is_same_v<T, bool>;
  if (same(name, "single")) return std::is_same_v<T, float>;
  if (same(name, "memoryblock")) return std::is_same_v<T, REALmemoryBlock>;
  if (same(name, "dictionary")) return std::is_same_v<T, REALdictionary>;
  return std::is_same_v<T, REALobject>;  // a variant or an object of a class
}

template <class T>
constexpr bool fits(DeclaredType type) {
  if (type.isByReference) {
    if constexpr (std::is_pointer_v<T>) {
      return fits<std::remove_pointer_t<T>>(DeclaredType{type.name, type.isArray, false});
    } else {
      return false;
    }
  }
  return type.isArray ? fitsArray<T>(type.name) : fitsScalar<T>(type.name);
}

// The text is copied before it is read, here and below: under its undefined-behaviour sanitizer the compiler takes no
// address into a template argument for constant.
template <FixedString Text, class... Parameters>
constexpr bool fitsParameters() {
  const FixedString text = Text;
  const Declaration declaration(text.view());
  if (declaration.parameterCount() != sizeof...(Parameters)) return false;
  std::size_t index = 0;
  return (fits<Parameters>(declaration.parameter(index++)) && ...);
}

template <FixedString Text, class Result>
constexpr bool fitsResult() {
  const FixedString text = Text;
  return fits<Result>(Declaration(text.view()).result);
}

}  // namespace member_table

inline constexpr Word kClassFlags = 4;
inline constexpr Word kMethodFlags = 4;
// On the declared constructors that make an object without anything in it.
inline constexpr Word kEmptyConstructorFlags = 0x84;
inline constexpr Word kPropertyFlags = 6;

// A class-level method.
template <FixedString Text, class Result, class... Parameters>
REALmethodDefinition sharedMethod(Result (*function)(Parameters...), Word flags = kMethodFlags) {
  static_assert(member_table::fitsParameters<Text, Parameters...>(), "the parameters are not those declared");
  static_assert(member_table::fitsResult<Text, Result>(), "the result is not the declared one");
  static constexpr FixedString declaration = Text;
  return {reinterpret_cast<void*>(function), nullptr, declaration.text, flags};
}

// An instance method.
template <FixedString Text, class Result, class... Parameters>
REALmethodDefinition method(Result (*function)(REALobject self, Parameters...), Word flags = kMethodFlags) {
  REALmethodDefinition row =
      sharedMethod<Text, Result, Parameters...>(static_cast<Result (*)(Parameters...)>(nullptr), flags);
  row.function = reinterpret_cast<void*>(function);
  return row;
}

// An instance method that host code may also assign to: the setter gets the same parameters and the assigned value.
template <FixedString Text, class Result, class... Parameters>
REALmethodDefinition assignableMethod(Result (*getter)(REALobject self, Parameters...),
                                      std::type_identity_t<void (*)(REALobject, Parameters..., Result)> setter,
                                      Word flags = kMethodFlags) {
  REALmethodDefinition row = method<Text>(getter, flags);
  row.setter = reinterpret_cast<void*>(setter);
  return row;
}

// The first word of the data block, as an integer that host code may read and write.
inline REALproperty handleProperty(Word flags = kPropertyFlags) {
  return {.name = "Handle", .type = "Integer", .flags = flags, .getter = kHostAccessor, .setter = kHostAccessor};
}
