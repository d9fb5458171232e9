#include "host/entries.h"

#include "host/classes.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

namespace {

using host::Value;

TEST(Entries, CanBeTakenAndGivenBack) {
  Host host{.without = {"RuntimeUBound", "VarType"}, .plugin = false};
  EXPECT_EQ(host::resolver()("RuntimeUBound"), nullptr);
  EXPECT_EQ(host::resolver()("NoSuchService"), nullptr);
  auto* loadGlobal = entry<void*(void*, const char*)>("REALLoadGlobalMethod");
  EXPECT_EQ(loadGlobal(nullptr, "VarType(value As Variant) As Int32"), nullptr);
  host::options().without = {"Date"};
  EXPECT_NE(host::resolver()("RuntimeUBound"), nullptr);
  EXPECT_EQ(host::timesAsked("RuntimeUBound"), 2U);
  EXPECT_NE(loadGlobal(nullptr, "VarType(value As Variant) As Int32"), nullptr);
  EXPECT_EQ(entry<REALclassRef(const char*)>("pluginObjectType")("Date"), nullptr);
}

void raises(REALobject) {
  const Value exception = host::newObject("UnsupportedOperationException");
  exception.set("Message", "Not here.");
  entry<void(REALobject)>("RuntimeRaiseException")(exception.object());
}

REALclassDefinition raising{.name = "TestRaising", .destructor = raises};

TEST(PendingExceptions, OfADestructorAreThrownByTheNextCall) {
  Host host{.plugin = false};
  host::registerClass(raising);
  static_cast<void>(host.make("TestRaising"));
  EXPECT_EQ(thrownBy([&] { host.make("Dictionary").call("HasKey", 1); }), "UnsupportedOperationException: Not here.");
  EXPECT_FALSE(host::takePendingException());
}

}  // namespace
