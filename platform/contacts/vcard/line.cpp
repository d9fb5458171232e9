#include "platform/contacts/vcard/line.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vcard {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

constexpr CharacterSet kNameCharacters("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_/");

// The position of the first such character that is outside double quotes.
std::size_t findOutsideQuotes(std::string_view text, char searched) {
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') quoted = !quoted;
    if (!quoted && text[i] == searched) return i;
  }
  return kNone;
}

// The name of the parameter that a bare word is a value of.
std::string_view nameForBareWord(std::string_view word) {
  constexpr std::array<std::string_view, 5> kEncodings{"QUOTED-PRINTABLE", "BASE64", "7BIT", "8BIT", "B"};
  constexpr std::array<std::string_view, 4> kValueKinds{"INLINE", "URL", "CONTENT-ID", "CID"};
  auto isWord = [word](std::string_view known) { return equalsIgnoringCase(word, known); };
  if (std::ranges::any_of(kEncodings, isWord)) return "ENCODING";
  if (std::ranges::any_of(kValueKinds, isWord)) return "VALUE";
  return "TYPE";
}

// ^n, ^' and ^^ stand for what a parameter can't hold. Always valid UTF-8.
std::string withoutCarets(std::string_view bytes) {
  const std::string text = decodeCharset(bytes, "");
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = text[i] == '^' && i + 1 < text.size() ? text[i + 1] : '\0';
    if (next == 'n' || next == '\'' || next == '^') {
      result.push_back(next == 'n' ? '\n' : next == '^' ? '^' : '"');
      ++i;
    } else {
      result.push_back(text[i]);
    }
  }
  return result;
}

// One value of a list, its quotes taken off. A TYPE list may stand inside one pair of quotes.
void appendValue(std::vector<Parameter>& parameters, std::string_view name, std::string_view text) {
  text = trimmed(text);
  if (text.size() < 2 || !text.starts_with('"') || !text.ends_with('"')) {
    parameters.push_back({std::string(name), withoutCarets(text)});
    return;
  }
  text = text.substr(1, text.size() - 2);
  for (std::size_t comma = 0; name == "TYPE" && (comma = text.find(',')) != kNone; text.remove_prefix(comma + 1)) {
    parameters.push_back({std::string(name), withoutCarets(trimmed(text.substr(0, comma)))});
  }
  parameters.push_back({std::string(name), withoutCarets(text)});
}

void appendParameter(std::vector<Parameter>& parameters, std::string_view text) {
  const std::size_t equals = findOutsideQuotes(text, '=');
  std::string name(nameForBareWord(trimmed(text)));
  if (equals != kNone) {
    name = uppercased(decodeCharset(trimmed(text.substr(0, equals)), ""));
    text.remove_prefix(equals + 1);
  } else if (trimmed(text).empty()) {
    return;
  }
  for (std::size_t comma = 0; (comma = findOutsideQuotes(text, ',')) != kNone; text.remove_prefix(comma + 1)) {
    appendValue(parameters, name, text.substr(0, comma));
  }
  appendValue(parameters, name, text);
}

}  // namespace

Line::Line(std::string_view raw, std::string_view unfolded) : raw_(raw), content_(withoutBreak(raw)) {
  if (!unfolded.empty()) {
    unfolded_ = std::make_shared<const std::string>(unfolded);
    content_ = *unfolded_;
  }
  std::size_t nameEnd = 0;
  std::size_t dot = kNone;
  bool isPlain = true;
  for (; nameEnd < content_.size(); ++nameEnd) {
    const char c = content_[nameEnd];
    if (kNameCharacters.has(c)) continue;
    if (c == ';' || c == ':') break;
    if (c == '.') {
      dot = nameEnd;
    } else {
      isPlain = false;
    }
  }
  if (nameEnd == content_.size()) return;
  const std::string_view start = content_.substr(0, nameEnd);
  std::string_view name = dot == kNone ? start : start.substr(dot + 1);
  if (!isPlain) name = trimmed(name);
  if (name.empty() || !(isPlain || kNameCharacters.hasAll(name))) return;

  const std::string_view rest = content_.substr(nameEnd);
  std::size_t colon = 0;
  if (rest.front() == ';') {
    colon = rest.find(':');
    if (colon == kNone) return;
    if (rest.substr(0, colon).find('"') != kNone) {
      const std::size_t outside = findOutsideQuotes(rest, ':');
      if (outside != kNone) colon = outside;  // else a quote is never closed
    }
  }
  if (dot != kNone) group_ = trimmed(start.substr(0, dot));
  name_ = name;
  if (colon > 0) parameters_ = rest.substr(1, colon - 1);
  value_ = rest.substr(colon + 1);
}

std::vector<Parameter> Line::parameters() const {
  std::vector<Parameter> parameters;
  std::string_view rest = parameters_;
  if (rest.empty()) return parameters;
  for (std::size_t end = 0; (end = findOutsideQuotes(rest, ';')) != kNone; rest.remove_prefix(end + 1)) {
    appendParameter(parameters, rest.substr(0, end));
  }
  appendParameter(parameters, rest);
  return parameters;
}

bool isQuotedPrintable(std::string_view content) {
  constexpr std::string_view kWord = "QUOTED-PRINTABLE";
  const std::string_view head = content.substr(0, content.substr(0, kLongestHead).find(':') + 1);
  if (!containsIgnoringCase(head, kWord)) return false;  // nearly always
  return hasParameter(Line(head, {}).parameters(), "ENCODING", kWord);
}

std::string_view firstParameter(const std::vector<Parameter>& parameters, std::string_view name) {
  auto found = std::ranges::find(parameters, name, &Parameter::name);
  return found == parameters.end() ? std::string_view() : std::string_view(found->value);
}

bool hasParameter(const std::vector<Parameter>& parameters, std::string_view name, std::string_view value) {
  return std::ranges::any_of(parameters, [&](const Parameter& parameter) {
    return parameter.name == name && equalsIgnoringCase(parameter.value, value);
  });
}

}  // namespace vcard
