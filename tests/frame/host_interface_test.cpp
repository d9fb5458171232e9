#include "frame/host_interface.h"

#include "frame/runtime_support.h"
#include "tests/frame/fake_resolver.h"

#include <gtest/gtest.h>

#include <cstdlib>
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

TEST_F(HostInterface, AnswersNeutralValuesWhileTheHostLacksTheEntry) {
  EXPECT_EQ(REALLoadFrameworkMethod("f"), nullptr);
  EXPECT_EQ(REALLoadObjectMethod(object(), "f"), nullptr);
  EXPECT_EQ(REALnewInstance("Date"), nullptr);
  EXPECT_EQ(REALGetClassRef("Date"), nullptr);
  EXPECT_FALSE(REALObjectIsA(object(), REALclassRef{}));
  EXPECT_FALSE(REALinRuntime());
  EXPECT_EQ(originalREALBuildString("x", 1), nullptr);
  EXPECT_EQ(REALGetStringEncoding(text("x")), 0u);
  EXPECT_EQ(REALConvertString(text("x"), kEncodingUTF8), nullptr);
  EXPECT_EQ(REALGetStringCFString(text("x"), false), nullptr);
  EXPECT_EQ(REALCopyStringCFString(text("x")), nullptr);
  EXPECT_EQ(REALNewVariantString(text("x")), nullptr);
  EXPECT_EQ(REALNewVariantDouble(1.0), nullptr);
  EXPECT_EQ(REALCreateArray(kArrayOfStrings, -1), nullptr);
  EXPECT_EQ(REALGetArrayUBound(array()), 0);
  EXPECT_EQ(REALGetArrayString(array(), 0), nullptr);
  EXPECT_EQ(REALGetArrayObject(array(), 0), nullptr);
  EXPECT_EQ(REALNewMemoryBlock(1), nullptr);
  EXPECT_EQ(REALFolderItemFromFSSpec(nullptr), nullptr);
  EXPECT_FALSE(REALFSSpecFromFolderItem(nullptr, nullptr));
  REALevent event{"E"};
  EXPECT_EQ(REALGetEventInstance(object(), &event), nullptr);

  std::int32_t integer = 7;
  EXPECT_FALSE(REALGetPropValueInt32(object(), "Year", &integer));
  EXPECT_EQ(integer, 7);
  EXPECT_FALSE(REALSetPropValueInt32(object(), "Year", 1));

  REALLockObject(object());
  REALUnlockObject(object());
  REALLockString(text("x"));
  REALUnlockString(text("x"));
  REALRaiseException(object());
  REALYieldToRB();
  REALMessageBox(text("x"));
  REALInsertArrayValueString(array(), 0, text("x"));
  REALInsertArrayValueObject(array(), 0, object());
}

TEST_F(HostInterface, AsksAgainWhileAnEntryIsMissingAndNeverAfterItIsFound) {
  REALinRuntime();
  REALinRuntime();
  EXPECT_EQ(asked["REALinRuntime"], 2);
  give(
      "REALinRuntime", +[] { return true; });
  EXPECT_TRUE(REALinRuntime());
  EXPECT_TRUE(REALinRuntime());
  EXPECT_EQ(asked["REALinRuntime"], 3);
}

TEST_F(HostInterface, KeepsACacheForEachWrapperOfAnEntry) {
  give(
      "REALGetStringCFString",
      +[](REALstring, bool flag) { return reinterpret_cast<CFStringRef>(flag ? 0x2000 : 0x3000); });
  EXPECT_EQ(REALGetStringCFString(text("x"), true), reinterpret_cast<CFStringRef>(0x2000));
  EXPECT_EQ(REALCopyStringCFString(text("x")), reinterpret_cast<CFStringRef>(0x3000));
  EXPECT_EQ(asked["REALGetStringCFString"], 2);
}

