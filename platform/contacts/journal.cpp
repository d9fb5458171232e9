#include "platform/contacts/journal.h"

#include "platform/contacts/folder.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/encoding.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <utility>

namespace contacts {
namespace {

constexpr std::string_view kTemporaryPrefix = "new-";
constexpr std::string_view kTemporarySuffix = ".tmp";
constexpr std::string_view kHead = "addressbook-journal 3\n";

// Names may hold any byte but a slash.
std::string nameText(std::string_view name) { return name.empty() ? "-" : vcard::encodeBase64(name); }
std::string nameFromText(std::string_view text) { return text == "-" ? std::string() : vcard::decodeBase64(text); }

std::string foundText(const std::optional<FoundState>& found) {
  if (!found) return "-";
  const FileStamp& stamp = found->stamp;
  return std::to_string(stamp.device) + "," + std::to_string(stamp.inode) + "," + std::to_string(stamp.size) + "," +
         std::to_string(stamp.modified) + "," + std::to_string(stamp.changed) + "," + std::to_string(found->hash);
}

// Takes the text up to the separator off the front.
std::string_view takeField(std::string_view& text, char separator) {
  const std::string_view field = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(text.size(), field.size() + 1));
  return field;
}

template <class Number>
bool readNumber(std::string_view text, Number& number) {
  const char* end = text.data() + text.size();
  const std::from_chars_result read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end;
}

// Nothing for a text that is no state; a file that isn't there is nothing inside.
std::optional<std::optional<FoundState>> foundFromText(std::string_view text) {
  if (text == "-") return std::optional<FoundState>();
  FoundState found;
  FileStamp& stamp = found.stamp;
  const bool isRead = readNumber(takeField(text, ','), stamp.device) && readNumber(takeField(text, ','), stamp.inode) &&
                      readNumber(takeField(text, ','), stamp.size) &&
                      readNumber(takeField(text, ','), stamp.modified) &&
                      readNumber(takeField(text, ','), stamp.changed) && readNumber(text, found.hash);
  if (!isRead) return std::nullopt;
  return found;
}

std::string journalText(const std::vector<JournalStep>& steps) {
  std::string text(kHead);
  for (const JournalStep& step : steps) {
    text += step.target == JournalStep::Target::kCard ? "card " : "data ";
    text += nameText(step.name) + " " + nameText(step.temporary) + " " + foundText(step.expected) + "\n";
  }
  return text + "end " + std::to_string(contentHash(text)) + "\n";
}

// No journal leads out of the folder, or to a file in it that a save doesn't write.
bool isAllowed(const JournalStep& step) {
  using namespace std::string_view_literals;
  const bool isTarget = step.target == JournalStep::Target::kCard
                            ? isCardFileName(step.name) && step.name.find_first_of("/\0"sv) == std::string::npos
                            : step.name == kOwnerFile || step.name == kPropertyFile;
  return isTarget && (step.temporary.empty() || isTemporaryName(step.temporary));
}

std::optional<JournalStep> stepFromText(std::string_view line) {
  JournalStep step;
  const std::string_view target = takeField(line, ' ');
  if (target != "card" && target != "data") return std::nullopt;
  if (target == "data") step.target = JournalStep::Target::kData;
  step.name = nameFromText(takeField(line, ' '));
  step.temporary = nameFromText(takeField(line, ' '));
  const auto expected = foundFromText(line);
  if (!expected || !isAllowed(step)) return std::nullopt;
  step.expected = *expected;
  return step;
}

std::optional<std::vector<JournalStep>> stepsFromText(std::string_view text) {
  const std::size_t end = text.rfind("end ");
  if (!text.starts_with(kHead) || end == std::string_view::npos) return std::nullopt;
  if (text.substr(end) != "end " + std::to_string(contentHash(text.substr(0, end))) + "\n") return std::nullopt;
  std::vector<JournalStep> steps;
  for (std::string_view lines = text.substr(kHead.size(), end - kHead.size()); !lines.empty();) {
    std::optional<JournalStep> step = stepFromText(takeField(lines, '\n'));
    if (!step) return std::nullopt;
    steps.push_back(*std::move(step));
  }
  return steps;
}

int targetFolder(const Folder& folder, const JournalStep& step) {
  return step.target == JournalStep::Target::kCard ? folder.cards() : folder.data();
}

// A stamp that has changed may mean a backup that was restored: then the bytes tell.
bool isAsExpected(const Folder& folder, const JournalStep& step) {
  if (step.target == JournalStep::Target::kData) return true;
  const std::optional<FileStamp> stamp = stampIn(folder.cards(), step.name);
  if (!stamp || !step.expected) return !stamp && !step.expected;
  if (*stamp == step.expected->stamp) return true;
  const std::optional<FileContents> contents = readFile(folder.cards(), step.name);
  if (contents && contents->error != 0) throw FileError("cannot read " + printable(step.name), contents->error);
  return contents && contents->refusal.empty() && contentHash(contents->bytes) == step.expected->hash;
}

// The same each time it is asked for.
std::string ownNameFor(const JournalStep& step) {
  std::string_view name = step.temporary;
  name.remove_prefix(kTemporaryPrefix.size());
  name.remove_suffix(kTemporarySuffix.size());
  return std::string(name) + ".vcf";
}

void apply(const Folder& folder, const JournalStep& step) {
  const int target = targetFolder(folder, step);
  if (step.temporary.empty()) {
    removeFile(target, step.name);
  } else if (step.target == JournalStep::Target::kData || step.expected) {
    renameFile(folder.data(), step.temporary, target, step.name);
  } else if (!renameToFreeName(folder.data(), step.temporary, target, step.name)) {
    renameFile(folder.data(), step.temporary, target, ownNameFor(step));
  }
}

}  // namespace

