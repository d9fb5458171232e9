#include "host/strings.h"

#include "host/memory.h"
#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

namespace {

using host::StringRef;
using host::Value;
using namespace std::string_literals;
using namespace std::string_view_literals;

class Strings : public ::testing::Test {
 protected:
  static StringRef convert(const StringRef& string, std::uint32_t encoding) {
    return StringRef::adopt(entry<REALstring(REALstring, std::uint32_t)>("REALConvertString")(string.get(), encoding));
  }

  Host host_{.plugin = false};
};

template <class Unit>
std::string bytes(std::basic_string_view<Unit> units) {
  return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(Unit)};
}

TEST_F(Strings, ConvertBetweenAllEncodingsWhatIsValidAndInThem) {
  // A zero in the middle is text as well.
  const std::string utf8 = "a\0\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"s;
  const std::string utf16 = bytes(u"a\0ä€😀"sv);
  const std::string utf32 = bytes(U"a\0ä€😀"sv);
  const std::pair<std::string, std::uint32_t> forms[] = {
      {utf8, kEncodingUTF8}, {utf16, kEncodingUTF16}, {utf32, kEncodingUTF32}};
  for (const auto& [source, from] : forms) {
    const StringRef string = buildString(source.data(), static_cast<std::int32_t>(source.size()), from);
    EXPECT_EQ(host::textOf(string.get()), utf8);
    for (const auto& [target, to] : forms) {
      const StringRef converted = convert(string, to);
      EXPECT_EQ(host::bytesOf(converted.get()), target) << from << " to " << to;
      EXPECT_EQ(host::encodingOf(converted.get()), to);
    }
  }
  const StringRef macRoman = buildString("\x8A\xDB", 2, kEncodingMacRoman);
  EXPECT_EQ(host::textOf(macRoman.get()), "ä€");
  EXPECT_EQ(host::bytesOf(convert(macRoman, kEncodingUTF8).get()), "ä€");

  EXPECT_FALSE(convert(buildString("\xFF\xFE", 2, kEncodingUTF8), kEncodingUTF16));
  EXPECT_FALSE(convert(buildString("\xF0\x9F\x98\x80", 4, kEncodingUTF8), kEncodingMacRoman));
  EXPECT_FALSE(convert(StringRef(), kEncodingUTF8));
  // Half a pair is replaced.
  const std::string half = bytes(u"x\xD83D"sv);
  EXPECT_EQ(host::bytesOf(convert(buildString(half.data(), 4, kEncodingUTF16), kEncodingUTF8).get()), "x\uFFFD");
}

TEST_F(Strings, OfUnknownEncodingKeepTheirBytes) {
  auto string = StringRef::adopt(entry<REALstring(const char*, std::int32_t)>("REALBuildString")("\x80 raw", 5));
  EXPECT_EQ(entry<std::uint32_t(REALstring)>("REALGetStringEncoding")(string.get()), kEncodingAsStored);
  EXPECT_EQ(host::bytesOf(convert(string, kEncodingUTF8).get()), "\x80 raw");
  EXPECT_EQ(host::copyCFString(string.get()), nullptr);
}

TEST_F(Strings, LieInMemoryAsOldPluginsReadThem) {
  const StringRef string = buildString("old", 3, kEncodingUTF8);
  const auto* record = reinterpret_cast<const REALstringRecord*>(string.get());
  EXPECT_EQ(record->length, 3U);
  // Terminated in whatever encoding it is read, unless the host is hostile.
  EXPECT_EQ(std::memcmp(record->buffer + 1, "old\0\0\0\0", host::isHostile() ? 3 : 7), 0);
  EXPECT_STREQ(entry<const char*(REALstring)>("StringGetCString")(string.get()), "old");
}

TEST_F(Strings, AreNilWithoutBytes) {
  auto* build = entry<REALstring(const char*, std::int32_t)>("REALBuildString");
  EXPECT_EQ(build("text", 0), nullptr);
  EXPECT_EQ(build(nullptr, 4), nullptr);
  EXPECT_TRUE(Value("").isNil());
  auto* lenB = reinterpret_cast<REALinteger (*)(REALstring)>(
      entry<void*(void*, const char*)>("REALLoadGlobalMethod")(nullptr, "LenB( s as string ) as integer"));
  EXPECT_EQ(lenB(nullptr), 0);
  EXPECT_EQ(lenB(buildString("ä", 2, kEncodingUTF8).get()), 2);
}

}  // namespace