TEST_F(HostInterface, HandsOnWhatItsCallsDifferIn) {
  static void* firstArgument = object();
  give(
      "REALLoadGlobalMethod", +[](void* first, const char* declaration) -> void* {
        firstArgument = first;
        return const_cast<char*>(declaration);
      });
  const char* declaration = "f() as integer";
  EXPECT_EQ(REALLoadFrameworkMethod(declaration), declaration);
  EXPECT_EQ(firstArgument, nullptr);

  give(
      "GetEventInstance", +[](REALobject, Word reserved) { return reinterpret_cast<void*>(reserved); });
  REALevent event{"E", 0x4711};
  EXPECT_EQ(REALGetEventInstance(object(), &event), reinterpret_cast<void*>(0x4711));
}

namespace {

// A host without string data of its own, whose strings are C strings in UTF-8.
void giveStringServices() {
  give(
      "StringGetCString", +[](REALstring string) { return bytesOf(string); });
  give(
      "REALLoadGlobalMethod", +[](void*, const char* declaration) -> void* {
        using LenB = REALinteger(REALstring);
        LenB* lenB = [](REALstring string) { return static_cast<REALinteger>(std::strlen(bytesOf(string))); };
        return std::string(declaration) == "LenB( s as string ) as integer" ? reinterpret_cast<void*>(lenB) : nullptr;
      });
}

int unlockedStrings = 0;

void countUnlockedStrings() {
  give(
      "REALUnlockString", +[](REALstring) { ++unlockedStrings; });
}

}  // namespace

TEST_F(HostInterface, LeavesStringDataToTheHostThatHasIt) {
  give(
      "PluginGetStringData", +[](REALstring, std::uint32_t encoding, REALstringData* data) {
        *data = {nullptr, 5, encoding};
        return encoding == kEncodingUTF8;
      });
  give(
      "PluginDisposeStringData", +[](REALstringData* data) { data->length = 99; });
  giveStringServices();
  REALstringData data{};
  EXPECT_TRUE(REALGetStringData(text("x"), kEncodingUTF8, &data));
  EXPECT_EQ(data.length, 5u);
  EXPECT_FALSE(REALGetStringData(text("x"), kEncodingASCII, &data));
  EXPECT_EQ(asked["StringGetCString"], 0);
  REALDisposeStringData(&data);
  EXPECT_EQ(data.length, 99u);
}

TEST_F(HostInterface, CopiesStringDataWhereTheHostHasNone) {
  giveStringServices();
  REALstringData data{};
  ASSERT_TRUE(REALGetStringData(text("abc"), kEncodingAsStored, &data));
  EXPECT_EQ(data.length, 3u);
  EXPECT_EQ(data.encoding, kEncodingAsStored);
  EXPECT_EQ(std::memcmp(data.data, "abc\0\0\0\0", 7), 0);
  REALDisposeStringData(&data);

  EXPECT_FALSE(REALGetStringData(nullptr, kEncodingAsStored, &data));
}

TEST_F(HostInterface, ConvertsCopiedStringDataOnlyWhenItsEncodingDiffers) {
  giveStringServices();
  countUnlockedStrings();
  give(
      "REALGetStringEncoding", +[](REALstring) { return kEncodingUTF8; });
  REALstringData data{};
  ASSERT_TRUE(REALGetStringData(text("abc"), kEncodingUTF8, &data));
  EXPECT_EQ(asked["REALConvertString"], 0);
  REALDisposeStringData(&data);

  EXPECT_FALSE(REALGetStringData(text("abc"), kEncodingUTF16, &data));  // there is no conversion
  give(
      "REALConvertString",
      +[](REALstring, std::uint32_t encoding) { return encoding == kEncodingUTF16 ? text("converted") : nullptr; });
  ASSERT_TRUE(REALGetStringData(text("abc"), kEncodingUTF16, &data));
  EXPECT_EQ(data.length, 9u);
  EXPECT_EQ(data.encoding, kEncodingUTF16);
  EXPECT_EQ(unlockedStrings, 1);
  REALDisposeStringData(&data);
  EXPECT_FALSE(REALGetStringData(text("abc"), kEncodingUTF32, &data));
  EXPECT_EQ(unlockedStrings, 1);
}

TEST_F(HostInterface, HasNoStringDataWithoutLengthOrBytes) {
  give(
      "StringGetCString", +[](REALstring string) { return bytesOf(string); });
  REALstringData data{};
  EXPECT_FALSE(REALGetStringData(text("abc"), kEncodingAsStored, &data));
  giveStringServices();  // found once it is there
  EXPECT_TRUE(REALGetStringData(text("abc"), kEncodingAsStored, &data));
  REALDisposeStringData(&data);
}

