#include "tests/picker/terminal_session.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience{10};

winsize sizeOf(int rows, int columns) {
  return {static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
}

}  // namespace

TerminalSession::TerminalSession(int rows, int columns, const std::function<int()>& program) : screen_(rows, columns) {
  int ends[2] = {-1, -1};
  if (pipe(ends) != 0) std::abort();
  winsize size = sizeOf(rows, columns);
  process_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (process_ < 0) std::abort();
  if (process_ == 0) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    setenv("TERM", "xterm", 1);
    setenv("LC_ALL", "C", 1);
    _exit(program());
  }
  close(ends[1]);
  pipe_ = ends[0];
}

TerminalSession::~TerminalSession() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  if (terminal_ >= 0) close(terminal_);
  close(pipe_);
}

void TerminalSession::type(std::string_view keys) const {
  if (::write(terminal_, keys.data(), keys.size()) < 0) std::abort();
}

void TerminalSession::resize(int rows, int columns) {
  winsize size = sizeOf(rows, columns);
  screen_.resize(rows, columns);
  ioctl(terminal_, TIOCSWINSZ, &size);
}

bool TerminalSession::read(int milliseconds) {
  pollfd polled{.fd = terminal_, .events = POLLIN, .revents = 0};
  if (poll(&polled, 1, milliseconds) <= 0) return false;
  char bytes[16384];
  const ssize_t count = ::read(terminal_, bytes, sizeof bytes);
  if (count <= 0) return false;
  screen_.write({bytes, static_cast<std::size_t>(count)});
  return true;
}

bool TerminalSession::waitFor(const std::function<bool(const Screen&)>& condition) {
  const auto end = Clock::now() + kPatience;
  while (!condition(screen_)) {
    if (Clock::now() > end) return false;
    read(100);
  }
  return true;
}

bool TerminalSession::waitFor(std::string_view text) {
  return waitFor([text](const Screen& screen) { return screen.text().find(text) != std::string::npos; });
}

int TerminalSession::finish() {
  const auto end = Clock::now() + kPatience;
  int status = 0;
  while (waitpid(process_, &status, WNOHANG) == 0) {
    if (Clock::now() > end) return -1;
    read(10);
  }
  process_ = 0;
  char bytes[4096];
  while (true) {
    const ssize_t count = ::read(pipe_, bytes, sizeof bytes);
    if (count <= 0) break;
    output_.append(bytes, static_cast<std::size_t>(count));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
