#include "host/arrays.h"
#include "host/dates.h"
#include "tests/addressbook/framework_calls.h"

#include <ctime>

namespace {

using host::Value;

constexpr const char* kBook = "ABAddressBookVXR";
constexpr const char* kElement = "ABSearchElementVXR";

// Days from today, a number of years ago.
std::string dayText(int days, int years, const char* format) {
  const std::time_t then = std::time(nullptr) + days * 24L * 60 * 60;
  std::tm local = *std::localtime(&then);
  local.tm_year -= years;
  char text[16];
  std::strftime(text, sizeof text, format, &local);
  return text;
}

const std::vector<Card> kContacts{
    person("Ada", "Lovelace", "p1",
           {"NICKNAME:Countess of Lovelace", "EMAIL;TYPE=HOME:ada@example.org", "EMAIL;TYPE=WORK:work@example.org",
            "ADR;TYPE=HOME:;;St James's Square 12;London;;;England", "BDAY:1815-12-10"}),
    person("Grace", "Hopper", "p2",
           {"NICKNAME:Amazing Grace", "EMAIL;TYPE=WORK:ADA@example.org", "BDAY:" + dayText(3, 0, "%Y-%m-%d"),
            "X-ABSHOWAS:COMPANY"}),
    person("Emmy", "Noether", "p3",
           {"ADR;TYPE=WORK:;;Am Weg 1;London;;;Ontario", "BDAY:" + dayText(-3, 4, "%Y-%m-%d")}),
    group("Work", "g1"), group("Play", "g2")};

Value bookOf(const Host& host) { return host.shared(kBook, "sharedAddressbook"); }

struct Search {
  const char* property;
  const char* label;
  const char* key;
  Value value;
  const char* comparison;
  const char* expected;
};

Value personElement(const Host& host, const Search& search) {
  return host.shared("ABPersonVXR", "searchElementForProperty", search.property, search.label, search.key, search.value,
                     host::constant(kBook, search.comparison));
}

Value nameElement(const Host& host, const char* first) {
  return personElement(host, {"First", "", "", first, "kABEqual", ""});
}

}  // namespace

TEST(SearchElement, ComparesAsHostCodeAsks) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  constexpr int kDay = 24 * 60 * 60;
  const Search searches[] = {
      {"First", "", "", "Ada", "kABEqual", "[p1:ABPerson]"},
      {"First", "", "", "ada", "kABEqual", "[]"},
      {"First", "", "", "Ada", "kABNotEqual", "[p2:ABPerson p3:ABPerson]"},
      {"First", "", "", "Emmy", "kABLessThan", "[p1:ABPerson]"},
      {"First", "", "", "Emmy", "kABLessThanOrEqual", "[p1:ABPerson p3:ABPerson]"},
      {"First", "", "", "Emmy", "kABGreaterThan", "[p2:ABPerson]"},
      {"First", "", "", "Emmy", "kABGreaterThanOrEqual", "[p2:ABPerson p3:ABPerson]"},
      {"First", "", "", "aDA", "kABEqualCaseInsensitive", "[p1:ABPerson]"},
      {"Nickname", "", "", "Grace", "kABContainsSubString", "[p2:ABPerson]"},
      {"Nickname", "", "", "grace", "kABContainsSubString", "[]"},
      {"Nickname", "", "", "grace", "kABContainsSubStringCaseInsensitive", "[p2:ABPerson]"},
      {"Nickname", "", "", "Count", "kABPrefixMatch", "[p1:ABPerson]"},
      {"Nickname", "", "", "amaz", "kABPrefixMatchCaseInsensitive", "[p2:ABPerson]"},
      {"ABPersonFlags", "", "", 1, "kABBitsInBitFieldMatch", "[p2:ABPerson]"},
      {"First", "", "", "m", "kABDoesNotContainSubString", "[p1:ABPerson p2:ABPerson]"},
      {"First", "", "", "A", "kABDoesNotContainSubStringCaseInsensitive", "[p3:ABPerson]"},
      {"First", "", "", "ADA", "kABNotEqualCaseInsensitive", "[p2:ABPerson p3:ABPerson]"},
      {"Nickname", "", "", "Grace", "kABSuffixMatch", "[p2:ABPerson]"},
      {"Nickname", "", "", "LOVELACE", "kABSuffixMatchCaseInsensitive", "[p1:ABPerson]"},
      {"Birthday", "", "", 5 * kDay, "kABWithinIntervalAroundToday", "[p2:ABPerson]"},
      {"Birthday", "", "", 5 * kDay, "kABWithinIntervalAroundTodayYearless", "[p2:ABPerson p3:ABPerson]"},
      {"Birthday", "", "", 5 * kDay, "kABNotWithinIntervalAroundToday", "[p1:ABPerson p3:ABPerson]"},
      {"Birthday", "", "", 5.0 * kDay, "kABWithinIntervalFromToday", "[p2:ABPerson]"},
      {"Birthday", "", "", 5 * kDay, "kABWithinIntervalFromTodayYearless", "[p2:ABPerson]"},
      {"Birthday", "", "", 5 * kDay, "kABNotWithinIntervalFromToday", "[p1:ABPerson p3:ABPerson]"},
      {"Birthday", "", "", host::date(1900, 1, 1), "kABLessThan", "[p1:ABPerson]"},
      // Entries of multi-values, by label; parts of addresses, by key.
      {"Email", "", "", "ada@example.org", "kABEqualCaseInsensitive", "[p1:ABPerson p2:ABPerson]"},
      {"Email", "_$!<Work>!$_", "", "ada@example.org", "kABEqualCaseInsensitive", "[p2:ABPerson]"},
      {"Address", "", "City", "London", "kABEqual", "[p1:ABPerson p3:ABPerson]"},
      {"Address", "_$!<Work>!$_", "City", "London", "kABEqual", "[p3:ABPerson]"},
      {"Address", "", "Country", "Ontario", "kABEqual", "[p3:ABPerson]"},
  };
  for (const Search& search : searches) {
    SCOPED_TRACE(std::string(search.property) + " " + search.comparison);
    const Value element = personElement(host, search);
    EXPECT_EQ(told(book.call("recordsMatchingSearchElement", element)), search.expected);
    const Value other = host.shared(kBook, "searchElementForPersonProperty", search.property, search.label, search.key,
                                    search.value, host::constant(kBook, search.comparison));
    EXPECT_EQ(told(book.call("recordsMatchingSearchElement", other)), search.expected);
    for (const Value& record : book.call("people").elements()) {
      EXPECT_EQ(element.call("matchesRecord", record),
                std::string(search.expected).find(told(record)) != std::string::npos);
    }
  }
}

