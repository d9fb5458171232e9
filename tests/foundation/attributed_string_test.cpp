#include "platform/foundation/attributed_string.h"

#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

#include <string>

namespace {

NSString text(const char* utf8) { return NSString::stringWithUTF8String(utf8); }

NSDictionary attribute(const char* name) { return NSDictionary::dictionaryWithObject(text("value"), text(name)); }

Retained<NSAttributedString> attributed(const char* utf8, NSDictionary attributes) {
  return Retained<NSAttributedString>::adopt(NSAttributedString::alloc().initWithString(text(utf8), attributes));
}

// Each run as its range and the name of its attribute.
std::string runsOf(NSAttributedString string) {
  std::string runs;
  NSRange range{};
  for (NSUInteger at = 0; at < string.length(); at = range.location + range.length) {
    const NSDictionary attributes = string.attributesAtIndex(at, &range);
    runs += std::to_string(range.location) + "+" + std::to_string(range.length);
    for (NSUInteger i = 0; i < attributes.count(); ++i) {
      runs += attributes.allKeys().objectAtIndex(i).as<NSString>().UTF8String();
    }
    runs += ' ';
  }
  return runs;
}

TEST(AttributedString, JoinsNeighboursOfEqualAttributes) {
  const auto address = Retained<NSMutableAttributedString>::adopt(NSMutableAttributedString::alloc().init());
  const struct {
    const char* added;
    NSDictionary attributes;
    const char* runs;
  } steps[] = {
      {"1 Main St", attribute("Street"), "0+9Street "},
      {"", attribute("City"), "0+9Street "},
      {"\n", nullptr, "0+9Street 9+1 "},
      {"Zürich", attribute("City"), "0+9Street 9+1 10+6City "},
      {"!", attribute("City"), "0+9Street 9+1 10+7City "},
  };
  for (const auto& step : steps) {
    address->appendAttributedString(attributed(step.added, step.attributes).get());
    EXPECT_EQ(runsOf(address.get()), step.runs);
  }
  address->appendAttributedString(address.get());
  EXPECT_EQ(runsOf(address.get()), "0+9Street 9+1 10+7City 17+9Street 26+1 27+7City ");
  EXPECT_STREQ(attributed("text", attribute("a"))->description().UTF8String(), "text{\n    a = value;\n}");
  EXPECT_EQ(raised([&] { address->appendAttributedString(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { (void)address->attributesAtIndex(34, nullptr); }), "NSRangeException");
}

}  // namespace
