#include "platform/contacts/parallel.h"

#include "platform/foundation/blocked_signals.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace contacts {

void inStretches(std::size_t count, const std::function<void(std::size_t, std::size_t)>& work) {
  std::atomic<std::size_t> next = 0;
  std::mutex lock;
  std::exception_ptr failure;
  auto take = [&] {
    try {
      for (std::size_t begin = 0; (begin = next.fetch_add(kStretch)) < count;) {
        work(begin, std::min(begin + kStretch, count));
      }
    } catch (...) {
      next = count;
      const std::scoped_lock guard(lock);
      if (!failure) failure = std::current_exception();
    }
  };

  // More would only wait for each other in the file system.
  constexpr std::size_t kMost = 8;
  const std::size_t processors = std::min<std::size_t>(std::thread::hardware_concurrency(), kMost);
  const std::size_t stretches = (count + kStretch - 1) / kStretch;
  std::vector<std::jthread> others;
  try {
    const BlockedSignals blocked;
    while (others.size() + 1 < std::min(processors, stretches)) others.emplace_back(take);
  } catch (const std::system_error&) {
    // Fewer will do.
  }
  take();
  others.clear();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace contacts
