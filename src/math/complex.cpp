// Complex-number utilities: magnitudes, power spectra, conjugates, splitting and joining. Plain
// element loops over one template per operation; the part accessors hide whether the source is
// one interleaved complex vector or two real ones.
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "arith/scale.h"
#include "core/check.h"
#include "core/loop.h"
#include "core/simd/sse3_fft.h"
#include "core/impl.h"
#include "core/types.h"
#include "math/scalar.h"

namespace vsp::cplx {
namespace {

// Sources: re and im of element i, from an interleaved vector or from two real vectors.
template <class C> struct Interleaved {
  using B = BaseOf<C>;
  const C* p;
  B Re(long long i) const { return p[i].re; }
  B Im(long long i) const { return p[i].im; }
};
template <class B> struct Split {
  const B* re;
  const B* im;
  B Re(long long i) const { return re[i]; }
  B Im(long long i) const { return im[i]; }
};

// ---- magnitudes -------------------------------------------------------------------------------

inline double Magnitude64(double re, double im) {
  const double a = std::fabs(re), b = std::fabs(im);
  if (std::isinf(a) || std::isinf(b)) return INFINITY;
  if (std::isnan(a) || std::isnan(b)) return a + b;
  const double m = a > b ? a : b;
  if (m == 0) return 0;
  const int e = std::ilogb(m);
  const double x = std::scalbn(a, -e), y = std::scalbn(b, -e);
  return std::scalbn(std::sqrt(x * x + y * y), e);
}

// sqrt(n) * 2^-s rounded to nearest even and saturated into D (n < 2^64: exact in long double,
// whose root is then rounded once).
template <class D> D RootScaled(uint64_t n, int s) {
  if (n == 0) return D(0);
  if (s >= 40) return D(0);  // sqrt(n) < 2^32: below one half
  if (s <= -40) return kMaxOf<D>;
  const long double v = std::ldexp(std::sqrt(static_cast<long double>(n)), -s);
  if (v >= static_cast<long double>(kMaxOf<D>)) return kMaxOf<D>;
  const long double f = std::floor(v), r = v - f;
  int64_t q = static_cast<int64_t>(f);
  if (r > 0.5L || (r == 0.5L && (q & 1))) ++q;
  return Saturate<D>(q);
}

// One element's magnitude (kRoot) or power into D. Magnitude: 64f by Magnitude64; 32f and 16-bit
// parts with exact squares in double, the root rounded once (+Inf for an infinite part); _Sfs the
// root of the exact integer sum, scaled. Power: 32f and 64f in the element's precision; 16-bit
// parts exactly, rounded once to float or scaled.
template <bool kRoot, class D, class B> D SumSquaresOf(B re, B im, int s) {
  if constexpr (std::is_same_v<B, Vsp64f>) {
    return kRoot ? Magnitude64(re, im) : re * re + im * im;
  } else if constexpr (!kRoot && std::is_same_v<B, Vsp32f>) {
    return re * re + im * im;
  } else if constexpr (std::is_floating_point_v<D>) {
    const double x = re, y = im;
    if constexpr (kRoot) return static_cast<D>(std::isinf(x) || std::isinf(y) ? INFINITY : std::sqrt(x * x + y * y));
    else return static_cast<D>(x * x + y * y);
  } else {
    const int64_t x = re, y = im;
    if constexpr (kRoot) return RootScaled<D>(static_cast<uint64_t>(x * x) + static_cast<uint64_t>(y * y), s);
    else return ScaleRule<D, Vsp64s>(x * x + y * y, s);
  }
}

// 32fc sources, float results, four elements a step: the magnitude from the squares and their sum
// in double lanes, its root rounded once to float; the power in float on the deinterleaved parts.
// The same operations as SumSquaresOf, so the same bits. A magnitude step whose result holds a
// NaN is redone one element at a time (+Inf for an infinite part beside a NaN).
namespace hw = vsp::simd;
template <bool kRoot> struct SumSquaresOp {
  static constexpr int kStep = hw::kLanes<Vsp32f>;
  const Vsp32fc* s;
  Vsp32f* d;
  void Scalar(long long i) { d[i] = SumSquaresOf<kRoot, Vsp32f>(s[i].re, s[i].im, 0); }
  void Vector(long long i) {
    const Vsp32f* p = reinterpret_cast<const Vsp32f*>(s + i);
    const hw::Vec<Vsp32f> a = hw::LoadU(p), b = hw::LoadU(p + hw::kLanes<Vsp32f>);
    if constexpr (!kRoot) {
      const hw::Vec<Vsp32f> re = hw::RealParts(a, b), im = hw::ImagParts(a, b);
      hw::StoreU(hw::Add(hw::Mul(re, re), hw::Mul(im, im)), d + i);
    } else {
      hw::Vec<Vsp64f> sum[2];
      for (int h = 0; h < 2; ++h) {
        const hw::Vec<Vsp32f> v = h ? b : a;
        const hw::Vec<Vsp64f> lo = hw::PromoteLo(v), hi = hw::PromoteHi(v);
        sum[h] = hw::Sqrt(hw::PairSums(hw::Mul(lo, lo), hw::Mul(hi, hi)));
      }
      const hw::Vec<Vsp32f> r = hw::Demote(sum[0], sum[1]);
      if (hw::AnyTrue(hw::Unordered(r, r))) {
        for (int k = 0; k < kStep; ++k) Scalar(i + k);
        return;
      }
      hw::StoreU(r, d + i);
    }
  }
};

template <bool kRoot, class S, class D> void ownsSumSquares(S src, D* d, long long n, int s) {
  if constexpr (std::is_same_v<S, Interleaved<Vsp32fc>>) {
    SumSquaresOp<kRoot> op{src.p, d};
    return ForEachAligned(d, n, op);
  }
  for (long long i = 0; i < n; ++i) d[i] = SumSquaresOf<kRoot, D>(src.Re(i), src.Im(i), s);
}

template <class Kernel, class S, class D> VspStatus Run(Kernel k, S src, D* pDst, int len, int s, const void* p1, const void* p2) {
  if (AnyNull(p1, p2, static_cast<const void*>(pDst))) return vspStatNullPtr;
  if (len < 1) return vspStatBadSize;
  k(src, pDst, len, s);
  return vspStatOk;
}

// ---- conjugates, parts --------------------------------------------------------------------------

template <class B> inline B Negate(B x) {
  if constexpr (std::is_integral_v<B>) return x == kMinOf<B> ? kMaxOf<B> : static_cast<B>(-x);
  else return -x;
}

template <class C> VspStatus Conj(const C* pSrc, C* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  for (long long i = 0; i < len; ++i) pDst[i] = C{pSrc[i].re, Negate(pSrc[i].im)};
  return vspStatOk;
}
template <class C> VspStatus ConjFlip(const C* pSrc, C* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  for (long long i = 0; i < len; ++i) pDst[i] = C{pSrc[len - 1 - i].re, Negate(pSrc[len - 1 - i].im)};
  return vspStatOk;
}
template <class C> VspStatus Parts(const C* pSrc, BaseOf<C>* pRe, BaseOf<C>* pIm, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pRe, pIm)) return st;
  for (long long i = 0; i < len; ++i) pRe[i] = pSrc[i].re, pIm[i] = pSrc[i].im;
  return vspStatOk;
}
template <bool kIm, class C> VspStatus Part(const C* pSrc, BaseOf<C>* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  for (long long i = 0; i < len; ++i) pDst[i] = kIm ? pSrc[i].im : pSrc[i].re;
  return vspStatOk;
}
template <class B, class C> VspStatus Join(const B* pRe, const B* pIm, C* pDst, int len) {
  if (pDst == nullptr || (pRe == nullptr && pIm == nullptr)) return vspStatNullPtr;
  if (len < 1) return vspStatBadSize;
  for (long long i = 0; i < len; ++i) pDst[i] = C{pRe ? pRe[i] : B(0), pIm ? pIm[i] : B(0)};
  return vspStatOk;
}

