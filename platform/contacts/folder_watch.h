#pragma once

#include "platform/contacts/file_descriptor.h"
#include "platform/foundation/run_loop_source.h"

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace contacts {

// Watches a folder of cards from the main run loop, whose first pass says that any file may have changed: nothing is
// watched before, for programs without a loop would pay for it at their end.
class FolderWatch {
 public:
  // Gets the names of the files that may have changed, or null when any may have. May throw FileError and FolderError.
  using Changed = std::function<void(const std::set<std::string>* names)>;

  FolderWatch(std::string path, Changed changed);

 private:
  void watch();
  void readEvents();
  void look();
  void tell(const std::set<std::string>* names);
  void setTimer(long firstNanoseconds, long seconds);

  std::string path_;
  Changed changed_;
  FileDescriptor events_;
  FileDescriptor timer_;
  int cardsWatch_ = -1;  // -1 while nothing is watched, and the timer looks from time to time
  int dataWatch_ = -1;
  int aboveWatch_ = -1;
  std::unique_ptr<RunLoopSource> eventSource_;
  std::unique_ptr<RunLoopSource> timerSource_;
};

}  // namespace contacts
