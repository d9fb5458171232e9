#include "apps/contacts/script_expressions.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"
#include "host/arrays.h"
#include "host/classes.h"
#include "host/entries.h"
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
bool isWhole(const host::Value& value) { return value.typeName().find("Int") != std::string::npos; }

host::Value calculated(char sign, const host::Value& a, const host::Value& b) {
  if (sign == '&' || (sign == '+' && (isText(a) || isText(b)))) return shown(a) + shown(b);
  if (sign == '/') return a.number() / b.number();
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

// Of truths, the second only where it matters; of whole numbers bit by bit.
Expression logical(bool isAnd, const Expression& left, const Expression& right) {
  return [isAnd, left, right](Scope& scope) -> host::Value {
    const host::Value a = left(scope);
    if (!isWhole(a)) return truthOf(a) == isAnd ? truthOf(right(scope)) : !isAnd;
    const std::int64_t b = right(scope).integer();
    return isAnd ? a.integer() & b : a.integer() | b;
  };
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
  if (name == "array") return arrayOf(arguments.empty() ? "" : arguments.front().typeName(), arguments);
  if (name == "chr") {
    const std::int64_t code = only().integer();
    if (code < 0 || code > 127) throw Failure("chr: " + std::to_string(code) + ", expected 0 to 127");
    return std::string(1, static_cast<char>(code));
  }
  if (name == "wait") return host::idle(only().number()), host::Value();
  if (name == "date") return valueFrom(only().text(), kDate);
  if (name == "memoryblock") return host::memoryBlock(only().text());
  if (name == "text") return isObject(only()) ? host::Value(host::bytesOf(only())) : host::Value(shown(only()));
  if (name == "ubound") return static_cast<std::int32_t>(only().size()) - 1;
  if (name == "len") return static_cast<std::int32_t>(only().text().size());
  return std::nullopt;
}

// Throws Failure for a value without members.
const host::HostClass& classOfOwner(const host::Value& owner, const std::string& member) {
  if (isObject(owner) && !owner.isNil()) return host::classOf(owner.object());
  throw Failure(member + " of " + owner.typeName() + "; expected an object");
}

host::Value elementOf(const host::Value& array, const host::Arguments& indexes) {
  if (indexes.size() != 1) throw Failure("an element of an array is named by one number");
  const std::int64_t index = indexes.front().value().integer();
  const auto size = static_cast<std::int64_t>(array.size());
  if (index >= 0 && index < size) return host::elementAt(array.object(), static_cast<REALinteger>(index));
  throw Failure("no element " + std::to_string(index) + " in an array of " + std::to_string(size));
}

// Where no member of that name takes arguments, they are an index into what it answers.
template <class Answer>
host::Value answerOrElement(const host::HostClass& owner, std::vector<host::Method> host::HostClass::*methods,
                            const std::string& name, const host::Arguments& arguments, Answer answer) {
  bool isIndex = !arguments.empty();
  for (const host::HostClass* each = &owner; each != nullptr && isIndex; each = each->superclass) {
    isIndex = std::ranges::none_of(each->*methods, [&](const host::Method& method) {
      return host::sameName(method.declaration.name, name) && !method.declaration.parameters.empty();
    });
  }
  return isIndex ? elementOf(answer(host::Arguments()), arguments) : answer(arguments);
}

host::Value memberValue(const host::Value& target, const std::string& name, const host::Arguments& arguments) {
  const host::HostClass& owner = classOfOwner(target, name);
  return answerOrElement(owner, &host::HostClass::methods, name, arguments, [&](const host::Arguments& given) {
    const bool isProperty = given.empty() && host::findProperty(owner, name) != nullptr;
    return isProperty ? target.get(name) : host::callMember(target, name, given);
  });
}

void assignTo(const host::Value& target, const std::string& name, host::Arguments arguments, const host::Value& value) {
  if (arguments.empty() && host::findProperty(classOfOwner(target, name), name) != nullptr) {
    target.set(name, value);
    return;
  }
  arguments.emplace_back(value);
  host::assignMember(target, name, arguments);
}

host::Value sharedValue(const std::string& className, const std::string& name, const host::Arguments& arguments) {
  const host::HostClass& owner = host::requireClass(className);
  for (const host::ConstantDeclaration& constant : owner.constants) {
    if (arguments.empty() && host::sameName(constant.name, name)) return constant.value;
  }
  return answerOrElement(owner, &host::HostClass::sharedMethods, name, arguments,
                         [&](const host::Arguments& given) { return host::callSharedMember(className, name, given); });
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

void ExpressionReader::failFor(std::string_view expected) const {
  throw Failure((isAtEnd() ? "the line ends" : "\"" + printable(token().text) + "\"") + "; expected " +
                std::string(expected));
}

void ExpressionReader::expect(std::string_view text) {
  if (!take(text)) failFor(text);
}

void ExpressionReader::expectEnd() const {
  if (!isAtEnd()) failFor("the end of the line");
}

std::string ExpressionReader::name() {
  if (token().kind != TokenKind::kName) failFor("a name");
  return lowerCase(tokens_[at_++].text);
}

Expression ExpressionReader::expression() {
  Expression left = conjunction();
  while (take("or")) left = logical(false, left, conjunction());
  return left;
}

Expression ExpressionReader::conjunction() {
  Expression left = comparison();
  while (take("and")) left = logical(true, left, comparison());
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

Expression ExpressionReader::sum() { return chain("+-&", &ExpressionReader::product); }

Expression ExpressionReader::product() { return chain("*/", &ExpressionReader::unary); }

Expression ExpressionReader::chain(std::string_view signs, Expression (ExpressionReader::*part)()) {
  Expression left = (this->*part)();
  while (token().kind == TokenKind::kSign && token().text.size() == 1 && signs.find(token().text[0]) < signs.size()) {
    const char sign = tokens_[at_++].text.front();
    left = [sign, left, right = (this->*part)()](Scope& scope) {
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
  while (isNext(".") || isNext("(")) {
    if (take(".")) {
      place = memberOf(place.value);
    } else {
      place = {[array = place.value, makers = arguments()](Scope& scope) {
                 const host::Value value = array(scope);
                 return elementOf(value, made(makers, scope));
               },
               {}};
    }
  }
  return place;
}

ExpressionReader::Place ExpressionReader::first() {
  if (take("(")) {
    Expression inner = expression();
    expect(")");
    return {std::move(inner), {}};
  }
  const Token found = token();
  std::optional<host::Value> constant;
  if (found.kind == TokenKind::kText) constant = found.text;
  if (found.kind == TokenKind::kNumber) {
    constant = valueFrom(found.text, found.text.find('.') == std::string::npos ? kInteger : kReal);
  }
  if (isNext("nil")) constant = nullptr;
  if (isNext("true") || isNext("false")) constant = isNext("true");
  if (isNext("endofline")) constant = "\n";
  if (constant) {
    ++at_;
    return {[value = *constant](Scope&) { return value; }, {}};
  }
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
            const host::Arguments given = made(makers, scope);
            if (auto result = builtIn(name, valuesOf(given))) return *std::move(result);
            return elementOf(scope.variable(name), given);
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
    const bool isAlone = next.kind == TokenKind::kSign && (next.text == "," || next.text == ")");
    const std::string word = isAlone && token().kind == TokenKind::kName ? lowerCase(token().text) : "";
    makers.emplace_back([word, value = expression()](Scope& scope) {
      const auto found = scope.variables.find(word);
      return found == scope.variables.end() ? host::Argument(value(scope)) : host::Argument(host::Ref(found->second));
    });
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
