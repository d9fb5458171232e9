#include "platform/contacts/address_book.h"
#include "platform/contacts/constants.h"
#include "platform/contacts/vcard/dates.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/shown.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

namespace {

using vcard::Date;

class Search : public ::testing::Test {
 protected:
  // The UIDs of what matches.
  std::string found(ABSearchElement element) {
    const NSArray records = book().recordsMatchingSearchElement(element);
    std::string text;
    for (NSUInteger i = 0; i < records.count(); ++i) {
      const std::string id = shown(records.objectAtIndex(i).as<ABRecord>().uniqueId());
      text += id.substr(0, id.find(':'));
    }
    return text;
  }

  ABAddressBook book() {
    if (!book_) book_ = ABAddressBook::addressBook();
    return book_;
  }

  static ABSearchElement person(NSString property, NSObject value, NSInteger comparison, NSString label = nullptr,
                                NSString key = nullptr) {
    return ABPerson::searchElement(property, label, key, value, comparison);
  }

  AutoreleasePool pool_;
  ContactsFolder folder_;
  ABAddressBook book_;
};

TEST_F(Search, ComparesTexts) {
  folder_.writeCard("a.vcf", "UID:a\nN:Straße\n");
  folder_.writeCard("b.vcf", "UID:b\nN:STRASSE\n");
  folder_.writeCard("c.vcf", "UID:c\nN:ΟΔΌΣ\n");
  folder_.writeCard("d.vcf", "UID:d\nFN:Nobody\nX-ABShowAs:PERSON\n");
  folder_.writeCard("g.vcf", "UID:g\nFN:Straße\nKIND:group\n");
  const struct {
    NSInteger comparison;
    const char* value;
    const char* found;
  } rows[] = {
      {kABEqual, "Straße", "a"},
      {kABEqual, "straße", ""},
      {kABNotEqual, "Straße", "bcd"},
      {kABLessThan, "Straße", "b"},
      {kABLessThanOrEqual, "Straße", "ab"},
      {kABGreaterThan, "Straße", "c"},
      {kABGreaterThanOrEqual, "Straße", "ac"},
      {kABEqualCaseInsensitive, "strasse", "ab"},
      {kABEqualCaseInsensitive, "οδόσ", "c"},
      {kABNotEqualCaseInsensitive, "strasse", "cd"},
      {kABContainsSubString, "raß", "a"},
      {kABContainsSubStringCaseInsensitive, "RASS", "ab"},
      {kABDoesNotContainSubString, "raß", "bcd"},
      {kABDoesNotContainSubStringCaseInsensitive, "rass", "cd"},
      {kABPrefixMatch, "STR", "b"},
      {kABPrefixMatchCaseInsensitive, "STR", "ab"},
      {kABSuffixMatch, "e", "a"},
      {kABSuffixMatchCaseInsensitive, "σσ", ""},
      {kABSuffixMatchCaseInsensitive, "SSE", "ab"},
      {kABBitsInBitFieldMatch, "x", ""},
      {kABNotWithinIntervalAroundToday, "x", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(found(person(kABLastNameProperty, NSString::stringWithUTF8(row.value), row.comparison)), row.found)
        << row.comparison << " " << row.value;
  }
  EXPECT_EQ(found(person(kABLastNameProperty, nullptr, kABEqual)), "d");
  EXPECT_EQ(found(person(kABLastNameProperty, nullptr, kABNotEqual)), "abc");
  EXPECT_EQ(found(person(kABLastNameProperty, NSNumber::numberWithInt(1), kABNotEqual)), "");
  EXPECT_EQ(found(ABGroup::searchElement(kABGroupNameProperty, nullptr, nullptr, "Straße"_ns, kABEqual)), "g");
}

TEST_F(Search, LooksAtEntriesByLabelAndKey) {
  folder_.writeCard("a.vcf", "UID:a\nEMAIL;type=HOME:x@a\nEMAIL;type=WORK:Y@a\nADR;type=HOME:;;1 Oak;Lund;;;\n");
  folder_.writeCard("b.vcf", "UID:b\nEMAIL;type=WORK:x@a\nADR;type=WORK:;;Lund 2;Malmö;;;\n");
  folder_.writeCard("c.vcf", "UID:c\n");
  auto email = [](const char* value, NSInteger comparison, NSString label) {
    return person(kABEmailProperty, NSString::stringWithUTF8(value), comparison, label);
  };
  EXPECT_EQ(found(email("x@a", kABEqual, nullptr)), "ab");
  EXPECT_EQ(found(email("y@A", kABEqualCaseInsensitive, nullptr)), "a");
  EXPECT_EQ(found(email("x@a", kABEqual, kABHomeLabel)), "a");
  EXPECT_EQ(found(email("x@a", kABNotEqual, kABHomeLabel)), "bc");
  EXPECT_EQ(found(person(kABEmailProperty, nullptr, kABEqual, kABHomeLabel)), "bc");
  auto address = [](const char* value, NSInteger comparison, NSString label, NSString key) {
    return person(kABAddressProperty, NSString::stringWithUTF8(value), comparison, label, key);
  };
  EXPECT_EQ(found(address("Lund", kABContainsSubString, nullptr, nullptr)), "ab");
  EXPECT_EQ(found(address("Lund", kABEqual, kABHomeLabel, kABAddressCityKey)), "a");
  EXPECT_EQ(found(address("Lund", kABEqual, kABWorkLabel, kABAddressCityKey)), "");
  EXPECT_EQ(found(address("Lund", kABDoesNotContainSubString, nullptr, kABAddressCityKey)), "bc");
  EXPECT_EQ(found(address("Lund", kABEqual, nullptr, kABAddressZIPKey)), "");
}

TEST_F(Search, ComparesNumbersAndDates) {
  folder_.writeCard("a.vcf", "UID:a\nX-ABOrder:LAST\nX-ABShowAs:COMPANY\nBDAY:1980-05-06\n");
  folder_.writeCard("b.vcf", "UID:b\nX-ABOrder:FIRST\nBDAY:1990-05-06\nN:b\n");
  auto flags = [](double value, NSInteger comparison) {
    return person(kABPersonFlags, NSNumber::numberWithDouble(value), comparison);
  };
  EXPECT_EQ(found(flags(17, kABEqual)), "a");
  EXPECT_EQ(found(flags(17.5, kABGreaterThan)), "b");
  EXPECT_EQ(found(flags(1, kABBitsInBitFieldMatch)), "a");
  EXPECT_EQ(found(flags(0, kABBitsInBitFieldMatch)), "ab");
  const NSObject date = NSDate::dateWithTimeIntervalSinceReferenceDate(-18L * 365 * 86400);
  EXPECT_EQ(found(person(kABBirthdayProperty, date, kABLessThan)), "a");
  EXPECT_EQ(found(person(kABBirthdayComponentsProperty, date, kABGreaterThan)), "b");
}

TEST_F(Search, FindsDaysAroundToday) {
  setenv("TZ", "UTC0", 1);
  tzset();
  const auto today = static_cast<std::int64_t>(time(nullptr) / 86400);
  const struct {
    const char* uid;
    std::int64_t days;
    bool hasYear;
  } cards[] = {{"a", -3, true}, {"b", 0, true}, {"c", 2, true}, {"d", 4, true}, {"e", 1, false}, {"f", -1, false}};
  for (const auto& card : cards) {
    Date date = vcard::dateOfDay(today + card.days);
    if (!card.hasYear) date.year.reset();
    folder_.writeCard(std::string(card.uid) + ".vcf",
                      std::string("UID:") + card.uid + "\nBDAY:" + vcard::formatDate(date) + "\n");
  }
  folder_.writeCard("g.vcf", "UID:g\n");
  auto within = [](NSInteger comparison) {
    return person(kABBirthdayComponentsProperty, NSNumber::numberWithDouble(3 * 86400.0), comparison);
  };
  EXPECT_EQ(found(within(kABWithinIntervalAroundToday)), "abc");
  EXPECT_EQ(found(within(kABWithinIntervalFromToday)), "bc");
  EXPECT_EQ(found(within(kABWithinIntervalAroundTodayYearless)), "abcef");
  EXPECT_EQ(found(within(kABWithinIntervalFromTodayYearless)), "bce");
  EXPECT_EQ(found(within(kABNotWithinIntervalAroundToday)), "defg");
  EXPECT_EQ(found(within(kABNotWithinIntervalFromToday)), "adefg");
  EXPECT_EQ(found(within(kABNotWithinIntervalAroundTodayYearless)), "dg");
  EXPECT_EQ(found(within(kABNotWithinIntervalFromTodayYearless)), "adfg");
}

TEST(Days, LieWithinASpan) {
  const struct {
    Date middle;
    double days;
    bool alsoBefore;
    Date date;
    bool isWithin;
    bool isWithinInAnyYear;
  } rows[] = {
      {{2024, 12, 30}, 5, false, {2025, 1, 3}, true, true},
      {{2024, 12, 30}, 5, false, {1999, 1, 4}, false, true},
      {{2024, 12, 30}, 5, false, {1999, 1, 5}, false, false},
      {{2024, 1, 2}, 3, true, {1999, 12, 30}, false, true},
      {{2024, 1, 2}, 3, false, {1999, 12, 30}, false, false},
      // A leap day in a year that has it, and in one that doesn't.
      {{2024, 2, 28}, 1, false, {2000, 2, 29}, false, true},
      {{2024, 2, 28}, 0, false, {2000, 2, 29}, false, false},
      {{2023, 2, 28}, 0, false, {2000, 2, 29}, false, true},
      {{2023, 3, 1}, 0, false, {{}, 2, 29}, false, false},
      {{2023, 3, 1}, 400, false, {{}, 2, 28}, false, true},
      {{2024, 6, 1}, 0.9, true, {2024, 6, 1}, true, true},
      {{2024, 6, 1}, -1, true, {2024, 6, 1}, false, false},
  };
  for (const auto& row : rows) {
    const vcard::DaySpan span{row.middle, row.days, row.alsoBefore};
    EXPECT_EQ(vcard::isWithin(span, row.date), row.isWithin) << vcard::formatDate(row.date);
    EXPECT_EQ(vcard::isWithinInAnyYear(span, row.date), row.isWithinInAnyYear) << vcard::formatDate(row.date);
  }
}

TEST_F(Search, JoinsConditions) {
  folder_.writeCard("a.vcf", "UID:a\nN:x;y\n");
  folder_.writeCard("b.vcf", "UID:b\nN:x;z\n");
  folder_.writeCard("g.vcf", "UID:g\nFN:x\nKIND:group\n");
  const ABSearchElement last = person(kABLastNameProperty, "x"_ns, kABEqual);
  const ABSearchElement first = person(kABFirstNameProperty, "y"_ns, kABEqual);
  const ABSearchElement other = person(kABFirstNameProperty, "z"_ns, kABEqual);
  const ABSearchElement group = ABGroup::searchElement(kABGroupNameProperty, nullptr, nullptr, "x"_ns, kABEqual);
  auto join = [](NSInteger conjunction, std::initializer_list<NSObject> children) {
    return ABSearchElement::searchElementForConjunction(conjunction, NSArray::arrayWithObjects(children));
  };
  EXPECT_EQ(found(join(kABSearchAnd, {last, first})), "a");
  EXPECT_EQ(found(join(kABSearchOr, {first, other})), "ab");
  EXPECT_EQ(found(join(kABSearchOr, {first, group})), "ag");
  EXPECT_EQ(found(join(kABSearchAnd, {last, join(kABSearchOr, {other, group})})), "b");
  EXPECT_TRUE(first.matchesRecord(book().people().objectAtIndex(0).as<ABRecord>()));

  const std::string expected = "NSInvalidArgumentException";
  EXPECT_EQ(raised([&] { join(kABSearchAnd, {}); }), expected);
  EXPECT_EQ(raised([&] { ABSearchElement::searchElementForConjunction(kABSearchOr, nullptr); }), expected);
  EXPECT_EQ(raised([&] { join(2, {last}); }), expected);
  EXPECT_EQ(raised([&] { (void)first.matchesRecord(nullptr); }), expected);
  EXPECT_EQ(raised([&] { (void)book().recordsMatchingSearchElement(nullptr); }), expected);
  EXPECT_EQ(raised([&] { person(nullptr, "x"_ns, kABEqual); }), expected);
  EXPECT_EQ(raised([&] { person(kABLastNameProperty, "x"_ns, 25); }), expected);
  EXPECT_EQ(raised([&] { person(kABLastNameProperty, "x"_ns, -1); }), expected);
  EXPECT_EQ(raised([&] { person(kABLastNameProperty, nullptr, kABLessThan); }), expected);
}

}  // namespace
