// Extremes: Max, Min, their Abs and Indx forms, MinMax, MinMaxIndx, MaxOrder, and the
// element-wise MaxEvery / MinEvery.
#include <bit>
#include <cmath>

#include "core/check.h"
#include "core/impl.h"
#include "core/loop.h"
#include "core/simd/sse3_stats.h"
#include "core/types.h"

namespace {

using namespace vsp;
namespace hw = vsp::simd;

// ---- the compared key and the strict choice ------------------------------------------------------

// The value that is compared: the element itself, or its magnitude (saturated for integers,
// the sign bit cleared for floats).
template <class T, bool kAbs>
struct Key {
  static T Of(T x) {
    if constexpr (!kAbs) return x;
    else if constexpr (hw::kIsFloat<T>) return std::fabs(x);
    else return x >= 0 ? x : (x == kMinOf<T> ? kMaxOf<T> : T(-x));
  }
  static hw::Vec<T> Of(hw::Vec<T> v) {
    if constexpr (!kAbs) return v;
    else if constexpr (hw::kIsFloat<T>) return hw::Abs(v);
    else return hw::AbsSat(v);
  }
};

// x replaces the running best only when it compares strictly greater (kMax) or smaller: a NaN
// never replaces, and a NaN best is never replaced. The vector forms are the same choice per lane.
template <class T, bool kMax>
struct Choose {
  static bool Better(T x, T best) { return kMax ? x > best : x < best; }
  static hw::Vec<T> Of(hw::Vec<T> x, hw::Vec<T> best) {
    if constexpr (hw::kIsInt<T>)  // exact: the operand order only lets the result stay in place
      return kMax ? hw::Max(best, x) : hw::Min(best, x);
    else
      return kMax ? hw::Max(x, best) : hw::Min(x, best);
  }
};

// ---- one-pass extremes ------------------------------------------------------------------------------

// The smallest and/or largest key of n elements, every lane and the scalar runs starting from
// `init`: a scalar head until p is 16-byte aligned, vector steps, a scalar tail. One extreme
// keeps eight accumulators (enough independent chains to keep pace with the loads), both keep
// four each; they are locals of one loop so that they stay in registers.
template <class T>
struct Extremes {
  T lo, hi;
};
// kAligned: the head reaches a 16-byte boundary (elements at whole-element addresses), so the
// body loads aligned vectors (which fold into the compares).
template <class T, bool kAbs, bool kWantMin, bool kWantMax, bool kAligned>
Extremes<T> ownsExtremesFrom(const T* p, long long n, T init) {
  using K = Key<T, kAbs>;
  using Lo = Choose<T, false>;
  using Hi = Choose<T, true>;
  constexpr int kL = hw::kLanes<T>;
  constexpr int kAcc = kWantMin && kWantMax ? 4 : 8;
  T sLo = init, sHi = init;
  auto scalar = [&](long long i) {
    const T k = K::Of(p[i]);
    if (kWantMin && Lo::Better(k, sLo)) sLo = k;
    if (kWantMax && Hi::Better(k, sHi)) sHi = k;
  };
  long long i = 0;
  for (const long long head = AlignHead(p, n); i < head; ++i) scalar(i);
  hw::Vec<T> lo[kAcc], hi[kAcc];
  for (int j = 0; j < kAcc; ++j) lo[j] = hi[j] = hw::Set1(init);
  // With both extremes wanted each vector meets two compares: pinned in a register it is loaded
  // once and copied, instead of loaded again as the second compare's memory operand.
  auto load = [p](long long at) {
    const hw::Vec<T> v = kAligned ? hw::Load(p + at) : hw::LoadU(p + at);
    return K::Of(kWantMin && kWantMax ? hw::Pin(v) : v);
  };
  if constexpr (kWantMin && kWantMax && hw::kIsInt<T>) {
    // Exact integers: each pair of vectors is split into its smaller and larger lanes first, so
    // every vector meets one compare on its way to each accumulator. The chains then take one
    // compare per pair: two accumulators of each kind keep pace with the loads, and the few live
    // registers spare the copies a register-starved loop would make.
    constexpr int kPairs = 8;
    for (; i + 2 * kPairs * kL <= n; i += 2 * kPairs * kL) {
      for (int j = 0; j < kPairs; ++j) {
        const hw::Vec<T> a = load(i + 2 * j * kL), b = load(i + (2 * j + 1) * kL);
        lo[j % 2] = Lo::Of(Lo::Of(a, b), lo[j % 2]);
        hi[j % 2] = Hi::Of(Hi::Of(a, b), hi[j % 2]);
      }
    }
  }
  for (; i + kAcc * kL <= n; i += kAcc * kL) {
    for (int j = 0; j < kAcc; ++j) {
      const hw::Vec<T> k = load(i + j * kL);
      if constexpr (kWantMin) lo[j] = Lo::Of(k, lo[j]);
      if constexpr (kWantMax) hi[j] = Hi::Of(k, hi[j]);
    }
  }
  for (; i < n; ++i) scalar(i);
  auto fold = [](auto choose, T best, const hw::Vec<T>* acc) {
    for (int j = 0; j < kAcc; ++j)
      for (T x : hw::Lanes<T>(acc[j]).v)
        if (decltype(choose)::Better(x, best)) best = x;
    return best;
  };
  return {kWantMin ? fold(Lo{}, sLo, lo) : sLo, kWantMax ? fold(Hi{}, sHi, hi) : sHi};
}

template <class T, bool kAbs, bool kWantMin, bool kWantMax>
Extremes<T> ownsExtremes(const T* p, long long n, T init) {
  if (reinterpret_cast<uintptr_t>(p) % sizeof(T) == 0) return ownsExtremesFrom<T, kAbs, kWantMin, kWantMax, true>(p, n, init);
  return ownsExtremesFrom<T, kAbs, kWantMin, kWantMax, false>(p, n, init);
}

template <class T, bool kAbs, bool kMax>
T ownsExtreme(const T* p, long long n, T init) {
  auto e = ownsExtremes<T, kAbs, !kMax, kMax>(p, n, init);
  return kMax ? e.hi : e.lo;
}

// The first index i < n whose key equals m (n when there is none).
template <class T, bool kAbs>
long long ownsFirstEqual(const T* p, long long n, T m) {
  using K = Key<T, kAbs>;
  constexpr int kL = hw::kLanes<T>;
  const hw::Vec<T> target = hw::Set1(m);
  long long i = 0;
  for (; i + kL <= n; i += kL) {
    int lane = hw::FirstTrue(hw::Eq(K::Of(hw::LoadU(p + i)), target));
    if (lane >= 0) return i + lane;
  }
  for (; i < n; ++i)
    if (K::Of(p[i]) == m) return i;
  return n;
}

// The extreme key and the first index holding it. Below kChunkedFrom elements a scalar scan;
// from there on chunks of kChunk elements: a chunk's extreme from the vector kernel, searched
// again for its first position only when it beats the running one.
constexpr long long kChunkedFrom = 34;
constexpr long long kChunk = 2048;

template <class T, bool kAbs, bool kMax>
T ownsExtremeIndx(const T* p, long long n, int* index) {
  using K = Key<T, kAbs>;
  using C = Choose<T, kMax>;
  T best = K::Of(p[0]);
  long long at = 0;
  if (n < kChunkedFrom) {
    for (long long i = 1; i < n; ++i)
      if (C::Better(K::Of(p[i]), best)) best = K::Of(p[i]), at = i;
  } else {
    for (long long c = 0; c < n; c += kChunk) {
      const long long len = n - c < kChunk ? n - c : kChunk;
      T m = ownsExtreme<T, kAbs, kMax>(p + c, len, best);
      if (C::Better(m, best)) at = c + ownsFirstEqual<T, kAbs>(p + c, len, m), best = K::Of(p[at]);
    }
  }
  *index = static_cast<int>(at);
  return best;
}

// ---- implementations -----------------------------------------------------------------------------

template <class T, bool kAbs, bool kMax>
VspStatus Extreme(const T* pSrc, int len, T* pValue) {
  if (VspStatus st = CheckVec(len, pSrc, pValue)) return st;
  *pValue = ownsExtreme<T, kAbs, kMax>(pSrc, len, Key<T, kAbs>::Of(pSrc[0]));
  return vspStatOk;
}

// A null pIndx makes the call the plain extreme.
template <class T, bool kAbs, bool kMax>
VspStatus ExtremeIndx(const T* pSrc, int len, T* pValue, int* pIndx) {
  if (!pIndx) return Extreme<T, kAbs, kMax>(pSrc, len, pValue);
  if (VspStatus st = CheckVec(len, pSrc, pValue)) return st;
  int at;
  T v = ownsExtremeIndx<T, kAbs, kMax>(pSrc, len, &at);
  *pValue = v, *pIndx = at;
  return vspStatOk;
}

template <class T>
VspStatus MinMax(const T* pSrc, int len, T* pMin, T* pMax) {
  if (VspStatus st = CheckVec(len, pSrc, pMin, pMax)) return st;
  auto e = ownsExtremes<T, false, true, true>(pSrc, len, pSrc[0]);
  *pMin = e.lo, *pMax = e.hi;
  return vspStatOk;
}

// Min and max in one pass, then the first index of each by an equality search (a NaN pSrc[0]
// is both, at index 0).
template <class T>
VspStatus MinMaxIndx(const T* pSrc, int len, T* pMin, int* pMinIndx, T* pMax, int* pMaxIndx) {
  if (VspStatus st = CheckVec(len, pSrc, pMin, pMinIndx, pMax, pMaxIndx)) return st;
  auto e = ownsExtremes<T, false, true, true>(pSrc, len, pSrc[0]);
  auto first = [&](T m) {
    long long at = ownsFirstEqual<T, false>(pSrc, len, m);
    return at < len ? at : 0;
  };
  const long long lo = first(e.lo), hi = first(e.hi);
  *pMin = pSrc[lo], *pMinIndx = static_cast<int>(lo);
  *pMax = pSrc[hi], *pMaxIndx = static_cast<int>(hi);
  return vspStatOk;
}

// ---- MaxOrder ---------------------------------------------------------------------------------------

// Integers: the magnitudes (|-2^(b-1)| = 2^(b-1) as an unsigned pattern) OR-ed together.
template <class T>
struct OrOfAbsOp {
  static constexpr int kStep = 2 * hw::kLanes<T>;
  const T* p;
  hw::Vec<T> acc = hw::Zero<T>();
  std::make_unsigned_t<T> s = 0;
  void Scalar(long long i) { s |= static_cast<std::make_unsigned_t<T>>(p[i] < 0 ? -static_cast<long long>(p[i]) : p[i]); }
  void Vector(long long i) {
    acc = hw::Or(acc, hw::Or(hw::Abs(hw::LoadU(p + i)), hw::Abs(hw::LoadU(p + i + kStep / 2))));
  }
  int Order() const {
    unsigned long long bits = s;
    hw::Lanes<T> l(acc);
    for (T x : l.v) bits |= static_cast<std::make_unsigned_t<T>>(x);
    return bits ? 64 - std::countl_zero(bits) : 0;
  }
};

// Floats: the largest magnitude as a bit pattern, read as 32-bit words (one per 32f element; the
// low and high word of a 64f element). For 64f the high words give the maximum and the low
// words are OR-ed, which tells a zero maximum from a subnormal one. With kFiniteOnly, infinite
// and NaN elements count as 0.
template <class T, bool kFiniteOnly>
struct FloatOrderOp {
  static constexpr int kWords = sizeof(T) / 4;
  static constexpr int kStep = 2 * hw::kLanes<T>;
  static constexpr Vsp32s kFiniteLimit = kWords == 1 ? 0x7F7FFFFF : 0x7FEFFFFF;
  const Vsp32s* w;
  hw::Vec<Vsp32s> top = hw::Zero<Vsp32s>(), low = hw::Zero<Vsp32s>();
  Vsp32s sTop = 0, sLow = 0;

