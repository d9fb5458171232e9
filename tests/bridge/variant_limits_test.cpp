#include "bridge/variants.h"

#include "host/arrays.h"
#include "host/dictionaries.h"
#include "platform/foundation/exception.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <string>

// Values that raise, contain themselves or go deep.
namespace {

NSObject converted(const host::Value& value) { return GetVariantAsNSObject(variantOf(value).get()); }

host::Value converted(NSObject object) { return take(NewVariantFromNSObject(object)); }

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
