// The SSE3 vector layer: one 16-byte vector type per element type and the operations the
// kernels are written with. Kernels never use intrinsics directly; everything that SSE3 lacks
// (pmulld, pminsd, pminuw, blendv, packusdw, 64-bit compares) is emulated here, once.
//
// Vec<T> holds 16 / sizeof(T) lanes of T. Operations are free functions overloaded on Vec<T>;
// where a result differs from the obvious scalar formula (NaN handling of Min/Max, rounding of
// conversions) the function says so, because kernels must give the same bits as their scalar
// head and tail.
#pragma once

#include <pmmintrin.h>

#include <cstring>
#include <type_traits>

#include "vsp.h"

namespace vsp::simd {

template <class T> struct Vec;
template <> struct Vec<Vsp32f> { __m128 raw; };
template <> struct Vec<Vsp64f> { __m128d raw; };
template <> struct Vec<Vsp8u> { __m128i raw; };
template <> struct Vec<Vsp8s> { __m128i raw; };
template <> struct Vec<Vsp16u> { __m128i raw; };
template <> struct Vec<Vsp16s> { __m128i raw; };
template <> struct Vec<Vsp32u> { __m128i raw; };
template <> struct Vec<Vsp32s> { __m128i raw; };
template <> struct Vec<Vsp64u> { __m128i raw; };
template <> struct Vec<Vsp64s> { __m128i raw; };

// The vector width of this layer in bytes, and the lanes of T in one vector. Kernels size their
// steps, alignment and scratch arrays by these names only; a layer for a wider instruction set
// changes them here.
inline constexpr int kVecBytes = 16;
template <class T> inline constexpr int kLanes = kVecBytes / static_cast<int>(sizeof(T));
template <class T> inline constexpr bool kIsFloat = std::is_floating_point_v<T>;
template <class T> inline constexpr bool kIsInt = std::is_integral_v<T>;

// ---- load, store, broadcast -------------------------------------------------------------

template <class T> inline Vec<T> LoadU(const T* p) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_loadu_ps(p)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_loadu_pd(p)};
  else return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
}
// p must be 16-byte aligned.
template <class T> inline Vec<T> Load(const T* p) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_load_ps(p)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_load_pd(p)};
  else return {_mm_load_si128(reinterpret_cast<const __m128i*>(p))};
}
template <class T> inline void StoreU(Vec<T> v, T* p) {
  if constexpr (std::is_same_v<T, Vsp32f>) _mm_storeu_ps(p, v.raw);
  else if constexpr (std::is_same_v<T, Vsp64f>) _mm_storeu_pd(p, v.raw);
  else _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v.raw);
}
// p must be 16-byte aligned.
template <class T> inline void Store(Vec<T> v, T* p) {
  if constexpr (std::is_same_v<T, Vsp32f>) _mm_store_ps(p, v.raw);
  else if constexpr (std::is_same_v<T, Vsp64f>) _mm_store_pd(p, v.raw);
  else _mm_store_si128(reinterpret_cast<__m128i*>(p), v.raw);
}
// Non-temporal store (bypasses the caches); p must be 16-byte aligned.
template <class T> inline void StoreStream(Vec<T> v, T* p) {
  if constexpr (std::is_same_v<T, Vsp32f>) _mm_stream_ps(p, v.raw);
  else if constexpr (std::is_same_v<T, Vsp64f>) _mm_stream_pd(p, v.raw);
  else _mm_stream_si128(reinterpret_cast<__m128i*>(p), v.raw);
}

// Orders the non-temporal stores before every later store (after a loop of StoreStream).
inline void StoreFence() { _mm_sfence(); }

