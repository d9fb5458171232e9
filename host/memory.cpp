#include "host/memory.h"

#include <cstdlib>
#include <mutex>
#include <new>
#include <queue>

#include <sys/mman.h>
#include <unistd.h>

namespace host {

namespace {

std::size_t pageSize() {
  static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return size;
}

std::size_t wholePages(std::size_t size) { return (size + pageSize() - 1) / pageSize() * pageSize(); }

// Pages of released blocks, which stay out of bounds until there are so many that addresses might run out.
constexpr std::size_t kMostReleased = std::size_t{1} << 28;

struct Pages {
  void* start;
  std::size_t size;
};

struct Released {
  std::mutex lock;  // worker threads release strings too
  std::queue<Pages> pages;
  std::size_t size = 0;
};

constexpr int kMapping = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;

void* newPages(std::size_t size) {
  const std::size_t used = wholePages(size);
  void* pages = mmap(nullptr, used + pageSize(), PROT_NONE, kMapping, -1, 0);
  if (pages == MAP_FAILED || mprotect(pages, used, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
  return static_cast<char*>(pages) + used - size;
}

void releasePages(void* memory, std::size_t size) {
  static auto* released = new Released;
  const std::size_t used = wholePages(size);
  void* pages = static_cast<char*>(memory) + size - used;
  // Made anew rather than protected, so that the bytes are given back and it becomes one mapping with its neighbours.
  mmap(pages, used, PROT_NONE, kMapping | MAP_FIXED, -1, 0);
  const std::scoped_lock guard(released->lock);
  released->pages.push({pages, used + pageSize()});
  released->size += used + pageSize();
  for (; released->size > kMostReleased; released->pages.pop()) {
    const Pages& oldest = released->pages.front();
    munmap(oldest.start, oldest.size);
    released->size -= oldest.size;
  }
}

}  // namespace

bool isHostile() {
  static const bool hostile = std::getenv("HOSTILE_HOST") != nullptr;
  return hostile;
}

void* newMemory(std::size_t size) {
  if (isHostile()) return newPages(size);
  void* memory = std::calloc(1, size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void releaseMemory(void* memory, std::size_t size) {
  if (memory == nullptr) return;
  if (isHostile()) {
    releasePages(memory, size);
  } else {
    std::free(memory);
  }
}

}  // namespace host
