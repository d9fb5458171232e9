#include "apps/contacts/script.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/script_expressions.h"
#include "apps/contacts/text.h"
#include "apps/contacts/values.h"
#include "host/events.h"
#include "host/exceptions.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <span>
#include <utility>
#include <vector>

namespace contacts {
namespace {

using Statement = std::function<void(Scope&)>;

struct Line {
  std::size_t number;  // from 1
  std::vector<Token> tokens;
};

struct Block {
  std::vector<std::pair<std::size_t, Statement>> statements;  // with their lines

  void run(Scope& scope) const {
    for (const auto& [line, statement] : statements) {
      scope.line = line;
      statement(scope);
    }
  }
};

// Turns lines into statements, those of one kind of block with their ends.
class Program {
 public:
  Program(std::string_view text, std::string name) : name_(std::move(name)) {
    for (std::size_t number = 1; !text.empty(); ++number) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      atLine(number, [&] {
        std::vector<Token> tokens = tokensOf(text.substr(0, end));
        if (tokens.size() > 1) lines_.push_back({number, std::move(tokens)});
      });
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    program_ = block();
    if (at_ < lines_.size()) atLine(lines_[at_].number, [] { throw Failure("this ends nothing"); });
  }

  void run() const {
    Scope scope;
    try {
      program_.run(scope);
    } catch (const host::HostException& exception) {
      throw Failure(place(scope.line) + reasonOf(exception));
    } catch (const std::runtime_error& error) {
      throw Failure(place(scope.line) + error.what());
    }
  }

 private:
  [[nodiscard]] std::string place(std::size_t line) const { return name_ + ":" + std::to_string(line) + ": "; }

  template <class Body>
  void atLine(std::size_t line, Body body) const {
    try {
      body();
    } catch (const Failure& failure) {
      const bool isPlaced = std::string_view(failure.what()).starts_with(name_ + ":");
      throw Failure((isPlaced ? "" : place(line)) + failure.what());
    }
  }

  // Up to a line that ends a block or begins its next part, or to the end of the program.
  Block block() {
    constexpr std::string_view kEnds[] = {"end", "else", "elseif", "next", "wend", "catch"};
    constexpr int kMostDepth = 100;
    if (++depth_ > kMostDepth) throw Failure("blocks are nested too deeply; expected 100 at most");
    Block block;
    while (at_ < lines_.size()) {
      const Token& first = lines_[at_].tokens.front();
      if (first.kind == TokenKind::kName &&
          std::ranges::any_of(kEnds, [&](std::string_view end) { return isSame(first.text, end); })) {
        break;
      }
      const std::size_t number = lines_[at_].number;
      atLine(number, [&] {
        ExpressionReader reader(lines_[at_++].tokens);
        block.statements.emplace_back(number, statement(reader));
      });
    }
    --depth_;
    return block;
  }

  // Takes the next line when it begins with the word.
  bool takeLine(std::string_view word) {
    if (at_ == lines_.size() || !ExpressionReader(lines_[at_].tokens).take(word)) return false;
    ++at_;
    return true;
  }

  void expectEndOf(std::string_view kind) {
    if (at_ < lines_.size()) {
      ExpressionReader reader(lines_[at_].tokens);
      if (reader.take("end") && reader.take(kind)) {
        ++at_;
        return;
      }
    }
    throw Failure("this " + std::string(kind) + " is never ended; expected end " + std::string(kind));
  }

  Statement statement(ExpressionReader& reader) {
    if (reader.take("dim")) return declaration(reader);
    if (reader.take("print")) return printing(reader);
    if (reader.take("if")) return condition(reader);
    if (reader.take("for")) return loop(reader);
    if (reader.take("while")) return repetition(reader);
    if (reader.take("try")) return trial(reader);
    if (reader.take("on")) return handler(reader);
    return reader.callOrAssignment();
  }

  // "dim name = value", or "dim names() as type" for an empty array. Other types are not looked at.
  static Statement declaration(ExpressionReader& reader) {
    const std::string name = reader.name();
    const bool isArray = reader.take("(");
    if (isArray) reader.expect(")");
    const std::string type = reader.take("as") ? reader.name() : "";
    Expression value = [isArray, type](Scope&) { return isArray ? arrayOf(type, {}) : host::Value(); };
    if (reader.take("=")) value = reader.expression();
    reader.expectEnd();
    return [name, value](Scope& scope) { scope.variables[name] = value(scope); };
  }

