#include "picker/readable_text.h"

#include "platform/contacts/address_book.h"
#include "platform/foundation/calendar_date.h"
#include "platform/foundation/date_components.h"
#include "platform/objc/retained.h"

#include <array>
#include <cmath>
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
NSString dayText(NSInteger year, NSInteger month, NSInteger day) {
  constexpr NSInteger kUnknownYear = 1604;  // in dates
  std::array<char, 64> text{};
  if (year == NSUndefinedDateComponent || year == kUnknownYear) {
    std::snprintf(text.data(), text.size(), "--%02d-%02d", static_cast<int>(month), static_cast<int>(day));
  } else {
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", static_cast<int>(year), static_cast<int>(month),
                  static_cast<int>(day));
  }
  return NSString::stringWithUTF8String(text.data());
}

// A day without a time is kept as its noon GMT; of other dates the day on the spot counts.
NSString dateText(NSDate date) {
  constexpr NSTimeInterval kNoon = 43200;
  NSTimeInterval seconds = date.timeIntervalSinceReferenceDate();
  if (std::fmod(seconds - kNoon, 2 * kNoon) == 0) {
    seconds -= static_cast<NSTimeInterval>(NSTimeZone::localTimeZone().secondsFromGMTForDate(date));
  }
  const auto local =
      Retained<NSCalendarDate>::adopt(NSCalendarDate::alloc().initWithTimeIntervalSinceReferenceDate(seconds));
  return dayText(local->yearOfCommonEra(), local->monthOfYear(), local->dayOfMonth());
}

}  // namespace

NSString readableText(NSObject value) {
  if (value.isKindOfClass("NSString"_class)) return value.as<NSString>();
  if (value.isKindOfClass("NSDictionary"_class)) return dictionaryText(value.as<NSDictionary>());
  if (value.isKindOfClass("NSDateComponents"_class)) {
    const auto day = value.as<NSDateComponents>();
    return dayText(day.year(), day.month(), day.day());
  }
  if (value.isKindOfClass("NSDate"_class)) return dateText(value.as<NSDate>());
  return value.description();
}
