#pragma once

#include "platform/contacts/database.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace contacts {

// One save, under the database's lock and the folder's.
class DatabaseSave {
 public:
  DatabaseSave(Database& database, const SaveRequest& request) : database_(database), request_(request) {}

  SaveResult run();

 private:
  // A file as it will be.
  struct Plan {
    std::string text;  // as it is now, decoded
    NewCards cards;
    std::unordered_map<std::string, std::size_t> positions;  // by unique id
    std::string composed;                                    // as it will be
    std::uint64_t inode = 0;                                 // of the file that has that
    std::optional<FoundState> expected;
    mode_t mode = 0600;
    std::map<std::size_t, const CardUpdate*> byPosition;
    std::vector<const CardUpdate*> added;
  };

  std::optional<SaveResult> saveOnce();
  void prepare(bool isOtherFolder);
  void lookEverywhere();
  void place(const CardUpdate& update);
  bool placeIn(const StoredCard& known, const CardUpdate& update);
  Plan* planFor(const std::string& name);
  std::string freeName(const std::string& uid) const;
  [[nodiscard]] static std::string compose(const Plan& plan);
  void write();
  [[nodiscard]] std::string dataText(const std::string& name) const;
  void addStep(JournalStep::Target target, const std::string& name, Plan& plan);
  [[nodiscard]] bool isUndisturbed() const;
  void dropTemporaries();
  SaveResult finish();
  std::vector<CardChange> adoptWritten();
  void keepRemoved(SaveResult& result) const;

  Database& database_;
  const SaveRequest& request_;
  std::map<std::string, Plan> plans_;  // by file name
  std::vector<JournalStep> steps_;
  std::vector<CardChange> foreign_;  // found on the way
  bool hasLookedEverywhere_ = false;
  PropertyFileEdit properties_;
};

}  // namespace contacts
