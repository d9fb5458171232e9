#include "apps/contacts/heap.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace contacts {

void growHeapInLargeSteps() {
  constexpr int kStep = 32 << 20;
  constexpr int kLargestThreshold = sizeof(void*) == 4 ? 512 << 10 : kStep;  // that the library takes
  constexpr std::uintptr_t kLargePage = 2 << 20;
  mallopt(M_TOP_PAD, kStep);
  mallopt(M_MMAP_THRESHOLD, kLargestThreshold);  // else vectors that grow would still come and go in pages of their own
  mallopt(M_TRIM_THRESHOLD, 2 * kStep);
  const auto start = (reinterpret_cast<std::uintptr_t>(sbrk(0)) + kLargePage - 1) / kLargePage * kLargePage;
  // More than the first step of the heap has left. Volatile, or both calls are left out.
  void* volatile block = std::malloc(256 << 10);
  std::free(block);
  const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
  // Nothing is lost where the kernel doesn't.
  if (end > start) (void)madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}

}  // namespace contacts
