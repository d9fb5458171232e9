#include "platform/contacts/vcard/dates.h"
#include "tests/contacts/book_test.h"
#include "tests/foundation/raised.h"

#include <cctype>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <set>
#include <string>
#include <utility>

namespace {

using vcard::Date;

class Search : public BookTest {
 protected:
  std::string found(ABSearchElement element) { return uids(book().recordsMatchingSearchElement(element)); }

  ABAddressBook book() {
    if (!book_) book_ = ABAddressBook::addressBook();
    return book_;
  }

  static ABSearchElement person(NSString property, NSObject value, NSInteger comparison, NSString label = nullptr,
                                NSString key = nullptr) {
    return ABPerson::searchElement(property, label, key, value, comparison);
  }

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
      {kABNotEqual, "Straße", "b c d"},
      {kABEqualCaseInsensitive, "strasse", "a b"},
      {kABEqualCaseInsensitive, "οδόσ", "c"},
      {kABNotEqualCaseInsensitive, "strasse", "c d"},
      {kABContainsSubStringCaseInsensitive, "RASS", "a b"},
      {kABDoesNotContainSubStringCaseInsensitive, "rass", "c d"},
      {kABPrefixMatchCaseInsensitive, "STR", "a b"},
      {kABSuffixMatchCaseInsensitive, "σσ", ""},
      {kABSuffixMatchCaseInsensitive, "SSE", "a b"},
      {kABBitsInBitFieldMatch, "x", ""},
      {kABNotWithinIntervalAroundToday, "x", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(found(person(kABLastNameProperty, NSString::stringWithUTF8(row.value), row.comparison)), row.found)
        << row.comparison << " " << row.value;
  }
  EXPECT_EQ(found(person(kABLastNameProperty, nullptr, kABEqual)), "d");
  EXPECT_EQ(found(person(kABLastNameProperty, nullptr, kABNotEqual)), "a b c");
  EXPECT_EQ(found(person(kABLastNameProperty, NSNumber::numberWithInt(1), kABNotEqual)), "");
  EXPECT_EQ(found(ABGroup::searchElement(kABGroupNameProperty, nullptr, nullptr, "Straße"_ns, kABEqual)), "g");
}

// Against the plain meaning of each comparison, over all pairs of a few short words.
TEST_F(Search, ComparesEveryPairOfWords) {
  using Word = const std::string&;
  auto folded = [](std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  };
  constexpr NSInteger kNone = -1;
  // A meaning's own comparison and the one that ignores case, then what denies each.
  const struct {
    bool (*meaning)(Word, Word);
    NSInteger comparisons[4];
  } rows[] = {
      {[](Word text, Word part) { return text == part; },
       {kABEqual, kABEqualCaseInsensitive, kABNotEqual, kABNotEqualCaseInsensitive}},
      {[](Word text, Word part) { return text.find(part) != std::string::npos; },
       {kABContainsSubString, kABContainsSubStringCaseInsensitive, kABDoesNotContainSubString,
        kABDoesNotContainSubStringCaseInsensitive}},
      {[](Word text, Word part) { return text.starts_with(part); },
       {kABPrefixMatch, kABPrefixMatchCaseInsensitive, kNone, kNone}},
      {[](Word text, Word part) { return text.ends_with(part); },
       {kABSuffixMatch, kABSuffixMatchCaseInsensitive, kNone, kNone}},
      {[](Word text, Word part) { return text < part; }, {kABLessThan, kNone, kABGreaterThanOrEqual, kNone}},
      {[](Word text, Word part) { return text > part; }, {kABGreaterThan, kNone, kABLessThanOrEqual, kNone}},
  };
  const std::string words[] = {"a", "A", "b", "ab", "aB", "BA", "aab", "abab", "AA"};
  const auto someone = newPerson();
  auto expectMeant = [&](Word text, Word part, const auto& row, int place) {
    const NSInteger comparison = row.comparisons[place];
    if (comparison == kNone) return;
    const bool holds = place % 2 == 0 ? row.meaning(text, part) : row.meaning(folded(text), folded(part));
    const ABSearchElement element = person(kABNicknameProperty, NSString::stringWithUTF8(part), comparison);
    EXPECT_EQ(element.matchesRecord(someone.get()), holds == (place < 2)) << text << comparison << part;
  };
  for (const std::string& text : words) {
    EXPECT_TRUE(someone->setValue(NSString::stringWithUTF8(text), kABNicknameProperty));
    for (const std::string& part : words) {
      for (const auto& row : rows) {
        for (int place = 0; place < 4; ++place) expectMeant(text, part, row, place);
      }
    }
  }
}

// What is denied matches whatever lacks it, also where there is nothing at all; what can't be compared never matches.
TEST_F(Search, DeniesOnlyWhatItCanCompare) {
  const auto someone = newPerson();
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

TEST_F(Search, ComparesEntriesNumbersAndDates) {
  folder_.writeCard("a.vcf",
                    "UID:a\nEMAIL;type=HOME:x@a\nEMAIL;type=WORK:Y@a\nADR;type=HOME:;;1 Oak;Lund;;;\n"
                    "X-ABOrder:LAST\nX-ABShowAs:COMPANY\nBDAY:1980-05-06\n");
  folder_.writeCard("b.vcf",
                    "UID:b\nN:b\nEMAIL;type=WORK:x@a\nADR;type=WORK:;;Lund 2;Malmö;;;\n"
                    "X-ABOrder:FIRST\nBDAY:1990-05-06\n");
  folder_.writeCard("c.vcf", "UID:c\n");
  const NSObject date = NSDate::dateWithTimeIntervalSinceReferenceDate(-18L * 365 * 86400);
  auto number = [](double value) -> NSObject { return NSNumber::numberWithDouble(value); };
  const struct {
    NSString property;
    NSObject value;
    NSInteger comparison;
    NSString label;
    NSString key;
    const char* found;
  } rows[] = {
      {kABEmailProperty, "x@a"_ns, kABEqual, nullptr, nullptr, "a b"},
      {kABEmailProperty, "y@A"_ns, kABEqualCaseInsensitive, nullptr, nullptr, "a"},
      {kABEmailProperty, "x@a"_ns, kABEqual, kABHomeLabel, nullptr, "a"},
      {kABEmailProperty, "x@a"_ns, kABNotEqual, kABHomeLabel, nullptr, "b c"},
      {kABEmailProperty, nullptr, kABEqual, kABHomeLabel, nullptr, "b c"},
      {kABAddressProperty, "Lund"_ns, kABContainsSubString, nullptr, nullptr, "a b"},
      {kABAddressProperty, "Lund"_ns, kABEqual, kABHomeLabel, kABAddressCityKey, "a"},
      {kABAddressProperty, "Lund"_ns, kABEqual, kABWorkLabel, kABAddressCityKey, ""},
      {kABAddressProperty, "Lund"_ns, kABDoesNotContainSubString, nullptr, kABAddressCityKey, "b c"},
      {kABPersonFlags, number(17), kABEqual, nullptr, nullptr, "a"},
      {kABPersonFlags, number(17.5), kABGreaterThan, nullptr, nullptr, "b"},
      {kABPersonFlags, number(1), kABBitsInBitFieldMatch, nullptr, nullptr, "a"},
      {kABPersonFlags, number(0), kABBitsInBitFieldMatch, nullptr, nullptr, "a b"},
      {kABBirthdayProperty, date, kABLessThan, nullptr, nullptr, "a"},
      {kABBirthdayComponentsProperty, date, kABGreaterThan, nullptr, nullptr, "b"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(found(person(row.property, row.value, row.comparison, row.label, row.key)), row.found) << row.comparison;
  }
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
  const std::pair<NSInteger, const char*> rows[] = {
      {kABWithinIntervalAroundToday, "a b c"},
      {kABWithinIntervalFromToday, "b c"},
      {kABWithinIntervalAroundTodayYearless, "a b c e f"},
      {kABWithinIntervalFromTodayYearless, "b c e"},
      {kABNotWithinIntervalAroundToday, "d e f g"},
      {kABNotWithinIntervalFromToday, "a d e f g"},
      {kABNotWithinIntervalAroundTodayYearless, "d g"},
      {kABNotWithinIntervalFromTodayYearless, "a d f g"},
  };
  const NSObject threeDays = NSNumber::numberWithDouble(3 * 86400.0);
  for (const auto& [comparison, expected] : rows) {
    EXPECT_EQ(found(person(kABBirthdayComponentsProperty, threeDays, comparison)), expected) << comparison;
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
        const vcard::DaySpan span{middle, static_cast<double>(days), alsoBefore};
        EXPECT_FALSE(vcard::isWithin(span, vcard::dateOfDay(today + days + 1)));
        EXPECT_FALSE(vcard::isWithin(span, {{}, middle.month, middle.day}));
        EXPECT_FALSE(vcard::isWithin(span, vcard::dateOfDay(today - (alsoBefore ? days : 0) - 1)));
        std::set<std::pair<int, int>> met;
        for (std::int64_t day = today - (alsoBefore ? days : 0); day <= today + days; ++day) {
          const Date date = vcard::dateOfDay(day);
          met.insert({date.month, date.day});
          EXPECT_TRUE(vcard::isWithin(span, date)) << vcard::formatDate(date);
          const bool isLastOfFebruary = date.month == 2 && date.day == 28 && vcard::daysInMonth(*date.year, 2) == 28;
          if (isLastOfFebruary) met.insert({2, 29});
        }
        for (std::int64_t day = 0; day < 366; ++day) {
          const Date date = vcard::dateOfDay(vcard::daysSince1970(2000, 1, 1) + day);
          const bool isMet = met.contains({date.month, date.day});
          EXPECT_EQ(vcard::isWithinInAnyYear(span, date), isMet)
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
  const ABSearchElement nobody = join(kABSearchAnd, {first, other});
  auto text = [](NSString property, NSString part) {
    return person(property, part, kABContainsSubStringCaseInsensitive);
  };
  const ABSearchElement none = text(kABNicknameProperty, "no one's name"_ns);
  const std::pair<ABSearchElement, const char*> rows[] = {
      {join(kABSearchAnd, {last, first}), "a"},
      {join(kABSearchOr, {first, other}), "a b"},
      {join(kABSearchOr, {first, group}), "a g"},
      {join(kABSearchAnd, {last, join(kABSearchOr, {other, group})}), "b"},
      {nobody, ""},
      {join(kABSearchOr, {text(kABUIDProperty, "B:abPerson"_ns), none, text(kABNoteProperty, "no one's name"_ns)}),
       "b"},
      {join(kABSearchOr, {none, text(kABOrganizationProperty, "nothing else"_ns), first}), "a"},
      {join(kABSearchOr, {none, person(kABNicknameProperty, "no one's name"_ns, kABNotEqual)}), "a b"},
      {join(kABSearchOr, {nobody, join(kABSearchAnd, {last, join(kABSearchOr, {nobody, first})})}), "a"},
  };
  for (const auto& [element, expected] : rows) EXPECT_EQ(found(element), expected);
  EXPECT_TRUE(first.matchesRecord(book().people().objectAtIndex(0).as<ABRecord>()));

  const std::function<void()> wrong[] = {
      [&] { join(kABSearchAnd, {}); },
      [] { ABSearchElement::searchElementForConjunction(kABSearchOr, nullptr); },
      [&] { join(2, {last}); },
      [&] { (void)first.matchesRecord(nullptr); },
      [&] { (void)book().recordsMatchingSearchElement(nullptr); },
      [] { person(nullptr, "x"_ns, kABEqual); },
      [] { person(kABLastNameProperty, "x"_ns, 25); },
      [] { person(kABLastNameProperty, nullptr, kABLessThan); },
  };
  for (const auto& action : wrong) EXPECT_EQ(raised(action), "NSInvalidArgumentException");
}

}  // namespace