  static Statement printing(ExpressionReader& reader) {
    std::vector<Expression> values;
    while (!reader.isAtEnd()) {
      if (!values.empty()) reader.expect(",");
      values.push_back(reader.expression());
    }
    return [values](Scope& scope) {
      std::string line;
      for (const Expression& value : values) line += (line.empty() ? "" : " ") + shown(value(scope));
      std::cout << line << '\n';
    };
  }

  Statement condition(ExpressionReader& reader) {
    const Expression test = reader.expression();
    reader.take("then");
    reader.expectEnd();
    const Block then = block();
    if (at_ < lines_.size()) {
      ExpressionReader next(lines_[at_].tokens);
      if (next.take("elseif")) {
        ++at_;
        return [test, then, otherwise = condition(next)](Scope& scope) {
          truthOf(test(scope)) ? then.run(scope) : otherwise(scope);
        };
      }
    }
    const Block otherwise = takeLine("else") ? block() : Block();
    expectEndOf("if");
    return [test, then, otherwise](Scope& scope) { (truthOf(test(scope)) ? then : otherwise).run(scope); };
  }

  Statement loop(ExpressionReader& reader) {
    const bool isEach = reader.take("each");
    const std::string name = reader.name();
    reader.expect(isEach ? "in" : "=");
    const Expression first = reader.expression();
    Expression last;
    if (!isEach) {
      reader.expect("to");
      last = reader.expression();
    }
    reader.expectEnd();
    const Block body = block();
    if (!takeLine("next")) throw Failure("this for is never ended; expected next");
    if (isEach) {
      return [name, first, body](Scope& scope) {
        for (const host::Value& element : first(scope).elements()) {
          scope.variables[name] = element;
          body.run(scope);
        }
      };
    }
    return [name, first, last, body](Scope& scope) {
      const std::int64_t end = last(scope).integer();
      for (std::int64_t i = first(scope).integer(); i <= end; ++i) {
        scope.variables[name] = static_cast<std::int32_t>(i);
        body.run(scope);
      }
    };
  }

  Statement repetition(ExpressionReader& reader) {
    const Expression test = reader.expression();
    reader.expectEnd();
    const Block body = block();
    if (!takeLine("wend")) throw Failure("this while is never ended; expected wend");
    return [test, body](Scope& scope) {
      while (truthOf(test(scope))) body.run(scope);
    };
  }

  // Exceptions of the host's language are caught; mistakes in the program aren't.
  Statement trial(ExpressionReader& reader) {
    reader.expectEnd();
    const Block body = block();
    ExpressionReader next(at_ < lines_.size() ? lines_[at_].tokens : tokensOf(""));
    if (!next.take("catch")) throw Failure("this try is never ended; expected catch");
    const std::string name = next.isAtEnd() ? "" : next.name();
    ++at_;
    const Block handler = block();
    expectEndOf("try");
    return [name, body, handler](Scope& scope) {
      try {
        body.run(scope);
      } catch (const host::HostException& exception) {
        if (!name.empty()) scope.variables[name] = exception.object();
        handler.run(scope);
      }
    };
  }

  // "on object.Event(names)": a block that is run at each event, which leaves its values in the named variables.
  Statement handler(ExpressionReader& reader) {
    const std::string object = reader.name();
    reader.expect(".");
    const std::string event = reader.name();
    std::vector<std::string> names;
    if (reader.take("(")) {
      do names.push_back(reader.name());
      while (reader.take(","));
      reader.expect(")");
    }
    reader.expectEnd();
    const Block body = block();
    expectEndOf("on");
    return [object, event, names, body](Scope& scope) {
      const host::Value& owner = scope.variable(object);
      if (owner.isNil()) throw Failure(object + " is nil; expected an object");
      host::handleEvent(owner, event, [&scope, names, body](const host::Value&, std::span<const host::Value> values) {
        const std::size_t line = scope.line;
        for (std::size_t i = 0; i < std::min(names.size(), values.size()); ++i) scope.variables[names[i]] = values[i];
        body.run(scope);
        scope.line = line;
      });
    };
  }

  std::string name_;
  std::vector<Line> lines_;
  std::size_t at_ = 0;
  int depth_ = 0;
  Block program_;
};

}  // namespace

void runScript(std::string_view text, const std::string& name) { Program(text, name).run(); }

}  // namespace contacts
