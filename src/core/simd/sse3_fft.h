// Complex-vector operations of the transforms, built on the SSE3 layer. A complex vector
// CVec<T> is a Vec<T> read as interleaved (re, im) pairs: two complex floats or one complex
// double. Operations act on every pair alike, so a kernel written once serves both
// precisions; loads and stores of a single pair (Load1/Store1) serve the short strides where
// a whole vector of floats would span two rows of a transform.
#pragma once

#include "core/simd/sse3.h"

namespace vsp::simd {

// Complex values per vector.
template <class T> inline constexpr int kPairs = kLanes<T> / 2;

// One complex value into the low pair (the rest zero); the low pair out. Float pairs need only
// 4-byte alignment.
inline Vec<Vsp32f> Load1(const Vsp32f* p) {
  return {_mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(p))};
}
inline Vec<Vsp64f> Load1(const Vsp64f* p) { return {_mm_loadu_pd(p)}; }
inline void Store1(Vec<Vsp32f> v, Vsp32f* p) { _mm_storel_pi(reinterpret_cast<__m64*>(p), v.raw); }
inline void Store1(Vec<Vsp64f> v, Vsp64f* p) { _mm_storeu_pd(p, v.raw); }

// Two complex floats from two addresses: (p0[0], p1[0]).
inline Vec<Vsp32f> Load2(const Vsp32f* p0, const Vsp32f* p1) {
  __m128 v = _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(p0));
  return {_mm_loadh_pi(v, reinterpret_cast<const __m64*>(p1))};
}
// The vector with its low 8 bytes replaced by those at p (a merging load, no shuffle).
inline Vec<Vsp64f> InsertLow(Vec<Vsp64f> v, const Vsp64f* p) { return {_mm_loadl_pd(v.raw, p)}; }

// (a.pair0, b.pair0) and (a.pair1, b.pair1) of two complex-float vectors (2 x 2 transpose).
inline Vec<Vsp32f> PairsLo(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_movelh_ps(a.raw, b.raw)}; }
inline Vec<Vsp32f> PairsHi(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_movehl_ps(b.raw, a.raw)}; }

// a * conj(w) for each pair: (ar*wr + ai*wi, ai*wr - ar*wi), each product rounded, then one
// addition.
template <class T> inline Vec<T> MulComplexConj(Vec<T> a, Vec<T> w) {
  Vec<T> t1 = Mul(a, DupRe(w));
  Vec<T> t2 = Mul(SwapReIm(a), DupIm(w));
  return AddSub(t1, Neg(t2));
}
// a * w (kConj false) or a * conj(w) (kConj true).
template <bool kConj, class T> inline Vec<T> MulTwiddle(Vec<T> a, Vec<T> w) {
  if constexpr (kConj) return MulComplexConj(a, w);
  else return MulComplex(a, w);
}

namespace detail {
// Sign masks of the imaginary (odd) lanes and of the real (even) lanes.
template <class T> inline Vec<T> SignIm() {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_setr_ps(0.0f, -0.0f, 0.0f, -0.0f)};
  else return {_mm_setr_pd(0.0, -0.0)};
}
template <class T> inline Vec<T> SignRe() {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_setr_ps(-0.0f, 0.0f, -0.0f, 0.0f)};
  else return {_mm_setr_pd(-0.0, 0.0)};
}
}  // namespace detail

// a * (-i) = (im, -re) and a * i = (-im, re), exact.
template <class T> inline Vec<T> MulNegI(Vec<T> a) { return Xor(SwapReIm(a), detail::SignIm<T>()); }
template <class T> inline Vec<T> MulPosI(Vec<T> a) { return Xor(SwapReIm(a), detail::SignRe<T>()); }
// a * (-i) for the forward direction (kInv false), a * i for the inverse.
template <bool kInv, class T> inline Vec<T> MulRot(Vec<T> a) {
  if constexpr (kInv) return MulPosI(a);
  else return MulNegI(a);
}
// The complex values of a vector in reverse order (a no-op with one value per vector).
inline Vec<Vsp32f> ReversePairs(Vec<Vsp32f> a) { return {_mm_shuffle_ps(a.raw, a.raw, 0x4E)}; }
inline Vec<Vsp64f> ReversePairs(Vec<Vsp64f> a) { return a; }

// conj(a), exact.
template <class T> inline Vec<T> Conj(Vec<T> a) { return Xor(a, detail::SignIm<T>()); }

// Split form: the real parts of the pairs of a then b, and the imaginary parts; the inverse
// joins lanes of re and im into pairs (lo: the first half of the lanes, hi: the second).
inline Vec<Vsp32f> RealParts(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_shuffle_ps(a.raw, b.raw, 0x88)}; }
inline Vec<Vsp32f> ImagParts(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_shuffle_ps(a.raw, b.raw, 0xDD)}; }
inline Vec<Vsp64f> RealParts(Vec<Vsp64f> a, Vec<Vsp64f> b) { return InterleaveLo(a, b); }
inline Vec<Vsp64f> ImagParts(Vec<Vsp64f> a, Vec<Vsp64f> b) { return InterleaveHi(a, b); }

}  // namespace vsp::simd
