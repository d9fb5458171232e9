#include "platform/contacts/people_picker/values.h"

#include "platform/contacts/address_book.h"
#include "platform/contacts/date_values.h"
#include "platform/contacts/localization.h"
#include "platform/contacts/multi_value.h"
#include "platform/contacts/people_picker/names.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/date.h"
#include "platform/foundation/date_components.h"

namespace contacts {
namespace {

// The lines of a text, one after the other.
std::u16string onOneLine(std::u16string_view text) {
  std::u16string line;
  for (const char16_t unit : text) {
    if (unit == u'\n') {
      line += u", ";
    } else {
      line += unit;
    }
  }
  return line;
}

// What names the account of a message or profile; else the texts of all fields.
std::u16string textOfFields(NSDictionary fields) {
  for (const NSString key : {kABInstantMessageUsernameKey, kABSocialProfileUsernameKey, kABSocialProfileURLKey}) {
    if (const NSObject text = fields.objectForKey(key)) return unitsOf(text.description());
  }
  std::u16string all;
  const NSArray keys = fields.allKeys();
  for (NSUInteger i = 0; i < keys.count(); ++i) {
    if (!all.empty()) all += u'\n';
    all += unitsOf(fields.objectForKey(keys.objectAtIndex(i)).description());
  }
  return all;
}

std::u16string textOfDictionary(NSDictionary fields) {
  const ABAddressBook book = pickerBook();
  for (const NSString key :
       {kABAddressStreetKey, kABAddressCityKey, kABAddressStateKey, kABAddressZIPKey, kABAddressCountryKey}) {
    if (!fields.objectForKey(key)) continue;
    if (!book.respondsToSelector("formattedAddressFromDictionary:"_sel)) break;
    return unitsOf(book.formattedAddressFromDictionary(fields).string());
  }
  return textOfFields(fields);
}

std::u16string textOfDay(const vcard::Date& day) {
  const std::string text = vcard::formatDate(day);
  return {text.begin(), text.end()};
}

std::u16string shownText(NSObject value) {
  if (value.isKindOfClass("NSString"_class)) return unitsOf(value.as<NSString>());
  if (value.isKindOfClass("NSDictionary"_class)) return textOfDictionary(value.as<NSDictionary>());
  if (value.isKindOfClass("NSDate"_class)) return textOfDay(dayOf(value.as<NSDate>()));
  if (value.isKindOfClass("NSDateComponents"_class)) {
    if (const auto day = dateOf(value.as<NSDateComponents>())) return textOfDay(*day);
  }
  return unitsOf(value.description());
}

}  // namespace

std::vector<PickerValue> valuesOf(ABRecord record, const std::string& property) {
  std::vector<PickerValue> values;
  if (property.empty()) return values;
  const NSObject value = record.valueForProperty(makeString(property));
  if (!value) return values;
  if (!value.isKindOfClass("ABMultiValue"_class)) return {{{}, {}, onOneLine(shownText(value))}};
  const auto entries = value.as<ABMultiValue>();
  for (NSUInteger i = 0; i < entries.count(); ++i) {
    values.push_back({utf8Of(entries.identifierAtIndex(i)), unitsOf(localizedPropertyOrLabel(entries.labelAtIndex(i))),
                      onOneLine(shownText(entries.valueAtIndex(i)))});
  }
  return values;
}

}  // namespace contacts
