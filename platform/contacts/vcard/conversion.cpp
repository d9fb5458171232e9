#include "platform/contacts/vcard/conversion.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/dates.h"
#include "platform/contacts/vcard/encoding.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/text.h"
#include "platform/contacts/vcard/writer.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace vcard {
namespace {

enum class Form { kText, kFields, kUri, kBinary, kDate };

struct KnownLine {
  std::string_view name;
  Form form;
};

constexpr std::array kKnownLines{
    KnownLine{"N", Form::kFields},       KnownLine{"ADR", Form::kFields},    KnownLine{"ORG", Form::kFields},
    KnownLine{"FN", Form::kText},        KnownLine{"NICKNAME", Form::kText}, KnownLine{"TITLE", Form::kText},
    KnownLine{"ROLE", Form::kText},      KnownLine{"NOTE", Form::kText},     KnownLine{"EMAIL", Form::kText},
    KnownLine{"TEL", Form::kText},       KnownLine{"LABEL", Form::kText},    KnownLine{"MAILER", Form::kText},
    KnownLine{"X-ABLABEL", Form::kText}, KnownLine{"URL", Form::kUri},       KnownLine{"IMPP", Form::kUri},
    KnownLine{"PHOTO", Form::kBinary},   KnownLine{"LOGO", Form::kBinary},   KnownLine{"SOUND", Form::kBinary},
    KnownLine{"KEY", Form::kBinary},     KnownLine{"BDAY", Form::kDate},     KnownLine{"UID", Form::kText},
};

// The line's content in UTF-8 where its value was in another character set, and its parameter says so.
std::string recoded(const Line& line) {
  if (line.name().empty()) return decodeCharset(line.content(), "");
  const std::vector<Parameter> parameters = line.parameters();
  const std::string_view charset = firstParameter(parameters, "CHARSET");
  std::string head = decodeCharset(line.content().substr(0, line.content().size() - line.value().size()), "");
  const std::size_t place = charset.empty() ? std::string::npos : head.find(charset);
  if (place != std::string::npos) head.replace(place, charset.size(), "UTF-8");
  return head + decodeCharset(line.value(), charset);
}

// With CR LF for each physical line's break, and for one that is missing.
void appendWithBreaks(std::string& text, std::string_view raw) {
  while (!raw.empty()) text.append(withoutBreak(takePhysicalLine(raw))).append("\r\n");
}

// What begins with a blank goes on with an empty line, or it would go on with the line before; so does what would begin
// or end a card.
void appendContent(std::string& text, std::string_view content) {
  const bool startsWithBlank = !content.empty() && isBlank(content.front());
  if (startsWithBlank || boundaryOf(content) != Boundary::kNone) text += "\r\n ";
  appendFolded(text, content);
}

// Whether the line ends in a soft break because the card does, or would when it is written without an empty line that
// it goes on with: it would take in the line behind it.
bool endsInSoftBreak(const Line& line) {
  const bool isOpen = withoutBreak(line.raw()).ends_with('=') || line.content().ends_with('=');
  return isOpen && isQuotedPrintable(line.content());
}

// A line whose meaning is left alone.
void appendUnchanged(std::string& text, const Line& line, Version version) {
  // Nor may BEGIN and END be folded, whatever blanks are in them: they are told by one physical line.
  const bool keepsFolds = version == Version::k30 || line.name().empty() || boundaryOf(line.raw()) != Boundary::kNone;
  if (endsInSoftBreak(line)) {
    std::string content = recoded(line);
    if (content.ends_with('=')) content += "3D";
    appendContent(text, content);
  } else if (line.is("AGENT")) {
    appendWithBreaks(text, decodeCharset(line.raw(), ""));
  } else if (!line.name().empty() && isBlank(line.raw().front())) {
    // Indented behind the BEGIN line, where it would be a fold elsewhere. A boundary is one only without its blanks.
    const std::string content = recoded(line);
    const std::string_view bare = trimmed(content);
    if (boundaryOf(bare) == Boundary::kNone) {
      appendFolded(text, bare);
    } else {
      appendContent(text, content);
    }
  } else if (keepsFolds && isValidUtf8(line.raw())) {
    appendWithBreaks(text, line.raw());
  } else {
    appendContent(text, isValidUtf8(line.content()) ? std::string(line.content()) : recoded(line));
  }
}

bool isPreferred(const Parameter& parameter) { return parameter.name == "PREF" && parameter.value == "1"; }

// TYPE in the lower case in which version 3.0's programs write it, and PREF=1 as a type.
std::vector<Parameter> convertedParameters(const Line& line) {
  std::vector<Parameter> parameters = withoutEncoding(line.parameters());
  for (Parameter& parameter : parameters) {
    if (parameter.name == "TYPE") parameter.name = "type";
    if (isPreferred(parameter)) parameter = {"type", "pref"};
  }
  return parameters;
}

// False, and nothing done, when the line has none of its own.
bool appendBinary(std::string& text, const Line& line, std::vector<Parameter>& parameters) {
  const std::string bytes = binaryValue(line);
  if (bytes.empty()) return false;
  std::erase_if(parameters, [](const Parameter& parameter) { return parameter.name == "VALUE"; });
  parameters.insert(parameters.begin(), {"ENCODING", "b"});
  const std::string_view value = trimmed(line.value());
  constexpr std::string_view kImage = "data:image/";
  if (equalsIgnoringCase(value.substr(0, kImage.size()), kImage)) {
    const std::string_view kind = value.substr(kImage.size());
    parameters.push_back({"TYPE", uppercased(kind.substr(0, kind.find_first_of(";,")))});
  }
  appendLine(text, line.group(), line.name(), parameters, encodeBase64(bytes));
  return true;
}

// Version 3.0 has no date without a year; this is how others say it. False, and nothing done, for any other value.
bool appendYearlessDate(std::string& text, const Line& line, std::vector<Parameter>& parameters) {
  std::optional<Date> date = parseDate(decodedValue(line));
  if (!date || date->year) return false;
  date->year = kNoYear;
  std::erase_if(parameters, [](const Parameter& parameter) { return parameter.name == "VALUE"; });
  parameters.push_back({std::string(kOmittedYear), std::to_string(kNoYear)});
  appendLine(text, line.group(), line.name(), parameters, formatDate(*date));
  return true;
}

void appendKnown(std::string& text, const Line& line, Form form, Version version) {
  std::vector<Parameter> parameters = convertedParameters(line);
  if (form == Form::kBinary && appendBinary(text, line, parameters)) return;
  if (form == Form::kDate && appendYearlessDate(text, line, parameters)) return;
  const std::string value = decodedValue(line);
  std::string converted;
  if (form == Form::kUri || form == Form::kBinary) {
    converted = escapeUri(unescape(value, version));
  } else if (form == Form::kText || form == Form::kDate) {
    converted = escape(unescape(value, version));
  } else {
    for (const std::string& field : splitFields(value, ';', version)) converted += escape(field) + ";";
    converted.pop_back();
  }
  appendLine(text, line.group(), line.name(), parameters, converted);
}

}  // namespace

std::vector<Parameter> withoutEncoding(std::vector<Parameter> parameters) {
  std::erase_if(parameters,
                [](const Parameter& parameter) { return parameter.name == "ENCODING" || parameter.name == "CHARSET"; });
  return parameters;
}

void appendConverted(std::string& text, const Line& line, Version version) {
  if (line.is("VERSION")) {
    appendLine(text, "", "VERSION", {}, "3.0");
  } else if (version == Version::k30 || line.name().empty() || line.is("AGENT")) {
    appendUnchanged(text, line, version);
  } else if (line.is("KIND") && equalsIgnoringCase(trimmed(line.value()), "group")) {
    appendLine(text, "", "X-ADDRESSBOOKSERVER-KIND", {}, "group");
  } else if (line.is("MEMBER")) {
    appendLine(text, line.group(), "X-ADDRESSBOOKSERVER-MEMBER", {}, line.value());
  } else {
    auto known = std::ranges::find_if(kKnownLines, [&](const KnownLine& candidate) { return line.is(candidate.name); });
    if (known != kKnownLines.end()) {
      appendKnown(text, line, known->form, version);
    } else {
      appendUnchanged(text, line, version);
    }
  }
}

}  // namespace vcard
