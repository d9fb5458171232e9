#pragma once

#include "platform/contacts/vcard/line.h"

#include <string_view>
#include <vector>

namespace vcard {

enum class Version { k21, k30, k40 };

// A card's text cut into logical lines, BEGIN and END included; their raw texts, joined, are the card's text. Nothing
// is dropped: what can't be understood is a line without a name, and a card inside the card is part of its AGENT line.
struct Card {
  Version version = Version::k30;
  std::vector<Line> lines;
};

// section is the text of one card (sections.h), which must outlive the result.
Card parseCard(std::string_view section);
// The same in a card whose storage is used again.
void parseCard(std::string_view section, Card& card);

}  // namespace vcard
