#include "platform/contacts/card_changes.h"

#include "platform/contacts/card_values.h"
#include "platform/contacts/card_writer.h"
#include "platform/contacts/custom_codec.h"
#include "platform/contacts/date_values.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/text_properties.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/conversion.h"
#include "platform/contacts/vcard/dates.h"
#include "platform/contacts/vcard/editor.h"
#include "platform/contacts/vcard/encoding.h"
#include "platform/contacts/vcard/text.h"
#include "platform/contacts/vcard/writer.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/number.h"

#include <algorithm>
#include <array>
#include <utility>

namespace contacts {
namespace {

constexpr std::string_view kBlankCard = "BEGIN:VCARD\r\nVERSION:3.0\r\nEND:VCARD\r\n";

// In the order of a full name.
constexpr std::array<std::string_view, 5> kNameParts{"Title", "First", "Middle", "Last", "Suffix"};

// As the first bytes tell; empty for an unknown kind.
std::string_view imageKind(std::string_view bytes) {
  using namespace std::string_view_literals;
  constexpr std::pair<std::string_view, std::string_view> kKinds[] = {
      {"\xFF\xD8\xFF"sv, "JPEG"}, {"\x89PNG"sv, "PNG"}, {"GIF8"sv, "GIF"},
      {"II*\0"sv, "TIFF"},        {"MM\0*"sv, "TIFF"},  {"BM"sv, "BMP"},
  };
  for (const auto& [start, kind] : kKinds) {
    if (bytes.starts_with(start)) return kind;
  }
  return {};
}

class CardWriter {
 public:
  CardWriter(std::string_view text, const CardChanges& changes)
      : editor_(text.empty() ? kBlankCard : text), changes_(changes) {}

  std::string write() {
    for (const std::string_view line : {"N", "FN", "NICKNAME", "X-MAIDENNAME", "X-PHONETIC-FIRST-NAME",
                                        "X-PHONETIC-MIDDLE-NAME", "X-PHONETIC-LAST-NAME", "ORG", "TITLE"}) {
      writeTextLine(line);
    }
    writeTextLine("NOTE");
    for (const CardChanges::Value& change : changes_.values) writeValue(*change.property, change.value.get());
    if (!changes_.isGroup) writeFlags();
    writeMembers(editor_, changes_.members);
    writeDistributions(editor_, changes_.distributions);
    writeCardLines();
    return editor_.text();
  }

 private:
  [[nodiscard]] const vcard::Card& card() const { return editor_.card(); }

  [[nodiscard]] const CardChanges::Value* changeOf(std::string_view property) const {
    auto found = std::ranges::find_if(
        changes_.values, [&](const CardChanges::Value& change) { return change.property->name == property; });
    return found == changes_.values.end() ? nullptr : &*found;
  }

  // What the property has after the change.
  [[nodiscard]] Retained<NSObject> valueOf(std::string_view property) const {
    if (const CardChanges::Value* change = changeOf(property)) return change->value;
    const Schema& schema = changes_.isGroup ? groupSchema() : personSchema();
    const Property* known = schema.find(property);
    return known == nullptr ? Retained<NSObject>() : valueFromCard(*known, card(), changes_.uid);
  }

  [[nodiscard]] std::string textOf(std::string_view property) const {
    const Retained<NSObject> value = valueOf(property);
    return value ? utf8Of(value->as<NSString>()) : std::string();
  }

  [[nodiscard]] int flags() const {
    const Retained<NSObject> value = valueOf("ABPersonFlags");
    return value ? value->as<NSNumber>().intValue() : 0;
  }

  // The first line of that name that says something; it is the one that is read.
  [[nodiscard]] const vcard::Line* lineOf(std::string_view name) const {
    const auto place = saidLine(card(), name);
    return place ? &card().lines[*place] : nullptr;
  }

