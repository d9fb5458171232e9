#include "platform/contacts/vcard/writer.h"

#include "platform/contacts/vcard/card.h"
#include "platform/contacts/vcard/text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

TEST(VCardWriter, WritesLines) {
  std::string card;
  vcard::appendLine(card, "", "FN", {}, "a");
  vcard::appendLine(card, "item1", "TEL", {{"type", "HOME"}, {"X-A", "b;\"c^\"\n"}}, "1");
  EXPECT_EQ(card, "FN:a\r\nitem1.TEL;type=HOME;X-A=\"b;^'c^^^'^n\":1\r\n");
  EXPECT_EQ(vcard::escape("a\r\nb\rc\nd,;\\"), "a\\nb\\nc\\nd\\,\\;\\\\");
  EXPECT_EQ(vcard::Line("X;A=\"b;^'c^^^'^n^x^\":1", {}).parameters()[0].value, "b;\"c^\"\n^x^");
}

TEST(VCardWriter, FoldsWithoutCuttingCharacters) {
  for (std::size_t lead = 0; lead < 80; ++lead) {
    std::string value(lead, 'x');
    for (int i = 0; i < 60; ++i) value += "ä€𠮷";
    std::string line;
    vcard::appendLine(line, "", "NOTE", {}, value);
    std::string_view rest = line;
    while (!rest.empty()) {
      const std::size_t end = rest.find("\r\n");
      ASSERT_LE(end, 75U);
      EXPECT_NE(static_cast<unsigned char>(rest[1]) & 0xC0, 0x80);
      rest.remove_prefix(end + 2);
    }
    line = "BEGIN:VCARD\r\n" + line + "END:VCARD\r\n";
    const vcard::Card card = vcard::parseCard(line);
    ASSERT_EQ(card.lines.size(), 3U);
    EXPECT_EQ(card.lines[1].value(), value);
  }
}

}  // namespace
