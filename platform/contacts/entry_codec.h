#pragma once

#include "platform/contacts/schema.h"
#include "platform/contacts/vcard/card.h"
#include "platform/foundation/string.h"
#include "platform/objc/retained.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How one entry of a multi-valued property stands in a card, one codec a property.
namespace contacts {

// A line together with what stands beside it under the same group: item1.ADR, item1.X-ABLabel, item1.X-ABADR.
class EntryLine {
 public:
  // The line must outlive it.
  EntryLine(const vcard::Line& cardLine, vcard::Version cardVersion) : line(cardLine), version(cardVersion) {}

  const vcard::Line& line;
  vcard::Version version;
  std::string customLabel;  // empty when there is none
  std::string country;

  [[nodiscard]] const std::vector<vcard::Parameter>& parameters() const {
    if (!parameters_) parameters_ = line.parameters();
    return *parameters_;
  }
  // Decoded and unescaped, without blanks at its ends.
  [[nodiscard]] std::string text() const;
  // The fields of a structured value.
  [[nodiscard]] std::vector<std::string> fields() const;
  [[nodiscard]] bool hasType(std::string_view word) const { return vcard::hasParameter(parameters(), "TYPE", word); }

 private:
  // Most lines are asked for their name alone.
  mutable std::optional<std::vector<vcard::Parameter>> parameters_;
};

struct DecodedEntry {
  Retained<NSObject> value;
  std::string label;
};

// An entry to be written: one line, with its companions where it has any.
struct LineDraft {
  std::string name;
  std::vector<vcard::Parameter> parameters;
  std::string value;  // escaped
  std::string customLabel;
  std::string country;
};

struct EntryCodec {
  std::string_view property;
  // Nothing for a line that is no entry: another property's, or without a value.
  std::function<std::optional<DecodedEntry>(const EntryLine& line)> decode;
  std::function<std::vector<LineDraft>(NSObject value, const std::string& label)> encode;
};

// Nothing for a property that has one value only, or is a view of another (property_views.h). The property outlives it.
std::optional<EntryCodec> entryCodecFor(const Property& property);

EntryCodec emailCodec();
EntryCodec phoneCodec();
EntryCodec urlCodec();
EntryCodec calendarCodec();
EntryCodec relatedNameCodec();
EntryCodec dateCodec();
EntryCodec addressCodec();
EntryCodec instantMessageCodec();
EntryCodec socialProfileCodec();
// Whether a service's name has the text, one that cards can mean without a word of it. The text is folded.
bool isInServiceName(std::u16string_view text);
EntryCodec customCodec(const Property& property);

}  // namespace contacts
