#include "frame/worker_thread.h"

#include "tests/frame/fake_resolver.h"
#include "tests/objc/failing_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

// Built twice: with a platform that has dispatch queues, and with one that hasn't.

namespace {

std::atomic<int> yields{0};

struct Job {
  std::atomic<int> runs{0};
  std::atomic<int> idles{0};
  std::atomic<bool> idleAfterWork{false};
  std::thread::id worker;
  int milliseconds = 0;
};

void work(void* context) {
  auto& job = *static_cast<Job*>(context);
  job.worker = std::this_thread::get_id();
  std::this_thread::sleep_for(std::chrono::milliseconds(job.milliseconds));
  ++job.runs;
}

void idle(void* context) {
  auto& job = *static_cast<Job*>(context);
  ++job.idles;
  job.idleAfterWork = job.runs == 1;
}

class WorkerThread : public testing::Test {
 protected:
  WorkerThread() {
    fake_resolver::give("REALYieldToRB", [] { ++yields; });
    fake_resolver::install();
  }
};

}  // namespace

TEST_F(WorkerThread, RunsTheWorkElsewhereAndServesTheHostMeanwhile) {
  Job job;
  job.milliseconds = 30;
  EXPECT_TRUE(RunThreaded(&job, work, idle));
  EXPECT_EQ(job.runs, 1);
  EXPECT_NE(job.worker, std::this_thread::get_id());
  EXPECT_GT(job.idles, 3);
  EXPECT_TRUE(job.idleAfterWork);
  EXPECT_GE(yields, job.idles.load());  // one a round, one before the first
}

TEST_F(WorkerThread, RunsManyJobsThatEndAtOnce) {
  for (int i = 0; i < 200; ++i) {
    Job job;
    ASSERT_TRUE(RunThreaded(&job, work, idle));
    ASSERT_EQ(job.runs, 1);
    ASSERT_GE(job.idles, 1);
  }
}

TEST_F(WorkerThread, NeedsNoFunctions) {
  Job job;
  EXPECT_TRUE(RunThreaded(&job, work, nullptr));
  EXPECT_TRUE(RunThreaded(&job, nullptr, idle));
  EXPECT_EQ(job.runs, 1);
  EXPECT_GE(job.idles, 1);
}

#if defined(WITHOUT_DISPATCH)
TEST_F(WorkerThread, SaysWhenThereIsNoThreadToBeHad) {
  threadsFail = true;
  Job job;
  EXPECT_FALSE(RunThreaded(&job, work, idle));
  EXPECT_EQ(job.runs, 0);
  EXPECT_EQ(job.idles, 0);
}
#endif
