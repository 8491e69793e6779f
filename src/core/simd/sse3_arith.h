// Vector operations of the arithmetic kernels: exact widening products, saturating 32-bit sums,
// unsigned compares, saturating narrowing from wide lanes to every integer destination, and
// float-to-integer rounding that does not depend on the MXCSR rounding mode.
#pragma once

#include "core/simd/sse3.h"

namespace vsp::simd {

// The unsigned lane type of the same width.
template <class L> struct UnsignedLane { using Type = L; };
template <> struct UnsignedLane<Vsp16s> { using Type = Vsp16u; };
template <> struct UnsignedLane<Vsp32s> { using Type = Vsp32u; };
template <class L> using Unsigned = typename UnsignedLane<L>::Type;

// a > b with both lanes read as unsigned.
template <class L> inline Vec<L> GtU(Vec<L> a, Vec<L> b) {
  return BitCast<L>(Gt(BitCast<Unsigned<L>>(a), BitCast<Unsigned<L>>(b)));
}

// The 8 bytes at p in the low half, zeros in the high half.
template <class T> inline Vec<T> LoadHalf(const T* p) {
  return BitCast<T>(Vec<Vsp8u>{_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))});
}

// ---- exact products of 16-bit lanes as 32-bit lanes -------------------------------------------

// The eight products of a and b: lanes 0-3 in lo, lanes 4-7 in hi.
inline void MulWide(Vec<Vsp16s> a, Vec<Vsp16s> b, Vec<Vsp32s>& lo, Vec<Vsp32s>& hi) {
  Vec<Vsp16s> l = Mul(a, b), h = MulHi(a, b);
  lo = BitCast<Vsp32s>(InterleaveLo(l, h));
  hi = BitCast<Vsp32s>(InterleaveHi(l, h));
}
inline void MulWide(Vec<Vsp16u> a, Vec<Vsp16u> b, Vec<Vsp32u>& lo, Vec<Vsp32u>& hi) {
  Vec<Vsp16u> l = Mul(a, b), h = MulHi(a, b);
  lo = BitCast<Vsp32u>(InterleaveLo(l, h));
  hi = BitCast<Vsp32u>(InterleaveHi(l, h));
}
// Unsigned a times signed b: the signed high half plus b where a's top bit is set.
inline void MulWide(Vec<Vsp16u> a, Vec<Vsp16s> b, Vec<Vsp32s>& lo, Vec<Vsp32s>& hi) {
  Vec<Vsp16s> as = BitCast<Vsp16s>(a);
  Vec<Vsp16s> l = Mul(as, b);
  Vec<Vsp16s> h = Add(MulHi(as, b), And(ShiftRight<15>(as), b));
  lo = BitCast<Vsp32s>(InterleaveLo(l, h));
  hi = BitCast<Vsp32s>(InterleaveHi(l, h));
}

// Lanes 0 and 2 of a, then of b (the even lanes), and lanes 1 and 3 (the odd lanes).
inline Vec<Vsp32s> EvenLanes(Vec<Vsp32s> a, Vec<Vsp32s> b) {
  return BitCast<Vsp32s>(Vec<Vsp32f>{_mm_shuffle_ps(_mm_castsi128_ps(a.raw), _mm_castsi128_ps(b.raw), 0x88)});
}
inline Vec<Vsp32s> OddLanes(Vec<Vsp32s> a, Vec<Vsp32s> b) {
  return BitCast<Vsp32s>(Vec<Vsp32f>{_mm_shuffle_ps(_mm_castsi128_ps(a.raw), _mm_castsi128_ps(b.raw), 0xDD)});
}

// ---- exact products of 32-bit lanes as 64-bit lanes -------------------------------------------

// The four signed products of a and b: lanes 0 and 2 in even, lanes 1 and 3 in odd. The unsigned
// products less 2^32 * (b where a < 0, plus a where b < 0), modulo 2^64.
inline void MulWide(Vec<Vsp32s> a, Vec<Vsp32s> b, Vec<Vsp64s>& even, Vec<Vsp64s>& odd) {
  __m128i t = _mm_add_epi32(_mm_and_si128(_mm_srai_epi32(a.raw, 31), b.raw), _mm_and_si128(_mm_srai_epi32(b.raw, 31), a.raw));
  __m128i pe = _mm_mul_epu32(a.raw, b.raw);
  __m128i po = _mm_mul_epu32(_mm_srli_epi64(a.raw, 32), _mm_srli_epi64(b.raw, 32));
  even = {_mm_sub_epi64(pe, _mm_slli_epi64(t, 32))};
  odd = {_mm_sub_epi64(po, _mm_and_si128(t, _mm_set_epi32(-1, 0, -1, 0)))};
}
// x >> s for signed 64-bit lanes (flooring), 1 <= s <= 63.
inline Vec<Vsp64s> ShiftRightArith(Vec<Vsp64s> x, int s) {
  __m128i sign = _mm_shuffle_epi32(_mm_srai_epi32(x.raw, 31), 0xF5);
  return {_mm_or_si128(_mm_srl_epi64(x.raw, _mm_cvtsi32_si128(s)), _mm_sll_epi64(sign, _mm_cvtsi32_si128(64 - s)))};
}
// Bit s of every 64-bit lane, as 0 or 1.
inline Vec<Vsp64s> BitAt(Vec<Vsp64s> x, int s) {
  return {_mm_and_si128(_mm_srl_epi64(x.raw, _mm_cvtsi32_si128(s)), _mm_set1_epi64x(1))};
}
// Signed 64-bit lanes saturated to 32 bits: even holds lanes 0 and 2, odd lanes 1 and 3.
inline Vec<Vsp32s> NarrowSat32s(Vec<Vsp64s> even, Vec<Vsp64s> odd) {
  __m128 e = _mm_castsi128_ps(even.raw), o = _mm_castsi128_ps(odd.raw);
  __m128i lo = _mm_shuffle_epi32(_mm_castps_si128(_mm_shuffle_ps(e, o, 0x88)), 0xD8);
  __m128i hi = _mm_shuffle_epi32(_mm_castps_si128(_mm_shuffle_ps(e, o, 0xDD)), 0xD8);
  __m128i fits = _mm_cmpeq_epi32(hi, _mm_srai_epi32(lo, 31));
  __m128i limit = _mm_xor_si128(_mm_srai_epi32(hi, 31), _mm_set1_epi32(0x7FFFFFFF));
  return {_mm_or_si128(_mm_and_si128(fits, lo), _mm_andnot_si128(fits, limit))};
}

