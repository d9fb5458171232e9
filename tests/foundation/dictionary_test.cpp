#include "platform/foundation/dictionary.h"

#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/null.h"
#include "platform/foundation/number.h"
#include "platform/objc/instrumentation.h"
#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

#include <functional>
#include <string>

namespace {

NSNumber number(int value) { return NSNumber::numberWithInt(value); }

std::string joinedKeys(NSDictionary dictionary) {
  std::string joined;
  const NSArray keys = dictionary.allKeys();
  for (NSUInteger i = 0; i < keys.count(); ++i) joined += keys.objectAtIndex(i).description().UTF8String();
  return joined;
}

TEST(Dictionary, FindsByEqualKeysInTheOrderTheyCame) {
  const auto dictionary = NSMutableDictionary::dictionaryWithCapacity(1);
  for (int i = 0; i < 1000; ++i) dictionary.setObject("value"_ns, number(i));
  EXPECT_EQ(dictionary.count(), 1000U);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_TRUE(dictionary.objectForKey(NSNumber::numberWithDouble(i)));
    EXPECT_TRUE(dictionary.allKeys().objectAtIndex(static_cast<NSUInteger>(i)).isEqual(number(i)));
  }
  EXPECT_FALSE(dictionary.objectForKey(number(1000)));
  EXPECT_FALSE(dictionary.objectForKey(nullptr));
}

TEST(Dictionary, KeepsAKeysPlaceUntilItIsRemoved) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (const NSString key : {"a"_ns, "b"_ns, "c"_ns}) dictionary.setObject(number(1), key);
  dictionary.setObject(number(2), "a"_ns);
  EXPECT_EQ(joinedKeys(dictionary), "abc");
  dictionary.removeObjectForKey("a"_ns);
  dictionary.removeObjectForKey("x"_ns);
  EXPECT_EQ(joinedKeys(dictionary), "bc");
  dictionary.setObject(number(3), "a"_ns);
  EXPECT_STREQ(dictionary.description().UTF8String(), "{\n    b = 1;\n    c = 1;\n    a = 3;\n}");
}

TEST(Dictionary, CopiesKeysThatMayChange) {
  const auto dictionary = NSMutableDictionary::dictionary();
  const auto key = NSMutableString::string();
  key.appendString("before"_ns);
  dictionary.setObject(number(1), key);
  key.appendString("after"_ns);
  EXPECT_TRUE(dictionary.objectForKey("before"_ns));
  EXPECT_FALSE(dictionary.objectForKey(key));
  EXPECT_EQ(joinedKeys(dictionary), "before");

  // What can't be copied is a key all the same.
  dictionary.setObject(number(1), NSNull::null());
  EXPECT_EQ(dictionary.objectForKey(NSNull::null()).as<NSNumber>().intValue(), 1);
}

TEST(Dictionary, RefusesNilAndChangesToImmutableOnes) {
  const auto dictionary = NSMutableDictionary::dictionary();
  const auto immutable = NSDictionary::dictionary().as<NSMutableDictionary>();
  const auto keys = NSArray::arrayWithObject("a"_ns);
  const std::function<void()> refused[] = {
      [&] { dictionary.setObject(nullptr, "a"_ns); },
      [&] { dictionary.setObject(number(1), nullptr); },
      [&] { dictionary.removeObjectForKey(nullptr); },
      [&] { (void)NSDictionary::dictionaryWithObject(nullptr, "a"_ns); },
      [&] { (void)NSDictionary::dictionaryWithObjects(NSArray::array(), keys); },
      [&] { immutable.setObject(number(1), "a"_ns); },
  };
  for (const auto& call : refused) EXPECT_EQ(raised(call), "NSInvalidArgumentException") << &call - refused;
  EXPECT_EQ(dictionary.count(), 0U);
}

// Each of the sends that storing makes fails in turn: nothing is stored, lost or leaked.
TEST(Dictionary, IsUnchangedWhenStoringFails) {
  const AutoreleasePool pool;
  const auto dictionary = NSMutableDictionary::dictionary();
  dictionary.setObject(number(1), "a"_ns);
  const auto key = NSMutableString::string();
  key.appendString("b"_ns);
  const NSObject object = number(2);
  const auto before = liveObjects();
  bool stored = false;
  static int sendsLeft = 0;
  for (int sends = 0; !stored; ++sends) {
    const AutoreleasePool inner;
    sendsLeft = sends;
    objc_setSendHook([](objc::Object*, objc::Selector) {
      if (sendsLeft-- == 0) throw std::string("a send failed");
    });
    try {
      dictionary.setObject(object, key);
      stored = true;
    } catch (const std::string&) {
    }
    objc_setSendHook(nullptr);
    ASSERT_EQ(joinedKeys(dictionary), stored ? "ab" : "a") << sends;
    ASSERT_LT(sends, 100);
  }
  dictionary.removeObjectForKey(key);  // and with it its copy
  EXPECT_EQ(liveObjects(), before);
}

}  // namespace
