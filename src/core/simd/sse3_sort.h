// SSE3 operations of the radix sorts: running totals across the lanes of counter vectors.
#pragma once

#include "core/simd/sse3.h"

namespace vsp::simd {

// Lane i becomes the sum of lanes 0 .. i (wrapping adds) of a vector of 32- or 64-bit counters.
template <class T> inline Vec<T> InclusiveScan(Vec<T> a) {
  static_assert(kIsInt<T> && sizeof(T) >= 4, "scan of 32- and 64-bit lanes");
  a = Add(a, ShiftBytesUp<sizeof(T)>(a));
  if constexpr (sizeof(T) == 4) a = Add(a, ShiftBytesUp<8>(a));
  return a;
}

// The highest lane copied into every lane (32- and 64-bit lanes).
template <class T> inline Vec<T> BroadcastLast(Vec<T> a) {
  static_assert(kIsInt<T> && sizeof(T) >= 4, "broadcast of 32- and 64-bit lanes");
  return {_mm_shuffle_epi32(a.raw, sizeof(T) == 4 ? 0xFF : 0xEE)};
}

}  // namespace vsp::simd