TEST(SearchElement, ForGroupsComesFromBothClasses) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  for (const auto& [sharedBy, member] :
       {std::pair("ABGroupVXR", "searchElementForProperty"), {kBook, "searchElementForGroupProperty"}}) {
    const Value element = host.shared(sharedBy, member, "GroupName", "", "", "Play", 0);
    EXPECT_EQ(told(book.call("recordsMatchingSearchElement", element)), "[g2:ABGroup]");
  }
}

TEST(SearchElement, JoinsOthersThroughBothClasses) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  for (const char* sharedBy : {kBook, kElement}) {
    SCOPED_TRACE(sharedBy);
    const auto join = [&](const char* conjunction, const std::vector<Value>& children) {
      return host.shared(sharedBy, "searchElementForConjunction", host::constant(sharedBy, conjunction),
                         host::objectArray(children));
    };
    const auto found = [&](const Value& element) { return told(book.call("recordsMatchingSearchElement", element)); };
    const Value ada = nameElement(host, "Ada");
    const Value grace = nameElement(host, "Grace");
    EXPECT_EQ(found(join("kABSearchOr", {ada, grace})), "[p1:ABPerson p2:ABPerson]");
    EXPECT_EQ(found(join("kABSearchAnd", {ada, grace})), "[]");
    EXPECT_EQ(found(join("kABSearchAnd", {nullptr, ada, emptyInstance(kElement), nullptr})), "[p1:ABPerson]");
    const Value either = join("kABSearchOr", {nameElement(host, "Emmy"), join("kABSearchAnd", {ada, ada})});
    EXPECT_EQ(found(join("kABSearchAnd", {either, either})), "[p1:ABPerson p3:ABPerson]");
    EXPECT_NE(either.call("Description"), "");
    EXPECT_TRUE(host.shared(sharedBy, "searchElementForConjunction", 0, nullptr).isNil());
    // No children, and codes that nobody knows, are the framework's to refuse.
    for (const std::function<void()>& refused : std::vector<std::function<void()>>{
             [&] { join("kABSearchAnd", {}); }, [&] { join("kABSearchOr", {nullptr}); },
             [&] { host.shared(sharedBy, "searchElementForConjunction", 7, host::objectArray({ada})); },
             [&] { host.shared("ABPersonVXR", "searchElementForProperty", "First", "", "", "x", 25); }}) {
      EXPECT_TRUE(thrownBy(refused).starts_with("NSExceptionVXR: A Cocoa NSInvalidArgumentException"));
    }
  }
}

TEST(SearchElement, NeedsAValueThatTheFrameworkCanHave) {
  const Host host{.contacts = kContacts};
  for (const Value& unfit : {Value(), Value(""), host.make("RuntimeException")}) {
    EXPECT_TRUE(host.shared("ABPersonVXR", "searchElementForProperty", "First", "", "", unfit, 0).isNil());
  }
}

TEST(SearchElement, KeepsItsChildrenAlive) {
  const Host host{.contacts = kContacts};
  Value ada = nameElement(host, "Ada");
  const Value joined = host.shared(kElement, "searchElementForConjunction", 1, host::objectArray({ada}));
  ada = nullptr;
  EXPECT_EQ(told(bookOf(host).call("recordsMatchingSearchElement", joined)), "[p1:ABPerson]");
}
