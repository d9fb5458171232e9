#include "platform/foundation/null.h"
#include "tests/contacts/book_test.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

#include <string>

namespace {

class Record : public LiveObjectsTest {};

NSDateComponents components(NSInteger year, NSInteger month, NSInteger day) {
  const auto made = Retained<NSDateComponents>::adopt(NSDateComponents::alloc().init());
  if (year != 0) made->setYear(year);
  made->setMonth(month);
  made->setDay(day);
  return Retained<NSDateComponents>(made).autorelease();
}

TEST_F(Record, IsBornWithAnIdAndNothingElse) {
  const auto person = newPerson();
  EXPECT_TRUE(shown(person->uniqueId()).ends_with(":ABPerson"));
  EXPECT_EQ(shown(person->uniqueId()), shown(person.get(), "UID"));
  EXPECT_NE(shown(person->uniqueId()), shown(newPerson()->uniqueId()));
  EXPECT_EQ(ABPerson::properties().count(), 36U);
  for (NSUInteger i = 1; i < ABPerson::properties().count(); ++i) {
    EXPECT_FALSE(person->valueForProperty(ABPerson::properties().objectAtIndex(i).as<NSString>()));
  }
  EXPECT_FALSE(person->valueForProperty("no such property"_ns));
  EXPECT_EQ(ABPerson::typeOfProperty(kABAddressProperty), kABMultiDictionaryProperty);
  EXPECT_EQ(ABPerson::typeOfProperty(kABGroupNameProperty), kABErrorInProperty);
  EXPECT_EQ(ABGroup::typeOfProperty(nullptr), kABErrorInProperty);
  EXPECT_EQ(shown(ABGroup::properties()), "(UID Creation Modification GroupName)");
}

TEST_F(Record, KeepsTheValuesItIsGiven) {
  const auto person = newPerson();
  const auto phones = newMultiValue();
  const NSString mobile = phones->addValue("1"_ns, kABPhoneMobileLabel);
  phones->setPrimaryIdentifier(phones->addValue(" 2\r\n"_ns, "boat"_ns));
  EXPECT_TRUE(person->setValue(phones.get(), kABPhoneProperty));
  phones->removeValueAndLabelAtIndex(0);
  EXPECT_EQ(shown(person.get(), "Phone"), "[Mobile=1 *boat=2]");
  const auto kept = person->valueForProperty(kABPhoneProperty).as<ABMultiValue>();
  EXPECT_EQ(kept, person->valueForProperty(kABPhoneProperty));
  EXPECT_EQ(kept.propertyType(), kABMultiStringProperty);
  EXPECT_EQ(kept.indexForIdentifier(mobile), 0U);

  EXPECT_TRUE(person->setValue("a\r\nb"_ns, kABNoteProperty));
  EXPECT_EQ(shown(person.get(), "Note"), "a\nb");
  EXPECT_TRUE(person->setValue(NSNumber::numberWithInt(17), kABPersonFlags));
  EXPECT_EQ(shown(person.get(), "ABPersonFlags"), "17");
  EXPECT_TRUE(person->setValue(""_ns, kABNoteProperty));
  EXPECT_TRUE(person->setValue(newMultiValue().get(), kABPhoneProperty));
  EXPECT_TRUE(person->setValue(nullptr, kABPersonFlags));
  EXPECT_TRUE(person->removeValueForProperty(kABNicknameProperty));
  for (const char* gone : {"Note", "Phone", "ABPersonFlags", "Nickname"}) EXPECT_EQ(shown(person.get(), gone), "nil");
}

TEST_F(Record, RefusesValuesOfTheWrongType) {
  const auto person = newPerson();
  const auto numbers = newMultiValue();
  numbers->addValue(NSNumber::numberWithInt(1), "a"_ns);
  const std::pair<NSObject, NSString> rows[] = {
      {NSNumber::numberWithInt(1), kABFirstNameProperty},
      {"x"_ns, kABPhoneProperty},
      {numbers.get(), kABPhoneProperty},
      {numbers.get(), kABFirstNameProperty},
      {"x"_ns, kABPersonFlags},
      {"x"_ns, kABBirthdayProperty},
      {NSNull::null(), kABNoteProperty},
      {NSDate::date(), kABBirthdayComponentsProperty},
      {"x"_ns, nullptr},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(raised([&] { person->setValue(row.first, row.second); }), "NSInvalidArgumentException");
  }
  EXPECT_EQ(raised([&] { (void)person->valueForProperty(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { person->removeValueForProperty(nullptr); }), "NSInvalidArgumentException");
}

TEST_F(Record, SaysWhyItRefusesAValue) {
  const auto person = newPerson();
  person->setValue("Mo"_ns, kABFirstNameProperty);
  const auto mixed = newMultiValue();
  mixed->addValue("1"_ns, "a"_ns);
  const NSString bad = mixed->addValue(NSNumber::numberWithInt(1), "a"_ns);
  const auto empty = newMultiValue();
  const NSString blank = empty->addValue(" "_ns, "a"_ns);
  const struct {
    NSObject value;
    NSString property;
    NSInteger code;
    NSString identifier;
  } rows[] = {
      {mixed.get(), kABPhoneProperty, ABPropertyValueValidationError, bad},
      {empty.get(), kABPhoneProperty, ABPropertyValueValidationError, blank},
      {empty.get(), kABAIMInstantProperty, ABPropertyValueValidationError, nullptr},
      {components(2001, 2, 29), kABBirthdayComponentsProperty, ABPropertyValueValidationError, nullptr},
      {"x"_ns, "no such property"_ns, ABPropertyUnsupportedBySourceError, nullptr},
      {"x"_ns, kABUIDProperty, ABPropertyReadOnlyError, nullptr},
      {nullptr, kABModificationDateProperty, ABPropertyReadOnlyError, nullptr},
  };
  for (const auto& row : rows) {
    NSError error;
    EXPECT_FALSE(person->setValue(row.value, row.property, &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(shown(error.domain()), "ABAddressBookErrorDomain");
    EXPECT_EQ(error.code(), row.code);
    if (!row.identifier) continue;
    EXPECT_EQ(shown(error.userInfo().objectForKey(ABMultiValueIdentifiersErrorKey)), "(" + shown(row.identifier) + ")");
  }
  EXPECT_EQ(shown(person.get(), "First"), "Mo");
}

TEST_F(Record, ShowsOneValueUnderTwoNames) {
  const auto person = newPerson();
  person->setValue(components(0, 2, 29), kABBirthdayComponentsProperty);
  EXPECT_EQ(shown(person.get(), "Birthday"), "1604-02-29 12:00:00 +0000");
  person->setValue(person->valueForProperty(kABBirthdayProperty), kABBirthdayProperty);
  EXPECT_EQ(shown(person.get(), "BirthdayComponents"), "?-2-29");

  person->setValue(components(1604, 2, 29), kABBirthdayComponentsProperty);
  EXPECT_EQ(shown(person.get(), "BirthdayComponents"), "?-2-29");

  // The day is the one that the date has on the spot.
  setenv("TZ", "XXX-10", 1);
  tzset();
  person->setValue(NSDate::dateWithTimeIntervalSinceReferenceDate(16 * 3600), kABBirthdayProperty);
  EXPECT_EQ(shown(person.get(), "BirthdayComponents"), "2001-1-2");

  person->setValue("http://a"_ns, kABHomePageProperty);
  person->setValue("http://b"_ns, kABHomePageProperty);
  EXPECT_EQ(shown(person.get(), "URLs"), "[*HomePage=http://b]");
  person->removeValueForProperty(kABURLsProperty);
  EXPECT_EQ(shown(person.get(), "HomePage"), "nil");

  const auto names = newMultiValue();
  names->addValue("mo"_ns, kABHomeLabel);
  person->setValue(names.get(), kABAIMInstantProperty);
  person->setValue(names.get(), kABICQInstantProperty);
  EXPECT_EQ(shown(person.get(), "InstantMessage"),
            "[*Home={InstantMessageService=AIMInstant InstantMessageUsername=mo} "
            "Home={InstantMessageService=ICQInstant InstantMessageUsername=mo}]");
  person->removeValueForProperty(kABAIMInstantProperty);
  EXPECT_EQ(shown(person.get(), "InstantMessage"),
            "[*Home={InstantMessageService=ICQInstant InstantMessageUsername=mo}]");
}

TEST_F(Record, BelongsToOneBook) {
  const ContactsFolder folder;
  const ABAddressBook book = ABAddressBook::addressBook();
  const ABAddressBook other = ABAddressBook::addressBook();
  const auto pending = newPerson(book);
  const auto added = newPerson();
  EXPECT_EQ(book.people().count(), 1U);
  EXPECT_TRUE(book.hasUnsavedChanges());
  EXPECT_TRUE(book.addRecord(pending.get()));
  EXPECT_TRUE(book.addRecord(added.get()));
  EXPECT_EQ(book.people().count(), 2U);
  EXPECT_EQ(book.recordForUniqueId(added->uniqueId()), added.get());

  EXPECT_FALSE(other.addRecord(added.get()));
  EXPECT_FALSE(other.removeRecord(added.get()));
  EXPECT_FALSE(other.hasUnsavedChanges());

  EXPECT_EQ(raised([&] { book.addRecord(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { book.removeRecord(nullptr); }), "NSInvalidArgumentException");
  EXPECT_TRUE(book.removeRecord(added.get()));
  EXPECT_FALSE(book.removeRecord(added.get()));
  EXPECT_EQ(book.people().count(), 1U);
  EXPECT_FALSE(book.recordForUniqueId(added->uniqueId()));
  EXPECT_EQ(shown(book.recordClassFromUniqueId(added->uniqueId())), "ABPerson");
  EXPECT_FALSE(book.recordClassFromUniqueId("x"_ns));
}

}  // namespace
