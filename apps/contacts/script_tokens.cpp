#include "apps/contacts/script_tokens.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/text.h"

#include <algorithm>

namespace contacts {
namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The text from its opening quote on; a quote within is written twice.
Token textToken(std::string_view line, std::size_t& at) {
  Token token{TokenKind::kText, ""};
  for (++at; at < line.size(); ++at) {
    if (line[at] != '"') {
      token.text += line[at];
    } else if (line.substr(at + 1).starts_with('"')) {
      token.text += line[at++];
    } else {
      ++at;
      return token;
    }
  }
  throw Failure("a text isn't closed; expected \"");
}

}  // namespace

std::vector<Token> tokensOf(std::string_view line) {
  constexpr std::string_view kSigns[] = {"<=", ">=", "<>", "=", "<", ">", "+", "-", "*", "/", "&", "(", ")", ",", "."};
  std::vector<Token> tokens;
  std::size_t at = 0;
  const auto take = [&](auto belongs) {
    const std::size_t start = at;
    while (at < line.size() && belongs(line[at])) ++at;
    return std::string(line.substr(start, at - start));
  };
  while (true) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == '\r')) ++at;
    const std::string_view rest = line.substr(at);
    if (rest.empty() || rest.starts_with('\'') || rest.starts_with("//")) break;
    if (isLetter(rest.front())) {
      tokens.push_back({TokenKind::kName, take([](char c) { return isLetter(c) || isDigit(c); })});
    } else if (isDigit(rest.front())) {
      tokens.push_back({TokenKind::kNumber, take([](char c) { return isDigit(c) || c == '.'; })});
    } else if (rest.front() == '"') {
      tokens.push_back(textToken(line, at));
    } else {
      const auto* sign = std::ranges::find_if(kSigns, [&](std::string_view each) { return rest.starts_with(each); });
      if (sign == std::end(kSigns)) throw Failure("\"" + printable(rest.substr(0, 1)) + "\" is not of the language");
      at += sign->size();
      tokens.push_back({TokenKind::kSign, std::string(*sign)});
    }
  }
  // Readers go as deep as a line goes.
  constexpr std::size_t kMostTokens = 1000;
  if (tokens.size() > kMostTokens) throw Failure("the line is too long; expected 1000 words and signs at most");
  tokens.emplace_back();
  return tokens;
}

}  // namespace contacts
