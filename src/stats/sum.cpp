// Sum, Mean, StdDev and MeanStdDev: float and double sums in double lanes (accurate) or in
// blocked float lanes (fast), integer sums exact in 64 bits.
#include "core/check.h"
#include "core/impl.h"
#include "stats/accumulate.h"

namespace {

using namespace vsp;
using namespace vsp::stats;

// ---- float and double kernels --------------------------------------------------------------------

// Sums elements of T (32f, 32fc, 64f, 64fc) widened to double: four two-lane accumulators for
// float data (the converts bound the speed), eight for double data (enough independent add chains
// to keep pace with the loads); the head and tail go into lane pair 0. kSquares (real data) sums
// y = x - shift and y * y instead: the moments of the deviations.
template <class T, bool kSquares = false>
struct DoubleSumOp {
  static constexpr int kAcc = std::is_same_v<BaseOf<T>, Vsp64f> && !kSquares ? 8 : 4;
  static constexpr int kStep = AsDoubles<T>::kStep * kAcc / 4;
  AsDoubles<T> src;
  Vsp64f shift = 0;
  Accumulators<Vsp64f, kSquares ? 2 : 1, kAcc> acc;
  void Scalar(long long i) {
    F64 x = src.Elem(i);
    if constexpr (kSquares) {
      x = hw::Sub(x, hw::SetLo(shift));
      acc.Add(1, 0, hw::Mul(x, x));
    }
    acc.Add(0, 0, x);
  }
  void Vector(long long i) {
    for (int h = 0; h < kAcc / 4; ++h) {
      F64 v[4];
      src.Step(i + h * AsDoubles<T>::kStep, v);
      for (int k = 0; k < 4; ++k) {
        if constexpr (kSquares) {
          v[k] = hw::Sub(v[k], hw::Set1(shift));
          acc.Add(1, 4 * h + k, hw::Mul(v[k], v[k]));
        }
        acc.Add(0, 4 * h + k, v[k]);
      }
    }
  }
  // The total of quantity k: one double, or (re, im) for complex data.
  Pair Result(int k) const { return kIsComplex<T> ? Parts(acc.Fold(k)) : Pair{Total(acc.Fold(k)), 0}; }
};

template <class T>
Pair ownsSumDouble(const T* p, long long n) {
  DoubleSumOp<T> op{AsDoubles<T>(p)};
  ForEachAligned(p, n, op);
  return op.Result(0);
}

// The fast float sums: elements before the first 16-byte boundary widened into the double
// totals one by one; then blocks whose float lanes (sixteen, in four accumulators; the block's
// last elements into lane 0, or lanes 0-1 for complex data) are folded and added in double.
// kSquares (real data) sums y = x - shift (in float) and y * y instead.
template <class T, bool kSquares = false>
struct FloatBlockSumOp {
  static constexpr int kWidth = kIsComplex<T> ? 2 : 1;
  static constexpr int kStep = kSumLanes / kWidth;
  const Vsp32f* p;
  Vsp32f shift = 0;
  FloatLanes<kSquares ? 2 : 1> acc{};
  Pair sum{}, squares{};

