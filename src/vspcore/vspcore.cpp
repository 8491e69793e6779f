// libvspcore: aligned allocation and the thread count that the multi-rate filters ask for.
#include "vspcore.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

namespace {

int ThreadsFromEnvironment() {
  if (const char* env = std::getenv("VSP_NUM_THREADS")) {
    char* end = nullptr;
    long v = std::strtol(env, &end, 10);
    if (end != env && *end == '\0' && v >= 1 && v <= 1 << 16) return static_cast<int>(v);
  }
  long n = sysconf(_SC_NPROCESSORS_ONLN);
  return n >= 1 ? static_cast<int>(n) : 1;
}

// 0 means "not yet read from the environment".
std::atomic<int> g_numThreads{0};

void* AllocAligned(unsigned long long bytes) {
  // aligned_alloc wants a size that is a multiple of the alignment.
  unsigned long long rounded = (bytes + VSP_MALLOC_ALIGNMENT - 1) & ~0x3FULL;
  if (rounded < bytes) return nullptr;
  return std::aligned_alloc(VSP_MALLOC_ALIGNMENT, rounded);
}

}  // namespace

extern "C" {

void* vspMalloc(int bytes) {
  if (bytes < 1) return nullptr;
  return AllocAligned(static_cast<unsigned long long>(bytes));
}

void* vspMalloc_L(long long bytes) {
  if (bytes < 1) return nullptr;
  return AllocAligned(static_cast<unsigned long long>(bytes));
}

void vspFree(void* ptr) { std::free(ptr); }

void* vspAlignPtr(void* ptr, int alignBytes) {
  if (alignBytes < 2) return ptr;
  uintptr_t a = static_cast<uintptr_t>(alignBytes);
  uintptr_t p = reinterpret_cast<uintptr_t>(ptr);
  return reinterpret_cast<void*>((p + a - 1) & ~(a - 1));
}

int ownGetNumThreads(void) {
  int n = g_numThreads.load(std::memory_order_relaxed);
  if (n == 0) {
    int expected = 0;
    n = ThreadsFromEnvironment();
    if (!g_numThreads.compare_exchange_strong(expected, n, std::memory_order_relaxed)) n = expected;
  }
  return n;
}

int vspSetNumThreads(int numThreads) {
  if (numThreads < 1) return -6;
  g_numThreads.store(numThreads, std::memory_order_relaxed);
  return 0;
}

int vspGetNumThreads(int* pNumThreads) {
  if (!pNumThreads) return -8;
  *pNumThreads = ownGetNumThreads();
  return 0;
}

}  // extern "C"
