#include "platform/contacts/custom_codec.h"

#include "platform/contacts/entry_labels.h"
#include "platform/contacts/typed_text.h"
#include "platform/contacts/vcard/card.h"
#include "platform/contacts/vcard/text.h"
#include "platform/contacts/vcard/writer.h"

namespace contacts {
namespace {

constexpr std::string_view kLine = "X-ABPROPERTY";
constexpr std::string_view kName = "X-NAME";

}  // namespace

bool canNameLines(const Property& custom) {
  std::string text;
  vcard::appendLine(text, "", kLine, {{std::string(kName), custom.name}}, "");
  const vcard::Card card = vcard::parseCard(text);
  return !custom.name.empty() && card.lines.size() == 1 && isLineOf(custom, card.lines.front());
}

bool isLineOf(const Property& custom, const vcard::Line& line) {
  return line.is(kLine) && vcard::firstParameter(line.parameters(), kName) == custom.name;
}

Retained<NSObject> customValue(const Property& custom, const EntryLine& line) {
  return valueFromText(custom.type & ~kABMultiValueMask, vcard::unescape(vcard::decodedValue(line.line), line.version));
}

LineDraft customDraft(const Property& custom, NSObject value) {
  return {std::string(kLine), {{std::string(kName), custom.name}}, vcard::escape(typedText(value)), {}, {}};
}

EntryCodec customCodec(const Property& property) {
  return {property.name,
          [&property](const EntryLine& line) -> std::optional<DecodedEntry> {
            if (!isLineOf(property, line.line)) return std::nullopt;
            Retained<NSObject> value = customValue(property, line);
            if (!value) return std::nullopt;
            return DecodedEntry{std::move(value), labelOf(line, kPlaceWords, kOther)};
          },
          [&property](NSObject value, const std::string& label) -> std::vector<LineDraft> {
            LineDraft draft = customDraft(property, value);
            writeLabel(draft, label, kPlaceWords);
            return {draft};
          }};
}

}  // namespace contacts
