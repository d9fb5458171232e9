#include "host/arrays.h"
#include "host/dates.h"
#include "tests/addressbook/framework_calls.h"

namespace {

using host::Value;

constexpr const char* kElement = "ABSearchElementVXR";

const std::vector<Card> kContacts{
    person("Ada", "Lovelace", "p1",
           {"NICKNAME:Countess of Lovelace", "EMAIL;TYPE=HOME:ada@example.org", "EMAIL;TYPE=WORK:work@example.org",
            "ADR;TYPE=HOME:;;St James's Square 12;London;;;England", "BDAY:1815-12-10"}),
    person("Grace", "Hopper", "p2",
           {"NICKNAME:Amazing Grace", "EMAIL;TYPE=WORK:ADA@example.org", "X-ABSHOWAS:COMPANY"}),
    person("Emmy", "Noether", "p3", {"ADR;TYPE=WORK:;;Am Weg 1;London;;;Ontario"}), group("Work", "g1"),
    group("Play", "g2")};

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

Value nameElement(const Host& host, const Value& first) {
  return personElement(host, {"First", "", "", first, "kABEqual", ""});
}

}  // namespace

TEST(SearchElement, ComparesAsHostCodeAsks) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  constexpr double kDay = 24 * 60 * 60;
  // Comparisons of each kind, from the whole of their range.
  const Search searches[] = {
      {"First", "", "", "Ada", "kABEqual", "[p1:ABPerson]"},
      {"First", "", "", "Ada", "kABNotEqual", "[p2:ABPerson p3:ABPerson]"},
      {"Nickname", "", "", "amaz", "kABPrefixMatchCaseInsensitive", "[p2:ABPerson]"},
      {"ABPersonFlags", "", "", 1, "kABBitsInBitFieldMatch", "[p2:ABPerson]"},
      {"Birthday", "", "", 365000 * kDay, "kABWithinIntervalAroundToday", "[p1:ABPerson]"},
      {"Birthday", "", "", 366 * kDay, "kABNotWithinIntervalFromTodayYearless", "[p2:ABPerson p3:ABPerson]"},
      {"Birthday", "", "", host::date(1900, 1, 1), "kABLessThan", "[p1:ABPerson]"},
      // Entries of multi-values, by label; parts of addresses, by key.
      {"Email", "", "", "ada@example.org", "kABEqualCaseInsensitive", "[p1:ABPerson p2:ABPerson]"},
      {"Email", "_$!<Work>!$_", "", "ada@example.org", "kABEqualCaseInsensitive", "[p2:ABPerson]"},
      {"Address", "_$!<Work>!$_", "City", "London", "kABEqual", "[p3:ABPerson]"},
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
  for (const auto& [sharedBy, member] :
       {std::pair("ABGroupVXR", "searchElementForProperty"), {kBook, "searchElementForGroupProperty"}}) {
    const Value element = host.shared(sharedBy, member, "GroupName", "", "", "Play", 0);
    EXPECT_EQ(told(book.call("recordsMatchingSearchElement", element)), "[g2:ABGroup]");
  }
}

TEST(SearchElement, NeedsAValueThatTheFrameworkCanHave) {
  const Host host{.contacts = kContacts};
  for (const Value& unfit : {Value(), Value(""), host.make("RuntimeException")}) {
    EXPECT_TRUE(nameElement(host, unfit).isNil());
  }
}

TEST(SearchElement, JoinsOthersThroughBothClasses) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  for (const char* sharedBy : {kBook, kElement}) {
    SCOPED_TRACE(sharedBy);
    const auto kAnd = static_cast<int>(host::constant(sharedBy, "kABSearchAnd"));
    const auto kOr = static_cast<int>(host::constant(sharedBy, "kABSearchOr"));
    const auto join = [&](int conjunction, const std::vector<Value>& children) {
      return host.shared(sharedBy, "searchElementForConjunction", conjunction, host::objectArray(children));
    };
    const auto found = [&](const Value& element) { return told(book.call("recordsMatchingSearchElement", element)); };
    const Value ada = nameElement(host, "Ada");
    const Value grace = nameElement(host, "Grace");
    EXPECT_EQ(found(join(kOr, {ada, grace})), "[p1:ABPerson p2:ABPerson]");
    EXPECT_EQ(found(join(kAnd, {ada, grace})), "[]");
    EXPECT_EQ(found(join(kAnd, {nullptr, ada, emptyInstance(kElement), nullptr})), "[p1:ABPerson]");
    const Value either = join(kOr, {nameElement(host, "Emmy"), join(kAnd, {ada, ada})});
    EXPECT_EQ(found(join(kAnd, {either, either})), "[p1:ABPerson p3:ABPerson]");
    EXPECT_EQ(found(join(kOr, {nameElement(host, "Ada")})), "[p1:ABPerson]");  // children live on
    // No children, and codes that nobody knows, are the framework's to refuse.
    const std::pair<int, std::vector<Value>> refused[] = {{kAnd, {}}, {kOr, {nullptr}}, {7, {ada}}};
    for (const auto& [conjunction, children] : refused) {
      const std::string thrown = thrownBy([&, code = conjunction, &given = children] { join(code, given); });
      EXPECT_TRUE(thrown.starts_with("NSExceptionVXR: A Cocoa NSInvalidArgumentException")) << thrown;
    }
  }
}
