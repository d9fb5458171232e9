#include "platform/contacts/vcard/sections.h"

#include "platform/contacts/vcard/ascii.h"

#include <algorithm>

namespace vcard {

std::string_view takePhysicalLine(std::string_view& text) {
  // Faster than find_first_of, which looks each character up.
  const auto found = std::ranges::find_if(text, [](char c) { return c == '\n' || c == '\r'; });
  auto end = static_cast<std::size_t>(found - text.begin());
  if (end < text.size()) end += text.substr(end, 2) == "\r\n" ? 2 : 1;
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end);
  return line;
}

std::string_view withoutBreak(std::string_view physicalLine) {
  if (physicalLine.ends_with('\n')) physicalLine.remove_suffix(1);
  if (physicalLine.ends_with('\r')) physicalLine.remove_suffix(1);
  return physicalLine;
}

Boundary boundaryOf(std::string_view physicalLine) {
  if (physicalLine.empty()) return Boundary::kNone;
  const char first = upper(physicalLine.front());
  if (first != 'B' && first != 'E' && first != 'A') return Boundary::kNone;
  const std::string_view line = withoutBreak(physicalLine);
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return Boundary::kNone;
  const std::string_view name = trimmed(line.substr(0, colon));
  const std::string_view value = trimmed(line.substr(colon + 1));
  if (first == 'A') {
    const bool isAgent = value.empty() && equalsIgnoringCase(trimmed(name.substr(0, name.find(';'))), "AGENT");
    return isAgent ? Boundary::kAgent : Boundary::kNone;
  }
  if (!equalsIgnoringCase(value, "VCARD")) return Boundary::kNone;
  if (equalsIgnoringCase(name, "BEGIN")) return Boundary::kBegin;
  if (equalsIgnoringCase(name, "END")) return Boundary::kEnd;
  return Boundary::kNone;
}

std::vector<Section> splitSections(std::string_view file) {
  std::vector<Section> sections;
  std::string_view rest = file;
  std::size_t sectionStart = 0;
  std::size_t depth = 0;
  bool afterAgent = false;

  auto close = [&](std::size_t end, bool isCard) {
    if (end == sectionStart) return;
    sections.push_back({file.substr(sectionStart, end - sectionStart), isCard});
    sectionStart = end;
  };

  while (!rest.empty()) {
    const std::size_t lineStart = file.size() - rest.size();
    const Boundary boundary = boundaryOf(takePhysicalLine(rest));
    if (boundary == Boundary::kBegin) {
      if (depth > 0 && afterAgent) {
        ++depth;
      } else {
        close(lineStart, false);
        depth = 1;
      }
    } else if (boundary == Boundary::kEnd && depth > 0 && --depth == 0) {
      close(file.size() - rest.size(), true);
    }
    afterAgent = boundary == Boundary::kAgent;
  }
  close(file.size(), false);
  return sections;
}

}  // namespace vcard
