#include "apps/contacts/script_expressions.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"
#include "host/arrays.h"
#include "host/classes.h"
#include "host/memory_blocks.h"
#include "host/objects.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <variant>

namespace contacts {
namespace {

bool isText(const host::Value& value) { return std::holds_alternative<host::StringRef>(value.data()); }
bool isObject(const host::Value& value) { return std::holds_alternative<host::ObjectRef>(value.data()); }

host::Value joined(const host::Value& a, const host::Value& b) { return shown(a) + shown(b); }

host::Value calculated(char sign, const host::Value& a, const host::Value& b) {
  if (sign == '&' || (sign == '+' && (isText(a) || isText(b)))) return joined(a, b);
  if (sign == '/') return a.number() / b.number();
  const auto isWhole = [](const host::Value& value) { return value.typeName().find("Int") != std::string::npos; };
  if (isWhole(a) && isWhole(b)) {
    const std::int64_t x = a.integer();
    const std::int64_t y = b.integer();
    std::int64_t result = 0;
    const bool isTooLarge = sign == '+'   ? __builtin_add_overflow(x, y, &result)
                            : sign == '-' ? __builtin_sub_overflow(x, y, &result)
                                          : __builtin_mul_overflow(x, y, &result);
    if (isTooLarge) throw Failure("a number is too large");
    return result;
  }
  const double x = a.number();
  const double y = b.number();
  return sign == '+' ? x + y : sign == '-' ? x - y : x * y;
}

bool isLess(const host::Value& a, const host::Value& b) {
  return isText(a) && isText(b) ? a.text() < b.text() : a.number() < b.number();
}

bool compared(const std::string& sign, const host::Value& a, const host::Value& b) {
  const bool isEqual = (a.isNil() && b.isNil()) || a == b;
  if (sign == "=") return isEqual;
  if (sign == "<>") return !isEqual;
  if (sign == "<") return isLess(a, b);
  if (sign == ">") return isLess(b, a);
  return sign == "<=" ? !isLess(b, a) : !isLess(a, b);
}

// The functions of the language itself. Nothing for another name.
std::optional<host::Value> builtIn(const std::string& name, const std::vector<host::Value>& arguments) {
  const auto only = [&]() -> const host::Value& {
    if (arguments.size() != 1) throw Failure(name + ": " + std::to_string(arguments.size()) + " arguments, expected 1");
    return arguments.front();
  };
  if (name == "array") {
    const bool areTexts = !arguments.empty() && std::ranges::all_of(arguments, isText);
    return areTexts ? host::stringArray(arguments) : host::objectArray(arguments);
  }
  if (name == "date") return valueFrom(only().text(), kDate);
  if (name == "memoryblock") return host::memoryBlock(only().text());
  if (name == "text") return isObject(only()) ? host::Value(host::bytesOf(only())) : host::Value(shown(only()));
  if (name == "ubound") return static_cast<std::int32_t>(only().size()) - 1;
  if (name == "len") return static_cast<std::int32_t>(only().text().size());
  return std::nullopt;
}

host::Value memberValue(const host::Value& target, const std::string& name, const host::Arguments& arguments) {
  if (!isObject(target) || target.isNil()) throw Failure(name + " of " + target.typeName() + "; expected an object");
  const bool isProperty = arguments.empty() && host::findProperty(host::classOf(target.object()), name) != nullptr;
  return isProperty ? target.get(name) : host::callMember(target, name, arguments);
}

void assignTo(const host::Value& target, const std::string& name, host::Arguments arguments, const host::Value& value) {
  if (!isObject(target) || target.isNil()) throw Failure(name + " of " + target.typeName() + "; expected an object");
  if (arguments.empty() && host::findProperty(host::classOf(target.object()), name) != nullptr) {
    target.set(name, value);
    return;
  }
  arguments.emplace_back(value);
  host::assignMember(target, name, arguments);
}

host::Value sharedValue(const std::string& className, const std::string& name, const host::Arguments& arguments) {
  for (const host::ConstantDeclaration& constant : host::requireClass(className).constants) {
    if (arguments.empty() && host::sameName(constant.name, name)) return constant.value;
  }
  return host::callSharedMember(className, name, arguments);
}

host::Value elementOf(const host::Value& array, const std::vector<host::Value>& indexes) {
  if (indexes.size() != 1) throw Failure("an element of an array is named by one number");
  const std::int64_t index = indexes.front().integer();
  const std::size_t size = array.size();
  if (index < 0 || index >= static_cast<std::int64_t>(size)) {
    throw Failure("no element " + std::to_string(index) + " in an array of " + std::to_string(size));
  }
  return array.at(static_cast<std::size_t>(index));
}

template <class Makers>
host::Arguments made(const Makers& makers, Scope& scope) {
  host::Arguments arguments;
  for (const auto& each : makers) arguments.push_back(each(scope));
  return arguments;
}

std::vector<host::Value> valuesOf(const host::Arguments& arguments) {
  std::vector<host::Value> values;
  for (const host::Argument& each : arguments) values.push_back(each.value());
  return values;
}

}  // namespace

host::Value& Scope::variable(const std::string& name) {
  auto found = variables.find(name);
  if (found == variables.end()) throw Failure("no variable \"" + name + "\"; dim " + name + " makes it");
  return found->second;
}

bool truthOf(const host::Value& value) {
  if (value.typeName() != "Boolean") throw Failure("a condition is " + value.typeName() + "; expected Boolean");
  return static_cast<bool>(value);
}

std::string shown(const host::Value& value) {
  if (value.isNil()) return isText(value) ? "" : "nil";
  if (value.typeName() == "Boolean") return static_cast<bool>(value) ? "true" : "false";
  const bool isWrapper = value.typeName().ends_with("VXR");
  if (isWrapper && host::findProperty(host::classOf(value.object()), "Text") != nullptr)
    return value.get("Text").text();
  return valueText(nullptr, value);
}

bool ExpressionReader::isNext(std::string_view text) const {
  return (token().kind == TokenKind::kName || token().kind == TokenKind::kSign) && host::sameName(token().text, text);
}

bool ExpressionReader::take(std::string_view text) {
  const bool isTaken = isNext(text);
  if (isTaken) ++at_;
  return isTaken;
}

void ExpressionReader::expect(std::string_view text) {
  if (take(text)) return;
  throw Failure((isAtEnd() ? "the line ends" : "\"" + printable(token().text) + "\"") + "; expected " +
                std::string(text));
}

void ExpressionReader::expectEnd() const {
  if (!isAtEnd()) throw Failure("\"" + printable(token().text) + "\"; expected the end of the line");
}

std::string ExpressionReader::name() {
  if (token().kind != TokenKind::kName) throw Failure("\"" + printable(token().text) + "\"; expected a name");
  return lowerCase(tokens_[at_++].text);
}

Expression ExpressionReader::expression() {
  Expression left = conjunction();
  while (take("or")) {
    left = [left, right = conjunction()](Scope& scope) { return truthOf(left(scope)) || truthOf(right(scope)); };
  }
  return left;
}

Expression ExpressionReader::conjunction() {
  Expression left = comparison();
  while (take("and")) {
    left = [left, right = comparison()](Scope& scope) { return truthOf(left(scope)) && truthOf(right(scope)); };
  }
  return left;
}

Expression ExpressionReader::comparison() {
  if (take("not")) return [value = comparison()](Scope& scope) { return !truthOf(value(scope)); };
  Expression left = sum();
  for (const char* sign : {"=", "<>", "<=", ">=", "<", ">"}) {
    if (!take(sign)) continue;
    return [left, right = sum(), sign = std::string(sign)](Scope& scope) {
      const host::Value a = left(scope);
      return compared(sign, a, right(scope));
    };
  }
  return left;
}

Expression ExpressionReader::sum() {
  Expression left = product();
  while (isNext("+") || isNext("-") || isNext("&")) {
    const char sign = tokens_[at_++].text.front();
    left = [sign, left, right = product()](Scope& scope) {
      const host::Value a = left(scope);
      return calculated(sign, a, right(scope));
    };
  }
  return left;
}

Expression ExpressionReader::product() {
  Expression left = unary();
  while (isNext("*") || isNext("/")) {
    const char sign = tokens_[at_++].text.front();
    left = [sign, left, right = unary()](Scope& scope) {
      const host::Value a = left(scope);
      return calculated(sign, a, right(scope));
    };
  }
  return left;
}

Expression ExpressionReader::unary() {
  if (take("-")) return [value = unary()](Scope& scope) { return calculated('-', 0, value(scope)); };
  if (take("new")) return newObject();
  return place().value;
}

ExpressionReader::Place ExpressionReader::place() {
  Place place = first();
  while (take(".")) place = memberOf(place.value);
  return place;
}

ExpressionReader::Place ExpressionReader::first() {
  if (take("(")) {
    Expression inner = expression();
    expect(")");
    return {std::move(inner), {}};
  }
  const Token found = token();
  if (found.kind == TokenKind::kText) {
    ++at_;
    return {[text = found.text](Scope&) { return host::Value(text); }, {}};
  }
  if (found.kind == TokenKind::kNumber) {
    ++at_;
    const bool isWhole = found.text.find('.') == std::string::npos;
    const host::Value number = isWhole ? host::Value(valueFrom(found.text, kInteger)) : valueFrom(found.text, kReal);
    return {[number](Scope&) { return number; }, {}};
  }
  if (take("nil")) return {[](Scope&) { return host::Value(); }, {}};
  if (take("true")) return {[](Scope&) { return host::Value(true); }, {}};
  if (take("false")) return {[](Scope&) { return host::Value(false); }, {}};
  return named(name());
}

// A class's shared member, a function of the language, a variable or an element of one.
ExpressionReader::Place ExpressionReader::named(const std::string& name) {
  if (isNext(".")) {
    for (const auto& each : host::allClasses()) {
      if (host::sameName(each->name(), name)) {
        ++at_;
        return sharedMember(each->name());
      }
    }
  }
  if (!isNext("(")) {
    return {[name](Scope& scope) { return scope.variable(name); },
            [name](Scope& scope, const host::Value& value) { scope.variable(name) = value; }};
  }
  return {[name, makers = arguments()](Scope& scope) {
            const std::vector<host::Value> values = valuesOf(made(makers, scope));
            if (auto result = builtIn(name, values)) return *std::move(result);
            return elementOf(scope.variable(name), values);
          },
          {}};
}

ExpressionReader::Place ExpressionReader::memberOf(Expression target) {
  const std::string member = name();
  const std::vector<ArgumentMaker> makers = isNext("(") ? arguments() : std::vector<ArgumentMaker>();
  return {[target, member, makers](Scope& scope) {
            const host::Value object = target(scope);
            return memberValue(object, member, made(makers, scope));
          },
          [target, member, makers](Scope& scope, const host::Value& value) {
            const host::Value object = target(scope);
            assignTo(object, member, made(makers, scope), value);
          }};
}

ExpressionReader::Place ExpressionReader::sharedMember(const std::string& className) {
  const std::string member = name();
  const std::vector<ArgumentMaker> makers = isNext("(") ? arguments() : std::vector<ArgumentMaker>();
  return {[className, member, makers](Scope& scope) { return sharedValue(className, member, made(makers, scope)); },
          {}};
}

Expression ExpressionReader::newObject() {
  const std::string className = name();
  const std::vector<ArgumentMaker> makers = isNext("(") ? arguments() : std::vector<ArgumentMaker>();
  return [className, makers](Scope& scope) {
    for (const auto& each : host::allClasses()) {
      if (host::sameName(each->name(), className)) return host::newObjectWith(each->name(), made(makers, scope));
    }
    throw Failure("no class \"" + className + "\"");
  };
}

// A variable alone is passed as itself, so that the call may change it where it is declared to.
std::vector<ExpressionReader::ArgumentMaker> ExpressionReader::arguments() {
  std::vector<ArgumentMaker> makers;
  expect("(");
  while (!take(")")) {
    if (!makers.empty()) expect(",");
    const Token& next = tokens_[std::min(at_ + 1, tokens_.size() - 1)];
    const bool isAlone = token().kind == TokenKind::kName && next.kind == TokenKind::kSign &&
                         (next.text == "," || next.text == ")") && !isNext("nil") && !isNext("true") &&
                         !isNext("false");
    if (isAlone) {
      makers.emplace_back([name = name()](Scope& scope) { return host::Argument(host::Ref(scope.variable(name))); });
    } else {
      makers.emplace_back([value = expression()](Scope& scope) { return host::Argument(value(scope)); });
    }
  }
  return makers;
}

std::function<void(Scope&)> ExpressionReader::callOrAssignment() {
  Place target = place();
  if (!take("=")) {
    expectEnd();
    return [call = target.value](Scope& scope) { call(scope); };
  }
  if (!target.assign) throw Failure("this can't be assigned to");
  Expression value = expression();
  expectEnd();
  return [assign = *target.assign, value](Scope& scope) { assign(scope, value(scope)); };
}

}  // namespace contacts
