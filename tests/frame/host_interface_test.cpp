#include "frame/host_interface.h"

#include "frame/runtime_support.h"
#include "tests/frame/fake_resolver.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using fake_resolver::asked;
using fake_resolver::give;

// Handles that are only ever passed on.
REALobject object() { return reinterpret_cast<REALobject>(0x1000); }
REALarray array() { return static_cast<REALarray>(object()); }
REALstring text(const char* bytes) { return reinterpret_cast<REALstring>(const_cast<char*>(bytes)); }
const char* bytesOf(REALstring string) { return reinterpret_cast<const char*>(string); }

class HostInterface : public testing::Test {
 protected:
  HostInterface() { fake_resolver::install(); }
};

}  // namespace

TEST_F(HostInterface, AsksAgainWhileAnEntryIsMissingAndNeverAfterItIsFound) {
  for (int i = 0; i < 2; ++i) EXPECT_FALSE(REALinRuntime());
  give("REALinRuntime", [] { return true; });
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(REALinRuntime());
  EXPECT_EQ(asked["REALinRuntime"], 3);

  // Each wrapper of an entry has a cache of its own.
  give("REALGetStringCFString", [](REALstring, bool flag) { return reinterpret_cast<CFStringRef>(flag ? 16 : 32); });
  EXPECT_EQ(REALGetStringCFString(text("x"), true), reinterpret_cast<CFStringRef>(16));
  EXPECT_EQ(REALCopyStringCFString(text("x")), reinterpret_cast<CFStringRef>(32));
  EXPECT_EQ(asked["REALGetStringCFString"], 2);
}

namespace {

// A host without string data of its own, whose strings are C strings in UTF-8.
void giveStringServices() {
  give("StringGetCString", [](REALstring string) { return bytesOf(string); });
  give("REALLoadGlobalMethod", [](void*, const char* declaration) -> void* {
    using LenB = REALinteger(REALstring);
    LenB* lenB = [](REALstring string) { return static_cast<REALinteger>(std::strlen(bytesOf(string))); };
    return std::string(declaration) == "LenB( s as string ) as integer" ? reinterpret_cast<void*>(lenB) : nullptr;
  });
}

}  // namespace

TEST_F(HostInterface, CopiesStringDataWhereTheHostHasNone) {
  REALstringData data{};
  EXPECT_FALSE(REALGetStringData(text("abc"), kEncodingAsStored, &data));  // without length or bytes
  giveStringServices();
  ASSERT_TRUE(REALGetStringData(text("abc"), kEncodingAsStored, &data));
  EXPECT_EQ(data.length, 3u);
  EXPECT_EQ(data.encoding, kEncodingAsStored);
  EXPECT_EQ(std::memcmp(data.data, "abc\0\0\0\0", 7), 0);
  REALDisposeStringData(&data);
  EXPECT_FALSE(REALGetStringData(nullptr, kEncodingAsStored, &data));
}

TEST_F(HostInterface, ConvertsCopiedStringDataOnlyWhenItsEncodingDiffers) {
  static int unlocked = 0;
  giveStringServices();
  give("REALUnlockString", [](REALstring) { ++unlocked; });
  give("REALGetStringEncoding", [](REALstring) { return kEncodingUTF8; });
  REALstringData data{};
  ASSERT_TRUE(REALGetStringData(text("abc"), kEncodingUTF8, &data));
  EXPECT_EQ(asked["REALConvertString"], 0);
  REALDisposeStringData(&data);

  EXPECT_FALSE(REALGetStringData(text("abc"), kEncodingUTF16, &data));  // there is no conversion
  give("REALConvertString", [](REALstring, std::uint32_t to) { return to == kEncodingUTF16 ? text("new") : nullptr; });
  ASSERT_TRUE(REALGetStringData(text("abcd"), kEncodingUTF16, &data));
  EXPECT_EQ(data.length, 3u);
  EXPECT_EQ(data.encoding, kEncodingUTF16);
  REALDisposeStringData(&data);
  EXPECT_FALSE(REALGetStringData(text("abc"), kEncodingUTF32, &data));
  EXPECT_EQ(unlocked, 1);
}

namespace {

// Reads the second of the elements from where they are stored.
template <class Read, class Element>
Read second(void (*read)(REALarray, REALinteger, Read*), Element first, Element stored) {
  Element storage[] = {first, stored};
  REALarrayRecord record{};
  record.storage = storage;
  Read value{};
  read(reinterpret_cast<REALarray>(&record), 1, &value);
  return value;
}

int locked = 0;

}  // namespace

TEST_F(HostInterface, ReadsElementsFromStorageWhereTheHostHasNoGetters) {
  give("REALLockObject", [](REALobject) { locked += 1; });
  give("REALLockString", [](REALstring) { locked += 10; });
  EXPECT_EQ(second<std::int64_t>(REALGetArrayValueInt64, std::int64_t{1}, std::int64_t{-0x123456789A}), -0x123456789A);
  EXPECT_EQ(second(REALGetArrayValueInt32, 1, -2), -2);
  EXPECT_EQ(second<std::uint8_t>(REALGetArrayValueUInt8, std::int8_t{1}, std::int8_t{-1}), 0xFF);
  EXPECT_EQ(second(REALGetArrayValueSingle, 1.0F, 2.5F), 2.5F);
  EXPECT_EQ(second(REALGetArrayValueDouble, 1.0, 2.25), 2.25);
  const REALstring string = text("b");
  EXPECT_EQ(second(REALGetArrayValueString, REALstring{}, string), string);
  EXPECT_EQ(second(REALGetArrayValueString, string, REALstring{}), nullptr);
  EXPECT_EQ(second(REALGetArrayValueObject, REALobject{}, object()), object());
  EXPECT_EQ(second(REALGetArrayValueObject, object(), REALobject{}), nullptr);
  EXPECT_EQ(locked, 11);
  EXPECT_EQ(asked["RuntimeArrayDirectGetGetProc"], 7);  // once an element type, for good
}

TEST_F(HostInterface, AsksTheHostsGetterForEachArray) {
  give("RuntimeArrayDirectGetGetProc", [](REALarray asking) -> void* {
    if (asking == nullptr) return nullptr;
    return reinterpret_cast<void*>(
        +[](REALarray, REALinteger index) { return static_cast<std::int32_t>(100 + index); });
  });
  std::int32_t value = 7;
  REALGetArrayValueInt32(array(), 3, &value);
  REALGetArrayValueInt32(nullptr, 4, &value);
  EXPECT_EQ(value, 103);
  REALGetArrayValueInt32(array(), 3, nullptr);
  EXPECT_EQ(asked["RuntimeArrayDirectGetGetProc"], 1);
}
