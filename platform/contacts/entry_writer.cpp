#include "platform/contacts/card_entries.h"
#include "platform/contacts/card_writer.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/conversion.h"
#include "platform/contacts/vcard/dates.h"
#include "platform/contacts/vcard/text.h"
#include "platform/contacts/vcard/writer.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

namespace contacts {
namespace {

// Parameters that a rewritten line gets anew, or that told of its old value.
bool isReplaced(const vcard::Parameter& parameter) {
  constexpr std::array<std::string_view, 10> kNames{
      "PREF",   "VALUE",    "LABEL",  "CC",           "X-SERVICE-TYPE",
      "X-USER", "X-USERID", "X-NAME", "SERVICE-TYPE", kIdentifierParameter};
  constexpr std::array<std::string_view, 11> kTypes{"HOME", "WORK",  "OTHER", "INTERNET", "VOICE", "FAX",
                                                    "CELL", "PAGER", "MAIN",  "IPHONE",   "PREF"};
  if (parameter.name == vcard::kOmittedYear) return true;
  if (parameter.name != "TYPE") return std::ranges::find(kNames, parameter.name) != kNames.end();
  return std::ranges::any_of(kTypes, [&](auto word) { return vcard::equalsIgnoringCase(parameter.value, word); });
}

class EntryWriter {
 public:
  EntryWriter(vcard::Editor& editor, const EntryCodec& codec, std::string_view uid)
      : editor_(editor), codec_(codec), old_(entriesFromCard(codec, editor.card(), uid)) {
    for (std::size_t i = 0; i < old_.size(); ++i) places_.emplace(old_[i].identifier, i);
    const CardEntry* preferred = preferredEntry(old_);
    if (preferred != nullptr) oldPrimary_ = preferred->identifier;
  }

  void write(ABMultiValue value) {
    const std::vector<MultiValueEntry> none;
    const std::vector<MultiValueEntry>& entries = value ? objectOf(value).entries : none;
    if (value) primary_ = utf8Of(value.primaryIdentifier());
    std::vector<bool> isKept(old_.size(), false);
    for (const MultiValueEntry& entry : entries) {
      if (const CardEntry* old = oldEntry(entry)) isKept[static_cast<std::size_t>(old - old_.data())] = true;
    }
    for (std::size_t i = 0; i < old_.size(); ++i) {
      if (!isKept[i]) drop(old_[i]);
      const bool isPreferred = old_[i].preference > 1 && old_[i].preference < kNoPreference;
      arePreferencesLeft_ = arePreferencesLeft_ || (isKept[i] && isPreferred && old_[i].identifier != oldPrimary_);
    }
    keepsOrder_ = oldOnesComeInOrder(entries);
    for (std::size_t i = 0; i < entries.size(); ++i) place(entries[i], i == 0);
  }

 private:
  const CardEntry* oldEntry(const MultiValueEntry& entry) const {
    auto found = places_.find(utf8Of(entry.identifier.get()));
    return found == places_.end() ? nullptr : &old_[found->second];
  }

  // Whether the entries that the card has stand in the card's order, and new ones after them.
  bool oldOnesComeInOrder(const std::vector<MultiValueEntry>& entries) const {
    const CardEntry* last = nullptr;
    bool sawNew = false;
    for (const MultiValueEntry& entry : entries) {
      const CardEntry* old = oldEntry(entry);
      if (old == nullptr) {
        sawNew = true;
      } else if (sawNew || (last != nullptr && old < last)) {
        return false;
      } else {
        last = old;
      }
    }
    return true;
  }

  void drop(const CardEntry& entry) {
    for (const std::size_t line : entry.lines) editor_.drop(line);
    for (const std::size_t line : entry.companions) editor_.drop(line);
  }

  // An entry stays as it is written if that says the same, and if its identifier doesn't hang on another's place.
  bool isUnchanged(const CardEntry& old, const MultiValueEntry& entry, bool isFirst) const {
    return old.label == utf8Of(entry.label.get()) && !old.isRepeated && saysWhetherPrimary(old, isFirst) &&
           send<bool>(old.value.get(), "isEqual:"_sel, entry.value.get());
  }

