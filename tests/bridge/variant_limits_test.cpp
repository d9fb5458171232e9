#include "bridge/variants.h"

#include "host/arrays.h"
#include "host/dictionaries.h"
#include "host/objects.h"
#include "platform/foundation/exception.h"
#include "platform/objc/instrumentation.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

// Values that raise, contain themselves or go deep.
namespace {

NSObject converted(const host::Value& value) { return GetVariantAsNSObject(variantOf(value).get()); }

host::Value converted(NSObject object) { return take(NewVariantFromNSObject(object)); }

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

TEST(VariantCycles, RaiseAndLeaveNothing) {
  const Host host{};
  const host::Value entries = host::dictionary({});
  for (const host::Value& inCycle : {entries, host::objectArray({1, entries})}) {
    entries.assign("Value", "self", inCycle);
    EXPECT_EQ(reasonRaised([&] { converted(inCycle); }), kTooDeep);
    const host::Value values = host.make("ABMutableMultiValueVXR");
    EXPECT_EQ(thrownBy([&] { values.call("addValue", entries, "label"); }),
              "NSExceptionVXR: A Cocoa NSInvalidArgumentException was not handled: a value nested more than 256 levels "
              "deep can't be converted");
    entries.call("Remove", "self");
  }
  const auto foundation = NSMutableDictionary::dictionary();
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
