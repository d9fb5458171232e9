#include "host/classes.h"

#include "host/error.h"
#include "host/events.h"
#include "host/objects.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>

// Classes as a plug-in registers them, used through the host's services.
namespace {

using host::ObjectRef;
using host::Value;

std::string happened;

struct BaseData {
  Word first;
  Word second;
};

REALproperty baseProperties[] = {
    {.name = "Handle", .type = "Integer", .getter = kHostAccessor, .setter = kHostAccessor},
    {.name = "Title", .type = "String", .getter = kHostAccessor, .setter = kHostAccessor, .parameter = sizeof(Word)},
};
REALmethodDefinition baseMethods[] = {
    {.function = reinterpret_cast<void*>(+[](REALobject) { happened += "declared "; }), .declaration = "Constructor"},
    {.function = reinterpret_cast<void*>(+[](REALobject) { return REALinteger{1}; }), .declaration = "rank as integer"},
};
REALevent baseEvents[] = {
    {.declaration = "Changed"},
};
REALconstant baseConstants[] = {{.declaration = "kMask = &hFF"}};

REALclassDefinition base{.name = "TestBase",
                         .dataSize = sizeof(BaseData),
                         .constructor = [](REALobject) { happened += "+base "; },
                         .destructor =
                             [](REALobject self) {
                               happened += "-base ";
                               host::unlock(reinterpret_cast<REALstring>(host::dataOf<BaseData>(self, base).second));
                             },
                         .properties = baseProperties,
                         .propertyCount = std::size(baseProperties),
                         .methods = baseMethods,
                         .methodCount = std::size(baseMethods),
                         .events = baseEvents,
                         .eventCount = std::size(baseEvents),
                         .constants = baseConstants,
                         .constantCount = std::size(baseConstants)};

float singleOf(REALobject self, Word parameter) {
  return static_cast<float>(host::dataOf<BaseData>(self, base).first + parameter);
}
void setSingle(REALobject self, Word parameter, float value) {
  host::dataOf<BaseData>(self, base).first = static_cast<Word>(value) - parameter;
}

REALproperty derivedProperties[] = {
    {.name = "Left",
     .type = "Single",
     .getter = reinterpret_cast<void*>(singleOf),
     .setter = reinterpret_cast<void*>(setSingle),
     .parameter = 3},
    {.name = "Own", .type = "Int32", .getter = kHostAccessor},
};
REALmethodDefinition derivedMethods[] = {
    {.function = reinterpret_cast<void*>(+[](REALobject) { return REALinteger{2}; }), .declaration = "Rank as Integer"},
};

REALclassDefinition derived{.name = "TestDerived",
                            .superName = "TestBase",
                            .dataSize = 4,
                            .constructor = [](REALobject) { happened += "+derived "; },
                            .destructor = [](REALobject) { happened += "-derived "; },
                            .properties = derivedProperties,
                            .propertyCount = std::size(derivedProperties),
                            .methods = derivedMethods,
                            .methodCount = std::size(derivedMethods)};

class Classes : public ::testing::Test {
 protected:
  Classes() {
    auto* registerClass = entry<void(REALclassDefinition*)>("PluginRegisterClass");
    for (REALclassDefinition* definition : {&base, &derived, &base}) registerClass(definition);
  }

  static ObjectRef newInstance(const char* className) {
    return ObjectRef::adopt(entry<REALobject(const char*)>("PluginNewInstance")(className));
  }

