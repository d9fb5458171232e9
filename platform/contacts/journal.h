#pragma once

#include "platform/contacts/files.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

class Folder;

// One file of a save: a new content, written beforehand under a temporary name, or its removal.
struct JournalStep {
  enum class Target { kCard, kData };  // in the folder itself, or in its data folder

  Target target = Target::kCard;
  std::string name;
  std::string temporary;              // in the data folder; empty for a removal
  std::optional<FileStamp> expected;  // of the file that is replaced; nothing when there is none
};

// A journal is in the data folder for as long as its steps are not all done. Its durable appearance is the moment from
// which a save has happened: before it nothing has, after it everything has, and whoever opens the folder next does or
// sees what is left to do.

// Throws FileError, and nothing has happened; the temporary files are then the caller's to remove.
void commitJournal(Folder& folder, const std::vector<JournalStep>& steps);

// What a journal left by an earlier save still asks for. Nothing when there is none. A file of that name that is no
// journal of ours throws FileError: it may be one of a later version.
std::optional<std::vector<JournalStep>> pendingJournal(const Folder& folder);

// Does what is left to do and takes the journal away; both can be done again. A file that somebody else has changed
// since stays, and the journal's content for it goes under a name of its own. Throws FileError; the journal then stays.
void applyJournal(Folder& folder, const std::vector<JournalStep>& steps);

// A name for a temporary file that nobody else uses.
std::string newTemporaryName();
bool isTemporaryName(std::string_view name);

}  // namespace contacts
