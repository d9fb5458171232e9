#pragma once

#include "platform/contacts/card_cache.h"
#include "platform/contacts/card_changes.h"
#include "platform/contacts/card_files.h"
#include "platform/contacts/folder.h"
#include "platform/contacts/journal.h"
#include "platform/contacts/property_file.h"
#include "platform/contacts/stored_card.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace contacts {

// What became of a card: before is null for a new one, after for one that is gone.
struct CardChange {
  StoredCardPointer before;
  StoredCardPointer after;
};

// What a book wants done to a card.
struct CardUpdate {
  StoredCardPointer card;  // as the book knows it
  CardChanges changes;
  bool isRemoval = false;
};

struct SaveRequest {
  std::vector<CardUpdate> updates;
  std::optional<std::string> me;  // the UID of the owner's card, empty for none; nothing when it stays
  std::vector<PropertyChange> properties;
};

struct SaveResult {
  // One for each update, in their order. A removed card has all its text once more.
  std::vector<CardChange> saved;
  // What others had changed meanwhile in files that the save touched.
  std::vector<CardChange> foreign;
  int changedProperties = 0;
};

// The process's view of the folder: what its books are made from and saved to. Any thread may use it.
class Database {
 public:
  // Opens the folder and reads nothing yet. Throws FolderError.
  explicit Database(std::string path);

  [[nodiscard]] const std::string& path() const { return folder_.path(); }
  [[nodiscard]] bool isWritable() const;
  // In the order of file names and, within a file, of position. A file that is no card is logged and left out.
  [[nodiscard]] std::vector<StoredCardPointer> cards();
  // Whether every card is made.
  [[nodiscard]] bool hasAllCards() const;
  // Those of them whose outlines pass the test, which must not ask the database. The others need not be made for it.
  [[nodiscard]] std::vector<StoredCardPointer> cardsThat(const std::function<bool(const CardOutline&)>& test);
  // Null when there is none of that id.
  [[nodiscard]] StoredCardPointer card(const CardOutline& id);
  // What the card of a change has become since; null when there is none any more.
  [[nodiscard]] StoredCardPointer outcome(const CardChange& change);
  // The UID of the owner's card; empty for none.
  [[nodiscard]] std::string me() const;
  // The card as its file has it now; its text where the file is gone.
  [[nodiscard]] std::string fullText(const StoredCard& card) const;
  // The cache lacks the text of a card.
  void noteDamagedCache() const;

  // Reads what has changed in the folder since it was last read: in the files of those names, or in all. The first
  // time, what the cache has may be left out. Throws FolderError and FileError; what was read before then stays.
  std::vector<CardChange> refresh(const std::set<std::string>* names = nullptr);
  // Reads nothing but the custom properties into the schemas; refresh does too.
  void refreshProperties();
  // All of the request, or nothing, which throws FileError or FolderError.
  SaveResult save(const SaveRequest& request);

 private:
  friend class DatabaseSave;

  // What a look at a file found.
  struct FoundFile {
    enum class State {
      kSame,    // as it was last read, or can't be read now
      kGone,    // there was one
      kCached,  // the cache has it
      kRead,
    };

    State state = State::kSame;
    CardFile file;          // empty for what is as it was, unless there is a refusal to tell
    std::string refusal{};  // why it has no cards, or can't be read now; empty when there is no reason
  };

  // Files that are as the cache has them.
  struct Unchanged {
    std::shared_ptr<const CachedBlock> block;  // null for none
    NameSum names;
  };

  // All but the public functions want the lock held.
  std::vector<CardChange> readFiles(const std::set<std::string>* names);
  [[nodiscard]] std::vector<std::string> namesToLookAt() const;
  FolderLock settle();
  void finishPending();
  void overlay(const std::vector<JournalStep>& steps);
  // Sorted.
  [[nodiscard]] std::vector<std::string> fileNames() const;
  [[nodiscard]] std::optional<FileContents> read(JournalStep::Target target, const std::string& name) const;
  // By a descriptor of the target's folder, or of the cards'.
  [[nodiscard]] std::optional<FileContents> read(JournalStep::Target target, const std::string& name, int folder) const;
  [[nodiscard]] std::optional<FileStamp> stamp(const std::string& name, int folder) const;
  // Those of the files that aren't as they were last read, in the order of the names, which are sorted.
  std::vector<FoundFile> lookAt(std::vector<std::string> names);
  // All files, the first time: at least those that the cache hasn't, when it has taken over the others.
  std::vector<FoundFile> lookWithCache();
  // Several threads may look at different files.
  FoundFile look(std::string name, int folder);
  [[nodiscard]] Unchanged lookAtCached(const CardCache& cache, std::size_t block) const;
  [[nodiscard]] FoundFile parse(std::string name, FileContents contents) const;
  void addCards(CardFile& file, NewCards cards) const;
  static void log(const std::string& message);
  void logOnce(const std::string& message);
  std::vector<CardChange> adopt(std::vector<FoundFile> found);
  void indexFiles();
  // But for those that are somewhere else by now, when it is behind.
  [[nodiscard]] std::vector<StoredCardPointer> present(std::vector<StoredCardPointer> cards);
  void readData();

  mutable std::mutex lock_;
  Folder folder_;
  CardFiles files_{*this};
  bool isNew_ = true;  // the folder was never read
  // What a journal asks for that can't be applied: by target and name the temporary file, empty for a removal.
  std::map<std::pair<JournalStep::Target, std::string>, std::string> overlay_;
  std::vector<CardChange> untold_;  // found by saves that failed
  bool isBehind_ = false;           // of what it has read or saved itself: memory was short
  // What was taken over when it was: the cards that the files had, and what became of some of them.
  std::vector<StoredCardPointer> known_;
  std::vector<CardChange> changes_;
  bool isIndexBehind_ = false;
  std::set<std::string> logged_;
  mutable bool isCacheDamaged_ = false;
  std::string me_;
};

}  // namespace contacts