  void Head(long long i) {
    const Vsp32f* e = p + i * kWidth;
    if constexpr (kSquares) {
      const Vsp64f y = static_cast<Vsp64f>(e[0]) - shift;
      sum.re += y, squares.re += y * y;
    } else {
      sum.re += e[0];
      if constexpr (kWidth == 2) sum.im += e[1];
    }
  }
  void Add(int k, F32 x) {
    if constexpr (kSquares) {
      x = hw::Sub(x, hw::Set1(shift));
      acc.Add(1, k, hw::Mul(x, x));
    }
    acc.Add(0, k, x);
  }
  void Vector(long long i) {
    const Vsp32f* e = p + i * kWidth;
    for (int k = 0; k < 4; ++k) Add(k, hw::LoadU(e + 4 * k));
  }
  void Scalar(long long i) {
    if constexpr (kSquares) {  // the shift applies to lane 0 only
      F32 y = hw::SetLo(p[i] - shift);
      acc.Add(1, 0, hw::Mul(y, y)), acc.Add(0, 0, y);
    } else {
      acc.Add(0, 0, kWidth == 2 ? hw::LoadLo2(p + 2 * i) : hw::SetLo(p[i]));
    }
  }
  void Flush() {
    AddParts(sum, acc.Fold(0));
    if constexpr (kSquares) AddParts(squares, acc.Fold(1));
    acc.Clear();
  }
  static void AddParts(Pair& to, F32 folded) {
    if constexpr (kWidth == 2) {
      Pair q = Parts(folded);
      to.re += q.re, to.im += q.im;
    } else {
      to.re += Total(folded);
    }
  }
};

constexpr long long kFastSumBlock = 32768;
constexpr long long kFastMomentBlock = 1024;

// The double total of a float vector by the path the hint selects.
template <class T>
Pair ownsSum_32f(const T* p, long long n, VspHintAlgorithm hint) {
  if (hint != vspAlgHintFast) return ownsSumDouble(p, n);
  FloatBlockSumOp<T> op{reinterpret_cast<const Vsp32f*>(p)};
  Blocked(p, n, kFastSumBlock, op);
  return op.sum;
}

// S1 = sum y and S2 = sum y * y of a real float or double vector, y = x - p[0]: the deviation
// does not change with the shift, which keeps n*S2 - S1*S1 free of the cancellation of large
// means and makes it exactly 0 for all-equal data.
struct Moments {
  Vsp64f s1, s2, shift;
};
template <class T>
Moments ownsMomentsDouble(const T* p, long long n) {
  DoubleSumOp<T, true> op{AsDoubles<T>(p), static_cast<Vsp64f>(p[0])};
  ForEachAligned(p, n, op);
  return {op.Result(0).re, op.Result(1).re, op.shift};
}
Moments ownsMomentsFast_32f(const Vsp32f* p, long long n) {
  FloatBlockSumOp<Vsp32f, true> op{p, p[0]};
  Blocked(p, n, kFastMomentBlock, op);
  return {op.sum.re, op.squares.re, op.shift};
}

// sqrt(max(0, n*S2 - S1*S1) / (n*(n-1))) in double.
Vsp64f StdDevOf(Moments m, long long len) {
  const Vsp64f n = static_cast<Vsp64f>(len);
  Vsp64f v = n * m.s2 - m.s1 * m.s1;
  return std::sqrt((v > 0 ? v : 0) / (n * (n - 1)));
}

// ---- integer kernels ---------------------------------------------------------------------------

// Exact sums of 16s (kWidth 1) or 16sc (kWidth 2) elements: eight values per step widened into
// 32-bit lanes, which move to 64-bit lanes at the end of each block (kIntBlock values keep every
// 32-bit lane below 2^30); kSquares also sums x * x exactly (real data).
template <int kWidth, bool kSquares = false>
struct IntSumOp {
  static constexpr int kStep = 8 / kWidth;
  const Vsp16s* p;
  hw::Vec<Vsp32s> s1 = hw::Zero<Vsp32s>();
  hw::Vec<Vsp64s> s1w = hw::Zero<Vsp64s>(), s2 = hw::Zero<Vsp64s>();
  long long r1[2] = {0, 0}, r2 = 0;

