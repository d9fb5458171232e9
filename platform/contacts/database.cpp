#include "platform/contacts/database.h"

#include "platform/contacts/group_lines.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/text.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/log.h"

#include <unordered_set>
#include <utility>

namespace contacts {
namespace {

void logRefusal(const std::string& fileName, const std::string& reason) {
  const AutoreleasePool pool;
  NSLog("contacts folder: %@: %@; left alone"_ns, makeString(printable(fileName)), makeString(printable(reason)));
}

bool saysGroup(const vcard::Line& line) {
  return (line.is("KIND") || line.is("X-ADDRESSBOOKSERVER-KIND")) &&
         vcard::equalsIgnoringCase(vcard::trimmed(line.value()), "group");
}

// The line, or only what stands before its value when that is a long embedded object.
void appendWithoutBinary(std::string& text, const vcard::Line& line) {
  constexpr std::size_t kLongestKept = 1024;
  if (line.raw().size() > kLongestKept && !vcard::binaryValue(line).empty()) {
    text.append(line.content().substr(0, line.content().size() - line.value().size())).append("\r\n");
  } else {
    text.append(line.raw());
  }
}

StoredCard readCard(std::string_view section) {
  const vcard::Card card = vcard::parseCard(section);
  StoredCard stored{};
  stored.text.reserve(section.size() < 4096 ? section.size() : 0);
  for (const vcard::Line& line : card.lines) {
    appendWithoutBinary(stored.text, line);
    if (line.is("UID") && stored.uid.empty()) stored.uid = uidOf(line, card.version);
    stored.isGroup = stored.isGroup || saysGroup(line);
  }
  return stored;
}

}  // namespace

std::string StoredCard::fullText() const { return database == nullptr ? text : database->fullText(*this); }

Database::Database(std::string path) : folder_(std::move(path)) { load(); }

void Database::load() {
  std::unordered_set<std::string> taken;
  for (const std::string& fileName : folder_.cardFileNames()) {
    std::optional<Folder::Contents> contents = folder_.read(fileName);
    if (!contents) continue;
    if (!contents->refusal.empty()) {
      logRefusal(fileName, contents->refusal);
      continue;
    }
    const std::string text = vcard::decodeFile(std::move(contents->bytes));
    std::size_t position = 0;
    for (const vcard::Section& section : vcard::splitSections(text)) {
      if (!section.isCard) continue;
      StoredCard card = readCard(section.text);
      card.database = this;
      card.fileName = fileName;
      card.position = position++;
      card.fileTime = contents->modified;
      if (card.uid.empty() || taken.contains(card.uniqueId())) {
        card.uid = derivedIdentifier(fileName + "/" + std::to_string(card.position));
      }
      taken.insert(card.uniqueId());
      cards_.push_back(std::make_shared<const StoredCard>(std::move(card)));
    }
    if (position == 0) logRefusal(fileName, "is not a vCard");
  }
}

std::string Database::fullText(const StoredCard& card) const {
  std::optional<Folder::Contents> contents = folder_.read(card.fileName);
  if (!contents) return card.text;
  const std::string text = vcard::decodeFile(std::move(contents->bytes));
  std::size_t position = 0;
  for (const vcard::Section& section : vcard::splitSections(text)) {
    if (section.isCard && position++ == card.position) return std::string(section.text);
  }
  return card.text;
}

}  // namespace contacts
