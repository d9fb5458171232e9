#include "picker/readable_text.h"

#include "platform/contacts/address_book.h"
#include "platform/foundation/date_components.h"

#include <array>
#include <cstdio>

namespace {

// Names of accounts, as messages and social profiles have them.
constexpr std::array kAccountKeys{"InstantMessageUsername", "username", "url"};

// The formatted text of a postal address; empty for a dictionary that is none.
NSString addressText(NSDictionary fields) {
  auto book = ABAddressBook::sharedAddressBook();
  if (!book.respondsToSelector("formattedAddressFromDictionary:"_sel)) return nullptr;
  return book.formattedAddressFromDictionary(fields).string();
}

NSString dictionaryText(NSDictionary fields) {
  for (const char* key : kAccountKeys) {
    auto text = fields.objectForKey(NSString::stringWithUTF8String(key));
    if (text) return text.description();
  }
  NSString address = addressText(fields);
  return address.length() > 0 ? address : fields.description();
}

// Without a year where there is none: --12-09.
NSString dayText(NSDateComponents day) {
  std::array<char, 64> text{};
  if (day.year() == NSUndefinedDateComponent) {
    std::snprintf(text.data(), text.size(), "--%02d-%02d", static_cast<int>(day.month()), static_cast<int>(day.day()));
  } else {
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", static_cast<int>(day.year()),
                  static_cast<int>(day.month()), static_cast<int>(day.day()));
  }
  return NSString::stringWithUTF8String(text.data());
}

// A date's description starts with its day.
NSString dateText(NSObject date) {
  constexpr std::size_t kDayLength = 10;
  return NSString::stringWithUTF8(std::string_view(date.description().UTF8String()).substr(0, kDayLength));
}

}  // namespace

NSString readableText(NSObject value) {
  if (value.isKindOfClass("NSString"_class)) return value.as<NSString>();
  if (value.isKindOfClass("NSDictionary"_class)) return dictionaryText(value.as<NSDictionary>());
  if (value.isKindOfClass("NSDateComponents"_class)) return dayText(value.as<NSDateComponents>());
  if (value.isKindOfClass("NSDate"_class)) return dateText(value);
  return value.description();
}
