#include "platform/contacts/vcard/writer.h"

#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"

#include <cstddef>

namespace vcard {
namespace {

constexpr std::size_t kLongestLine = 75;  // octets without the line break

constexpr bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Whether the place lies inside a character, if the content is UTF-8.
bool isInsideCharacter(std::string_view content, std::size_t place) {
  if (!isContinuationByte(content[place])) return false;
  for (std::size_t before = place; before > 0 && place - before < 3; --before) {
    if (!isContinuationByte(content[before - 1])) return static_cast<unsigned char>(content[before - 1]) >= 0xC0;
  }
  return false;
}

// The last place up to the room where a line may be broken, or else the first behind it. Not after "=", which would
// read as a soft break where a value is quoted-printable, nor where what stands before would begin or end a card.
std::size_t foldPlace(std::string_view content, std::size_t room) {
  const auto isPlace = [&](std::size_t at) {
    return content[at - 1] != '=' && !isInsideCharacter(content, at) &&
           boundaryOf(content.substr(0, at)) == Boundary::kNone;
  };
  std::size_t place = room;
  while (place > 0 && !isPlace(place)) --place;
  if (place > 0) return place;
  place = room + 1;
  while (place < content.size() && !isPlace(place)) ++place;
  return place;
}

// A parameter's value can hold neither quotes nor line breaks: a caret stands before what stands for them. It is quoted
// when it holds a delimiter.
void appendParameterValue(std::string& content, std::string_view value) {
  const bool isQuoted = value.find_first_of(",;:") != std::string_view::npos;
  if (isQuoted) content.push_back('"');
  for (const char c : value) {
    if (c == '^') {
      content += "^^";
    } else if (c == '"') {
      content += "^'";
    } else if (c == '\n') {
      content += "^n";
    } else if (c != '\r') {
      content.push_back(c);
    }
  }
  if (isQuoted) content.push_back('"');
}

}  // namespace

void appendFolded(std::string& card, std::string_view content) {
  std::size_t room = kLongestLine;
  while (content.size() > room) {
    const std::size_t end = foldPlace(content, room);
    if (end == content.size()) break;
    card += content.substr(0, end);
    card += "\r\n ";
    content.remove_prefix(end);
    room = kLongestLine - 1;
  }
  card += content;
  card += "\r\n";
}

void appendLine(std::string& card, std::string_view group, std::string_view name,
                const std::vector<Parameter>& parameters, std::string_view value) {
  std::string content;
  if (!group.empty()) content.append(decodeCharset(group, "")).push_back('.');
  content += name;
  for (const Parameter& parameter : parameters) {
    content.append(";").append(parameter.name).push_back('=');
    appendParameterValue(content, parameter.value);
  }
  content.push_back(':');
  content += value;
  appendFolded(card, content);
}

}  // namespace vcard
