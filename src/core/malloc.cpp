// The typed allocators: an element count becomes a guarded byte count for the core allocator.
#include "core/impl.h"

namespace {

// 32-bit length: refused below 1 element or above 2^31 - 1 bytes.
template <class T>
T* Allocate(int len) {
  long long n = len;
  if (n < 1) return nullptr;
  long long bytes = n * static_cast<long long>(sizeof(T));
  if (bytes > 0x7FFFFFFFLL) return nullptr;
  return static_cast<T*>(vspMalloc(static_cast<int>(bytes)));
}

// 64-bit length: only the unsigned-wrap guard. A byte count in [2^63, 2^64) passes it on
// purpose and reaches vspMalloc_L as a negative count, which the core allocator refuses.
template <class T>
T* AllocateL(long long len) {
  if (len < 1) return nullptr;
  unsigned long long n = static_cast<unsigned long long>(len);
  if (n > ~0ULL / sizeof(T)) return nullptr;
  return static_cast<T*>(vspMalloc_L(static_cast<long long>(n * sizeof(T))));
}

}  // namespace

#define VSP_MALLOC(t)                                                                          \
  VSP_IMPL(Vsp##t*, vspsMalloc_##t, (int len)) { return Allocate<Vsp##t>(len); }               \
  VSP_IMPL(Vsp##t*, vspsMalloc_##t##_L, (long long len)) { return AllocateL<Vsp##t>(len); }

VSP_MALLOC(8u)
VSP_MALLOC(8s)
VSP_MALLOC(8sc)
VSP_MALLOC(16u)
VSP_MALLOC(16s)
VSP_MALLOC(16sc)
VSP_MALLOC(32u)
VSP_MALLOC(32s)
VSP_MALLOC(32sc)
VSP_MALLOC(32f)
VSP_MALLOC(32fc)
VSP_MALLOC(64s)
VSP_MALLOC(64sc)
VSP_MALLOC(64f)
VSP_MALLOC(64fc)

VSP_IMPL(void, vspsFree, (void* ptr)) { vspFree(ptr); }
