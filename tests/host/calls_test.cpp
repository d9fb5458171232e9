#include "host/calls.h"

#include "host/classes.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <sstream>
#include <string>

// Calls by name, through functions as a plug-in would register them.
namespace {

using host::Ref;
using host::Value;

std::string said;

template <class... Parts>
void say(const Parts&... parts) {
  std::ostringstream stream;
  ((stream << parts << ' '), ...);
  said = stream.str();
}

std::string textOf(REALstring string) { return Value(host::StringRef::share(string)).text(); }

// More arguments of each kind than there are registers.
void mixed(REALobject, REALinteger a, float b, double c, std::int64_t d, bool e, std::uint32_t f, REALstring g, float h,
           double i, REALinteger j, double k, double l, float m, double n, double o, double p) {
  say(a, b, c, d, e, f, textOf(g), h, i, j, k, l, m, n, o, p);
}

REALobject returnsSelf(REALobject self) { return host::ObjectRef::share(self).leak(); }
REALstring returnsString(REALobject) { return host::StringRef(host::StringRef::share(Value("text").string())).leak(); }

void assigned(REALobject, REALstring key, REALinteger value) { say(textOf(key), value); }

// Drops what is there and hands out another object, as an error argument does.
void replaces(REALobject self, REALobject* object) {
  if (*object != nullptr) host::unlock(*object);
  *object = host::ObjectRef::share(self).leak();
}
void clears(REALobject, REALobject* object) {
  if (*object != nullptr) host::unlock(*object);
  *object = nullptr;
}
void counts(REALobject, REALinteger* number) { ++*number; }

template <class Result, class... Parameters>
REALmethodDefinition row(const char* declaration, Result (*function)(Parameters...), void* setter = nullptr) {
  return {.function = reinterpret_cast<void*>(function), .setter = setter, .declaration = declaration};
}

REALmethodDefinition methods[] = {
    row("mixed(a as integer, b as single, c as double, d as int64, e as boolean, f as UInt32, g as string, h as "
        "single, "
        "i as double, j as integer, k as double, l as double, m as single, n as double, o as double, p as double)",
        mixed),
    row(
        "returnsInteger as integer", +[](REALobject) { return REALinteger{-7}; }),
    row(
        "returnsInt64 as Int64", +[](REALobject) { return std::numeric_limits<std::int64_t>::min(); }),
    row(
        "returnsUInt64 as UInt64", +[](REALobject) { return std::numeric_limits<std::uint64_t>::max(); }),
    row(
        "returnsUInt32 as UInt32", +[](REALobject) { return std::uint32_t{0xFFFFFFFF}; }),
    row(
        "returnsInt32 as Int32", +[](REALobject) { return std::int32_t{-1}; }),
    row(
        "returnsBoolean as boolean", +[](REALobject) { return true; }),
    row(
        "returnsSingle as single", +[](REALobject) { return 0.1F; }),
    row(
        "returnsDouble as double", +[](REALobject) { return 0.1; }),
    row("returnsSelf as TestBase", returnsSelf),
    row("returnsString as string", returnsString),
    row(
        "overloaded(value as variant)", +[](REALobject, REALobject) { said = "variant"; }),
    row(
        "overloaded(value as TestBase)", +[](REALobject, REALobject) { said = "base"; }),
    row(
        "overloaded(value as string)", +[](REALobject, REALstring) { said = "string"; }),
    row(
        "overloaded(value as TestDerived)", +[](REALobject, REALobject) { said = "derived"; }),
    row(
        "overloaded(value as integer)", +[](REALobject, REALinteger) { said = "integer"; }),
    row(
        "narrow(value as UInt32)", +[](REALobject, std::uint32_t value) { say(value); }),
    row(
        "real(value as single)", +[](REALobject, float value) { say(value); }),
    row(
        "text(value as string)", +[](REALobject, REALstring) { said = "string"; }),
    row(
        "object(value as TestDerived)", +[](REALobject, REALobject) {}),
    row(
        "list(values() as string)", +[](REALobject, REALstringArray) {}),
    row(
        "assignable(key as string) as integer", +[](REALobject, REALstring) { return REALinteger{1}; },
        reinterpret_cast<void*>(assigned)),
    row("replaces(byref object as TestBase)", replaces),
    row("clears(byref object as TestBase)", clears),
    row("counts(byref number as integer)", counts),
};

REALmethodDefinition sharedMethods[] = {row(
    "twice(number as integer) as integer", +[](REALinteger number) { return 2 * number; })};

REALclassDefinition classes[] = {
    {.name = "TestBase",
     .methods = methods,
     .methodCount = std::size(methods),
     .sharedMethods = sharedMethods,
     .sharedMethodCount = std::size(sharedMethods)},
    {.name = "TestDerived", .superName = "TestBase"},
};

class Calls : public ::testing::Test {
 protected:
  Calls() {
    for (REALclassDefinition& definition : classes) host::registerClass(definition);
  }

