#include "platform/contacts/address_book.h"
#include "platform/contacts/constants.h"
#include "platform/contacts/vcard/dates.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/shown.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

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

// Against the plain meaning of each comparison, over all pairs of a few short words.
TEST_F(Search, ComparesEveryPairOfWords) {
  using Words = const std::string&;
  auto folded = [](std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  };
  auto contains = [](Words text, Words part) { return text.find(part) != std::string::npos; };
  auto begins = [](Words text, Words part) { return text.starts_with(part); };
  auto ends = [](Words text, Words part) { return text.ends_with(part); };
  auto equals = [](Words text, Words part) { return text == part; };
  auto ignoringCase = [folded](auto compare) {
    return [folded, compare](Words text, Words part) { return compare(folded(text), folded(part)); };
  };
  auto isNot = [](auto compare) { return [compare](Words text, Words part) { return !compare(text, part); }; };
  const std::map<NSInteger, std::function<bool(Words, Words)>> meanings{
      {kABEqual, equals},
      {kABNotEqual, isNot(equals)},
      {kABLessThan, [](Words text, Words part) { return text < part; }},
      {kABLessThanOrEqual, [](Words text, Words part) { return text <= part; }},
      {kABGreaterThan, [](Words text, Words part) { return text > part; }},
      {kABGreaterThanOrEqual, [](Words text, Words part) { return text >= part; }},
      {kABEqualCaseInsensitive, ignoringCase(equals)},
      {kABContainsSubString, contains},
      {kABContainsSubStringCaseInsensitive, ignoringCase(contains)},
      {kABPrefixMatch, begins},
      {kABPrefixMatchCaseInsensitive, ignoringCase(begins)},
      {kABDoesNotContainSubString, isNot(contains)},
      {kABDoesNotContainSubStringCaseInsensitive, isNot(ignoringCase(contains))},
      {kABNotEqualCaseInsensitive, isNot(ignoringCase(equals))},
      {kABSuffixMatch, ends},
      {kABSuffixMatchCaseInsensitive, ignoringCase(ends)},
  };
  const std::string words[] = {"a", "A", "b", "ab", "aB", "BA", "aab", "abab", "AA"};
  const auto someone = Retained<ABPerson>::adopt(ABPerson::alloc().init());
  for (const std::string& text : words) {
    EXPECT_TRUE(someone->setValue(NSString::stringWithUTF8(text.c_str()), kABNicknameProperty));
    for (const std::string& part : words) {
      for (const auto& [comparison, meaning] : meanings) {
        const ABSearchElement element = person(kABNicknameProperty, NSString::stringWithUTF8(part.c_str()), comparison);
        EXPECT_EQ(element.matchesRecord(someone.get()), meaning(text, part)) << text << comparison << part;
      }
    }
  }
}

// What is denied matches whatever lacks it, also where there is nothing at all; what can't be compared never matches.
TEST_F(Search, DeniesOnlyWhatItCanCompare) {
  const auto someone = Retained<ABPerson>::adopt(ABPerson::alloc().init());
  auto matches = [&](NSString property, NSObject value, NSInteger comparison) {
    return person(property, value, comparison).matchesRecord(someone.get());
  };
  const NSInteger denials[] = {kABNotEqual, kABNotEqualCaseInsensitive, kABDoesNotContainSubString,
                               kABDoesNotContainSubStringCaseInsensitive};
  for (const NSInteger denial : denials) {
    EXPECT_TRUE(matches(kABEmailProperty, "x"_ns, denial));
    EXPECT_FALSE(matches(kABEmailProperty, NSNumber::numberWithInt(1), denial));
    EXPECT_EQ(matches(kABPersonFlags, "1"_ns, denial), false);
    EXPECT_FALSE(matches("no such property"_ns, "x"_ns, denial));
  }
  for (NSInteger comparison = kABNotWithinIntervalAroundToday; comparison <= kABNotWithinIntervalFromTodayYearless;
       ++comparison) {
    const bool isDenial =
        comparison <= kABNotWithinIntervalAroundTodayYearless || comparison >= kABNotWithinIntervalFromToday;
    EXPECT_EQ(matches(kABBirthdayProperty, NSNumber::numberWithInt(0), comparison), isDenial) << comparison;
    EXPECT_FALSE(matches(kABBirthdayProperty, NSDate::date(), comparison)) << comparison;
    EXPECT_FALSE(matches(kABPersonFlags, NSNumber::numberWithInt(0), comparison)) << comparison;
  }
  EXPECT_TRUE(matches("no such property"_ns, nullptr, kABEqual));
  EXPECT_FALSE(matches("no such property"_ns, nullptr, kABNotEqual));
  const auto group = Retained<ABGroup>::adopt(ABGroup::alloc().init());
  EXPECT_FALSE(person(kABEmailProperty, nullptr, kABEqual).matchesRecord(group.get()));
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

// Against a walk over every day of the span.
TEST(Days, LieWithinASpanAsAWalkOverItShows) {
  const Date middles[] = {{2023, 12, 31}, {2024, 1, 1}, {2024, 2, 28}, {2024, 2, 29}, {2024, 3, 1},
                          {2023, 2, 28},  {2023, 3, 1}, {2100, 2, 28}, {2000, 12, 25}};
  for (const Date& middle : middles) {
    const std::int64_t today = vcard::daysSince1970(*middle.year, middle.month, middle.day);
    for (const int days : {0, 1, 3, 60, 365, 366}) {
      for (const bool alsoBefore : {false, true}) {
        std::set<std::pair<int, int>> met;
        for (std::int64_t day = today - (alsoBefore ? days : 0); day <= today + days; ++day) {
          const Date date = vcard::dateOfDay(day);
          met.insert({date.month, date.day});
          const bool isLastOfFebruary = date.month == 2 && date.day == 28 && vcard::daysInMonth(*date.year, 2) == 28;
          if (isLastOfFebruary) met.insert({2, 29});
        }
        for (std::int64_t day = 0; day < 366; ++day) {
          const Date date = vcard::dateOfDay(vcard::daysSince1970(2000, 1, 1) + day);
          const bool isMet = met.contains({date.month, date.day});
          EXPECT_EQ(vcard::isWithinInAnyYear({middle, static_cast<double>(days), alsoBefore}, date), isMet)
              << vcard::formatDate(middle) << " " << days << alsoBefore << " " << vcard::formatDate(date);
        }
      }
    }
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
  const ABSearchElement nobody = join(kABSearchAnd, {first, other});
  EXPECT_EQ(found(nobody), "");
  EXPECT_EQ(found(join(kABSearchOr, {nobody, join(kABSearchAnd, {last, join(kABSearchOr, {nobody, first})})})), "a");
  EXPECT_EQ(found(join(kABSearchAnd, {join(kABSearchOr, {first})})), "a");
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
