#include "tests/contacts/book_test.h"

#include <functional>
#include <string>

namespace {

using Edit = std::function<void(ABPerson)>;

// Sets the property to what the body makes of a copy of it.
Edit edit(NSString property, std::function<void(ABMutableMultiValue)> body) {
  return [property, body](ABPerson person) {
    const auto value = person.valueForProperty(property).as<ABMultiValue>();
    const auto edited =
        Retained<ABMutableMultiValue>::adopt(value ? value.mutableCopy() : ABMutableMultiValue::alloc().init());
    body(edited.get());
    EXPECT_TRUE(person.setValue(edited.get(), property));
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

class CardChanges : public BookTest {
 protected:
  void expectWritten(const std::vector<Row>& rows) {
    int file = 100;
    for (const Row& row : rows) folder_.writeCard(std::to_string(file++) + ".vcf", row.before);
    const NSArray people = ABAddressBook::addressBook().people();
    ASSERT_EQ(people.count(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const auto person = people.objectAtIndex(i).as<ABPerson>();
      rows[i].change(person);
      EXPECT_EQ(writtenBy(person), rows[i].after) << rows[i].before;
    }
  }
};

TEST_F(CardChanges, TouchOnlyTheLinesTheyAreAbout) {
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

TEST_F(CardChanges, KeepEntriesThatStayTheSame) {
  auto phones = [](std::function<void(ABMutableMultiValue)> body) { return edit(kABPhoneProperty, std::move(body)); };
  const char kThree[] =
      "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\n"
      "item1.X-FOO:y\nTEL;CELL:3\nUID:1\n";
  expectWritten({
      {kThree, phones([](ABMutableMultiValue list) { list.addValue("4"_ns, kABPhoneWorkLabel); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\n"
       "item1.X-FOO:y\nTEL;CELL:3\nTEL;type=WORK;type=VOICE;X-ABID=*:4\nUID:1\n"},
      {kThree, phones([](ABMutableMultiValue list) { list.replaceValueAtIndex(0, "9"_ns); }),
       "N:a\nFN:a\nTEL;type=HOME;type=VOICE;X-P=1;X-ABID=*:9\nX-A:x\nitem1.TEL;type=pref:2\n"
       "item1.X-ABLabel:boat\nitem1.X-FOO:y\nTEL;CELL:3\nUID:1\n"},
      {kThree, phones([](ABMutableMultiValue list) { list.removeValueAndLabelAtIndex(1); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.X-FOO:y\nTEL;CELL:3\nUID:1\n"},
      {kThree, phones([](ABMutableMultiValue list) { list.replaceLabelAtIndex(2, "car"_ns); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\nitem1.X-FOO:y\n"
       "item2.TEL;X-ABID=*:3\nitem2.X-ABLabel:car\nUID:1\n"},
      {kThree, phones([](ABMutableMultiValue list) { list.setPrimaryIdentifier(list.identifierAtIndex(2)); }),
       "N:a\nFN:a\nTEL;type=HOME;X-P=1:1\nX-A:x\nitem1.TEL;X-ABID=*:2\nitem1.X-ABLabel:boat\nitem1.X-FOO:y\n"
       "TEL;type=CELL;type=VOICE;type=pref;X-ABID=*:3\nUID:1\n"},
      {kThree, phones([](ABMutableMultiValue list) { list.insertValue("0"_ns, "_$!<Pager>!$_"_ns, 0); }),
       "N:a\nFN:a\nTEL;type=PAGER;X-ABID=*:0\nTEL;type=HOME;X-P=1:1\nitem1.TEL;type=pref:2\nitem1.X-ABLabel:boat\n"
       "TEL;CELL:3\nX-A:x\nitem1.X-FOO:y\nUID:1\n"},
      {kThree, set(kABPhoneProperty, nullptr), "N:a\nFN:a\nX-A:x\nitem1.X-FOO:y\nUID:1\n"},
  });
}

TEST_F(CardChanges, WriteEachPropertyInItsForm) {
  auto dictionary = [](std::initializer_list<NSObject> keys, std::initializer_list<NSObject> values) -> NSObject {
    return NSDictionary::dictionaryWithObjects(NSArray::arrayWithObjects(values), NSArray::arrayWithObjects(keys));
  };
  auto added = [](NSString property, NSObject value, NSString label) {
    return edit(property, [=](ABMutableMultiValue entries) { entries.addValue(value, label); });
  };
  const NSObject address = dictionary({kABAddressStreetKey, kABAddressCityKey, kABAddressCountryCodeKey},
                                      {"1 Road\nBack"_ns, "Town; here"_ns, "de"_ns});
  const NSObject profile = dictionary({kABSocialProfileServiceKey, kABSocialProfileUsernameKey, kABSocialProfileURLKey},
                                      {"twitter"_ns, "mo"_ns, "http://t/mo,1"_ns});
  const NSObject date = NSDate::dateWithTimeIntervalSinceReferenceDate(43200);
  const char kCard[] = "N:a\nFN:a\nUID:1\n";
  expectWritten({
      {kCard, added(kABAddressProperty, address, kABHomeLabel),
       "N:a\nFN:a\nitem1.ADR;type=HOME;type=pref;X-ABID=*:;;1 Road\\nBack;Town\\; here;;;\nitem1.X-ABADR:de\nUID:1\n"},
      {kCard, added(kABAIMInstantProperty, "mo"_ns, kABHomeLabel),
       "N:a\nFN:a\nIMPP;X-SERVICE-TYPE=AIM;type=HOME;type=pref;X-ABID=*:aim:mo\nX-AIM;type=HOME;type=pref:mo\nUID:1\n"},
      {kCard, added(kABSocialProfileProperty, profile, kABOtherLabel),
       "N:a\nFN:a\nX-SOCIALPROFILE;type=twitter;X-USER=mo;type=pref;X-ABID=*:http://t/mo,1\nUID:1\n"},
      {kCard, added(kABOtherDatesProperty, date, kABAnniversaryLabel),
       "N:a\nFN:a\nitem1.X-ABDATE;type=pref;X-ABID=*:2001-01-01\nitem1.X-ABLabel:_$!<Anniversary>!$_\nUID:1\n"},
      {kCard, added(kABRelatedNamesProperty, "x,y"_ns, kABFriendLabel),
       "N:a\nFN:a\nitem1.X-ABRELATEDNAMES;type=pref;X-ABID=*:x\\,y\nitem1.X-ABLabel:_$!<Friend>!$_\nUID:1\n"},
      {kCard, added(kABURLsProperty, "x,y"_ns, kABHomePageLabel),
       "N:a\nFN:a\nitem1.URL;type=pref;X-ABID=*:x,y\nitem1.X-ABLabel:_$!<HomePage>!$_\nUID:1\n"},
      {kCard, added(kABEmailProperty, "x,y"_ns, kABWorkLabel),
       "N:a\nFN:a\nEMAIL;type=INTERNET;type=WORK;type=pref;X-ABID=*:x\\,y\nUID:1\n"},
      {kCard, added(kABCalendarURIsProperty, "x,y"_ns, kABHomeLabel),
       "N:a\nFN:a\nCALURI;type=HOME;type=pref;X-ABID=*:x,y\nUID:1\n"},
  });
}

TEST_F(CardChanges, MakeCardsOfOtherVersionsOnesOfVersion3) {
  folder_.write("a.vcf",
                "BEGIN:VCARD\nVERSION:2.1\nN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=F6;A,B\n"
                "TEL;CELL;X-Q:1\nNOTE;QUOTED-PRINTABLE:a=0D=0A=\nb;c\nX-OTHER;QUOTED-PRINTABLE:=41=\n=42\n"
                "PHOTO;BASE64;JPEG:\n  AA\n  H/\n\nUID:1\nEND:VCARD\n");
  folder_.write("b.vcf",
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

TEST_F(CardChanges, CarryPictures) {
  // Long enough to stay in the file until it is asked for.
  const std::string base64(4000, 'A');
  folder_.writeCard("a.vcf", "UID:1\nPHOTO;ENCODING=b;TYPE=JPEG:" + base64 + "\nN:a\nFN:a\n");
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

TEST_F(CardChanges, GiveWhatIsReadBackAsANewPerson) {
  const auto person = newPerson();
  edit(kABPhoneProperty, [](ABMutableMultiValue phones) { phones.addValue("1"_ns, "boat"_ns); })(person.get());
  const auto copy = imported(shown(person->vCardRepresentation()));
  EXPECT_EQ(shown(copy.get(), "Phone"), "[*boat=1]");
  EXPECT_NE(shown(copy->uniqueId()), shown(person->uniqueId()));
  EXPECT_NE(shown(copy->valueForProperty(kABPhoneProperty).as<ABMultiValue>().primaryIdentifier()),
            shown(person->valueForProperty(kABPhoneProperty).as<ABMultiValue>().primaryIdentifier()));
  for (const char* bad : {"", "hello", "BEGIN:VCARD\nFN:x\n"}) EXPECT_FALSE(imported(bad)) << bad;
  EXPECT_FALSE(ABPerson::alloc().initWithVCardRepresentation(nullptr));
}

}  // namespace
