// Search and clean-up: FindNearest, CountInRange, ZeroCrossing, ReplaceNAN, Normalize.
#include <cmath>

#include "core/check.h"
#include "core/impl.h"
#include "core/loop.h"
#include "core/simd/sse3_stats.h"
#include "stats/accumulate.h"

namespace {

using namespace vsp;
using namespace vsp::stats;

// ---- FindNearest ------------------------------------------------------------------------------------

// The first index in [0, n) whose entry is not below v (n when there is none), by bisection.
long long LowerBound(const Vsp16u* t, long long n, Vsp16u v) {
  long long lo = 0, hi = n;
  while (lo < hi) {
    long long mid = lo + (hi - lo) / 2;
    if (t[mid] < v) lo = mid + 1;
    else hi = mid;
  }
  return lo;
}

// The nearest entry to v (the lower one at equal distance) and the lowest index holding it.
void ownsFindNearest(Vsp16u v, const Vsp16u* t, long long n, Vsp16u* value, int* index) {
  long long k = LowerBound(t, n, v);
  if (k == n) k = n - 1;
  else if (k > 0 && t[k] != v && v - t[k - 1] <= t[k] - v) k = k - 1;
  *value = t[k];
  *index = static_cast<int>(LowerBound(t, k + 1, t[k]));  // within [0, k] for any table
}

// ---- CountInRange -----------------------------------------------------------------------------------

struct CountOp {
  static constexpr int kStep = 8;
  const Vsp32s* p;
  Vsp32s lo, hi;
  hw::Vec<Vsp32s> acc = hw::Zero<Vsp32s>();  // counts per lane
  long long s = 0;
  void Scalar(long long i) { s += p[i] >= lo && p[i] <= hi; }
  void Vector(long long i) {
    const hw::Vec<Vsp32s> l = hw::Set1(lo), h = hw::Set1(hi), ones = hw::Set1<Vsp32s>(-1);
    for (int j = 0; j < 2; ++j) {
      hw::Vec<Vsp32s> x = hw::LoadU(p + i + 4 * j);
      acc = hw::Sub(acc, hw::AndNot(hw::Or(hw::Gt(l, x), hw::Gt(x, h)), ones));  // inside: -1
    }
  }
  long long Count() const {
    long long c = s;
    for (Vsp32s x : hw::Lanes<Vsp32s>(acc).v) c += x;
    return c;
  }
};

// ---- ZeroCrossing ---------------------------------------------------------------------------------------

// Per pair (x[n-1], x[n]) a count of 0, 1 or 2 half-steps (vspZCR) or 0/1 (the others), summed
// over the pairs starting at p + 1. Lanes are 16- or 32-bit integers of the element's size.
template <class T>
struct CrossOp {
  using I = std::conditional_t<sizeof(T) == 2, Vsp16s, Vsp32s>;
  using U = std::make_unsigned_t<I>;
  static constexpr int kStep = hw::kLanes<T>;
  const T* p;  // the first element of the pairs' second members: pairs (p[i - 1], p[i])
  VspZCType type;
  hw::Vec<Vsp32s> acc = hw::Zero<Vsp32s>();
  long long s = 0;

