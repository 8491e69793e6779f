// Norms and distances: Inf, L1, L2 (and L2Sqr) of one vector or of the difference of two.
#include "core/check.h"
#include "core/impl.h"
#include "stats/accumulate.h"

namespace {

using namespace vsp;
using namespace vsp::stats;

enum class NormKind { kInf, kL1, kL2 };

// ---- float and double sources ----------------------------------------------------------------------

// Inf norm of real 32f or 64f data in the element precision: max |x|, and whether any x is NaN.
template <class T, bool kDiff>
struct InfNormOp {
  static constexpr int kL = hw::kLanes<T>;
  static constexpr int kStep = 4 * kL;
  const T* p;
  const T* q;
  hw::Vec<T> acc[2] = {hw::Zero<T>(), hw::Zero<T>()}, nan = hw::Zero<T>();
  T s = 0;
  bool sNan = false;

  T Value(long long i) const { return kDiff ? T(p[i] - q[i]) : p[i]; }
  hw::Vec<T> Values(long long i) const {
    return kDiff ? hw::Sub(hw::LoadU(p + i), hw::LoadU(q + i)) : hw::LoadU(p + i);
  }
  void Scalar(long long i) {
    T x = std::fabs(Value(i));
    sNan |= x != x;
    s = x > s ? x : s;
  }
  void Vector(long long i) {
    for (int j = 0; j < 4; ++j) {
      hw::Vec<T> x = Values(i + j * kL);
      nan = hw::Or(nan, hw::Unordered(x, x));
      acc[j & 1] = hw::Max(hw::Abs(x), acc[j & 1]);
    }
  }
  T Result() const {
    if (sNan || hw::AnyTrue(nan)) return std::numeric_limits<T>::quiet_NaN();
    T m = s;
    for (T x : hw::Lanes<T>(hw::Max(acc[0], acc[1])).v) m = x > m ? x : m;
    return m;
  }
};

// L1 and L2 of data widened to double (64f, and complex 32fc, 64fc): |x| or x * x summed in
// eight lanes for real data; for complex data |z| = sqrt(re^2 + im^2) (L1) or re^2 and im^2 in
// their lanes (L2). Inf of complex data: the largest re^2 + im^2, with NaN noted.
template <class T, bool kDiff, NormKind kKind>
struct DoubleNormOp {
  static constexpr bool kComplex = kIsComplex<T>;
  static constexpr int kStep = AsDoubles<T, kDiff>::kStep;
  AsDoubles<T, kDiff> src;
  DoubleLanes<1> acc;
  F64 nan = hw::Zero<Vsp64f>();

  // |z|^2 of the complex elements held by a and b (one per vector) in lanes 0 and 1.
  static F64 Squares(F64 a, F64 b) { return hw::PairSums(hw::Mul(a, a), hw::Mul(b, b)); }
  void Add(int j, F64 a, F64 b) {
    if constexpr (kKind == NormKind::kL2) {
      acc.Add(0, j, hw::Mul(a, a)), acc.Add(0, j + 1, hw::Mul(b, b));
    } else if constexpr (!kComplex) {  // L1 of real data
      acc.Add(0, j, hw::Abs(a)), acc.Add(0, j + 1, hw::Abs(b));
    } else if constexpr (kKind == NormKind::kL1) {
      acc.Add(0, j, hw::Sqrt(Squares(a, b)));
    } else {
      F64 m = Squares(a, b);
      nan = hw::Or(nan, hw::Unordered(m, m));
      acc.a[0][j] = hw::Max(m, acc.a[0][j]);
    }
  }
  void Scalar(long long i) {
    F64 x = src.Elem(i);
    if constexpr (kComplex && kKind != NormKind::kL2) {
      // Lane 0 only: |z| or |z|^2 of this element.
      F64 m = hw::PairSums(hw::Mul(x, x), hw::Zero<Vsp64f>());
      if constexpr (kKind == NormKind::kL1) {
        acc.Add(0, 0, hw::Sqrt(m));
      } else {
        nan = hw::Or(nan, hw::Unordered(m, m));
        acc.a[0][0] = hw::Max(m, acc.a[0][0]);
      }
    } else {
      Add(0, x, hw::Zero<Vsp64f>());
    }
  }
  void Vector(long long i) {
    F64 v[4];
    src.Step(i, v);
    if constexpr (kComplex && kKind != NormKind::kL2) {
      Add(0, v[0], v[1]), Add(1, v[2], v[3]);
    } else {
      Add(0, v[0], v[1]), Add(2, v[2], v[3]);
    }
  }
  Vsp64f Result() const {
    if constexpr (kKind == NormKind::kInf) {
      if (hw::AnyTrue(nan)) return std::numeric_limits<Vsp64f>::quiet_NaN();
      Vsp64f m = 0;
      for (int j = 0; j < 4; ++j)
        for (Vsp64f x : hw::Lanes<Vsp64f>(acc.a[0][j]).v) m = x > m ? x : m;
      return std::sqrt(m);
    } else {
      Vsp64f t = Total(acc.Fold(0));
      return kKind == NormKind::kL2 ? std::sqrt(t) : t;
    }
  }
};

// L1 and L2 of real 32f data with a float result: |x| or x * x in thirty-two float lanes (eight
// accumulators: enough independent chains to keep pace with the loads) over blocks of kNormBlock
// elements, block partials folded pairwise and added in double; the head is widened.
template <bool kDiff, NormKind kKind>
struct FloatNormOp {
  static constexpr int kAcc = 8;
  static constexpr int kStep = 4 * kAcc;
  const Vsp32f* p;
  const Vsp32f* q;
  FloatLanes<1, kAcc> acc{};
  Vsp64f total = 0;

