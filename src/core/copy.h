// Type-blind data-movement kernels: every element is only a run of bytes of its size.
// They never check and never fail; other families use them for their own copies and fills.
#pragma once

#include <cstring>

#include "core/loop.h"
#include "core/simd/sse3.h"
#include "core/types.h"

namespace vsp {

namespace detail {

// Moves n <= 64 bytes with overlapping 16/8/4/2-byte accesses; every load happens before the
// first store, so the ranges may overlap. Faster than a library call at these sizes.
inline void MoveSmall(const Vsp8u* s, Vsp8u* d, size_t n) {
  using simd::LoadU;
  using simd::StoreU;
  if (n >= 16) {
    if (n > 32) {
      auto a = LoadU(s), b = LoadU(s + 16), c = LoadU(s + n - 32), e = LoadU(s + n - 16);
      StoreU(a, d), StoreU(b, d + 16), StoreU(c, d + n - 32), StoreU(e, d + n - 16);
    } else {
      auto a = LoadU(s), e = LoadU(s + n - 16);
      StoreU(a, d), StoreU(e, d + n - 16);
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

constexpr size_t kSmallBytes = 64;

}  // namespace detail

// Copies n bytes between non-overlapping ranges.
inline void ownsCopy_8u(const Vsp8u* src, Vsp8u* dst, size_t n) {
  if (n <= detail::kSmallBytes) detail::MoveSmall(src, dst, n);
  else std::memcpy(dst, src, n);
}

// Copies n bytes; the ranges may overlap (the result of copying through a temporary).
inline void ownsMove_8u(const Vsp8u* src, Vsp8u* dst, size_t n) {
  if (n <= detail::kSmallBytes) detail::MoveSmall(src, dst, n);
  else std::memmove(dst, src, n);
}

// Sets n bytes to zero.
inline void ownsZero_8u(Vsp8u* dst, size_t n) {
  if (n <= detail::kSmallBytes) {
    alignas(16) static constexpr Vsp8u kZeros[detail::kSmallBytes] = {};
    detail::MoveSmall(kZeros, dst, n);
  } else {
    std::memset(dst, 0, n);
  }
}

// Stores the element pattern `val` (1, 2, 4, 8 or 16 bytes) into n elements at dst.
template <class T>
void ownsSet(const T& val, T* dst, long long n) {
  static_assert(sizeof(T) <= 16 && (sizeof(T) & (sizeof(T) - 1)) == 0, "element of 1..16 bytes");
  constexpr size_t kSize = sizeof(T);
  Vsp8u bytes[kSize];
  std::memcpy(bytes, &val, kSize);
  bool uniform = true;
  for (size_t i = 1; i < kSize; ++i) uniform = uniform && bytes[i] == bytes[0];
  if (uniform) {  // every byte alike (zero, -1, 8-bit values): the library's memset is best
    std::memset(dst, bytes[0], static_cast<size_t>(n) * kSize);
    return;
  }
  Vsp8u pattern[16];
  for (size_t i = 0; i < 16; ++i) pattern[i] = bytes[i % kSize];
  const auto v = simd::LoadU(pattern);
  Vsp8u* d = reinterpret_cast<Vsp8u*>(dst);
  long long i = AlignHead(dst, n);
  for (long long k = 0; k < i; ++k) std::memcpy(d + k * kSize, bytes, kSize);
  Vsp8u* p = d + i * kSize;
  size_t rest = static_cast<size_t>(n - i) * kSize;  // a multiple of the element size
  size_t blocks = rest / 64;
  for (size_t b = 0; b < blocks; ++b, p += 64) {
    simd::StoreU(v, p), simd::StoreU(v, p + 16), simd::StoreU(v, p + 32), simd::StoreU(v, p + 48);
  }
  for (rest %= 64; rest >= 16; rest -= 16, p += 16) simd::StoreU(v, p);
  if (rest) std::memcpy(p, pattern, rest);  // the pattern repeats every 16 bytes
}

}  // namespace vsp