  Host host_{.plugin = false};
};

TEST_F(Calls, PassArgumentsOfEveryKindInEveryPlace) {
  host_.make("TestBase")
      .call("mixed", -1, 2.5F, 3.5, std::int64_t{-4'000'000'000'000}, true, 4'000'000'000U, "seven", 8, 9, 10, 11.5,
            12.5, 13.5F, 14.5, 15.5, 16.5);
  EXPECT_EQ(said, "-1 2.5 3.5 -4000000000000 1 4000000000 seven 8 9 10 11.5 12.5 13.5 14.5 15.5 16.5 ");
}

TEST_F(Calls, ReturnEveryKind) {
  const Value object = host_.make("TestDerived");
  EXPECT_EQ(object.call("returnsInteger"), -7);
  EXPECT_EQ(object.call("returnsInt64"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(object.call("returnsUInt64"), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(object.call("returnsUInt32"), 0xFFFFFFFFU);
  EXPECT_EQ(object.call("returnsInt32"), -1);
  EXPECT_EQ(object.call("returnsBoolean"), true);
  EXPECT_EQ(object.call("returnsSingle"), 0.1F);
  EXPECT_EQ(object.call("returnsDouble"), 0.1);
  EXPECT_EQ(object.call("returnsSelf"), object);
  EXPECT_EQ(object.call("RETURNSSTRING"), "text");
  EXPECT_EQ(host_.shared("TestDerived", "twice", 21), 42);
}

TEST_F(Calls, ChooseTheNearestOverloadAndWidenNumbers) {
  const Value object = host_.make("TestBase");
  const auto chosen = [&](const Value& argument) {
    object.call("overloaded", argument);
    return said;
  };
  EXPECT_EQ(chosen(1), "integer");
  EXPECT_EQ(chosen("1"), "string");
  EXPECT_EQ(chosen(host_.make("TestBase")), "base");
  EXPECT_EQ(chosen(host_.make("TestDerived")), "derived");
  EXPECT_EQ(chosen(2.5), "variant");
  // Numbers that fit are widened.
  object.call("narrow", std::int64_t{4'294'967'295});
  EXPECT_EQ(said, "4294967295 ");
  object.call("real", 3);
  EXPECT_EQ(said, "3 ");
  object.call("text", nullptr);
  EXPECT_EQ(said, "string");
}

TEST_F(Calls, NameWhatDoesNotFit) {
  const Value object = host_.make("TestBase");
  const auto error = [&](const char* member, const auto&... arguments) {
    return thrownBy([&] { object.call(member, arguments...); });
  };
  EXPECT_EQ(error("text", 1), "host: TestBase.text: argument 1 is Integer, declared string");
  EXPECT_EQ(error("text"), "host: TestBase.text: 0 arguments, declared with 1");
  EXPECT_EQ(error("narrow", -1), "host: TestBase.narrow: argument 1 is Integer -1, declared UInt32");
  EXPECT_EQ(error("real", "x"), "host: TestBase.real: argument 1 is String, declared single");
  EXPECT_EQ(error("object", object), "host: TestBase.object: argument 1 is TestBase, declared TestDerived");
  EXPECT_EQ(error("list", "x"), "host: TestBase.list: argument 1 is String, declared string()");
  EXPECT_EQ(error("replaces", object),
            "host: TestBase.replaces: argument 1 is TestBase by value, declared byref TestBase");
  EXPECT_EQ(error("nothing"), "host: class TestBase has no method nothing");
  EXPECT_EQ(thrownBy([&] { host_.shared("TestBase", "twice", true); }),
            "host: TestBase.twice: argument 1 is Boolean, declared integer");
  EXPECT_EQ(thrownBy([&] { host_.shared("Unheard", "twice", 1); }), "host: no class Unheard");
  EXPECT_EQ(thrownBy([&] { Value(1).call("text"); }), "host: text: called on a value that is Integer");
}

TEST_F(Calls, GiveAVariablesOwnReferenceAwayAndAssign) {
  const Value object = host_.make("TestBase");
  Value variable = host_.make("TestDerived");
  object.call("replaces", Ref(variable));
  EXPECT_EQ(variable, object);
  object.call("clears", Ref(variable));
  EXPECT_TRUE(variable.isNil());
  Value number = 41;
  object.call("counts", Ref(number));
  EXPECT_EQ(number, 42);
  object.assign("assignable", "key", 5);
  EXPECT_EQ(said, "key 5 ");
}

}  // namespace