  explicit FloatOrderOp(const T* p) : w(reinterpret_cast<const Vsp32s*>(p)) {}
  static hw::Vec<Vsp32s> HighMask() {
    return hw::BitCast<Vsp32s>(hw::Set1<Vsp64s>(kWords == 1 ? 0x7FFFFFFF7FFFFFFFLL : 0x7FFFFFFF00000000LL));
  }
  void Scalar(long long i) {
    const Vsp32s hi = w[i * kWords + kWords - 1] & 0x7FFFFFFF;
    if (kFiniteOnly && hi > kFiniteLimit) return;
    if (hi > sTop) sTop = hi;
    if constexpr (kWords == 2) sLow |= w[i * 2];
  }
  void Vector(long long i) {
    const hw::Vec<Vsp32s> mask = HighMask();
    for (int j = 0; j < 2; ++j) {
      hw::Vec<Vsp32s> v = hw::LoadU(w + (i + j * hw::kLanes<T>) * kWords);
      if constexpr (kFiniteOnly) {
        hw::Vec<Vsp32s> bad = hw::Gt(hw::And(v, mask), hw::Set1<Vsp32s>(kFiniteLimit));
        if constexpr (kWords == 2)  // the verdict of the high word covers the low word too
          bad = hw::Or(bad, hw::BitCast<Vsp32s>(hw::ShiftRight<32>(hw::BitCast<Vsp64u>(bad))));
        v = hw::AndNot(bad, v);
      }
      top = hw::Max(top, hw::And(v, mask));
      if constexpr (kWords == 2) low = hw::Or(low, hw::AndNot(mask, v));
    }
  }
  // The largest high word (sign cleared) and whether any magnitude is non-zero.
  Vsp32s Top() const {
    Vsp32s t = sTop;
    for (Vsp32s x : hw::Lanes<Vsp32s>(top).v) t = x > t ? x : t;
    return t;
  }
  bool AnyLow() const {
    Vsp32s l = sLow;
    for (Vsp32s x : hw::Lanes<Vsp32s>(low).v) l |= x;
    return l != 0;
  }
};

template <class T, bool kFiniteOnly>
FloatOrderOp<T, kFiniteOnly> ownsFloatOrder(const T* p, long long n) {
  FloatOrderOp<T, kFiniteOnly> op(p);
  ForEachAligned(p, n, op);
  return op;
}

template <class T>
VspStatus MaxOrder(const T* pSrc, int len, int* pOrder) {
  if (len < 1) return vspStatBadSize;  // the length before the pointers
  if (VspStatus st = CheckPtrs(pSrc, pOrder)) return st;
  if constexpr (hw::kIsInt<T>) {
    OrOfAbsOp<T> op{pSrc};
    ForEachAligned(pSrc, len, op);
    *pOrder = op.Order();
    return vspStatOk;
  } else {
    constexpr int kShift = sizeof(T) == 4 ? 23 : 20;
    constexpr int kBias = sizeof(T) == 4 ? 126 : 1022;
    auto order = [&](Vsp32s top, bool anyLow) { return top == 0 && !anyLow ? 0 : (top >> kShift) - kBias; };
    auto op = ownsFloatOrder<T, false>(pSrc, len);
    if (op.Top() <= op.kFiniteLimit) {
      *pOrder = order(op.Top(), op.AnyLow());
      return vspStatOk;
    }
    auto finite = ownsFloatOrder<T, true>(pSrc, len);
    *pOrder = order(finite.Top(), finite.AnyLow());
    return vspStatNonFiniteArg;
  }
}

// ---- MaxEvery / MinEvery ------------------------------------------------------------------------------

template <class T, bool kMax>
struct EveryOp {
  static constexpr int kStep = 2 * hw::kLanes<T>;
  const T* a;
  const T* b;
  T* d;
  void Scalar(long long i) { d[i] = Choose<T, kMax>::Better(a[i], b[i]) ? a[i] : b[i]; }
  void Vector(long long i) {
    constexpr int kL = hw::kLanes<T>;
    hw::Vec<T> x0 = Choose<T, kMax>::Of(hw::LoadU(a + i), hw::LoadU(b + i));
    hw::Vec<T> x1 = Choose<T, kMax>::Of(hw::LoadU(a + i + kL), hw::LoadU(b + i + kL));
    hw::StoreU(x0, d + i), hw::StoreU(x1, d + i + kL);
  }
};

// True when [d, d + n) and [s, s + n) overlap other than exactly.
template <class T>
bool PartialOverlap(const T* s, const T* d, long long n) {
  return s != d && s < d + n && d < s + n;
}

template <class T, bool kMax>
void ownsEvery(const T* a, const T* b, T* d, long long n) {
  EveryOp<T, kMax> op{a, b, d};
  if (PartialOverlap(a, d, n) || PartialOverlap(b, d, n)) {
    for (long long i = 0; i < n; ++i) op.Scalar(i);
    return;
  }
  ForEachAligned(d, n, op);
}

template <class T, bool kMax>
VspStatus Every(const T* pSrc1, const T* pSrc2, T* pDst, Vsp32u len) {
  if (VspStatus st = CheckPtrs(pSrc1, pSrc2, pDst)) return st;
  if (len == 0) return vspStatBadSize;
  ownsEvery<T, kMax>(pSrc1, pSrc2, pDst, len);
  return vspStatOk;
}

template <class T, bool kMax>
VspStatus EveryInPlace(const T* pSrc, T* pSrcDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pSrcDst)) return st;
  ownsEvery<T, kMax>(pSrc, pSrcDst, pSrcDst, len);
  return vspStatOk;
}

}  // namespace

