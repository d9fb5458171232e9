#pragma once

#include "platform/foundation/string.h"
#include "platform/objc/retained.h"

#include <atomic>
#include <string>
#include <string_view>

// Strings as Foundation itself sees them.
namespace foundation {

struct StringObject : objc::Object {
  StringObject() = default;
  StringObject(const StringObject&) = delete;
  StringObject& operator=(const StringObject&) = delete;
  ~StringObject();

  std::u16string units;
  // What UTF8String answered; made on demand.
  mutable std::atomic<const char*> utf8{nullptr};
};

struct MutableStringObject : StringObject {};

// Valid until the string goes or changes. The string isn't nil.
inline std::u16string_view unitsOf(NSString string) { return static_cast<const StringObject*>(string.get())->units; }

Retained<NSString> newString(std::u16string units);
// Autoreleased.
NSString makeString(std::u16string units);
// Bytes that are no UTF-8 give nil.
NSString makeString(std::string_view utf8);

void appendUnits(NSMutableString string, std::u16string_view units);
void setUnits(NSMutableString string, std::u16string units);

// The text in UTF-8, unpaired surrogates as U+FFFD; nil gives an empty text.
std::string utf8Of(NSString string);

}  // namespace foundation
