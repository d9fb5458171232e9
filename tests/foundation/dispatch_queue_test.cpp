#include "platform/foundation/dispatch.h"

#include "platform/foundation/string.h"
#include "tests/objc/failing_threads.h"
#include "tests/objc/live_objects.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <latch>
#include <mutex>
#include <thread>

namespace {

namespace fs = std::filesystem;

bool isInterruptBlocked() {
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  return sigismember(&blocked, SIGINT) == 1;
}

dispatch_queue_t queue() { return dispatch_get_global_queue(0, 0); }

// Waits until the idle workers have ended.
void expectNoWorkers() {
#if defined(__SANITIZE_THREAD__)
  constexpr long kOwnThreads = 2;  // the sanitizer has one
#else
  constexpr long kOwnThreads = 1;
#endif
  const auto threads = [] { return std::distance(fs::directory_iterator("/proc/self/task"), {}); };
  for (int i = 0; i < 100 && threads() > kOwnThreads; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_LE(threads(), kOwnThreads);
}

TEST(DispatchQueue, GivesWaitingWorkThreadsOfItsOwn) {
  // Each waits until a full round of them has come, and all a thousand do.
  constexpr int kTogether = 20;
  struct Meeting {
    std::thread::id caller = std::this_thread::get_id();
    std::mutex lock;
    std::condition_variable someCame;
    int come = 0;
    std::latch left{50 * kTogether};
  } meeting;
  for (int i = 0; i < 50 * kTogether; ++i) {
    dispatch_async(queue(), &meeting, [](void* context) {
      auto* shared = static_cast<Meeting*>(context);
      EXPECT_NE(std::this_thread::get_id(), shared->caller);
      {
        std::unique_lock guard(shared->lock);
        const int round = shared->come++ / kTogether;
        shared->someCame.notify_all();
        shared->someCame.wait(guard, [&] { return shared->come >= (round + 1) * kTogether; });
      }
      shared->left.count_down();
    });
  }
  meeting.left.wait();
}

TEST(DispatchQueue, DrainsEachWorksPoolAndEndsIdleThreads) {
  const auto before = liveObjects();
  std::latch done(1);
  dispatch_async(queue(), &done, [](void* context) {
    EXPECT_EQ(NSString::stringWithUTF8String("autoreleased").length(), 12U);
    EXPECT_TRUE(isInterruptBlocked());  // the process's signals are left to its main thread
    static_cast<std::latch*>(context)->count_down();
  });
  done.wait();
  expectNoWorkers();
  EXPECT_EQ(liveObjects(), before);
  EXPECT_FALSE(isInterruptBlocked());
}

TEST(DispatchQueue, RunsWorkHereWithoutThreads) {
  expectNoWorkers();
  std::thread::id runner;
  threadsFail = true;
  dispatch_async(queue(), &runner,
                 [](void* context) { *static_cast<std::thread::id*>(context) = std::this_thread::get_id(); });
  threadsFail = false;
  EXPECT_EQ(runner, std::this_thread::get_id());
}

}  // namespace
