#include "platform/foundation/cf_string.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr const char* kTestData = "/usr/share/unicode/NormalizationTest.txt.bz2";

std::u16string decomposed(const std::u16string& units) {
  const auto size = static_cast<CFIndex>(units.size());
  CFStringRef string = CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(), size);
  CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, string);
  CFStringNormalize(copy, kCFStringNormalizationFormD);
  std::u16string result(static_cast<std::size_t>(CFStringGetLength(copy)), u'\0');
  CFStringGetCharacters(copy, CFRangeMake(0, CFStringGetLength(copy)), result.data());
  CFRelease(copy);
  CFRelease(string);
  return result;
}

std::u16string unitsOf(char32_t c) {
  if (c < 0x10000) return {static_cast<char16_t>(c)};
  return {static_cast<char16_t>(0xD7C0 + (c >> 10)), static_cast<char16_t>(0xDC00 + (c & 0x3FF))};
}

// A column of the data: code points in hexadecimal.
std::u16string parse(const std::string& column) {
  std::u16string units;
  std::istringstream stream(column);
  stream >> std::hex;
  for (std::uint32_t c; stream >> c;) units += unitsOf(c);
  return units;
}

// Unicode's own cases: source; form C; form D; form KC; form KD. What part 1 doesn't list stays as it is.
TEST(Normalization, PassesUnicodesTest) {
  if (!std::filesystem::exists(kTestData)) GTEST_SKIP() << kTestData << " is missing";
  const std::unique_ptr<std::FILE, decltype(&pclose)> pipe(popen((std::string("bzcat ") + kTestData).c_str(), "r"),
                                                           &pclose);
  ASSERT_NE(pipe, nullptr);
  std::set<std::u16string> listed;
  std::string part;
  int cases = 0;
  for (char line[4096]; std::fgets(line, sizeof line, pipe.get()) != nullptr;) {
    if (line[0] == '@') part = std::string(line, 6);
    if (line[0] == '#' || line[0] == '@') continue;
    std::vector<std::u16string> columns;
    std::istringstream stream(line);
    for (std::string column; columns.size() < 5 && std::getline(stream, column, ';');) {
      columns.push_back(parse(column));
    }
    ASSERT_EQ(columns.size(), 5U) << line;
    for (const std::size_t from : {0U, 1U, 2U}) EXPECT_EQ(decomposed(columns[from]), columns[2]) << line;
    for (const std::size_t from : {3U, 4U}) EXPECT_EQ(decomposed(columns[from]), columns[4]) << line;
    if (part == "@Part1") listed.insert(columns[0]);
    ++cases;
  }
  ASSERT_GT(cases, 18000);
  for (char32_t c = 1; c <= 0x10FFFF; ++c) {
    const std::u16string units = unitsOf(c);
    if (listed.contains(units)) continue;
    ASSERT_EQ(decomposed(units), units) << std::hex << static_cast<std::uint32_t>(c);
  }
}

TEST(Normalization, KeepsUnpairedSurrogates) {
  const std::u16string odd = {0xDC00, u'\u00E9', 0xD800, 0xD800, 0xDC00, 0xD800};
  EXPECT_EQ(decomposed(odd), (std::u16string{0xDC00, u'e', u'\u0301', 0xD800, 0xD800, 0xDC00, 0xD800}));
}

// A million marks in falling order would take hours if each were moved past all before it.
TEST(Normalization, IsNotQuadraticInMarks) {
  std::u16string text = u"a";
  for (int i = 0; i < 500000; ++i) text += u"\u0301\u0323";
  const std::u16string result = decomposed(text);
  ASSERT_EQ(result.size(), text.size());
  EXPECT_EQ(result[500000], u'\u0323');
  EXPECT_EQ(result[500001], u'\u0301');
}

}  // namespace
