#include "platform/contacts/address_book.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace {

const std::filesystem::path kCards = std::filesystem::path(__FILE__).parent_path() / "cards";

// What the cards of the other programs' kinds say, those of a file in its order.
struct Row {
  const char* file;
  const char* property;
  const char* shown;
};

constexpr Row kRows[] = {
    {"phone_21_quoted_printable", "Last", "Åström"},
    {"phone_21_quoted_printable", "Phone", "[*Mobile=+46 70 555 01 00 Home=08-555 01 01 Other=0174-555 02]"},
    {"phone_21_quoted_printable", "Address",
     "[*Home={Street=Skärgårdsgatan 4\n2 tr City=Norrtälje ZIP=761 30 Country=Sverige}]"},
    {"phone_21_quoted_printable", "Note", "Är borta på måndagar.\nRing på kvällen."},
    {"phone_21_photo", "BirthdayComponents", "1984-11-30"},
    {"phone_21_photo", "Phone", "[*Mobile=07700 900123 WorkFAX=01632 960001]"},
    {"phone_21_photo_unindented", "Phone", "[*Mobile=+31 6 5550 0110]"},
    {"phone_21_sms_export", "Phone", "[*Mobile=5550101 Mobile=555-0101 Mobile=5550101]"},
    {"phone_30_custom_labels", "Email", "[*labo=elise@marees.example Home=lili@mail.example]"},
    {"phone_30_custom_labels", "Phone",
     "[*Mobile=+33 6 55 50 01 00 HomeFAX=+33 2 55 50 01 01 Main=+33 2 55 50 01 02 Other=+33 2 55 50 01 03]"},
    {"phone_30_custom_labels", "Address",
     "[*Home={Street=3 quai du Port\nBât. C City=Brest ZIP=29200 Country=France CountryCode=fr}]"},
    {"phone_30_custom_labels", "BirthdayComponents", "?-2-29"},
    {"phone_30_custom_labels", "ABDateComponents", "[*Anniversary=2011-7-9]"},
    {"phone_30_custom_labels", "ABRelatedNames", "[*Brother=Hugo marraine=Zoé]"},
    {"phone_30_custom_labels", "InstantMessage",
     "[*Work={InstantMessageService=JabberInstant InstantMessageUsername=elise@chat.example}]"},
    {"phone_30_custom_labels", "SocialProfile",
     "[*Other={url=http://social.example/lili username=lili serviceName=chirp}]"},
    {"phone_30_photo_folded", "ABPersonFlags", "0"},
    {"phone_40_photo_data_uri", "Phone", "[*Mobile=+962-7-5550-0100 Work=+962-6-555-0100 ext. 12]"},
    {"phone_40_photo_data_uri", "BirthdayComponents", "?-4-12"},
    {"phone_40_photo_data_uri", "ABDateComponents", "[*Anniversary=2009-8-8]"},
    {"phone_emoji", "Last", "🦊"},
    {"phone_emoji", "Note", "👩‍👩‍👧 call after 6 ☎️\nאין חניה"},
    {"phone_sim_card_backup", "Last", "VOICEMAIL"},
    {"desktop_30_labels_escaped", "Organization", "Whitfield, Whitfield & Sons"},
    {"desktop_30_labels_escaped", "Note", "A \"quoted\" note, with http://host.example/x;y and a back\\slash."},
    {"desktop_30_labels_escaped", "HomePage", "http://whitfield.example/"},
    {"desktop_30_labels_escaped", "ICQInstant", "[*Work=5550100]"},
    {"desktop_30_company", "ABPersonFlags", "1"},
    {"desktop_30_company", "First", "nil"},
    {"desktop_30_phonetic", "LastPhonetic", "やまもと"},
    {"desktop_30_phonetic", "ABPersonFlags", "16"},
    {"desktop_30_own_lines", "ABRelatedNames", "[*Spouse=Nils]"},
    {"desktop_30_own_lines", "Phone", "[*Work=0555-0100]"},
    {"desktop_30_list_card", "Email", "[*Other=\"Ann\" <ann@mail.example> Other=bo@mail.example]"},
    {"desktop_21_business", "First", "Jürgen"},
    {"desktop_21_business", "Note", "Zeile 1\nZeile 2\n\n"},
    {"desktop_21_business", "Address", "[*Work={Street=Hauptstraße 5 City=Köln ZIP=50667 Country=Deutschland}]"},
    {"desktop_21_business", "ABDepartment", "Außendienst"},
    {"desktop_30_addresses_with_box", "Address",
     "[*Work={Street=Box 12\nPlan 3\nVerkstadsgatan 9 City=Västerås State=Västmanland ZIP=721 00 Country=Sverige} "
     "Home={City=Sala}]"},
    {"desktop_30_plain_breaks", "BirthdayComponents", "1980-2-29"},
    {"desktop_30_plain_breaks", "Nickname", "Kati,Katica"},
    {"web_30_items", "Email", "[*Other=priya@mail.example Elternbeirat=priya@school.example]"},
    {"web_30_items", "URLs", "[*PROFILE=https://profiles.example/12345]"},
    {"web_30_items", "Note", "nil"},
    {"web_30_no_name", "First", "nil"},
    {"web_30_no_name", "Email", "[*Other=info@shop.example]"},
    {"web_30_mail_only_fn", "First", "newsletter@list.example"},
    {"web_21_latin1", "First", "Iñaki"},
    {"web_21_latin1", "Address", "[*Home={Street=C/ Peñas 3; 2º City=Bilbao State=Bizkaia ZIP=48000 Country=España}]"},
    {"web_30_tabs_as_folds", "Note", "This text is folded with tabs, in the middle of words and\t at blanks."},
    {"web_30_tabs_as_folds", "Email", "[*Other=long.name.with.many.parts@a-rather-long-host-name.mail.example]"},
    {"web_unlabelled_everything", "InstantMessage",
     "[*Other={InstantMessageService=JabberInstant InstantMessageUsername=a@chat.example} "
     "Other={InstantMessageService=sipInstant InstantMessageUsername=a@chat.example}]"},
    {"directory_30_ldap", "Suffix", "FRSE"},
    {"directory_30_ldap", "ABDepartment", "Faculty of Science"},
    {"directory_21_agent", "Phone", "[*Work=555-0110 Home=555-0112 Other=555-0113 Other=555-0114]"},
    {"v40_individual", "Email", "[Work=soren@havn.example *Home=soren@hjem.example]"},
    {"v40_individual", "Address", "[*Home={Street=Havnegade 1 City=Aarhus ZIP=8000 Country=Danmark CountryCode=dk}]"},
    {"v40_individual", "BirthdayComponents", "1975-1-5"},
    {"v40_org", "Organization", "Blue Door Theatre"},
    {"v40_org", "ABPersonFlags", "1"},
    {"v40_alternatives", "Last", "田中"},
    {"v40_alternatives", "Address", "[*Other={Street=中央1-1 City=港区 State=東京都 ZIP=105-0000 Country=日本}]"},
    {"v40_alternatives", "Phone", "[Other=+81-3-5555-0100 *Work=+81-3-5555-0101 Other=+81-3-5555-0102]"},
    {"v40_uri_and_sounds", "Note", "Semicolons ; and commas, and \\ and\na break"},
    {"v40_uri_and_sounds", "URLs", "[*HomePage=https://media.example/a,b;c]"},
    {"v40_grouped", "Phone", "[*cabin=+1-555-0100]"},
    {"v40_grouped", "Email", "[*Other=dots@mail.example]"},
    {"bytes_utf8_bom", "First", "Żaneta"},
    {"bytes_utf16_le", "Note", "Zażółć gęślą jaźń 𝄞"},
    {"bytes_utf16_be", "Note", "Zażółć gęślą jaźń 𝄞"},
    {"bytes_utf16_no_mark", "Note", "Zażółć gęślą jaźń 𝄞"},
    {"bytes_latin1_undeclared", "Note", "10 € – nur für “Freunde”"},
    {"bytes_21_koi8", "Note", "Привет"},
    {"bytes_21_shift_jis", "Last", "佐藤"},
    {"bytes_21_mac_roman", "Last", "Pérez"},
    {"bytes_mixed_line_ends", "Note", "abcd"},
    {"absurd_lines", "Last", "Absurd"},
    {"absurd_lines", "Phone", "[*Other=555 Home=556 Other=557]"},
    {"absurd_lines", "Note", "real"},
    {"absurd_lines", "BirthdayComponents", "nil"},
    {"absurd_21_quoted_printable", "Note",
     "100 =ZZ% =4 = equals, a soft break, and the endTEL:swallowed by the soft break"},
    {"absurd_21_quoted_printable", "Phone", "[*Work=555]"},
    {"absurd_only_a_frame", "First", "nil"},
    {"absurd_indented_behind_begin", "First", "Blanks Around"},
    {"absurd_30_soft_break_at_end", "First", "Break"},
    {"absurd_begin_in_value", "Note", "BEGIN:VCARD\nEND:VCARD"},
    {"absurd_no_version", "Phone", "[*Other=555 0199]"},
    {"absurd_not_closed", "Last", "Cut"},
    {"own_lines", "ABPersonFlags", "49"},
};

