#include "platform/contacts/journal.h"

#include "platform/contacts/folder.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/vcard/encoding.h"

#include <cerrno>
#include <charconv>
#include <sstream>
#include <utility>

namespace contacts {
namespace {

constexpr char kJournal[] = "journal";
constexpr std::string_view kTemporaryPrefix = "new-";
constexpr std::string_view kTemporarySuffix = ".tmp";
constexpr std::string_view kHead = "addressbook-journal 1\n";

// Names may hold any byte but a slash.
std::string nameText(std::string_view name) { return name.empty() ? "-" : vcard::encodeBase64(name); }
std::string nameFromText(std::string_view text) { return text == "-" ? std::string() : vcard::decodeBase64(text); }

std::string stampText(const std::optional<FileStamp>& stamp) {
  if (!stamp) return "-";
  std::ostringstream text;
  text << stamp->device << ',' << stamp->inode << ',' << stamp->size << ',' << stamp->modified << ',' << stamp->changed;
  return text.str();
}

// Nothing for a text that is no stamp; a stamp that is not there is nothing inside.
std::optional<std::optional<FileStamp>> stampFromText(const std::string& text) {
  if (text == "-") return std::optional<FileStamp>();
  FileStamp stamp;
  std::istringstream fields(text);
  char comma = ',';
  fields >> stamp.device >> comma >> stamp.inode >> comma >> stamp.size >> comma >> stamp.modified >> comma >>
      stamp.changed;
  if (!fields || !fields.eof()) return std::nullopt;
  return stamp;
}

std::string journalText(const std::vector<JournalStep>& steps) {
  std::string text(kHead);
  for (const JournalStep& step : steps) {
    text += step.target == JournalStep::Target::kCard ? "card " : "data ";
    text += nameText(step.name) + " " + nameText(step.temporary) + " " + stampText(step.expected) + "\n";
  }
  return text + "end " + std::to_string(contentHash(text)) + "\n";
}

std::optional<std::vector<JournalStep>> stepsFromText(std::string_view text) {
  const std::size_t end = text.rfind("end ");
  if (!text.starts_with(kHead) || end == std::string_view::npos) return std::nullopt;
  if (text.substr(end) != "end " + std::to_string(contentHash(text.substr(0, end))) + "\n") return std::nullopt;
  std::vector<JournalStep> steps;
  std::istringstream lines{std::string(text.substr(kHead.size(), end - kHead.size()))};
  std::string target;
  std::string name;
  std::string temporary;
  std::string stamp;
  while (lines >> target >> name >> temporary >> stamp) {
    const auto expected = stampFromText(stamp);
    if (!expected) return std::nullopt;
    steps.push_back({target == "card" ? JournalStep::Target::kCard : JournalStep::Target::kData, nameFromText(name),
                     nameFromText(temporary), *expected});
  }
  return steps;
}

int targetFolder(const Folder& folder, const JournalStep& step) {
  return step.target == JournalStep::Target::kCard ? folder.cards() : folder.data();
}

// A temporary file that is gone was put in its place before.
void applyWrite(const Folder& folder, const JournalStep& step) {
  const std::optional<FileStamp> temporary = stampIn(folder.data(), step.temporary);
  if (!temporary) return;
  const int target = targetFolder(folder, step);
  if (step.target == JournalStep::Target::kData || stampIn(target, step.name) == step.expected) {
    if (step.expected || step.target == JournalStep::Target::kData) {
      renameFile(folder.data(), step.temporary, target, step.name);
      return;
    }
    if (renameToFreeName(folder.data(), step.temporary, target, step.name)) return;
  }
  renameFile(folder.data(), step.temporary, target, newIdentifier() + ".vcf");
}

void applyRemoval(const Folder& folder, const JournalStep& step) {
  const int target = targetFolder(folder, step);
  if (step.target == JournalStep::Target::kData || stampIn(target, step.name) == step.expected)
    removeFile(target, step.name);
}

}  // namespace

void commitJournal(Folder& folder, const std::vector<JournalStep>& steps) {
  const std::string temporary = newTemporaryName();
  writeNewFile(folder.data(), temporary, journalText(steps), 0600);
  try {
    renameFile(folder.data(), temporary, folder.data(), kJournal);
  } catch (const FileError&) {
    removeFileQuietly(folder.data(), temporary);
    throw;
  }
  try {
    syncFolder(folder.data());
  } catch (const FileError&) {
    // Whether it would be found after a crash nobody knows. Taken away it won't be; a journal that can't be taken away
    // stands, and the save has happened.
    if (removeFileQuietly(folder.data(), kJournal)) throw;
  }
}

std::optional<std::vector<JournalStep>> pendingJournal(const Folder& folder) {
  if (folder.data() < 0) return std::nullopt;
  const std::optional<FileContents> contents = readFile(folder.data(), kJournal);
  if (!contents) return std::nullopt;
  std::optional<std::vector<JournalStep>> steps = stepsFromText(contents->bytes);
  if (!steps) throw FileError("contacts folder " + folder.path() + ": the journal can't be understood", EINVAL);
  return steps;
}

void applyJournal(Folder& folder, const std::vector<JournalStep>& steps) {
  for (const JournalStep& step : steps) {
    if (step.temporary.empty()) {
      applyRemoval(folder, step);
    } else {
      applyWrite(folder, step);
    }
  }
  syncFolder(folder.cards());
  syncFolder(folder.data());
  removeFile(folder.data(), kJournal);
}

std::string newTemporaryName() {
  return std::string(kTemporaryPrefix) + newIdentifier() + std::string(kTemporarySuffix);
}

bool isTemporaryName(std::string_view name) {
  return name.starts_with(kTemporaryPrefix) && name.ends_with(kTemporarySuffix);
}

}  // namespace contacts
