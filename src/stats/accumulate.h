// The accumulation frame of the sums, deviations, norms and dot products:
//  - readers that present float or double sources (or the difference of two) as double lanes;
//  - accumulators of four (or eight) vectors per summed quantity, folded pairwise;
//  - the blocked float accumulation: float lanes over blocks whose partials go to double totals;
//  - the scale-factor helpers of results computed from exact integer sums.
// Kernels are operation objects run by ForEachAligned over the source (head until the source is
// 16-byte aligned, vector steps, tail) or by Blocked below.
#pragma once

#include <bit>
#include <cmath>
#include <type_traits>

#include "arith/scale.h"
#include "core/loop.h"
#include "core/simd/sse3_stats.h"
#include "core/types.h"

namespace vsp::stats {

namespace hw = vsp::simd;
using F32 = hw::Vec<Vsp32f>;
using F64 = hw::Vec<Vsp64f>;

// ---- sources as double lanes -----------------------------------------------------------------

// Elements of T (32f, 32fc, 64f, 64fc) as double lanes: one element as the lane pair (x, 0) or
// (re, im); one step as eight base values in four two-lane vectors, in memory order. With kDiff
// the values are p[j] - q[j], taken in the source precision before widening.
template <class T, bool kDiff = false>
struct AsDoubles {
  using B = BaseOf<T>;
  static constexpr int kWidth = kIsComplex<T> ? 2 : 1;
  static constexpr int kStep = 8 / kWidth;  // elements per step
  const B* p;
  const B* q;
  explicit AsDoubles(const T* a, const T* b = nullptr)
      : p(reinterpret_cast<const B*>(a)), q(reinterpret_cast<const B*>(b)) {}

