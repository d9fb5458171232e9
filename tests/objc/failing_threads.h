#pragma once

#include <atomic>
#include <cerrno>

#include <dlfcn.h>
#include <pthread.h>

// For one file of a program: while it is set no thread can be had.
inline std::atomic<bool> threadsFail{false};

// Stands before the system's own for every library of the program.
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attributes,
                                                                     void* (*start)(void*), void* argument) noexcept {
  static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return threadsFail ? EAGAIN : real(thread, attributes, start, argument);
}
