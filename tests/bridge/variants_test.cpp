#include "bridge/variants.h"

#include "bridge/property_values.h"
#include "bridge/variant_readers.h"
#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "host/arrays.h"
#include "host/dictionaries.h"
#include "host/entries.h"
#include "host/objects.h"
#include "platform/contacts/address_book.h"
#include "platform/foundation/exception.h"
#include "platform/objc/instrumentation.h"
#include "platform/objc/retained.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <functional>
#include <limits>
#include <string_view>
#include <vector>

using host::ElementType;

namespace {

NSObject converted(const host::Value& value) { return GetVariantAsNSObject(variantOf(value).get()); }

host::Value converted(NSObject object) { return take(NewVariantFromNSObject(object)); }

NSDictionary dictionaryOf(std::initializer_list<std::pair<NSObject, NSObject>> entries) {
  auto dictionary = NSMutableDictionary::dictionary();
  for (const auto& [key, value] : entries) dictionary.setObject(value, key);
  return dictionary;
}

NSDate noon() { return NSCalendarDate::dateWithYear(2012, 7, 14, 12, 0, 0, nullptr); }

NSError anError() { return NSError::errorWithDomain("Domain"_ns, 7, nullptr); }

}  // namespace

TEST(VariantsToFoundation, GoByTheirTypeCode) {
  const Host host{};
  const auto error = host::Value::adopt(NewNSErrorVXR(anError()));
  struct Case {
    host::Value value;
    std::string expected;
  };
  for (const Case& given : std::vector<Case>{
           {5, "l 5"},
           {std::numeric_limits<std::int32_t>::min(), "l -2147483648"},
           {host::variantOfType(16, 7), "l 7"},
           {std::int64_t{1} << 40, "q 1099511627776"},
           {4294967295U, "q 4294967295"},
           {2.5F, "f 2.5"},
           {2.25, "d 2.25"},
           {true, "c 1"},
           {false, "c 0"},
           {host::variantOfType(11, 256), "c 0"},  // only the lowest byte counts
           {"Zoë", "'Zoë'"},
           {"", "''"},
           {host::StringRef(), "''"},
           {host::date(2012, 7, 14, 9, 5, 7), "date 2012-7-14 9:5:7"},
           {host::memoryBlock("abc"), "data abc"},
           {host::memoryBlock(""), "nil"},
           {host::folderItem("/no-such-item"), "file:///no-such-item"},
           {host::dictionary({{"key", ""}}), "{'key'=''}"},
           {host.make("ABPersonVXR"), "nil"},  // not without a wrapper for any object
           {error, "nil"},
           {nullptr, "nil"},
       }) {
    EXPECT_EQ(shown(converted(given.value)), given.expected);
  }
}

TEST(VariantsToFoundation, LeaveOutElementsWithoutCounterpart) {
  const Host host{};
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
  const host::Value dates = host::array(ElementType::date, {date});
  host::options().without = {"Date.Minute"};
  EXPECT_EQ(shown(converted(dates)), "[]");
}

TEST(VariantsToFoundation, HaveNoOtherTypes) {
  const Host host{};
  for (const int code : {0, 1, 6, 10, 12, 13, 14, 15, 17, 0x1000, 0x1001, 0x1006, 0x100A, 0x100C, 0x1010, -1}) {
    const host::Value variant = host::variantOfType(code, 1);
    EXPECT_FALSE(GetVariantAsNSObject(variant.object())) << code;
    EXPECT_FALSE(NewValue(variant.object(), 0)) << code;
  }
}

