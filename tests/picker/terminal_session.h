#pragma once

#include "tests/picker/screen.h"

#include <functional>
#include <string>
#include <string_view>

#include <sys/types.h>

// A program that runs in a terminal of its own. Its standard output is not the terminal, but kept.
class TerminalSession {
 public:
  // The function runs in a new process, whose exit status its result is.
  TerminalSession(int rows, int columns, const std::function<int()>& program);
  TerminalSession(const TerminalSession&) = delete;
  TerminalSession& operator=(const TerminalSession&) = delete;
  ~TerminalSession();

  void type(std::string_view keys) const;
  void resize(int rows, int columns);
  // Lets the program draw until the condition holds; false when it doesn't for ten seconds.
  bool waitFor(const std::function<bool(const Screen&)>& condition);
  // The same, for a text anywhere on the screen.
  bool waitFor(std::string_view text);
  // Waits for the program's end; its exit status, or -1 when it didn't end by itself within ten seconds.
  int finish();

  [[nodiscard]] const Screen& screen() const { return screen_; }
  // All of the standard output; after finish.
  [[nodiscard]] const std::string& output() const { return output_; }

 private:
  // Answers whether there was anything.
  bool read(int milliseconds);

  Screen screen_;
  pid_t process_ = 0;
  int terminal_ = -1;
  int pipe_ = -1;
  std::string output_;
};
