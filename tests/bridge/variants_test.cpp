#include "bridge/variants.h"

#include "bridge/property_values.h"
#include "bridge/variant_readers.h"
#include "bridge/wrappers.h"
#include "host/arrays.h"
#include "host/dictionaries.h"
#include "host/entries.h"
#include "host/objects.h"
#include "platform/contacts/address_book.h"
#include "platform/objc/retained.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using host::ElementType;

namespace {

NSObject converted(const host::Value& value) { return GetVariantAsNSObject(variantOf(value).get()); }

host::Value converted(NSObject object) { return take(NewVariantFromNSObject(object)); }

NSDate noon() { return NSCalendarDate::dateWithYear(2012, 7, 14, 12, 0, 0, nullptr); }

NSError anError() { return NSError::errorWithDomain("Domain"_ns, 7, nullptr); }

}  // namespace

TEST(VariantsToFoundation, GoByTheirTypeCodeAndPropertyValuesToo) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1")}};
  const auto people = host.shared("ABAddressBookVXR", "sharedAddressbook").call("people");
  constexpr const char* kAlike = "";
  struct Case {
    host::Value value;
    std::string expected;
    std::string property = kAlike;  // what a property's value is
  };
  for (const Case& given : std::vector<Case>{
           {5, "l 5"},
           {std::numeric_limits<std::int32_t>::min(), "l -2147483648"},
           {host::variantOfType(16, 7), "l 7"},
           {std::int64_t{1} << 40, "q 1099511627776"},
           {4294967295U, "q 4294967295"},
           {2.5F, "f 2.5"},
           {2.25, "d 2.25"},
           {true, "c 1", "l 1"},
           {false, "c 0", "l 0"},
           {host::variantOfType(11, 256), "c 0", "l 256"},  // only the lowest byte counts
           {"Zoë", "'Zoë'"},
           {"", "''", "nil"},
           {host::StringRef(), "''", "nil"},
           {host::date(2012, 7, 14, 9, 5, 7), "date 2012-7-14 9:5:7"},
           {host::memoryBlock("abc"), "data abc"},
           {host::memoryBlock(""), "nil"},
           {host::folderItem("/no-such-item"), "file:///no-such-item", "nil"},
           {host::dictionary({{"key", ""}}), "{'key'=''}"},
           {host::stringArray({"a"}), "['a']", "nil"},
           {people.at(0), "nil"},  // not without a wrapper for any object
           {host.make("ABMutableMultiValueVXR"), "nil", "ABMutableMultiValue"},
           {host::Value::adopt(REALnewInstance("ABMultiValueVXR")), "nil"},  // wraps nothing
           {host::Value::adopt(NewNSErrorVXR(anError())), "nil"},
           {host::Value::adopt(REALnewInstance("RuntimeException")), "nil"},
           {nullptr, "nil"},
       }) {
    EXPECT_EQ(shown(converted(given.value)), given.expected);
    EXPECT_EQ(shown(NewValue(variantOf(given.value).get(), kABStringProperty)),
              given.property == kAlike ? given.expected : given.property);
  }
  for (const int code : {0, 1, 6, 10, 12, 13, 14, 15, 17, 0x1000, 0x1001, 0x1006, 0x100A, 0x100C, 0x1010, -1}) {
    const host::Value variant = host::variantOfType(code, 1);
    EXPECT_FALSE(GetVariantAsNSObject(variant.object())) << code;
    EXPECT_FALSE(NewValue(variant.object(), kABStringProperty)) << code;
  }
  host::options().without = {"Variant.ObjectValue"};
  EXPECT_FALSE(NewValue(host::memoryBlock("abc").object(), kABStringProperty));
}

namespace {

void expectElements() {
  const host::Value date = host::date(2012, 7, 14, 12);
  const host::Value inner = host::objectArray({1, nullptr, "x"});
  struct Case {
    ElementType type;
    std::vector<host::Value> elements;
    std::string expected;
  };
  for (const Case& given : std::vector<Case>{
           {ElementType::int32, {1, -2}, "[l 1 l -2]"},
           {ElementType::int64, {std::int64_t{1} << 40, std::int64_t{-1}}, "[q 1099511627776 q -1]"},
           {ElementType::single, {1.5F}, "[f 1.5]"},
           {ElementType::real, {2.25, -0.5}, "[d 2.25 d -0.5]"},
           {ElementType::boolean, {true, false}, "[c 1 c 0]"},
           {ElementType::date, {date, nullptr, date}, "[date 2012-7-14 12:0:0 date 2012-7-14 12:0:0]"},
           {ElementType::string, {"a", "", "b"}, "['a' 'b']"},
           {ElementType::object, {inner, nullptr, "", host::memoryBlock(""), 2.5}, "[[l 1 'x'] '' d 2.5]"},
       }) {
    const auto full = converted(host::array(given.type, given.elements));
    EXPECT_EQ(shown(full), given.expected);
    const auto empty = converted(host::array(given.type, {}));
    EXPECT_EQ(shown(empty), "[]");
    EXPECT_TRUE(full.isKindOfClass("NSMutableArray"_class) && empty.isKindOfClass("NSMutableArray"_class));
    EXPECT_FALSE(NewValue(host::array(given.type, given.elements).object(), 0));
  }
}

}  // namespace

TEST(VariantsToFoundation, ReadElementsFromStorageWhereTheHostHasNoGetters) {
  const Host host{.without = {"RuntimeArrayDirectGetGetProc"}};
  expectElements();
}

