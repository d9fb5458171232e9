#pragma once

#include "platform/foundation/autorelease_pool.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

// Runs the body in a process of its own, which knows nothing of what this one has read, and answers its wait status.
template <class Body>
int statusInChild(Body&& body) {
  std::fflush(nullptr);
  const bool hadFailed = testing::Test::HasFailure();
  const pid_t child = fork();
  if (child == 0) {
    {
      const AutoreleasePool pool;
      std::forward<Body>(body)();
    }
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() && !hadFailed ? 1 : 0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

// As statusInChild; what the body answers, a text, too.
template <class Body>
std::pair<int, std::string> answerOfChild(Body&& body) {
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const int status = statusInChild([&] {
    // Texts fit into a pipe, so that nobody waits.
    const std::string text = std::forward<Body>(body)();
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  });
  close(ends[1]);
  std::string text(65536, '\0');
  const ssize_t length = read(ends[0], text.data(), text.size());
  close(ends[0]);
  text.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
  return {status, text};
}

template <class Body>
void inChild(Body&& body) {
  EXPECT_EQ(statusInChild(std::forward<Body>(body)), 0);
}
