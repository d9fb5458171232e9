#include "platform/foundation/dispatch.h"

#include "platform/foundation/blocked_signals.h"
#include "platform/objc/runtime.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

// Enough for work that waits for other work; each thread's stack takes address space, scarce on 32 bits.
constexpr std::size_t kMostWorkers = 64;
constexpr std::chrono::seconds kIdleLife{1};

struct Task {
  void (*work)(void*);
  void* context;

  void run() const {
    void* pool = objc_autoreleasePoolPush();
    work(context);
    objc_autoreleasePoolPop(pool);
  }
};

}  // namespace

struct dispatch_queue_s {
  std::mutex lock;
  std::condition_variable taskAdded;
  std::deque<Task> tasks;
  std::size_t workers = 0;
  std::size_t idleWorkers = 0;
};

namespace {

// Ends when nothing came for a while.
void runWorker(dispatch_queue_t queue) {
  std::unique_lock guard(queue->lock);
  for (;;) {
    ++queue->idleWorkers;
    const bool found = queue->taskAdded.wait_for(guard, kIdleLife, [queue] { return !queue->tasks.empty(); });
    --queue->idleWorkers;
    if (!found) break;
    const Task task = queue->tasks.front();
    queue->tasks.pop_front();
    guard.unlock();
    task.run();
    guard.lock();
  }
  --queue->workers;
}

// Called with the lock held. Workers are detached, as the end of the process must not wait for work that never ends.
bool startWorker(dispatch_queue_t queue) try {
  const BlockedSignals blocked;
  std::thread(runWorker, queue).detach();
  ++queue->workers;
  return true;
} catch (const std::system_error&) {
  return false;
}

}  // namespace

dispatch_queue_t dispatch_get_global_queue(long identifier, unsigned long flags) {
  // Never destroyed: workers use it for as long as the process lives.
  static auto* queue = new dispatch_queue_s;
  return identifier == 0 && flags == 0 ? queue : nullptr;
}

void dispatch_async(dispatch_queue_t queue, void* context, void (*work)(void* context)) {
  const Task task{work, context};
  std::unique_lock guard(queue->lock);
  if (queue->tasks.size() >= queue->idleWorkers && queue->workers < kMostWorkers && !startWorker(queue) &&
      queue->workers == 0) {
    guard.unlock();
    task.run();
    return;
  }
  queue->tasks.push_back(task);
  queue->taskAdded.notify_one();
}