  static int Sign(T x) { return x > 0 ? 1 : (x < 0 ? -1 : 0); }
  static bool SignBit(T x) { return std::signbit(static_cast<Vsp64f>(x)); }
  void Scalar(long long i) {
    const T x = p[i], prev = p[i - 1];
    if (type == vspZCXor) {
      s += SignBit(x) != SignBit(prev);
    } else {
      const int d = std::abs(Sign(x) - Sign(prev));
      s += type == vspZCR ? d : d >> 1;
    }
  }
  static hw::Vec<I> Signs(hw::Vec<T> x) {
    return hw::Sub(hw::BitCast<I>(hw::Lt(x, hw::Zero<T>())), hw::BitCast<I>(hw::Gt(x, hw::Zero<T>())));
  }
  void Vector(long long i) {
    const hw::Vec<T> x = hw::LoadU(p + i), prev = hw::LoadU(p + i - 1);
    hw::Vec<I> d;
    if (type == vspZCXor) {
      d = hw::BitCast<I>(hw::ShiftRight<sizeof(I) * 8 - 1>(hw::BitCast<U>(hw::Xor(x, prev))));
    } else {
      d = hw::Abs(hw::Sub(Signs(x), Signs(prev)));
      if (type != vspZCR) d = hw::ShiftRight<1>(d);
    }
    if constexpr (sizeof(I) == 2) acc = hw::Add(acc, hw::MulAddPairs(d, hw::Set1<Vsp16s>(1)));
    else acc = hw::Add(acc, d);
  }
  long long Count() const {
    long long c = s;
    for (Vsp32s x : hw::Lanes<Vsp32s>(acc).v) c += x;
    return c;
  }
};

// The measure over the pairs (pSrc[n-1], pSrc[n]), n = 1 .. len - 1.
template <class T>
VspStatus ZeroCrossing(const T* pSrc, int len, Vsp32f* pValZCR, VspZCType zcType) {
  if (VspStatus st = CheckVec(len, pSrc, pValZCR)) return st;
  if (zcType != vspZCR && zcType != vspZCXor && zcType != vspZCC) return vspStatBadArg;
  CrossOp<T> op{pSrc + 1, zcType};
  ForEachAligned(pSrc + 1, len - 1, op);
  const long long c = op.Count();
  *pValZCR = static_cast<Vsp32f>(zcType == vspZCR ? static_cast<Vsp64f>(c) / 2 : static_cast<Vsp64f>(c));
  return vspStatOk;
}

// ---- ReplaceNAN -----------------------------------------------------------------------------------------

template <class T>
struct ReplaceNanOp {
  static constexpr int kStep = 2 * hw::kLanes<T>;
  T* p;
  T value;
  void Scalar(long long i) { p[i] = p[i] != p[i] ? value : p[i]; }
  void Vector(long long i) {
    const hw::Vec<T> v = hw::Set1(value);
    for (int j = 0; j < 2; ++j) {
      hw::Vec<T> x = hw::LoadU(p + i + j * hw::kLanes<T>);
      hw::StoreU(hw::Select(hw::Unordered(x, x), v, x), p + i + j * hw::kLanes<T>);
    }
  }
};

template <class T>
VspStatus ReplaceNan(T* pSrcDst, int len, T value) {
  if (VspStatus st = CheckVec(len, pSrcDst)) return st;
  ReplaceNanOp<T> op{pSrcDst, value};
  ForEachAligned(pSrcDst, len, op);
  return vspStatOk;
}

// ---- Normalize ------------------------------------------------------------------------------------------

// (x - vSub) / vDiv over the base values of real or complex data: value j subtracts part j % W of
// vSub; the vector forms hold the subtrahend in both phases of the pattern.
template <class B, int kW>
struct NormalizeOp {
  static constexpr int kStep = hw::kLanes<B>;
  const B* s;
  B* d;
  B sub[kW];
  B div;
  hw::Vec<B> subv[kW];

  NormalizeOp(const B* src, B* dst, const B* subtrahend, B divisor) : s(src), d(dst), div(divisor) {
    for (int k = 0; k < kW; ++k) sub[k] = subtrahend[k];
    for (int phase = 0; phase < kW; ++phase) {
      alignas(hw::kVecBytes) B lanes[hw::kLanes<B>];
      for (int l = 0; l < hw::kLanes<B>; ++l) lanes[l] = sub[(phase + l) % kW];
      subv[phase] = hw::Load(lanes);
    }
  }
  void Scalar(long long j) { d[j] = (s[j] - sub[j % kW]) / div; }
  void Vector(long long j) {
    hw::StoreU(hw::Div(hw::Sub(hw::LoadU(s + j), subv[j % kW]), hw::Set1(div)), d + j);
  }
};

template <class T>
VspStatus NormalizeFloat(const T* pSrc, T* pDst, int len, T vSub, BaseOf<T> vDiv) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (vDiv == 0) return vspStatDivByZeroErr;
  using B = BaseOf<T>;
  constexpr int kW = kIsComplex<T> ? 2 : 1;
  NormalizeOp<B, kW> op(reinterpret_cast<const B*>(pSrc), reinterpret_cast<B*>(pDst),
                        reinterpret_cast<const B*>(&vSub), vDiv);
  ForEachAligned(reinterpret_cast<B*>(pDst), static_cast<long long>(len) * kW, op);
  return vspStatOk;
}

// round((x - vSub) * 2^-scaleFactor / vDiv), ties to even, saturated to 16 bits; |x - vSub| is
// below 2^17, so from scaleFactor 18 on every result is 0 and from -47 down every non-zero one
// saturates.
Vsp16s NormalizeScaled(long long r, long long vDiv, int scaleFactor) {
  if (r == 0 || scaleFactor >= 18) return 0;
  if (scaleFactor <= -47) return (r > 0) == (vDiv > 0) ? kMaxOf<Vsp16s> : kMinOf<Vsp16s>;
  __int128 num = r, den = vDiv;
  if (scaleFactor > 0) den *= 1LL << scaleFactor;
  else num *= 1LL << -scaleFactor;
  if (scaleFactor >= -40) {  // both fit in 64 bits: the faster division
    long long n = static_cast<long long>(num), dd = static_cast<long long>(den);
    if (dd < 0) n = -n, dd = -dd;
    long long q = n / dd, rem = n % dd;
    if (rem < 0) q -= 1, rem += dd;
    if (2 * rem > dd || (2 * rem == dd && (q & 1))) q += 1;
    return Saturate<Vsp16s>(q);
  }
  return Saturate<Vsp16s>(RoundDivEven(num, den));
}

