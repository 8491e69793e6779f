// The machine's limits for SSE code, measured in the same run as the cases: aligned 16-byte
// loads and stores, unrolled, over an in-cache buffer. Families register them as the peer
// "limit" of a case, so the ratio table shows how close vsp comes to what the core can do.
#pragma once

#include <emmintrin.h>

#include <cstddef>

namespace vspbench {

// Streams `bytes` (a multiple of 64) through aligned 16-byte loads and stores: the copy limit.
inline void LimitCopy(const void* src, void* dst, size_t bytes) {
  auto* s = static_cast<const __m128i*>(src);
  auto* d = static_cast<__m128i*>(dst);
  for (size_t i = 0; i < bytes / 16; i += 4) {
    __m128i a = _mm_load_si128(s + i), b = _mm_load_si128(s + i + 1), c = _mm_load_si128(s + i + 2),
            e = _mm_load_si128(s + i + 3);
    _mm_store_si128(d + i, a), _mm_store_si128(d + i + 1, b), _mm_store_si128(d + i + 2, c),
        _mm_store_si128(d + i + 3, e);
  }
}

// Aligned 16-byte stores only: the fill limit.
inline void LimitStore(void* dst, size_t bytes) {
  auto* d = static_cast<__m128i*>(dst);
  const __m128i v = _mm_set1_epi32(0x3F800000);
  for (size_t i = 0; i < bytes / 16; i += 4)
    _mm_store_si128(d + i, v), _mm_store_si128(d + i + 1, v), _mm_store_si128(d + i + 2, v), _mm_store_si128(d + i + 3, v);
}

// Aligned 16-byte loads only (four independent chains): the reduction limit.
inline __m128i LimitLoad(const void* src, size_t bytes) {
  auto* s = static_cast<const __m128i*>(src);
  __m128i a = _mm_setzero_si128(), b = a, c = a, e = a;
  for (size_t i = 0; i < bytes / 16; i += 4) {
    a = _mm_or_si128(a, _mm_load_si128(s + i)), b = _mm_or_si128(b, _mm_load_si128(s + i + 1));
    c = _mm_or_si128(c, _mm_load_si128(s + i + 2)), e = _mm_or_si128(e, _mm_load_si128(s + i + 3));
  }
  return _mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, e));
}

}  // namespace vspbench
