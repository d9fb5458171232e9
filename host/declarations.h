#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The host language's declarations, as class tables carry them: "addRecord(record as ABRecordVXR, byref error as
// NSErrorVXR) as boolean", "kABMultiValueMask = &h100".
namespace host {

enum class TypeKind { none, integer, int32, uint32, int64, uint64, boolean, single, real, string, variant, object };

struct Type {
  TypeKind kind = TypeKind::none;
  std::string name = {};  // as it is written
  bool isArray = false;

  // "ABPersonVXR()"
  [[nodiscard]] std::string text() const { return isArray ? name + "()" : name; }
};

struct Parameter {
  std::string name = {};
  Type type = {};
  bool isByReference = false;
  bool isAssigned = false;  // takes the value of an assignment to the method
};

struct Declaration {
  std::string name = {};
  std::vector<Parameter> parameters = {};
  Type result = {};  // of kind none where nothing is returned
};

struct ConstantDeclaration {
  std::string name = {};
  std::int64_t value = 0;
};

// The language doesn't tell letter case apart.
inline bool sameName(std::string_view a, std::string_view b) {
  if (a == b) return true;  // nearly always, where they are the same
  const auto lowered = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::ranges::equal(a, b, {}, lowered, lowered);
}

// The type of that name: a scalar of the language, Variant, or else a class.
Type namedType(std::string_view name);

// These throw Error, with the text and where in it reading stopped.
Declaration parseDeclaration(std::string_view text);
ConstantDeclaration parseConstant(std::string_view text);

// Whether both declare the same name, types and ways of passing; the parameters' names don't count.
bool sameSignature(const Declaration& a, const Declaration& b);

}  // namespace host