TEST(FoundationToVariants, GoByKind) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1")}};
  const std::string folder = "file://" + host.folder().native();
  const auto text = Retained<NSAttributedString>::adopt(NSAttributedString::alloc().initWithString("text"_ns));
  struct Case {
    NSObject object;
    std::string expected;
  };
  for (const Case& given : std::vector<Case>{
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
    EXPECT_EQ(shown(converted(given.object)), given.expected);
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
  for (std::size_t i = 0; i < kFunctions.size(); ++i) {
    host::options().without = kFunctions;
    host::options().without.push_back(kProperties[i]);
    EXPECT_NE(allReaders(), kAllRead) << kProperties[i];
  }
  host::options().without = kFunctions;
  host::options().without.insert(host::options().without.end(), kProperties.begin(), kProperties.end());
  EXPECT_EQ(allReaders(), "0 0 '' 0 0 0 0");
  host::options().without = kProperties;
  EXPECT_EQ(allReaders(), kAllRead);
}

TEST(FoundationToVariants, AreCompleteButForTheInstanceThatFails) {
  const Host host{};
  const NSDictionary inner = dictionaryOf({{"date"_ns, noon()}, {"text"_ns, "x"_ns}});
  const NSDictionary source =
      dictionaryOf({{"in"_ns, inner}, {"list"_ns, NSArray::arrayWithObjects({anError(), inner})}});
  const std::string date = "Date 2012-07-14 12:00:00";
  const std::string whole = "{'date'=" + date + " 'text'='x'}";
  const std::string dateless = "{'date'=Nil 'text'='x'}";
  const std::vector<std::string> expected{
      "Nil",
      "{'in'=Nil 'list'=[NSErrorVXR " + whole + "]}",
      "{'in'=" + dateless + " 'list'=[NSErrorVXR " + whole + "]}",
      "{'in'=" + whole + " 'list'=[Nil " + whole + "]}",
      "{'in'=" + whole + " 'list'=[NSErrorVXR Nil]}",
      "{'in'=" + whole + " 'list'=[NSErrorVXR " + dateless + "]}",
      "{'in'=" + whole + " 'list'=[NSErrorVXR " + whole + "]}",
  };
  for (std::size_t i = 0; i < expected.size(); ++i) {
    host::failNewInstance(static_cast<int>(i) + 1);
    EXPECT_EQ(shown(converted(source)), expected[i]) << i;
    EXPECT_EQ(host::liveReport(), "") << i;
  }
  host::failNewInstance(0);

  const auto blocks = NSArray::arrayWithObjects({NSData::dataWithBytes("a", 1), NSData::dataWithBytes("b", 1)});
  for (const auto& [nth, list] : {std::pair(1, "[Nil block b]"), std::pair(2, "[block a Nil]")}) {
    host::failMemoryBlock(nth);
    EXPECT_EQ(shown(converted(blocks)), list);
    EXPECT_TRUE(host::takePendingException());
  }
}

TEST(FoundationToVariants, AreNothingWithoutTheHostsArrays) {
  const Host host{.without = {"RuntimeArrayCreateSingleDimBoundedArray"}};
  EXPECT_EQ(NewVariantFromNSObject(NSArray::arrayWithObject("a"_ns)), nullptr);
}

namespace {

int sendsToFailure = 0;

// What an initialiser is sent to is nobody's until it returns. That of dates looks the time zone up.
bool isPartOfInitialiser(objc::Object* receiver, objc::Selector selector) {
  return std::string_view(sel_getName(selector)).starts_with("init") || NSObject(receiver) == "NSTimeZone"_class;
}

// Runs the action over and over, each time with a later send that raises, until none is left; answers how many raised.
template <class Action>
int failEachSend(Action action) {
  for (int nth = 1;; ++nth) {
    const auto hostBefore = host::liveReport();
    const auto platformBefore = liveObjects();
    bool didRaise = false;
    {
      const host::PluginScope scope;
      sendsToFailure = nth;
      objc_setSendHook([](objc::Object* receiver, objc::Selector selector) {
        if (isPartOfInitialiser(receiver, selector)) return;
        if (sendsToFailure > 0 && --sendsToFailure == 0) NSException::raise("Failure"_ns, "of a send");
      });
      try {
        action();
      } catch (const NSException&) {
        didRaise = true;
      }
      objc_setSendHook(nullptr);
    }
    EXPECT_EQ(host::liveReport(), hostBefore) << nth;
    EXPECT_EQ(liveObjects(), platformBefore) << nth;
    if (!didRaise) return nth - 1;
  }
}

}  // namespace

TEST(Variants, LeaveNothingWhenASendRaises) {
  const Host host{};
  const host::Value date = host::date(2012, 7, 14);
  const host::Value source = host::dictionary(
      {{"in", host::dictionary({{"date", date}, {nullptr, "no key"}})},
       {"list", host::objectArray({1, "x", 2.5, true, date, host::memoryBlock("abc"), host::stringArray({"a"})})}});
  EXPECT_GT(failEachSend([&] { (void)GetVariantAsNSObject(source.object()); }), 20);
  const NSObject back = GetVariantAsNSObject(source.object());
  EXPECT_GT(failEachSend([&] { (void)converted(back); }), 50);
}

namespace {

template <class Body>
std::string reasonRaised(Body body) {
  try {
    body();
  } catch (const NSException& exception) {
    return exception.name().UTF8String() + std::string(": ") + exception.reason().UTF8String();
  }
  return "nothing raised";
}

constexpr const char* kTooDeep =
    "NSInvalidArgumentException: a value nested more than 256 levels deep can't be converted";

}  // namespace

TEST(VariantCycles, RaiseAndLeaveNothing) {
  const Host host{};
  const host::Value entries = host::dictionary({});
  const host::Value list = host::objectArray({1, entries});
  const auto foundation = NSMutableDictionary::dictionary();
  for (const host::Value& inCycle : {entries, list}) {
    entries.assign("Value", "self", inCycle);
    EXPECT_EQ(reasonRaised([&] { converted(inCycle); }), kTooDeep);
    const host::Value values = host.make("ABMutableMultiValueVXR");
    EXPECT_EQ(thrownBy([&] { values.call("addValue", entries, "label"); }),
              "NSExceptionVXR: A Cocoa NSInvalidArgumentException was not handled: a value nested more than 256 levels "
              "deep can't be converted");
    entries.call("Remove", "self");
  }
  host::insertAt(list.object(), 0, list);
  EXPECT_EQ(reasonRaised([&] { converted(list); }), kTooDeep);
  static_cast<REALobject*>(host::header(list.object()).storage)[0] = nullptr;
  host::unlock(list.object());

  foundation.setObject(NSArray::arrayWithObject(foundation), "self"_ns);
  EXPECT_EQ(reasonRaised([&] { converted(foundation); }), kTooDeep);
  foundation.removeObjectForKey("self"_ns);
}

TEST(Variants, OfDepth256AreConvertedAndNoDeeper) {
  const Host host{};
  const auto nested = [](int depth) {
    host::Value list = host::objectArray({});
    for (int i = 1; i < depth; ++i) list = host::objectArray({list});
    return list;
  };
  const NSObject deepest = converted(nested(256));
  EXPECT_EQ(shown(deepest).size(), 512U);
  EXPECT_EQ(shown(converted(deepest)).size(), 512U);
  EXPECT_EQ(reasonRaised([&] { converted(nested(257)); }), kTooDeep);
  EXPECT_EQ(reasonRaised([&] { converted(NSArray::arrayWithObject(deepest)); }), kTooDeep);
  EXPECT_TRUE(converted(nested(256)));  // the failures left no trace
}

namespace {

double bestOf3(const std::function<void()>& action) {
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i < 3; ++i) {
    const host::PluginScope scope;
    const std::clock_t start = std::clock();
    action();
    best = std::min(best, static_cast<double>(std::clock() - start));
  }
  return best;
}

}  // namespace

TEST(Variants, CostTheSameForEachElement) {
  const Host host{};
  const auto costs = [](int count) {
    auto array = host::Value::adopt(REALCreateArrayObject(-1));
    auto entries = host::dictionary({});
    for (int i = 0; i < count; ++i) {
      host::insertAt(array.object(), i, i);
      entries.assign("Value", i, i);
    }
    const auto list = Retained<NSObject>::share(converted(array));
    const auto dictionary = Retained<NSObject>::share(converted(entries));
    EXPECT_EQ(list.get().as<NSArray>().count(), static_cast<NSUInteger>(count));
    return std::array{bestOf3([&] { (void)converted(array); }), bestOf3([&] { (void)converted(list.get()); }),
                      bestOf3([&] { (void)converted(entries); }), bestOf3([&] { (void)converted(dictionary.get()); })};
  };
  const auto few = costs(1000);
  const auto many = costs(20000);
  // 20 times the elements; a quadratic conversion would take 400 times as long.
  for (std::size_t i = 0; i < few.size(); ++i) EXPECT_LT(many[i], 100 * std::max(few[i], 100.0)) << i;
}
