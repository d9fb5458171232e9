#include "platform/contacts/multi_value.h"

#include "platform/foundation/null.h"
#include "platform/objc/retained.h"
#include "tests/contacts/shown.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class MultiValue : public LiveObjectsTest {};

Retained<ABMutableMultiValue> made() {
  return Retained<ABMutableMultiValue>::adopt(ABMutableMultiValue::alloc().init());
}

TEST_F(MultiValue, KeepsEntriesInOrderUnderTheirIdentifiers) {
  const auto value = made();
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
  const auto value = made();
  value->addValue("1"_ns, "a"_ns);
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
}

TEST_F(MultiValue, TakesItsTypeFromItsEntries) {
  const NSObject numbers[] = {NSNumber::numberWithInt(1), NSNumber::numberWithDouble(1), NSNumber::numberWithFloat(1)};
  const struct {
    NSObject value;
    NSInteger type;
  } rows[] = {
      {"x"_ns, 257},
      {numbers[0], 258},
      {numbers[1], 259},
      {numbers[2], 259},
      {NSDate::date(), 260},
      {NSArray::array(), 261},
      {NSDictionary::dictionary(), 262},
      {NSData::dataWithBytes("", 0), 263},
      {Retained<NSDateComponents>::adopt(NSDateComponents::alloc().init()).autorelease(), 264},
      {NSNull::null(), 0},
  };
  EXPECT_EQ(made()->propertyType(), 0);
  for (const auto& row : rows) {
    const auto value = made();
    value->addValue(row.value, "a"_ns);
    EXPECT_EQ(value->propertyType(), row.type);
    value->addValue(row.type == 257 ? numbers[0] : NSObject("x"_ns), "a"_ns);
    EXPECT_EQ(value->propertyType(), 0);
  }
}

TEST_F(MultiValue, RaisesForWhatIsMissing) {
  const auto value = made();
  value->addValue("1"_ns, "a"_ns);
  const std::string range = "NSRangeException";
  EXPECT_EQ(raised([&] { (void)value->valueAtIndex(1); }), range);
  EXPECT_EQ(raised([&] { (void)value->labelAtIndex(NSNotFound); }), range);
  EXPECT_EQ(raised([&] { (void)value->identifierAtIndex(1); }), range);
  EXPECT_EQ(raised([&] { value->removeValueAndLabelAtIndex(1); }), range);
  EXPECT_EQ(raised([&] { value->replaceValueAtIndex(1, "2"_ns); }), range);
  EXPECT_EQ(raised([&] { value->replaceLabelAtIndex(1, "b"_ns); }), range);
  EXPECT_EQ(raised([&] { value->insertValue("2"_ns, "b"_ns, 2); }), range);
  const std::string argument = "NSInvalidArgumentException";
  EXPECT_EQ(raised([&] { value->addValue(nullptr, "b"_ns); }), argument);
  EXPECT_EQ(raised([&] { value->addValue("2"_ns, nullptr); }), argument);
  EXPECT_EQ(raised([&] { value->replaceValueAtIndex(0, nullptr); }), argument);
  EXPECT_EQ(raised([&] { value->replaceLabelAtIndex(0, nullptr); }), argument);
  EXPECT_EQ(raised([&] { value->setPrimaryIdentifier(nullptr); }), argument);
  EXPECT_EQ(shown(value.get()), "[*a=1]");
}

TEST_F(MultiValue, KeepsTextsOfItsOwn) {
  const auto value = made();
  const auto text = Retained<NSMutableString>::adopt("x"_ns.mutableCopy());
  value->addValue(text.get(), text.get());
  text->appendString("y"_ns);
  EXPECT_EQ(shown(value.get()), "[*x=x]");
}

}  // namespace
