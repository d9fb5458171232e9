#include "platform/contacts/search_element.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/dictionary.h"
#include "tests/contacts/book_test.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace {

const std::filesystem::path kCards = std::filesystem::path(__FILE__).parent_path() / "cards";

class Corpus : public BookTest {};

// The whole file, or the card of the number behind a slash.
std::string cardOf(const std::string& place) {
  const std::size_t slash = place.find('/');
  std::string file = bytesOf(kCards / (place.substr(0, slash) + ".vcf"));
  if (slash == std::string::npos) return file;
  return std::string(vcard::splitSections(file).at(std::stoul(place.substr(slash + 1)) - 1).text);
}

// Beside the cards, a list of what they say: file, property and value, with a pilcrow for a line break.
TEST_F(Corpus, IsReadAsItsWritersMeantIt) {
  std::ifstream values(kCards / "values.txt");
  std::string place;
  std::string property;
  std::string value;
  int count = 0;
  for (; values >> place >> property && std::getline(values.ignore(), value); ++count) {
    const auto person = imported(cardOf(place));
    ASSERT_TRUE(person) << place;
    std::string text;
    for (const char c : shown(person.get(), property.c_str())) text += c == '\n' ? "¶" : std::string(1, c);
    if (property == "image") text = std::to_string(person->imageData().length()) + " bytes";
    EXPECT_EQ(text, value) << place << " " << property;
  }
  EXPECT_GT(count, 130);
}

// As one folder, where cards name each other.
TEST_F(Corpus, IsAFolder) {
  for (const auto& entry : std::filesystem::directory_iterator(kCards)) {
    if (entry.path().extension() == ".vcf") folder_.write(entry.path().filename(), bytesOf(entry.path()));
  }
  const ABAddressBook book = ABAddressBook::addressBook();
  EXPECT_EQ(book.groups().count(), 2U);
  EXPECT_EQ(book.people().count(), 119U);
  auto membersOf = [&](NSString id) {
    std::string names;
    for (const ABRecord member : each(book.recordForUniqueId(id).as<ABGroup>().members())) {
      names += shown(member, "First") + "/" + shown(member, "Organization") + " ";
    }
    return names;
  };
  EXPECT_EQ(membersOf("22222222-2222-3333-4444-555555555504:ABGroup"_ns), "Chidi/nil nil/Harbour Print Works ");
  EXPECT_EQ(membersOf("abcdef00-0000-4000-8000-000000000001:ABGroup"_ns), "Søren/Havnen A/S Chidi/nil ");
  const ABRecord own = personIn(book, "own-1");
  const auto emails = own.valueForProperty(kABEmailProperty).as<ABMultiValue>();
  EXPECT_EQ(shown(emails.identifierAtIndex(0)), "0AC4DB2E-7A57-4B4A-9A4C-0F8C7B0C6F11");
  EXPECT_EQ(shown(own, "Creation"), "2012-03-04 05:06:07 +0000");
}

void addTexts(std::vector<std::string>& texts, NSObject value) {
  if (!value) return;
  if (value.isKindOfClass("ABMultiValue"_class)) {
    const auto entries = value.as<ABMultiValue>();
    for (NSUInteger i = 0; i < entries.count(); ++i) addTexts(texts, entries.valueAtIndex(i));
  } else if (value.isKindOfClass("NSDictionary"_class)) {
    const auto dictionary = value.as<NSDictionary>();
    for (const NSObject key : each<NSObject>(dictionary.allKeys())) addTexts(texts, dictionary.objectForKey(key));
  } else if (value.isKindOfClass("NSString"_class)) {
    texts.push_back(shown(value));
  }
}

// However a card writes it: most cards are told not to have a text without a look at their values.
TEST_F(Corpus, IsFoundByAllItsTexts) {
  for (const auto& entry : std::filesystem::directory_iterator(kCards)) {
    if (entry.path().extension() == ".vcf") folder_.write(entry.path().filename(), bytesOf(entry.path()));
  }
  const ABAddressBook read = ABAddressBook::addressBook();
  int count = 0;
  for (const NSString property : each<NSString>(ABPerson::properties())) {
    const ABAddressBook searched = ABAddressBook::addressBook();
    for (const ABPerson person : each(read.people())) {
      std::vector<std::string> texts;
      addTexts(texts, person.valueForProperty(property));
      for (const std::string& text : texts) {
        const NSString whole = NSString::stringWithUTF8(text);
        std::u16string units(whole.length(), u'\0');
        whole.getCharacters(units.data(), NSMakeRange(0, units.size()));
        const std::u16string part = units.substr(units.size() / 4, units.size() / 2 + 1);
        for (const auto& [comparison, value] :
             {std::pair(kABEqual, units), {kABContainsSubStringCaseInsensitive, part}}) {
          const auto element = ABPerson::searchElement(
              property, nullptr, nullptr, NSString::stringWithCharacters(value.data(), value.size()), comparison);
          const NSArray found = searched.recordsMatchingSearchElement(element);
          EXPECT_TRUE(found.containsObject(searched.recordForUniqueId(person.uniqueId())))
              << shown(property) << " " << text;
          ++count;
        }
      }
    }
  }
  EXPECT_GT(count, 1000);
}

TEST_F(Corpus, TellsWhenACardWasMade) {
  folder_.writeCard("a.vcf", "UID:a\nREV:20240504T111233+0200\nCREATED:20200101T000000Z\n");
  folder_.writeCard("b.vcf", "UID:b\nREV:2024-05-04T09:12:33Z\n");
  const ABAddressBook book = ABAddressBook::addressBook();
  EXPECT_EQ(shown(personIn(book, "a"), "Creation"), "2020-01-01 00:00:00 +0000");
  for (const char* uid : {"a", "b"}) EXPECT_EQ(shown(personIn(book, uid), "Modification"), "2024-05-04 09:12:33 +0000");
  EXPECT_EQ(shown(personIn(book, "b"), "Creation"), "2024-05-04 09:12:33 +0000");
}

// A card that doesn't carry identifiers has the same ones at each reading, whatever stands around the entry.
TEST_F(Corpus, DerivesStableIdentifiers) {
  folder_.writeCard("a.vcf", "UID:1\nTEL:1\nTEL:2\nTEL:1\nTEL;X-ABID=own:3\nTEL;X-ABID=own:4\n");
  folder_.writeCard("b.vcf", "UID:2\nTEL:1\n");
  auto identifiers = [] {
    std::vector<std::string> all;
    for (const ABPerson person : each(ABAddressBook::addressBook().people())) {
      const auto phones = person.valueForProperty(kABPhoneProperty).as<ABMultiValue>();
      for (NSUInteger i = 0; i < phones.count(); ++i) all.push_back(shown(phones.identifierAtIndex(i)));
    }
    return all;
  };
  const std::vector<std::string> all = identifiers();
  EXPECT_EQ(all, identifiers());
  EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), 6U);
  EXPECT_EQ(std::ranges::count(all, "own"), 1);
}

}  // namespace
