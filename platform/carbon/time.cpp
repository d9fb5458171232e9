#include "platform/carbon/time.h"

#include <cerrno>
#include <ctime>

namespace {

constexpr AbsoluteTime kPerSecond = 1'000'000'000;
constexpr std::int64_t kPerMillisecond = 1'000'000;
constexpr std::int64_t kPerMicrosecond = 1'000;

}  // namespace

AbsoluteTime UpTime() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<AbsoluteTime>(now.tv_sec) * kPerSecond + static_cast<AbsoluteTime>(now.tv_nsec);
}

AbsoluteTime AddDurationToAbsolute(Duration duration, AbsoluteTime base) {
  const std::int64_t wide = duration;
  return base + static_cast<AbsoluteTime>(wide < 0 ? -wide * kPerMicrosecond : wide * kPerMillisecond);
}

OSStatus MPDelayUntil(AbsoluteTime* expirationTime) {
  const timespec until{.tv_sec = static_cast<time_t>(*expirationTime / kPerSecond),
                       .tv_nsec = static_cast<decltype(timespec::tv_nsec)>(*expirationTime % kPerSecond)};
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
  return noErr;
}
