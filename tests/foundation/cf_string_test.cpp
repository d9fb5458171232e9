#include "platform/foundation/cf_string.h"

#include "tests/objc/live_objects.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace std::string_literals;

using CFStringTest = LiveObjectsTest;

// Null as "<null>".
std::u16string unitsOf(CFStringRef string) {
  if (string == nullptr) return u"<null>";
  std::u16string units(static_cast<std::size_t>(CFStringGetLength(string)), u'\0');
  CFStringGetCharacters(string, CFRangeMake(0, CFStringGetLength(string)), units.data());
  CFRelease(string);
  return units;
}

// The bytes lie in storage of exactly their length, so that a sanitizer sees a read beyond it.
std::u16string fromBytes(const std::string& bytes, CFStringEncoding encoding, bool isExternal) {
  const auto exact = std::make_unique<std::uint8_t[]>(bytes.size());
  std::ranges::copy(bytes, exact.get());
  return unitsOf(CFStringCreateWithBytes(kCFAllocatorDefault, exact.get(), static_cast<CFIndex>(bytes.size()), encoding,
                                         isExternal));
}

// The converted bytes without the terminator; a refusal as "<refused>".
std::string toBytes(const std::u16string& units, CFStringEncoding encoding, CFIndex size = 100) {
  CFStringRef string =
      CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(), static_cast<CFIndex>(units.size()));
  std::string buffer(101, '#');
  const bool converted = CFStringGetCString(string, buffer.data(), size, encoding);
  CFRelease(string);
  // Nothing is written beyond the size; a refusal leaves an empty text.
  EXPECT_EQ(buffer.find_first_not_of('#', static_cast<std::size_t>(size)), std::string::npos);
  if (!converted) return size < 1 || buffer[0] == '\0' ? "<refused>" : "refused with text";
  buffer.resize(buffer.find_last_not_of('#') + 1);
  EXPECT_EQ(buffer.back(), '\0');
  buffer.pop_back();
  return buffer;
}

