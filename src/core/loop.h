// The loop shape of every element-wise kernel: a scalar head until the destination is aligned to
// the vector width, a SIMD body, a scalar tail.
//
// A kernel supplies an operation object with
//   static constexpr int kStep;   // elements per SIMD step
//   void Scalar(long long i);     // element i
//   void Vector(long long i);     // elements i .. i + kStep - 1; the destination at i is
//                                 // vector-aligned whenever the head could align it
// and both must give the same bits for the same element: the split between head, body and tail
// depends on the address only, and results may not.
#pragma once

#include <cstdint>

#include "core/simd/sse3.h"

namespace vsp {

// Number of leading elements of a vector at p to process one by one so that the rest starts at
// a vector boundary (simd::kVecBytes); 0 when the address can never reach one by whole elements (the body then
// stores unaligned), at most n.
template <class T>
inline long long AlignHead(const T* p, long long n) {
  constexpr uintptr_t kSize = sizeof(T);
  constexpr uintptr_t kVec = simd::kVecBytes;
  uintptr_t mis = reinterpret_cast<uintptr_t>(p) % kVec;
  if (mis == 0 || mis % kSize != 0 || kSize >= kVec) return 0;
  long long head = static_cast<long long>((kVec - mis) / kSize);
  return head < n ? head : n;
}

template <class D, class Op>
inline void ForEachAligned(D* dst, long long n, Op& op) {
  constexpr long long kStep = Op::kStep;
  long long i = 0;
  for (long long head = AlignHead(dst, n); i < head; ++i) op.Scalar(i);
  for (; i + kStep <= n; i += kStep) op.Vector(i);
  for (; i < n; ++i) op.Scalar(i);
}

}  // namespace vsp
