#include "host/classes.h"

#include "host/error.h"
#include "host/events.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

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
};
REALmethodDefinition baseMethods[] = {
    {.function = reinterpret_cast<void*>(+[](REALobject) { happened += "declared "; }), .declaration = "Constructor"},
    {.function = reinterpret_cast<void*>(+[](REALobject) { return REALinteger{1}; }), .declaration = "rank as integer"},
};
REALevent baseEvents[] = {
    {.declaration = "Changed"},
};

REALclassDefinition base{.name = "TestBase",
                         .dataSize = sizeof(BaseData),
                         .constructor = [](REALobject) { happened += "+base "; },
                         .destructor = [](REALobject) { happened += "-base "; },
                         .properties = baseProperties,
                         .propertyCount = std::size(baseProperties),
                         .methods = baseMethods,
                         .methodCount = std::size(baseMethods),
                         .events = baseEvents,
                         .eventCount = std::size(baseEvents)};

REALproperty derivedProperties[] = {{.name = "Own", .type = "Int32", .getter = kHostAccessor}};
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

  Host host_{.plugin = false};
};

TEST_F(Classes, LayTheDataOfAChainOneBehindTheOther) {
  EXPECT_EQ(base.dataOffset, kObjectDataOffset);
  EXPECT_EQ(derived.dataOffset, kObjectDataOffset + sizeof(BaseData));
  EXPECT_EQ(host::requireClass("testderived").instanceSize, derived.dataOffset + 8);
  const Value object = host_.make("TestDerived");
  EXPECT_EQ(object.call("rank"), 2);
  object.set("Handle", 4711);
  EXPECT_EQ(host::dataOf<BaseData>(object.object(), base).first, 4711U);
}

TEST_F(Classes, RunTheirConstructorsOnlyForHostCode) {
  happened.clear();
  { const auto instance = ObjectRef::adopt(entry<REALobject(const char*)>("PluginNewInstance")("TestDerived")); }
  EXPECT_EQ(happened, "-derived -base ");

  happened.clear();
  { const Value object = host_.make("TestDerived"); }
  EXPECT_EQ(happened, "+base +derived declared -derived -base ");
}

TEST_F(Classes, RefuseWhatDoesNotFitAProperty) {
  const Value object = host_.make("TestDerived");
  EXPECT_EQ(thrownBy([&] { object.set("Handle", "text"); }),
            "host: TestBase.Handle: value is String, declared Integer");
  EXPECT_EQ(thrownBy([&] { object.set("Own", 1); }), "host: class TestDerived has no writable property Own");
  EXPECT_EQ(thrownBy([&] { static_cast<void>(object.get("Right")); }),
            "host: class TestDerived has no readable property Right");
  EXPECT_EQ(thrownBy([&] { host::handleEvent(object, "Unheard", {}); }),
            "host: class TestDerived has no event Unheard");
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
void raiseChanged(REALobject object) {
  auto* handler = entry<void*(REALobject, Word)>("GetEventInstance")(object, baseEvents[0].hostReserved);
  reinterpret_cast<void (*)(REALobject)>(handler)(object);
}

TEST_F(Classes, HandEventsToTheObjectsHandlerThenTheClasss) {
  const Value first = host_.make("TestDerived");
  const Value second = host_.make("TestDerived");
  std::string handled;
  host::handleClassEvent("TestBase", "changed", [&](const Value&, auto) { handled += "class "; });
  host::handleEvent(first, "Changed", [&](const Value& self, auto) { handled += self == first ? "first " : "other "; });
  raiseChanged(first.object());
  raiseChanged(second.object());
  EXPECT_EQ(handled, "first class ");
}

}  // namespace
