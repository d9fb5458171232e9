#include "tests/contacts/book_test.h"

#include <cstdlib>
#include <string>

namespace {

NSDictionary address(std::initializer_list<std::pair<NSString, const char*>> parts) {
  NSMutableDictionary made = NSMutableDictionary::dictionary();
  for (const auto& [key, text] : parts) made.setObject(NSString::stringWithUTF8(text), key);
  return made;
}

NSDictionary fullAddress(const char* countryCode) {
  return address({{kABAddressStreetKey, "1 Oak St\nSide door"},
                  {kABAddressCityKey, "Town"},
                  {kABAddressStateKey, "State"},
                  {kABAddressZIPKey, "123"},
                  {kABAddressCountryKey, "Land"},
                  {kABAddressCountryCodeKey, countryCode}});
}

class AddressFormat : public BookTest {
 protected:
  void SetUp() override { setenv("LC_ALL", "C", 1); }

  NSAttributedString formatted(NSDictionary parts) { return book_.formattedAddressFromDictionary(parts); }
  std::string text(NSDictionary parts) { return shown(formatted(parts).string()); }

  ABAddressBook book_ = ABAddressBook::addressBook();
};

TEST_F(AddressFormat, FollowsTheCountry) {
  const std::pair<const char*, const char*> rows[] = {
      {"us", "1 Oak St\nSide door\nTown State 123\nLand"},   {"US", "1 Oak St\nSide door\nTown State 123\nLand"},
      {"de", "1 Oak St\nSide door\n123 Town\nLand"},         {"fr", "1 Oak St\nSide door\n123 Town\nLand"},
      {"gb", "1 Oak St\nSide door\nTown\nState\n123\nLand"}, {"uk", "1 Oak St\nSide door\nTown\nState\n123\nLand"},
      {"it", "1 Oak St\nSide door\n123 Town State\nLand"},   {"es", "1 Oak St\nSide door\n123 Town\nState\nLand"},
      {"jp", "123\nState Town\n1 Oak St\nSide door\nLand"},  {"ja", "123\nState Town\n1 Oak St\nSide door\nLand"},
      {"xx", "1 Oak St\nSide door\nTown State 123\nLand"},   {"", "1 Oak St\nSide door\nTown State 123\nLand"},
      {" ", "1 Oak St\nSide door\nTown State 123\nLand"},
  };
  for (const auto& [code, expected] : rows) EXPECT_EQ(text(fullAddress(code)), expected) << code;
}

TEST_F(AddressFormat, LeavesNoGapForWhatIsMissing) {
  const NSString code = kABAddressCountryCodeKey;
  EXPECT_EQ(text(address({})), "");
  EXPECT_EQ(text(nullptr), "");
  EXPECT_EQ(text(address({{kABAddressCountryKey, "Land"}, {kABAddressZIPKey, " 123 "}})), "123\nLand");
  EXPECT_EQ(text(address({{kABAddressCityKey, "Town"}, {kABAddressZIPKey, "123"}})), "Town 123");
  EXPECT_EQ(text(address({{kABAddressStreetKey, "1 Oak"}, {kABAddressZIPKey, "123"}})), "1 Oak\n123");
  EXPECT_EQ(text(address({{kABAddressStreetKey, "1 Oak"}, {kABAddressCityKey, ""}, {code, "de"}})), "1 Oak");
  EXPECT_EQ(text(address({{kABAddressStreetKey, "1 Oak"}, {kABAddressZIPKey, "1"}, {code, "gb"}})), "1 Oak\n1");
  EXPECT_EQ(text(NSDictionary::dictionaryWithObject(NSNumber::numberWithInt(1), kABAddressZIPKey)), "");
}

TEST_F(AddressFormat, NamesEachPart) {
  auto namesIn = [&](const char* countryCode) {
    const NSAttributedString string = formatted(fullAddress(countryCode));
    std::string names;
    NSRange run{};
    for (NSUInteger i = 0; i < string.length(); i = run.location + run.length) {
      names += shown(string.attributesAtIndex(i, &run));
    }
    return names;
  };
  EXPECT_EQ(namesIn("us"), "{Street=Street}{}{City=City}{}{State=State}{}{ZIP=ZIP}{}{Country=Country}");
  EXPECT_EQ(namesIn("ca"), "{Street=Street}{}{City=City}{}{State=Province}{}{ZIP=Postal Code}{}{Country=Country}");
  EXPECT_EQ(namesIn("de"), "{Street=Street}{}{ZIP=Postal Code}{}{City=City}{}{Country=Country}");
  EXPECT_EQ(namesIn("gb"), "{Street=Street}{}{City=Town}{}{State=County}{}{ZIP=Postcode}{}{Country=Country}");
}

}  // namespace
