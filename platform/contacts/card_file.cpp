#include "platform/contacts/card_file.h"

#include "platform/contacts/card_values.h"
#include "platform/contacts/group_lines.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace contacts {
namespace {

// Lines that no property but the UID comes from.
constexpr std::array<std::string_view, 5> kAboutCard{"BEGIN", "END", "VERSION", "PRODID", "REV"};

// Pictures and the like, which stay in the file until somebody asks.
bool isLongBinary(const vcard::Line& line) {
  constexpr std::size_t kLongestKept = 1024;
  static constexpr std::array<std::string_view, 4> kNames{"PHOTO", "LOGO", "SOUND", "KEY"};
  return line.raw().size() > kLongestKept && std::ranges::any_of(kNames, [&](auto name) { return line.is(name); });
}

// Whether all of them are types, which say nothing about how the value is written.
bool areTypes(std::string_view parameters) {
  constexpr std::string_view kType = "TYPE=";
  while (!parameters.empty()) {
    if (!vcard::equalsIgnoringCase(parameters.substr(0, kType.size()), kType)) return false;
    const std::size_t end = parameters.find(';');
    parameters.remove_prefix(end == std::string_view::npos ? parameters.size() : end + 1);
  }
  return true;
}

// A social profile's type is the name of its service.
bool isProfile(const vcard::Line& line) { return line.is("X-SOCIALPROFILE") || line.is("SOCIALPROFILE"); }

// Whether a property's text isn't a part of the line's: a street of several fields, a number with an extension.
bool isMadeAnew(const vcard::Line& line, std::string_view value) {
  return (line.is("ADR") && !value.starts_with(";;")) || (line.is("TEL") && value.find(';') != std::string_view::npos);
}

// Such a text may be any text.
void addTo(TextDigest& digest, const vcard::Line& line, vcard::Version version) {
  const std::string_view value = line.value();
  if (isMadeAnew(line, value)) {
    digest.addAnything();
  } else if (!areTypes(line.parameterText()) || isProfile(line)) {
    const std::vector<vcard::Parameter> parameters = line.parameters();
    const std::string decoded = vcard::decodedValue(line, parameters);
    if (isMadeAnew(line, decoded)) return digest.addAnything();
    digest.add(vcard::unescape(decoded, version));
    for (const vcard::Parameter& parameter : parameters) digest.add(parameter.value);
  } else if (!vcard::isAscii(value)) {
    digest.add(vcard::unescape(vcard::decodedValue(line, {}), version));
  } else if (value.find('\\') != std::string_view::npos) {
    digest.addAscii(vcard::unescape(value, version));
  } else {
    digest.addAscii(value);
  }
}

// Where the fields of a name are in a text that has the line at that place. Nothing where they have to be decoded.
TextStretch plainName(const vcard::Line& line, std::size_t place) {
  const bool isInOnePiece = line.content().data() == line.raw().data();
  if (!isInOnePiece || !isPlainName(line)) return {};
  place += static_cast<std::size_t>(line.value().data() - line.raw().data());
  return {static_cast<std::uint32_t>(place), static_cast<std::uint32_t>(line.value().size())};
}

// card is what the section holds.
std::shared_ptr<SingleCard> readCard(std::string_view section, const vcard::Card& card, std::uint64_t hash) {
  auto result = std::make_shared<SingleCard>();
  SingleCard& stored = *result;
  stored.hash = hash;
  bool isNamed = false;
  TextStretch name;
  std::size_t kept = 0;
  for (const vcard::Line& line : card.lines) {
    if (isLongBinary(line)) continue;
    if (line.is("UID")) {
      if (stored.uid.empty()) stored.setUid(uidOf(line, card.version));
    } else if (!std::ranges::any_of(kAboutCard, [&](auto about) { return line.is(about); })) {
      stored.isGroup = stored.isGroup || saysGroup(line);
      addTo(stored.ownDigest, line, card.version);
      if (!isNamed && line.is("N") && saysSomething(line)) {
        isNamed = true;
        name = plainName(line, kept);
      }
    }
    kept += line.raw().size();
  }
  if (kept == section.size()) {
    stored.kept = CardText(std::string(section), name);
    return result;
  }
  std::string text;
  text.reserve(kept);
  for (const vcard::Line& line : card.lines) {
    if (!isLongBinary(line)) text += line.raw();
  }
  stored.kept = CardText(std::move(text), name);
  return result;
}

constexpr bool isHarmless(char c) {
  return (vcard::upper(c) >= 'A' && vcard::upper(c) <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
         c == '+' || c == '-';
}

}  // namespace

NewCards cardsIn(std::string_view text, std::optional<std::uint64_t> hash) {
  thread_local vcard::Card card;
  NewCards cards;
  const std::size_t size = text.size();
  while (!text.empty()) {
    const vcard::Section section = vcard::takeSection(text);
    if (!section.isCard) continue;
    const bool isAll = hash && section.text.size() == size;
    vcard::parseCard(section.text, card);
    cards.push_back(readCard(section.text, card, isAll ? *hash : contentHash(section.text)));
    cards.back()->position = cards.size() - 1;
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
