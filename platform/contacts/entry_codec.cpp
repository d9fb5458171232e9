#include "platform/contacts/entry_codec.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"

namespace contacts {

std::string EntryLine::text() const {
  return std::string(vcard::trimmed(vcard::unescape(vcard::decodedValue(line, parameters()), version)));
}

std::vector<std::string> EntryLine::fields() const {
  return vcard::splitFields(vcard::decodedValue(line, parameters()), ';', version);
}

std::optional<EntryCodec> entryCodecFor(const Property& property) {
  if ((property.type & kABMultiValueMask) == 0) return std::nullopt;
  if (property.isCustom) return customCodec(property);
  for (EntryCodec (*codec)() : {emailCodec, phoneCodec, urlCodec, calendarCodec, relatedNameCodec, dateCodec,
                                addressCodec, instantMessageCodec, socialProfileCodec}) {
    if (EntryCodec known = codec(); known.property == property.name) return known;
  }
  return std::nullopt;
}

}  // namespace contacts
