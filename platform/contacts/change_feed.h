#pragma once

#include "platform/contacts/database.h"
#include "platform/contacts/folder_watch.h"
#include "platform/foundation/run_loop_source.h"

#include <memory>
#include <mutex>
#include <vector>

namespace contacts {

struct AddressBookObject;

// Brings what became of cards to the shared book and then tells the observers, on the main thread. Until there is a
// shared book nothing is told.
class ChangeFeed {
 public:
  enum class Origin { kThisProcess, kOthers };

  // From now on others' changes to the folder are looked for. The database lives as long as the process.
  void watch(Database& database);
  // The book lives as long as the process, too.
  void setShared(AddressBookObject& book);
  // Any thread. On the main one, and once started, the changes are told before the call returns. The book that saved
  // them has them already.
  void add(std::vector<CardChange> changes, Origin origin, const AddressBookObject* saver = nullptr);

 private:
  struct Batch {
    std::vector<CardChange> changes;
    Origin origin;
    bool isKnown;  // to the shared book
  };

  void tell();
  // When memory is short, it is told the next time.
  void tell(Batch& batch);

  std::mutex lock_;
  std::vector<Batch> batches_;
  AddressBookObject* shared_ = nullptr;
  FileDescriptor wake_;
  std::unique_ptr<RunLoopSource> wakeSource_;
  std::unique_ptr<FolderWatch> watch_;
};

ChangeFeed& changeFeed();

}  // namespace contacts
