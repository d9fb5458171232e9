#include "platform/contacts/card_values.h"

#include "platform/contacts/card_entries.h"
#include "platform/contacts/custom_codec.h"
#include "platform/contacts/date_values.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/text_properties.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/text.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/number.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace contacts {
namespace {

Retained<NSObject> text(std::string_view utf8) {
  return utf8.empty() ? Retained<NSObject>() : Retained<NSObject>::share(makeString(utf8));
}

// The line's value, still escaped: most stand as they are, what has to be decoded is kept for the caller.
std::string_view valueOf(const vcard::Line& line, std::string& kept) {
  if (line.parameterText().empty() && vcard::isValidUtf8(line.value())) return line.value();
  return kept = vcard::decodedValue(line);
}

// Of several lines of one name (other languages, other preferences) the first that isn't empty counts.
std::string textFromCard(std::string_view lineName, int field, const vcard::Card& card) {
  const std::optional<std::size_t> place = saidLine(card, lineName);
  if (!place) return {};
  std::string kept;
  const std::string_view value = valueOf(card.lines[*place], kept);
  if (field == kWholeValue) return vcard::unescape(value, card.version);
  std::string text = vcard::fieldAt(value, static_cast<std::size_t>(field), ';', card.version);
  const std::string_view trimmed = vcard::trimmed(text);
  return trimmed.size() == text.size() ? text : std::string(trimmed);
}

// Of one that says something.
bool startsWithText(const vcard::Line& line) {
  constexpr std::string_view kNoText = "; \t\r\n\\";
  return line.parameterText().empty() && kNoText.find(line.value().front()) == std::string_view::npos;
}

bool hasNameFields(const vcard::Card& card) {
  const std::optional<std::size_t> place = saidLine(card, "N");
  if (!place) return false;
  if (startsWithText(card.lines[*place])) return true;
  for (int field = 0; field < static_cast<int>(kNameFields); ++field) {
    if (!textFromCard("N", field, card).empty()) return true;
  }
  return false;
}

std::string fullName(const vcard::Card& card) {
  return std::string(vcard::trimmed(textFromCard("FN", kWholeValue, card)));
}

// A card with nothing but a full name has it for its first name, or its company's.
std::string textOf(const TextProperty& property, const vcard::Card& card) {
  std::string found = textFromCard(property.line, property.field, card);
  if (!found.empty()) return found;
  if (property.property == "GroupName") return textFromCard("N", 0, card);
  return property.property == "Organization" && isNamedAsCompany(card) ? fullName(card) : std::string();
}

// False for most cards, which have no line of those that hold flags.
bool maySayFlags(const vcard::Card& card) {
  static constexpr std::string_view kStart = "X-AB";
  return std::ranges::any_of(card.lines, [](const vcard::Line& line) {
    return vcard::equalsIgnoringCase(line.name().substr(0, kStart.size()), kStart);
  });
}

Retained<NSObject> flagsFromCard(const vcard::Card& card) {
  bool areSaid = isNamedAsCompany(card);
  int flags = areSaid ? kABShowAsCompany : 0;
  if (maySayFlags(card)) {
    const std::string number = textFromCard(kFlagsLine, kWholeValue, card);
    int all = 0;
    if (std::from_chars(number.data(), number.data() + number.size(), all).ec == std::errc()) {
      return Retained<NSObject>::share(NSNumber::numberWithInt(all));
    }
    std::string_view line;
    std::string said;
    for (const PersonFlagWord& flag : kPersonFlagWords) {
      if (line != flag.line) said = textFromCard(line = flag.line, kWholeValue, card);
      if (!vcard::equalsIgnoringCase(said, flag.word)) continue;
      flags = (flags & ~flag.mask) | flag.flag;
      areSaid = true;
    }
  }
  return areSaid ? Retained<NSObject>::share(NSNumber::numberWithInt(flags)) : Retained<NSObject>();
}

Retained<NSObject> birthdayFromCard(const vcard::Card& card) {
  for (const vcard::Line& line : card.lines) {
    if (!line.is("BDAY")) continue;
    if (const auto date = dateOnLine(vcard::decodedValue(line), line.parameters())) return newDateComponents(*date);
  }
  return {};
}

Retained<NSObject> instantFromCard(std::string_view lineName, const vcard::Card& card) {
  const std::optional<double> seconds = vcard::parseTimestamp(textFromCard(lineName, kWholeValue, card));
  if (!seconds) return {};
  return Retained<NSObject>::share(NSDate::dateWithTimeIntervalSinceReferenceDate(*seconds - NSTimeIntervalSince1970));
}

Retained<NSObject> multiValueFromCard(const EntryCodec& codec, const Property& property, const vcard::Card& card,
                                      std::string_view uid) {
  const std::vector<CardEntry> found = entriesFromCard(codec, card, uid);
  if (found.empty()) return {};
  std::vector<MultiValueEntry> entries;
  for (const CardEntry& entry : found) {
    entries.push_back({entry.value, Retained<NSString>::share(makeString(entry.label)),
                       Retained<NSString>::share(makeString(entry.identifier))});
  }
  const CardEntry* preferred = preferredEntry(found);
  const NSString primary = preferred == nullptr ? NSString() : makeString(preferred->identifier);
  return Retained<NSObject>::adopt(newMultiValue(std::move(entries), primary, property.type).leak());
}

Retained<NSObject> customFromCard(const Property& property, const vcard::Card& card) {
  for (const vcard::Line& line : card.lines) {
    if (!isLineOf(property, line)) continue;
    if (auto value = customValue(property, EntryLine(line, card.version))) return value;
  }
  return {};
}

}  // namespace

