#include "platform/contacts/multi_value.h"

#include "tests/contacts/shown.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace {

class MultiValue : public LiveObjectsTest {};

TEST_F(MultiValue, KeepsEntriesInOrderUnderTheirIdentifiers) {
  const auto value = newMultiValue();
  EXPECT_EQ(value->count(), 0U);
  EXPECT_FALSE(value->primaryIdentifier());
  const NSString first = value->addValue("1"_ns, "a"_ns);
  const NSString last = value->addValue("2"_ns, "b"_ns);
  const NSString middle = value->insertValue("3"_ns, "c"_ns, 1);
  EXPECT_EQ(shown(value.get()), "[*a=1 c=3 b=2]");
  EXPECT_EQ(value->indexForIdentifier(last), 2U);
  EXPECT_EQ(value->indexForIdentifier("other"_ns), NSNotFound);
  EXPECT_EQ(value->indexForIdentifier(nullptr), NSNotFound);
  EXPECT_TRUE(value->replaceValueAtIndex(1, "4"_ns));
  EXPECT_TRUE(value->replaceLabelAtIndex(1, "d"_ns));
  EXPECT_EQ(value->indexForIdentifier(middle), 1U);
  EXPECT_TRUE(value->setPrimaryIdentifier(last));
  EXPECT_FALSE(value->setPrimaryIdentifier("other"_ns));
  EXPECT_EQ(shown(value.get()), "[a=1 d=4 *b=2]");
  EXPECT_TRUE(value->removeValueAndLabelAtIndex(2));
  EXPECT_EQ(shown(value.get()), "[*a=1 d=4]");
  EXPECT_STREQ(value->primaryIdentifier().UTF8String(), first.UTF8String());
}

TEST_F(MultiValue, CopiesAreIndependent) {
  const auto value = newMultiValue();
  const auto text = Retained<NSMutableString>::adopt("1"_ns.mutableCopy());
  value->addValue(text.get(), "a"_ns);
  text->appendString("y"_ns);
  value->setPrimaryIdentifier(value->addValue("2"_ns, "b"_ns));
  const auto fixed = Retained<ABMultiValue>::adopt(value->copy());
  const auto changed = Retained<ABMutableMultiValue>::adopt(fixed->mutableCopy());
  EXPECT_TRUE(send<bool>(fixed.get(), "isEqual:"_sel, NSObject(changed.get())));
  value->removeValueAndLabelAtIndex(0);
  changed->replaceLabelAtIndex(0, "z"_ns);
  EXPECT_EQ(shown(fixed.get()), "[a=1 *b=2]");
  EXPECT_EQ(shown(changed.get()), "[z=1 *b=2]");
  EXPECT_FALSE(fixed->respondsToSelector("addValue:withLabel:"_sel));
  EXPECT_EQ(Retained<ABMultiValue>::adopt(fixed->copy()).get(), fixed.get());
  changed->addValue(changed.get(), "as it was"_ns);
  EXPECT_EQ(changed->valueAtIndex(2).as<ABMultiValue>().count(), 2U);
}

TEST_F(MultiValue, RaisesForWhatIsMissing) {
  const auto value = newMultiValue();
  value->addValue("1"_ns, "a"_ns);
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"NSRangeException", [&] { value->insertValue("2"_ns, "b"_ns, 2); }},
      {"NSInvalidArgumentException", [&] { value->addValue(nullptr, "b"_ns); }},
      {"NSInvalidArgumentException", [&] { value->addValue("2"_ns, nullptr); }},
      {"NSInvalidArgumentException", [&] { value->replaceValueAtIndex(0, nullptr); }},
      {"NSInvalidArgumentException", [&] { value->replaceLabelAtIndex(0, nullptr); }},
      {"NSInvalidArgumentException", [&] { value->setPrimaryIdentifier(nullptr); }},
  };
  for (const auto& [exception, action] : rows) EXPECT_EQ(raised(action), exception);
  EXPECT_EQ(shown(value.get()), "[*a=1]");
}

}  // namespace
