#include "platform/contacts/value_check.h"

#include "platform/contacts/date_values.h"
#include "platform/contacts/entry_codec.h"
#include "platform/contacts/errors.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/text_properties.h"
#include "platform/contacts/typed_text.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"
#include "platform/contacts/vcard/writer.h"
#include "platform/foundation/array.h"
#include "platform/foundation/exception.h"

#include <string>
#include <utility>
#include <vector>

namespace contacts {
namespace {

[[noreturn]] void raiseWrongType(const Property& property, NSObject value) {
  NSException::raise(NSInvalidArgumentException, "setValue:forProperty: " + property.name + " is of type " +
                                                     std::to_string(property.type) + ", a " +
                                                     value.objectClass().name() + " is not");
}

// Whole numbers and fractions fit either type.
bool fits(ABPropertyType type, ABPropertyType valueType) {
  const bool areNumbers = (type == kABIntegerProperty || type == kABRealProperty) &&
                          (valueType == kABIntegerProperty || valueType == kABRealProperty);
  return valueType == type || areNumbers;
}

// What the entry will be read back as; nothing when it can't be.
std::optional<DecodedEntry> readBack(const EntryCodec& codec, const MultiValueEntry& entry) {
  for (const LineDraft& draft : codec.encode(entry.value.get(), utf8Of(entry.label.get()))) {
    std::string text;
    vcard::appendLine(text, "", draft.name, draft.parameters, draft.value);
    const std::string card = "BEGIN:VCARD\r\n" + text + "END:VCARD\r\n";
    const vcard::Card parsed = vcard::parseCard(card);
    EntryLine line(parsed.lines[1], parsed.version);
    line.customLabel = vcard::trimmed(vcard::withUnixBreaks(draft.customLabel));
    line.country = draft.country;
    if (auto decoded = codec.decode(line)) return decoded;
  }
  return std::nullopt;
}

std::optional<Retained<NSObject>> refuse(const Property& property, const std::vector<NSString>& identifiers,
                                         const char* reason, NSError* error) {
  NSMutableArray list = NSMutableArray::array();
  for (const NSString identifier : identifiers) list.addObject(identifier);
  fail(error, ABPropertyValueValidationError, property.name + ": " + reason, ABMultiValueIdentifiersErrorKey, list);
  return std::nullopt;
}

std::optional<Retained<NSObject>> checkedMultiValue(const Property& property, const EntryCodec* codec, NSObject value,
                                                    NSError* error) {
  if (!value.isKindOfClass("ABMultiValue"_class)) raiseWrongType(property, value);
  const auto& given = objectOf(value.as<ABMultiValue>());
  if (given.entries.empty()) return Retained<NSObject>();

  const ABPropertyType type = property.type & ~kABMultiValueMask;
  std::vector<NSString> unfit;
  for (const MultiValueEntry& entry : given.entries) {
    if (!fits(type, elementTypeOf(entry.value.get()))) unfit.push_back(entry.identifier.get());
  }
  if (unfit.size() == given.entries.size()) raiseWrongType(property, given.entries.front().value.get());
  if (!unfit.empty()) return refuse(property, unfit, "the entries are of different types", error);

  std::vector<MultiValueEntry> entries = given.entries;
  for (MultiValueEntry& entry : entries) {
    std::optional<DecodedEntry> decoded;
    const bool isWritable = canBeWritten(entry.value.get());
    if (codec != nullptr && isWritable) decoded = readBack(*codec, entry);
    if (!decoded && (codec != nullptr || !isWritable)) unfit.push_back(entry.identifier.get());
    if (!decoded) continue;
    if (!send<bool>(entry.value.get(), "isEqual:"_sel, decoded->value.get())) entry.value = decoded->value;
    entry.label = Retained<NSString>::share(makeString(decoded->label));
  }
  if (!unfit.empty()) return refuse(property, unfit, "the entries can't be kept", error);
  return Retained<NSObject>::adopt(
      newMultiValue(std::move(entries), value.as<ABMultiValue>().primaryIdentifier(), property.type).leak());
}

// Fields of a structured line lose the blanks at their ends.
Retained<NSObject> checkedText(const Property& property, NSString value) {
  const std::string given = utf8Of(value);
  std::string text = vcard::withUnixBreaks(given);
  const bool isField = property.text != nullptr && property.text->field != kWholeValue;
  if (isField) text = vcard::trimmed(text);
  if (text.empty()) return {};
  if (text == given) return Retained<NSObject>::adopt(value.copy());
  return Retained<NSObject>::share(makeString(text));
}

}  // namespace

std::optional<Retained<NSObject>> checkedValue(const Property& property, NSObject value, NSError* error) {
  if (!value) return Retained<NSObject>();
  if ((property.type & kABMultiValueMask) != 0) {
    const std::optional<EntryCodec> codec = entryCodecFor(property);
    return checkedMultiValue(property, codec ? &*codec : nullptr, value, error);
  }
  if (!fits(property.type, elementTypeOf(value))) raiseWrongType(property, value);
  if (property.type == kABStringProperty) return checkedText(property, value.as<NSString>());
  if (!canBeWritten(value)) return refuse(property, {}, "the value holds what can't be kept", error);
  if (property.type == kABDateComponentsProperty && !property.isCustom && !dateOf(value.as<NSDateComponents>())) {
    return refuse(property, {}, "the date components are no day", error);
  }
  // What is read back from the text is a copy that nobody changes.
  if (property.isCustom) return valueFromText(property.type, typedText(value));
  if (property.type == kABDateComponentsProperty) return newDateComponents(*dateOf(value.as<NSDateComponents>()));
  return Retained<NSObject>::share(value);
}

}  // namespace contacts
