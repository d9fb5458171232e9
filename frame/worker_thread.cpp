#include "frame/worker_thread.h"

#include "frame/host_interface.h"
#include "frame/runtime_support.h"
#include "platform/carbon/time.h"
#include "platform/foundation/dispatch.h"

#include <dlfcn.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace {

struct ThreadRecord {
  pthread_t thread = 0;
  pthread_mutex_t* mutex = nullptr;  // null where there was no memory for it
  bool started = false;
  std::atomic<bool> done = false;
  void* context = nullptr;
  void (*workFunction)(void*) = nullptr;
  void (*idleFunction)(void*) = nullptr;
};

void runWork(ThreadRecord& record) {
  if (record.workFunction != nullptr) record.workFunction(record.context);
  Lock(record.mutex);
  record.done = true;
  Unlock(record.mutex);
}

void* threadfunction(void* record) {
  runWork(*static_cast<ThreadRecord*>(record));
  return nullptr;
}

bool isDone(const ThreadRecord& record) {
  Lock(record.mutex);
  const bool done = record.done;
  Unlock(record.mutex);
  return done;
}

void idle(const ThreadRecord& record) {
  if (record.idleFunction != nullptr) record.idleFunction(record.context);
}

// Serves the host until the work is done, then idles the last time.
void waitForWork(const ThreadRecord& record) {
  REALYieldToRB();
  while (!isDone(record)) {
    REALYieldToRB();
    myDelay(1);
    idle(record);
  }
  idle(record);
}

// The end of a queued task can't be waited for, so that caller and task each keep the record alive.
bool RunThreadedBlocks(void* context, void (*workFunction)(void*), void (*idleFunction)(void*)) {
  using SharedRecord = std::shared_ptr<ThreadRecord>;
  auto record = std::make_shared<ThreadRecord>();
  record->context = context;
  record->workFunction = workFunction;
  record->idleFunction = idleFunction;
  record->started = true;
  Init(record->mutex);
  dispatch_async(dispatch_get_global_queue(0, 0), new SharedRecord(record), [](void* hold) {
    const std::unique_ptr<SharedRecord> taskRecord(static_cast<SharedRecord*>(hold));
    runWork(**taskRecord);
  });
  waitForWork(*record);
  Done(record->mutex);
  return true;
}

}  // namespace

bool RunThreaded(void* context, void (*workFunction)(void*), void (*idleFunction)(void*)) {
  if (PLATFORM_HAS(dispatch_async)) return RunThreadedBlocks(context, workFunction, idleFunction);

  ThreadRecord record;
  record.context = context;
  record.workFunction = workFunction;
  record.idleFunction = idleFunction;
  Init(record.mutex);
  pthread_t thread = 0;
  if (my_pthread_create(&thread, threadfunction, &record) != 0) {
    Done(record.mutex);
    return false;
  }
  record.thread = thread;
  record.started = true;
  waitForWork(record);
  Done(record.mutex);
  pthread_join(record.thread, nullptr);
  record.thread = 0;
  record.started = false;
  return true;
}

void SetThreadName(const char* name) {
  using NamingFunction = void (*)(const char*);
  static std::atomic<NamingFunction> pthread_setname_np_{nullptr};
  static std::atomic<bool> inited{false};
  if (NamingFunction found = pthread_setname_np_.load()) {
    found(name);
    return;
  }
  if (inited.exchange(true)) return;
  // The platform's library, whose naming function takes a name alone; elsewhere threads stay unnamed.
  void* library = dlopen("/usr/lib/libpthread.dylib", RTLD_NOW);
  if (library == nullptr) return;
  auto found = reinterpret_cast<NamingFunction>(dlsym(library, "pthread_setname_np"));
  pthread_setname_np_.store(found);
  if (found != nullptr) found(name);
}

void myDelay(int milliseconds) {
  if (!PLATFORM_HAS(UpTime)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return;
  }
  AbsoluteTime end = AddDurationToAbsolute(milliseconds, UpTime());
  MPDelayUntil(&end);
}

int my_pthread_create(pthread_t* thread, void* (*startRoutine)(void*), void* argument) {
  constexpr std::size_t kStackSize = 0x200000;
  pthread_attr_t attributes;
  if (const int error = pthread_attr_init(&attributes); error != 0) return error;
  pthread_attr_setstacksize(&attributes, kStackSize);
  const int result = pthread_create(thread, &attributes, startRoutine, argument);
  pthread_attr_destroy(&attributes);
  return result;
}

void Init(pthread_mutex_t*& mutex) {
  mutex = static_cast<pthread_mutex_t*>(AllocateClearMemory(sizeof(pthread_mutex_t)));
  if (mutex != nullptr) pthread_mutex_init(mutex, nullptr);
}

void Done(pthread_mutex_t*& mutex) {
  if (mutex == nullptr) return;
  pthread_mutex_destroy(mutex);
  FreeMemoryNow(mutex);
  mutex = nullptr;
}

void Lock(pthread_mutex_t* mutex) {
  if (mutex != nullptr) pthread_mutex_lock(mutex);
}

void Unlock(pthread_mutex_t* mutex) {
  if (mutex != nullptr) pthread_mutex_unlock(mutex);
}