// ---- phases and the polar form -------------------------------------------------------------------

template <class S, class D> void ownsPhase(S src, D* d, long long n, int s) {
  for (long long i = 0; i < n; ++i) {
    const double p = math::Atan2(static_cast<double>(src.Im(i)), static_cast<double>(src.Re(i)));
    if constexpr (std::is_floating_point_v<D>) d[i] = static_cast<D>(p);
    else d[i] = ScaleRuleDouble<D>(p, s);
  }
}

template <class S, class D> VspStatus CartToPolar(S src, D* magn, D* phase, int len, int s, const void* p1, const void* p2) {
  if (AnyNull(p1, p2, static_cast<const void*>(magn), static_cast<const void*>(phase))) return vspStatNullPtr;
  if (len < 1) return vspStatBadSize;
  ownsSumSquares<true>(src, magn, len, s);
  ownsPhase(src, phase, len, s);
  return vspStatOk;
}

// Writes magn cos(phase), magn sin(phase) through put(i, re, im).
template <class B, class Put> void ownsPolar(const B* magn, const B* phase, long long n, Put put) {
  for (long long i = 0; i < n; ++i) {
    const double m = magn[i], p = phase[i];
    put(i, m * math::Cos(p), m * math::Sin(p));
  }
}
template <class B, class C> VspStatus PolarToCart(const B* magn, const B* phase, C* d, int len, int s) {
  if (VspStatus st = CheckVec(len, magn, phase, d)) return st;
  ownsPolar(magn, phase, len, [&](long long i, double re, double im) {
    if constexpr (std::is_floating_point_v<B>) d[i] = C{static_cast<B>(re), static_cast<B>(im)};
    else d[i] = C{ScaleRuleDouble<BaseOf<C>>(re, s), ScaleRuleDouble<BaseOf<C>>(im, s)};
  });
  return vspStatOk;
}
template <class B> VspStatus PolarToCartSplit(const B* magn, const B* phase, B* re, B* im, int len) {
  if (VspStatus st = CheckVec(len, magn, phase, re, im)) return st;
  ownsPolar(magn, phase, len, [&](long long i, double x, double y) { re[i] = static_cast<B>(x), im[i] = static_cast<B>(y); });
  return vspStatOk;
}

