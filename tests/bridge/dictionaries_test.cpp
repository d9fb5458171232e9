#include "bridge/dictionaries.h"

#include "frame/host_ref.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/entries.h"
#include "platform/objc/instrumentation.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

REALdictionary handleOf(const host::Value& object) { return static_cast<REALdictionary>(object.object()); }

NSDictionary converted(const host::Value& dictionary) { return NewNSDictionary(handleOf(dictionary)); }

host::Value converted(NSDictionary dictionary) { return host::Value::adopt(NSDictionaryRB(dictionary)); }

bool isMutable(NSDictionary dictionary) { return dictionary.isKindOfClass("NSMutableDictionary"_class); }

}  // namespace

TEST(Dictionaries, ReachFoundationEntryByEntry) {
  const Host host{};
  const host::Value unsupported = host::variantOfType(6, 1);
  for (const auto& [dictionary, expected] : std::vector<std::pair<host::Value, std::string>>{
           {host::dictionary({{"a", "text"}, {"b", 5}}), "{'a'='text' 'b'=l 5}"},
           {host::dictionary({{"nil", nullptr}, {"empty", ""}}), "{'empty'='' 'nil'=null}"},
           {host::dictionary({{"value", unsupported}}), "{'value'=null}"},
           {host::dictionary({{unsupported, "key"}}), "{null='key'}"},
           {host::dictionary({{nullptr, "no key"}, {1, 2.5}}), "{l 1=d 2.5}"},
           {host::dictionary({{"in", host::dictionary({{"in", host::dictionary({})}})}, {"after", true}}),
            "{'after'=c 1 'in'={'in'={}}}"},
       }) {
    const NSDictionary read = converted(dictionary);
    EXPECT_EQ(shown(read), expected);
    EXPECT_TRUE(isMutable(read)) << expected;
  }
  const NSDictionary empty = converted(host::dictionary({}));
  EXPECT_EQ(shown(empty), "{}");
  EXPECT_FALSE(isMutable(empty));
  EXPECT_FALSE(NewNSDictionary(nullptr));
}

TEST(Dictionaries, ReachTheHostEntryByEntry) {
  const Host host{};
  const NSObject null = NSNull::null();
  const NSDictionary inner = dictionaryOf({{"deep"_ns, NSDictionary::dictionary()}});
  const NSDictionary odd = dictionaryOf({{"nil"_ns, null}, {null, "key"_ns}, {"in"_ns, inner}});
  EXPECT_EQ(shown(converted(odd)), "{'in'={'deep'={}} 'nil'=Nil Nil='key'}");
  EXPECT_EQ(NSDictionaryRB(nullptr), nullptr);
  const host::Value dictionary = host::dictionary({});
  EXPECT_TRUE(IsDictionary(dictionary.object()));
  EXPECT_FALSE(IsDictionary(host::date(2012, 1, 1).object()));
  EXPECT_FALSE(IsDictionary(nullptr));
  host::options().without = {"Dictionary"};
  EXPECT_EQ(NSDictionaryRB(inner), nullptr);
  EXPECT_FALSE(IsDictionary(dictionary.object()));
}

TEST(Dictionaries, ReadAndWriteWhatTheHostOffers) {
  const Host host{};
  const auto readFresh = [] { return shown(converted(host::dictionary({{"a", 1}}))); };
  const NSDictionary source = dictionaryOf({{"a"_ns, "text"_ns}});

  host::options().without = {"Dictionary.Count"};
  EXPECT_EQ(readFresh(), "{}");
  EXPECT_EQ(GetDictionaryCount(handleOf(host::dictionary({{"a", 1}}))), 0);
  // Each of these is converted with an earlier Dictionary alive, so that none has an earlier one's address.
  host::options().without = {"Dictionary.Key"};
  const host::Value first = host::dictionary({{"a", 1}});
  EXPECT_EQ(shown(converted(first)), "{}");
  EXPECT_TRUE(host::takePendingException());  // the host's, whose Dictionary was asked for the key nil
  host::options().without = {"Dictionary.Value"};
  const host::Value second = host::dictionary({{"a", 1}});
  EXPECT_EQ(shown(converted(second)), "{'a'=null}");
  SetDictionaryValue(handleOf(second), variantOf("b").get(), nullptr);
  EXPECT_EQ(GetDictionaryValue(handleOf(second), variantOf("a").get()), nullptr);
  const host::Value written = converted(source);
  host::options().without = {};
  EXPECT_EQ(shown(second), "{'a'=Integer 1}");
  EXPECT_EQ(shown(written), "{}");
}

TEST(DictionaryMethods, AreKeptForTheDictionaryLastUsed) {
  const Host host{};
  const host::Value a = host::dictionary({{"key of a", 1}});
  const host::Value b = host::dictionary({{"key of b", 2}});
  const auto keyOf = [](const host::Value& object) { return shown(take(GetDictionaryKey(handleOf(object), 0))); };

  EXPECT_EQ(keyOf(a), "'key of a'");
  host::options().without = {"Dictionary.Key"};
  EXPECT_EQ(keyOf(a), "'key of a'");  // kept
  EXPECT_EQ(keyOf(b), "Nil");         // loaded anew
  EXPECT_EQ(keyOf(a), "Nil");         // and once more
  host::options().without = {};
  EXPECT_EQ(keyOf(a), "Nil");  // what wasn't found is kept too
  EXPECT_EQ(keyOf(b), "'key of b'");

  SetDictionaryValue(handleOf(a), variantOf("set").get(), variantOf(3).get());
  EXPECT_EQ(shown(take(GetDictionaryValue(handleOf(a), variantOf("set").get()))), "Integer 3");
  EXPECT_EQ(GetDictionaryCount(handleOf(a)), 2);

  // Another object's are none, and take the place of the last.
  const host::Value date = host::date(2012, 7, 14);
  EXPECT_EQ(GetDictionaryKey(handleOf(date), 0), nullptr);
  EXPECT_EQ(GetDictionaryValue(handleOf(date), nullptr), nullptr);
  SetDictionaryValue(handleOf(date), nullptr, nullptr);
  host::options().without = {"Dictionary.Key"};
  EXPECT_EQ(keyOf(a), "Nil");
}

TEST(Dictionaries, MayShrinkWhileTheyAreRead) {
  static REALobject shrinking;
  const Host host{};
  host::Value entries = host::dictionary({{"a", 1}, {"b", 2}, {"c", 3}});
  shrinking = entries.object();
  objc_setSendHook([](objc::Object*, objc::Selector selector) {
    if (std::strcmp(sel_getName(selector), "setObject:forKey:") != 0 || shrinking == nullptr) return;
    const host::Value left = host::Value::share(std::exchange(shrinking, nullptr));
    for (const char* key : {"b", "c"}) left.call("Remove", key);
  });
  const NSDictionary read = converted(entries);
  objc_setSendHook(nullptr);
  EXPECT_EQ(read.count(), 1U);
  EXPECT_TRUE(host::takePendingException());  // the host's own, of the keys that are gone
}
