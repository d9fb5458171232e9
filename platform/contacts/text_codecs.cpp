#include "platform/contacts/date_values.h"
#include "platform/contacts/entry_codec.h"
#include "platform/contacts/entry_labels.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"

#include <algorithm>
#include <array>
#include <utility>

// The properties whose entries are one text, or one date.
namespace contacts {
namespace {

constexpr std::string_view kAnniversary = "_$!<Anniversary>!$_";
constexpr std::string_view kHomePage = "_$!<HomePage>!$_";

std::optional<DecodedEntry> textEntry(std::string text, std::string label) {
  if (text.empty()) return std::nullopt;
  return DecodedEntry{Retained<NSObject>::share(makeString(text)), std::move(label)};
}

LineDraft textDraft(std::string_view name, NSObject value) {
  return {std::string(name), {}, vcard::escape(utf8Of(value.as<NSString>())), {}, {}};
}

LineDraft uriDraft(std::string_view name, NSObject value) {
  return {std::string(name), {}, vcard::escapeUri(utf8Of(value.as<NSString>())), {}, {}};
}

std::optional<DecodedEntry> decodeEmail(const EntryLine& line) {
  if (!line.line.is("EMAIL")) return std::nullopt;
  return textEntry(line.text(), labelOf(line, kPlaceWords, kOther));
}

std::vector<LineDraft> encodeEmail(NSObject value, const std::string& label) {
  LineDraft draft = textDraft("EMAIL", value);
  draft.parameters.push_back({"type", "INTERNET"});
  writeLabel(draft, label, kPlaceWords);
  return {draft};
}

constexpr std::array kPhoneWords{
    LabelWords{"_$!<HomeFAX>!$_", {"HOME", "FAX"}, {"HOME", "FAX"}},
    LabelWords{"_$!<WorkFAX>!$_", {"FAX"}, {"WORK", "FAX"}},
    LabelWords{"iPhone", {"IPHONE"}, {"IPHONE", "CELL", "VOICE"}},
    LabelWords{"_$!<Pager>!$_", {"PAGER"}, {"PAGER"}},
    LabelWords{"_$!<Mobile>!$_", {"CELL"}, {"CELL", "VOICE"}},
    LabelWords{"_$!<Main>!$_", {"MAIN"}, {"MAIN"}},
    LabelWords{kHome, {"HOME"}, {"HOME", "VOICE"}},
    LabelWords{kWork, {"WORK"}, {"WORK", "VOICE"}},
};

std::optional<DecodedEntry> decodePhone(const EntryLine& line) {
  if (!line.line.is("TEL")) return std::nullopt;
  std::string number = line.text();
  constexpr std::string_view kScheme = "tel:";
  if (vcard::equalsIgnoringCase(std::string_view(number).substr(0, kScheme.size()), kScheme)) {
    number.erase(0, kScheme.size());
    constexpr std::string_view kExtension = ";ext=";
    if (const std::size_t at = number.find(kExtension); at != std::string::npos) {
      number.replace(at, kExtension.size(), " ext. ");
    }
  }
  return textEntry(std::move(number), labelOf(line, kPhoneWords, kOther));
}

std::vector<LineDraft> encodePhone(NSObject value, const std::string& label) {
  LineDraft draft = textDraft("TEL", value);
  writeLabel(draft, label, kPhoneWords);
  return {draft};
}

std::optional<DecodedEntry> decodeUrl(const EntryLine& line) {
  if (!line.line.is("URL")) return std::nullopt;
  return textEntry(line.text(), labelOf(line, kPlaceWords, kHomePage));
}

std::vector<LineDraft> encodeUrl(NSObject value, const std::string& label) {
  LineDraft draft = uriDraft("URL", value);
  writeLabel(draft, label, kPlaceWords);
  return {draft};
}

std::optional<DecodedEntry> decodeCalendar(const EntryLine& line) {
  if (!line.line.is("CALURI")) return std::nullopt;
  return textEntry(line.text(), labelOf(line, kPlaceWords, kOther));
}

std::vector<LineDraft> encodeCalendar(NSObject value, const std::string& label) {
  LineDraft draft = uriDraft("CALURI", value);
  writeLabel(draft, label, kPlaceWords);
  return {draft};
}

// Lines that name a relation by themselves, and the type words of RELATED.
struct RelationName {
  std::string_view name;
  std::string_view label;
};

constexpr std::array kRelationLines{
    RelationName{"X-SPOUSE", "_$!<Spouse>!$_"},
    RelationName{"X-EVOLUTION-SPOUSE", "_$!<Spouse>!$_"},
    RelationName{"X-KADDRESSBOOK-X-SPOUSESNAME", "_$!<Spouse>!$_"},
    RelationName{"X-ASSISTANT", "_$!<Assistant>!$_"},
    RelationName{"X-EVOLUTION-ASSISTANT", "_$!<Assistant>!$_"},
    RelationName{"X-KADDRESSBOOK-X-ASSISTANTSNAME", "_$!<Assistant>!$_"},
    RelationName{"X-MANAGER", "_$!<Manager>!$_"},
    RelationName{"X-EVOLUTION-MANAGER", "_$!<Manager>!$_"},
    RelationName{"X-KADDRESSBOOK-X-MANAGERSNAME", "_$!<Manager>!$_"},
};

constexpr std::array kRelationWords{
    RelationName{"SPOUSE", "_$!<Spouse>!$_"},
    RelationName{"CHILD", "_$!<Child>!$_"},
    RelationName{"PARENT", "_$!<Parent>!$_"},
    RelationName{"FRIEND", "_$!<Friend>!$_"},
    RelationName{"SIBLING", "sibling"},
    RelationName{"COLLEAGUE", "colleague"},
    RelationName{"CO-WORKER", "co-worker"},
    RelationName{"NEIGHBOR", "neighbor"},
    RelationName{"SWEETHEART", "_$!<Partner>!$_"},
};

std::optional<DecodedEntry> decodeRelatedName(const EntryLine& line) {
  if (line.line.is("X-ABRELATEDNAMES")) return textEntry(line.text(), labelOf(line, {}, kOther));
  for (const RelationName& relation : kRelationLines) {
    if (line.line.is(relation.name)) return textEntry(line.text(), std::string(relation.label));
  }
  // Without VALUE=text it is another card's address, not a name.
  if (!line.line.is("RELATED") || !vcard::hasParameter(line.parameters(), "VALUE", "text")) return std::nullopt;
  auto known = std::ranges::find_if(kRelationWords, [&](const auto& relation) { return line.hasType(relation.name); });
  return textEntry(line.text(), labelOf(line, {}, known == kRelationWords.end() ? kOther : known->label));
}

std::vector<LineDraft> encodeRelatedName(NSObject value, const std::string& label) {
  LineDraft draft = textDraft("X-ABRELATEDNAMES", value);
  draft.customLabel = label;
  return {draft};
}

std::optional<DecodedEntry> decodeDate(const EntryLine& line) {
  constexpr std::array<std::string_view, 4> kAnniversaryLines{"ANNIVERSARY", "X-ANNIVERSARY", "X-EVOLUTION-ANNIVERSARY",
                                                              "X-KADDRESSBOOK-X-ANNIVERSARY"};
  const bool isAnniversary = std::ranges::any_of(kAnniversaryLines, [&](auto name) { return line.line.is(name); });
  if (!isAnniversary && !line.line.is("X-ABDATE")) return std::nullopt;
  const std::optional<vcard::Date> date = dateOnLine(line.text(), line.parameters());
  if (!date) return std::nullopt;
  return DecodedEntry{newDateComponents(*date), labelOf(line, {}, isAnniversary ? kAnniversary : kOther)};
}

std::vector<LineDraft> encodeDate(NSObject value, const std::string& label) {
  LineDraft draft{"X-ABDATE", {}, {}, label, {}};
  writeDate(draft, value.as<NSDateComponents>());
  return {draft};
}

}  // namespace

EntryCodec emailCodec() { return {"Email", decodeEmail, encodeEmail}; }
EntryCodec phoneCodec() { return {"Phone", decodePhone, encodePhone}; }
EntryCodec urlCodec() { return {"URLs", decodeUrl, encodeUrl}; }
EntryCodec calendarCodec() { return {"calendarURIs", decodeCalendar, encodeCalendar}; }
EntryCodec relatedNameCodec() { return {"ABRelatedNames", decodeRelatedName, encodeRelatedName}; }
EntryCodec dateCodec() { return {"ABDateComponents", decodeDate, encodeDate}; }

}  // namespace contacts
