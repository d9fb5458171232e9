#pragma once

#include <functional>
#include <memory>

#include "platform/objc/api.h"

// A file descriptor that the main run loop watches while this object lives; a timer is one from timerfd_create. ready
// is called on the main thread whenever there is something to read (or the other end is gone), again and again until it
// is read. It isn't called again while it runs, even if it runs the loop itself. May be made on any thread, and must be
// destroyed on the main one, also from within ready. The descriptor stays the caller's, open for as long.
class RunLoopSource {
 public:
  PLATFORM_API RunLoopSource(int descriptor, std::function<void()> ready);
  PLATFORM_API ~RunLoopSource();
  RunLoopSource(const RunLoopSource&) = delete;
  RunLoopSource& operator=(const RunLoopSource&) = delete;

  struct State;

 private:
  std::shared_ptr<State> state_;
};
