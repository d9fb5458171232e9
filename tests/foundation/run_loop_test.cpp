#include "platform/foundation/run_loop.h"

#include "platform/foundation/run_loop_source.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct Pipe {
  Pipe() { EXPECT_EQ(pipe(ends), 0); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    for (const int end : ends) close(end);
  }

  int reading() const { return ends[0]; }
  void fill() const { EXPECT_EQ(write(ends[1], "x", 1), 1); }
  void empty() const {
    char byte = 0;
    EXPECT_LE(read(ends[0], &byte, 1), 1);
  }

  int ends[2] = {-1, -1};
};

std::int32_t run(double seconds, bool returnAfterSourceHandled = false) {
  return CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, returnAfterSourceHandled);
}

TEST(RunLoop, WaitsForTheTimeGivenWhileThereAreSources) {
  EXPECT_EQ(run(1000), kCFRunLoopRunFinished);
  const Pipe pipe;
  std::optional<RunLoopSource> source;
  source.emplace(pipe.reading(), [] { ADD_FAILURE() << "nothing to read"; });
  const auto start = steady_clock::now();
  EXPECT_EQ(run(0.05), kCFRunLoopRunTimedOut);
  EXPECT_GE(steady_clock::now() - start, milliseconds(50));
  for (const double none : {0.0, -1.0, std::nan("")}) EXPECT_EQ(run(none), kCFRunLoopRunTimedOut);
  source.reset();
  EXPECT_EQ(run(1000), kCFRunLoopRunFinished);
  EXPECT_LT(steady_clock::now() - start, milliseconds(5000));
}

TEST(RunLoop, ServesEverySourceThatIsReady) {
  const Pipe pipes[3];
  std::vector<int> served(3);
  std::optional<RunLoopSource> sources[3];
  for (std::size_t i = 0; i < 3; ++i) {
    sources[i].emplace(pipes[i].reading(), [&, i] {
      pipes[i].empty();
      ++served[i];
    });
  }
  pipes[0].fill();
  pipes[2].fill();
  pipes[2].fill();
  EXPECT_EQ(run(0), kCFRunLoopRunTimedOut);
  EXPECT_EQ(served, (std::vector{1, 0, 1}));
  EXPECT_EQ(run(std::numeric_limits<double>::infinity(), true), kCFRunLoopRunHandledSource);
  EXPECT_EQ(served, (std::vector{1, 0, 2}));
}

TEST(RunLoop, DropsASourceThatAnotherRemoves) {
  const Pipe pipes[2];
  std::optional<RunLoopSource> sources[2];
  int served = 0;
  for (std::size_t i = 0; i < 2; ++i) {
    sources[i].emplace(pipes[i].reading(), [&] {
      ++served;
      for (auto& source : sources) source.reset();
    });
    pipes[i].fill();
  }
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
