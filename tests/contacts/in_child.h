#pragma once

#include "platform/foundation/autorelease_pool.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

// Runs the body in a process of its own, which knows nothing of what this one has read, and answers its wait status.
template <class Body>
int statusInChild(Body&& body) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    {
      const AutoreleasePool pool;
      std::forward<Body>(body)();
    }
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

template <class Body>
void inChild(Body&& body) {
  EXPECT_EQ(statusInChild(std::forward<Body>(body)), 0);
}
