// SwapBytes (byte order inside each element) and Flip (element order of the vector).
// Both are type-blind: an element is handled as an unsigned integer of its size.
#include <cstring>

#include "core/check.h"
#include "core/impl.h"
#include "core/loop.h"
#include "core/simd/sse3.h"
#include "core/types.h"

namespace {

using namespace vsp;
namespace hw = vsp::simd;

// ---- SwapBytes of 16-, 32- and 64-bit elements ------------------------------------------------

template <class U>
U ByteSwap(U x) {
  if constexpr (sizeof(U) == 2) return static_cast<U>(__builtin_bswap16(x));
  else if constexpr (sizeof(U) == 4) return __builtin_bswap32(x);
  else return __builtin_bswap64(x);
}

template <class U>
struct SwapOp {
  static constexpr int kLanes = hw::kLanes<U>;
  static constexpr int kStep = 4 * kLanes;
  const U* src;
  U* dst;
  void Scalar(long long i) { dst[i] = ByteSwap(src[i]); }
  void Vector(long long i) {
    auto a = hw::LoadU(src + i), b = hw::LoadU(src + i + kLanes), c = hw::LoadU(src + i + 2 * kLanes),
         d = hw::LoadU(src + i + 3 * kLanes);
    hw::StoreU(hw::ReverseBytesInLanes(a), dst + i);
    hw::StoreU(hw::ReverseBytesInLanes(b), dst + i + kLanes);
    hw::StoreU(hw::ReverseBytesInLanes(c), dst + i + 2 * kLanes);
    hw::StoreU(hw::ReverseBytesInLanes(d), dst + i + 3 * kLanes);
  }
};

template <class U>
void ownsSwapBytes(const U* src, U* dst, long long n) {
  SwapOp<U> op{src, dst};
  ForEachAligned(dst, n, op);
}

// ---- SwapBytes of packed 24-bit elements -------------------------------------------------------

// Sixteen 3-byte elements fill three vectors exactly. In byte i of the block the result is byte
// i + 2 where i % 3 == 0, byte i where i % 3 == 1, byte i - 2 where i % 3 == 2.
struct Swap24Masks {
  // bytes[phase][v][b]: byte b of vector v of a block holds element byte `phase`.
  Vsp8u bytes[3][3][16];
};
constexpr Swap24Masks MakeSwap24Masks() {
  Swap24Masks m{};
  for (int v = 0; v < 3; ++v)
    for (int b = 0; b < 16; ++b) m.bytes[(16 * v + b) % 3][v][b] = 0xFF;
  return m;
}
// The 24-bit swap shuffles three 16-byte vectors (sixteen samples) per step.
static_assert(hw::kVecBytes == 16, "the 24-bit swap masks are written for 16-byte vectors");
alignas(hw::kVecBytes) constexpr Swap24Masks kSwap24 = MakeSwap24Masks();

inline void Swap24Scalar(const Vsp8u* s, Vsp8u* d) {
  Vsp8u b0 = s[0], b1 = s[1], b2 = s[2];
  d[0] = b2, d[1] = b1, d[2] = b0;
}

void ownsSwapBytes_24u(const Vsp8u* src, Vsp8u* dst, long long n) {
  // Head: elements until dst is 16-byte aligned; 3 has the inverse 11 modulo 16.
  long long head = static_cast<long long>(((16 - (reinterpret_cast<uintptr_t>(dst) & 15)) * 11) & 15);
  if (head > n) head = n;
  long long i = 0;
  for (; i < head; ++i) Swap24Scalar(src + 3 * i, dst + 3 * i);
  for (; i + 16 <= n; i += 16) {
    const Vsp8u* s = src + 3 * i;
    hw::Vec<Vsp8u> v[3] = {hw::LoadU(s), hw::LoadU(s + 16), hw::LoadU(s + 32)};
    for (int k = 0; k < 3; ++k) {
      // The block seen two bytes further on and two bytes back, across vector borders.
      auto ahead = hw::ShiftBytesDown<2>(v[k]);
      if (k < 2) ahead = hw::Or(ahead, hw::ShiftBytesUp<14>(v[k + 1]));
      auto behind = hw::ShiftBytesUp<2>(v[k]);
      if (k > 0) behind = hw::Or(behind, hw::ShiftBytesDown<14>(v[k - 1]));
      auto first = hw::Load(kSwap24.bytes[0][k]), middle = hw::Load(kSwap24.bytes[1][k]),
           last = hw::Load(kSwap24.bytes[2][k]);
      auto r = hw::Or(hw::Or(hw::And(first, ahead), hw::And(middle, v[k])), hw::And(last, behind));
      hw::StoreU(r, dst + 3 * i + 16 * k);
    }
  }
  for (; i < n; ++i) Swap24Scalar(src + 3 * i, dst + 3 * i);
}

template <class U>
VspStatus SwapBytes(const U* pSrc, U* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsSwapBytes(pSrc, pDst, len);
  return vspStatOk;
}

VspStatus SwapBytes24(const Vsp8u* pSrc, Vsp8u* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsSwapBytes_24u(pSrc, pDst, len);
  return vspStatOk;
}

// ---- Flip --------------------------------------------------------------------------------------

// Elements are moved as the caller's type T one at a time and, in the vector body, as lanes of
// an unsigned integer of the same size (a 16-byte element is one whole vector).
template <class T>
using FlipLane = std::conditional_t<sizeof(T) == 16, Vsp8u, BitsOf<sizeof(T) == 16 ? 8 : sizeof(T)>>;

template <class T>
constexpr int kFlipLanes = sizeof(T) == 16 ? 1 : hw::kLanes<FlipLane<T>>;

// The vector of kFlipLanes<T> elements at p, in reverse element order.
template <class T>
inline auto LoadReversed(const T* p) {
  auto v = hw::LoadU(reinterpret_cast<const FlipLane<T>*>(p));
  if constexpr (sizeof(T) == 16) return v;
  else return hw::Reverse(v);
}

template <class T, class V>
inline void StoreLanes(V v, T* p) {
  hw::StoreU(v, reinterpret_cast<FlipLane<T>*>(p));
}

// dst[i] = src[n - 1 - i]: dst is walked forward (aligned), src backward (unaligned).
template <class T>
struct FlipOp {
  static constexpr int kLanes = kFlipLanes<T>;
  static constexpr int kStep = 2 * kLanes;
  const T* src;
  T* dst;
  long long n;
  void Scalar(long long i) { dst[i] = src[n - 1 - i]; }
  void Vector(long long i) {
    const T* s = src + n - i - kStep;
    auto hi = LoadReversed(s + kLanes), lo = LoadReversed(s);
    StoreLanes(hi, dst + i);
    StoreLanes(lo, dst + i + kLanes);
  }
};

template <class T>
void ownsFlip(const T* src, T* dst, long long n) {
  FlipOp<T> op{src, dst, n};
  ForEachAligned(dst, n, op);
}

template <class T>
inline void Exchange(T& a, T& b) {
  T t = a;
  a = b;
  b = t;
}

// In place: elements i and n - 1 - i exchange places for i < n / 2; whole vectors from both
// ends while they do not meet, the aligned side being the front.
template <class T>
void ownsFlip_I(T* p, long long n) {
  constexpr int kLanes = kFlipLanes<T>;
  long long i = 0;
  const long long half = n / 2;
  const long long head = AlignHead(p, half);
  for (; i < head; ++i) Exchange(p[i], p[n - 1 - i]);
  for (; i + kLanes <= half; i += kLanes) {
    T* back = p + n - i - kLanes;
    auto f = LoadReversed(p + i), b = LoadReversed(back);
    StoreLanes(b, p + i);
    StoreLanes(f, back);
  }
  for (; i < half; ++i) Exchange(p[i], p[n - 1 - i]);
}

template <class T>
VspStatus Flip(const T* pSrc, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsFlip(pSrc, pDst, len);
  return vspStatOk;
}

template <class T>
VspStatus FlipInPlace(T* pSrcDst, int len) {
  if (VspStatus st = CheckVec(len, pSrcDst)) return st;
  ownsFlip_I(pSrcDst, len);
  return vspStatOk;
}

}  // namespace