template <class T> inline Vec<T> Set1(T x) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_set1_ps(x)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_set1_pd(x)};
  else if constexpr (sizeof(T) == 1) return {_mm_set1_epi8(static_cast<char>(x))};
  else if constexpr (sizeof(T) == 2) return {_mm_set1_epi16(static_cast<short>(x))};
  else if constexpr (sizeof(T) == 4) return {_mm_set1_epi32(static_cast<int>(x))};
  else return {_mm_set1_epi64x(static_cast<long long>(x))};
}
template <class T> inline Vec<T> Zero() {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_setzero_ps()};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_setzero_pd()};
  else return {_mm_setzero_si128()};
}

// Reinterprets the 16 bytes as another lane type.
template <class To, class From> inline Vec<To> BitCast(Vec<From> v) {
  __m128i bits;
  if constexpr (std::is_same_v<From, Vsp32f>) bits = _mm_castps_si128(v.raw);
  else if constexpr (std::is_same_v<From, Vsp64f>) bits = _mm_castpd_si128(v.raw);
  else bits = v.raw;
  if constexpr (std::is_same_v<To, Vsp32f>) return {_mm_castsi128_ps(bits)};
  else if constexpr (std::is_same_v<To, Vsp64f>) return {_mm_castsi128_pd(bits)};
  else return {bits};
}

// Lane 0 of a vector.
inline Vsp32f GetLane0(Vec<Vsp32f> v) { return _mm_cvtss_f32(v.raw); }
inline Vsp64f GetLane0(Vec<Vsp64f> v) { return _mm_cvtsd_f64(v.raw); }
template <class T> inline T GetLane0(Vec<T> v) {
  static_assert(std::is_integral_v<T>);
  if constexpr (sizeof(T) == 8) return static_cast<T>(_mm_cvtsi128_si64(v.raw));
  else return static_cast<T>(_mm_cvtsi128_si32(v.raw));
}

// The value as it stands, held in a register: no instruction is emitted, but the compiler may no
// longer recompute it (a loaded value used twice is then copied, not loaded twice, which spares
// the load ports of kernels that are bound by them).
template <class T> inline Vec<T> Pin(Vec<T> v) {
  __asm__("" : "+x"(v.raw));
  return v;
}

// ---- bitwise ------------------------------------------------------------------------------

namespace detail {
template <class T> inline __m128i Bits(Vec<T> v) { return BitCast<Vsp8u>(v).raw; }
template <class T> inline Vec<T> FromBits(__m128i b) { return BitCast<T>(Vec<Vsp8u>{b}); }
}  // namespace detail

template <class T> inline Vec<T> And(Vec<T> a, Vec<T> b) {
  return detail::FromBits<T>(_mm_and_si128(detail::Bits(a), detail::Bits(b)));
}
template <class T> inline Vec<T> Or(Vec<T> a, Vec<T> b) {
  return detail::FromBits<T>(_mm_or_si128(detail::Bits(a), detail::Bits(b)));
}
template <class T> inline Vec<T> Xor(Vec<T> a, Vec<T> b) {
  return detail::FromBits<T>(_mm_xor_si128(detail::Bits(a), detail::Bits(b)));
}
// (~notThis) & b
template <class T> inline Vec<T> AndNot(Vec<T> notThis, Vec<T> b) {
  return detail::FromBits<T>(_mm_andnot_si128(detail::Bits(notThis), detail::Bits(b)));
}
template <class T> inline Vec<T> Not(Vec<T> a) {
  return detail::FromBits<T>(_mm_xor_si128(detail::Bits(a), _mm_set1_epi32(-1)));
}
// mask ? a : b, lane by lane; mask lanes must be all ones or all zeros.
template <class T> inline Vec<T> Select(Vec<T> mask, Vec<T> a, Vec<T> b) {
  return Or(And(mask, a), AndNot(mask, b));
}

// ---- arithmetic ---------------------------------------------------------------------------

