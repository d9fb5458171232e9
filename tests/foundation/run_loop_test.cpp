#include "platform/foundation/run_loop.h"

#include "platform/foundation/run_loop_source.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <limits>
#include <optional>
#include <thread>

#include <sys/timerfd.h>
#include <unistd.h>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Pipe {
 public:
  Pipe() { EXPECT_EQ(pipe(ends_), 0); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    close(ends_[0]);
    hangUp();
  }

  [[nodiscard]] int reading() const { return ends_[0]; }
  void fill() const { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
  void empty() const {
    char byte = 0;
    EXPECT_LE(read(ends_[0], &byte, 1), 1);
  }
  void hangUp() {
    if (ends_[1] >= 0) close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  int ends_[2] = {-1, -1};
};

std::int32_t run(double seconds, bool returnAfterSourceHandled = false) {
  return CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, returnAfterSourceHandled);
}

TEST(RunLoop, ReturnsWithoutSources) {
  EXPECT_EQ(run(1000), kCFRunLoopRunFinished);
  const Pipe pipe;
  {
    const RunLoopSource source(pipe.reading(), [] {});
  }
  EXPECT_EQ(run(1000), kCFRunLoopRunFinished);
}

TEST(RunLoop, WaitsForTheTimeGiven) {
  const Pipe pipe;
  const RunLoopSource source(pipe.reading(), [] { ADD_FAILURE() << "nothing to read"; });
  const auto start = steady_clock::now();
  EXPECT_EQ(run(0.05), kCFRunLoopRunTimedOut);
  EXPECT_GE(steady_clock::now() - start, milliseconds(50));
  for (const double none : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(run(none), kCFRunLoopRunTimedOut);
  }
  EXPECT_LT(steady_clock::now() - start, milliseconds(5000));
}

TEST(RunLoop, ServesEverySourceThatIsReady) {
  const Pipe pipes[3];
  int served[3] = {};
  const auto serve = [&](int i) {
    return [&, i] {
      pipes[i].empty();
      ++served[i];
    };
  };
  const RunLoopSource first(pipes[0].reading(), serve(0));
  const RunLoopSource second(pipes[1].reading(), serve(1));
  const RunLoopSource third(pipes[2].reading(), serve(2));
  pipes[0].fill();
  pipes[2].fill();
  pipes[2].fill();
  EXPECT_EQ(run(0), kCFRunLoopRunTimedOut);
  EXPECT_EQ(served[0] * 100 + served[1] * 10 + served[2], 101);
  EXPECT_EQ(run(std::numeric_limits<double>::infinity(), true), kCFRunLoopRunHandledSource);
  EXPECT_EQ(served[0] * 100 + served[1] * 10 + served[2], 102);
}

TEST(RunLoop, ServesTimersAndHangUps) {
  const int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
  const itimerspec soon{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_nsec = 10'000'000}};
  timerfd_settime(timer, 0, &soon, nullptr);
  {
    const RunLoopSource source(timer, [timer] {
      std::uint64_t count = 0;
      EXPECT_EQ(read(timer, &count, sizeof count), 8);
    });
    EXPECT_EQ(run(1000, true), kCFRunLoopRunHandledSource);
  }
  close(timer);
  Pipe pipe;
  const RunLoopSource source(pipe.reading(), [] {});
  pipe.hangUp();
  EXPECT_EQ(run(1000, true), kCFRunLoopRunHandledSource);
}

TEST(RunLoop, DropsASourceThatAnotherRemoves) {
  const Pipe pipes[2];
  std::optional<RunLoopSource> first;
  std::optional<RunLoopSource> second;
  int served = 0;
  const auto serve = [&] {
    ++served;
    first.reset();
    second.reset();
  };
  first.emplace(pipes[0].reading(), serve);
  second.emplace(pipes[1].reading(), serve);
  pipes[0].fill();
  pipes[1].fill();
  EXPECT_EQ(run(1000), kCFRunLoopRunFinished);
  EXPECT_EQ(served, 1);
}

TEST(RunLoop, ServesOthersWhileASourceRunsIt) {
  const Pipe outer;
  const Pipe inner;
  int innerServed = 0;
  const RunLoopSource modal(outer.reading(), [&] {
    EXPECT_EQ(run(0.01), kCFRunLoopRunTimedOut);
    EXPECT_EQ(innerServed, 1);
    outer.empty();
  });
  const RunLoopSource other(inner.reading(), [&] {
    inner.empty();
    ++innerServed;
  });
  outer.fill();
  inner.fill();
  EXPECT_EQ(run(0.05), kCFRunLoopRunTimedOut);
  EXPECT_EQ(innerServed, 1);
}

TEST(RunLoop, SurvivesWhatASourceThrows) {
  const Pipe pipe;
  bool throws = true;
  const RunLoopSource source(pipe.reading(), [&] {
    if (throws) throw 1;
    pipe.empty();
  });
  pipe.fill();
  EXPECT_THROW(run(1000), int);
  throws = false;
  EXPECT_EQ(run(1000, true), kCFRunLoopRunHandledSource);
}

TEST(RunLoop, BelongsToTheMainThreadAndTakesSourcesFromAny) {
  const Pipe idle;
  const Pipe ready;
  ready.fill();
  const RunLoopSource first(idle.reading(), [] {});
  std::optional<RunLoopSource> second;
  const auto mainThread = std::this_thread::get_id();
  std::thread other([&] {
    EXPECT_EQ(run(1000), kCFRunLoopRunFinished);
    std::this_thread::sleep_for(milliseconds(20));
    second.emplace(ready.reading(), [&] {
      EXPECT_EQ(std::this_thread::get_id(), mainThread);
      ready.empty();
    });
  });
  EXPECT_EQ(run(1000, true), kCFRunLoopRunHandledSource);
  other.join();
}

}  // namespace
