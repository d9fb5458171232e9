#include "platform/contacts/entry_codec.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"

namespace contacts {

std::string EntryLine::text() const {
  return std::string(vcard::trimmed(vcard::unescape(vcard::decodedValue(line), version)));
}

std::vector<std::string> EntryLine::fields() const {
  return vcard::splitFields(vcard::decodedValue(line), ';', version);
}

std::optional<EntryCodec> entryCodecFor(const Property& property) {
  const bool isMulti = (property.type & kABMultiValueMask) != 0;
  if (property.isCustom) return isMulti ? std::optional(customCodec(property)) : std::nullopt;
  for (EntryCodec (*codec)() : {emailCodec, phoneCodec, urlCodec, calendarCodec, relatedNameCodec, dateCodec,
                                addressCodec, instantMessageCodec, socialProfileCodec}) {
    if (EntryCodec known = codec(); known.property == property.name) return known;
  }
  return std::nullopt;
}

}  // namespace contacts
