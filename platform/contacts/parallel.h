#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <latch>
#include <mutex>
#include <thread>
#include <vector>

namespace contacts {

// Pieces of work that all of the machine's processors do. The others begin at once; they take none of the process's
// signals.
class ParallelWork {
 public:
  // Calls work for each piece of [0, count). So many of them are worth a thread.
  ParallelWork(std::size_t count, std::function<void(std::size_t)> work, std::size_t worthAThread = 1);
  ParallelWork(const ParallelWork&) = delete;
  ParallelWork& operator=(const ParallelWork&) = delete;
  // Pieces that haven't begun are left out.
  ~ParallelWork();

  // Takes part, and returns when all pieces have ended. Throws what work threw, after which pieces that hadn't begun
  // are left out.
  void finish();

 private:
  void takePieces();

  const std::size_t count_;
  const std::function<void(std::size_t)> work_;
  std::atomic<std::size_t> next_ = 0;
  std::latch areApart_{1};  // none begins before it was told where
  std::mutex lock_;
  std::exception_ptr failure_;
  std::vector<std::jthread> others_;
};

}  // namespace contacts
