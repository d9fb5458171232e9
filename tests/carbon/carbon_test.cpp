#include "platform/carbon/gestalt.h"
#include "platform/carbon/time.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>

#include <sys/time.h>

namespace {

TEST(Gestalt, SharesAddressesUnderASelector) {
  constexpr OSType kSelector = 0x56585269;
  std::intptr_t value = 42;
  EXPECT_EQ(Gestalt(kSelector, &value), gestaltUndefSelectorErr);
  EXPECT_EQ(value, 42);
  for (const auto shared : {reinterpret_cast<std::intptr_t>(&value), std::intptr_t{0}}) {
    EXPECT_EQ(SetGestaltValue(kSelector, shared), noErr);
    EXPECT_EQ(Gestalt(kSelector, &value), noErr);
    EXPECT_EQ(value, shared);
  }
  EXPECT_EQ(Gestalt(kSelector, nullptr), paramErr);
}

TEST(Time, CountsMillisecondsUpAndMicrosecondsDown) {
  const struct {
    Duration duration;
    AbsoluteTime nanoseconds;
  } cases[] = {{0, 0}, {1, 1'000'000}, {-1, 1'000}, {INT32_MAX, 2'147'483'647'000'000}, {INT32_MIN, 2'147'483'648'000}};
  for (const auto& [duration, nanoseconds] : cases) {
    EXPECT_EQ(AddDurationToAbsolute(duration, 1'000'000'000'000), 1'000'000'000'000 + nanoseconds);
  }
}

TEST(Time, DelaysInSpiteOfSignals) {
  signal(SIGALRM, [](int) {});
  const itimerval often{.it_interval = {.tv_sec = 0, .tv_usec = 1000}, .it_value = {.tv_sec = 0, .tv_usec = 1000}};
  ASSERT_EQ(setitimer(ITIMER_REAL, &often, nullptr), 0);
  AbsoluteTime until = AddDurationToAbsolute(30, UpTime());
  EXPECT_EQ(MPDelayUntil(&until), noErr);
  EXPECT_GE(UpTime(), until);
  until = 0;
  EXPECT_EQ(MPDelayUntil(&until), noErr);
}

}  // namespace
