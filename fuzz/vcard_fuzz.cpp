// A file of cards, read, written in version 3.0 and read again: nothing is lost, and what isn't understood stays as it
// is.

#include "fuzz/target.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/card.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/dates.h"
#include "platform/contacts/vcard/editor.h"
#include "platform/contacts/vcard/encoding.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/text.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>

using vcard::Card;
using vcard::Line;
using vcard::Version;

namespace {

bool isOneOf(const Line& line, std::initializer_list<const char*> names) {
  return std::ranges::any_of(names, [&](const char* name) { return line.is(name); });
}

bool isText(const Line& line) {
  return isOneOf(line, {"FN", "NICKNAME", "TITLE", "ROLE", "NOTE", "EMAIL", "TEL", "LABEL", "MAILER", "X-ABLABEL",
                        "UID", "URL", "IMPP"});
}

bool isStructured(const Line& line) { return isOneOf(line, {"N", "ADR", "ORG"}); }

bool isBinary(const Line& line) { return isOneOf(line, {"PHOTO", "LOGO", "SOUND", "KEY"}); }

// With each physical line's end, and one that is missing, as CR LF.
std::string withCrLf(std::string_view raw) {
  std::string text;
  while (!raw.empty()) text.append(vcard::withoutBreak(vcard::takePhysicalLine(raw))).append("\r\n");
  return text;
}

// What a line means, whatever version it is written in.
std::string meaning(const Line& line, Version version) {
  const std::string value = vcard::decodedValue(line);
  if (isText(line)) return vcard::unescape(value, version);
  if (isStructured(line)) {
    std::string fields;
    for (const std::string& field : vcard::splitFields(value, ';', version)) fields += field + '\0';
    return fields;
  }
  if (isBinary(line)) {
    const std::string bytes = vcard::binaryValue(line);
    return bytes.empty() ? vcard::unescape(value, version) : bytes;
  }
  if (line.is("BDAY")) {
    const std::optional<vcard::Date> date = vcard::parseDate(value);
    if (!date) return vcard::unescape(value, version);
    const bool hasYear = date->year && date->year != vcard::kNoYear;
    return vcard::formatDate({hasYear ? date->year : std::nullopt, date->month, date->day});
  }
  return std::string(line.content());
}

void expectSame(const Line& before, Version version, const Line& after) {
  // What isn't UTF-8 is recoded.
  if (before.is("VERSION") || !vcard::isValidUtf8(before.raw())) return;
  if (!before.name().empty() && vcard::isBlank(before.raw().front())) {
    // Indented, which only the first line can be without being a fold. Not for long, unless it would end the card.
    const std::string_view bare = vcard::trimmed(before.content());
    const bool staysIndented = vcard::boundaryOf(bare) != vcard::Boundary::kNone;
    expectEqual(std::string(after.content()), std::string(staysIndented ? before.content() : bare), "an indented line");
    return;
  }
  // A card's last line may end as if it went on, and is written so that it doesn't.
  const bool isOpen = (vcard::withoutBreak(before.raw()).ends_with('=') || before.content().ends_with('=')) &&
                      vcard::hasParameter(before.parameters(), "ENCODING", "QUOTED-PRINTABLE");
  if (isOpen && (isText(before) || isStructured(before) || isBinary(before) || before.is("BDAY"))) {
    return expectEqual(meaning(after, Version::k30), meaning(before, version), "a last line's value");
  }
  if (isOpen) return expectEqual(vcard::decodedValue(after), vcard::decodedValue(before), "a last line");
  if (version == Version::k30 || before.name().empty() || before.is("AGENT")) {
    expectEqual(std::string(after.raw()), withCrLf(before.raw()), "a line that stays");
    return;
  }
  if (before.is("KIND") || before.is("MEMBER")) return;  // have other names in version 3.0
  expectEqual(std::string(after.name()), std::string(before.name()), "a line's name");
  expectEqual(std::string(after.group()), std::string(before.group()), "a line's group");
  expectEqual(meaning(after, Version::k30), meaning(before, version), "a line's value");
}

// A line that is nothing but letters of base64, as far as it may be folded: behind a picture it is read as the rest of
// it, which some writers don't indent.
bool looksBinary(const Line& line) {
  constexpr std::size_t kShortestFold = 70;
  const auto isLetter = [](char c) {
    return (vcard::upper(c) >= 'A' && vcard::upper(c) <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '/' ||
           c == '=';
  };
  return !line.content().empty() && std::ranges::all_of(line.content().substr(0, kShortestFold), isLetter);
}

void tryCard(std::string_view text) {
  const Card card = vcard::parseCard(text);
  std::string raw;
  for (const Line& line : card.lines) raw += line.raw();
  expectEqual(raw, std::string(text), "a card's lines");

  if (std::ranges::any_of(card.lines, looksBinary)) return;
  const std::string written = vcard::Editor(text).text();
  const auto sections = vcard::splitSections(written);
  expect(sections.size() == 1 && sections.front().isCard, "a written card is one card");
  const Card again = vcard::parseCard(written);
  expectEqual(std::to_string(again.lines.size()), std::to_string(card.lines.size()), "the number of lines");
  for (std::size_t i = 0; i < card.lines.size(); ++i) expectSame(card.lines[i], card.version, again.lines[i]);
  // A card without a version is read as 3.0, one with another has been given it.
  expect(again.version == Version::k30, "a written card is of version 3.0");
  // Bytes that are no UTF-8 may be left in heads, for the next time.
  if (vcard::isValidUtf8(written)) expectEqual(vcard::Editor(written).text(), written, "a card written twice");
}

void tryText(const std::string& text) {
  expectEqual(vcard::unescape(vcard::escape(text), Version::k30), vcard::withUnixBreaks(text), "an escaped text");
  expectEqual(vcard::decodeBase64(vcard::encodeBase64(text)), text, "bytes in base64");
  if (const auto date = vcard::parseDate(text)) {
    expect(vcard::parseDate(vcard::formatDate(*date)) == date, "a date is the same again");
  }
  for (const char* charset : {"", "UTF-8", "ISO-8859-1", "KOI8-R", "UTF-16", "none-such"}) {
    expect(vcard::isValidUtf8(vcard::decodeCharset(text, charset)), "decoded text is UTF-8");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  tryText(bytes);
  const std::string file = vcard::decodeFile(bytes);
  std::string joined;
  for (const vcard::Section& section : vcard::splitSections(file)) {
    joined += section.text;
    if (section.isCard) tryCard(section.text);
  }
  expectEqual(joined, file, "a file's sections");
  return 0;
}