  // A line that holds texts, one a field, is written when one of them changed, or when it must be there and isn't.
  void writeTextLine(std::string_view name) {
    if (name == "FN") return writeFullName();
    if (changes_.isGroup) return name == "N" ? writeGroupName() : void();
    const bool isChanged = std::ranges::any_of(kTextProperties, [&](const TextProperty& property) {
      return property.line == name && changeOf(property.property) != nullptr;
    });
    const vcard::Line* old = lineOf(name);
    if (!isChanged && (name != "N" || hasLine("N"))) return;

    std::vector<std::string> fields;
    if (old != nullptr) fields = vcard::splitFields(vcard::decodedValue(*old), ';', card().version);
    std::string value;
    bool isStructured = false;
    for (const TextProperty& property : kTextProperties) {
      if (property.line != name) continue;
      isStructured = property.field != kWholeValue;
      if (!isStructured) {
        value = vcard::escape(textOf(property.property));
      } else {
        const auto field = static_cast<std::size_t>(property.field);
        fields.resize(std::max(fields.size(), field + 1));
        fields[field] = textOf(property.property);
      }
    }
    const bool isEmpty = isStructured ? std::ranges::all_of(fields, &std::string::empty) : value.empty();
    if (isStructured) {
      for (const std::string& field : fields) value += (&field == fields.data() ? "" : ";") + vcard::escape(field);
    }
    replaceLine(name, isEmpty && name != "N", value);
  }

  [[nodiscard]] std::optional<std::size_t> firstLine(std::string_view name) const {
    auto found = std::ranges::find_if(card().lines, [&](const vcard::Line& line) { return line.is(name); });
    if (found == card().lines.end()) return std::nullopt;
    return static_cast<std::size_t>(found - card().lines.begin());
  }

  [[nodiscard]] bool hasLine(std::string_view name) const { return firstLine(name).has_value(); }

  // Other lines of the name stay (another language's): but none does that would show where nothing is to be.
  void replaceLine(std::string_view name, bool isRemoved, std::string_view value) {
    auto place = saidLine(card(), name);
    if (!place) place = firstLine(name);
    const vcard::Line* old = place ? &card().lines[*place] : nullptr;
    const std::size_t where = place ? *place : editor_.newLinePlace();
    if (isRemoved || vcard::trimmed(value).find_first_not_of(';') == std::string_view::npos) {
      editor_.dropAll(name);
    } else if (place) {
      editor_.drop(*place);
    }
    if (isRemoved) return;
    std::vector<vcard::Parameter> parameters;
    if (old != nullptr) parameters = vcard::withoutEncoding(old->parameters());
    vcard::appendLine(editor_.before(where), old == nullptr ? std::string_view() : old->group(), name, parameters,
                      value);
  }

  void writeGroupName() {
    const bool isChanged = changeOf("GroupName") != nullptr;
    if (isChanged || !hasLine("N")) replaceLine("N", false, vcard::escape(textOf("GroupName")) + ";;;;");
  }

  // What the card is called, made of the name's parts when one of them changed, and always there.
  void writeFullName() {
    const bool isChanged = isNameChanged() || changeOf("ABPersonFlags") != nullptr || changeOf("GroupName") != nullptr;
    if (!isChanged && hasLine("FN")) return;
    replaceLine("FN", false, vcard::escape(fullName()));
  }

  [[nodiscard]] std::string fullName() const {
    if (changes_.isGroup) return textOf("GroupName");
    const std::string organization = textOf("Organization");
    if ((flags() & kABShowAsMask) != kABShowAsPerson && !organization.empty()) return organization;
    std::string name;
    for (const std::string_view part : kNameParts) {
      const std::string text = textOf(part);
      if (!name.empty() && !text.empty()) name.push_back(' ');
      name += text;
    }
    return name.empty() ? organization : name;
  }

  void writeValue(const Property& property, NSObject value) {
    if (const auto codec = entryCodecFor(property)) {
      writeEntries(editor_, *codec, changes_.uid, value.as<ABMultiValue>());
    } else if (&property == &imageProperty()) {
      writeImage(value.as<NSData>());
    } else if (property.isCustom) {
      writeCustom(property, value);
    } else if (property.name == "BirthdayComponents") {
      editor_.dropAll("BDAY");
      if (!value) return;
      LineDraft draft{"BDAY", {}, {}, {}, {}};
      writeDate(draft, value.as<NSDateComponents>());
      append(draft);
    }
  }

