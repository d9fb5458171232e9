#include "platform/foundation/dictionary.h"

#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/null.h"
#include "platform/foundation/number.h"
#include "platform/objc/instrumentation.h"
#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <string>

namespace {

NSString text(const char* utf8) { return NSString::stringWithUTF8String(utf8); }
NSNumber number(int value) { return NSNumber::numberWithInt(value); }

std::string joinedKeys(NSDictionary dictionary) {
  std::string joined;
  const NSArray keys = dictionary.allKeys();
  for (NSUInteger i = 0; i < keys.count(); ++i) joined += keys.objectAtIndex(i).description().UTF8String();
  return joined;
}

TEST(Dictionary, FindsByEqualKeysInTheOrderTheyCame) {
  const auto dictionary = NSMutableDictionary::dictionaryWithCapacity(1);
  for (int i = 0; i < 1000; ++i) dictionary.setObject(number(i), text(std::to_string(i).c_str()));
  dictionary.setObject(text("one"), number(1));
  EXPECT_EQ(dictionary.count(), 1001U);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_TRUE(dictionary.objectForKey(text(std::to_string(i).c_str())).isEqual(number(i)));
    EXPECT_TRUE(
        dictionary.allKeys().objectAtIndex(static_cast<NSUInteger>(i)).isEqual(text(std::to_string(i).c_str())));
  }
  EXPECT_TRUE(dictionary.objectForKey(NSNumber::numberWithDouble(1)).isEqual(text("one")));
  EXPECT_FALSE(dictionary.objectForKey(number(2)));
  EXPECT_FALSE(dictionary.objectForKey(nullptr));
}

TEST(Dictionary, KeepsAKeysPlaceUntilItIsRemoved) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (const char* key : {"a", "b", "c"}) dictionary.setObject(number(1), text(key));
  dictionary.setObject(number(2), text("a"));
  EXPECT_EQ(joinedKeys(dictionary), "abc");
  EXPECT_EQ(dictionary.objectForKey(text("a")).as<NSNumber>().intValue(), 2);
  dictionary.removeObjectForKey(text("a"));
  dictionary.removeObjectForKey(text("x"));
  EXPECT_EQ(joinedKeys(dictionary), "bc");
  dictionary.setObject(number(3), text("a"));
  EXPECT_EQ(joinedKeys(dictionary), "bca");
  EXPECT_STREQ(dictionary.description().UTF8String(), "{\n    b = 1;\n    c = 1;\n    a = 3;\n}");
}

TEST(Dictionary, CopiesKeysThatMayChange) {
  const auto dictionary = NSMutableDictionary::dictionary();
  const auto key = NSMutableString::string();
  key.appendString(text("before"));
  dictionary.setObject(number(1), key);
  key.appendString(text("after"));
  EXPECT_TRUE(dictionary.objectForKey(text("before")));
  EXPECT_FALSE(dictionary.objectForKey(key));
  EXPECT_EQ(joinedKeys(dictionary), "before");

  // What can't be copied is a key all the same.
  dictionary.setObject(number(1), NSNull::null());
  EXPECT_EQ(dictionary.objectForKey(NSNull::null()).as<NSNumber>().intValue(), 1);
}

TEST(Dictionary, RefusesNilAndChangesToImmutableOnes) {
  const auto dictionary = NSMutableDictionary::dictionary();
  EXPECT_EQ(raised([&] { dictionary.setObject(nullptr, text("a")); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { dictionary.setObject(number(1), nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { dictionary.removeObjectForKey(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { (void)NSDictionary::dictionaryWithObject(nullptr, text("a")); }), "NSInvalidArgumentException");
  EXPECT_EQ(
      raised([] { (void)NSDictionary::dictionaryWithObjects(NSArray::array(), NSArray::arrayWithObject(text("a"))); }),
      "NSInvalidArgumentException");
  EXPECT_EQ(dictionary.count(), 0U);

  const auto immutable = NSDictionary::dictionary().as<NSMutableDictionary>();
  EXPECT_EQ(raised([&] { immutable.setObject(number(1), text("a")); }), "NSInvalidArgumentException");
}

TEST(Dictionary, EqualsWhatHasTheSameEntriesInAnyOrder) {
  const auto one = NSDictionary::dictionaryWithObjects(NSArray::arrayWithObjects({number(1), number(2)}),
                                                       NSArray::arrayWithObjects({text("a"), text("b")}));
  const auto other = NSMutableDictionary::dictionary();
  other.setObject(NSNumber::numberWithLongLong(2), text("b"));
  EXPECT_FALSE(one.isEqual(other));
  other.setObject(number(1), text("a"));
  EXPECT_TRUE(one.isEqual(other));
  EXPECT_TRUE(other.isEqual(one));
  EXPECT_EQ(one.hash(), other.hash());
  other.setObject(number(3), text("a"));
  EXPECT_FALSE(one.isEqual(other));
  EXPECT_FALSE(one.isEqual(NSArray::array()));
}

TEST(Dictionary, CopiesStandAlone) {
  const auto original = NSMutableDictionary::dictionary();
  original.setObject(number(1), text("a"));
  const auto copied = Retained<NSDictionary>::adopt(original.copy());
  const auto changeable = Retained<NSMutableDictionary>::adopt(copied->mutableCopy());
  original.setObject(number(2), text("a"));
  changeable->setObject(number(3), text("b"));
  EXPECT_EQ(copied->objectForKey(text("a")).as<NSNumber>().intValue(), 1);
  EXPECT_EQ(copied->count(), 1U);
  EXPECT_FALSE(copied->isKindOfClass("NSMutableDictionary"_class));
  EXPECT_EQ(joinedKeys(changeable.get()), "ab");
  EXPECT_TRUE(Retained<NSDictionary>::adopt(copied->copy()).get() == copied.get());
}

int sendsLeft = 0;

void failWhenSpent(objc::Object*, objc::Selector) {
  if (sendsLeft-- == 0) throw std::string("a send failed");
}

long livingObjects() {
  long total = 0;
  objc_visitLiveInstances([](const char*, long count, void* sum) { *static_cast<long*>(sum) += count; }, &total);
  return total;
}

// Each of the sends that storing makes fails in turn: nothing is stored, lost or leaked.
TEST(Dictionary, IsUnchangedWhenStoringFails) {
  const AutoreleasePool pool;
  const auto dictionary = NSMutableDictionary::dictionary();
  dictionary.setObject(number(1), text("a"));
  const auto key = NSMutableString::string();
  key.appendString(text("b"));
  const NSObject object = number(2);
  const long before = livingObjects();
  bool stored = false;
  for (int sends = 0; !stored; ++sends) {
    const AutoreleasePool inner;
    sendsLeft = sends;
    objc_setSendHook(failWhenSpent);
    try {
      dictionary.setObject(object, key);
      stored = true;
    } catch (const std::string&) {
    }
    objc_setSendHook(nullptr);
    ASSERT_EQ(joinedKeys(dictionary), stored ? "ab" : "a") << sends;
    ASSERT_LT(sends, 100);
  }
  EXPECT_EQ(livingObjects(), before + 1);  // the copied key
  dictionary.removeObjectForKey(key);
  EXPECT_EQ(livingObjects(), before);
}

}  // namespace
