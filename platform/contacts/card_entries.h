#pragma once

#include "platform/contacts/entry_codec.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// An entry of a multi-valued property with the lines of the card that hold it.
struct CardEntry {
  std::vector<std::size_t> lines;       // places in the card; more than one where several programs' lines say the same
  std::vector<std::size_t> companions;  // its X-ABLabel and X-ABADR lines
  Retained<NSObject> value;
  std::string label;
  std::string identifier;
  int preference;           // 1 is the most preferred
  bool isRepeated = false;  // an earlier entry says the same, and identifiers tell them apart by their order alone
};

inline constexpr int kNoPreference = 101;

// The parameter that keeps an entry's identifier, on lines that this program wrote.
inline constexpr std::string_view kIdentifierParameter = "X-ABID";

// In the order of the card. An entry without an identifier of its own has one that is derived from the card's id and
// the entry's value, so that it is the same at the next reading.
std::vector<CardEntry> entriesFromCard(const EntryCodec& codec, const vcard::Card& card, std::string_view uid);

// The most preferred entry; null when none is.
const CardEntry* preferredEntry(const std::vector<CardEntry>& entries);

}  // namespace contacts
