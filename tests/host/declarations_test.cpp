#include "host/declarations.h"

#include "host/error.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using host::parseDeclaration;

TEST(Declarations, AreTheSameWhateverTheirParametersAreCalled) {
  const auto same = [](const char* a, const char* b) {
    return host::sameSignature(parseDeclaration(a), parseDeclaration(b));
  };
  EXPECT_TRUE(same("Value(key As Variant) As Variant", "value( k as VARIANT ) as variant"));
  EXPECT_FALSE(same("Value(key As Variant, Assigns v As Variant)", "Value(key As Variant, v As Variant)"));
  EXPECT_FALSE(same("Value(key As Variant) As Variant", "Value(key As Variant)"));
  EXPECT_FALSE(same("list(a() as string)", "list(a as string)"));
  EXPECT_FALSE(same("change(byref a as Integer)", "change(a as Integer)"));
}

TEST(Declarations, SayWhereTheyAreWrong) {
  const auto error = [](const char* text) -> std::string {
    try {
      parseDeclaration(text);
    } catch (const host::Error& thrown) {
      return thrown.what();
    }
    return "read";
  };
  EXPECT_EQ(error("people as"), "host: declaration \"people as\": expected a name at character 10");
  EXPECT_EQ(error("f(a as integer"), "host: declaration \"f(a as integer\": expected \")\" at character 15");
  EXPECT_EQ(error("f(a)"), "host: declaration \"f(a)\": expected \"as\" at character 4");
  EXPECT_EQ(error("f as string x"), "host: declaration \"f as string x\": expected the end at character 13");
  EXPECT_THROW(host::parseConstant("kABEqual = many"), host::Error);
}

}  // namespace
