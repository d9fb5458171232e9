#include "platform/contacts/address_book.h"
#include "platform/foundation/autorelease_pool.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Row {
  const char* lines;
  const char* property;
  const char* value;
};

// Each row's card is read as a file of its own.
template <std::size_t N>
void expectRead(const Row (&rows)[N]) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  for (std::size_t i = 0; i < N; ++i) {
    folder.writeCard(std::to_string(100 + i) + ".vcf", rows[i].lines + std::string("\n"));
  }
  const NSArray people = ABAddressBook::addressBook().people();
  ASSERT_EQ(people.count(), N);
  for (std::size_t i = 0; i < N; ++i) {
    EXPECT_EQ(shown(people.objectAtIndex(i).as<ABRecord>(), rows[i].property), rows[i].value) << rows[i].lines;
  }
}

TEST(CardValues, ReadsNames) {
  expectRead({
      {"N:a; b;c\\;d;Dr.;III;more", "First", "b"},
      {"N:a; b;c\\;d;Dr.;III;more", "Middle", "c;d"},
      {"N:a; b;c\\;d;Dr.;III;more", "Suffix", "III"},
      {"N:;\nN:a;b", "Last", "a"},
      {"FN:Only Name", "First", "Only Name"},
      {"N:a\nFN:x", "First", "nil"},
      {"N:;\nFN:Shop\nORG:Shop;", "First", "nil"},
      {"N:;\nFN:Shop\nORG:Shop;", "ABPersonFlags", "1"},
      {"FN:Club\nKIND:org", "Organization", "Club"},
      {"N:a\nORG:x;y;z", "ABDepartment", "y"},
      {"NICKNAME:a,b", "Nickname", "a,b"},
      {"NOTE: a\\n", "Note", " a\n"},
      {"X-ABShowAs:COMPANY\nX-ABOrder:LAST", "ABPersonFlags", "17"},
      {"X-ABOrder:FIRST\nN:a", "ABPersonFlags", "32"},
      {"N:a", "ABPersonFlags", "nil"},
  });
}

TEST(CardValues, ReadsLabelledEntries) {
  expectRead({
      {"EMAIL:a@b", "Email", "[*Other=a@b]"},
      {"EMAIL;type=HOME:a\nEMAIL;type=WORK;type=pref:b", "Email", "[Home=a *Work=b]"},
      {"EMAIL;PREF=2:a\nEMAIL;PREF=1:b\nEMAIL;PREF=1:c", "Email", "[Other=a *Other=b Other=c]"},
      {"item1.EMAIL;type=HOME:a\nITEM1.X-ABLABEL:_$!<Work>!$_\nitem2.X-ABLabel:boat\nitem2.EMAIL:b", "Email",
       "[*Work=a boat=b]"},
      {"EMAIL:\nEMAIL: \nTEL:1", "Email", "nil"},
      {"EMAIL;ALTID=1:a\nEMAIL;ALTID=1:b\nEMAIL;ALTID=2:c", "Email", "[*Other=a Other=c]"},
      {"TEL;TYPE=CELL:1\nTEL;TYPE=\"voice,home\":2\nTEL;FAX;WORK:3\nTEL;TYPE=FAX,HOME:4\nTEL;TYPE=MAIN:5\n"
       "TEL;TYPE=PAGER:6\nTEL;TYPE=IPHONE;TYPE=CELL:7\nTEL;TYPE=VOICE:8\nTEL;TYPE=FAX:9",
       "Phone", "[*Mobile=1 Home=2 WorkFAX=3 HomeFAX=4 Main=5 Pager=6 iPhone=7 Other=8 WorkFAX=9]"},
      {"TEL;VALUE=uri:tel:+1-5;ext=7", "Phone", "[*Other=+1-5 ext. 7]"},
      {"URL:http\\://a\nURL;TYPE=HOME:b", "URLs", "[*HomePage=http://a Home=b]"},
      {"URL;TYPE=HOME:b\nURL:c", "HomePage", "c"},
      {"CALURI;TYPE=work:c", "calendarURIs", "[*Work=c]"},
      {"item1.X-ABRELATEDNAMES:Ann\nitem1.X-ABLabel:_$!<Sister>!$_\nX-SPOUSE:Bo\n"
       "RELATED;TYPE=child;VALUE=text:Cy\nRELATED;TYPE=child:urn:uuid:1",
       "ABRelatedNames", "[*Sister=Ann Spouse=Bo Child=Cy]"},
  });
}