#define VSP_EXTREME(t)                                                                                       \
  VSP_IMPL(VspStatus, vspsMax_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMax)) {                            \
    return Extreme<Vsp##t, false, true>(pSrc, len, pMax);                                                    \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMin_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMin)) {                            \
    return Extreme<Vsp##t, false, false>(pSrc, len, pMin);                                                   \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMaxAbs_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMaxAbs)) {                      \
    return Extreme<Vsp##t, true, true>(pSrc, len, pMaxAbs);                                                  \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMinAbs_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMinAbs)) {                      \
    return Extreme<Vsp##t, true, false>(pSrc, len, pMinAbs);                                                 \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMaxIndx_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMax, int* pIndx)) {            \
    return ExtremeIndx<Vsp##t, false, true>(pSrc, len, pMax, pIndx);                                         \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMinIndx_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMin, int* pIndx)) {            \
    return ExtremeIndx<Vsp##t, false, false>(pSrc, len, pMin, pIndx);                                        \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMaxOrder_##t, (const Vsp##t* pSrc, int len, int* pOrder)) { return MaxOrder(pSrc, len, pOrder); }
VSP_EXTREME(16s)
VSP_EXTREME(32s)
VSP_EXTREME(32f)
VSP_EXTREME(64f)

#define VSP_ABS_INDX(t)                                                                                      \
  VSP_IMPL(VspStatus, vspsMaxAbsIndx_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMaxAbs, int* pIndx)) {      \
    return ExtremeIndx<Vsp##t, true, true>(pSrc, len, pMaxAbs, pIndx);                                       \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMinAbsIndx_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMinAbs, int* pIndx)) {      \
    return ExtremeIndx<Vsp##t, true, false>(pSrc, len, pMinAbs, pIndx);                                      \
  }
