// Window functions: Bartlett, Hann, Hamming, the three Blackman forms and Kaiser, for every
// element type, in place or out of place. Each window value of the first half is computed once and
// applied to the element and its mirror; the cosine windows run a Chebyshev recurrence from
// cos(theta) and cos(2 theta).
#include <cmath>
#include <cstdint>

#include "core/check.h"
#include "core/impl.h"
#include "core/types.h"
#include "math/scalar.h"

namespace vsp::gen {
namespace {

constexpr double kPi = 3.14159265358979323846;

template <class T> inline constexpr bool kIs16 = std::is_same_v<BaseOf<T>, Vsp16s>;

// ---- applying one window value --------------------------------------------------------------

// The nearest integer of a float product, ties to even, saturated to 16 bits (exact in every
// rounding mode: floor and the difference are exact).
inline Vsp16s RoundSat16(float p) {
  if (!(p > -32768.5f)) return -32768;
  if (p >= 32767.5f) return 32767;
  const float f = std::floor(p);
  const float r = p - f;
  int i = static_cast<int>(f);
  if (r > 0.5f || (r == 0.5f && (i & 1))) ++i;
  return static_cast<Vsp16s>(i);
}
inline Vsp16s TruncSat16(float p) {
  if (!(p > -32769.0f)) return -32768;
  if (p >= 32768.0f) return 32767;
  return static_cast<Vsp16s>(static_cast<int>(p));
}

// d = s * w for one element (both parts of a complex one). 16-bit members take w as a float.
template <class T> inline void Put(const T* s, T* d, long long n, double w) {
  using B = BaseOf<T>;
  constexpr int kParts = kIsComplex<T> ? 2 : 1;
  const B* x = reinterpret_cast<const B*>(s + n);
  B* y = reinterpret_cast<B*>(d + n);
  for (int j = 0; j < kParts; ++j) {
    if constexpr (kIs16<T>) y[j] = RoundSat16(static_cast<float>(x[j]) * static_cast<float>(w));
    else y[j] = static_cast<B>(static_cast<double>(x[j]) * w);
  }
}
template <class T> inline void PutTrunc(const T* s, T* d, long long n, float w) {
  using B = BaseOf<T>;
  constexpr int kParts = kIsComplex<T> ? 2 : 1;
  const B* x = reinterpret_cast<const B*>(s + n);
  B* y = reinterpret_cast<B*>(d + n);
  for (int j = 0; j < kParts; ++j) y[j] = TruncSat16(static_cast<float>(x[j]) * w);
}
template <class T> inline void PutZero(T* d, long long n) { d[n] = T{}; }

// Walks the first half: w = gen.Value(n) for n = 0, 1, ... applied to n and N-1-n; the middle
// element of an odd N is copied, or multiplied by gen.Value(middle) when kScaleMiddle.
template <bool kScaleMiddle, class T, class Gen> void ownsWindow(const T* s, T* d, int len, Gen& gen) {
  const int half = len / 2;
  for (int n = 0; n < half; ++n) {
    const double w = gen.Value(n);
    Put(s, d, n, w);
    Put(s, d, len - 1 - n, w);
  }
  if (len & 1) {
    if constexpr (kScaleMiddle) Put(s, d, half, gen.Value(half));
    else d[half] = s[half];
  }
}

// {0, pSrc[1], 0}: the three-point Bartlett, Hann and Blackman windows.
template <class T> void ownsWindow3(const T* s, T* d) {
  d[1] = s[1];
  PutZero(d, 0);
  PutZero(d, 2);
}

// ---- window values ------------------------------------------------------------------------------

// c0 - a1 cos(k theta) - a2 cos(2 k theta) by two recurrences on the scaled terms, for k = 0, 1,
// ... in order. The 16-bit members round the value to single precision (Hann and Hamming subtract
// in single precision).
template <bool k16, bool kSingleSub> struct CosineValues {
  double c0, twoC1, twoC2;
  double tPrev, tCur, uPrev, uCur;  // a1 cos((k-1) theta), a1 cos(k theta); the same for a2, 2 theta
  CosineValues(double c0_, double a1, double a2, int len) : c0(c0_) {
    const double theta = 2.0 * kPi / (len - 1);
    const double c1 = math::Cos(theta), c2 = math::Cos(2.0 * theta);
    twoC1 = 2.0 * c1, twoC2 = 2.0 * c2;
    tPrev = a1 * c1, tCur = a1, uPrev = a2 * c2, uCur = a2;
  }
  double Value(int) {
    double w;
    if constexpr (kSingleSub) w = static_cast<float>(c0) - static_cast<float>(tCur);
    else if constexpr (k16) w = static_cast<float>(c0 - tCur - uCur);
    else w = c0 - tCur - uCur;
    const double t = twoC1 * tCur - tPrev, u = twoC2 * uCur - uPrev;
    tPrev = tCur, tCur = t, uPrev = uCur, uCur = u;
    return w;
  }
};

template <bool k16> struct BartlettValues {
  double step;
  double Value(int n) { return k16 ? static_cast<float>(n * step) : n * step; }
};

// I0 by Abramowitz and Stegun 9.8.1 and 9.8.2.
inline double BesselI0Approx(double x) {
  if (x < 3.75) {
    const double t = (x / 3.75) * (x / 3.75);
    return 1.0 + t * (3.5156229 + t * (3.0899424 + t * (1.2067492 + t * (0.2659732 + t * (0.0360768 + t * 0.0045813)))));
  }
  const double u = 3.75 / x;
  const double p = 0.39894228 + u * (0.01328592 + u * (0.00225319 + u * (-0.00157565 + u * (0.00916281 +
                   u * (-0.02057706 + u * (0.02635537 + u * (-0.01647633 + u * 0.00392377)))))));
  return math::Exp(x) / std::sqrt(x) * p;
}
// I0 to double precision: the power series sum (x/2)^2k / (k!)^2. Below 4.0 twenty terms reach
// the last bit; above, the terms grow up to k ~ x/2 and are summed until they no longer change
// the sum (at most a few hundred for the largest accepted argument, 616).
inline double BesselI0(double x) {
  const double q = 0.25 * x * x;
  double term = 1.0, sum = 1.0;
  const int fixed = x < 4.0 ? 20 : 0;
  for (int k = 1; k <= fixed; ++k) term *= q / (static_cast<double>(k) * k), sum += term;
  if (fixed) return sum;
  for (int k = 1; k < 100000; ++k) {
    term *= q / (static_cast<double>(k) * k);
    const double next = sum + term;
    if (next == sum) break;
    sum = next;
  }
  return sum;
}

template <bool kApprox, bool k16> struct KaiserValues {
  double a, inv;
  int last;  // N - 1
  double I0(double x) const { return kApprox ? BesselI0Approx(x) : BesselI0(x); }
  double Value(int n) {
    const double w = I0(a * std::sqrt(static_cast<double>(n) * (last - n))) * inv;
    return k16 ? static_cast<float>(w) : w;
  }
};

// ---- the members ----------------------------------------------------------------------------------

template <class T> using Alpha = std::conditional_t<std::is_same_v<BaseOf<T>, Vsp64f>, Vsp64f, Vsp32f>;

template <class T> VspStatus Check(const T* s, const T* d, int len, int minLen) {
  if (AnyNull(s, d)) return vspStatNullPtr;
  if (len < minLen) return vspStatBadSize;
  return vspStatOk;
}

template <class T> VspStatus Bartlett(const T* s, T* d, int len) {
  if (VspStatus st = Check(s, d, len, 3)) return st;
  if (len == 3) return ownsWindow3(s, d), vspStatOk;
  BartlettValues<kIs16<T>> g{2.0 / (len - 1)};
  ownsWindow<false>(s, d, len, g);
  return vspStatOk;
}

// Hann (kHamming false) and Hamming.
template <bool kHamming, class T> VspStatus HannHamming(const T* s, T* d, int len) {
  if (VspStatus st = Check(s, d, len, 3)) return st;
  if (!kHamming && len == 3) return ownsWindow3(s, d), vspStatOk;
  if constexpr (kIs16<T>) {
    constexpr float c0 = kHamming ? 0.54f : 0.5f, a1 = kHamming ? 0.46f : 0.5f;
    CosineValues<true, true> g(c0, a1, 0.0, len);
    g.Value(0);  // the ends are truncated products of c0 - a1
    PutTrunc(s, d, 0, c0 - a1);
    PutTrunc(s, d, len - 1, c0 - a1);
    for (int n = 1; n < len / 2; ++n) {
      const double w = g.Value(n);
      Put(s, d, n, w);
      Put(s, d, len - 1 - n, w);
    }
    if (len & 1) {
      if constexpr (kHamming) Put(s, d, len / 2, g.Value(len / 2));
      else d[len / 2] = s[len / 2];
    }
  } else {
    CosineValues<false, false> g(kHamming ? 0.54 : 0.5, kHamming ? 0.46 : 0.5, 0.0, len);
    ownsWindow<kHamming>(s, d, len, g);
  }
  return vspStatOk;
}

template <class T> VspStatus Blackman(const T* s, T* d, int len, Alpha<T> alpha) {
  if (VspStatus st = Check(s, d, len, 3)) return st;
  if (len == 3) return ownsWindow3(s, d), vspStatOk;
  const double a = alpha;
  CosineValues<kIs16<T>, false> g((a + 1.0) * 0.5, 0.5, a * 0.5, len);
  ownsWindow<false>(s, d, len, g);
  return vspStatOk;
}
template <class T> VspStatus BlackmanOpt(const T* s, T* d, int len) {
  if (len < 4) return vspStatBadSize;
  const double c = 0.5 / math::Cos(kPi / (len - 1));
  return Blackman(s, d, len, static_cast<Alpha<T>>(-(c * c)));
}

template <class T> VspStatus Kaiser(const T* s, T* d, int len, Alpha<T> alpha) {
  if (VspStatus st = Check(s, d, len, 1)) return st;
  constexpr bool k32 = std::is_same_v<BaseOf<T>, Vsp32f>;
  const double a = std::fabs(static_cast<double>(alpha));
  if (a * (len - 1) * 0.5 > (k32 ? 38.0 : 308.0)) return vspStatHugeWinErr;
  if (len == 1) return d[0] = s[0], vspStatOk;
  KaiserValues<k32, kIs16<T>> g{a, 0.0, len - 1};
  const double den = k32 ? std::fabs(static_cast<double>(static_cast<float>(len - 1) * static_cast<float>(alpha))) * 0.5
                         : a * (len - 1) * 0.5;
  g.inv = 1.0 / g.I0(den);
  ownsWindow<false>(s, d, len, g);
  return vspStatOk;
}

}  // namespace
}  // namespace vsp::gen

