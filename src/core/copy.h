// Type-blind data-movement kernels: every element is only a run of bytes of its size.
// They never check and never fail; other families use them for their own copies and fills.
#pragma once

#include <cstring>

#include "core/loop.h"
#include "core/simd/sse3.h"
#include "core/types.h"

namespace vsp {

namespace detail {

// The byte kernels below move one vector (V bytes) at a time and cover the rest with 8-, 4-, 2-
// and 1-byte pieces, which assumes V = 16; a layer of another width gives them a sibling.
constexpr size_t V = simd::kVecBytes;
static_assert(V == 16, "the small-move pieces are written for 16-byte vectors");

// Up to these sizes the kernels move data themselves; above them they call the C library, whose
// wider stores win once the call has paid for itself (measured on the bench/ Copy, Move, Zero
// and Set cases).
constexpr size_t kInlineMoveBytes = 128;
constexpr size_t kInlineCopyBytes = 256;
constexpr size_t kInlineFillBytes = 256;

// Moves n <= 128 bytes with overlapping accesses; every load happens before the first store,
// so the ranges may overlap.
inline void MoveSmall(const Vsp8u* s, Vsp8u* d, size_t n) {
  using simd::LoadU;
  using simd::StoreU;
  if (n > 4 * V) {
    auto a0 = LoadU(s), a1 = LoadU(s + V), a2 = LoadU(s + 2 * V), a3 = LoadU(s + 3 * V);
    auto b0 = LoadU(s + n - 4 * V), b1 = LoadU(s + n - 3 * V), b2 = LoadU(s + n - 2 * V), b3 = LoadU(s + n - V);
    StoreU(a0, d), StoreU(a1, d + V), StoreU(a2, d + 2 * V), StoreU(a3, d + 3 * V);
    StoreU(b0, d + n - 4 * V), StoreU(b1, d + n - 3 * V), StoreU(b2, d + n - 2 * V), StoreU(b3, d + n - V);
  } else if (n >= V) {
    if (n > 2 * V) {
      auto a = LoadU(s), b = LoadU(s + V), c = LoadU(s + n - 2 * V), e = LoadU(s + n - V);
      StoreU(a, d), StoreU(b, d + V), StoreU(c, d + n - 2 * V), StoreU(e, d + n - V);
    } else {
      auto a = LoadU(s), e = LoadU(s + n - V);
      StoreU(a, d), StoreU(e, d + n - V);
    }
  } else if (n >= 8) {
    Vsp64u a, e;
    std::memcpy(&a, s, 8), std::memcpy(&e, s + n - 8, 8);
    std::memcpy(d, &a, 8), std::memcpy(d + n - 8, &e, 8);
  } else if (n >= 4) {
    Vsp32u a, e;
    std::memcpy(&a, s, 4), std::memcpy(&e, s + n - 4, 4);
    std::memcpy(d, &a, 4), std::memcpy(d + n - 4, &e, 4);
  } else if (n >= 2) {
    Vsp16u a, e;
    std::memcpy(&a, s, 2), std::memcpy(&e, s + n - 2, 2);
    std::memcpy(d, &a, 2), std::memcpy(d + n - 2, &e, 2);
  } else if (n == 1) {
    *d = *s;
  }
}

// Copies 64 < n <= 256 bytes between non-overlapping ranges: 64-byte blocks, the last one
// overlapping its predecessor.
inline void CopyMedium(const Vsp8u* s, Vsp8u* d, size_t n) {
  using simd::LoadU;
  using simd::StoreU;
  auto copy64 = [&](size_t i) {
    auto a0 = LoadU(s + i), a1 = LoadU(s + i + V), a2 = LoadU(s + i + 2 * V), a3 = LoadU(s + i + 3 * V);
    StoreU(a0, d + i), StoreU(a1, d + i + V), StoreU(a2, d + i + 2 * V), StoreU(a3, d + i + 3 * V);
  };
  size_t i = 0;
  for (; i + 4 * V < n; i += 4 * V) copy64(i);
  copy64(n - 4 * V);
}

// Stores a repeating 16-byte pattern over n bytes at d. The pattern's period (the element
// size) divides 16 and n, so a store that overlaps its neighbour at an element boundary keeps
// the pattern in phase.
inline void FillBytes(simd::Vec<Vsp8u> v, Vsp8u* d, size_t n) {
  using simd::StoreU;
  if (n >= V) {
    size_t i = 0;
    for (; i + 4 * V <= n; i += 4 * V) StoreU(v, d + i), StoreU(v, d + i + V), StoreU(v, d + i + 2 * V), StoreU(v, d + i + 3 * V);
    for (; i + V <= n; i += V) StoreU(v, d + i);
    if (i < n) StoreU(v, d + n - V);
    return;
  }
  alignas(simd::kVecBytes) Vsp8u b[V];
  simd::Store(v, b);
  if (n >= 8) std::memcpy(d, b, 8), std::memcpy(d + n - 8, b, 8);
  else if (n >= 4) std::memcpy(d, b, 4), std::memcpy(d + n - 4, b, 4);
  else if (n >= 2) std::memcpy(d, b, 2), std::memcpy(d + n - 2, b, 2);
  else if (n == 1) *d = b[0];
}

}  // namespace detail

// Copies n bytes between non-overlapping ranges.
inline void ownsCopy_8u(const Vsp8u* src, Vsp8u* dst, size_t n) {
  if (n <= detail::kInlineMoveBytes) detail::MoveSmall(src, dst, n);
  else if (n <= detail::kInlineCopyBytes) detail::CopyMedium(src, dst, n);
  else std::memcpy(dst, src, n);
}

// Copies n bytes; the ranges may overlap (the result of copying through a temporary).
inline void ownsMove_8u(const Vsp8u* src, Vsp8u* dst, size_t n) {
  if (n <= detail::kInlineMoveBytes) detail::MoveSmall(src, dst, n);
  else std::memmove(dst, src, n);
}

// Sets n bytes to zero.
inline void ownsZero_8u(Vsp8u* dst, size_t n) {
  if (n <= detail::kInlineFillBytes) detail::FillBytes(simd::Zero<Vsp8u>(), dst, n);
  else std::memset(dst, 0, n);
}

// Stores the element pattern `val` (1, 2, 4, 8 or 16 bytes) into n elements at dst.
template <class T>
void ownsSet(const T& val, T* dst, long long n) {
  static_assert(sizeof(T) <= 16 && (sizeof(T) & (sizeof(T) - 1)) == 0, "element of 1..16 bytes");
  simd::Vec<Vsp8u> v;
  if constexpr (sizeof(T) == 16) {
    v = simd::LoadU(reinterpret_cast<const Vsp8u*>(&val));
  } else {
    BitsOf<sizeof(T)> bits;
    std::memcpy(&bits, &val, sizeof(T));
    v = simd::BitCast<Vsp8u>(simd::Set1(bits));
  }
  const Vsp8u first = simd::GetLane0(v);
  const size_t bytes = static_cast<size_t>(n) * sizeof(T);
  Vsp8u* d = reinterpret_cast<Vsp8u*>(dst);
  if (bytes > detail::kInlineFillBytes) {
    // All sixteen bytes alike (zero, -1, any 8-bit value): the C library's memset.
    if (simd::MoveMask(simd::Eq(v, simd::Set1<Vsp8u>(first))) == 0xFFFF) {
      std::memset(d, first, bytes);
      return;
    }
    // Align the stores: whole elements up to the next 16-byte boundary, when one is reachable.
    const long long head = AlignHead(dst, n);
    detail::FillBytes(v, d, static_cast<size_t>(head) * sizeof(T));
    d += head * sizeof(T);
    detail::FillBytes(v, d, bytes - static_cast<size_t>(head) * sizeof(T));
    return;
  }
  detail::FillBytes(v, d, bytes);
}

}  // namespace vsp
