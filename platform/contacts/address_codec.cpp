#include "platform/contacts/entry_codec.h"
#include "platform/contacts/entry_labels.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"
#include "platform/foundation/dictionary.h"

#include <array>

namespace contacts {
namespace {

// The fields of an ADR line: post office box, extension, street, city, state, postal code, country.
constexpr std::size_t kStreetField = 2;
constexpr std::array<std::string_view, 5> kKeysFromStreet{"Street", "City", "State", "ZIP", "Country"};

void set(NSMutableDictionary address, std::string_view key, std::string_view text) {
  if (!text.empty()) address.setObject(makeString(text), makeString(key));
}

std::optional<DecodedEntry> decode(const EntryLine& line) {
  if (!line.line.is("ADR")) return std::nullopt;
  std::vector<std::string> fields = line.fields();
  fields.resize(kStreetField + kKeysFromStreet.size());
  // There is no place for box and extension but the street.
  std::string street;
  for (std::size_t i = 0; i <= kStreetField; ++i) {
    const std::string_view part = vcard::trimmed(fields[i]);
    if (!street.empty() && !part.empty()) street.push_back('\n');
    street += part;
  }
  fields[kStreetField] = street;

  NSMutableDictionary address = NSMutableDictionary::dictionary();
  for (std::size_t i = 0; i < kKeysFromStreet.size(); ++i) {
    set(address, kKeysFromStreet[i], vcard::trimmed(fields[kStreetField + i]));
  }
  if (address.count() == 0) return std::nullopt;
  const bool isBeside = !line.country.empty();
  set(address, "CountryCode",
      isBeside ? line.country : vcard::lowercased(vcard::firstParameter(line.parameters(), "CC")));
  return DecodedEntry{Retained<NSObject>::adopt(address.copy()), labelOf(line, kPlaceWords, kOther)};
}

std::string part(NSDictionary address, std::string_view key) {
  const NSObject value = address.objectForKey(makeString(key));
  return value && value.isKindOfClass("NSString"_class) ? utf8Of(value.as<NSString>()) : std::string();
}

std::vector<LineDraft> encode(NSObject value, const std::string& label) {
  const auto address = value.as<NSDictionary>();
  LineDraft draft{"ADR", {}, ";", {}, part(address, "CountryCode")};
  for (const std::string_view key : kKeysFromStreet) draft.value += ";" + vcard::escape(part(address, key));
  writeLabel(draft, label, kPlaceWords);
  return {draft};
}

}  // namespace

EntryCodec addressCodec() { return {"Address", decode, encode}; }

}  // namespace contacts