  void append(const LineDraft& draft) {
    vcard::appendLine(editor_.before(editor_.newLinePlace()), "", draft.name, draft.parameters, draft.value);
  }

  void writeImage(NSData image) {
    editor_.dropAll("PHOTO");
    if (!image) return;
    const std::string_view bytes(static_cast<const char*>(image.bytes()), image.length());
    LineDraft draft{"PHOTO", {{"ENCODING", "b"}}, vcard::encodeBase64(bytes), {}, {}};
    if (const std::string_view kind = imageKind(bytes); !kind.empty()) {
      draft.parameters.push_back({"TYPE", std::string(kind)});
    }
    append(draft);
  }

  void writeCustom(const Property& property, NSObject value) {
    for (std::size_t i = 0; i < card().lines.size(); ++i) {
      if (isLineOf(property, card().lines[i])) editor_.drop(i);
    }
    if (value) append(customDraft(property, value));
  }

  // As words, the default ones left out where nobody would guess otherwise; as a number too when that is more than the
  // words say.
  void writeFlags() {
    const bool isGuessed = isNamedAsCompany(card()) || looksLikeCompany();
    if (changeOf("ABPersonFlags") == nullptr && (!isGuessed || !isNameChanged() || hasLine(kShowAsLine))) return;
    const int flags = this->flags();
    int said = 0;
    for (const std::string_view line : {kShowAsLine, kOrderLine, kFlagsLine}) editor_.dropAll(line);
    for (const PersonFlagWord& word : kPersonFlagWords) {
      if ((flags & word.mask) != word.flag) continue;
      said |= word.flag;
      if (word.flag != 0 || isGuessed) append({std::string(word.line), {}, std::string(word.word), {}, {}});
    }
    if (flags != said) append({std::string(kFlagsLine), {}, std::to_string(flags), {}, {}});
  }

  // Whether the changed card will have a company's name only.
  [[nodiscard]] bool looksLikeCompany() const {
    return !textOf("Organization").empty() &&
           std::ranges::all_of(kNameParts, [&](auto part) { return textOf(part).empty(); });
  }

  [[nodiscard]] bool isNameChanged() const {
    return changeOf("Organization") != nullptr ||
           std::ranges::any_of(kNameParts, [&](auto part) { return changeOf(part) != nullptr; });
  }

  // What every card has.
  void writeCardLines() {
    if (changes_.isGroup && card().version == vcard::Version::k30 && !hasLine("X-ADDRESSBOOKSERVER-KIND") &&
        !hasLine("KIND")) {
      append({"X-ADDRESSBOOKSERVER-KIND", {}, "group", {}, {}});
    }
    const std::size_t end = card().lines.size() - 1;
    std::string& last = editor_.before(end);
    if (!saidLine(card(), "UID")) {
      editor_.dropAll("UID");
      vcard::appendLine(last, "", "UID", {}, vcard::escape(changes_.uid));
    }
    if (changes_.created && !saidLine(card(), "CREATED")) {
      editor_.dropAll("CREATED");
      vcard::appendLine(last, "", "CREATED", {}, vcard::formatTimestamp(*changes_.created));
    }
    editor_.dropAll("REV");
    vcard::appendLine(last, "", "REV", {}, vcard::formatTimestamp(changes_.time));
  }

  vcard::Editor editor_;
  const CardChanges& changes_;
};

}  // namespace

const Property& imageProperty() {
  static const Property property{"PHOTO", kABDataProperty};
  return property;
}

Retained<NSData> imageFromCard(const vcard::Card& card) {
  for (const vcard::Line& line : card.lines) {
    if (!line.is("PHOTO")) continue;
    const std::string bytes = vcard::binaryValue(line);
    if (!bytes.empty()) return Retained<NSData>::share(NSData::dataWithBytes(bytes.data(), bytes.size()));
  }
  return {};
}

std::string changedCard(std::string_view text, const CardChanges& changes) {
  const AutoreleasePool pool;
  return CardWriter(text, changes).write();
}

}  // namespace contacts
