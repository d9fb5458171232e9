#include "platform/contacts/typed_text.h"

#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/encoding.h"
#include "platform/contacts/vcard/text.h"
#include "platform/foundation/array.h"
#include "platform/foundation/data.h"
#include "platform/foundation/date.h"
#include "platform/foundation/date_components.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>

namespace contacts {
namespace {

constexpr int kDeepest = 32;

bool canBeWritten(NSObject value, int depth) {
  const ABPropertyType type = elementTypeOf(value);
  if (type == kABArrayProperty || type == kABDictionaryProperty) {
    if (depth == kDeepest) return false;
    const bool isArray = type == kABArrayProperty;
    const NSArray items = isArray ? value.as<NSArray>() : value.as<NSDictionary>().allKeys();
    for (NSUInteger i = 0; i < items.count(); ++i) {
      const NSObject item = items.objectAtIndex(i);
      if (!isArray && elementTypeOf(item) != kABStringProperty) return false;
      if (!canBeWritten(isArray ? item : value.as<NSDictionary>().objectForKey(item), depth + 1)) return false;
    }
  }
  return type != kABErrorInProperty;
}

std::string realText(double number) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.17g", number);
  return text.data();
}

template <class Number>
std::optional<Number> numberIn(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// A container's items: each as its type, the length of its text, and the text.
void appendItem(std::string& text, NSObject item) {
  const std::string itemText = typedText(item);
  text += std::to_string(elementTypeOf(item)) + ":" + std::to_string(itemText.size()) + ":" + itemText;
}

std::optional<std::size_t> takeCount(std::string_view& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const std::optional<std::size_t> count = numberIn<std::size_t>(text.substr(0, colon));
  text.remove_prefix(colon + 1);
  return count;
}

Retained<NSObject> valueFromText(ABPropertyType type, std::string_view text, int depth);

Retained<NSObject> takeItem(std::string_view& text, int depth) {
  const std::optional<std::size_t> type = takeCount(text);
  const std::optional<std::size_t> length = type ? takeCount(text) : std::nullopt;
  if (!length || *length > text.size() || depth == kDeepest) return {};
  auto item = valueFromText(static_cast<ABPropertyType>(*type), text.substr(0, *length), depth + 1);
  text.remove_prefix(*length);
  return item;
}

Retained<NSObject> arrayFromText(std::string_view text, int depth) {
  NSMutableArray array = NSMutableArray::array();
  while (!text.empty()) {
    const Retained<NSObject> item = takeItem(text, depth);
    if (!item) return {};
    array.addObject(item.get());
  }
  return Retained<NSObject>::share(array);
}

Retained<NSObject> dictionaryFromText(std::string_view text, int depth) {
  NSMutableDictionary dictionary = NSMutableDictionary::dictionary();
  while (!text.empty()) {
    const Retained<NSObject> key = takeItem(text, depth);
    const Retained<NSObject> value = key ? takeItem(text, depth) : Retained<NSObject>();
    if (!value) return {};
    dictionary.setObject(value.get(), key.get());
  }
  return Retained<NSObject>::share(dictionary);
}

// "year,month,day", each empty when it is undefined.
std::string componentsText(NSDateComponents components) {
  std::string text;
  for (const NSInteger field : {components.year(), components.month(), components.day()}) {
    if (field != NSUndefinedDateComponent) text += std::to_string(field);
    text.push_back(',');
  }
  text.pop_back();
  return text;
}

Retained<NSObject> componentsFromText(std::string_view text) {
  const auto components = Retained<NSDateComponents>::adopt(NSDateComponents::alloc().init());
  void (NSDateComponents::*const setters[])(NSInteger)
      const = {&NSDateComponents::setYear, &NSDateComponents::setMonth, &NSDateComponents::setDay};
  for (const auto set : setters) {
    const std::string_view field = text.substr(0, text.find(','));
    if (!field.empty()) {
      const std::optional<NSInteger> number = numberIn<NSInteger>(field);
      if (!number) return {};
      (components.get().*set)(*number);
    }
    text.remove_prefix(std::min(field.size() + 1, text.size()));
  }
  return Retained<NSObject>::share(components.get());
}

Retained<NSObject> valueFromText(ABPropertyType type, std::string_view text, int depth) {
  auto number = [](auto value, auto make) {
    return value ? Retained<NSObject>::share(make(*value)) : Retained<NSObject>();
  };
  switch (type) {
    case kABStringProperty:
      return Retained<NSObject>::share(makeString(text));
    case kABIntegerProperty:
      // An integer property may hold a number with a fraction.
      if (const auto integer = numberIn<long long>(text)) return number(integer, NSNumber::numberWithLongLong);
      if (const auto integer = numberIn<unsigned long long>(text)) {
        return number(integer, NSNumber::numberWithUnsignedLongLong);
      }
      return number(numberIn<double>(text), NSNumber::numberWithDouble);
    case kABRealProperty:
      return number(numberIn<double>(text), NSNumber::numberWithDouble);
    case kABDateProperty:
      return number(numberIn<double>(text), NSDate::dateWithTimeIntervalSinceReferenceDate);
    case kABArrayProperty:
      return arrayFromText(text, depth);
    case kABDictionaryProperty:
      return dictionaryFromText(text, depth);
    case kABDataProperty: {
      const std::string bytes = vcard::decodeBase64(text);
      return Retained<NSObject>::share(NSData::dataWithBytes(bytes.data(), bytes.size()));
    }
    case kABDateComponentsProperty:
      return componentsFromText(text);
    default:
      return {};
  }
}

}  // namespace

bool canBeWritten(NSObject value) { return canBeWritten(value, 0); }

std::string typedText(NSObject value) {
  switch (elementTypeOf(value)) {
    case kABIntegerProperty: {
      const auto number = value.as<NSNumber>();
      const bool isLarge = number.longLongValue() < 0 && number.doubleValue() > 0;
      return isLarge ? std::to_string(number.unsignedLongLongValue()) : std::to_string(number.longLongValue());
    }
    case kABRealProperty:
      return realText(value.as<NSNumber>().doubleValue());
    case kABDateProperty:
      return realText(value.as<NSDate>().timeIntervalSinceReferenceDate());
    case kABArrayProperty: {
      std::string text;
      const auto array = value.as<NSArray>();
      for (NSUInteger i = 0; i < array.count(); ++i) appendItem(text, array.objectAtIndex(i));
      return text;
    }
    case kABDictionaryProperty: {
      std::string text;
      const auto dictionary = value.as<NSDictionary>();
      const NSArray keys = dictionary.allKeys();
      for (NSUInteger i = 0; i < keys.count(); ++i) {
        appendItem(text, keys.objectAtIndex(i));
        appendItem(text, dictionary.objectForKey(keys.objectAtIndex(i)));
      }
      return text;
    }
    case kABDataProperty: {
      const auto data = value.as<NSData>();
      return vcard::encodeBase64({static_cast<const char*>(data.bytes()), data.length()});
    }
    case kABDateComponentsProperty:
      return componentsText(value.as<NSDateComponents>());
    default:
      return vcard::withUnixBreaks(utf8Of(value.as<NSString>()));
  }
}

Retained<NSObject> valueFromText(ABPropertyType type, std::string_view text) { return valueFromText(type, text, 0); }

}  // namespace contacts
