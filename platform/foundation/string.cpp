#include "platform/foundation/string.h"

#include "platform/foundation/exception.h"
#include "platform/foundation/format.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/foundation/utf8.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <utility>

namespace {

using foundation::MutableStringObject;
using foundation::StringObject;
using foundation::unitsOf;

Retained<NSString> newStringOf(Class stringClass, std::u16string&& units) {
  auto* made = objc::createInstance<StringObject>(stringClass);
  made->units = std::move(units);
  return Retained<NSString>::adopt(NSString(made));
}

// Autoreleased; nil for what could not be decoded.
NSString makeStringOf(Class stringClass, std::optional<std::u16string>&& units) {
  return units ? newStringOf(stringClass, *std::move(units)).autorelease() : nullptr;
}

// A mutable string's object, about to be changed.
MutableStringObject& changing(NSMutableString string) {
  auto& object = *static_cast<MutableStringObject*>(string.get());
  delete[] object.utf8.exchange(nullptr);
  return object;
}

void checkRange(NSString receiver, const char* selector, NSRange range) {
  const NSUInteger length = unitsOf(receiver).size();
  if (range.location <= length && range.length <= length - range.location) return;
  NSException::raise(NSRangeException, std::string("-[") + receiver.objectClass().name() + " " + selector +
                                           "]: " + std::to_string(range.length) + " units from " +
                                           std::to_string(range.location) + " of a string of " +
                                           std::to_string(length));
}

NSString emptyString(Class receiver) { return makeStringOf(receiver, std::u16string()); }

NSString stringWithUTF8Bytes(Class receiver, const char* text, NSUInteger length) {
  return makeStringOf(receiver, foundation::decodeUtf8({text, length}));
}

NSString stringWithUTF8String(Class receiver, const char* text) {
  if (text == nullptr) NSException::raise(NSInvalidArgumentException, "stringWithUTF8String: the text is null");
  return makeStringOf(receiver, foundation::decodeUtf8(text));
}

NSString stringWithCharacters(Class receiver, const char16_t* characters, NSUInteger length) {
  return makeStringOf(receiver, std::u16string(characters, length));
}

NSString stringWithFormat(Class receiver, NSString format, const NSObject* arguments, NSUInteger count) {
  return makeStringOf(receiver, foundation::formatted(format, arguments, count));
}

NSUInteger lengthOf(NSString receiver) { return unitsOf(receiver).size(); }

char16_t characterAtIndex(NSString receiver, NSUInteger index) {
  checkRange(receiver, "characterAtIndex:", {index, 1});
  return unitsOf(receiver)[index];
}

void getCharacters(NSString receiver, char16_t* buffer, NSRange range) {
  checkRange(receiver, "getCharacters:range:", range);
  std::ranges::copy(unitsOf(receiver).substr(range.location, range.length), buffer);
}

const char* utf8String(NSString receiver) {
  const auto& object = *static_cast<const StringObject*>(receiver.get());
  if (const char* made = object.utf8.load(std::memory_order_acquire)) return made;
  const std::string bytes = foundation::encodeUtf8Lossily(object.units);
  auto copy = std::make_unique<char[]>(bytes.size() + 1);
  std::ranges::copy(bytes, copy.get());
  // Another thread may have been first; its bytes are the same.
  const char* expected = nullptr;
  return object.utf8.compare_exchange_strong(expected, copy.get()) ? copy.release() : expected;
}

bool isEqualToString(NSString receiver, NSString other) { return other && unitsOf(receiver) == unitsOf(other); }

bool isEqualTo(NSString receiver, NSObject other) {
  return receiver == other ||
         (other && other.isKindOfClass("NSString"_class) && isEqualToString(receiver, other.as<NSString>()));
}

NSComparisonResult compare(NSString receiver, NSString other) {
  if (!other) NSException::raise(NSInvalidArgumentException, "-[NSString compare:]: the other string is nil");
  const auto order = unitsOf(receiver) <=> unitsOf(other);
  return order < 0 ? NSOrderedAscending : order > 0 ? NSOrderedDescending : NSOrderedSame;
}

NSUInteger hashOf(NSString receiver) { return std::hash<std::u16string_view>{}(unitsOf(receiver)); }

NSString describe(NSString receiver) { return receiver; }

NSString copyImmutable(NSString receiver) { return Retained<NSString>::share(receiver).leak(); }

NSString copyMutable(NSMutableString receiver) {
  return foundation::newString(std::u16string(unitsOf(receiver))).leak();
}

NSMutableString mutableCopy(NSString receiver) {
  return newStringOf("NSMutableString"_class, std::u16string(unitsOf(receiver))).leak().as<NSMutableString>();
}

void appendString(NSMutableString receiver, NSString text) {
  if (!text) NSException::raise(NSInvalidArgumentException, "-[NSMutableString appendString:]: the text is nil");
  foundation::appendUnits(receiver, unitsOf(text));
}

void appendFormat(NSMutableString receiver, NSString format, const NSObject* arguments, NSUInteger count) {
  foundation::appendUnits(receiver, foundation::formatted(format, arguments, count));
}

void deleteCharactersInRange(NSMutableString receiver, NSRange range) {
  checkRange(receiver, "deleteCharactersInRange:", range);
  changing(receiver).units.erase(range.location, range.length);
}

struct ConstantTable {
  std::mutex lock;
  std::unordered_map<std::u16string_view, objc::Object*> strings;
};

// Never destroyed, like the strings in it.
ConstantTable& constantTable() {
  static auto* table = new ConstantTable;
  return *table;
}

}  // namespace