const auto kPhase = [](auto src, auto* d, long long n, int s) { ownsPhase(src, d, n, s); };
const auto kMag = [](auto src, auto* d, long long n, int s) { ownsSumSquares<true>(src, d, n, s); };
const auto kPow = [](auto src, auto* d, long long n, int s) { ownsSumSquares<false>(src, d, n, s); };

}  // namespace
}  // namespace vsp::cplx

namespace X = vsp::cplx;

// Magnitude and PowerSpectr: interleaved members (pSrc) and split members (pSrcRe, pSrcIm).
#define VSP_MAGPOW(Name, k, tag, C, D)                                                              \
  VSP_IMPL(VspStatus, vsps##Name##_##tag, (const C* pSrc, D* pDst, int len)) {                      \
    return X::Run(X::k, X::Interleaved<C>{pSrc}, pDst, len, 0, pSrc, pSrc);                         \
  }
#define VSP_MAGPOW_SFS(Name, k, tag, C, D)                                                          \
  VSP_IMPL(VspStatus, vsps##Name##_##tag, (const C* pSrc, D* pDst, int len, int scaleFactor)) {     \
    return X::Run(X::k, X::Interleaved<C>{pSrc}, pDst, len, scaleFactor, pSrc, pSrc);               \
  }
#define VSP_MAGPOW_SPLIT(Name, k, tag, B, D)                                                           \
  VSP_IMPL(VspStatus, vsps##Name##_##tag, (const B* pSrcRe, const B* pSrcIm, D* pDst, int len)) {      \
    return X::Run(X::k, X::Split<B>{pSrcRe, pSrcIm}, pDst, len, 0, pSrcRe, pSrcIm);                    \
  }
#define VSP_MAGPOW_SPLIT_SFS(Name, k, tag, B, D)                                                                    \
  VSP_IMPL(VspStatus, vsps##Name##_##tag, (const B* pSrcRe, const B* pSrcIm, D* pDst, int len, int scaleFactor)) { \
    return X::Run(X::k, X::Split<B>{pSrcRe, pSrcIm}, pDst, len, scaleFactor, pSrcRe, pSrcIm);                      \
  }

