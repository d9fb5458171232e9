#include "platform/foundation/exception.h"

#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/log.h"
#include "tests/objc/live_objects.h"

#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using ExceptionTest = LiveObjectsTest;

TEST_F(ExceptionTest, IsCaughtWithWhatItCarries) {
  const NSString info = NSString::stringWithUTF8String("info");
  try {
    const AutoreleasePool pool;
    NSException::exceptionWithName("Name"_ns, "Reason"_ns, info).raise();
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), "Name"_ns);
    EXPECT_EQ(exception.reason(), "Reason"_ns);
    EXPECT_EQ(exception.userInfo(), info);
    EXPECT_STREQ(exception.description().UTF8String(), "Reason");
    ASSERT_GT(exception.callStackSymbols().count(), 2U);
  }
}

TEST(UncaughtExceptionTest, RunsTheHandlerBeforeTheEnd) {
  const auto raise = [] { NSException::raise(NSRangeException, "too far"); };
  NSSetUncaughtExceptionHandler([](NSException exception) {
    std::fprintf(stderr, "uncaught %s: %s\n", exception.name().UTF8String(), exception.reason().UTF8String());
  });
  EXPECT_EXIT(std::thread(raise).join(), testing::KilledBySignal(SIGABRT), "uncaught NSRangeException: too far");
  // Other exceptions end the process as they did before.
  EXPECT_EXIT(std::thread([] { throw std::runtime_error("other"); }).join(), testing::KilledBySignal(SIGABRT),
              "std::runtime_error");
  NSSetUncaughtExceptionHandler(nullptr);
  EXPECT_EXIT(std::thread(raise).join(), testing::KilledBySignal(SIGABRT), "instance of 'NSException'");
}

TEST_F(ExceptionTest, LogLinesOfThreadsAreWhole) {
  testing::internal::CaptureStderr();
  const auto work = [] {
    for (int i = 0; i < 500; ++i) NSLog("%@ and a tail that makes the line a little longer"_ns, "message"_ns);
  };
  std::thread other(work);
  work();
  other.join();
  std::istringstream lines(testing::internal::GetCapturedStderr());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_TRUE(testing::internal::RE::FullMatch(
        line, testing::internal::RE("[0-9]+-[0-9]+-[0-9]+ [0-9:]+\\.[0-9]+ foundation_tests\\[[0-9]+:[0-9]+\\] "
                                    "message and a tail that makes the line a little longer")))
        << line;
  }
  EXPECT_EQ(count, 1000);
}

}  // namespace