  void Head(long long i) { Scalar(i); }
  void Scalar(long long i) {
    for (int c = 0; c < kWidth; ++c) {
      const long long x = p[i * kWidth + c];
      r1[c] += x;
      if constexpr (kSquares) r2 += x * x;
    }
  }
  void Vector(long long i) {
    hw::Vec<Vsp16s> v = hw::LoadU(p + i * kWidth);
    s1 = hw::Add(s1, hw::Add(hw::PromoteLo(v), hw::PromoteHi(v)));
    if constexpr (kSquares) {
      hw::Vec<Vsp64s> lo, hi;
      hw::WidenPairSums(hw::MulAddPairs(v, v), lo, hi);
      s2 = hw::Add(s2, hw::Add(lo, hi));
    }
  }
  void Flush() {
    s1w = hw::Add(s1w, hw::WidenAddHalves(s1));
    s1 = hw::Zero<Vsp32s>();
  }
  // Lane 0 of the 64-bit sums holds the even values (re), lane 1 the odd ones (im).
  void Sums(long long out[2]) const {
    hw::Lanes<Vsp64s> l(s1w);
    if constexpr (kWidth == 2) out[0] = l.v[0] + r1[0], out[1] = l.v[1] + r1[1];
    else out[0] = l.v[0] + l.v[1] + r1[0], out[1] = 0;
  }
  long long Squares() const {
    hw::Lanes<Vsp64s> l(s2);
    return l.v[0] + l.v[1] + r2;
  }
};
constexpr long long kIntBlock = 65536;

template <int kWidth, bool kSquares = false>
IntSumOp<kWidth, kSquares> ownsSumExact_16s(const Vsp16s* p, long long n) {
  using Elem = std::conditional_t<kWidth == 2, Vsp16sc, Vsp16s>;
  IntSumOp<kWidth, kSquares> op{p};
  Blocked(reinterpret_cast<const Elem*>(p), n, kIntBlock, op);
  return op;
}

// The exact sum of 32s elements in 64-bit lanes.
struct Sum32sOp {
  static constexpr int kStep = 8;
  const Vsp32s* p;
  hw::Vec<Vsp64s> a = hw::Zero<Vsp64s>(), b = hw::Zero<Vsp64s>();
  long long r = 0;
  void Scalar(long long i) { r += p[i]; }
  void Vector(long long i) {
    a = hw::Add(a, hw::WidenAddHalves(hw::LoadU(p + i)));
    b = hw::Add(b, hw::WidenAddHalves(hw::LoadU(p + i + 4)));
  }
  long long Sum() const {
    hw::Lanes<Vsp64s> l(hw::Add(a, b));
    return l.v[0] + l.v[1] + r;
  }
};

// round(sum * 2^-s / n) with ties to even, saturated to 32 bits, in exact integers.
Vsp32s MeanScaled(long long sum, long long n, int s) {
  if (sum == 0 || s > 64) return 0;
  if (s < -64) return sum > 0 ? kMaxOf<Vsp32s> : kMinOf<Vsp32s>;
  __int128 num = sum, den = n;
  if (s > 0) den <<= s;
  else num *= static_cast<__int128>(1) << -s;
  return Saturate<Vsp32s>(RoundDivEven(num, den));
}

// The integer deviation: from exact S1, S2, n*S2 - S1*S1 exact in 128 bits, then the square root
// in extended precision, scaled and rounded to nearest even, saturated to 32 bits.
Vsp32s StdDevScaled(long long s1, long long s2, long long len, int scaleFactor) {
  __int128 v = static_cast<__int128>(len) * s2 - static_cast<__int128>(s1) * s1;
  long double n = static_cast<long double>(len);
  long double dev = std::sqrt(static_cast<long double>(v) / (n * (n - 1)));
  return ScaleRoundEven<Vsp32s>(dev, scaleFactor);
}

template <class D>
D MeanClamp(long long sum, long long len, int scaleFactor) {
  return static_cast<D>(ScaleClampConvert(static_cast<Vsp64f>(sum) / static_cast<Vsp64f>(len), scaleFactor,
                                          kMinOf<D>, kMaxOf<D>));
}

// ---- implementations ----------------------------------------------------------------------------

template <class T>
VspStatus SumFloat(const T* pSrc, int len, T* pSum, VspHintAlgorithm hint) {
  if (VspStatus st = CheckVec(len, pSrc, pSum)) return st;
  StorePair(pSum, ownsSum_32f(pSrc, len, hint));
  return vspStatOk;
}
template <class T>
VspStatus MeanFloat(const T* pSrc, int len, T* pMean, VspHintAlgorithm hint) {
  if (VspStatus st = CheckVec(len, pSrc, pMean)) return st;
  Pair s = ownsSum_32f(pSrc, len, hint);
  StorePair(pMean, {s.re / len, s.im / len});
  return vspStatOk;
}
template <class T>
VspStatus SumDouble(const T* pSrc, int len, T* pSum, bool mean) {
  if (VspStatus st = CheckVec(len, pSrc, pSum)) return st;
  Pair s = ownsSumDouble(pSrc, len);
  if (mean) s.re /= len, s.im /= len;
  StorePair(pSum, s);
  return vspStatOk;
}

// Sum_16s32s_Sfs and its relatives, and (mean) the 16-bit means: D is the result's part type,
// kWidth 2 for complex data.
template <int kWidth, class D, class R>
VspStatus Sum16s(const Vsp16s* pSrc, int len, R* pOut, int scaleFactor, bool mean) {
  if (VspStatus st = CheckVec(len, pSrc, pOut)) return st;
  long long s[2];
  ownsSumExact_16s<kWidth>(pSrc, len).Sums(s);
  D* out = reinterpret_cast<D*>(pOut);
  for (int c = 0; c < kWidth; ++c)
    out[c] = mean ? MeanClamp<D>(s[c], len, scaleFactor)
                  : Saturate<D>(ScaleClampConvert(static_cast<Vsp64f>(s[c]), scaleFactor, kMinOf<Vsp32s>, kMaxOf<Vsp32s>));
  return vspStatOk;
}

// StdDev_16s32s_Sfs (D = Vsp32s), StdDev_16s_Sfs (D = Vsp16s: 32767 from 32768 on) and, with a
// pMean, the MeanStdDev forms.
template <class D>
VspStatus Deviation16s(const Vsp16s* pSrc, int len, D* pMean, D* pStdDev, int scaleFactor, bool withMean) {
  if (VspStatus st = withMean ? CheckVec(len, pSrc, pMean, pStdDev) : CheckVec(len, pSrc, pStdDev)) return st;
  if (len < 2) return vspStatBadSize;
  auto op = ownsSumExact_16s<1, true>(pSrc, len);
  long long s[2];
  op.Sums(s);
  if (withMean) *pMean = MeanClamp<D>(s[0], len, scaleFactor);
  *pStdDev = Saturate<D>(StdDevScaled(s[0], op.Squares(), len, scaleFactor));
  return vspStatOk;
}

template <class T>
VspStatus StdDevFloat(const T* pSrc, int len, T* pMean, T* pStdDev, bool fast) {
  if (VspStatus st = pMean ? CheckVec(len, pSrc, pMean, pStdDev) : CheckVec(len, pSrc, pStdDev)) return st;
  if (len < 2) return vspStatBadSize;
  Moments m;
  if constexpr (std::is_same_v<T, Vsp32f>) m = fast ? ownsMomentsFast_32f(pSrc, len) : ownsMomentsDouble(pSrc, len);
  else m = ownsMomentsDouble(pSrc, len);
  if (pMean) *pMean = static_cast<T>(m.shift + m.s1 / len);
  *pStdDev = static_cast<T>(StdDevOf(m, len));
  return vspStatOk;
}

}  // namespace