  Host host_{.plugin = false};
};

TEST_F(Classes, LayTheDataOfAChainOneBehindTheOther) {
  EXPECT_EQ(base.dataOffset, kObjectDataOffset);
  EXPECT_EQ(derived.dataOffset, kObjectDataOffset + sizeof(BaseData));
  EXPECT_EQ(host::requireClass("testderived").instanceSize, derived.dataOffset + 8);
}

TEST_F(Classes, RunTheirConstructorsOnlyForHostCode) {
  happened.clear();
  ObjectRef instance = newInstance("TestDerived");
  EXPECT_EQ(host::dataOf<BaseData>(instance.get(), base).first, 0U);
  EXPECT_EQ(happened, "");
  instance = {};
  EXPECT_EQ(happened, "-derived -base ");

  happened.clear();
  { const Value object = host_.make("TestDerived"); }
  EXPECT_EQ(happened, "+base +derived declared -derived -base ");
}

TEST_F(Classes, AnswerMembersOfTheirSuperclassesUnlessTheyHaveTheirOwn) {
  const Value object = host_.make("TestDerived");
  EXPECT_EQ(object.call("rank"), 2);
  EXPECT_EQ(host_.make("TestBase").call("rank"), 1);
  EXPECT_EQ(host::constant("TestDerived", "kmask"), 0xFF);
  object.set("Handle", 4711);
  EXPECT_EQ(object.get("Handle"), 4711);
  EXPECT_EQ(object.get("Left"), 4714.0F);
  object.set("Left", 10);
  EXPECT_EQ(object.get("Handle"), 7);
  for (const char* title : {"", "first", "second"}) {
    object.set("Title", title);
    EXPECT_EQ(object.get("Title"), title);
  }
}

TEST_F(Classes, RefuseWhatDoesNotFitAProperty) {
  const Value object = host_.make("TestDerived");
  EXPECT_EQ(thrownBy([&] { object.set("Handle", "text"); }),
            "host: TestBase.Handle: value is String, declared Integer");
  EXPECT_EQ(thrownBy([&] { object.set("Own", 1); }), "host: class TestDerived has no writable property Own");
  EXPECT_EQ(thrownBy([&] { static_cast<void>(object.get("Right")); }),
            "host: class TestDerived has no readable property Right");
}

TEST_F(Classes, FindMethodsByDeclaration) {
  auto* load = entry<void*(REALobject, const char*)>("REALLoadObjectMethod");
  const ObjectRef instance = newInstance("TestDerived");
  EXPECT_EQ(load(instance.get(), "Rank As Integer"), derivedMethods[0].function);
  EXPECT_EQ(load(instance.get(), "Constructor"), baseMethods[0].function);
  EXPECT_EQ(load(instance.get(), "Rank As String"), nullptr);
  EXPECT_EQ(load(instance.get(), "((("), nullptr);
  EXPECT_EQ(load(nullptr, "Constructor"), nullptr);
}

TEST_F(Classes, AreLeftOutWhenTheirTablesAreWrong) {
  REALmethodDefinition wrong[] = {{.declaration = "f(a"}};
  REALclassDefinition unread{.name = "Unread", .methods = wrong, .methodCount = 1};
  REALclassDefinition orphan{.name = "Orphan", .superName = "Unheard"};
  REALclassDefinition twin{.name = "TESTBASE"};
  for (auto* definition : {&unread, &orphan, &twin}) EXPECT_THROW(host::registerClass(*definition), host::Error);
  EXPECT_EQ(host::findClass("Unread"), nullptr);
  EXPECT_EQ(host::findClass("Orphan"), nullptr);
  EXPECT_EQ(host::findClass("TestBase")->definition, &base);
}

// What a plug-in does to raise an event.
void* handlerOf(REALobject object) {
  return entry<void*(REALobject, Word)>("GetEventInstance")(object, baseEvents[0].hostReserved);
}
void raiseChanged(REALobject object) { reinterpret_cast<void (*)(REALobject)>(handlerOf(object))(object); }

TEST_F(Classes, HandEventsToTheObjectsHandlerThenTheClasss) {
  const Value first = host_.make("TestDerived");
  const Value second = host_.make("TestDerived");
  EXPECT_EQ(handlerOf(first.object()), nullptr);

  std::string handled;
  host::handleClassEvent("TestBase", "changed", [&](const Value&, auto) { handled += "class "; });
  host::handleEvent(first, "Changed", [&](const Value& self, auto) { handled += self == first ? "first " : "other "; });
  raiseChanged(first.object());
  raiseChanged(second.object());
  EXPECT_EQ(handled, "first class ");
  EXPECT_EQ(thrownBy([&] { host::handleEvent(first, "Unheard", {}); }), "host: class TestDerived has no event Unheard");
}

TEST_F(Classes, LeaveAHandlersExceptionPending) {
  const Value object = host_.make("TestBase");
  host::handleEvent(object, "Changed", [](const Value&, auto) {
    const Value exception = host::newObject("UnsupportedOperationException");
    exception.set("Message", "no");
    throw host::HostException(exception);
  });
  raiseChanged(object.object());
  EXPECT_STREQ(host::takePendingException()->what(), "UnsupportedOperationException: no");
}

TEST_F(Classes, ForgetAnObjectsHandlersWithIt) {
  int handled = 0;
  Value object = host_.make("TestBase");
  host::handleEvent(object, "Changed", [&](const Value&, auto) {
    ++handled;
    object = nullptr;
  });
  raiseChanged(object.object());
  EXPECT_EQ(handled, 1);
  EXPECT_EQ(host::liveReport(), "");
  // Whatever object comes to lie there.
  EXPECT_EQ(handlerOf(host_.make("TestBase").object()), nullptr);
}

}  // namespace