  hw::Vec<B> Base(const B* at) const {
    if constexpr (kDiff) return hw::Sub(hw::LoadU(at), hw::LoadU(q + (at - p)));
    else return hw::LoadU(at);
  }
  F64 Elem(long long i) const {
    const long long j = i * kWidth;
    if constexpr (kWidth == 1) {
      B x = kDiff ? B(p[j] - q[j]) : p[j];
      return hw::SetLo(static_cast<Vsp64f>(x));
    } else if constexpr (std::is_same_v<B, Vsp64f>) {
      return Base(p + j);
    } else {
      F32 x = hw::LoadLo2(p + j);
      if constexpr (kDiff) x = hw::Sub(x, hw::LoadLo2(q + j));
      return hw::PromoteLo(x);
    }
  }
  void Step(long long i, F64 v[4]) const {
    const B* e = p + i * kWidth;
    if constexpr (std::is_same_v<B, Vsp64f>) {
      for (int k = 0; k < 4; ++k) v[k] = Base(e + 2 * k);
    } else {
      F32 a = Base(e), b = Base(e + 4);
      v[0] = hw::PromoteLo(a), v[1] = hw::PromoteHi(a), v[2] = hw::PromoteLo(b), v[3] = hw::PromoteHi(b);
    }
  }
};

// ---- accumulators ------------------------------------------------------------------------------

// kSums quantities, each in kAcc accumulators of lanes of B (four unless a kernel needs more
// independent chains to hide the add latency).
template <class B, int kSums, int kAcc = 4>
struct Accumulators {
  hw::Vec<B> a[kSums][kAcc];
  Accumulators() { Clear(); }
  void Clear() {
    for (auto& quantity : a)
      for (auto& v : quantity) v = hw::Zero<B>();
  }
  // Adds x to accumulator j of quantity k.
  void Add(int k, int j, hw::Vec<B> x) { a[k][j] = hw::Add(a[k][j], x); }
  // The pairwise fold of quantity k: (a0 + a1) + (a2 + a3), and so on for more accumulators.
  // (The fold takes the row alone, so that its code does not depend on kSums.)
  hw::Vec<B> Fold(int k) const { return FoldRow(a[k]); }
  static hw::Vec<B> FoldRow(const hw::Vec<B> (&row)[kAcc]) {
    hw::Vec<B> v[kAcc];
    for (int j = 0; j < kAcc; ++j) v[j] = row[j];
    for (int width = kAcc; width > 1; width /= 2)
      for (int j = 0; j < width / 2; ++j) v[j] = hw::Add(v[2 * j], v[2 * j + 1]);
    return v[0];
  }
};
template <int kSums> using DoubleLanes = Accumulators<Vsp64f, kSums>;
template <int kSums, int kAcc = 4> using FloatLanes = Accumulators<Vsp32f, kSums, kAcc>;
// The fast float sums and dot products keep sixteen float lanes (four accumulators of four); the
// lane a value lands in is part of their results, so the count is the same on every target.
inline constexpr int kSumLanes = 16;

// A real or complex double result.
struct Pair {
  Vsp64f re = 0, im = 0;
};

// Stores a real result (re) or a complex one into *out, converted to the part type of T.
template <class T>
void StorePair(T* out, Pair v) {
  using B = BaseOf<T>;
  B* o = reinterpret_cast<B*>(out);
  o[0] = static_cast<B>(v.re);
  if constexpr (kIsComplex<T>) o[1] = static_cast<B>(v.im);
}

// The lanes of a folded double vector: their total (real data) or (re, im) (complex data).
inline Vsp64f Total(F64 v) { return hw::ReduceSum(v); }
inline Pair Parts(F64 v) {
  hw::Lanes<Vsp64f> l(v);
  return {l.v[0], l.v[1]};
}
// The lanes of a folded float vector: ((l0 + l1) + (l2 + l3)) (real data) or (l0 + l2, l1 + l3)
// (the re and im lanes of complex data), summed in float and widened.
inline Vsp64f Total(F32 v) { return static_cast<Vsp64f>(hw::ReduceSum(v)); }
inline Pair Parts(F32 v) {
  hw::Lanes<Vsp32f> l(v);
  return {static_cast<Vsp64f>(l.v[0] + l.v[2]), static_cast<Vsp64f>(l.v[1] + l.v[3])};
}

// ---- blocked float accumulation -----------------------------------------------------------------

// Runs op over n elements starting at src: op.Head(i) for the elements before the first 16-byte
// boundary, then blocks of `block` elements, each op.Vector(i) for whole steps of op.kStep
// elements and op.Scalar(i) for the rest, closed by op.Flush() (which moves the block's float
// partials into double totals).
template <class T, class Op>
void Blocked(const T* src, long long n, long long block, Op& op) {
  long long i = 0;
  for (const long long head = AlignHead(src, n); i < head; ++i) op.Head(i);
  while (i < n) {
    const long long end = n - i < block ? n : i + block;
    for (; i + Op::kStep <= end; i += Op::kStep) op.Vector(i);
    for (; i < end; ++i) op.Scalar(i);
    op.Flush();
  }
}

// ---- results of exact integer sums ---------------------------------------------------------------

// 2^-scaleFactor as a double whose biased exponent 1023 - scaleFactor is clamped into [0, 2047]:
// 0 from scaleFactor 1023 on, infinity from -1024 down.
inline Vsp64f ScaleFactorAsDouble(int scaleFactor) {
  long long e = 1023LL - scaleFactor;
  e = e < 0 ? 0 : (e > 2047 ? 2047 : e);
  return std::bit_cast<Vsp64f>(static_cast<unsigned long long>(e) << 52);
}

// x * 2^-scaleFactor (the double factor above), clamped to [lo, hi] and converted in the current
// rounding mode; 0 stays 0 (also where the factor is infinite).
inline long long ScaleClampConvert(Vsp64f x, int scaleFactor, long long lo, long long hi) {
  if (x == 0) return 0;
  Vsp64f y = x * ScaleFactorAsDouble(scaleFactor);
  if (y < static_cast<Vsp64f>(lo)) return lo;
  if (y > static_cast<Vsp64f>(hi)) return hi;
  return static_cast<long long>(std::nearbyint(y));
}

// round(x * 2^-scaleFactor), ties to even, saturated to D, for a non-negative x computed in
// extended precision.
template <class D>
D ScaleRoundEven(long double x, int scaleFactor) {
  if (x == 0) return D(0);
  const int s = scaleFactor > 16400 ? 16400 : (scaleFactor < -16400 ? -16400 : scaleFactor);
  long double y = std::ldexp(x, -s);
  if (y >= static_cast<long double>(kMaxOf<D>)) return kMaxOf<D>;
  long double r = std::floor(y), f = y - r;
  if (f > 0.5L || (f == 0.5L && std::fmod(r, 2.0L) != 0)) r += 1;
  return static_cast<D>(r);
}

// round(num / den) with ties to even, den != 0, in exact integers.
inline __int128 RoundDivEven(__int128 num, __int128 den) {
  if (den < 0) num = -num, den = -den;
  __int128 q = num / den, r = num % den;
  if (r < 0) q -= 1, r += den;  // floor division
  if (2 * r > den || (2 * r == den && (q & 1))) q += 1;
  return q;
}

}  // namespace vsp::stats