void commitJournal(const Folder& folder, const std::vector<JournalStep>& steps) {
  // What the journal names is found whenever the journal is.
  syncFolder(folder.data());
  const std::string temporary = newTemporaryName();
  writeNewFile(folder.data(), temporary, journalText(steps), 0600);
  bool isThere = false;
  try {
    renameFile(folder.data(), temporary, folder.data(), kJournalFile);
    isThere = true;
    syncFolder(folder.data());
  } catch (...) {
    // Whether it would be found after a crash nobody knows. Taken away it won't be; a journal that can't be taken away
    // stands, and the save has happened.
    if (!removeFileQuietly(folder.data(), kJournalFile) && isThere) return;
    removeFileQuietly(folder.data(), temporary);
    try {
      syncFolder(folder.data());
    } catch (const FileError&) {
      // It is the first error that is told.
    }
    throw;
  }
}

std::optional<std::vector<JournalStep>> pendingJournal(const Folder& folder) {
  if (folder.data() < 0) return std::nullopt;
  const std::optional<FileContents> contents = readFile(folder.data(), kJournalFile);
  if (!contents) return std::nullopt;
  if (contents->error != 0) throw FileError("cannot read the journal", contents->error);
  std::optional<std::vector<JournalStep>> steps = stepsFromText(contents->bytes);
  if (!steps) throw FileError("the journal " + folder.path() + "/.addressbook/journal can't be understood", EINVAL);
  return steps;
}

std::optional<JournalStep> remainder(const Folder& folder, const JournalStep& step) {
  const bool isRemoval = step.temporary.empty();
  // A temporary file that is gone was put in its place before.
  if (!isRemoval && !stampIn(folder.data(), step.temporary)) return std::nullopt;
  if (isAsExpected(folder, step)) return step;
  if (isRemoval) return std::nullopt;
  JournalStep left = step;
  left.name = ownNameFor(step);
  left.expected.reset();
  return left;
}

void applyJournal(const Folder& folder, const std::vector<JournalStep>& steps) {
  for (const JournalStep& step : steps) {
    if (const std::optional<JournalStep> left = remainder(folder, step)) apply(folder, *left);
  }
  syncFolder(folder.cards());
  syncFolder(folder.data());
  removeFile(folder.data(), kJournalFile);
}

std::string newTemporaryName() {
  return std::string(kTemporaryPrefix) + newIdentifier() + std::string(kTemporarySuffix);
}

bool isTemporaryName(std::string_view name) {
  using namespace std::string_view_literals;
  return name.size() > kTemporaryPrefix.size() + kTemporarySuffix.size() && name.starts_with(kTemporaryPrefix) &&
         name.ends_with(kTemporarySuffix) && name.find_first_of("/\0"sv) == std::string_view::npos;
}

}  // namespace contacts
