#include "platform/contacts/card_entries.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace contacts {
namespace {

// The lines that belong to others by their group.
class Companions {
 public:
  explicit Companions(const vcard::Card& card) : card_(card) {
    for (std::size_t i = 0; i < card.lines.size(); ++i) {
      const vcard::Line& line = card.lines[i];
      if (line.group().empty()) continue;
      if (line.is("X-ABLABEL")) labels_.emplace(vcard::uppercased(line.group()), i);
      if (line.is("X-ABADR")) countries_.emplace(vcard::uppercased(line.group()), i);
    }
  }

  void addTo(EntryLine& line, std::vector<std::size_t>& places) const {
    if (line.line.group().empty()) return;
    const std::string group = vcard::uppercased(line.line.group());
    line.customLabel = textOf(labels_, group, places);
    line.country = textOf(countries_, group, places);
  }

 private:
  using Places = std::unordered_map<std::string, std::size_t>;

  [[nodiscard]] std::string textOf(const Places& known, const std::string& group,
                                   std::vector<std::size_t>& places) const {
    auto found = known.find(group);
    if (found == known.end()) return {};
    places.push_back(found->second);
    return EntryLine(card_.lines[found->second], card_.version).text();
  }

  const vcard::Card& card_;
  Places labels_;
  Places countries_;
};

int preferenceOf(const EntryLine& line) {
  if (line.hasType("PREF")) return 1;
  int preference = kNoPreference;
  const std::string_view text = vcard::firstParameter(line.parameters(), "PREF");
  std::from_chars(text.data(), text.data() + text.size(), preference);
  return std::clamp(preference, 1, kNoPreference);
}

// Whether another line was before it that says the same in another language or script.
class Alternatives {
 public:
  bool isRepeated(const EntryLine& line) {
    const std::string_view id = vcard::firstParameter(line.parameters(), "ALTID");
    return !id.empty() && !seen_.insert(vcard::uppercased(line.line.name()) + "=" + std::string(id)).second;
  }

 private:
  std::unordered_set<std::string> seen_;
};

// What makes two lines the same entry: only for the property whose entries have several lines.
std::string sameEntryKey(const EntryCodec& codec, const DecodedEntry& entry) {
  if (codec.property != "InstantMessage") return {};
  return vcard::uppercased(entry.value->description().UTF8String());
}

}  // namespace

std::vector<CardEntry> entriesFromCard(const EntryCodec& codec, const vcard::Card& card, std::string_view uid) {
  const Companions companions(card);
  Alternatives alternatives;
  std::vector<CardEntry> entries;
  std::unordered_map<std::string, std::size_t> byKey;
  std::unordered_map<std::string, int> occurrences;
  std::unordered_set<std::string> identifiers;

  for (std::size_t i = 0; i < card.lines.size(); ++i) {
    if (card.lines[i].name().empty()) continue;
    EntryLine line(card.lines[i], card.version);
    std::vector<std::size_t> places;
    companions.addTo(line, places);
    std::optional<DecodedEntry> decoded = codec.decode(line);
    if (!decoded || alternatives.isRepeated(line)) continue;

    if (const std::string key = sameEntryKey(codec, *decoded); !key.empty()) {
      const auto [known, isNew] = byKey.emplace(key, entries.size());
      if (!isNew) {
        CardEntry& entry = entries[known->second];
        entry.lines.push_back(i);
        entry.companions.insert(entry.companions.end(), places.begin(), places.end());
        continue;
      }
    }
    std::string identifier(vcard::firstParameter(line.parameters(), kIdentifierParameter));
    bool isRepeated = false;
    if (identifier.empty() || identifiers.contains(identifier)) {
      std::string seed(uid);
      seed.append("\n").append(codec.property).append("\n").append(line.text());
      const int occurrence = occurrences[seed]++;
      isRepeated = occurrence > 0 || !identifier.empty();
      identifier = derivedIdentifier(seed + "\n" + std::to_string(occurrence));
    }
    identifiers.insert(identifier);
    entries.push_back({{i},
                       std::move(places),
                       std::move(decoded->value),
                       std::move(decoded->label),
                       std::move(identifier),
                       preferenceOf(line),
                       isRepeated});
  }
  return entries;
}

const CardEntry* preferredEntry(const std::vector<CardEntry>& entries) {
  auto found = std::ranges::min_element(entries, {}, &CardEntry::preference);
  return found == entries.end() || found->preference == kNoPreference ? nullptr : &*found;
}

}  // namespace contacts
