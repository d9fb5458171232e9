#include "platform/foundation/string.h"

#include "platform/foundation/array.h"
#include "platform/foundation/null.h"
#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

#include <string>
#include <thread>

namespace {

using StringTest = LiveObjectsTest;

NSMutableString mutableOf(NSString text) {
  const NSMutableString made = NSMutableString::string();
  made.appendString(text);
  return made;
}

TEST_F(StringTest, CountsUtf16Units) {
  const NSString text = NSString::stringWithUTF8String("a\u00E9\u4E2D\U0001F600");
  EXPECT_EQ(text.length(), 5U);
  EXPECT_EQ(text.characterAtIndex(3), 0xD83D);
  char16_t units[3] = {u'x', u'x', u'x'};
  text.getCharacters(units, NSMakeRange(1, 2));
  EXPECT_EQ(std::u16string(units, 3), u"\u00E9\u4E2Dx");
  EXPECT_STREQ(text.UTF8String(), "a\u00E9\u4E2D\U0001F600");
  EXPECT_EQ(NSString::stringWithUTF8(std::string_view("a\0b", 3)).length(), 3U);
}

TEST_F(StringTest, PositionsBeyondTheEndRaise) {
  const NSMutableString text = mutableOf("abc"_ns);
  char16_t buffer[4];
  EXPECT_EQ(raised([&] { (void)text.characterAtIndex(3); }), "NSRangeException");
  EXPECT_EQ(raised([&] { text.deleteCharactersInRange(NSMakeRange(4, 0)); }), "NSRangeException");
  for (const NSRange range : {NSMakeRange(2, 2), NSMakeRange(1, NSUInteger(-1)), NSMakeRange(3, 0)}) {
    const char* expected = range.length == 0 ? "nothing" : "NSRangeException";
    EXPECT_EQ(raised([&] { text.getCharacters(buffer, range); }), expected) << range.location;
  }
}

TEST_F(StringTest, CopiesOfImmutableStringsAreTheSame) {
  const NSString text = NSString::stringWithUTF8String("text");
  const auto copy = Retained<NSString>::adopt(text.copy());
  EXPECT_EQ(copy.get(), text);
  const auto changeable = Retained<NSMutableString>::adopt(text.mutableCopy());
  const auto frozen = Retained<NSString>::adopt(changeable->copy());
  changeable->deleteCharactersInRange(NSMakeRange(1, 2));
  EXPECT_STREQ(changeable->UTF8String(), "tt");
  EXPECT_STREQ(frozen->UTF8String(), "text");
  EXPECT_EQ(frozen->objectClass(), "NSString"_class);
}

TEST_F(StringTest, Utf8FollowsChangesAndReplacesUnpairedSurrogates) {
  const NSMutableString text = mutableOf("one"_ns);
  EXPECT_STREQ(text.UTF8String(), "one");
  text.appendString(text);
  EXPECT_STREQ(text.UTF8String(), "oneone");
  const char16_t unpaired[] = {u'a', 0xDC00, 0xD800, u'b', 0xD800};
  EXPECT_STREQ(NSString::stringWithCharacters(unpaired, 5).UTF8String(), "a\uFFFD\uFFFDb\uFFFD");
}

TEST_F(StringTest, Utf8MayBeAskedForOnManyThreads) {
  const NSString text = NSString::stringWithUTF8String("shared");
  const char* other = nullptr;
  std::thread thread([&] { other = text.UTF8String(); });
  const char* mine = text.UTF8String();
  thread.join();
  EXPECT_EQ(mine, other);
}

TEST_F(StringTest, FormatsTakeObjects) {
  EXPECT_STREQ(NSString::stringWithFormat("%@%% %@|%@"_ns, "a"_ns, nullptr, NSNull::null()).UTF8String(),
               "a% (null)|<null>");
  const NSMutableString text = mutableOf("<"_ns);
  text.appendFormat("%@ "_ns, "\u00E9"_ns);
  text.appendFormat("plain"_ns);
  EXPECT_STREQ(text.UTF8String(), "<\u00E9 plain");
  for (const NSString bad : {"%@ %@"_ns, "%d"_ns, "50%"_ns, NSString()}) {
    EXPECT_EQ(raised([&] { NSString::stringWithFormat(bad, "only"_ns); }), "NSInvalidArgumentException");
  }
}

}  // namespace