TEST_F(CFStringTest, StrictUtf8) {
  const std::pair<std::string, std::u16string> valid[] = {
      {"", u""},
      {"plain ASCII that is longer than two blocks of it", u"plain ASCII that is longer than two blocks of it"},
      {"0123456789abcde\xC3\xA9 0123456789abcdef", u"0123456789abcde\u00E9 0123456789abcdef"},
      {"\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0080\u07FF\u0800\uD7FF\uE000\uFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
  };
  for (const auto& [bytes, units] : valid) {
    EXPECT_EQ(fromBytes(bytes, kCFStringEncodingUTF8, false), units);
    EXPECT_EQ(toBytes(units, kCFStringEncodingUTF8), bytes);
  }
  const std::string invalid[] = {
      "\x80",         "\xC3",     "\xC0\xAF",         "\xC1\xBF",         "\xC3(",
      "\xE0\x9F\xBF", "\xE4\xB8", "\xED\xA0\x80",     "\xED\xBF\xBF",     "\xF0\x8F\xBF\xBF",
      "\xF0\x9F\x98", "\xFF",     "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "0123456789abcdef\xE9"};
  for (const std::string& bytes : invalid) {
    EXPECT_EQ(fromBytes(bytes, kCFStringEncodingUTF8, false), u"<null>") << testing::PrintToString(bytes);
  }
  const std::u16string unpaired[] = {{0xD800}, {0xDC00}, {u'a', 0xD83D, u'b'}, {0xDE00, 0xD83D}};
  for (const std::u16string& units : unpaired) EXPECT_EQ(toBytes(units, kCFStringEncodingUTF8), "<refused>");
}

TEST_F(CFStringTest, SingleByteEncodings) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const std::u16string roman = fromBytes(all, kCFStringEncodingMacRoman, false);
  ASSERT_EQ(roman.size(), 256U);
  EXPECT_EQ(roman.substr(0x7E, 4), u"\u007E\u007F\u00C4\u00C5");
  EXPECT_EQ(roman.substr(0xBD, 1) + roman[0xDB] + roman.substr(0xF0, 1), u"\u03A9\u20AC\uF8FF");
  EXPECT_EQ(roman.substr(0xFE), u"\u02DB\u02C7");
  for (std::size_t i = 1; i < 256; ++i) EXPECT_EQ(toBytes({roman[i]}, kCFStringEncodingMacRoman), all.substr(i, 1));
  EXPECT_EQ(toBytes(u"\u2126", kCFStringEncodingMacRoman), "\xBD");
  for (const CFStringEncoding encoding : {kCFStringEncodingISOLatin1, kCFStringEncodingASCII}) {
    EXPECT_EQ(fromBytes("a\x80\xFF", encoding, false), u"a\u0080\u00FF");
    EXPECT_EQ(toBytes(u"\u0080", encoding), encoding == kCFStringEncodingASCII ? "<refused>" : "\x80");
    EXPECT_EQ(toBytes(u"\u0100", encoding), "<refused>");
  }
  EXPECT_EQ(toBytes(u"\u0100", kCFStringEncodingMacRoman), "<refused>");
}

TEST_F(CFStringTest, WideEncodingsAndByteOrderMarks) {
  const struct {
    CFStringEncoding encoding;
    bool isExternal;
    std::string bytes;
    std::u16string units;
  } cases[] = {
      {kCFStringEncodingUnicode, false, "a\0b\0c"s, u"ab"},
      {kCFStringEncodingUnicode, false, "\xFE\xFF\0a"s, u"\uFFFE\u6100"},
      {kCFStringEncodingUnicode, true, "\xFE\xFF\0a"s, u"a"},
      {kCFStringEncodingUnicode, true, "\xFF\xFE\x61\0"s, u"a"},
      {kCFStringEncodingUnicode, true, "\0a\0b\0"s, u"ab"},
      {kCFStringEncodingUnicode, true, "a", u"<null>"},
      {kCFStringEncodingUTF32, false, "a\0\0\0\0\xF6\1\0\1"s, u"a\U0001F600"},
      {kCFStringEncodingUTF32, false, "\0\0\xFE\xFF\0\0\0a"s, u"a"},
      {kCFStringEncodingUTF32, true, "\xFF\xFE\0\0\x61\0\0\0"s, u"a"},
      {kCFStringEncodingUTF32, false, "\0\xD8\0\0"s, u"<null>"},
      {kCFStringEncodingUTF32, false, "\0\0\x11\0"s, u"<null>"},
      {kCFStringEncodingUTF8, true, "\xEF\xBB\xBFz", u"z"},
      {kCFStringEncodingUTF8, false, "\xEF\xBB\xBFz", u"\uFEFFz"},
  };
  for (const auto& [encoding, isExternal, bytes, units] : cases) {
    EXPECT_EQ(fromBytes(bytes, encoding, isExternal), units) << encoding << isExternal << testing::PrintToString(bytes);
  }
  EXPECT_EQ(toBytes(u"a\U0001F600", kCFStringEncodingUTF32), "a\0\0\0\0\xF6\1"s + "\0"s);
  EXPECT_EQ(toBytes({0xD800, u'a'}, kCFStringEncodingUTF32), "<refused>");
  EXPECT_EQ(toBytes({0xD800, u'a'}, kCFStringEncodingUnicode), "\0\xD8\x61\0"s);
}

TEST_F(CFStringTest, BuffersHoldTheTextAndItsTerminatorOrNothing) {
  for (const std::u16string& units : {u""s, u"abc"s, u"ab\u4E2D"s, u"0123456789abcdefghij"s, u"a\0b"s}) {
    const std::string whole = toBytes(units, kCFStringEncodingUTF8);
    const auto size = static_cast<CFIndex>(whole.size());
    EXPECT_EQ(toBytes(units, kCFStringEncodingUTF8, size + 1), whole);
    EXPECT_EQ(toBytes(units, kCFStringEncodingUTF8, size), "<refused>") << whole;
  }
  EXPECT_EQ(toBytes(u"a\0b"s, kCFStringEncodingUTF8), "a\0b"s);
  EXPECT_EQ(toBytes(u"abc", kCFStringEncodingMacRoman, 3), "<refused>");
  EXPECT_EQ(toBytes(u"a", 0xFFFF), "<refused>");
}

}  // namespace