foundation::StringObject::~StringObject() { delete[] utf8.load(); }

Retained<NSString> foundation::newString(std::u16string units) {
  return newStringOf("NSString"_class, std::move(units));
}

NSString foundation::makeString(std::u16string units) { return newString(std::move(units)).autorelease(); }

NSString foundation::makeString(std::string_view utf8) { return makeStringOf("NSString"_class, decodeUtf8(utf8)); }

void foundation::appendUnits(NSMutableString string, std::u16string_view units) { changing(string).units += units; }

void foundation::setUnits(NSMutableString string, std::u16string units) { changing(string).units = std::move(units); }

std::string foundation::utf8Of(NSString string) { return string ? encodeUtf8Lossily(unitsOf(string)) : std::string(); }

objc::Object* NSConstantString(const char* text) {
  foundation::load();
  std::u16string units = foundation::decodeUtf8(text).value();
  ConstantTable& table = constantTable();
  const std::scoped_lock guard(table.lock);
  if (auto found = table.strings.find(units); found != table.strings.end()) return found->second;
  objc::Object* made = foundation::newString(std::move(units)).leak().get();
  objc_makeImmortal(made);
  table.strings.emplace(unitsOf(NSString(made)), made);
  return made;
}

void foundation::registerString() {
  objc::ClassBuilder::define<StringObject>("NSString", "NSObject")
      .classMethod<&emptyString>("string")
      .classMethod<&stringWithUTF8String>("stringWithUTF8String:")
      .classMethod<&stringWithUTF8Bytes>("stringWithUTF8Bytes:length:")
      .classMethod<&stringWithCharacters>("stringWithCharacters:length:")
      .classMethod<&stringWithFormat>("stringWithFormat:arguments:count:")
      .method<&lengthOf>("length")
      .method<&characterAtIndex>("characterAtIndex:")
      .method<&getCharacters>("getCharacters:range:")
      .method<&utf8String>("UTF8String")
      .method<&isEqualTo>("isEqual:")
      .method<&isEqualToString>("isEqualToString:")
      .method<&compare>("compare:")
      .method<&hashOf>("hash")
      .method<&describe>("description")
      .method<&copyImmutable>("copy")
      .method<&mutableCopy>("mutableCopy");
  objc::ClassBuilder::define<MutableStringObject>("NSMutableString", "NSString")
      .method<&appendString>("appendString:")
      .method<&appendFormat>("appendFormat:arguments:count:")
      .method<&deleteCharactersInRange>("deleteCharactersInRange:")
      .method<&copyMutable>("copy");
}
