#include "apps/contacts/progress.h"

#include "apps/contacts/text.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace contacts {

Progress::Progress(std::string what, std::size_t total, bool isQuiet)
    : what_(std::move(what)), total_(total), isShown_(!isQuiet && isTerminal(STDERR_FILENO)) {}

Progress::~Progress() {
  if (isDrawn_) std::fputs("\r\x1B[K", stderr);
}

void Progress::advance() {
  ++done_;
  if (!isShown_) return;
  const Clock::time_point now = Clock::now();
  if (now >= next_) draw(now);
}

void Progress::draw(Clock::time_point now) {
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = static_cast<double>(done_) / seconds;
  std::fprintf(stderr, "\r%s %zu of %zu, %.0f a second, %.0f s left\x1B[K", what_.c_str(), done_, total_, rate,
               static_cast<double>(total_ - done_) / rate);
  isDrawn_ = true;
  next_ = now + std::chrono::milliseconds(100);
}

}  // namespace contacts
