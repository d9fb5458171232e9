#include "platform/contacts/vcard/sections.h"

#include "platform/contacts/vcard/ascii.h"

#include <bit>
#include <cstdint>
#include <cstring>

static_assert(std::endian::native == std::endian::little);

namespace vcard {
namespace {

// The place of the first line break, the text's size when there is none. Eight characters at a step: this is where the
// time goes when a folder is opened.
std::size_t findBreak(std::string_view text) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kAboveBreaks = '\r' + 1;
  auto isBreak = [](char c) { return c == '\n' || c == '\r'; };
  std::size_t i = 0;
  while (i + sizeof(std::uint64_t) <= text.size()) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + i, sizeof word);
    // The top bit of each byte below that, right up to the first one.
    const std::uint64_t low = (word - kOnes * kAboveBreaks) & ~word & kOnes << 7;
    if (low == 0) {
      i += sizeof word;
      continue;
    }
    i += static_cast<std::size_t>(std::countr_zero(low)) / 8;
    if (isBreak(text[i])) return i;
    ++i;
  }
  while (i < text.size() && !isBreak(text[i])) ++i;
  return i;
}

}  // namespace

std::string_view takePhysicalLine(std::string_view& text) {
  std::size_t end = findBreak(text);
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
