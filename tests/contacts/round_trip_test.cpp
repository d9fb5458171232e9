#include "platform/contacts/person.h"
#include "platform/contacts/vcard/card.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
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

NSData dataOf(std::string_view text) { return NSData::dataWithBytes(text.data(), text.size()); }

Retained<ABPerson> personOf(std::string_view card) {
  return Retained<ABPerson>::adopt(ABPerson::alloc().initWithVCardRepresentation(dataOf(card)));
}

std::map<std::string, std::string> valuesOf(ABPerson person) {
  std::map<std::string, std::string> values;
  const NSArray properties = ABPerson::properties();
  for (NSUInteger i = 0; i < properties.count(); ++i) {
    const std::string name = shown(properties.objectAtIndex(i));
    if (name != "UID" && name != "Modification" && name != "Creation") values[name] = shown(person, name.c_str());
  }
  values["image"] = shown(person.imageData());
  return values;
}

// What the framework may write anew, or what makes a card a group and not a person.
bool isOwn(const vcard::Line& line) {
  constexpr const char* kNames[] = {"BEGIN",
                                    "END",
                                    "VERSION",
                                    "UID",
                                    "REV",
                                    "N",
                                    "FN",
                                    "NOTE",
                                    "KIND",
                                    "CREATED",
                                    "X-ABUID",
                                    "X-ADDRESSBOOKSERVER-KIND",
                                    "X-ADDRESSBOOKSERVER-MEMBER",
                                    "MEMBER"};
  return std::ranges::any_of(kNames, [&](const char* name) { return line.is(name); });
}

// The other lines of a card, each by its name and decoded value, or by its text where that says nothing.
std::vector<std::string> otherLines(std::string_view text) {
  const vcard::Card card = vcard::parseCard(text);
  std::vector<std::string> lines;
  for (const vcard::Line& line : card.lines) {
    if (!isOwn(line) && !line.content().empty()) lines.emplace_back(line.content());
  }
  return lines;
}

bool isVersion3(std::string_view card) { return vcard::parseCard(card).version == vcard::Version::k30; }

// Of every card that can be read, all other values and lines are there after one value has changed.
TEST(RoundTrip, LosesNothing) {
  int cards = 0;
  for (const auto& file : cardFiles()) {
    SCOPED_TRACE(file.string());
    const std::string text = vcard::decodeFile(bytesOf(file));
    for (const vcard::Section& section : vcard::splitSections(text)) {
      if (!section.isCard) continue;
      const AutoreleasePool pool;
      ++cards;
      const auto person = personOf(section.text);
      ASSERT_TRUE(person);
      std::map<std::string, std::string> values = valuesOf(person.get());
      EXPECT_TRUE(person->setValue("changed"_ns, kABNoteProperty));
      const std::string written = shown(person->vCardRepresentation());
      values["Note"] = "changed";
      EXPECT_EQ(valuesOf(personOf(written).get()), values) << written;
      if (isVersion3(section.text)) {
        EXPECT_EQ(otherLines(written), otherLines(section.text));
      }
      // What was written once stays as it is.
      const auto again = personOf(written);
      EXPECT_TRUE(again->setValue("more"_ns, kABNoteProperty));
      EXPECT_EQ(otherLines(shown(again->vCardRepresentation())), otherLines(written));
    }
  }
  EXPECT_GT(cards, 10);
}

}  // namespace
