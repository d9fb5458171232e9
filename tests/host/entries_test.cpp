#include "host/entries.h"

#include "host/arrays.h"
#include "host/classes.h"
#include "host/foreign_classes.h"
#include "host/memory_blocks.h"
#include "platform/foundation/error.h"
#include "platform/objc/retained.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using host::ObjectRef;
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
  try {
    object.call("raises");
    ADD_FAILURE() << "nothing thrown";
  } catch (const host::HostException& exception) {
    EXPECT_STREQ(exception.what(), "UnsupportedOperationException: Not here.");
    EXPECT_EQ(exception.object().get("Message"), "Not here.");
  }
  EXPECT_EQ(object.call("works"), 5);
  object = nullptr;
  EXPECT_TRUE(host::takePendingException());
  EXPECT_FALSE(host::takePendingException());
}

TEST(PendingExceptions, OfADestructorAreThrownByTheNextCall) {
  Host host{.plugin = false};
  host::registerClass(raising);
  Value object = host.make("TestRaising");
  static_cast<void>(host.make("TestRaising"));
  EXPECT_EQ(thrownBy([&] { object.call("works"); }), "UnsupportedOperationException: Not here.");
  EXPECT_EQ(object.call("works"), 5);
  object = nullptr;
  EXPECT_TRUE(host::takePendingException());
}

TEST(ForeignClasses, WrapOneRetainedObject) {
  Host host{.plugin = false};
  auto error = ObjectRef::adopt(entry<REALobject(const char*)>("PluginNewInstance")("NSErrorVXR"));
  const auto retained = Retained<NSError>::share(NSError::errorWithDomain("Somewhere"_ns, -7, nullptr));
  *reinterpret_cast<objc::Object**>(reinterpret_cast<char*>(error.get()) + kObjectDataOffset) =
      Retained<NSError>(retained).leak().get();
  const Value object = error;
  EXPECT_EQ(object.get("Code"), -7);
  EXPECT_EQ(object.get("Domain"), "Somewhere");
  EXPECT_NE(object.get("LocalizedDescription"), "");
}

TEST(ForeignClasses, HoldAnExceptionsTexts) {
  Host host{.plugin = false};
  auto* write = entry<bool(REALobject, const char*, REALstring)>("REALSetPropValueString");
  const Value exception = host.make("NSExceptionVXR");
  for (const char* property : {"Message", "Name", "Reason"}) {
    EXPECT_TRUE(write(exception.object(), property, Value(property).string()));
    EXPECT_EQ(exception.get(property), property);
  }
}

TEST(ForeignClasses, LayGeometryOutAsThePlatformDoes) {
  Host host{.plugin = false};
  const Value rect = host.make("NSRectVXR");
  const float floats[] = {1, 2, 3, 4};
  std::memcpy(reinterpret_cast<char*>(rect.object()) + kObjectDataOffset, floats, sizeof floats);
  EXPECT_EQ(rect.get("X"), 1);
  EXPECT_EQ(rect.get("Height"), 4);
  const Value range = host.make("NSRangeVXR");
  range.set("Length", 0xFFFFFFFFU);
  EXPECT_EQ(range.get("Length"), 0xFFFFFFFFU);
  EXPECT_EQ(range.get("Location"), 0);
}

}  // namespace
