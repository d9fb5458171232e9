#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/card.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "tests/contacts/book_test.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

// The cards beside this file, the examples, and what the environment names.
std::vector<std::filesystem::path> cardFiles() {
  const std::filesystem::path here = std::filesystem::path(__FILE__).parent_path();
  std::vector<std::filesystem::path> folders{here / "cards", here / "../../examples/contacts"};
  if (const char* more = std::getenv("MORE_CARDS")) folders.emplace_back(more);
  std::vector<std::filesystem::path> files;
  for (const auto& folder : folders) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.path().extension() == ".vcf") files.push_back(entry.path());
    }
  }
  std::ranges::sort(files);
  return files;
}

// A value with the identifiers of its entries.
std::string wholeValue(ABRecord record, NSString property) {
  const NSObject value = record.valueForProperty(property);
  std::string text = shown(value);
  if (value && value.isKindOfClass("ABMultiValue"_class)) {
    const auto entries = value.as<ABMultiValue>();
    for (NSUInteger i = 0; i < entries.count(); ++i) text += " " + shown(entries.identifierAtIndex(i));
  }
  return text;
}

// All that the framework tells of a record, but not when it was changed.
std::string valuesOf(ABRecord record) {
  const bool isGroup = record.isKindOfClass("ABGroup"_class);
  const NSArray properties = isGroup ? ABGroup::properties() : ABPerson::properties();
  std::string text;
  for (const NSString property : each<NSString>(properties)) {
    if (property.isEqualToString(kABModificationDateProperty)) continue;
    text += shown(property) + "=" + wholeValue(record, property) + "\n";
  }
  if (!isGroup) return text + "image=" + shown(record.as<ABPerson>().imageData()) + "\n";
  return text + "members " + uids(record.as<ABGroup>().members()) + "\n";
}

void forEachRecord(ABAddressBook book, const std::function<void(ABRecord)>& visit) {
  for (const NSArray records : {book.people(), book.groups()}) {
    for (const ABRecord record : each<ABRecord>(records)) {
      const AutoreleasePool pool;
      visit(record);
    }
  }
}

// Lines that a change of the note, or of a group's name, may touch; and those that get the form of version 3.0.
bool mayChange(const vcard::Line& line, vcard::Version version) {
  const std::string_view always = " BEGIN END VERSION UID REV CREATED N FN NOTE ";
  const std::string_view converted =
      " ADR ORG NICKNAME TITLE ROLE EMAIL TEL LABEL MAILER X-ABLABEL URL IMPP PHOTO LOGO SOUND KEY BDAY KIND MEMBER "
      "X-ADDRESSBOOKSERVER-KIND X-ADDRESSBOOKSERVER-MEMBER ";
  std::string word = " " + std::string(line.name()) + " ";
  std::ranges::transform(word, word.begin(), vcard::upper);
  return always.find(word) != std::string_view::npos ||
         (version != vcard::Version::k30 && converted.find(word) != std::string_view::npos);
}

// The characters of a line, whatever bytes they are written in.
std::string charactersOf(const vcard::Line& line) {
  const std::vector<vcard::Parameter> parameters = line.parameters();
  const std::string charset(vcard::firstParameter(parameters, "CHARSET"));
  const bool isEncoded = !vcard::firstParameter(parameters, "ENCODING").empty();
  std::string text = vcard::decodeCharset(line.content(), charset);
  if (charset.empty() || isEncoded) return text;
  return text.replace(text.find(charset), charset.size(), "*");
}

struct FileContent {
  std::vector<std::string> lines;  // that nothing may change
  std::string besides;             // the text that is no card
  int cards = 0;
};

// The lines of a changed file's cards are looked at as those of the old one's were.
FileContent contentOf(const std::filesystem::path& file, std::vector<vcard::Version>& versions) {
  const std::string text = vcard::decodeFile(bytesOf(file));
  FileContent content;
  for (const vcard::Section& section : vcard::splitSections(text)) {
    if (!section.isCard) {
      content.besides += section.text;
      continue;
    }
    const vcard::Card card = vcard::parseCard(section.text);
    const auto place = static_cast<std::size_t>(content.cards++);
    if (place == versions.size()) versions.push_back(card.version);
    for (const vcard::Line& line : card.lines) {
      if (!mayChange(line, versions[place])) content.lines.push_back(charactersOf(line));
    }
  }
  return content;
}

class RoundTrip : public BookTest {};

// Of every card, all other values and all lines that aren't understood are there after one value has changed.
TEST_F(RoundTrip, LosesNothingInTheFolder) {
  const ContactsFolder originals;
  const ContactsFolder notes;
  std::map<std::string, std::string> sources;
  for (const auto& file : cardFiles()) {
    char name[16];
    std::snprintf(name, sizeof name, "%04u.vcf", static_cast<unsigned>(sources.size()));
    sources[name] = file.string();
    originals.write(name, bytesOf(file));
    folder_.write(name, bytesOf(file));
  }
  setenv("ADDRESSBOOK_FOLDER", folder_.path().c_str(), 1);

  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    forEachRecord(book, [&](ABRecord record) {
      const NSString property = record.isKindOfClass("ABGroup"_class) ? kABGroupNameProperty : kABNoteProperty;
      EXPECT_TRUE(record.setValue("changed"_ns, property));
      notes.write(shown(record.uniqueId()), valuesOf(record));
    });
    EXPECT_TRUE(book.save());
  });
  int records = 0;
  forEachRecord(ABAddressBook::addressBook(), [&](ABRecord record) {
    EXPECT_EQ(valuesOf(record), bytesOf(notes.path() / shown(record.uniqueId())));
    ++records;
  });
  int cards = 0;
  for (const auto& [name, source] : sources) {
    SCOPED_TRACE(source);
    std::vector<vcard::Version> versions;
    const FileContent before = contentOf(originals.path() / name, versions);
    const FileContent after = contentOf(folder_.path() / name, versions);
    EXPECT_EQ(after.lines, before.lines);
    EXPECT_EQ(after.besides, before.besides);
    EXPECT_EQ(after.cards, before.cards);
    EXPECT_TRUE(before.cards == 0 || vcard::isValidUtf8(bytesOf(folder_.path() / name)));
    cards += before.cards;
  }
  EXPECT_EQ(records, cards);
  EXPECT_GE(sources.size(), 40U);
}

// What is exported can be imported with all its values.
TEST_F(RoundTrip, LosesNothingInAnExport) {
  for (const auto& file : cardFiles()) {
    SCOPED_TRACE(file.string());
    const std::string text = vcard::decodeFile(bytesOf(file));
    for (const vcard::Section& section : vcard::splitSections(text)) {
      if (!section.isCard) continue;
      const AutoreleasePool pool;
      auto values = [](ABPerson person) {
        std::string all;
        for (const NSString property : each<NSString>(ABPerson::properties())) {
          const bool isOfTheRecord =
              std::string(" UID Creation Modification ").find(" " + shown(property) + " ") != std::string::npos;
          if (!isOfTheRecord) all += shown(person.valueForProperty(property)) + "\n";
        }
        return all + shown(person.imageData());
      };
      const auto person = imported(std::string(section.text));
      ASSERT_TRUE(person);
      const auto again = imported(shown(person->vCardRepresentation()));
      EXPECT_EQ(values(again.get()), values(person.get()));
    }
  }
}

}  // namespace
