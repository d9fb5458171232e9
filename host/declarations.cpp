#include "host/declarations.h"

#include "host/error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace host {

namespace {

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Reads a declaration from left to right.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool accept(std::string_view token) {
    skipBlanks();
    if (!sameName(text_.substr(at_, token.size()), token)) return false;
    const std::size_t end = at_ + token.size();
    // "as" is no beginning of "assigned".
    if (isNameCharacter(token.front()) && end < text_.size() && isNameCharacter(text_[end])) return false;
    at_ = end;
    return true;
  }

  void expect(std::string_view token) {
    if (!accept(token)) fail("\"" + std::string(token) + "\"");
  }

  std::string name() {
    skipBlanks();
    const std::size_t start = at_;
    while (at_ < text_.size() && isNameCharacter(text_[at_])) ++at_;
    if (at_ == start) fail("a name");
    return std::string(text_.substr(start, at_ - start));
  }

  std::int64_t number() {
    skipBlanks();
    const int base = accept("&h") ? 16 : 10;
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text_.data() + at_, text_.data() + text_.size(), value, base);
    if (error != std::errc()) fail("a number");
    at_ = static_cast<std::size_t>(end - text_.data());
    return value;
  }

  // "()" behind a name or a type.
  bool acceptArrayMark() {
    const std::size_t start = at_;
    if (accept("(") && accept(")")) return true;
    at_ = start;
    return false;
  }

  void expectEnd() {
    skipBlanks();
    if (at_ != text_.size()) fail("the end");
  }

 private:
  void skipBlanks() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
  }

  [[noreturn]] void fail(const std::string& expected) const {
    throw Error("declaration \"" + std::string(text_) + "\": expected " + expected + " at character " +
                std::to_string(at_ + 1));
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

// A name, or the type that stands behind "as".
Type readType(Reader& reader) {
  Type type = namedType(reader.name());
  type.isArray = reader.acceptArrayMark();
  return type;
}

Parameter readParameter(Reader& reader) {
  Parameter parameter;
  if (reader.accept("byref")) {
    parameter.isByReference = true;
  } else if (reader.accept("assigns")) {
    parameter.isAssigned = true;
  }
  parameter.name = reader.name();
  const bool isArray = reader.acceptArrayMark();
  reader.expect("as");
  parameter.type = readType(reader);
  parameter.type.isArray |= isArray;
  return parameter;
}

}  // namespace

Type namedType(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, TypeKind>, 11> kinds{{
      {"integer", TypeKind::integer},
      {"int32", TypeKind::int32},
      {"uint32", TypeKind::uint32},
      {"int64", TypeKind::int64},
      {"uint64", TypeKind::uint64},
      {"boolean", TypeKind::boolean},
      {"single", TypeKind::single},
      {"double", TypeKind::real},
      {"string", TypeKind::string},
      {"variant", TypeKind::variant},
      {"object", TypeKind::object},
  }};
  for (const auto& [known, kind] : kinds) {
    if (sameName(known, name)) return Type{kind, std::string(name)};
  }
  return Type{TypeKind::object, std::string(name)};
}

Declaration parseDeclaration(std::string_view text) {
  Reader reader(text);
  Declaration declaration;
  declaration.name = reader.name();
  if (reader.accept("(") && !reader.accept(")")) {
    do {
      declaration.parameters.push_back(readParameter(reader));
    } while (reader.accept(","));
    reader.expect(")");
  }
  if (reader.accept("as")) declaration.result = readType(reader);
  reader.expectEnd();
  return declaration;
}

ConstantDeclaration parseConstant(std::string_view text) {
  Reader reader(text);
  ConstantDeclaration constant;
  constant.name = reader.name();
  reader.expect("=");
  constant.value = reader.number();
  reader.expectEnd();
  return constant;
}

bool sameSignature(const Declaration& a, const Declaration& b) {
  const auto sameType = [](const Type& x, const Type& y) { return x.isArray == y.isArray && sameName(x.name, y.name); };
  return sameName(a.name, b.name) && sameType(a.result, b.result) &&
         std::ranges::equal(a.parameters, b.parameters, [&](const Parameter& x, const Parameter& y) {
           return sameType(x.type, y.type) && x.isByReference == y.isByReference && x.isAssigned == y.isAssigned;
         });
}

}  // namespace host
