#include "host/entries.h"

#include "host/classes.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(Entries, AnswerWhatTheHostIsSaidToBe) {
  std::vector<std::string> shown;
  int yields = 0;
  Host host{.version = 2011.4,
            .runtime = false,
            .plugin = false,
            .messageBox = [&](const std::string& text) { shown.push_back(text); },
            .yield = [&] { ++yields; }};
  EXPECT_EQ(entry<double()>("REALGetRBVersion")(), 2011.4);
  EXPECT_FALSE(entry<bool()>("REALinRuntime")());
  entry<void(Word)>("RegisterPluginVersion")(9);
  EXPECT_EQ(host::pluginVersion(), 9U);
  entry<void(REALstring)>("RuntimeMsgBox")(Value("Hello").string());
  EXPECT_EQ(shown, std::vector<std::string>{"Hello"});
  EXPECT_EQ(host::messageBoxes(), shown);
  entry<void()>("REALYieldToRB")();
  EXPECT_EQ(yields, 1);
}

void raises(REALobject) {
  const Value exception = host::newObject("UnsupportedOperationException");
  exception.set("Message", "Not here.");
  entry<void(REALobject)>("RuntimeRaiseException")(exception.object());
}

REALmethodDefinition raisingMethods[] = {
    {.function = reinterpret_cast<void*>(raises), .declaration = "raises"},
    {.function = reinterpret_cast<void*>(+[](REALobject) { return REALinteger{5}; }),
     .declaration = "works as integer"},
};
REALclassDefinition raising{.name = "TestRaising", .destructor = raises, .methods = raisingMethods, .methodCount = 2};

TEST(PendingExceptions, AreThrownWhenThePluginHasReturned) {
  Host host{.plugin = false};
  host::registerClass(raising);
  Value object = host.make("TestRaising");
  EXPECT_EQ(thrownBy([&] { object.call("raises"); }), "UnsupportedOperationException: Not here.");
  EXPECT_EQ(object.call("works"), 5);
  // A destructor's by the next call.
  static_cast<void>(host.make("TestRaising"));
  EXPECT_EQ(thrownBy([&] { object.call("works"); }), "UnsupportedOperationException: Not here.");
  EXPECT_EQ(object.call("works"), 5);
  object = nullptr;
  EXPECT_TRUE(host::takePendingException());
  EXPECT_FALSE(host::takePendingException());
}

}  // namespace
