#include "host/arrays.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/folder_items.h"
#include "host/variants.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

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
  static Value readString(const Value& object, const char* property) {
    return Value::adopt(read<REALstring>("REALGetPropValueString", object, property));
  }
  static Value readObject(const Value& object, const char* property) {
    return Value::adopt(read<REALobject>("REALGetPropValueObject", object, property));
  }

  Host host_{.plugin = false};
};

TEST_F(Values, ThatAreObjectsAreTheirOwnVariants) {
  const Value date = host::date(2012, 7, 14);
  EXPECT_EQ(readObject(date, "DateValue"), date);
  const Value dictionary = host::dictionary({});
  EXPECT_EQ(readObject(dictionary, "ObjectValue"), dictionary);
  EXPECT_TRUE(readObject(dictionary, "DateValue").isNil());
  const Value number = ObjectRef::adopt(host::newVariant(1));
  EXPECT_TRUE(readObject(number, "ObjectValue").isNil());
  // One that says it is something else stays what it is.
  const Value odd = host::variantOfType(16, 5);
  EXPECT_EQ(host::fromVariant(ObjectRef::share(odd.object())), odd);
}

TEST_F(Values, InVariantsConvertAsTheLanguageDoes) {
  struct Case {
    Value value;
    std::string text;
    std::int32_t int32;
    std::int64_t int64;
    double real;
  };
  const Case cases[] = {
      {-5, "-5", -5, -5, -5},
      {true, "True", 1, 1, 1},
      {2.75, "2.75", 2, 2, 2.75},
      {1e30, "1e+30", std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int64_t>::max(), 1e30},
      {std::int64_t{1} << 40, "1099511627776", std::numeric_limits<std::int32_t>::max(), std::int64_t{1} << 40,
       1099511627776.0},
      {"12.5 apples", "12.5 apples", 12, 12, 12.5},
      {"none", "none", 0, 0, 0},
      {host::date(2012, 7, 4, 9, 5, 7), "2012-07-04 09:05:07", 0, 0, 0},
  };
  for (const auto& [value, text, int32, int64, real] : cases) {
    const Value variant = ObjectRef::adopt(host::newVariant(value));
    const auto boxed = ObjectRef::adopt(host::newVariant(value));
    const REALvariant raw = boxed.get();
    EXPECT_EQ(Value::adopt(entry<REALstring(REALvariant)>("VariantToString")(raw)), text);
    EXPECT_EQ(entry<std::int32_t(REALvariant)>("VariantToInt32")(raw), int32);
    EXPECT_EQ(entry<std::int64_t(REALvariant)>("VariantToInt64")(raw), int64);
    EXPECT_EQ(entry<double(REALvariant)>("VariantToDouble")(raw), real);
    EXPECT_EQ(entry<float(REALvariant)>("VariantToSingle")(raw), static_cast<float>(real));
    EXPECT_EQ(readString(variant, "StringValue"), text);
    EXPECT_EQ(read<std::int32_t>("REALGetPropValueInt", variant, "Int32Value"), int32);
    EXPECT_EQ(read<std::int64_t>("REALGetPropValueInt64", variant, "LongValue"), int64);
    EXPECT_EQ(read<float>("REALGetPropValueSingle", variant, "SingleValue"), static_cast<float>(real));
    EXPECT_EQ(read<double>("REALGetPropValueDouble", variant, "DoubleValue"), real);
  }
}

TEST_F(Values, AreReadOnlyAsWhatTheyAre) {
  const Value date = host::date(2012, 7, 14);
  std::int32_t number = 7;
  REALstring string = nullptr;
  auto* readInt = entry<bool(REALobject, const char*, std::int32_t*)>("REALGetPropValueInt");
  auto* readText = entry<bool(REALobject, const char*, REALstring*)>("REALGetPropValueString");
  EXPECT_FALSE(readInt(date.object(), "StringValue", &number));
  EXPECT_FALSE(readInt(date.object(), "Unheard", &number));
  EXPECT_FALSE(readInt(nullptr, "Year", &number));
  EXPECT_FALSE(readText(date.object(), "Year", &string));
  EXPECT_EQ(number, 7);
  auto* writeInt = entry<bool(REALobject, const char*, std::int32_t)>("REALSetPropValueInt");
  auto* writeText = entry<bool(REALobject, const char*, REALstring)>("REALSetPropValueString");
  EXPECT_TRUE(writeInt(date.object(), "year", 2013));
  EXPECT_EQ(date.get("Year"), 2013);
  EXPECT_FALSE(writeInt(date.object(), "Type", 1));
  EXPECT_FALSE(writeText(date.object(), "Year", nullptr));
}

