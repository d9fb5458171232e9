#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

// The command as its user runs it, each time in a process of its own.

struct Outcome {
  int status = -1;
  std::string output;  // both standard streams'
};

inline Outcome run(std::vector<std::string> arguments, const std::string& input = "") {
  const std::filesystem::path build = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
  arguments.insert(arguments.begin(), build / "bin" / "contacts");
  std::vector<char*> words;
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  std::array<int, 2> in{};
  std::array<int, 2> out{};
  if (pipe(in.data()) != 0 || pipe(out.data()) != 0) std::abort();
  const pid_t process = fork();
  if (process == 0) {
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    dup2(out[1], STDERR_FILENO);
    for (const int end : {in[0], in[1], out[0], out[1]}) close(end);
    execv(words[0], words.data());
    _exit(127);
  }
  close(in[0]);
  close(out[1]);
  if (write(in[1], input.data(), input.size()) != static_cast<ssize_t>(input.size())) std::abort();
  close(in[1]);
  Outcome outcome;
  std::array<char, 4096> bytes{};
  for (ssize_t count = 0; (count = read(out[0], bytes.data(), bytes.size())) > 0;) {
    outcome.output.append(bytes.data(), static_cast<std::size_t>(count));
  }
  close(out[0]);
  int status = 0;
  waitpid(process, &status, 0);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return outcome;
}

inline std::string outputOf(std::vector<std::string> arguments, const std::string& input = "") {
  const Outcome outcome = run(std::move(arguments), input);
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  return outcome.output;
}