#define VSP_SWAP(t)                                                                              \
  VSP_IMPL(VspStatus, vspsSwapBytes_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {          \
    return SwapBytes(pSrc, pDst, len);                                                           \
  }                                                                                              \
  VSP_IMPL(VspStatus, vspsSwapBytes_##t##_I, (Vsp##t * pSrcDst, int len)) {                      \
    return SwapBytes<Vsp##t>(pSrcDst, pSrcDst, len);                                             \
  }
VSP_SWAP(16u)
VSP_SWAP(32u)
VSP_SWAP(64u)

VSP_IMPL(VspStatus, vspsSwapBytes_24u, (const Vsp8u* pSrc, Vsp8u* pDst, int len)) {
  return SwapBytes24(pSrc, pDst, len);
}
VSP_IMPL(VspStatus, vspsSwapBytes_24u_I, (Vsp8u * pSrcDst, int len)) { return SwapBytes24(pSrcDst, pSrcDst, len); }

#define VSP_FLIP(t)                                                                                           \
  VSP_IMPL(VspStatus, vspsFlip_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) { return Flip(pSrc, pDst, len); } \
  VSP_IMPL(VspStatus, vspsFlip_##t##_I, (Vsp##t * pSrcDst, int len)) { return FlipInPlace(pSrcDst, len); }
VSP_FLIP(8u)
VSP_FLIP(16u)
VSP_FLIP(32f)
VSP_FLIP(64f)
VSP_FLIP(64fc)

// vspsFlip_32fc compares the two pointers before any other test: equal pointers mean an in-place
// reversal, with that form's checks.
VSP_IMPL(VspStatus, vspsFlip_32fc, (const Vsp32fc* pSrc, Vsp32fc* pDst, int len)) {
  if (pSrc == pDst) return VSP_CALL(vspsFlip_32fc_I)(pDst, len);
  return Flip(pSrc, pDst, len);
}
VSP_IMPL(VspStatus, vspsFlip_32fc_I, (Vsp32fc * pSrcDst, int len)) { return FlipInPlace(pSrcDst, len); }
