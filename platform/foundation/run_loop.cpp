#include "platform/foundation/run_loop.h"

#include "platform/foundation/cf_string.h"
#include "platform/foundation/run_loop_source.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

struct RunLoopSource::State {
  int descriptor;
  std::function<void()> ready;
  // Both belong to the main thread.
  bool running = false;
  bool removed = false;
};

namespace {

using Clock = std::chrono::steady_clock;
using Sources = std::vector<std::shared_ptr<RunLoopSource::State>>;

// Sources come from any thread, and wake a loop that waits; all else is the main thread's.
class MainLoop {
 public:
  // Never destroyed: sources may outlive static destructors.
  static MainLoop& shared() {
    static auto* loop = new MainLoop;
    return *loop;
  }

  void add(std::shared_ptr<RunLoopSource::State> source) {
    const std::scoped_lock guard(lock_);
    sources_.push_back(std::move(source));
    eventfd_write(wake_, 1);
  }

  void remove(const std::shared_ptr<RunLoopSource::State>& source) {
    const std::scoped_lock guard(lock_);
    std::erase(sources_, source);
  }

  [[nodiscard]] Sources sources() {
    const std::scoped_lock guard(lock_);
    return sources_;
  }

  // Waits at most so many milliseconds, then serves every source that was found ready. Answers whether any was.
  bool serve(const Sources& sources, int milliseconds) {
    std::vector<pollfd> polled{{.fd = wake_, .events = POLLIN, .revents = 0}};
    for (const auto& source : sources) {
      // poll skips a negative descriptor.
      polled.push_back({.fd = source->running ? -1 : source->descriptor, .events = POLLIN, .revents = 0});
    }
    const std::uint64_t pass = ++passes_;
    if (poll(polled.data(), static_cast<nfds_t>(polled.size()), milliseconds) <= 0) return false;
    if (polled[0].revents != 0) {
      eventfd_t count = 0;
      eventfd_read(wake_, &count);
    }
    bool served = false;
    // What the poll found is out of date once a source ran the loop itself.
    for (std::size_t i = 0; i < sources.size() && pass == passes_; ++i) {
      if (polled[i + 1].revents == 0 || sources[i]->removed) continue;
      run(*sources[i]);
      served = true;
    }
    return served;
  }

 private:
  MainLoop() = default;

  static void run(RunLoopSource::State& source) {
    struct Running {
      explicit Running(bool& flag) : flag_(flag) { flag_ = true; }
      Running(const Running&) = delete;
      Running& operator=(const Running&) = delete;
      ~Running() { flag_ = false; }
      bool& flag_;
    } running(source.running);
    source.ready();
  }

  std::mutex lock_;
  Sources sources_;
  std::uint64_t passes_ = 0;
  const int wake_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
};

Clock::time_point deadlineAfter(CFTimeInterval seconds) {
  constexpr CFTimeInterval kLongest = 1e9;  // about thirty years, within the clock's range
  const CFTimeInterval wanted = seconds > 0 ? std::min(seconds, kLongest) : 0;  // 0 for what is no number
  return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(wanted));
}

// Rounded up, so that a wait doesn't end in a spin; long waits are made of several.
int millisecondsUntil(Clock::time_point deadline) {
  constexpr std::int64_t kLongestPoll = 60'000;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, kLongestPoll));
}

bool onMainThread() { return gettid() == getpid(); }

}  // namespace

const CFStringRef kCFRunLoopDefaultMode = CFSTR("kCFRunLoopDefaultMode");

RunLoopSource::RunLoopSource(int descriptor, std::function<void()> ready)
    : state_(std::make_shared<State>(State{.descriptor = descriptor, .ready = std::move(ready)})) {
  MainLoop::shared().add(state_);
}

RunLoopSource::~RunLoopSource() {
  state_->removed = true;
  MainLoop::shared().remove(state_);
}

std::int32_t CFRunLoopRunInMode(CFStringRef, CFTimeInterval seconds, Boolean returnAfterSourceHandled) {
  if (!onMainThread()) return kCFRunLoopRunFinished;
  MainLoop& loop = MainLoop::shared();
  const Clock::time_point deadline = deadlineAfter(seconds);
  for (;;) {
    const Sources sources = loop.sources();
    if (sources.empty()) return kCFRunLoopRunFinished;
    if (loop.serve(sources, millisecondsUntil(deadline)) && returnAfterSourceHandled) return kCFRunLoopRunHandledSource;
    if (Clock::now() >= deadline) return kCFRunLoopRunTimedOut;
  }
}