  Vsp32f Value(long long i) const { return kDiff ? p[i] - q[i] : p[i]; }
  F32 Values(long long i) const { return kDiff ? hw::Sub(hw::LoadU(p + i), hw::LoadU(q + i)) : hw::LoadU(p + i); }
  static F32 Map(F32 x) { return kKind == NormKind::kL1 ? hw::Abs(x) : hw::Mul(x, x); }
  void Head(long long i) {
    Vsp64f x = Value(i);
    total += kKind == NormKind::kL1 ? std::fabs(x) : x * x;
  }
  void Vector(long long i) {
    for (int k = 0; k < kAcc; ++k) acc.Add(0, k, Map(Values(i + 4 * k)));
  }
  void Scalar(long long i) { acc.Add(0, 0, Map(hw::SetLo(Value(i)))); }
  void Flush() {
    total += Total(acc.Fold(0));
    acc.Clear();
  }
};
constexpr long long kNormBlock = 4096;

template <class T, bool kDiff, NormKind kKind>
Vsp64f ownsNormFloat(const T* p, const T* q, long long n) {
  if constexpr (kKind == NormKind::kInf && !kIsComplex<T>) {
    InfNormOp<T, kDiff> op{p, q};
    ForEachAligned(p, n, op);
    return op.Result();
  } else if constexpr (std::is_same_v<T, Vsp32f>) {
    FloatNormOp<kDiff, kKind> op{p, q};
    Blocked(p, n, kNormBlock, op);
    return kKind == NormKind::kL2 ? std::sqrt(op.total) : op.total;
  } else {
    DoubleNormOp<T, kDiff, kKind> op{AsDoubles<T, kDiff>(p, q)};
    ForEachAligned(p, n, op);
    return op.Result();
  }
}

// ---- 16s sources ---------------------------------------------------------------------------------------

// Exact integer norms of 16s data or of the difference of two: the magnitudes m = |x| or
// |x1 - x2| as unsigned 16-bit lanes; Inf keeps their maximum, L1 sums them in 32-bit lanes
// (moved to 64 bits per block), L2 sums their squares in 64-bit lanes.
template <bool kDiff, NormKind kKind>
struct IntNormOp {
  static constexpr int kStep = 8;
  using U16 = hw::Vec<Vsp16u>;
  const Vsp16s* p;
  const Vsp16s* q;
  U16 inf = hw::Zero<Vsp16u>();
  hw::Vec<Vsp32u> l1 = hw::Zero<Vsp32u>();
  hw::Vec<Vsp64u> wide = hw::Zero<Vsp64u>();
  unsigned long long s = 0;

