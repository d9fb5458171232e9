#pragma once

#include <pthread.h>

// Work on another thread while the host's main thread goes on serving the host.

// Runs work(context) on a worker and waits for its end, yielding to the host at least once. Until then idle(context) is
// called about every millisecond, and once more after the end. Either function may be null. False when there is no
// worker to be had; then neither function is called. Called on the host's main thread.
bool RunThreaded(void* context, void (*workFunction)(void*), void (*idleFunction)(void*));

// Names the calling thread where the platform can.
void SetThreadName(const char* name);

// Blocks the calling thread.
void myDelay(int milliseconds);

// Answers 0, or the platform's error number.
int my_pthread_create(pthread_t* thread, void* (*startRoutine)(void*), void* argument);

// A mutex on the heap. Init stores null when there is no memory; the others ignore a null mutex.
void Init(pthread_mutex_t*& mutex);
void Done(pthread_mutex_t*& mutex);
void Lock(pthread_mutex_t* mutex);
void Unlock(pthread_mutex_t* mutex);