namespace {

template <class Element>
REALarray arrayOver(REALarrayRecord& record, Element* storage) {
  record.storage = storage;
  return reinterpret_cast<REALarray>(&record);
}

int lockedObjects = 0;
int lockedStrings = 0;

}  // namespace

TEST_F(HostInterface, ReadsElementsFromStorageWhereTheHostHasNoGetters) {
  give(
      "REALLockObject", +[](REALobject) { ++lockedObjects; });
  give(
      "REALLockString", +[](REALstring) { ++lockedStrings; });
  REALarrayRecord record{};

  std::int64_t int64s[] = {1, -0x123456789ALL};
  std::int64_t int64 = 0;
  REALGetArrayValueInt64(arrayOver(record, int64s), 1, &int64);
  EXPECT_EQ(int64, -0x123456789ALL);
  std::int32_t int32s[] = {1, -2};
  std::int32_t int32 = 0;
  REALGetArrayValueInt32(arrayOver(record, int32s), 1, &int32);
  EXPECT_EQ(int32, -2);
  signed char bytes[] = {1, -1};
  std::uint8_t byte = 0;
  REALGetArrayValueUInt8(arrayOver(record, bytes), 1, &byte);
  EXPECT_EQ(byte, 0xFF);
  float singles[] = {1, 2.5F};
  float single = 0;
  REALGetArrayValueSingle(arrayOver(record, singles), 1, &single);
  EXPECT_EQ(single, 2.5F);
  double doubles[] = {1, 2.25};
  double real = 0;
  REALGetArrayValueDouble(arrayOver(record, doubles), 1, &real);
  EXPECT_EQ(real, 2.25);

  REALstring strings[] = {nullptr, text("b")};
  REALstring string = nullptr;
  REALGetArrayValueString(arrayOver(record, strings), 1, &string);
  EXPECT_EQ(string, strings[1]);
  REALGetArrayValueString(arrayOver(record, strings), 0, &string);
  EXPECT_EQ(string, nullptr);
  EXPECT_EQ(lockedStrings, 1);
  REALobject objects[] = {object(), nullptr};
  REALobject read = nullptr;
  REALGetArrayValueObject(arrayOver(record, objects), 0, &read);
  EXPECT_EQ(read, object());
  REALGetArrayValueObject(arrayOver(record, objects), 1, &read);
  EXPECT_EQ(read, nullptr);
  EXPECT_EQ(lockedObjects, 1);

  EXPECT_EQ(asked["RuntimeArrayDirectGetGetProc"], 7);  // once an element type, for good
}

TEST_F(HostInterface, AsksTheHostsGetterForEachArray) {
  give(
      "RuntimeArrayDirectGetGetProc", +[](REALarray asking) -> void* {
        if (asking == nullptr) return nullptr;
        return reinterpret_cast<void*>(
            +[](REALarray, REALinteger index) { return static_cast<std::int32_t>(100 + index); });
      });
  std::int32_t value = 7;
  REALGetArrayValueInt32(array(), 3, &value);
  EXPECT_EQ(value, 103);
  REALGetArrayValueInt32(nullptr, 3, &value);
  EXPECT_EQ(value, 103);
  REALGetArrayValueInt32(array(), 3, nullptr);
  EXPECT_EQ(asked["RuntimeArrayDirectGetGetProc"], 1);

  int unread = 11;
  REALGetArrayValue(static_cast<REALintegerArray>(nullptr), 0, &unread);
  EXPECT_EQ(unread, 11);
}

TEST_F(HostInterface, InsertsThroughTheProcedureOfTheArray) {
  static REALinteger insertedAt = -1;
  give(
      "RuntimeArrayDirectGetInsertProc", +[](REALarray) {
        return reinterpret_cast<void*>(+[](REALarray, REALinteger index, REALobject) { insertedAt = index; });
      });
  REALInsertArrayValueObject(array(), 5, object());
  EXPECT_EQ(insertedAt, 5);
}
