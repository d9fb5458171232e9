#include "platform/contacts/parallel.h"

#include "platform/foundation/blocked_signals.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <utility>

namespace contacts {

ParallelWork::ParallelWork(std::size_t count, std::function<void(std::size_t)> work, std::size_t worthAThread)
    : count_(count), work_(std::move(work)) {
  // More would only wait for each other in the file system.
  constexpr std::size_t kMost = 8;
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) CPU_ZERO(&processors);
  const std::size_t threads = std::min(
      {std::max(count / worthAThread, std::size_t{1}), kMost, static_cast<std::size_t>(CPU_COUNT(&processors))});
  // The system may let a new thread and the one that made it take turns, some milliseconds each, although another
  // processor has nothing to do: the new one begins elsewhere.
  cpu_set_t elsewhere = processors;
  CPU_CLR(static_cast<std::size_t>(sched_getcpu()), &elsewhere);
  try {
    const BlockedSignals blocked;
    while (others_.size() + 1 < threads) {
      others_.emplace_back([this] {
        areApart_.wait();
        takePieces();
      });
      pthread_setaffinity_np(others_.back().native_handle(), sizeof elsewhere, &elsewhere);
    }
  } catch (const std::exception&) {
    // Fewer will do.
  }
  areApart_.count_down();
  for (std::jthread& other : others_) pthread_setaffinity_np(other.native_handle(), sizeof processors, &processors);
}

ParallelWork::~ParallelWork() { next_ = count_; }

void ParallelWork::finish() {
  takePieces();
  others_.clear();
  if (failure_) std::rethrow_exception(failure_);
}

void ParallelWork::takePieces() {
  try {
    for (std::size_t piece = 0; (piece = next_++) < count_;) work_(piece);
  } catch (...) {
    next_ = count_;
    const std::scoped_lock guard(lock_);
    if (!failure_) failure_ = std::current_exception();
  }
}

}  // namespace contacts
