#include "platform/contacts/address_book.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using Edit = std::function<void(ABPerson)>;

Retained<ABMutableMultiValue> edited(ABPerson person, NSString property) {
  const auto value = person.valueForProperty(property).as<ABMultiValue>();
  return Retained<ABMutableMultiValue>::adopt(value ? value.mutableCopy() : ABMutableMultiValue::alloc().init());
}

// Sets the property to what the body makes of a copy of it.
Edit edit(NSString property, std::function<void(ABMutableMultiValue)> body) {
  return [property, body](ABPerson person) {
    const auto value = edited(person, property);
    body(value.get());
    EXPECT_TRUE(person.setValue(value.get(), property));
  };
}

Edit set(NSString property, NSObject value) {
  return [property, value](ABPerson person) { EXPECT_TRUE(person.setValue(value, property)); };
}

// Replaces so many characters from each place where the start stands.
void replaceAll(std::string& text, const std::string& start, std::size_t length, const std::string& with) {
  for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at + with.size())) {
    text.replace(at, length, with);
  }
}

// The lines of the person's card as it would be saved, unfolded, without what every card has; what differs from one run
// to the next is "*".
std::string writtenBy(ABPerson person) {
  std::string card = shown(person.vCardRepresentation());
  EXPECT_TRUE(card.starts_with("BEGIN:VCARD\r\nVERSION:3.0\r\n")) << card;
  EXPECT_TRUE(card.ends_with("END:VCARD\r\n")) << card;
  replaceAll(card, "\r\n ", 3, "");
  replaceAll(card, "\r\n", 2, "\n");
  replaceAll(card, "X-ABID=", 7 + 36, "X-ABID=*");
  for (const char* time : {"REV:", "CREATED:"}) {
    if (const std::size_t line = card.find(time); line != std::string::npos) {
      card.erase(line, card.find('\n', line) + 1 - line);
    }
  }
  constexpr std::size_t kHead = sizeof "BEGIN:VCARD\nVERSION:3.0\n" - 1;
  constexpr std::size_t kTail = sizeof "END:VCARD\n" - 1;
  return card.substr(kHead, card.size() - kHead - kTail);
}

struct Row {
  const char* before;
  Edit change;
  const char* after;
};

template <std::size_t N>
void expectWritten(const Row (&rows)[N]) {
  const ContactsFolder folder;
  for (std::size_t i = 0; i < N; ++i) {
    folder.writeCard(std::to_string(100 + i) + ".vcf", rows[i].before);
  }
  const NSArray people = ABAddressBook::addressBook().people();
  ASSERT_EQ(people.count(), N);
  for (std::size_t i = 0; i < N; ++i) {
    const auto person = people.objectAtIndex(i).as<ABPerson>();
    rows[i].change(person);
    EXPECT_EQ(writtenBy(person), rows[i].after) << rows[i].before;
  }
}

TEST(CardChanges, TouchOnlyTheLinesTheyAreAbout) {
  const AutoreleasePool pool;
  expectWritten({
      {"UID:1\nX-A;Q=1:a\\,b\n  c\nN:a;b\nFN:b a\nitem7.X-B:x\n", set(kABNoteProperty, "n"_ns),
       "UID:1\nX-A;Q=1:a\\,b c\nN:a;b\nFN:b a\nitem7.X-B:x\nNOTE:n\n"},
      {"N:a;b;c;d;e;f\nFN:x\nUID:2\n", set(kABFirstNameProperty, "B;"_ns),
       "N:a;B\\;;c;d;e;f\nFN:d B\\; c a e\nUID:2\n"},
      {"N:a;b\nFN;LANGUAGE=en:x\nUID:3\nX-Z:1\n", set(kABLastNameProperty, nullptr),
       "N:;b;;;\nFN;LANGUAGE=en:b\nUID:3\nX-Z:1\n"},
      {"FN:Full Name\nUID:4\n", set(kABJobTitleProperty, "t"_ns), "FN:Full Name\nN:;Full Name;;;\nTITLE:t\nUID:4\n"},
      {"N:a\nFN:a\nORG:o;d;x\nUID:5\n", set(kABOrganizationProperty, "O"_ns), "N:a\nFN:a\nORG:O;d;x\nUID:5\n"},
      {"N:a\nFN:a\nNOTE:1\nNOTE:2\nUID:6\n", set(kABNoteProperty, nullptr), "N:a\nFN:a\nUID:6\n"},
      {"N:;\nFN:Shop\nORG:Shop;\nUID:7\n", set(kABFirstNameProperty, "Mo"_ns),
       "N:;Mo;;;\nFN:Shop\nORG:Shop;\nX-ABShowAs:COMPANY\nUID:7\n"},
      {"N:a\nFN:a\nX-ABShowAs:COMPANY\nUID:8\n", set(kABPersonFlags, NSNumber::numberWithInt(16 + 512)),
       "N:a\nFN:a\nX-ABOrder:LAST\nX-ABFLAGS:528\nUID:8\n"},
      {"N:a\nFN:a\nBDAY;VALUE=text:once\nUID:9\n",
       set(kABBirthdayProperty, NSDate::dateWithTimeIntervalSinceReferenceDate(43200)),
       "N:a\nFN:a\nBDAY:2001-01-01\nUID:9\n"},
  });
}

