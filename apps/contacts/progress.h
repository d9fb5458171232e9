#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace contacts {

// A line on the terminal for what takes longer than half a second; nothing where the standard error is no terminal.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  Progress(std::string what, std::size_t total, bool isQuiet, Clock::time_point start = Clock::now());
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  void advance() { advanceTo(done_ + 1); }
  void advanceTo(std::size_t done);

 private:
  void draw(Clock::time_point now);

  std::string what_;
  std::size_t total_;
  std::size_t done_ = 0;
  bool isShown_;
  bool isDrawn_ = false;
  Clock::time_point start_;
  Clock::time_point next_;
};

// The same for the opening of the contacts, told by how much of their files this process has read.
class OpeningProgress {
 public:
  OpeningProgress();

  // To be called again and again meanwhile.
  void look();

 private:
  std::size_t before_;  // kilobytes that were read for other things
  Progress::Clock::time_point start_ = Progress::Clock::now();
  Progress::Clock::time_point next_;
  std::optional<Progress> progress_;  // once it takes long
};

}  // namespace contacts
