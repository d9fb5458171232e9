#include "platform/contacts/parallel.h"

#include "platform/foundation/blocked_signals.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <utility>

namespace contacts {

ParallelWork::ParallelWork(std::size_t count, std::function<void(std::size_t)> work)
    : count_(count), work_(std::move(work)), ended_(count) {
  // More would only wait for each other in the file system.
  constexpr std::size_t kMost = 8;
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) CPU_ZERO(&processors);
  const std::size_t threads = std::min({count, kMost, static_cast<std::size_t>(CPU_COUNT(&processors))});
  // The system may let a new thread and the one that made it take turns, some milliseconds each, although another
  // processor has nothing to do: the new one begins elsewhere.
  cpu_set_t elsewhere = processors;
  CPU_CLR(static_cast<std::size_t>(sched_getcpu()), &elsewhere);
  try {
    const BlockedSignals blocked;
    while (others_.size() + 1 < threads) {
      others_.emplace_back([this] {
        areApart_.wait();
        while (takePiece()) {
        }
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
  while (takePiece()) {
  }
  others_.clear();
  if (failure_) std::rethrow_exception(failure_);
}

void ParallelWork::finish(std::size_t piece) {
  const auto isOver = [&] { return failure_ || ended_[piece]; };
  std::unique_lock guard(lock_);
  while (!isOver()) {
    guard.unlock();
    const bool hasTaken = takePiece();
    guard.lock();
    if (!hasTaken) progress_.wait(guard, isOver);
  }
  if (failure_) std::rethrow_exception(failure_);
}

bool ParallelWork::takePiece() {
  const std::size_t piece = next_++;
  if (piece >= count_) return false;
  std::exception_ptr failure;
  try {
    work_(piece);
  } catch (...) {
    failure = std::current_exception();
    next_ = count_;
  }
  const std::scoped_lock guard(lock_);
  ended_[piece] = true;
  if (!failure_) failure_ = failure;
  progress_.notify_one();
  return true;
}

}  // namespace contacts
