#include "tests/contacts/book_test.h"

#include <string>

namespace {

std::string localized(NSString text) { return shown(NSString(ABLocalizedPropertyOrLabel(text.get()))); }

TEST(Localization, NamesEveryBuiltInPropertyLabelAndAddressKey) {
  const AutoreleasePool pool;
  const struct {
    const char* constant;
    NSString text;
  } constants[] = {
#define AB_ROW(name, text) {#name, name},
      AB_STRING_CONSTANTS(AB_ROW, AB_ROW)
#undef AB_ROW
  };
  for (const auto& row : constants) {
    const std::string text = localized(row.text);
    EXPECT_EQ(text.find("_$!<"), std::string::npos) << row.constant;
    // All but one word in the framework's own spelling: a person reads blanks between words.
    const std::string name = row.constant;
    if (name.ends_with("Property") || name.starts_with("kABAddress")) {
      EXPECT_NE(text, "") << name;
      EXPECT_EQ(text.find("AB"), std::string::npos) << name;
    }
  }
  const std::pair<NSString, const char*> rows[] = {
      {kABHomePageLabel, "home page"},
      {kABPhoneWorkFAXLabel, "work fax"},
      {kABPhoneiPhoneLabel, "iPhone"},
      {kABTitleProperty, "Prefix"},
      {kABMiddleNamePhoneticProperty, "Phonetic Middle"},
      {kABAddressZIPKey, "ZIP"},
      {kABInstantMessageServiceGoogleTalk, "Google Talk"},
      {"home"_ns, "home"},
      {"_$!<Boat>!$_"_ns, "_$!<Boat>!$_"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(localized(text), expected);
  const NSString boat = "boat"_ns;
  EXPECT_EQ(ABLocalizedPropertyOrLabel(boat.get()), boat.get());
  EXPECT_EQ(ABLocalizedPropertyOrLabel(nullptr), nullptr);
}

}  // namespace
