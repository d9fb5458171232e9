#include "host/calls.h"

#include "host/classes.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

// Calls by name, of what no plug-in of ours declares and of what doesn't fit.
namespace {

using host::Value;

std::string said;

// More arguments of each kind than there are registers.
void mixed(REALobject, REALinteger a, float b, double c, std::int64_t d, bool e, std::uint32_t f, REALstring g, float h,
           double i, REALinteger j, double k, double l, float m, double n, double o, double p) {
  std::ostringstream stream;
  const auto say = [&](const auto&... parts) { ((stream << parts << ' '), ...); };
  say(a, b, c, d, e, f, Value(host::StringRef::share(g)).text(), h, i, j, k, l, m, n, o, p);
  said = stream.str();
}

REALmethodDefinition methods[] = {
    {.function = reinterpret_cast<void*>(mixed),
     .declaration =
         "mixed(a as integer, b as single, c as double, d as int64, e as boolean, f as UInt32, g as string, h as "
         "single, i as double, j as integer, k as double, l as double, m as single, n as double, o as double, p as "
         "double)"},
    {.declaration = "narrow(value as UInt32)"},
    {.declaration = "real(value as single)"},
    {.declaration = "text(value as string)"},
    {.declaration = "object(value as TestDerived)"},
    {.declaration = "list(values() as string)"},
    {.declaration = "replaces(byref object as TestBase)"},
};
REALmethodDefinition sharedMethods[] = {{.declaration = "twice(number as integer) as integer"}};

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

}  // namespace