  long long Mag(long long i) const {
    long long x = kDiff ? static_cast<long long>(p[i]) - q[i] : p[i];
    return x < 0 ? -x : x;
  }
  void Head(long long i) { Scalar(i); }
  void Scalar(long long i) {
    unsigned long long m = static_cast<unsigned long long>(Mag(i));
    if constexpr (kKind == NormKind::kInf) s = m > s ? m : s;
    else if constexpr (kKind == NormKind::kL1) s += m;
    else s += m * m;
  }
  void Vector(long long i) {
    hw::Vec<Vsp16s> a = hw::LoadU(p + i);
    U16 m;
    if constexpr (kDiff) m = hw::AbsDiff(a, hw::LoadU(q + i));
    else m = hw::BitCast<Vsp16u>(hw::Abs(a));
    if constexpr (kKind == NormKind::kInf) {
      inf = hw::Max(inf, m);
    } else if constexpr (kKind == NormKind::kL1) {
      l1 = hw::Add(l1, hw::Add(hw::PromoteLo(m), hw::PromoteHi(m)));
    } else if constexpr (!kDiff) {
      hw::Vec<Vsp64s> lo, hi;
      hw::WidenPairSums(hw::MulAddPairs(a, a), lo, hi);
      wide = hw::Add(wide, hw::BitCast<Vsp64u>(hw::Add(lo, hi)));
    } else {
      hw::Vec<Vsp32u> lo = hw::PromoteLo(m), hi = hw::PromoteHi(m);
      wide = hw::Add(wide, hw::Add(hw::WidenAddHalves(hw::Mul(lo, lo)), hw::WidenAddHalves(hw::Mul(hi, hi))));
    }
  }
  void Flush() {
    if constexpr (kKind == NormKind::kL1) {
      wide = hw::Add(wide, hw::WidenAddHalves(l1));
      l1 = hw::Zero<Vsp32u>();
    }
  }
  unsigned long long Result() const {
    unsigned long long r = s;
    if constexpr (kKind == NormKind::kInf) {
      for (Vsp16u x : hw::Lanes<Vsp16u>(inf).v) r = x > r ? x : r;
    } else {
      for (Vsp64u x : hw::Lanes<Vsp64u>(wide).v) r += x;
    }
    return r;
  }
};
constexpr long long kIntNormBlock = 65536;

template <bool kDiff, NormKind kKind>
unsigned long long ownsNorm_16s(const Vsp16s* p, const Vsp16s* q, long long n) {
  IntNormOp<kDiff, kKind> op{p, q};
  Blocked(p, n, kIntNormBlock, op);
  return op.Result();
}

// ---- implementations -----------------------------------------------------------------------------------

template <class T, class R, bool kDiff, NormKind kKind>
VspStatus NormFloat(const T* p, const T* q, int len, R* pNorm) {
  if (VspStatus st = kDiff ? CheckVec(len, p, q, pNorm) : CheckVec(len, p, pNorm)) return st;
  *pNorm = static_cast<R>(ownsNormFloat<T, kDiff, kKind>(p, q, len));
  return vspStatOk;
}

template <bool kDiff, NormKind kKind>
VspStatus Norm16s32f(const Vsp16s* p, const Vsp16s* q, int len, Vsp32f* pNorm) {
  if (VspStatus st = kDiff ? CheckVec(len, p, q, pNorm) : CheckVec(len, p, pNorm)) return st;
  unsigned long long v = ownsNorm_16s<kDiff, kKind>(p, q, len);
  *pNorm = kKind == NormKind::kL2 ? static_cast<Vsp32f>(std::sqrt(static_cast<Vsp64f>(v))) : static_cast<Vsp32f>(v);
  return vspStatOk;
}

template <bool kDiff, NormKind kKind>
VspStatus Norm16s32s(const Vsp16s* p, const Vsp16s* q, int len, Vsp32s* pNorm, int scaleFactor) {
  if (VspStatus st = kDiff ? CheckVec(len, p, q, pNorm) : CheckVec(len, p, pNorm)) return st;
  unsigned long long v = ownsNorm_16s<kDiff, kKind>(p, q, len);
  if constexpr (kKind == NormKind::kL2) *pNorm = ScaleRoundEven<Vsp32s>(std::sqrt(static_cast<long double>(v)), scaleFactor);
  else *pNorm = ScaleRule<Vsp32s>(static_cast<long long>(v), scaleFactor);
  return vspStatOk;
}

template <bool kDiff>
VspStatus NormL2Sqr(const Vsp16s* p, const Vsp16s* q, int len, Vsp64s* pNorm, int scaleFactor) {
  if (VspStatus st = kDiff ? CheckVec(len, p, q, pNorm) : CheckVec(len, p, pNorm)) return st;
  // Below 2^63 for every length: at most (2^31 - 1) * 65535^2.
  *pNorm = ScaleRule<Vsp64s>(static_cast<long long>(ownsNorm_16s<kDiff, NormKind::kL2>(p, q, len)), scaleFactor);
  return vspStatOk;
}

}  // namespace

