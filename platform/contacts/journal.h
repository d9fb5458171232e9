#pragma once

#include "platform/contacts/files.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

class Folder;

// The files of the data folder, besides the lock and temporary ones. A save may write the first two.
inline constexpr char kOwnerFile[] = "me";
inline constexpr char kPropertyFile[] = "properties";
inline constexpr char kJournalFile[] = "journal";

// A file as a save found it.
struct FoundState {
  FileStamp stamp;
  std::uint64_t hash = 0;  // of its bytes
};

// One file of a save: a new content, written beforehand under a temporary name, or its removal.
struct JournalStep {
  enum class Target { kCard, kData };  // in the folder itself, or in its data folder

  Target target = Target::kCard;
  std::string name;
  std::string temporary;               // in the data folder; empty for a removal
  std::optional<FoundState> expected;  // of the card file that is replaced; nothing when there is none
};

// A journal is in the data folder for as long as its steps are not all done. Its durable appearance is the moment from
// which a save has happened: before it nothing has, after it everything has, and whoever opens the folder next does or
// sees what is left to do.

// The temporary files are durable already. Throws FileError, and nothing has happened; they are then the caller's to
// remove.
void commitJournal(const Folder& folder, const std::vector<JournalStep>& steps);

// What a journal left by an earlier save asks for. Nothing when there is none. A file of that name that is no journal
// of ours throws FileError: it may be one of a later version.
std::optional<std::vector<JournalStep>> pendingJournal(const Folder& folder);

// What is left to do of a step, nothing when it is done. A card file that somebody else has changed since stays, and
// the journal's content for it goes under a name of its own. Throws FileError.
std::optional<JournalStep> remainder(const Folder& folder, const JournalStep& step);

// Does what is left to do and takes the journal away; both can be done again. Throws FileError; the journal then stays.
void applyJournal(const Folder& folder, const std::vector<JournalStep>& steps);

// A name for a temporary file that nobody else uses.
std::string newTemporaryName();
bool isTemporaryName(std::string_view name);

}  // namespace contacts
