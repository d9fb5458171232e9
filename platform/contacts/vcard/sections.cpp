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
  if (end < text.size() && text[end++] == '\r' && end < text.size() && text[end] == '\n') ++end;
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end);
  return line;
}

Boundary boundaryNamedBy(std::string_view physicalLine) {
  const std::string_view line = trimmed(physicalLine);
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return Boundary::kNone;
  const std::string_view name = trimmed(line.substr(0, colon));
  const std::string_view value = trimmed(line.substr(colon + 1));
  if (equalsIgnoringCase(value, "VCARD")) {
    if (equalsIgnoringCase(name, "BEGIN")) return Boundary::kBegin;
    if (equalsIgnoringCase(name, "END")) return Boundary::kEnd;
  }
  const bool isAgent = value.empty() && equalsIgnoringCase(trimmed(name.substr(0, name.find(';'))), "AGENT");
  return isAgent ? Boundary::kAgent : Boundary::kNone;
}

Section takeSection(std::string_view& file) {
  std::string_view rest = file;
  std::size_t depth = 0;
  bool afterAgent = false;
  bool isCard = false;
  while (!rest.empty() && !isCard) {
    std::string_view behind = rest;
    const Boundary boundary = boundaryOf(takePhysicalLine(behind));
    if (boundary == Boundary::kBegin) {
      const bool isNested = depth > 0 && afterAgent;
      if (!isNested && rest.size() < file.size()) break;  // the next section
      ++depth;
    } else if (boundary == Boundary::kEnd && depth > 0) {
      isCard = --depth == 0;
    }
    afterAgent = boundary == Boundary::kAgent;
    rest = behind;
  }
  const Section section{file.substr(0, file.size() - rest.size()), isCard};
  file = rest;
  return section;
}

std::vector<Section> splitSections(std::string_view file) {
  std::vector<Section> sections;
  while (!file.empty()) sections.push_back(takeSection(file));
  return sections;
}

}  // namespace vcard
