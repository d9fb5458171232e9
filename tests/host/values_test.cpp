#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/variants.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

// Variants, arrays and the host's own classes, through the services and methods that a plug-in uses.
namespace {

using host::ObjectRef;
using host::Value;

class Values : public ::testing::Test {
 protected:
  template <class Out>
  static Out read(const char* service, const Value& object, const char* property) {
    Out out{};
    EXPECT_TRUE(entry<bool(REALobject, const char*, Out*)>(service)(object.object(), property, &out)) << property;
    return out;
  }

  Host host_{.plugin = false};
};

TEST_F(Values, InVariantsConvertAsTheLanguageDoes) {
  struct Case {
    Value value;
    std::string text;
    std::int32_t int32;
    std::int64_t int64;
    double real;
  };
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  const Case cases[] = {
      {true, "True", 1, 1, 1},
      {2.75, "2.75", 2, 2, 2.75},
      {-1e30, "-1e+30", -kMost - 1, std::numeric_limits<std::int64_t>::min(), -1e30},
      {std::int64_t{1} << 40, "1099511627776", kMost, std::int64_t{1} << 40, 1099511627776.0},
      {"12.5 apples", "12.5 apples", 12, 12, 12.5},
      {"none", "none", 0, 0, 0},
      {host::date(2012, 7, 4, 9, 5, 7), "2012-07-04 09:05:07", 0, 0, 0},
  };
  for (const auto& [value, text, int32, int64, real] : cases) {
    const Value variant = ObjectRef::adopt(host::newVariant(value));
    EXPECT_EQ(Value::adopt(read<REALstring>("REALGetPropValueString", variant, "StringValue")), text);
    EXPECT_EQ(read<std::int32_t>("REALGetPropValueInt", variant, "Int32Value"), int32);
    EXPECT_EQ(read<std::int64_t>("REALGetPropValueInt64", variant, "LongValue"), int64);
    EXPECT_EQ(read<float>("REALGetPropValueSingle", variant, "SingleValue"), static_cast<float>(real));
    EXPECT_EQ(read<double>("REALGetPropValueDouble", variant, "DoubleValue"), real);
  }
}

TEST_F(Values, AreKeptInDictionariesInOrder) {
  const Value dictionary = host::dictionary({{"b", 1}, {2, "two"}, {"b", 3}});
  EXPECT_EQ(dictionary.call("Value", 2.0), "two");
  EXPECT_EQ(dictionary.call("HasKey", "B"), false);
  EXPECT_EQ(thrownBy([&] { dictionary.call("Value", "c"); }), "KeyNotFoundException: The dictionary has no such key.");
  dictionary.call("Remove", "b");
  EXPECT_EQ(thrownBy([&] { dictionary.call("Key", 1); }),
            "OutOfBoundsException: The dictionary has no key at that index.");
}

}  // namespace