VSP_MAGPOW(Magnitude, kMag, 32fc, Vsp32fc, Vsp32f)
VSP_MAGPOW(Magnitude, kMag, 64fc, Vsp64fc, Vsp64f)
VSP_MAGPOW(Magnitude, kMag, 16sc32f, Vsp16sc, Vsp32f)
VSP_MAGPOW_SFS(Magnitude, kMag, 16sc_Sfs, Vsp16sc, Vsp16s)
VSP_MAGPOW_SFS(Magnitude, kMag, 32sc_Sfs, Vsp32sc, Vsp32s)
VSP_MAGPOW_SPLIT(Magnitude, kMag, 32f, Vsp32f, Vsp32f)
VSP_MAGPOW_SPLIT(Magnitude, kMag, 64f, Vsp64f, Vsp64f)
VSP_MAGPOW_SPLIT(Magnitude, kMag, 16s32f, Vsp16s, Vsp32f)
VSP_MAGPOW_SPLIT_SFS(Magnitude, kMag, 16s_Sfs, Vsp16s, Vsp16s)
VSP_MAGPOW(PowerSpectr, kPow, 32fc, Vsp32fc, Vsp32f)
VSP_MAGPOW(PowerSpectr, kPow, 64fc, Vsp64fc, Vsp64f)
VSP_MAGPOW(PowerSpectr, kPow, 16sc32f, Vsp16sc, Vsp32f)
VSP_MAGPOW_SFS(PowerSpectr, kPow, 16sc_Sfs, Vsp16sc, Vsp16s)
VSP_MAGPOW_SPLIT(PowerSpectr, kPow, 32f, Vsp32f, Vsp32f)
VSP_MAGPOW_SPLIT(PowerSpectr, kPow, 64f, Vsp64f, Vsp64f)
VSP_MAGPOW_SPLIT(PowerSpectr, kPow, 16s32f, Vsp16s, Vsp32f)
VSP_MAGPOW_SPLIT_SFS(PowerSpectr, kPow, 16s_Sfs, Vsp16s, Vsp16s)

