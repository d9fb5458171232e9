#include "platform/contacts/vcard/text.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/encoding.h"

#include <algorithm>
#include <cstddef>

namespace vcard {
namespace {

constexpr CharacterSet kEscapedPunctuation("\\;,:\"");

bool isBase64(const std::vector<Parameter>& parameters) {
  return hasParameter(parameters, "ENCODING", "B") || hasParameter(parameters, "ENCODING", "BASE64");
}

// Of the first field; the text's size where it is the only one.
std::size_t fieldEnd(std::string_view escaped, char separator) {
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    if (escaped[i] == '\\') {
      ++i;
    } else if (escaped[i] == separator) {
      return i;
    }
  }
  return escaped.size();
}

}  // namespace

std::string decodedValue(const Line& line) { return decodedValue(line, line.parameters()); }

std::string decodedValue(const Line& line, const std::vector<Parameter>& parameters) {
  const std::string_view charset = firstParameter(parameters, "CHARSET");
  if (hasParameter(parameters, "ENCODING", "QUOTED-PRINTABLE")) {
    return decodeCharset(decodeQuotedPrintable(line.value()), charset);
  }
  if (isBase64(parameters)) return decodeCharset(decodeBase64(line.value()), charset);
  return decodeCharset(line.value(), charset);
}

std::string binaryValue(const Line& line) {
  if (isBase64(line.parameters())) return decodeBase64(line.value());
  const std::string_view value = trimmed(line.value());
  constexpr std::string_view kScheme = "data:";
  constexpr std::string_view kMark = "base64";  // behind ";", or ":" where there is no kind
  if (!equalsIgnoringCase(value.substr(0, kScheme.size()), kScheme)) return {};
  // Some writers escape the comma as in any text.
  const std::size_t comma = value.find(',');
  if (comma == std::string_view::npos) return {};
  std::string_view kind = value.substr(0, comma);
  if (kind.ends_with('\\')) kind.remove_suffix(1);
  const bool isMarked =
      kind.size() >= kMark.size() && equalsIgnoringCase(kind.substr(kind.size() - kMark.size()), kMark);
  return isMarked ? decodeBase64(value.substr(comma + 1)) : std::string();
}

std::string withUnixBreaks(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      result.push_back(text[i]);
    } else if (i + 1 == text.size() || text[i + 1] != '\n') {
      result.push_back('\n');
    }
  }
  return result;
}

std::string unescape(std::string_view escaped, Version version) {
  std::string text;
  text.reserve(escaped.size());
  for (std::size_t slash = 0; (slash = escaped.find('\\')) < escaped.size() - 1; escaped.remove_prefix(slash + 2)) {
    text += escaped.substr(0, slash);
    const char next = escaped[slash + 1];
    const bool isBreak = version != Version::k21 && lower(next) == 'n';
    if (!isBreak && !kEscapedPunctuation.has(next)) text.push_back('\\');
    text.push_back(isBreak ? '\n' : next);
  }
  text += escaped;
  if (text.find('\r') == std::string::npos) return text;
  return withUnixBreaks(text);
}

std::vector<std::string> splitFields(std::string_view escaped, char separator, Version version) {
  std::vector<std::string> fields;
  fields.reserve(static_cast<std::size_t>(std::ranges::count(escaped, separator)) + 1);
  while (true) {
    const std::size_t end = fieldEnd(escaped, separator);
    fields.push_back(unescape(escaped.substr(0, end), version));
    if (end >= escaped.size()) return fields;
    escaped.remove_prefix(end + 1);
  }
}

std::string fieldAt(std::string_view escaped, std::size_t index, char separator, Version version) {
  for (; index > 0; --index) {
    const std::size_t end = fieldEnd(escaped, separator);
    if (end >= escaped.size()) return {};
    escaped.remove_prefix(end + 1);
  }
  return unescape(escaped.substr(0, fieldEnd(escaped, separator)), version);
}

std::string escape(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size() + text.size() / 8);
  for (const char c : withUnixBreaks(text)) {
    if (c == '\n') {
      escaped += "\\n";
      continue;
    }
    if (c == '\\' || c == ';' || c == ',') escaped.push_back('\\');
    escaped.push_back(c);
  }
  return escaped;
}

std::string escapeUri(std::string_view uri) {
  std::string escaped;
  for (const char c : withUnixBreaks(uri)) {
    if (c == '\n') {
      escaped += "\\n";
      continue;
    }
    if (c == '\\') escaped.push_back('\\');
    escaped.push_back(c);
  }
  return escaped;
}

}  // namespace vcard
