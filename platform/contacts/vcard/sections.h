#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace vcard {

// A stretch of a file: one card from its BEGIN to its END line, or what stands before, between or after cards.
struct Section {
  std::string_view text;
  bool isCard;
};

// The file in order; joined, the texts of all sections are the whole file. A card without an END line is no card: it
// ends at the next BEGIN or with the file. A card inside a card (after an empty AGENT line) is a part of the outer one.
std::vector<Section> splitSections(std::string_view file);
// Takes the first one off the front of a file.
Section takeSection(std::string_view& file);

// Takes the first physical line off the front of text, its break (CR LF, LF or CR) included.
std::string_view takePhysicalLine(std::string_view& text);
// The line without its break.
constexpr std::string_view withoutBreak(std::string_view physicalLine) {
  if (physicalLine.ends_with('\n')) physicalLine.remove_suffix(1);
  if (physicalLine.ends_with('\r')) physicalLine.remove_suffix(1);
  return physicalLine;
}

// What a physical line means for the nesting of cards.
enum class Boundary { kNone, kBegin, kEnd, kAgent };
Boundary boundaryOf(std::string_view physicalLine);

}  // namespace vcard