#define VSP_CPLX_PARTS(t, b)                                                                                   \
  VSP_IMPL(VspStatus, vspsConj_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) { return X::Conj(pSrc, pDst, len); } \
  VSP_IMPL(VspStatus, vspsConj_##t##_I, (Vsp##t * pSrcDst, int len)) { return X::Conj(pSrcDst, pSrcDst, len); }     \
  VSP_IMPL(VspStatus, vspsConjFlip_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {                         \
    return X::ConjFlip(pSrc, pDst, len);                                                                       \
  }                                                                                                            \
  VSP_IMPL(VspStatus, vspsReal_##t, (const Vsp##t* pSrc, Vsp##b* pDstRe, int len)) {                           \
    return X::Part<false>(pSrc, pDstRe, len);                                                                  \
  }                                                                                                            \
  VSP_IMPL(VspStatus, vspsImag_##t, (const Vsp##t* pSrc, Vsp##b* pDstIm, int len)) {                           \
    return X::Part<true>(pSrc, pDstIm, len);                                                                   \
  }                                                                                                            \
  VSP_IMPL(VspStatus, vspsCplxToReal_##t, (const Vsp##t* pSrc, Vsp##b* pDstRe, Vsp##b* pDstIm, int len)) {     \
    return X::Parts(pSrc, pDstRe, pDstIm, len);                                                                \
  }                                                                                                            \
  VSP_IMPL(VspStatus, vspsRealToCplx_##b, (const Vsp##b* pSrcRe, const Vsp##b* pSrcIm, Vsp##t* pDst, int len)) { \
    return X::Join(pSrcRe, pSrcIm, pDst, len);                                                                 \
  }
VSP_CPLX_PARTS(16sc, 16s)
VSP_CPLX_PARTS(32fc, 32f)
VSP_CPLX_PARTS(64fc, 64f)

VSP_MAGPOW(Phase, kPhase, 32fc, Vsp32fc, Vsp32f)
VSP_MAGPOW(Phase, kPhase, 64fc, Vsp64fc, Vsp64f)
VSP_MAGPOW(Phase, kPhase, 16sc32f, Vsp16sc, Vsp32f)
VSP_MAGPOW_SFS(Phase, kPhase, 16sc_Sfs, Vsp16sc, Vsp16s)
VSP_MAGPOW_SPLIT(Phase, kPhase, 32f, Vsp32f, Vsp32f)
VSP_MAGPOW_SPLIT(Phase, kPhase, 64f, Vsp64f, Vsp64f)
VSP_MAGPOW_SPLIT(Phase, kPhase, 16s32f, Vsp16s, Vsp32f)
VSP_MAGPOW_SPLIT_SFS(Phase, kPhase, 16s_Sfs, Vsp16s, Vsp16s)

VSP_IMPL(VspStatus, vspsCartToPolar_32fc, (const Vsp32fc* pSrc, Vsp32f* pDstMagn, Vsp32f* pDstPhase, int len)) {
  return X::CartToPolar(X::Interleaved<Vsp32fc>{pSrc}, pDstMagn, pDstPhase, len, 0, pSrc, pSrc);
}
VSP_IMPL(VspStatus, vspsCartToPolar_64fc, (const Vsp64fc* pSrc, Vsp64f* pDstMagn, Vsp64f* pDstPhase, int len)) {
  return X::CartToPolar(X::Interleaved<Vsp64fc>{pSrc}, pDstMagn, pDstPhase, len, 0, pSrc, pSrc);
}
VSP_IMPL(VspStatus, vspsCartToPolar_16sc_Sfs, (const Vsp16sc* pSrc, Vsp16s* pDstMagn, Vsp16s* pDstPhase, int len, int scaleFactor)) {
  return X::CartToPolar(X::Interleaved<Vsp16sc>{pSrc}, pDstMagn, pDstPhase, len, scaleFactor, pSrc, pSrc);
}
VSP_IMPL(VspStatus, vspsCartToPolar_32f, (const Vsp32f* pSrcRe, const Vsp32f* pSrcIm, Vsp32f* pDstMagn, Vsp32f* pDstPhase, int len)) {
  return X::CartToPolar(X::Split<Vsp32f>{pSrcRe, pSrcIm}, pDstMagn, pDstPhase, len, 0, pSrcRe, pSrcIm);
}
VSP_IMPL(VspStatus, vspsCartToPolar_64f, (const Vsp64f* pSrcRe, const Vsp64f* pSrcIm, Vsp64f* pDstMagn, Vsp64f* pDstPhase, int len)) {
  return X::CartToPolar(X::Split<Vsp64f>{pSrcRe, pSrcIm}, pDstMagn, pDstPhase, len, 0, pSrcRe, pSrcIm);
}
VSP_IMPL(VspStatus, vspsPolarToCart_32fc, (const Vsp32f* pSrcMagn, const Vsp32f* pSrcPhase, Vsp32fc* pDst, int len)) {
  return X::PolarToCart(pSrcMagn, pSrcPhase, pDst, len, 0);
}
VSP_IMPL(VspStatus, vspsPolarToCart_64fc, (const Vsp64f* pSrcMagn, const Vsp64f* pSrcPhase, Vsp64fc* pDst, int len)) {
  return X::PolarToCart(pSrcMagn, pSrcPhase, pDst, len, 0);
}
VSP_IMPL(VspStatus, vspsPolarToCart_16sc_Sfs, (const Vsp16s* pSrcMagn, const Vsp16s* pSrcPhase, Vsp16sc* pDst, int len, int scaleFactor)) {
  return X::PolarToCart(pSrcMagn, pSrcPhase, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsPolarToCart_32f, (const Vsp32f* pSrcMagn, const Vsp32f* pSrcPhase, Vsp32f* pDstRe, Vsp32f* pDstIm, int len)) {
  return X::PolarToCartSplit(pSrcMagn, pSrcPhase, pDstRe, pDstIm, len);
}
VSP_IMPL(VspStatus, vspsPolarToCart_64f, (const Vsp64f* pSrcMagn, const Vsp64f* pSrcPhase, Vsp64f* pDstRe, Vsp64f* pDstIm, int len)) {
  return X::PolarToCartSplit(pSrcMagn, pSrcPhase, pDstRe, pDstIm, len);
}
