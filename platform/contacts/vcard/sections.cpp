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
  constexpr std::size_t kStep = sizeof(std::uint64_t);
  auto isBreak = [](char c) { return c == '\n' || c == '\r'; };
  std::size_t start = 0;
  for (const std::size_t end = text.size() - text.size() % kStep; start < end; start += kStep) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + start, kStep);
    // The top bit of each byte below that, right up to the first one.
    const std::uint64_t low = (word - kOnes * kAboveBreaks) & ~word & kOnes << 7;
    if (low == 0) continue;
    for (std::size_t i = start + static_cast<std::size_t>(std::countr_zero(low)) / 8; i < start + kStep; ++i) {
      if (isBreak(text[i])) return i;
    }
  }
  while (start < text.size() && !isBreak(text[start])) ++start;
  return start;
}

constexpr CharacterSet kFirstLetters("ABEabe");
constexpr CharacterSet kSecondLetters("GENgen");

// Of a line that starts with the letters of one.
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

}  // namespace

std::string_view takePhysicalLine(std::string_view& text) {
  std::size_t end = findBreak(text);
  if (end < text.size()) {
    const bool isPair = text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n';
    end += isPair ? 2 : 1;
  }
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end);
  return line;
}

Boundary boundaryOf(std::string_view physicalLine) {
  // Most lines are told by their first two characters.
  const bool isNamed =
      physicalLine.size() >= 2 && kFirstLetters.has(physicalLine[0]) && kSecondLetters.has(physicalLine[1]);
  return isNamed ? boundaryNamedBy(physicalLine) : Boundary::kNone;
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