TEST(Corpus, IsReadAsItsWritersMeantIt) {
  const AutoreleasePool pool;
  for (const Row& row : kRows) {
    const std::string bytes = bytesOf(kCards / (std::string(row.file) + ".vcf"));
    const NSData data = NSData::dataWithBytes(bytes.data(), bytes.size());
    const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().initWithVCardRepresentation(data));
    ASSERT_TRUE(person) << row.file;
    EXPECT_EQ(shown(person.get(), row.property), row.shown) << row.file << " " << row.property;
  }
}

TEST(Corpus, HasPictures) {
  const AutoreleasePool pool;
  const std::map<std::string, std::size_t> sizes{
      {"phone_21_photo", 714},         {"phone_21_photo_unindented", 70}, {"phone_30_photo_folded", 714},
      {"phone_40_photo_data_uri", 70}, {"desktop_30_labels_escaped", 70}, {"v40_uri_and_sounds", 90},
      {"desktop_30_plain_breaks", 0},  {"directory_30_ldap", 0},
  };
  for (const auto& [file, size] : sizes) {
    const std::string bytes = bytesOf(kCards / (file + ".vcf"));
    const NSData data = NSData::dataWithBytes(bytes.data(), bytes.size());
    const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().initWithVCardRepresentation(data));
    EXPECT_EQ(person->imageData().length(), size) << file;
  }
}