  // Where no line says it, the first entry is the primary one.
  bool saysWhetherPrimary(const CardEntry& old, bool isFirst) const {
    const bool wasPrimary = old.identifier == oldPrimary_;
    if (old.identifier == primary_) return wasPrimary || (isFirst && !arePreferencesLeft_);
    return !wasPrimary && (old.preference != 1 || primary_ == oldPrimary_);
  }

  void place(const MultiValueEntry& entry, bool isFirst) {
    const CardEntry* old = oldEntry(entry);
    const bool isUnchangedEntry = old != nullptr && isUnchanged(*old, entry, isFirst);
    if (isUnchangedEntry && keepsOrder_) return;
    // In its own place when that is kept, else where the property's first line was.
    std::size_t place = old_.empty() ? editor_.newLinePlace() : old_.front().lines.front();
    if (keepsOrder_ && old != nullptr) place = old->lines.front();
    if (keepsOrder_ && old == nullptr && !old_.empty()) place = vcard::Editor::behind(lastLine());
    if (old != nullptr) drop(*old);
    if (isUnchangedEntry) {
      move(*old, place);
    } else {
      rewrite(old, entry, place);
    }
  }

  std::size_t lastLine() const {
    std::size_t last = 0;
    for (const CardEntry& entry : old_) {
      for (const std::size_t line : entry.lines) last = std::max(last, line);
      for (const std::size_t line : entry.companions) last = std::max(last, line);
    }
    return last;
  }

  void move(const CardEntry& old, std::size_t place) {
    for (const auto& lines : {old.lines, old.companions}) {
      for (const std::size_t line : lines) {
        vcard::appendConverted(editor_.before(place), editor_.card().lines[line], editor_.card().version);
      }
    }
  }

  void rewrite(const CardEntry* old, const MultiValueEntry& entry, std::size_t place) {
    const vcard::Line* oldLine = old == nullptr ? nullptr : &editor_.card().lines[old->lines.front()];
    std::string group = oldLine == nullptr ? std::string() : std::string(oldLine->group());
    const std::string identifier = utf8Of(entry.identifier.get());
    bool isMain = true;
    for (LineDraft& draft : codec_.encode(entry.value.get(), utf8Of(entry.label.get()))) {
      if (identifier == primary_) draft.parameters.push_back({"type", "pref"});
      if (isMain && oldLine != nullptr) {
        for (vcard::Parameter& parameter : vcard::withoutEncoding(oldLine->parameters())) {
          if (!isReplaced(parameter) && !isProfileType(parameter)) draft.parameters.push_back(std::move(parameter));
        }
      }
      if (isMain) draft.parameters.push_back({std::string(kIdentifierParameter), identifier});
      append(draft, std::exchange(group, {}), place);
      isMain = false;
    }
  }

  // There the type says the service.
  bool isProfileType(const vcard::Parameter& parameter) const {
    return codec_.property == "SocialProfile" && parameter.name == "TYPE";
  }

  void append(const LineDraft& draft, std::string group, std::size_t place) {
    const bool hasCompanions = !draft.customLabel.empty() || !draft.country.empty();
    if (hasCompanions && group.empty()) group = editor_.newGroup();
    std::string& text = editor_.before(place);
    vcard::appendLine(text, group, draft.name, draft.parameters, draft.value);
    if (!draft.country.empty()) vcard::appendLine(text, group, "X-ABADR", {}, vcard::escape(draft.country));
    if (!draft.customLabel.empty()) vcard::appendLine(text, group, "X-ABLabel", {}, vcard::escape(draft.customLabel));
  }

  vcard::Editor& editor_;
  const EntryCodec& codec_;
  std::vector<CardEntry> old_;
  std::unordered_map<std::string, std::size_t> places_;
  std::string oldPrimary_;  // that a line says it is; empty when none does
  std::string primary_;
  bool arePreferencesLeft_ = false;
  bool keepsOrder_ = true;
};

}  // namespace

void writeEntries(vcard::Editor& editor, const EntryCodec& codec, std::string_view uid, ABMultiValue value) {
  EntryWriter(editor, codec, uid).write(value);
}

}  // namespace contacts