namespace G = vsp::gen;

// The out-of-place Bartlett and Blackman hand pSrc == pDst to the in-place member first.
#define VSP_WIN(W, t, call, inPlace)                                                                       \
  VSP_IMPL(VspStatus, vspsWin##W##_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {                     \
    if (inPlace && static_cast<const void*>(pSrc) == pDst) return VSP_CALL(vspsWin##W##_##t##_I)(pDst, len); \
    return call(pSrc, pDst, len);                                                                          \
  }                                                                                                        \
  VSP_IMPL(VspStatus, vspsWin##W##_##t##_I, (Vsp##t * pSrcDst, int len)) { return call(pSrcDst, pSrcDst, len); }
#define VSP_WIN_A(W, t, a, call, inPlace)                                                                             \
  VSP_IMPL(VspStatus, vspsWin##W##_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len, Vsp##a alpha)) {                  \
    if (inPlace && static_cast<const void*>(pSrc) == pDst) return VSP_CALL(vspsWin##W##_##t##_I)(pDst, len, alpha); \
    return call(pSrc, pDst, len, alpha);                                                                              \
  }                                                                                                                   \
  VSP_IMPL(VspStatus, vspsWin##W##_##t##_I, (Vsp##t * pSrcDst, int len, Vsp##a alpha)) {                              \
    return call(pSrcDst, pSrcDst, len, alpha);                                                                        \
  }

#define VSP_WIN_TYPE(t, a)                                                                                   \
  VSP_WIN(Bartlett, t, G::Bartlett, true)                                                                    \
  VSP_WIN(Hann, t, (G::HannHamming<false>), false)                                                           \
  VSP_WIN(Hamming, t, (G::HannHamming<true>), false)                                                         \
  VSP_WIN_A(Blackman, t, a, G::Blackman, true)                                                               \
  VSP_WIN_A(Kaiser, t, a, G::Kaiser, false)                                                                  \
  VSP_IMPL(VspStatus, vspsWinBlackmanStd_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {                 \
    return VSP_CALL(vspsWinBlackman_##t)(pSrc, pDst, len, static_cast<Vsp##a>(-0.16f));                      \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsWinBlackmanStd_##t##_I, (Vsp##t * pSrcDst, int len)) {                             \
    return VSP_CALL(vspsWinBlackman_##t##_I)(pSrcDst, len, static_cast<Vsp##a>(-0.16f));                     \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsWinBlackmanOpt_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {                 \
    if (len < 4) return vspStatBadSize;                                                                      \
    if (static_cast<const void*>(pSrc) == pDst) return VSP_CALL(vspsWinBlackmanOpt_##t##_I)(pDst, len);      \
    return G::BlackmanOpt(pSrc, pDst, len);                                                                  \
  }                                                                                                          \
  VSP_IMPL(VspStatus, vspsWinBlackmanOpt_##t##_I, (Vsp##t * pSrcDst, int len)) {                             \
    return G::BlackmanOpt(pSrcDst, pSrcDst, len);                                                            \
  }

VSP_WIN_TYPE(16s, 32f)
VSP_WIN_TYPE(16sc, 32f)
VSP_WIN_TYPE(32f, 32f)
VSP_WIN_TYPE(32fc, 32f)
VSP_WIN_TYPE(64f, 64f)
VSP_WIN_TYPE(64fc, 64f)
