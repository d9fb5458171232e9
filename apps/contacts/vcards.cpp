#include "apps/contacts/commands.h"
#include "apps/contacts/failure.h"
#include "apps/contacts/people.h"
#include "apps/contacts/progress.h"
#include "apps/contacts/session.h"
#include "apps/contacts/text.h"
#include "host/memory_blocks.h"
#include "host/strings.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string_view>

namespace contacts {
namespace {

// Cards in two bytes a character are read as one card at most; so they are converted.
std::string inUtf8(std::string bytes) {
  if (!bytes.starts_with("\xFF\xFE") && !bytes.starts_with("\xFE\xFF")) return bytes;
  const auto text = host::Value::adopt(host::newString(bytes, kEncodingUTF16));
  const auto converted = host::Value::adopt(host::newConverted(text.string(), kEncodingUTF8));
  return converted.isNil() ? bytes : std::string(host::bytesOf(converted.string()));
}

// The cards of a file, those within cards as parts of them. What stands between cards is none.
std::vector<std::string_view> cardsIn(std::string_view text) {
  std::vector<std::string_view> cards;
  std::size_t start = 0;
  int depth = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    std::string_view line = text.substr(at, end - at);
    line = line.substr(0, line.find_last_not_of(" \t") + 1);
    if (line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
    if (isSame(line, "BEGIN:VCARD") && depth++ == 0) start = at;
    at = std::min(end + 1, text.size());
    if (isSame(line, "END:VCARD") && depth > 0 && --depth == 0) cards.push_back(text.substr(start, at - start));
  }
  if (depth > 0) cards.push_back(text.substr(start));
  return cards;
}

struct Found {
  const std::string* file;
  std::size_t number;  // among the file's cards, from 1
  std::string_view card;
};

}  // namespace

void importFiles(const std::vector<std::string>& files, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  std::vector<std::string> texts;
  texts.reserve(files.size());
  std::vector<Found> found;
  for (const std::string& file : files) {
    texts.push_back(inUtf8(readWhole(file)));
    const std::vector<std::string_view> cards = cardsIn(texts.back());
    if (cards.empty()) throw Failure(fileText(file) + ": no vCard; expected a file of vCards");
    for (std::size_t i = 0; i < cards.size(); ++i) found.push_back({&file, i + 1, cards[i]});
  }

  std::vector<host::Value> people;
  {
    Progress progress("Importing", found.size(), manner.isQuiet);
    for (const Found& each : found) {
      const host::Value person = host::newObject("ABPersonVXR", host::memoryBlock(each.card));
      if (person.get("Handle").integer() == 0) {
        throw Failure(fileText(*each.file) + ": card " + std::to_string(each.number) + " is no vCard that can be read");
      }
      host::Value error;
      if (!static_cast<bool>(book.call("addRecord", person, host::Ref(error)))) {
        throw Failure(fileText(*each.file) + ": card " + std::to_string(each.number) + " can't be added" +
                      (error.isNil() ? "" : ": " + error.get("LocalizedDescription").text()));
      }
      people.push_back(person);
      progress.advance();
    }
  }
  save(book, manner);
  if (manner.isJson) {
    printPeople(people, book, manner);
  } else {
    say(manner, "Imported " + std::to_string(people.size()) + (people.size() == 1 ? " card" : " cards"));
  }
}

void exportPeople(const std::string& text, const std::string& file, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const std::vector<host::Value> people = peopleWith(book, text);
  if (people.empty() && !text.empty()) throw Failure("nobody has the text \"" + printable(text) + "\"");
  std::ofstream stream;
  const bool isFile = !file.empty() && file != kStandardStream;
  if (isFile) stream.open(file, std::ios::binary);
  if (isFile && !stream) throw Failure(fileText(file) + ": cannot be written: " + std::strerror(errno));
  std::ostream& output = isFile ? stream : std::cout;
  Progress progress("Exporting", people.size(), manner.isQuiet || !isFile);
  for (const host::Value& person : people) {
    output << host::bytesOf(person.call("vCardRepresentation"));
    progress.advance();
  }
  output.flush();
  if (isFile && !output) throw Failure(fileText(file) + ": cannot be written: " + std::strerror(errno));
  if (isFile) say(manner, "Exported " + std::to_string(people.size()) + " to " + printable(file));
}

}  // namespace contacts