#define VSP_SUM_FLOAT(t)                                                                                    \
  VSP_IMPL(VspStatus, vspsSum_##t, (const Vsp##t* pSrc, int len, Vsp##t* pSum, VspHintAlgorithm hint)) {    \
    return SumFloat(pSrc, len, pSum, hint);                                                                 \
  }                                                                                                         \
  VSP_IMPL(VspStatus, vspsMean_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMean, VspHintAlgorithm hint)) {  \
    return MeanFloat(pSrc, len, pMean, hint);                                                               \
  }
VSP_SUM_FLOAT(32f)
VSP_SUM_FLOAT(32fc)

#define VSP_SUM_DOUBLE(t)                                                                                       \
  VSP_IMPL(VspStatus, vspsSum_##t, (const Vsp##t* pSrc, int len, Vsp##t* pSum)) { return SumDouble(pSrc, len, pSum, false); } \
  VSP_IMPL(VspStatus, vspsMean_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMean)) { return SumDouble(pSrc, len, pMean, true); }
VSP_SUM_DOUBLE(64f)
VSP_SUM_DOUBLE(64fc)

VSP_IMPL(VspStatus, vspsSum_16s32s_Sfs, (const Vsp16s* pSrc, int len, Vsp32s* pSum, int scaleFactor)) {
  return Sum16s<1, Vsp32s>(pSrc, len, pSum, scaleFactor, false);
}
VSP_IMPL(VspStatus, vspsSum_16s_Sfs, (const Vsp16s* pSrc, int len, Vsp16s* pSum, int scaleFactor)) {
  return Sum16s<1, Vsp16s>(pSrc, len, pSum, scaleFactor, false);
}
VSP_IMPL(VspStatus, vspsSum_16sc32sc_Sfs, (const Vsp16sc* pSrc, int len, Vsp32sc* pSum, int scaleFactor)) {
  return Sum16s<2, Vsp32s>(reinterpret_cast<const Vsp16s*>(pSrc), len, pSum, scaleFactor, false);
}
VSP_IMPL(VspStatus, vspsSum_16sc_Sfs, (const Vsp16sc* pSrc, int len, Vsp16sc* pSum, int scaleFactor)) {
  return Sum16s<2, Vsp16s>(reinterpret_cast<const Vsp16s*>(pSrc), len, pSum, scaleFactor, false);
}
VSP_IMPL(VspStatus, vspsSum_32s_Sfs, (const Vsp32s* pSrc, int len, Vsp32s* pSum, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc, pSum)) return st;
  Sum32sOp op{pSrc};
  ForEachAligned(pSrc, len, op);
  *pSum = ScaleRule<Vsp32s>(op.Sum(), scaleFactor);
  return vspStatOk;
}

