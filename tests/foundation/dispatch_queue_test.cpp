#include "platform/foundation/dispatch.h"

#include "platform/foundation/string.h"
#include "tests/objc/live_objects.h"

#include <atomic>
#include <barrier>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <latch>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>

namespace {

// While it is set no thread can be had.
std::atomic<bool> threadsFail{false};

}  // namespace

// Stands before the system's own for every library of this program.
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attributes,
                                                                     void* (*start)(void*), void* argument) noexcept {
  static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return threadsFail ? EAGAIN : real(thread, attributes, start, argument);
}

namespace {

dispatch_queue_t queue() { return dispatch_get_global_queue(0, 0); }

long threadCount() {
  const std::filesystem::directory_iterator threads("/proc/self/task");
  return std::distance(begin(threads), end(threads));
}

// The thread sanitizer has one of its own.
#if defined(__SANITIZE_THREAD__)
constexpr long kOwnThreads = 2;
#else
constexpr long kOwnThreads = 1;
#endif

// Waits until the idle workers have ended.
void expectNoWorkers() {
  for (int i = 0; i < 100 && threadCount() > kOwnThreads; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  EXPECT_LE(threadCount(), kOwnThreads);
}

TEST(DispatchQueue, IsTheDefaultOneOnly) {
  EXPECT_NE(queue(), nullptr);
  EXPECT_EQ(queue(), dispatch_get_global_queue(0, 0));
  EXPECT_EQ(dispatch_get_global_queue(2, 0), nullptr);
  EXPECT_EQ(dispatch_get_global_queue(0, 1), nullptr);
}

TEST(DispatchQueue, RunsAllWorkElsewhere) {
  struct Counts {
    std::thread::id caller = std::this_thread::get_id();
    std::atomic<int> elsewhere{0};
    std::latch left{1000};
  } counts;
  for (int i = 0; i < 1000; ++i) {
    dispatch_async(queue(), &counts, [](void* context) {
      auto* shared = static_cast<Counts*>(context);
      if (std::this_thread::get_id() != shared->caller) ++shared->elsewhere;
      shared->left.count_down();
    });
  }
  counts.left.wait();
  EXPECT_EQ(counts.elsewhere, 1000);
}

TEST(DispatchQueue, GivesWaitingWorkThreadsOfItsOwn) {
  // None passes before all have come.
  struct Meeting {
    std::barrier<> all{20};
    std::latch left{20};
  } meeting;
  for (int i = 0; i < 20; ++i) {
    dispatch_async(queue(), &meeting, [](void* context) {
      auto* shared = static_cast<Meeting*>(context);
      shared->all.arrive_and_wait();
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
    // The process's signals are left to its main thread.
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_TRUE(sigismember(&blocked, SIGINT));
    static_cast<std::latch*>(context)->count_down();
  });
  done.wait();
  expectNoWorkers();
  EXPECT_EQ(liveObjects(), before);
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  EXPECT_FALSE(sigismember(&blocked, SIGINT));
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
