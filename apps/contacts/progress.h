#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace contacts {

// A line on the terminal for what takes longer than half a second; nothing where the standard error is no terminal.
class Progress {
 public:
  Progress(std::string what, std::size_t total, bool isQuiet);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  void advance();

 private:
  using Clock = std::chrono::steady_clock;

  void draw(Clock::time_point now);

  std::string what_;
  std::size_t total_;
  std::size_t done_ = 0;
  bool isShown_;
  bool isDrawn_ = false;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_ + std::chrono::milliseconds(500);
};

}  // namespace contacts
