#pragma once

#include "platform/contacts/multi_value.h"
#include "platform/contacts/record.h"
#include "platform/foundation/array.h"
#include "platform/foundation/data.h"
#include "platform/foundation/date.h"
#include "platform/foundation/date_components.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/number.h"
#include "platform/objc/retained.h"

#include <string>

// Values as tests compare them: a dictionary as {key=value ...}, a multi-value as [label=value ...] with a star before
// its primary entry, built-in labels without their wrapper.
inline std::string shown(NSObject value) {
  if (!value) return "nil";
  if (value.isKindOfClass("NSString"_class)) return value.as<NSString>().UTF8String();
  if (value.isKindOfClass("NSData"_class)) {
    const auto data = value.as<NSData>();
    return {static_cast<const char*>(data.bytes()), data.length()};
  }
  if (value.isKindOfClass("NSDateComponents"_class)) {
    const auto components = value.as<NSDateComponents>();
    std::string text;
    for (const NSInteger field : {components.year(), components.month(), components.day()}) {
      text += (text.empty() ? "" : "-") + (field == NSUndefinedDateComponent ? "?" : std::to_string(field));
    }
    return text;
  }
  std::string text;
  if (value.isKindOfClass("NSArray"_class)) {
    for (NSUInteger i = 0; i < value.as<NSArray>().count(); ++i) {
      text += (i == 0 ? "" : " ") + shown(value.as<NSArray>().objectAtIndex(i));
    }
    return "(" + text + ")";
  }
  if (value.isKindOfClass("NSDictionary"_class)) {
    const NSArray keys = value.as<NSDictionary>().allKeys();
    for (NSUInteger i = 0; i < keys.count(); ++i) {
      const NSObject key = keys.objectAtIndex(i);
      text += (i == 0 ? "" : " ") + shown(key) + "=" + shown(value.as<NSDictionary>().objectForKey(key));
    }
    return "{" + text + "}";
  }
  if (!value.isKindOfClass("ABMultiValue"_class)) return value.description().UTF8String();
  const auto multiValue = value.as<ABMultiValue>();
  for (NSUInteger i = 0; i < multiValue.count(); ++i) {
    std::string label = multiValue.labelAtIndex(i).UTF8String();
    if (label.starts_with("_$!<")) label = label.substr(4, label.size() - 8);
    const bool isPrimary = multiValue.identifierAtIndex(i).isEqualToString(multiValue.primaryIdentifier());
    text += (i == 0 ? "" : " ") + std::string(isPrimary ? "*" : "") + label + "=" + shown(multiValue.valueAtIndex(i));
  }
  return "[" + text + "]";
}

inline Retained<ABMutableMultiValue> newMultiValue() {
  return Retained<ABMutableMultiValue>::adopt(ABMutableMultiValue::alloc().init());
}

inline std::string shown(ABRecord record, const char* property) {
  return shown(record.valueForProperty(NSString::stringWithUTF8(property)));
}
