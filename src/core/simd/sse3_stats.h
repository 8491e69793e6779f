// Vector operations of the statistics kernels (sums, extremes, norms, dot products), built on
// the SSE3 layer.
#pragma once

#include "core/simd/sse3.h"

namespace vsp::simd {

// |a| of signed integer lanes, saturated: the most negative value gives the largest positive one
// (|-32768| = 32767), unlike Abs, which leaves it as it is.
template <class T> inline Vec<T> AbsSat(Vec<T> a) {
  Vec<T> r = Abs(a);
  return Xor(r, ShiftRight<sizeof(T) * 8 - 1>(r));
}

// |a - b| of 16-bit signed lanes, exact as unsigned 16-bit lanes (0 .. 65535).
inline Vec<Vsp16u> AbsDiff(Vec<Vsp16s> a, Vec<Vsp16s> b) {
  return BitCast<Vsp16u>(Sub(Max(a, b), Min(a, b)));
}

// The 32-bit lanes of MulAddPairs (pmaddwd) sign-extended to 64 bits, lanes 0-1 into lo and
// 2-3 into hi. The one result that wraps, 0x80000000 from (-32768)^2 + (-32768)^2, is taken as
// +2^31: no pair of 16-bit products can sum to -2^31.
inline void WidenPairSums(Vec<Vsp32s> r, Vec<Vsp64s>& lo, Vec<Vsp64s>& hi) {
  // All ones where r lies in [-2^31 + 1, -1], i.e. where r - 1 < -1 without wrapping.
  Vec<Vsp32s> sign = Gt(Set1<Vsp32s>(-1), Sub(r, Set1<Vsp32s>(1)));
  lo = BitCast<Vsp64s>(InterleaveLo(r, sign));
  hi = BitCast<Vsp64s>(InterleaveHi(r, sign));
}

// The 32-bit lanes of a widened to 64 bits (sign- or zero-extended) and added: lanes 0 and 2
// go to 64-bit lane 0, lanes 1 and 3 to lane 1 (so interleaved re/im lanes stay apart).
template <class T> inline Vec<Wider<T>> WidenAddHalves(Vec<T> a) {
  static_assert(sizeof(T) == 4, "32-bit lanes");
  return Add(PromoteLo(a), PromoteHi(a));
}

// x in lane 0, zeros in the other lanes.
inline Vec<Vsp64f> SetLo(Vsp64f x) { return {_mm_set_sd(x)}; }
inline Vec<Vsp32f> SetLo(Vsp32f x) { return {_mm_set_ss(x)}; }
// Two floats (one complex element) into lanes 0-1, zeros in lanes 2-3.
inline Vec<Vsp32f> LoadLo2(const Vsp32f* p) {
  return {_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))};
}

// The first lane of a comparison mask that is true, or -1.
template <class T> inline int FirstTrue(Vec<T> mask) {
  int bits = MoveMask(BitCast<Vsp8u>(mask));
  return bits ? __builtin_ctz(static_cast<unsigned>(bits)) / static_cast<int>(sizeof(T)) : -1;
}

// The lanes of a vector as an array, for the final fold of a reduction.
template <class T> struct Lanes {
  alignas(16) T v[kLanes<T>];
  explicit Lanes(Vec<T> a) { Store(a, v); }
};

}  // namespace vsp::simd
