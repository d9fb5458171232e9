#pragma once

#include "platform/foundation/cf_base.h"
#include "platform/foundation/range.h"
#include "platform/objc/send.h"

#include <atomic>
#include <concepts>
#include <string_view>

using NSComparisonResult = NSInteger;
inline constexpr NSComparisonResult NSOrderedAscending = -1;
inline constexpr NSComparisonResult NSOrderedSame = 0;
inline constexpr NSComparisonResult NSOrderedDescending = 1;

class NSMutableString;

// Text, held as UTF-16: lengths and positions count UTF-16 units. Surrogates need not be paired.
class NSString : public NSObject {
 public:
  using NSObject::NSObject;

  static NSString string() { return send<NSString>("NSString"_class, "string"_sel); }
  // Nil for bytes that are no strict UTF-8.
  static NSString stringWithUTF8String(const char* text) {
    return send<NSString>("NSString"_class, "stringWithUTF8String:"_sel, text);
  }
  // As stringWithUTF8String, for text of a known length, which may hold zero bytes.
  static NSString stringWithUTF8(std::string_view text) {
    return send<NSString>("NSString"_class, "stringWithUTF8Bytes:length:"_sel, text.data(), NSUInteger{text.size()});
  }
  static NSString stringWithCharacters(const char16_t* characters, NSUInteger length) {
    return send<NSString>("NSString"_class, "stringWithCharacters:length:"_sel, characters, length);
  }
  // The format with each %@ replaced by the next argument's description ("(null)" for nil) and %% by a percent sign.
  template <std::convertible_to<NSObject>... Arguments>
  static NSString stringWithFormat(NSString format, Arguments... arguments) {
    const NSObject list[] = {NSObject(arguments)..., NSObject()};
    return send<NSString>("NSString"_class, "stringWithFormat:arguments:count:"_sel, format,
                          static_cast<const NSObject*>(list), NSUInteger{sizeof...(arguments)});
  }

  [[nodiscard]] NSUInteger length() const { return send<NSUInteger>(*this, "length"_sel); }
  // Raises NSRangeException beyond the end, and so do the others that take a position.
  [[nodiscard]] char16_t characterAtIndex(NSUInteger index) const {
    return send<char16_t>(*this, "characterAtIndex:"_sel, index);
  }
  // Copies the range's units; no terminator is added.
  void getCharacters(char16_t* buffer, NSRange range) const {
    send<void>(*this, "getCharacters:range:"_sel, buffer, range);
  }
  // The text in UTF-8, unpaired surrogates as U+FFFD. It lives as long as the string does, or until it changes.
  [[nodiscard]] const char* UTF8String() const { return send<const char*>(*this, "UTF8String"_sel); }

  [[nodiscard]] bool isEqualToString(NSString other) const { return send<bool>(*this, "isEqualToString:"_sel, other); }
  // By UTF-16 unit.
  [[nodiscard]] NSComparisonResult compare(NSString other) const {
    return send<NSComparisonResult>(*this, "compare:"_sel, other);
  }

  // The caller owns the result. A copy of an immutable string is the string itself.
  [[nodiscard]] NSString copy() const { return send<NSString>(*this, "copy"_sel); }
  [[nodiscard]] inline NSMutableString mutableCopy() const;
};

class NSMutableString : public NSString {
 public:
  using NSString::NSString;

  static NSMutableString string() { return send<NSMutableString>("NSMutableString"_class, "string"_sel); }

  void appendString(NSString text) const { send<void>(*this, "appendString:"_sel, text); }
  template <std::convertible_to<NSObject>... Arguments>
  void appendFormat(NSString format, Arguments... arguments) const {
    const NSObject list[] = {NSObject(arguments)..., NSObject()};
    send<void>(*this, "appendFormat:arguments:count:"_sel, format, static_cast<const NSObject*>(list),
               NSUInteger{sizeof...(arguments)});
  }
  void deleteCharactersInRange(NSRange range) const { send<void>(*this, "deleteCharactersInRange:"_sel, range); }
};

inline NSMutableString NSString::mutableCopy() const { return send<NSMutableString>(*this, "mutableCopy"_sel); }

inline NSString NSObject::description() const { return send<NSString>(*this, "description"_sel); }

extern "C" {
// The one immortal string of that UTF-8 text, made at the first call.
PLATFORM_API objc::Object* NSConstantString(const char* text);
}

// The string of a literal, once it is made. Not a variable of the function's own: clang 14 breaks on those within
// braces.
template <FixedString Text>
inline constinit std::atomic<objc::Object*> madeConstantString{nullptr};

// A constant string; nil while there is no platform.
template <FixedString Text>
NSString operator""_ns() {
  std::atomic<objc::Object*>& made = madeConstantString<Text>;
  objc::Object* string = made.load(std::memory_order_acquire);
  if (string == nullptr && PLATFORM_HAS(NSConstantString)) {
    string = NSConstantString(Text.text);
    made.store(string, std::memory_order_release);
  }
  return NSString(string);
}
