#include "platform/contacts/card_file.h"

#include "platform/contacts/group_lines.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/text.h"

#include <algorithm>
#include <utility>

namespace contacts {
namespace {

// Pictures and the like, which stay in the file until somebody asks.
bool isLongBinary(const vcard::Line& line) {
  constexpr std::size_t kLongestKept = 1024;
  return line.raw().size() > kLongestKept && !vcard::binaryValue(line).empty();
}

StoredCard readCard(std::string_view section) {
  const vcard::Card card = vcard::parseCard(section);
  StoredCard stored;
  for (const vcard::Line& line : card.lines) {
    if (!isLongBinary(line)) stored.text += line.raw();
    if (line.is("UID") && stored.uid.empty()) stored.uid = uidOf(line, card.version);
    stored.isGroup = stored.isGroup || saysGroup(line);
  }
  stored.text.shrink_to_fit();
  stored.hash = contentHash(section);
  return stored;
}

constexpr bool isHarmless(char c) {
  return (vcard::upper(c) >= 'A' && vcard::upper(c) <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
         c == '+' || c == '-';
}

}  // namespace

std::vector<StoredCard> cardsIn(std::string_view text) {
  std::vector<StoredCard> cards;
  for (const vcard::Section& section : vcard::splitSections(text)) {
    if (!section.isCard) continue;
    cards.push_back(readCard(section.text));
    cards.back().position = cards.size() - 1;
  }
  return cards;
}

std::string fileNameFor(const std::string& uid) {
  constexpr std::size_t kLongest = 200;
  const bool isSafe = !uid.empty() && uid.size() <= kLongest && uid.front() != '.' && uid.front() != '-' &&
                      std::ranges::all_of(uid, isHarmless);
  return (isSafe ? uid : newIdentifier()) + ".vcf";
}

}  // namespace contacts