#define VSP_NORM_FLOAT(kind, K, t, r, name)                                                                \
  VSP_IMPL(VspStatus, vspsNorm_##kind##_##name, (const Vsp##t* pSrc, int len, Vsp##r* pNorm)) {           \
    return NormFloat<Vsp##t, Vsp##r, false, NormKind::K>(pSrc, nullptr, len, pNorm);                       \
  }                                                                                                        \
  VSP_IMPL(VspStatus, vspsNormDiff_##kind##_##name, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, int len, Vsp##r* pNorm)) { \
    return NormFloat<Vsp##t, Vsp##r, true, NormKind::K>(pSrc1, pSrc2, len, pNorm);                         \
  }
#define VSP_NORM_16S(kind, K)                                                                              \
  VSP_IMPL(VspStatus, vspsNorm_##kind##_16s32f, (const Vsp16s* pSrc, int len, Vsp32f* pNorm)) {            \
    return Norm16s32f<false, NormKind::K>(pSrc, nullptr, len, pNorm);                                      \
  }                                                                                                        \
  VSP_IMPL(VspStatus, vspsNormDiff_##kind##_16s32f, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, int len, Vsp32f* pNorm)) { \
    return Norm16s32f<true, NormKind::K>(pSrc1, pSrc2, len, pNorm);                                        \
  }                                                                                                        \
  VSP_IMPL(VspStatus, vspsNorm_##kind##_16s32s_Sfs, (const Vsp16s* pSrc, int len, Vsp32s* pNorm, int scaleFactor)) { \
    return Norm16s32s<false, NormKind::K>(pSrc, nullptr, len, pNorm, scaleFactor);                         \
  }                                                                                                        \
  VSP_IMPL(VspStatus, vspsNormDiff_##kind##_16s32s_Sfs,                                                    \
           (const Vsp16s* pSrc1, const Vsp16s* pSrc2, int len, Vsp32s* pNorm, int scaleFactor)) {          \
    return Norm16s32s<true, NormKind::K>(pSrc1, pSrc2, len, pNorm, scaleFactor);                           \
  }

#define VSP_NORM_KIND(kind, K, cf)               \
  VSP_NORM_16S(kind, K)                          \
  VSP_NORM_FLOAT(kind, K, 32f, 32f, 32f)         \
  VSP_NORM_FLOAT(kind, K, 64f, 64f, 64f)         \
  VSP_NORM_FLOAT(kind, K, 32fc, cf, 32fc##cf)    \
  VSP_NORM_FLOAT(kind, K, 64fc, 64f, 64fc64f)
VSP_NORM_KIND(Inf, kInf, 32f)
VSP_NORM_KIND(L1, kL1, 64f)
VSP_NORM_KIND(L2, kL2, 64f)

VSP_IMPL(VspStatus, vspsNorm_L2Sqr_16s64s_Sfs, (const Vsp16s* pSrc, int len, Vsp64s* pNorm, int scaleFactor)) {
  return NormL2Sqr<false>(pSrc, nullptr, len, pNorm, scaleFactor);
}
VSP_IMPL(VspStatus, vspsNormDiff_L2Sqr_16s64s_Sfs,
         (const Vsp16s* pSrc1, const Vsp16s* pSrc2, int len, Vsp64s* pNorm, int scaleFactor)) {
  return NormL2Sqr<true>(pSrc1, pSrc2, len, pNorm, scaleFactor);
}
