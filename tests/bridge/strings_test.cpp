#include "bridge/strings.h"

#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "host/arrays.h"
#include "host/memory_blocks.h"
#include "host/objects.h"
#include "host/strings.h"
#include "platform/objc/retained.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

using namespace std::literals;

namespace {

HostRef<REALstring> hostString(std::string_view bytes, std::uint32_t encoding = kEncodingUTF8) {
  return adoptHost(host::newString(bytes, encoding));
}

std::string utf8(NSString string) { return string ? string.UTF8String() : "nil"; }

// The text of a host string that a conversion answered, with the reference given back.
std::string take(REALstring string) {
  const auto held = adoptHost(string);
  return held ? host::textOf(held.get()) : "nil";
}

NSString nsString(std::u16string_view units) { return NSString::stringWithCharacters(units.data(), units.size()); }

template <class Unit>
std::string bytesOf(std::basic_string_view<Unit> units) {
  return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(Unit)};
}

}  // namespace

namespace {

struct StoredText {
  std::string bytes;
  std::uint32_t encoding;
  std::string expected;
};

const std::vector<StoredText> kStoredTexts{
    {"Zo\xC3\xAB", kEncodingUTF8, "Zoë"},
    {"Zo\xC3", kEncodingUTF8, "nil"},  // refused
    {"abc", kEncodingASCII, "abc"},
    {"Zo\x91", kEncodingMacRoman, "Zoë"},
    {"Zo\x91", kEncodingAsStored, "Zoë"},  // of unknown encoding
    {bytesOf(u"Zoë😀"sv), kEncodingUTF16, "Zoë😀"},
    {bytesOf(u"ab"sv) + "c", kEncodingUTF16, "ab"},  // an odd last byte
    {"ab\0cd"s, kEncodingUTF8, "ab"},
    {"abc", 0x4711, "nil"},  // no such encoding
};

void expectTheirTexts() {
  for (const StoredText& text : kStoredTexts) {
    EXPECT_EQ(utf8(NewNSString(hostString(text.bytes, text.encoding).get())), text.expected) << text.bytes;
  }
  const auto created = Retained<NSString>::adopt(bridge<NSString>(RBString2CFString(hostString("owned").get())));
  EXPECT_EQ(utf8(created.get()), "owned");
  EXPECT_EQ(RBString2CFString(nullptr), nullptr);
  EXPECT_FALSE(NewNSString(nullptr));
}

}  // namespace

TEST(Strings, AreReadWhereTheHostMakesNoFoundationString) {
  const Host host{.without = {"REALGetStringCFString"}};
  expectTheirTexts();
}

TEST(Strings, AreCopiedWhereTheHostHasNoStringData) {
  const Host host{.without = {"REALGetStringCFString", "PluginGetStringData"}};
  expectTheirTexts();
}

TEST(Strings, OfOlderHostsAreReadInPlace) {
  const Host host{.version = 2012.9, .without = {"REALGetStringCFString", "PluginGetStringData"}};
  expectTheirTexts();
}

TEST(Strings, ReachTheHostWholeOnEitherSideOfTheFixedBuffer) {
  const Host host{};
  for (std::size_t length : {1U, 98U, 99U, 100U, 101U, 5000U}) {
    for (const char16_t unit : {u'a', u'ë', u'北'}) {
      NSString text = nsString(std::u16string(length, unit));
      EXPECT_EQ(take(NSStringRB(text)), utf8(text)) << length;
    }
  }
  EXPECT_EQ(take(NSStringRB(nsString(u"😀"))), "😀");
  EXPECT_EQ(NSStringRB(nullptr), nullptr);
  EXPECT_EQ(NSStringRB(""_ns), nullptr);
  EXPECT_EQ(NSStringRB(nsString(u"a\xD800")), nullptr);  // an unpaired surrogate has no UTF-8
  EXPECT_EQ(take(NSStringRB(nsString({u"ab\0cd", 5}))), "ab");
  EXPECT_EQ(NSStringRB(nsString({u"\0cd", 3})), nullptr);
}

TEST(Strings, BuildFromUTF32OnEitherSideOfTheFixedBuffer) {
  const Host host{};
  const std::string bytes = bytesOf<char32_t>(std::u32string(300, U'北'));
  for (std::int32_t size : {796, 798, 799, 800, 801, 804, 1200}) {
    std::string expected;
    for (std::int32_t i = 0; i < size / 4; ++i) expected += "北";
    EXPECT_EQ(take(REALBuildUnicodeString(bytes.data(), size, kEncodingUTF32)), expected) << size;
  }
  EXPECT_EQ(REALBuildUnicodeString(nullptr, 3, kEncodingUTF8), nullptr);
  EXPECT_EQ(REALBuildUnicodeString("abc", 0, kEncodingUTF32), nullptr);
  EXPECT_EQ(REALBuildUnicodeString("abc", -1, kEncodingUTF8), nullptr);
}

TEST(Strings, GiveUTF16BytesBackWhenTheHostCannotConvert) {
  const Host host{.without = {"REALConvertString"}};
  const std::string bytes = bytesOf(u"abc"sv);
  EXPECT_EQ(REALBuildUnicodeString(bytes.data(), 6, kEncodingUTF16), nullptr);
  EXPECT_EQ(REALBuildUnicodeString(bytes.data(), 4, kEncodingUTF32), nullptr);
}

TEST(StringArrays, LeaveOutEmptyStringsAndAreFilledInOrder) {
  const Host host{};
  const auto handleOf = [](const host::Value& array) {
    return static_cast<REALstringArray>(static_cast<REALarray>(array.object()));
  };
  const NSArray read = CreateNSStringArray(handleOf(host::stringArray({"one", "", "three"})), 0);
  ASSERT_EQ(read.count(), 2U);
  EXPECT_EQ(utf8(read.objectAtIndex(1).as<NSString>()), "three");
  const host::Value filled = host::stringArray({});
  EXPECT_TRUE(CreateNSStringArray(handleOf(filled), 0));
  EXPECT_FALSE(CreateNSStringArray(handleOf(filled), 1));
  EXPECT_FALSE(CreateNSStringArray(REALstringArray{}, 0));
  EXPECT_EQ(utf8(CreateNSStringArray(hostString("x").get()).objectAtIndex(0).as<NSString>()), "x");
  EXPECT_FALSE(CreateNSStringArray(REALstring{}));
  for (const NSArray strings : {NSArray::arrayWithObjects({"a"_ns, ""_ns, "c"_ns}), NSArray(), NSArray::array()}) {
    FillStringArray(handleOf(filled), strings);
    EXPECT_EQ(filled.elements(), (std::vector<host::Value>{"a", "", "c"}));
  }
}

TEST(RbData, ViewsAMemoryBlockAndStaysInside) {
  const Host host{};
  const host::Value block = host::memoryBlock("0123456789");
  auto* handle = static_cast<REALmemoryBlock>(block.object());
  const auto view = [&](std::uint32_t offset, std::uint32_t length) {
    const rbData bytes(handle, offset, length);
    return std::string(bytes.data, bytes.length);
  };
  EXPECT_EQ(view(0, 0), "0123456789");
  EXPECT_EQ(view(2, 3), "234");
  EXPECT_EQ(view(8, 5), "89");
  EXPECT_EQ(view(11, 1), "");
  EXPECT_EQ(rbData(REALmemoryBlock{}, 0, 0).data, nullptr);
}
