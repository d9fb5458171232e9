#pragma once

#include "apps/contacts/script_tokens.h"
#include "host/value.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// What a running program has.
struct Scope {
  std::map<std::string, host::Value> variables;  // by name in lower case
  std::size_t line = 0;                          // that is being run, from 1

  // Throws Failure for a variable that nobody has made.
  host::Value& variable(const std::string& name);
};

using Expression = std::function<host::Value(Scope&)>;
using Assignee = std::function<void(Scope&, const host::Value&)>;

// Throws Failure for what is neither true nor false.
bool truthOf(const host::Value& value);
// A value as print shows it.
std::string shown(const host::Value& value);

// Reads the tokens of one line from left to right. All throw Failure for what they don't find.
class ExpressionReader {
 public:
  explicit ExpressionReader(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  [[nodiscard]] bool isAtEnd() const { return token().kind == TokenKind::kEnd; }
  // Whether the next token is that word or sign, which is then taken.
  bool take(std::string_view text);
  void expect(std::string_view text);
  void expectEnd() const;
  std::string name();  // in lower case

  Expression expression();
  // What can stand alone as a statement: a call, or with "=" and a value an assignment.
  std::function<void(Scope&)> callOrAssignment();

 private:
  using ArgumentMaker = std::function<host::Argument(Scope&)>;

  // A value and the last step to it, which an assignment takes in its place.
  struct Place {
    Expression value;
    std::optional<Assignee> assign;
  };

  [[nodiscard]] const Token& token() const { return tokens_[at_]; }
  [[nodiscard]] bool isNext(std::string_view text) const;
  [[noreturn]] void failFor(std::string_view expected) const;
  Expression conjunction();
  Expression comparison();
  Expression sum();
  Expression product();
  Expression chain(std::string_view signs, Expression (ExpressionReader::*part)());
  Expression unary();
  Place place();
  Place first();
  Place memberOf(Expression target);
  Place sharedMember(const std::string& className);
  Place named(const std::string& name);
  Expression newObject();
  std::vector<ArgumentMaker> arguments();

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
};

}  // namespace contacts