// As one folder, where cards name each other.
TEST(Corpus, IsAFolder) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  for (const auto& entry : std::filesystem::directory_iterator(kCards)) {
    if (entry.path().extension() != ".vcf") continue;
    folder.write(entry.path().filename(), bytesOf(entry.path()));
  }
  const ABAddressBook book = ABAddressBook::addressBook();
  EXPECT_EQ(book.groups().count(), 2U);
  EXPECT_EQ(book.people().count(), 74U);
  auto membersOf = [&](const char* id) {
    const NSArray members = book.recordForUniqueId(NSString::stringWithUTF8(id)).as<ABGroup>().members();
    std::string names;
    for (NSUInteger i = 0; i < members.count(); ++i) {
      const ABRecord member = members.objectAtIndex(i).as<ABRecord>();
      names += shown(member, "First") + "/" + shown(member, "Organization") + " ";
    }
    return names;
  };
  EXPECT_EQ(membersOf("22222222-2222-3333-4444-555555555504:ABGroup"), "Chidi/nil nil/Harbour Print Works ");
  EXPECT_EQ(membersOf("abcdef00-0000-4000-8000-000000000001:ABGroup"), "Søren/Havnen A/S Chidi/nil ");
  const ABRecord own = book.recordForUniqueId("own-1:ABPerson"_ns);
  const auto emails = own.valueForProperty(kABEmailProperty).as<ABMultiValue>();
  EXPECT_EQ(shown(emails.identifierAtIndex(0)), "0AC4DB2E-7A57-4B4A-9A4C-0F8C7B0C6F11");
  EXPECT_EQ(shown(own, "Creation"), "2012-03-04 05:06:07 +0000");
}

}  // namespace