TEST_F(Values, InArraysLieInTheirStorage) {
  const Value array = host::array(host::ElementType::int32, {10, 20, 30, 40, 50});
  const auto* record = reinterpret_cast<const REALarrayRecord*>(array.object());
  EXPECT_EQ(static_cast<const std::int32_t*>(record->storage)[4], 50);
  // There is always something to read at index 0.
  const Value empty = host::stringArray({});
  EXPECT_EQ(*static_cast<REALstring*>(reinterpret_cast<const REALarrayRecord*>(empty.object())->storage), nullptr);
}

TEST_F(Values, ArraysOfReferencesAreFilledByInsertion) {
  auto* create = entry<REALarray(std::int32_t, REALinteger)>("RuntimeArrayCreateSingleDimBoundedArray");
  const auto made = ObjectRef::adopt(create(kArrayOfStrings, -1));
  auto* raw = static_cast<REALarray>(made.get());
  auto* insert = reinterpret_cast<void (*)(REALarray, REALinteger, REALstring)>(
      entry<void*(REALarray)>("RuntimeArrayDirectGetInsertProc")(raw));
  for (const char* text : {"c", "b", "a"}) insert(raw, 0, Value(text).string());
  insert(raw, 3, nullptr);
  insert(raw, 9, Value("lost").string());
  EXPECT_EQ(Value(made).elements(), (std::vector<Value>{"a", "b", "c", ""}));
  auto* readString = entry<REALstring(REALarray, REALinteger)>("RuntimeDirectReadStringArray");
  EXPECT_EQ(Value::adopt(readString(raw, 1)), "b");
  for (const int outside : {4, -1}) EXPECT_EQ(readString(raw, outside), nullptr) << outside;

  EXPECT_EQ(create(99, -1), nullptr);
  EXPECT_EQ(create(kArrayOfObjects, -2), nullptr);
  EXPECT_EQ(Value::adopt(create(kArrayOfObjects, 2)).size(), 3U);
}

TEST_F(Values, AreKeptInDictionariesInOrder) {
  const Value dictionary = host::newObject("Dictionary");
  dictionary.assign("Value", "b", 1);
  dictionary.assign("Value", 2, "two");
  dictionary.assign("Value", "b", 3);
  EXPECT_EQ(dictionary.get("Count"), 2);
  EXPECT_EQ(dictionary.call("Key", 0), "b");
  EXPECT_EQ(dictionary.call("Value", "b"), 3);
  EXPECT_EQ(dictionary.call("Value", 2.0), "two");
  EXPECT_EQ(dictionary.call("HasKey", "B"), false);
  EXPECT_EQ(thrownBy([&] { dictionary.call("Value", "c"); }), "KeyNotFoundException: The dictionary has no such key.");
  dictionary.call("Remove", "b");
  EXPECT_EQ(dictionary.call("Key", 0), 2);
  EXPECT_EQ(thrownBy([&] { dictionary.call("Key", 1); }),
            "OutOfBoundsException: The dictionary has no key at that index.");
}

// How they are handed to a plug-in, and found by it, is seen in the tests of what uses them there.
TEST_F(Values, ThatAreFolderItemsNamePaths) {
  std::ofstream(host_.folder() / "there") << "x";
  EXPECT_EQ(host::folderItem(host_.folder() / "there").get("Exists"), true);
  EXPECT_EQ(host::folderItem(host_.folder() / "missing").get("Exists"), false);
  EXPECT_EQ(host::folderItem(host_.folder()).call("TrueItem", 1).get("NativePath"),
            (host_.folder() / "there").string());
}

}  // namespace