VSP_IMPL(VspStatus, vspsMean_16s_Sfs, (const Vsp16s* pSrc, int len, Vsp16s* pMean, int scaleFactor)) {
  return Sum16s<1, Vsp16s>(pSrc, len, pMean, scaleFactor, true);
}
VSP_IMPL(VspStatus, vspsMean_16sc_Sfs, (const Vsp16sc* pSrc, int len, Vsp16sc* pMean, int scaleFactor)) {
  return Sum16s<2, Vsp16s>(reinterpret_cast<const Vsp16s*>(pSrc), len, pMean, scaleFactor, true);
}
VSP_IMPL(VspStatus, vspsMean_32s_Sfs, (const Vsp32s* pSrc, int len, Vsp32s* pMean, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc, pMean)) return st;
  Sum32sOp op{pSrc};
  ForEachAligned(pSrc, len, op);
  *pMean = MeanScaled(op.Sum(), len, scaleFactor);
  return vspStatOk;
}

VSP_IMPL(VspStatus, vspsStdDev_32f, (const Vsp32f* pSrc, int len, Vsp32f* pStdDev, VspHintAlgorithm hint)) {
  return StdDevFloat<Vsp32f>(pSrc, len, nullptr, pStdDev, hint == vspAlgHintFast);
}
VSP_IMPL(VspStatus, vspsStdDev_64f, (const Vsp64f* pSrc, int len, Vsp64f* pStdDev)) {
  return StdDevFloat<Vsp64f>(pSrc, len, nullptr, pStdDev, false);
}
VSP_IMPL(VspStatus, vspsMeanStdDev_32f, (const Vsp32f* pSrc, int len, Vsp32f* pMean, Vsp32f* pStdDev)) {
  if (!pMean) return vspStatNullPtr;
  return StdDevFloat<Vsp32f>(pSrc, len, pMean, pStdDev, false);
}
VSP_IMPL(VspStatus, vspsMeanStdDev_64f, (const Vsp64f* pSrc, int len, Vsp64f* pMean, Vsp64f* pStdDev)) {
  if (!pMean) return vspStatNullPtr;
  return StdDevFloat<Vsp64f>(pSrc, len, pMean, pStdDev, false);
}
VSP_IMPL(VspStatus, vspsStdDev_16s32s_Sfs, (const Vsp16s* pSrc, int len, Vsp32s* pStdDev, int scaleFactor)) {
  return Deviation16s<Vsp32s>(pSrc, len, nullptr, pStdDev, scaleFactor, false);
}
VSP_IMPL(VspStatus, vspsStdDev_16s_Sfs, (const Vsp16s* pSrc, int len, Vsp16s* pStdDev, int scaleFactor)) {
  return Deviation16s<Vsp16s>(pSrc, len, nullptr, pStdDev, scaleFactor, false);
}
VSP_IMPL(VspStatus, vspsMeanStdDev_16s32s_Sfs,
         (const Vsp16s* pSrc, int len, Vsp32s* pMean, Vsp32s* pStdDev, int scaleFactor)) {
  return Deviation16s(pSrc, len, pMean, pStdDev, scaleFactor, true);
}
VSP_IMPL(VspStatus, vspsMeanStdDev_16s_Sfs,
         (const Vsp16s* pSrc, int len, Vsp16s* pMean, Vsp16s* pStdDev, int scaleFactor)) {
  return Deviation16s(pSrc, len, pMean, pStdDev, scaleFactor, true);
}
