#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

namespace {

// The sections joined by bars, cards in brackets.
std::string sectionsOf(std::string_view file) {
  std::string text;
  for (const vcard::Section& section : vcard::splitSections(file)) {
    text += section.isCard ? "[" + std::string(section.text) + "]" : std::string(section.text);
    text += "|";
  }
  return text;
}

TEST(VCardReader, FindsTheCardsOfAFile) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},
      {"BEGIN:VCARD\nEND:VCARD\n", "[BEGIN:VCARD\nEND:VCARD\n]|"},
      {"begin:vCard \r\nend: VCARD", "[begin:vCard \r\nend: VCARD]|"},
      {"BEGIN:VCARD\rEND:VCARD\r", "[BEGIN:VCARD\rEND:VCARD\r]|"},
      {"x\nBEGIN:VCARD\nEND:VCARD\n\nBEGIN:VCARD\nEND:VCARD\ny",
       "x\n|[BEGIN:VCARD\nEND:VCARD\n]|\n|[BEGIN:VCARD\nEND:VCARD\n]|y|"},
      // Without its END it is no card, and takes nothing from the next.
      {"BEGIN:VCARD\nFN:a\nBEGIN:VCARD\nEND:VCARD\n", "BEGIN:VCARD\nFN:a\n|[BEGIN:VCARD\nEND:VCARD\n]|"},
      {"END:VCARD\n", "END:VCARD\n|"},
      {"BEGIN:VCALENDAR\nEND:VCALENDAR\n", "BEGIN:VCALENDAR\nEND:VCALENDAR\n|"},
      {"BEGIN:VCARD\nAGENT:\nBEGIN:VCARD\nEND:VCARD\nEND:VCARD\n",
       "[BEGIN:VCARD\nAGENT:\nBEGIN:VCARD\nEND:VCARD\nEND:VCARD\n]|"},
  };
  for (const auto& [file, sections] : rows) EXPECT_EQ(sectionsOf(file), sections) << file;
}

// Each line of a card as {group|NAME|value}, decoded; BEGIN, VERSION and END left out.
std::string linesOf(const std::string& lines, const std::string& version = "3.0") {
  const std::string file = "BEGIN:VCARD\nVERSION:" + version + "\n" + lines + "END:VCARD\n";
  const vcard::Card card = vcard::parseCard(file);
  std::string text;
  std::string raw;
  for (const vcard::Line& line : card.lines) {
    raw += line.raw();
    if (line.is("BEGIN") || line.is("VERSION") || line.is("END")) continue;
    text += "{" + std::string(line.group()) + "|" + std::string(line.name()) + "|" +
            vcard::unescape(vcard::decodedValue(line), card.version) + "}";
  }
  EXPECT_EQ(raw, file);
  return text;
}

TEST(VCardReader, ReadsLogicalLines) {
  const struct {
    const char* version;
    const char* lines;
    const char* read;
  } rows[] = {
      {"3.0", "item1.FN:a\n", "{item1|FN|a}"},
      {"3.0", "NOTE:one\r\n  two\r\n\tthree\n", "{|NOTE|one twothree}"},
      {"3.0", "NO\n TE:one\n", "{|NOTE|one}"},
      {"3.0", "NOTE;X=\xe9;CHARSET=UTF-8:\xc3\xa9\n", "{|NOTE|é}"},
      {"3.0", "FN\n:x\n\nTEL 1:2\nX Y:z\n", "{||}{||}{||}{||}{||}"},
      {"3.0", "NOTE:a\\nb\\Nc\\,d\\;e\\\\f\\:g\\x\n", "{|NOTE|a\nb\nc,d;e\\f:g\\x}"},
      {"2.1", "NOTE:a\\nb\\;c\n", "{|NOTE|a\\nb;c}"},
      {"3.0", "TEL;X=\"a:b\":1\nTEL;X=\"a:2\n", "{|TEL|1}{|TEL|2}"},
      {"2.1", "NOTE;ENCODING=QUOTED-PRINTABLE:a=3D=\nb=\n=C3=A4=0D=0Ac\n", "{|NOTE|a=bä\nc}"},
      {"2.1", "NOTE;QUOTED-PRINTABLE;CHARSET=ISO-8859-1:=E4=80\n", "{|NOTE|ä€}"},
      // A soft break before the end of the card has nothing to join.
      {"2.1", "NOTE;QUOTED-PRINTABLE:a=\n", "{|NOTE|a}"},
      {"2.1", "NOTE;QUOTED-PRINTABLE:=\n b=4\n", "{|NOTE| b=4}"},
      {"2.1", "NOTE:a=\nTEL:1\n", "{|NOTE|a=}{|TEL|1}"},
      {"2.1", "NOTE;CHARSET=none-such:\xe4\n", "{|NOTE|ä}"},
      {"3.0", "X-TEXT;ENCODING=B:w6Q=\n", "{|X-TEXT|ä}"},
      {"2.1", "X-TEXT;BASE64:\n  w6\n  Q=\n\nTEL:1\n", "{|X-TEXT|ä}{||}{|TEL|1}"},
      {"2.1", "AGENT:\nBEGIN:VCARD\nFN:b\nEND:VCARD\nTEL:1\n", "{|AGENT|BEGIN:VCARDFN:bEND:VCARD}{|TEL|1}"},
  };
  for (const auto& row : rows) EXPECT_EQ(linesOf(row.lines, row.version), row.read) << row.lines;
}

TEST(VCardReader, ReadsParameters) {
  const std::pair<const char*, const char*> rows[] = {
      {"TEL:1", ""},
      {"TEL;type=home,Work;TYPE=pref:1", "TYPE=home TYPE=Work TYPE=pref "},
      {"TEL;HOME;VOICE;:1", "TYPE=HOME TYPE=VOICE "},
      {"NOTE;quoted-printable;Charset=UTF-8:1", "ENCODING=quoted-printable CHARSET=UTF-8 "},
      {"TEL;TYPE=\"voice,home\":1", "TYPE=voice TYPE=home "},
      {"ADR;LABEL=\"a;b,c:d\";X= :1", "LABEL=a;b,c:d X= "},
      {"ADR;ALTID=\xe9;\xc9=2:1", "ALTID=é É=2 "},
      {"X;A=b,,\"c\":1", "A=b A= A=c "},
  };
  for (const auto& [text, expected] : rows) {
    const vcard::Line line(text, {});
    std::string read;
    for (const vcard::Parameter& parameter : line.parameters()) read += parameter.name + "=" + parameter.value + " ";
    EXPECT_EQ(read, expected) << text;
    EXPECT_EQ(line.value(), "1");
  }
}

}  // namespace