VSP_ABS_INDX(16s)
VSP_ABS_INDX(32s)

#define VSP_MINMAX(t)                                                                                        \
  VSP_IMPL(VspStatus, vspsMinMax_##t, (const Vsp##t* pSrc, int len, Vsp##t* pMin, Vsp##t* pMax)) {           \
    return MinMax(pSrc, len, pMin, pMax);                                                                    \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsMinMaxIndx_##t,                                                                    \
           (const Vsp##t* pSrc, int len, Vsp##t* pMin, int* pMinIndx, Vsp##t* pMax, int* pMaxIndx)) {        \
    return MinMaxIndx(pSrc, len, pMin, pMinIndx, pMax, pMaxIndx);                                            \
  }
VSP_MINMAX(8u)
VSP_MINMAX(16u)
VSP_MINMAX(16s)
VSP_MINMAX(32u)
VSP_MINMAX(32s)
VSP_MINMAX(32f)
VSP_MINMAX(64f)

#define VSP_EVERY(t)                                                                                          \
  VSP_IMPL(VspStatus, vspsMaxEvery_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, Vsp32u len)) { \
    return Every<Vsp##t, true>(pSrc1, pSrc2, pDst, len);                                                      \
  }                                                                                                           \
  VSP_IMPL(VspStatus, vspsMinEvery_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, Vsp32u len)) { \
    return Every<Vsp##t, false>(pSrc1, pSrc2, pDst, len);                                                     \
  }
VSP_EVERY(8u)
VSP_EVERY(16u)
VSP_EVERY(32f)
VSP_EVERY(64f)

#define VSP_EVERY_I(t)                                                                                 \
  VSP_IMPL(VspStatus, vspsMaxEvery_##t##_I, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len)) {          \
    return EveryInPlace<Vsp##t, true>(pSrc, pSrcDst, len);                                             \
  }                                                                                                    \
  VSP_IMPL(VspStatus, vspsMinEvery_##t##_I, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len)) {          \
    return EveryInPlace<Vsp##t, false>(pSrc, pSrcDst, len);                                            \
  }
VSP_EVERY_I(8u)
VSP_EVERY_I(16u)
VSP_EVERY_I(16s)
VSP_EVERY_I(32s)
VSP_EVERY_I(32f)
VSP_EVERY_I(64f)
