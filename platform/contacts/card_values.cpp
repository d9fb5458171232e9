#include "platform/contacts/card_values.h"

#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"
#include "platform/foundation/autorelease_pool.h"

#include <array>

namespace contacts {
namespace {

constexpr int kWholeValue = -1;

// A property that is one line's value or one field of it.
struct TextMapping {
  std::string_view property;
  std::string_view line;
  int field;
};

constexpr std::array kTextMappings{
    TextMapping{"Last", "N", 0},
    TextMapping{"First", "N", 1},
    TextMapping{"Middle", "N", 2},
    TextMapping{"Title", "N", 3},
    TextMapping{"Suffix", "N", 4},
    TextMapping{"Nickname", "NICKNAME", kWholeValue},
    TextMapping{"MaidenName", "X-MAIDENNAME", kWholeValue},
    TextMapping{"FirstPhonetic", "X-PHONETIC-FIRST-NAME", kWholeValue},
    TextMapping{"MiddlePhonetic", "X-PHONETIC-MIDDLE-NAME", kWholeValue},
    TextMapping{"LastPhonetic", "X-PHONETIC-LAST-NAME", kWholeValue},
    TextMapping{"Organization", "ORG", 0},
    TextMapping{"ABDepartment", "ORG", 1},
    TextMapping{"JobTitle", "TITLE", kWholeValue},
    TextMapping{"Note", "NOTE", kWholeValue},
    TextMapping{"GroupName", "FN", kWholeValue},
};

// Of several lines of one name (other languages, other preferences) the first that isn't empty counts.
std::string textFromCard(const TextMapping& mapping, const vcard::Card& card) {
  for (const vcard::Line& line : card.lines) {
    if (!line.is(mapping.line)) continue;
    const std::string value = vcard::decodedValue(line);
    std::string text;
    if (mapping.field == kWholeValue) {
      text = vcard::unescape(value, card.version);
    } else {
      const std::vector<std::string> fields = vcard::splitFields(value, ';', card.version);
      const auto field = static_cast<std::size_t>(mapping.field);
      if (field < fields.size()) text = vcard::trimmed(fields[field]);
    }
    if (!text.empty()) return text;
  }
  return {};
}

}  // namespace

Retained<NSObject> valueFromCard(const Property& property, const vcard::Card& card) {
  const AutoreleasePool pool;
  for (const TextMapping& mapping : kTextMappings) {
    if (mapping.property != property.name) continue;
    const std::string text = textFromCard(mapping, card);
    return text.empty() ? Retained<NSObject>() : Retained<NSObject>::share(makeString(text));
  }
  return {};
}

}  // namespace contacts