template <class T> inline Vec<T> Add(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_add_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_add_pd(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 1) return {_mm_add_epi8(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 2) return {_mm_add_epi16(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 4) return {_mm_add_epi32(a.raw, b.raw)};
  else return {_mm_add_epi64(a.raw, b.raw)};
}
template <class T> inline Vec<T> Sub(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_sub_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_sub_pd(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 1) return {_mm_sub_epi8(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 2) return {_mm_sub_epi16(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 4) return {_mm_sub_epi32(a.raw, b.raw)};
  else return {_mm_sub_epi64(a.raw, b.raw)};
}
// Float and double products; for integers the low half of the product (wrapping).
template <class T> inline Vec<T> Mul(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_mul_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_mul_pd(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 2) return {_mm_mullo_epi16(a.raw, b.raw)};
  else {
    static_assert(sizeof(T) == 4, "Mul: 16-, 32-bit integers and floats");
    __m128i even = _mm_mul_epu32(a.raw, b.raw);
    __m128i odd = _mm_mul_epu32(_mm_srli_epi64(a.raw, 32), _mm_srli_epi64(b.raw, 32));
    return {_mm_unpacklo_epi32(_mm_shuffle_epi32(even, 0x08), _mm_shuffle_epi32(odd, 0x08))};
  }
}
// High 16 bits of the 32-bit products of 16-bit lanes.
inline Vec<Vsp16s> MulHi(Vec<Vsp16s> a, Vec<Vsp16s> b) { return {_mm_mulhi_epi16(a.raw, b.raw)}; }
inline Vec<Vsp16u> MulHi(Vec<Vsp16u> a, Vec<Vsp16u> b) { return {_mm_mulhi_epu16(a.raw, b.raw)}; }
// Sums of adjacent 16-bit products as 32-bit lanes (pmaddwd).
inline Vec<Vsp32s> MulAddPairs(Vec<Vsp16s> a, Vec<Vsp16s> b) { return {_mm_madd_epi16(a.raw, b.raw)}; }

inline Vec<Vsp32f> Div(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_div_ps(a.raw, b.raw)}; }
inline Vec<Vsp64f> Div(Vec<Vsp64f> a, Vec<Vsp64f> b) { return {_mm_div_pd(a.raw, b.raw)}; }
inline Vec<Vsp32f> Sqrt(Vec<Vsp32f> a) { return {_mm_sqrt_ps(a.raw)}; }
inline Vec<Vsp64f> Sqrt(Vec<Vsp64f> a) { return {_mm_sqrt_pd(a.raw)}; }
// Hardware estimate (relative error below 1.5 * 2^-12).
inline Vec<Vsp32f> ApproxRecip(Vec<Vsp32f> a) { return {_mm_rcp_ps(a.raw)}; }

template <class T> inline Vec<T> Neg(Vec<T> a) {
  if constexpr (kIsFloat<T>) return Xor(a, Set1<T>(T(-0.0)));
  else return Sub(Zero<T>(), a);
}

// Saturating add and subtract of 8- and 16-bit lanes.
template <class T> inline Vec<T> AddSat(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp8u>) return {_mm_adds_epu8(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp8s>) return {_mm_adds_epi8(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp16u>) return {_mm_adds_epu16(a.raw, b.raw)};
  else {
    static_assert(std::is_same_v<T, Vsp16s>, "AddSat: 8- and 16-bit lanes");
    return {_mm_adds_epi16(a.raw, b.raw)};
  }
}
template <class T> inline Vec<T> SubSat(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp8u>) return {_mm_subs_epu8(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp8s>) return {_mm_subs_epi8(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp16u>) return {_mm_subs_epu16(a.raw, b.raw)};
  else {
    static_assert(std::is_same_v<T, Vsp16s>, "SubSat: 8- and 16-bit lanes");
    return {_mm_subs_epi16(a.raw, b.raw)};
  }
}

// ---- shifts -------------------------------------------------------------------------------

// Shift of every lane by a count in 0 .. bits - 1; right shifts are arithmetic for signed
// lanes and logical for unsigned ones. 8-bit lanes are not shiftable here (SSE has no such
// instruction); use 16-bit lanes and masks.
template <class T> inline Vec<T> ShiftLeft(Vec<T> a, int count) {
  __m128i c = _mm_cvtsi32_si128(count);
  if constexpr (sizeof(T) == 2) return {_mm_sll_epi16(a.raw, c)};
  else if constexpr (sizeof(T) == 4) return {_mm_sll_epi32(a.raw, c)};
  else return {_mm_sll_epi64(a.raw, c)};
}
template <class T> inline Vec<T> ShiftRight(Vec<T> a, int count) {
  __m128i c = _mm_cvtsi32_si128(count);
  if constexpr (std::is_same_v<T, Vsp16s>) return {_mm_sra_epi16(a.raw, c)};
  else if constexpr (std::is_same_v<T, Vsp32s>) return {_mm_sra_epi32(a.raw, c)};
  else if constexpr (sizeof(T) == 2) return {_mm_srl_epi16(a.raw, c)};
  else if constexpr (sizeof(T) == 4) return {_mm_srl_epi32(a.raw, c)};
  else {
    static_assert(std::is_same_v<T, Vsp64u>, "ShiftRight: no arithmetic 64-bit shift in SSE");
    return {_mm_srl_epi64(a.raw, c)};
  }
}
template <int kCount, class T> inline Vec<T> ShiftLeft(Vec<T> a) {
  if constexpr (sizeof(T) == 2) return {_mm_slli_epi16(a.raw, kCount)};
  else if constexpr (sizeof(T) == 4) return {_mm_slli_epi32(a.raw, kCount)};
  else return {_mm_slli_epi64(a.raw, kCount)};
}
template <int kCount, class T> inline Vec<T> ShiftRight(Vec<T> a) {
  if constexpr (std::is_same_v<T, Vsp16s>) return {_mm_srai_epi16(a.raw, kCount)};
  else if constexpr (std::is_same_v<T, Vsp32s>) return {_mm_srai_epi32(a.raw, kCount)};
  else if constexpr (sizeof(T) == 2) return {_mm_srli_epi16(a.raw, kCount)};
  else if constexpr (sizeof(T) == 4) return {_mm_srli_epi32(a.raw, kCount)};
  else {
    static_assert(std::is_same_v<T, Vsp64u>, "ShiftRight: no arithmetic 64-bit shift in SSE");
    return {_mm_srli_epi64(a.raw, kCount)};
  }
}
// Whole-register byte shifts (toward higher or lower addresses).
template <int kBytes, class T> inline Vec<T> ShiftBytesUp(Vec<T> a) {
  return detail::FromBits<T>(_mm_slli_si128(detail::Bits(a), kBytes));
}
template <int kBytes, class T> inline Vec<T> ShiftBytesDown(Vec<T> a) {
  return detail::FromBits<T>(_mm_srli_si128(detail::Bits(a), kBytes));
}

// ---- comparisons: lanes of all ones where true -----------------------------------------------

namespace detail {
template <class T> inline __m128i SignBias() {
  if constexpr (sizeof(T) == 1) return _mm_set1_epi8(static_cast<char>(0x80));
  else if constexpr (sizeof(T) == 2) return _mm_set1_epi16(static_cast<short>(0x8000));
  else return _mm_set1_epi32(static_cast<int>(0x80000000u));
}
}  // namespace detail

template <class T> inline Vec<T> Eq(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_cmpeq_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_cmpeq_pd(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 1) return {_mm_cmpeq_epi8(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 2) return {_mm_cmpeq_epi16(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 4) return {_mm_cmpeq_epi32(a.raw, b.raw)};
  else {
    __m128i e = _mm_cmpeq_epi32(a.raw, b.raw);
    return {_mm_and_si128(e, _mm_shuffle_epi32(e, 0xB1))};
  }
}
// a > b. Float compares are ordered: false when either lane is NaN.
template <class T> inline Vec<T> Gt(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_cmpgt_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_cmpgt_pd(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp8s>) return {_mm_cmpgt_epi8(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp16s>) return {_mm_cmpgt_epi16(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp32s>) return {_mm_cmpgt_epi32(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp8u>) {
    __m128i s = detail::SignBias<T>();
    return {_mm_cmpgt_epi8(_mm_xor_si128(a.raw, s), _mm_xor_si128(b.raw, s))};
  } else if constexpr (std::is_same_v<T, Vsp16u>) {
    __m128i s = detail::SignBias<T>();
    return {_mm_cmpgt_epi16(_mm_xor_si128(a.raw, s), _mm_xor_si128(b.raw, s))};
  } else {
    static_assert(std::is_same_v<T, Vsp32u>, "Gt: no 64-bit compare in SSE3");
    __m128i s = detail::SignBias<T>();
    return {_mm_cmpgt_epi32(_mm_xor_si128(a.raw, s), _mm_xor_si128(b.raw, s))};
  }
}
template <class T> inline Vec<T> Lt(Vec<T> a, Vec<T> b) { return Gt(b, a); }
// a >= b and a <= b; for floats ordered (false with NaN), for integers the negation of < / >.
template <class T> inline Vec<T> Ge(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_cmpge_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_cmpge_pd(a.raw, b.raw)};
  else return Not(Gt(b, a));
}
template <class T> inline Vec<T> Le(Vec<T> a, Vec<T> b) { return Ge(b, a); }
// !(a < b): true where a >= b and where either lane is NaN.
inline Vec<Vsp32f> NotLt(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_cmpnlt_ps(a.raw, b.raw)}; }
inline Vec<Vsp64f> NotLt(Vec<Vsp64f> a, Vec<Vsp64f> b) { return {_mm_cmpnlt_pd(a.raw, b.raw)}; }
// True where either lane is NaN.
inline Vec<Vsp32f> Unordered(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_cmpunord_ps(a.raw, b.raw)}; }
inline Vec<Vsp64f> Unordered(Vec<Vsp64f> a, Vec<Vsp64f> b) { return {_mm_cmpunord_pd(a.raw, b.raw)}; }

// Bit i of the result is the top bit of byte lane i (or of float/double lane i).
template <class T> inline int MoveMask(Vec<T> a) {
  if constexpr (std::is_same_v<T, Vsp32f>) return _mm_movemask_ps(a.raw);
  else if constexpr (std::is_same_v<T, Vsp64f>) return _mm_movemask_pd(a.raw);
  else return _mm_movemask_epi8(a.raw);
}
template <class T> inline bool AnyTrue(Vec<T> mask) { return MoveMask(BitCast<Vsp8u>(mask)) != 0; }

// ---- min, max, abs ----------------------------------------------------------------------------

// For floats Min(a, b) is a < b ? a : b and Max(a, b) is a > b ? a : b, lane by lane, so a
// NaN in either lane yields b (the SSE rule); scalar code must use the same expression.
template <class T> inline Vec<T> Min(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_min_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_min_pd(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp8u>) return {_mm_min_epu8(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp16s>) return {_mm_min_epi16(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp16u>) {
    __m128i s = detail::SignBias<T>();
    return {_mm_xor_si128(_mm_min_epi16(_mm_xor_si128(a.raw, s), _mm_xor_si128(b.raw, s)), s)};
  } else if constexpr (std::is_same_v<T, Vsp8s>) {
    __m128i s = detail::SignBias<T>();
    return {_mm_xor_si128(_mm_min_epu8(_mm_xor_si128(a.raw, s), _mm_xor_si128(b.raw, s)), s)};
  } else return Select(Gt(a, b), b, a);
}
template <class T> inline Vec<T> Max(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_max_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_max_pd(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp8u>) return {_mm_max_epu8(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp16s>) return {_mm_max_epi16(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp16u>) {
    __m128i s = detail::SignBias<T>();
    return {_mm_xor_si128(_mm_max_epi16(_mm_xor_si128(a.raw, s), _mm_xor_si128(b.raw, s)), s)};
  } else if constexpr (std::is_same_v<T, Vsp8s>) {
    __m128i s = detail::SignBias<T>();
    return {_mm_xor_si128(_mm_max_epu8(_mm_xor_si128(a.raw, s), _mm_xor_si128(b.raw, s)), s)};
  } else return Select(Gt(a, b), a, b);
}
// |a|: the sign bit cleared for floats; for signed integers the wrapping absolute value
// (the most negative value stays as it is).
template <class T> inline Vec<T> Abs(Vec<T> a) {
  if constexpr (kIsFloat<T>) return AndNot(Set1<T>(T(-0.0)), a);
  else if constexpr (std::is_same_v<T, Vsp8s>) {
    Vec<T> s = Gt(Zero<T>(), a);
    return Sub(Xor(a, s), s);
  } else {
    static_assert(std::is_same_v<T, Vsp16s> || std::is_same_v<T, Vsp32s>, "Abs: signed lanes");
    Vec<T> s = ShiftRight<sizeof(T) * 8 - 1>(a);
    return Sub(Xor(a, s), s);
  }
}

// ---- widening and narrowing -----------------------------------------------------------------

// Interleave the low (high) halves of two vectors: a0 b0 a1 b1 ...
template <class T> inline Vec<T> InterleaveLo(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_unpacklo_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_unpacklo_pd(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 1) return {_mm_unpacklo_epi8(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 2) return {_mm_unpacklo_epi16(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 4) return {_mm_unpacklo_epi32(a.raw, b.raw)};
  else return {_mm_unpacklo_epi64(a.raw, b.raw)};
}
template <class T> inline Vec<T> InterleaveHi(Vec<T> a, Vec<T> b) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_unpackhi_ps(a.raw, b.raw)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_unpackhi_pd(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 1) return {_mm_unpackhi_epi8(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 2) return {_mm_unpackhi_epi16(a.raw, b.raw)};
  else if constexpr (sizeof(T) == 4) return {_mm_unpackhi_epi32(a.raw, b.raw)};
  else return {_mm_unpackhi_epi64(a.raw, b.raw)};
}

// The wider lane type of each integer lane type.
template <class T> struct WiderLane;
template <> struct WiderLane<Vsp8u> { using Type = Vsp16u; };
template <> struct WiderLane<Vsp8s> { using Type = Vsp16s; };
template <> struct WiderLane<Vsp16u> { using Type = Vsp32u; };
template <> struct WiderLane<Vsp16s> { using Type = Vsp32s; };
template <> struct WiderLane<Vsp32u> { using Type = Vsp64u; };
template <> struct WiderLane<Vsp32s> { using Type = Vsp64s; };
template <class T> using Wider = typename WiderLane<T>::Type;

// The lower (upper) half of the lanes, each widened exactly (sign- or zero-extended).
template <class T> inline Vec<Wider<T>> PromoteLo(Vec<T> a) {
  __m128i ext = std::is_signed_v<T> ? Gt(Zero<T>(), a).raw : _mm_setzero_si128();
  return {InterleaveLo(a, Vec<T>{ext}).raw};
}
template <class T> inline Vec<Wider<T>> PromoteHi(Vec<T> a) {
  __m128i ext = std::is_signed_v<T> ? Gt(Zero<T>(), a).raw : _mm_setzero_si128();
  return {InterleaveHi(a, Vec<T>{ext}).raw};
}
inline Vec<Vsp64f> PromoteLo(Vec<Vsp32f> a) { return {_mm_cvtps_pd(a.raw)}; }
inline Vec<Vsp64f> PromoteHi(Vec<Vsp32f> a) { return {_mm_cvtps_pd(_mm_movehl_ps(a.raw, a.raw))}; }

// Saturating narrowing of two vectors into one: lanes of a first, then of b.
inline Vec<Vsp16s> NarrowSat16s(Vec<Vsp32s> a, Vec<Vsp32s> b) { return {_mm_packs_epi32(a.raw, b.raw)}; }
inline Vec<Vsp8u> NarrowSat8u(Vec<Vsp16s> a, Vec<Vsp16s> b) { return {_mm_packus_epi16(a.raw, b.raw)}; }
inline Vec<Vsp8s> NarrowSat8s(Vec<Vsp16s> a, Vec<Vsp16s> b) { return {_mm_packs_epi16(a.raw, b.raw)}; }
inline Vec<Vsp16u> NarrowSat16u(Vec<Vsp32s> a, Vec<Vsp32s> b) {
  // SSE3 has no packusdw: negative lanes become 0, then bias into the signed range (no lane can
  // wrap any more), pack with signed saturation and unbias.
  const __m128i bias = _mm_set1_epi32(32768);
  const __m128i bias16 = _mm_set1_epi16(static_cast<short>(0x8000));
  const __m128i zero = _mm_setzero_si128();
  __m128i pa = _mm_andnot_si128(_mm_cmpgt_epi32(zero, a.raw), a.raw);
  __m128i pb = _mm_andnot_si128(_mm_cmpgt_epi32(zero, b.raw), b.raw);
  __m128i p = _mm_packs_epi32(_mm_sub_epi32(pa, bias), _mm_sub_epi32(pb, bias));
  return {_mm_xor_si128(p, bias16)};
}
// Two double vectors rounded to floats (current rounding mode): a in lanes 0-1, b in 2-3.
inline Vec<Vsp32f> Demote(Vec<Vsp64f> a, Vec<Vsp64f> b) {
  return {_mm_movelh_ps(_mm_cvtpd_ps(a.raw), _mm_cvtpd_ps(b.raw))};
}

// int32 -> float (rounded in the current mode); float -> int32 rounded in the current mode
// or truncated. Out-of-range and NaN lanes give 0x80000000.
inline Vec<Vsp32f> ConvertToFloat(Vec<Vsp32s> a) { return {_mm_cvtepi32_ps(a.raw)}; }
inline Vec<Vsp32s> ConvertRound(Vec<Vsp32f> a) { return {_mm_cvtps_epi32(a.raw)}; }
inline Vec<Vsp32s> ConvertTrunc(Vec<Vsp32f> a) { return {_mm_cvttps_epi32(a.raw)}; }
// The low two int32 lanes to double (exact); two doubles to int32 in lanes 0-1 (lanes 2-3 zero).
inline Vec<Vsp64f> ConvertLoToDouble(Vec<Vsp32s> a) { return {_mm_cvtepi32_pd(a.raw)}; }
inline Vec<Vsp32s> ConvertRound(Vec<Vsp64f> a) { return {_mm_cvtpd_epi32(a.raw)}; }
inline Vec<Vsp32s> ConvertTrunc(Vec<Vsp64f> a) { return {_mm_cvttpd_epi32(a.raw)}; }

// ---- lane order -------------------------------------------------------------------------------

// Lanes in reverse order.
// Each pair of 16-bit lanes exchanged (re, im -> im, re).
inline Vec<Vsp16s> SwapPairs(Vec<Vsp16s> a) {
  return {_mm_shufflehi_epi16(_mm_shufflelo_epi16(a.raw, 0xB1), 0xB1)};
}

template <class T> inline Vec<T> Reverse(Vec<T> a) {
  if constexpr (std::is_same_v<T, Vsp32f>) return {_mm_shuffle_ps(a.raw, a.raw, 0x1B)};
  else if constexpr (std::is_same_v<T, Vsp64f>) return {_mm_shuffle_pd(a.raw, a.raw, 1)};
  else if constexpr (sizeof(T) == 8) return {_mm_shuffle_epi32(a.raw, 0x4E)};
  else if constexpr (sizeof(T) == 4) return {_mm_shuffle_epi32(a.raw, 0x1B)};
  else if constexpr (sizeof(T) == 2) {
    __m128i w = _mm_shufflelo_epi16(_mm_shufflehi_epi16(a.raw, 0x1B), 0x1B);
    return {_mm_shuffle_epi32(w, 0x4E)};
  } else {
    // Swap the bytes of each 16-bit word, then reverse the words.
    __m128i sw = _mm_or_si128(_mm_slli_epi16(a.raw, 8), _mm_srli_epi16(a.raw, 8));
    return BitCast<T>(Reverse(Vec<Vsp16u>{sw}));
  }
}
// Reverses the bytes inside each lane (byte swap).
template <class T> inline Vec<T> ReverseBytesInLanes(Vec<T> a) {
  static_assert(kIsInt<T> && sizeof(T) >= 2, "byte swap of 16-, 32- and 64-bit lanes");
  __m128i w = a.raw;
  if constexpr (sizeof(T) >= 4) w = _mm_shufflehi_epi16(_mm_shufflelo_epi16(w, 0xB1), 0xB1);
  if constexpr (sizeof(T) == 8) w = _mm_shuffle_epi32(w, 0xB1);
  return {_mm_or_si128(_mm_slli_epi16(w, 8), _mm_srli_epi16(w, 8))};
}

// ---- horizontal ----------------------------------------------------------------------------

// Sum of the lanes: ((l0 + l1) + (l2 + l3)) for floats.
inline Vsp32f ReduceSum(Vec<Vsp32f> a) {
  __m128 h = _mm_hadd_ps(a.raw, a.raw);
  return _mm_cvtss_f32(_mm_hadd_ps(h, h));
}
inline Vsp64f ReduceSum(Vec<Vsp64f> a) { return _mm_cvtsd_f64(_mm_hadd_pd(a.raw, a.raw)); }
// Sums of adjacent lanes of two vectors: (a0 + a1, b0 + b1) for doubles,
// (a0 + a1, a2 + a3, b0 + b1, b2 + b3) for floats.
inline Vec<Vsp64f> PairSums(Vec<Vsp64f> a, Vec<Vsp64f> b) { return {_mm_hadd_pd(a.raw, b.raw)}; }
inline Vec<Vsp32f> PairSums(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_hadd_ps(a.raw, b.raw)}; }

// ---- complex (interleaved re, im pairs) -------------------------------------------------------

// (re, im) pairs with re and im exchanged.
inline Vec<Vsp32f> SwapReIm(Vec<Vsp32f> a) { return {_mm_shuffle_ps(a.raw, a.raw, 0xB1)}; }
inline Vec<Vsp64f> SwapReIm(Vec<Vsp64f> a) { return {_mm_shuffle_pd(a.raw, a.raw, 1)}; }
// Each re copied into its im lane, and each im into its re lane.
inline Vec<Vsp32f> DupRe(Vec<Vsp32f> a) { return {_mm_moveldup_ps(a.raw)}; }
inline Vec<Vsp32f> DupIm(Vec<Vsp32f> a) { return {_mm_movehdup_ps(a.raw)}; }
inline Vec<Vsp64f> DupRe(Vec<Vsp64f> a) { return {_mm_movedup_pd(a.raw)}; }
inline Vec<Vsp64f> DupIm(Vec<Vsp64f> a) { return {_mm_unpackhi_pd(a.raw, a.raw)}; }
// Even lanes a - b, odd lanes a + b.
inline Vec<Vsp32f> AddSub(Vec<Vsp32f> a, Vec<Vsp32f> b) { return {_mm_addsub_ps(a.raw, b.raw)}; }
inline Vec<Vsp64f> AddSub(Vec<Vsp64f> a, Vec<Vsp64f> b) { return {_mm_addsub_pd(a.raw, b.raw)}; }
// Complex product of each pair: (ar*br - ai*bi, ai*br + ar*bi), each product rounded, then one
// addition: the same bits as the scalar formula without fused multiply-add.
template <class T> inline Vec<T> MulComplex(Vec<T> a, Vec<T> b) {
  return AddSub(Mul(a, DupRe(b)), Mul(SwapReIm(a), DupIm(b)));
}

}  // namespace vsp::simd