template <int kW>
VspStatus Normalize16s(const Vsp16s* pSrc, Vsp16s* pDst, int len, const Vsp16s* vSub, int vDiv, int scaleFactor) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (vDiv == 0) return vspStatDivByZeroErr;
  const long long n = static_cast<long long>(len) * kW;
  for (long long j = 0; j < n; ++j)
    pDst[j] = NormalizeScaled(static_cast<long long>(pSrc[j]) - vSub[j % kW], vDiv, scaleFactor);
  return vspStatOk;
}

}  // namespace

VSP_IMPL(VspStatus, vspsFindNearest_16u,
         (const Vsp16u* pVals, Vsp16u* pOutVals, int* pOutIndx, int len, const Vsp16u* pTable, int tblLen)) {
  if (VspStatus st = CheckVec(len, pVals, pOutVals, pOutIndx, pTable)) return st;
  if (tblLen < 1) return vspStatBadSize;
  for (long long i = 0; i < len; ++i) ownsFindNearest(pVals[i], pTable, tblLen, pOutVals + i, pOutIndx + i);
  return vspStatOk;
}
VSP_IMPL(VspStatus, vspsFindNearestOne_16u,
         (Vsp16u inpVal, Vsp16u* pOutVal, int* pOutIndx, const Vsp16u* pTable, int tblLen)) {
  if (VspStatus st = CheckVec(tblLen, pOutVal, pOutIndx, pTable)) return st;
  ownsFindNearest(inpVal, pTable, tblLen, pOutVal, pOutIndx);
  return vspStatOk;
}

VSP_IMPL(VspStatus, vspsCountInRange_32s,
         (const Vsp32s* pSrc, int len, int* pCounts, Vsp32s lowerBound, Vsp32s upperBound)) {
  if (VspStatus st = CheckVec(len, pSrc, pCounts)) return st;
  if (lowerBound > upperBound) return vspStatBadArg;
  CountOp op{pSrc, lowerBound, upperBound};
  ForEachAligned(pSrc, len, op);
  *pCounts = static_cast<int>(op.Count());
  return vspStatOk;
}

VSP_IMPL(VspStatus, vspsZeroCrossing_16s32f, (const Vsp16s* pSrc, int len, Vsp32f* pValZCR, VspZCType zcType)) {
  return ZeroCrossing(pSrc, len, pValZCR, zcType);
}
VSP_IMPL(VspStatus, vspsZeroCrossing_32f, (const Vsp32f* pSrc, int len, Vsp32f* pValZCR, VspZCType zcType)) {
  return ZeroCrossing(pSrc, len, pValZCR, zcType);
}

VSP_IMPL(VspStatus, vspsReplaceNAN_32f_I, (Vsp32f * pSrcDst, int len, Vsp32f value)) {
  return ReplaceNan(pSrcDst, len, value);
}
VSP_IMPL(VspStatus, vspsReplaceNAN_64f_I, (Vsp64f * pSrcDst, int len, Vsp64f value)) {
  return ReplaceNan(pSrcDst, len, value);
}

VSP_IMPL(VspStatus, vspsNormalize_32f, (const Vsp32f* pSrc, Vsp32f* pDst, int len, Vsp32f vSub, Vsp32f vDiv)) {
  return NormalizeFloat(pSrc, pDst, len, vSub, vDiv);
}
VSP_IMPL(VspStatus, vspsNormalize_64f, (const Vsp64f* pSrc, Vsp64f* pDst, int len, Vsp64f vSub, Vsp64f vDiv)) {
  return NormalizeFloat(pSrc, pDst, len, vSub, vDiv);
}
VSP_IMPL(VspStatus, vspsNormalize_32fc, (const Vsp32fc* pSrc, Vsp32fc* pDst, int len, Vsp32fc vSub, Vsp32f vDiv)) {
  return NormalizeFloat(pSrc, pDst, len, vSub, vDiv);
}
VSP_IMPL(VspStatus, vspsNormalize_64fc, (const Vsp64fc* pSrc, Vsp64fc* pDst, int len, Vsp64fc vSub, Vsp64f vDiv)) {
  return NormalizeFloat(pSrc, pDst, len, vSub, vDiv);
}
VSP_IMPL(VspStatus, vspsNormalize_16s_Sfs,
         (const Vsp16s* pSrc, Vsp16s* pDst, int len, Vsp16s vSub, int vDiv, int scaleFactor)) {
  return Normalize16s<1>(pSrc, pDst, len, &vSub, vDiv, scaleFactor);
}
VSP_IMPL(VspStatus, vspsNormalize_16sc_Sfs,
         (const Vsp16sc* pSrc, Vsp16sc* pDst, int len, Vsp16sc vSub, int vDiv, int scaleFactor)) {
  return Normalize16s<2>(reinterpret_cast<const Vsp16s*>(pSrc), reinterpret_cast<Vsp16s*>(pDst), len, &vSub.re,
                         vDiv, scaleFactor);
}
