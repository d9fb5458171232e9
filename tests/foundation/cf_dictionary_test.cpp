#include "platform/foundation/cf_dictionary.h"

#include "tests/objc/live_objects.h"

#include <string>
#include <utility>

namespace {

using CFDictionaryTest = LiveObjectsTest;

// What the callbacks were asked for.
std::string calls;

const void* keepKey(CFAllocatorRef, const void* key) {
  calls += std::string("+") + static_cast<const char*>(key);
  return key;
}
void dropKey(CFAllocatorRef, const void* key) { calls += std::string("-") + static_cast<const char*>(key); }
// Only the first character counts.
Boolean equalKeys(const void* first, const void* second) {
  return *static_cast<const char*>(first) == *static_cast<const char*>(second);
}
CFHashCode hashKey(const void* key) { return static_cast<CFHashCode>(*static_cast<const char*>(key)); }

const CFDictionaryKeyCallBacks kTextKeys{0, &keepKey, &dropKey, nullptr, &equalKeys, &hashKey};
const CFDictionaryValueCallBacks kTextValues{0, &keepKey, &dropKey, nullptr, nullptr};

TEST_F(CFDictionaryTest, AsksItsCallbacks) {
  CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kTextKeys, &kTextValues);
  CFDictionarySetValue(dictionary, "key", "one");
  EXPECT_EQ(std::exchange(calls, ""), "+one+key");
  CFDictionarySetValue(dictionary, "k2", "two");
  EXPECT_EQ(std::exchange(calls, ""), "+two-one");
  EXPECT_EQ(CFDictionaryGetCount(dictionary), 1);
  EXPECT_STREQ(static_cast<const char*>(CFDictionaryGetValue(dictionary, "k3")), "two");
  CFDictionaryRemoveValue(dictionary, "absent");
  CFDictionaryRemoveValue(dictionary, "k");
  EXPECT_EQ(std::exchange(calls, ""), "-key-two");
  CFDictionarySetValue(dictionary, "last", "value");
  calls.clear();
  CFRelease(dictionary);
  EXPECT_EQ(calls, "-last-value");
}

TEST_F(CFDictionaryTest, WithoutCallbacksComparesAddresses) {
  CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(kCFAllocatorDefault, 1024, nullptr, nullptr);
  char keys[5000];
  for (char& key : keys) CFDictionarySetValue(dictionary, &key, &key + 1);
  EXPECT_EQ(CFDictionaryGetCount(dictionary), 5000);
  for (char& key : keys) EXPECT_EQ(CFDictionaryGetValue(dictionary, &key), &key + 1);
  EXPECT_EQ(CFDictionaryGetValue(dictionary, &dictionary), nullptr);
  for (char& key : keys) CFDictionaryRemoveValue(dictionary, &key);
  EXPECT_EQ(CFDictionaryGetCount(dictionary), 0);
  CFRelease(dictionary);
}

}  // namespace
