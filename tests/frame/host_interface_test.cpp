#include "frame/host_interface.h"

#include "frame/runtime_support.h"
#include "tests/frame/fake_resolver.h"

#include <gtest/gtest.h>

#include <cstring>

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

TEST_F(HostInterface, ConvertsCopiedStringDataOnlyWhenItsEncodingDiffers) {
  static int unlocked = 0;
  give("StringGetCString", [](REALstring string) { return bytesOf(string); });
  give("REALLoadGlobalMethod", [](void*, const char*) {
    return reinterpret_cast<void*>(
        +[](REALstring string) { return static_cast<REALinteger>(std::strlen(bytesOf(string))); });
  });
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