// ---- 32-bit sums without overflow -------------------------------------------------------------

// a + b and a - b saturated to the 32-bit range.
inline Vec<Vsp32s> AddSat(Vec<Vsp32s> a, Vec<Vsp32s> b) {
  Vec<Vsp32s> s = Add(a, b);
  Vec<Vsp32s> overflow = ShiftRight<31>(AndNot(Xor(a, b), Xor(a, s)));  // same signs in, other out
  Vec<Vsp32s> limit = Xor(ShiftRight<31>(a), Set1<Vsp32s>(0x7FFFFFFF));
  return Select(overflow, limit, s);
}
inline Vec<Vsp32s> SubSat(Vec<Vsp32s> a, Vec<Vsp32s> b) {
  Vec<Vsp32s> s = Sub(a, b);
  Vec<Vsp32s> overflow = ShiftRight<31>(And(Xor(a, b), Xor(a, s)));  // other signs in, b's out
  Vec<Vsp32s> limit = Xor(ShiftRight<31>(a), Set1<Vsp32s>(0x7FFFFFFF));
  return Select(overflow, limit, s);
}
inline Vec<Vsp32u> AddSat(Vec<Vsp32u> a, Vec<Vsp32u> b) {
  Vec<Vsp32u> s = Add(a, b);
  return Or(s, Gt(a, s));  // a carry out sets every bit
}
// floor((a + b) / 2) and floor((a - b) / 2), exact for every pair of 32-bit lanes.
inline Vec<Vsp32s> HalfSum(Vec<Vsp32s> a, Vec<Vsp32s> b) {
  return Add(Add(ShiftRight<1>(a), ShiftRight<1>(b)), And(And(a, b), Set1<Vsp32s>(1)));
}
inline Vec<Vsp32s> HalfDiff(Vec<Vsp32s> a, Vec<Vsp32s> b) {
  return Sub(Sub(ShiftRight<1>(a), ShiftRight<1>(b)), And(AndNot(a, b), Set1<Vsp32s>(1)));
}

// ---- saturating narrowing from wide lanes ------------------------------------------------------

// Lanes of L saturated to D and packed, lanes of the first vector first. Unsigned lanes are
// first limited to D's maximum, since the packing instructions read their input as signed.
inline Vec<Vsp16s> NarrowTo(Vsp16s, Vec<Vsp32s> a, Vec<Vsp32s> b) { return NarrowSat16s(a, b); }
inline Vec<Vsp16u> NarrowTo(Vsp16u, Vec<Vsp32s> a, Vec<Vsp32s> b) { return NarrowSat16u(a, b); }
inline Vec<Vsp16u> NarrowTo(Vsp16u, Vec<Vsp32u> a, Vec<Vsp32u> b) {
  const Vec<Vsp32u> m = Set1<Vsp32u>(65535);
  return NarrowSat16u(BitCast<Vsp32s>(Min(a, m)), BitCast<Vsp32s>(Min(b, m)));
}
inline Vec<Vsp8u> NarrowTo(Vsp8u, Vec<Vsp16s> a, Vec<Vsp16s> b) { return NarrowSat8u(a, b); }
inline Vec<Vsp8u> NarrowTo(Vsp8u, Vec<Vsp16u> a, Vec<Vsp16u> b) {
  const Vec<Vsp16u> m = Set1<Vsp16u>(255);
  return NarrowSat8u(BitCast<Vsp16s>(Min(a, m)), BitCast<Vsp16s>(Min(b, m)));
}
inline Vec<Vsp8u> NarrowTo(Vsp8u, Vec<Vsp32s> a, Vec<Vsp32s> b, Vec<Vsp32s> c, Vec<Vsp32s> d) {
  return NarrowSat8u(NarrowSat16s(a, b), NarrowSat16s(c, d));
}

// ---- rounding of floats to integers ------------------------------------------------------------

// round(x) to nearest, ties to even, for |x| < 2^31, whatever the MXCSR rounding mode: the
// truncation is exact, so is the fraction x - trunc(x), and the fraction decides.
inline Vec<Vsp32s> RoundEvenToInt(Vec<Vsp32f> x) {
  Vec<Vsp32s> t = ConvertTrunc(x);
  Vec<Vsp32f> f = Sub(x, ConvertToFloat(t));
  const Vec<Vsp32f> half = Set1<Vsp32f>(0.5f), mhalf = Set1<Vsp32f>(-0.5f);
  Vec<Vsp32s> odd = Sub(Zero<Vsp32s>(), And(t, Set1<Vsp32s>(1)));
  Vec<Vsp32s> up = Or(BitCast<Vsp32s>(Gt(f, half)), And(BitCast<Vsp32s>(Eq(f, half)), odd));
  Vec<Vsp32s> down = Or(BitCast<Vsp32s>(Lt(f, mhalf)), And(BitCast<Vsp32s>(Eq(f, mhalf)), odd));
  return Add(Sub(t, up), down);  // masks are -1 where true
}

}  // namespace vsp::simd
