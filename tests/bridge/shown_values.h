#pragma once

#include "bridge/collections.h"
#include "host/dates.h"
#include "host/folder_items.h"
#include "host/memory_blocks.h"
#include "host/variants.h"
#include "platform/foundation/calendar_date.h"
#include "platform/foundation/data.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/null.h"
#include "platform/foundation/number.h"
#include "platform/foundation/url.h"

#include <initializer_list>
#include <numeric>
#include <set>
#include <sstream>
#include <string>
#include <utility>

// Values of both sides as the tables of the tests write them.

inline NSDictionary dictionaryOf(std::initializer_list<std::pair<NSObject, NSObject>> entries) {
  auto dictionary = NSMutableDictionary::dictionary();
  for (const auto& [key, value] : entries) dictionary.setObject(value, key);
  return dictionary;
}

// What a conversion answered, its reference taken over.
inline host::Value take(REALvariant variant) { return host::fromVariant(host::ObjectRef::adopt(variant)); }

// A reference to the value as a variant.
inline host::ObjectRef variantOf(const host::Value& value) { return host::ObjectRef::adopt(host::newVariant(value)); }

inline std::string joined(const std::string& list, const std::string& item) {
  return list.empty() ? item : list + " " + item;
}

// Of a dictionary, whose keys come in no order that could be relied on.
inline std::string joined(const std::set<std::string>& entries) {
  return std::accumulate(entries.begin(), entries.end(), std::string(),
                         [](const std::string& list, const std::string& entry) { return joined(list, entry); });
}

// A number's C type goes before it: "l 5". Other objects by their class.
inline std::string shown(NSObject object) {
  if (!object) return "nil";
  if (object == NSNull::null()) return "null";
  std::ostringstream text;
  if (object.isKindOfClass("NSNumber"_class)) {
    const auto number = object.as<NSNumber>();
    text << number.objCType() << ' ' << number.description().UTF8String();
  } else if (object.isKindOfClass("NSString"_class)) {
    text << '\'' << object.as<NSString>().UTF8String() << '\'';
  } else if (object.isKindOfClass("NSData"_class)) {
    const auto data = object.as<NSData>();
    text << "data " << std::string_view(static_cast<const char*>(data.bytes()), data.length());
  } else if (object.isKindOfClass("NSCalendarDate"_class)) {
    const auto date = object.as<NSCalendarDate>();
    text << "date " << date.yearOfCommonEra() << '-' << date.monthOfYear() << '-' << date.dayOfMonth() << ' '
         << date.hourOfDay() << ':' << date.minuteOfHour() << ':' << date.secondOfMinute();
  } else if (object.isKindOfClass("NSURL"_class)) {
    text << object.as<NSURL>().absoluteString().UTF8String();
  } else if (object.isKindOfClass("NSArray"_class)) {
    std::string list;
    const auto array = object.as<NSArray>();
    for (NSUInteger i = 0; i < array.count(); ++i) list = joined(list, shown(array.objectAtIndex(i)));
    text << '[' << list << ']';
  } else if (object.isKindOfClass("NSDictionary"_class)) {
    std::set<std::string> entries;
    const auto dictionary = object.as<NSDictionary>();
    const NSArray keys = dictionary.allKeys();
    for (NSUInteger i = 0; i < keys.count(); ++i) {
      const NSObject key = keys.objectAtIndex(i);
      entries.insert(shown(key) + "=" + shown(dictionary.objectForKey(key)));
    }
    text << '{' << joined(entries) << '}';
  } else {
    text << object.objectClass().name();
  }
  return text.str();
}

// A scalar's type goes before it: "Integer 5". Other objects by their class.
inline std::string shown(const host::Value& value) {
  if (std::holds_alternative<host::StringRef>(value.data())) return "'" + value.text() + "'";
  std::ostringstream text;
  const std::string type = value.typeName();
  if (!std::holds_alternative<host::ObjectRef>(value.data())) {
    if (!value.isNil()) text << type << ' ';
    text << value;
  } else if (type == "Date") {
    text << "Date " << host::dateText(value.object());
  } else if (type == "MemoryBlock") {
    text << "block " << host::bytesOf(value);
  } else if (type == "FolderItem") {
    text << "item " << host::pathOf(value).filename().native();
  } else if (type == "Dictionary") {
    std::set<std::string> entries;
    for (std::int64_t i = 0; i < value.get("Count").integer(); ++i) {
      const host::Value key = value.call("Key", static_cast<int>(i));
      entries.insert(shown(key) + "=" + shown(value.call("Value", key)));
    }
    text << '{' << joined(entries) << '}';
  } else if (type.ends_with("()")) {
    std::string list;
    for (const host::Value& element : value.elements()) list = joined(list, shown(element));
    text << '[' << list << ']';
  } else {
    text << type;
  }
  return text.str();
}