TEST(CardValues, ReadsAddresses) {
  expectRead({
      {"item1.ADR;type=HOME;type=pref:;;1 Main St\\nFloor 2;Town;ST;12345;Land\nitem1.X-ABADR:us", "Address",
       "[*Home={Street=1 Main St\nFloor 2 City=Town State=ST ZIP=12345 Country=Land CountryCode=us}]"},
      {"ADR:Box 1;Rear;Road", "Address", "[*Other={Street=Box 1\nRear\nRoad}]"},
      {"ADR;type=WORK:;;;;;;", "Address", "nil"},
      {"ADR:;;;Only City", "Address", "[*Other={City=Only City}]"},
  });
}

TEST(CardValues, ReadsDates) {
  expectRead({
      {"BDAY:1980-02-29", "BirthdayComponents", "1980-2-29"},
      {"BDAY:1980-02-29", "Birthday", "1980-02-29 12:00:00 +0000"},
      {"BDAY;VALUE=date:19800229", "BirthdayComponents", "1980-2-29"},
      {"BDAY:19531015T231000Z", "BirthdayComponents", "1953-10-15"},
      {"BDAY:--0229", "BirthdayComponents", "?-2-29"},
      {"BDAY;X-APPLE-OMIT-YEAR=1604:1604-02-29", "BirthdayComponents", "?-2-29"},
      {"BDAY;X-APPLE-OMIT-YEAR=1604:1604-02-29", "Birthday", "1604-02-29 12:00:00 +0000"},
      {"BDAY:1981-02-29", "BirthdayComponents", "nil"},
      {"BDAY;VALUE=text:circa 1800", "Birthday", "nil"},
      {"item1.X-ABDATE:2001-05-06\nitem1.X-ABLabel:moved\nANNIVERSARY:20020304", "ABDateComponents",
       "[*moved=2001-5-6 Anniversary=2002-3-4]"},
      {"X-ABDATE:2001-05-06", "ABDate", "[*Other=2001-05-06 12:00:00 +0000]"},
      {"REV:2024-05-04T09:12:33Z", "Modification", "2024-05-04 09:12:33 +0000"},
      {"REV:20240504T111233+0200\nCREATED:20200101T000000Z", "Creation", "2020-01-01 00:00:00 +0000"},
      {"REV:20240504T111233+0200", "Creation", "2024-05-04 09:12:33 +0000"},
  });
}

TEST(CardValues, ReadsMessagingAccounts) {
  expectRead({
      {"X-AIM;type=HOME;type=pref:mo\nIMPP;X-SERVICE-TYPE=AIM;type=HOME;type=pref:aim:mo", "InstantMessage",
       "[*Home={InstantMessageService=AIMInstant InstantMessageUsername=mo}]"},
      {"X-AIM;type=HOME:mo\nIMPP:aim:mo\nX-ICQ:5\nIMPP:xmpp:a@b", "AIMInstant", "[*Home=mo]"},
      {"X-AIM:mo\nX-JABBER;type=WORK:a@b\nIMPP;TYPE=home:xmpp:c@d\nIMPP;X-SERVICE-TYPE=GoogleTalk:xmpp:e",
       "JabberInstant", "[*Work=a@b Home=c@d]"},
      {"IMPP:unheard:of", "InstantMessage",
       "[*Other={InstantMessageService=unheardInstant InstantMessageUsername=of}]"},
      {"IMPP:nothing\nX-AIM:\nX-MSN;type=HOME:m", "MSNInstant", "[*Home=m]"},
      {"X-SOCIALPROFILE;type=twitter;x-user=mo;x-userid=7:http://twitter.com/mo", "SocialProfile",
       "[*Other={url=http://twitter.com/mo username=mo userIdentifier=7 serviceName=twitter}]"},
  });
}

// A card that doesn't carry identifiers has the same ones at each reading, whatever stands around the entry.
TEST(CardValues, DerivesStableIdentifiers) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.writeCard("a.vcf", "UID:1\nTEL:1\nTEL:2\nTEL:1\nTEL;X-ABID=own:3\nTEL;X-ABID=own:4\n");
  folder.writeCard("b.vcf", "UID:2\nTEL:1\n");
  const NSArray people = ABAddressBook::addressBook().people();
  const NSArray again = ABAddressBook::addressBook().people();
  auto phones = [](const NSArray& list, NSUInteger index) {
    return list.objectAtIndex(index).as<ABRecord>().valueForProperty(kABPhoneProperty).as<ABMultiValue>();
  };
  std::string all;
  for (NSUInteger i = 0; i < 5; ++i) {
    const std::string identifier = phones(people, 0).identifierAtIndex(i).UTF8String();
    EXPECT_EQ(identifier, phones(again, 0).identifierAtIndex(i).UTF8String());
    EXPECT_EQ(all.find(identifier), std::string::npos);
    all += identifier + " ";
  }
  EXPECT_NE(all.find(" own "), std::string::npos);
  EXPECT_EQ(all.find(phones(people, 1).identifierAtIndex(0).UTF8String()), std::string::npos);
}

}  // namespace