TEST(VariantsToFoundation, LeaveOutElementsWithoutCounterpart) {
  const Host host{};
  expectElements();
  const host::Value dates = host::array(ElementType::date, {host::date(2012, 7, 14, 12)});
  host::options().without = {"Date.Minute"};
  EXPECT_EQ(shown(converted(dates)), "[]");
}

TEST(FoundationToVariants, GoByKind) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1")}};
  const std::string folder = "file://" + host.folder().native();
  const auto text = Retained<NSAttributedString>::adopt(NSAttributedString::alloc().initWithString("text"_ns));
  for (const auto& [object, expected] : std::vector<std::pair<NSObject, std::string>>{
           {NSNull::null(), "Nil"},
           {nullptr, "Nil"},
           {"Zoë"_ns, "'Zoë'"},
           {""_ns, "''"},
           {NSData::dataWithBytes("abc", 3), "block abc"},
           {NSData::dataWithBytes("", 0), "Nil"},
           {NSNumber::numberWithBool(true), "Boolean True"},
           {NSNumber::numberWithChar('A'), "Boolean True"},
           {NSNumber::numberWithUnsignedChar(200), "Integer 200"},
           {NSNumber::numberWithShort(-5), "Integer -5"},
           {NSNumber::numberWithUnsignedShort(65535), "Integer 65535"},
           {NSNumber::numberWithInt(-7), "Integer -7"},
           {NSNumber::numberWithUnsignedInt(4294967295U), "UInt32 4294967295"},
           {NSNumber::numberWithLong(-8), "Integer -8"},
           {NSNumber::numberWithUnsignedLong(4294967295U), "UInt32 4294967295"},
           {NSNumber::numberWithLongLong(1LL << 40), "Int64 1099511627776"},
           {NSNumber::numberWithUnsignedLongLong(1ULL << 40), "UInt64 1099511627776"},
           {NSNumber::numberWithUnsignedLongLong(1ULL << 63), "UInt64 9223372036854775808"},
           {NSNumber::numberWithFloat(2.5F), "Single 2.5"},
           {NSNumber::numberWithDouble(2.25), "Double 2.25"},
           {noon(), "Date 2012-07-14 12:00:00"},
           {dictionaryOf({{"key"_ns, noon()}}), "{'key'=Date 2012-07-14 12:00:00}"},
           {NSArray::array(), "[]"},
           {NSArray::arrayWithObjects({"a"_ns, NSNull::null(), NSArray::arrayWithObject("b"_ns)}), "['a' Nil ['b']]"},
           {NSURL::URLWithString(NSString::stringWithUTF8(folder + "/missing")), "item missing"},
           {NSURL::URLWithString(NSString::stringWithUTF8(folder + "/no/folder")), "'" + folder + "/no/folder'"},
           {NSURL::URLWithString("http://example.com/a%20b"_ns), "'http://example.com/a%20b'"},
           {ABAddressBook::sharedAddressBook().people().objectAtIndex(0), "ABPersonVXR"},
           {anError(), "NSErrorVXR"},
           {text.get(), "NSAttributedStringVXR"},
           {NSTimeZone::localTimeZone(), "Nil"},  // of no class that the host knows
       }) {
    EXPECT_EQ(shown(converted(object)), expected);
  }
  EXPECT_EQ(NewVariantFromNSObject(nullptr), nullptr);
}

namespace {

// Everything that the readers are asked for.
std::string allReaders() {
  const auto whole = variantOf(5);
  const auto wide = variantOf(std::int64_t{1} << 40);
  const auto real = variantOf(2.25);
  const auto text = variantOf("text");
  std::ostringstream read;
  read << GetVariantType(whole.get()) << ' ' << GetVariantType(nullptr) << ' '
       << shown(host::Value::adopt(GetVariantString(text.get()))) << ' ' << GetVariantInteger(whole.get()) << ' '
       << GetVariantLong(wide.get()) << ' ' << GetVariantSingle(real.get()) << ' ' << GetVariantDouble(real.get());
  return read.str();
}

constexpr const char* kAllRead = "2 0 'text' 5 1099511627776 2.25 2.25";
const std::vector<std::string> kFunctions{"VarType",        "VariantToString", "VariantToInt32",
                                          "VariantToInt64", "VariantToSingle", "VariantToDouble"};
const std::vector<std::string> kProperties{"Variant.Type",      "Variant.StringValue", "Variant.Int32Value",
                                           "Variant.LongValue", "Variant.SingleValue", "Variant.DoubleValue"};

}  // namespace

TEST(VariantReaders, AskTheHostsFunctionsFirst) {
  const Host host{.without = kProperties};
  EXPECT_EQ(allReaders(), kAllRead);
  host::options().without = kFunctions;
  EXPECT_EQ(allReaders(), kAllRead);  // once found they are kept
  EXPECT_EQ(GetVariantString(nullptr), nullptr);
}

TEST(VariantReaders, ReadPropertiesUntilTheHostHasTheFunctions) {
  const Host host{.without = kFunctions};
  EXPECT_EQ(allReaders(), kAllRead);
  auto& without = host::options().without;
  for (const std::string& property : kProperties) {
    without.push_back(property);
    EXPECT_NE(allReaders(), kAllRead) << property;
    without.pop_back();
  }
  without.insert(without.end(), kProperties.begin(), kProperties.end());
  EXPECT_EQ(allReaders(), "0 0 '' 0 0 0 0");
  without = kProperties;
  EXPECT_EQ(allReaders(), kAllRead);
}