bool isNamedAsCompany(const vcard::Card& card) {
  if (hasNameFields(card)) return false;
  if (vcard::equalsIgnoringCase(textFromCard("KIND", kWholeValue, card), "org")) return true;
  const std::string organization = textFromCard("ORG", 0, card);
  const std::string fullName = textFromCard("FN", kWholeValue, card);
  return !organization.empty() && (fullName.empty() || fullName == organization);
}

bool saysSomething(const vcard::Line& line) { return line.value().find_first_not_of("; \t") != std::string_view::npos; }

std::optional<std::size_t> saidLine(const vcard::Card& card, std::string_view name) {
  for (std::size_t i = 0; i < card.lines.size(); ++i) {
    const vcard::Line& line = card.lines[i];
    if (line.is(name) && saysSomething(line)) return i;
  }
  return std::nullopt;
}

bool isPlainName(const vcard::Line& line) {
  return startsWithText(line) && line.value().find_first_of("\\\r") == std::string_view::npos &&
         vcard::isValidUtf8(line.value());
}

std::array<Retained<NSObject>, kNameFields> namesFromFields(std::string_view value) {
  std::array<Retained<NSObject>, kNameFields> names;
  for (Retained<NSObject>& name : names) {
    const std::size_t end = std::min(value.find(';'), value.size());
    name = text(vcard::trimmed(value.substr(0, end)));
    value.remove_prefix(std::min(end + 1, value.size()));
  }
  return names;
}

std::array<Retained<NSObject>, kNameFields> namesFromCard(const vcard::Card& card) {
  std::array<Retained<NSObject>, kNameFields> names;
  if (const std::optional<std::size_t> place = saidLine(card, "N")) {
    const vcard::Line& line = card.lines[*place];
    if (isPlainName(line)) return namesFromFields(line.value());
    std::string kept;
    const std::string_view value = valueOf(line, kept);
    for (std::size_t i = 0; i < kNameFields; ++i) {
      names[i] = text(vcard::trimmed(vcard::fieldAt(value, i, ';', card.version)));
    }
  }
  const bool isNamed = std::ranges::any_of(names, [](const auto& name) { return static_cast<bool>(name); });
  if (!isNamed && !isNamedAsCompany(card)) names[kFirstNameField] = text(fullName(card));
  return names;
}

Retained<NSObject> valueFromCard(const Property& property, const vcard::Card& card, std::string_view uid) {
  if (isNameField(property)) return namesFromCard(card)[static_cast<std::size_t>(property.text->field)];
  if (property.text != nullptr) return text(textOf(*property.text, card));
  if (property.type == kABIntegerProperty && !property.isCustom) return flagsFromCard(card);
  const AutoreleasePool pool;
  if (const auto codec = entryCodecFor(property)) return multiValueFromCard(*codec, property, card, uid);
  if (property.isCustom) return customFromCard(property, card);
  if (property.name == "BirthdayComponents") return birthdayFromCard(card);
  if (property.name == "Creation") return instantFromCard("CREATED", card);
  if (property.name == "Modification") return instantFromCard("REV", card);
  return {};
}

}  // namespace contacts
