#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace contacts {

enum class TokenKind { kName, kNumber, kText, kSign, kEnd };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::string text;  // of a kText without its quotes
};

// The tokens of one line, the last of them a kEnd. A comment, which ' or // begins, is none. Throws Failure for a
// character that the language doesn't have and a text that isn't closed.
std::vector<Token> tokensOf(std::string_view line);

}  // namespace contacts
