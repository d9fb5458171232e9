#include "platform/contacts/address_format.h"

#include "platform/contacts/constants.h"
#include "platform/contacts/localization.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/objc/retained.h"

#include <algorithm>
#include <array>
#include <string>

namespace contacts {
namespace {

// The letters of a layout stand for parts, all else for itself between two parts of a line that are there.
constexpr char kStreet = 'S';
constexpr char kCity = 'C';
constexpr char kState = 'A';
constexpr char kZip = 'Z';
constexpr char kCountry = 'K';

struct AddressFormat {
  std::string_view countries;  // each between blanks
  std::string_view layout;
  std::string_view city;  // what the parts are called where that isn't their usual name
  std::string_view state;
  std::string_view zip;
};

// The framework has codes of its own for some countries: uk, ja.
constexpr std::array kFormats{
    AddressFormat{" us ", "S\nC A Z\nK", "", "", ""},
    AddressFormat{" ca ", "S\nC A Z\nK", "", "Province", "Postal Code"},
    AddressFormat{" au ", "S\nC A Z\nK", "Suburb", "", "Postcode"},
    AddressFormat{" gb uk ie ", "S\nC\nA\nZ\nK", "Town", "County", "Postcode"},
    AddressFormat{" at be bg ch cs cz de dk ee fi fr gr hr il is li lt lu mc nl no pl pt ro rs se si sk tr yu ",
                  "S\nZ C\nK", "", "", "Postal Code"},
    AddressFormat{" it ", "S\nZ C A\nK", "", "Province", "Postal Code"},
    AddressFormat{" es ", "S\nZ C\nA\nK", "", "Province", "Postal Code"},
    AddressFormat{" ja jp ", "Z\nA C\nS\nK", "", "Prefecture", "Postal Code"},
};

std::string textFor(NSDictionary address, NSString key) {
  const NSObject value = address.objectForKey(key);
  if (!value || !value.isKindOfClass("NSString"_class)) return {};
  return std::string(vcard::trimmed(utf8Of(value.as<NSString>())));
}

const AddressFormat& formatFor(std::string_view countryCode) {
  const std::string word = " " + vcard::lowercased(countryCode) + " ";
  auto found = std::ranges::find_if(
      kFormats, [&](const AddressFormat& format) { return format.countries.find(word) != std::string_view::npos; });
  return found == kFormats.end() ? kFormats.front() : *found;
}

NSString keyFor(char part) {
  switch (part) {
    case kStreet:
      return kABAddressStreetKey;
    case kCity:
      return kABAddressCityKey;
    case kState:
      return kABAddressStateKey;
    case kZip:
      return kABAddressZIPKey;
    case kCountry:
      return kABAddressCountryKey;
    default:
      return nullptr;
  }
}

NSString nameFor(char part, const AddressFormat& format) {
  std::string_view name;
  if (part == kCity) name = format.city;
  if (part == kState) name = format.state;
  if (part == kZip) name = format.zip;
  return name.empty() ? localizedPropertyOrLabel(keyFor(part)) : makeString(name);
}

void append(NSMutableAttributedString text, const std::string& part, NSDictionary attributes) {
  const NSString string = makeString(part);  // may raise: before there is an object without owner
  const auto run = Retained<NSAttributedString>::adopt(NSAttributedString::alloc().initWithString(string, attributes));
  text.appendAttributedString(run.get());
}

}  // namespace

NSAttributedString formattedAddress(NSDictionary address, std::string_view defaultCountryCode) {
  const std::string code = textFor(address, kABAddressCountryCodeKey);
  const AddressFormat& format = formatFor(code.empty() ? defaultCountryCode : code);
  auto text = Retained<NSMutableAttributedString>::adopt(NSMutableAttributedString::alloc().init());
  std::string between;
  for (const char part : format.layout) {
    const NSString key = keyFor(part);
    if (!key) {
      // A line break is stronger than what was between parts that aren't there.
      if (part == '\n' || between != "\n") between.assign(1, part);
      continue;
    }
    const std::string value = textFor(address, key);
    if (value.empty()) continue;
    if (text->length() > 0) append(text.get(), between, nullptr);
    append(text.get(), value, NSDictionary::dictionaryWithObject(nameFor(part, format), key));
    between.clear();
  }
  return text.autorelease();
}

}  // namespace contacts