TEST(CardChanges, KeepEntriesThatStayTheSame) {
  const AutoreleasePool pool;
  const char kThree[] =
      "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\n"
      "item1.X-FOO:y\nTEL;CELL:3\nUID:1\n";
  expectWritten({
      {kThree, edit(kABPhoneProperty, [](ABMutableMultiValue phones) { phones.addValue("4"_ns, kABPhoneWorkLabel); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\n"
       "item1.X-FOO:y\nTEL;CELL:3\nTEL;type=WORK;type=VOICE;X-ABID=*:4\nUID:1\n"},
      {kThree, edit(kABPhoneProperty, [](ABMutableMultiValue phones) { phones.replaceValueAtIndex(0, "9"_ns); }),
       "N:a\nFN:a\nTEL;type=HOME;type=VOICE;X-P=1;X-ABID=*:9\nX-A:x\nitem1.TEL;type=pref:2\n"
       "item1.X-ABLabel:boat\nitem1.X-FOO:y\nTEL;CELL:3\nUID:1\n"},
      {kThree, edit(kABPhoneProperty, [](ABMutableMultiValue phones) { phones.removeValueAndLabelAtIndex(1); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.X-FOO:y\nTEL;CELL:3\nUID:1\n"},
      {kThree, edit(kABPhoneProperty, [](ABMutableMultiValue phones) { phones.replaceLabelAtIndex(2, "car"_ns); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\nitem1.X-FOO:y\n"
       "item2.TEL;X-ABID=*:3\nitem2.X-ABLabel:car\nUID:1\n"},
      {kThree,
       edit(kABPhoneProperty,
            [](ABMutableMultiValue phones) { phones.setPrimaryIdentifier(phones.identifierAtIndex(2)); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;X-ABID=*:2\nitem1.X-ABLabel:boat\nitem1.X-FOO:y\n"
       "TEL;type=CELL;type=VOICE;type=pref;X-ABID=*:3\nUID:1\n"},
      {kThree,
       edit(kABPhoneProperty, [](ABMutableMultiValue phones) { phones.insertValue("0"_ns, "_$!<Pager>!$_"_ns, 0); }),
       "N:a\nFN:a\nTEL;type=PAGER;X-ABID=*:0\nTEL;type=HOME;X-P=1:1\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\n"
       "TEL;CELL:3\nX-A:x\nitem1.X-FOO:y\nUID:1\n"},
      {kThree, set(kABPhoneProperty, nullptr), "N:a\nFN:a\nX-A:x\nitem1.X-FOO:y\nUID:1\n"},
  });
}

TEST(CardChanges, WriteEachPropertyInItsForm) {
  const AutoreleasePool pool;
  auto address = [](ABMutableMultiValue addresses) {
    addresses.addValue(
        NSDictionary::dictionaryWithObjects(
            NSArray::arrayWithObjects({"1 Road\nBack"_ns, "Town; here"_ns, "de"_ns}),
            NSArray::arrayWithObjects({kABAddressStreetKey, kABAddressCityKey, kABAddressCountryCodeKey})),
        kABHomeLabel);
  };
  auto message = [](ABMutableMultiValue names) { names.addValue("mo"_ns, kABHomeLabel); };
  auto profile = [](ABMutableMultiValue profiles) {
    profiles.addValue(NSDictionary::dictionaryWithObjects(
                          NSArray::arrayWithObjects({"twitter"_ns, "mo"_ns, "http://t/mo,1"_ns}),
                          NSArray::arrayWithObjects(
                              {kABSocialProfileServiceKey, kABSocialProfileUsernameKey, kABSocialProfileURLKey})),
                      kABOtherLabel);
  };
  auto date = [](ABMutableMultiValue dates) {
    dates.addValue(NSDate::dateWithTimeIntervalSinceReferenceDate(0 + 43200), kABAnniversaryLabel);
  };
  auto text = [](NSString label) { return [label](ABMutableMultiValue texts) { texts.addValue("x,y"_ns, label); }; };
  const char kCard[] = "N:a\nFN:a\nUID:1\n";
  expectWritten({
      {kCard, edit(kABAddressProperty, address),
       "N:a\nFN:a\nitem1.ADR;type=HOME;type=pref;X-ABID=*:;;1 Road\\nBack;Town\\; here;;;\nitem1.X-ABADR:de\nUID:1\n"},
      {kCard, edit(kABAIMInstantProperty, message),
       "N:a\nFN:a\nIMPP;X-SERVICE-TYPE=AIM;type=HOME;type=pref;X-ABID=*:aim:mo\nX-AIM;type=HOME;type=pref:mo\nUID:1\n"},
      {kCard, edit(kABSocialProfileProperty, profile),
       "N:a\nFN:a\nX-SOCIALPROFILE;type=twitter;X-USER=mo;type=pref;X-ABID=*:http://t/mo,1\nUID:1\n"},
      {kCard, edit(kABOtherDatesProperty, date),
       "N:a\nFN:a\nitem1.X-ABDATE;type=pref;X-ABID=*:2001-01-01\nitem1.X-ABLabel:_$!<Anniversary>!$_\nUID:1\n"},
      {kCard, edit(kABRelatedNamesProperty, text(kABFriendLabel)),
       "N:a\nFN:a\nitem1.X-ABRELATEDNAMES;type=pref;X-ABID=*:x\\,y\nitem1.X-ABLabel:_$!<Friend>!$_\nUID:1\n"},
      {kCard, edit(kABURLsProperty, text(kABHomePageLabel)),
       "N:a\nFN:a\nitem1.URL;type=pref;X-ABID=*:x,y\nitem1.X-ABLabel:_$!<HomePage>!$_\nUID:1\n"},
      {kCard, edit(kABEmailProperty, text(kABWorkLabel)),
       "N:a\nFN:a\nEMAIL;type=INTERNET;type=WORK;type=pref;X-ABID=*:x\\,y\nUID:1\n"},
      {kCard, edit(kABCalendarURIsProperty, text(kABHomeLabel)),
       "N:a\nFN:a\nCALURI;type=HOME;type=pref;X-ABID=*:x,y\nUID:1\n"},
  });
}

TEST(CardChanges, MakeCardsOfOtherVersionsOnesOfVersion3) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  folder.write("a.vcf",
               "BEGIN:VCARD\nVERSION:2.1\nN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=F6;A,B\n"
               "TEL;CELL;X-Q:1\nNOTE;QUOTED-PRINTABLE:a=0D=0A=\nb;c\nX-OTHER;QUOTED-PRINTABLE:=41=\n=42\n"
               "PHOTO;BASE64;JPEG:\n  AA\n  H/\n\nUID:1\nEND:VCARD\n");
  folder.write("b.vcf",
               "BEGIN:VCARD\nVERSION:4.0\nFN:x\nTEL;VALUE=uri;PREF=1;TYPE=\"cell,voice\":tel:+1\nBDAY:--0229\n"
               "PHOTO:data:image/png;base64,AAH/\nGENDER:F\nUID:urn:uuid:2\nEND:VCARD\n");
  const NSArray people = ABAddressBook::addressBook().people();
  const char* const written[] = {
      "N:Mö;A\\,B\nTEL;type=CELL;type=X-Q:1\nNOTE:n\nX-OTHER;QUOTED-PRINTABLE:=41=42\n"
      "PHOTO;ENCODING=b;type=JPEG:AAH/\nFN:A\\,B Mö\n\nUID:1\n",
      "FN:x\nTEL;VALUE=uri;type=pref;type=cell;type=voice:tel:+1\nBDAY;X-APPLE-OMIT-YEAR=1604:1604-02-29\n"
      "PHOTO;ENCODING=b;TYPE=PNG:AAH/\nGENDER:F\nN:;x;;;\nNOTE:n\nUID:urn:uuid:2\n",
  };
  for (NSUInteger i = 0; i < 2; ++i) {
    const auto person = people.objectAtIndex(i).as<ABPerson>();
    EXPECT_TRUE(person.setValue("n"_ns, kABNoteProperty));
    EXPECT_EQ(writtenBy(person), written[i]);
  }
}

TEST(CardChanges, CarryPictures) {
  const AutoreleasePool pool;
  const ContactsFolder folder;
  // Long enough to stay in the file until it is asked for.
  const std::string base64(4000, 'A');
  folder.writeCard("a.vcf", "UID:1\nPHOTO;ENCODING=b;TYPE=JPEG:" + base64 + "\nN:a\nFN:a\n");
  const auto person = ABAddressBook::addressBook().people().objectAtIndex(0).as<ABPerson>();
  EXPECT_EQ(shown(person.imageData()), std::string(3000, '\0'));
  EXPECT_NE(shown(person.vCardRepresentation()).find(base64), std::string::npos);
  const std::string png = "\x89PNG...";
  EXPECT_TRUE(person.setImageData(NSData::dataWithBytes(png.data(), png.size())));
  EXPECT_EQ(shown(person.imageData()), png);
  EXPECT_EQ(writtenBy(person), "UID:1\nN:a\nFN:a\nPHOTO;ENCODING=b;TYPE=PNG:iVBORy4uLg==\n");
  EXPECT_TRUE(person.setImageData(nullptr));
  EXPECT_FALSE(person.imageData());
  EXPECT_EQ(writtenBy(person), "UID:1\nN:a\nFN:a\n");
}

TEST(CardChanges, GiveWhatIsReadBackAsANewPerson) {
  const AutoreleasePool pool;
  const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().init());
  person->setValue("Mo"_ns, kABFirstNameProperty);
  edit(kABPhoneProperty, [](ABMutableMultiValue phones) {
    phones.addValue("1"_ns, "boat"_ns);
    phones.setPrimaryIdentifier(phones.addValue("2"_ns, kABPhoneWorkFAXLabel));
  })(person.get());
  const NSData card = person->vCardRepresentation();
  const auto copy = Retained<ABPerson>::adopt(ABPerson::alloc().initWithVCardRepresentation(card));
  ASSERT_TRUE(copy);
  EXPECT_EQ(shown(copy.get(), "First"), "Mo");
  EXPECT_EQ(shown(copy.get(), "Phone"), "[boat=1 *WorkFAX=2]");
  EXPECT_NE(shown(copy->uniqueId()), shown(person->uniqueId()));
  EXPECT_NE(shown(copy->valueForProperty(kABPhoneProperty).as<ABMultiValue>().identifierAtIndex(0)),
            shown(person->valueForProperty(kABPhoneProperty).as<ABMultiValue>().identifierAtIndex(0)));
  for (const std::string bad : {"", "hello", "BEGIN:VCARD\nFN:x\n"}) {
    const NSData data = NSData::dataWithBytes(bad.data(), bad.size());
    EXPECT_FALSE(ABPerson::alloc().initWithVCardRepresentation(data));
  }
  EXPECT_FALSE(ABPerson::alloc().initWithVCardRepresentation(nullptr));
}

}  // namespace
