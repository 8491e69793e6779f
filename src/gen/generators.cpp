// Generators: Tone and Triangle (phase carried between calls), VectorJaehne and VectorSlope.
#include <climits>
#include <cmath>
#include <type_traits>

#include "core/check.h"
#include "core/impl.h"
#include "core/types.h"
#include "math/scalar.h"

namespace vsp::gen {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kPi = 3.141592653589793;

// ---- storing a double sample ----------------------------------------------------------------

template <class B> inline B TruncSat(double v) {
  if (!(v > static_cast<double>(kMinOf<B>) - 1.0)) return kMinOf<B>;
  if (v >= static_cast<double>(kMaxOf<B>) + 1.0) return kMaxOf<B>;
  return static_cast<B>(v);
}
// Tone and Triangle samples: rounded to a float type, truncated toward zero for 16-bit ones.
template <class B> inline B Sample(double v) {
  if constexpr (std::is_integral_v<B>) return TruncSat<B>(v);
  else return static_cast<B>(v);
}
// A float value rounded half away from zero (0.5 with the value's sign added, then truncated)
// and saturated to the integer type B.
template <class B> inline B RoundAwaySat(float v) {
  const float r = std::trunc(v + std::copysign(0.5f, v));
  if (!(r > static_cast<float>(kMinOf<B>) - 1.0f)) return kMinOf<B>;
  if (r >= static_cast<float>(kMaxOf<B>)) return kMaxOf<B>;  // the float of the maximum is not below it
  return static_cast<B>(r);
}

// Writes sample n (one part of a complex element: part 0 real, 1 imaginary).
template <class T> inline void Write(T* d, long long n, int part, double v) {
  using B = BaseOf<T>;
  reinterpret_cast<B*>(d)[(kIsComplex<T> ? 2 : 1) * n + part] = Sample<B>(v);
}

// ---- Tone ---------------------------------------------------------------------------------------

// magn cos or magn sin (part 1) of phase + k w, the angle reduced to one period first: k w is
// 2 pi (k rFreq) and only the fraction of k rFreq matters.
inline double ToneAt(double magn, double rFreq, double phase, long long k, int part) {
  const double cycles = static_cast<double>(k) * rFreq;
  const double angle = phase + kTwoPi * (cycles - std::floor(cycles));
  return magn * (part ? math::Sin(angle) : math::Cos(angle));
}

template <class T> void ownsTone(T* d, int len, double magn, double rFreq, double phase, bool fast) {
  constexpr int kParts = kIsComplex<T> ? 2 : 1;
  const double w = kTwoPi * rFreq, c1 = 2.0 * math::Cos(w), c2 = c1 * c1 - 2.0;
  for (int part = 0; part < kParts; ++part) {
    if (fast) {
      // Blocks of 1024, each seeded afresh and continued by the one-step recurrence.
      for (long long k = 0; k < len; k += 1024) {
        const long long end = k + 1024 < len ? k + 1024 : len;
        double x0 = ToneAt(magn, rFreq, phase, k, part), x1 = ToneAt(magn, rFreq, phase, k + 1, part);
        Write(d, k, part, x0);
        for (long long n = k + 1; n < end; ++n) {
          Write(d, n, part, x1);
          const double x2 = c1 * x1 - x0;
          x0 = x1, x1 = x2;
        }
      }
    } else {
      // x[0], x[1] seeded; x[2], x[3] by the one-step recurrence; then two steps at a time.
      double x[4];
      x[0] = ToneAt(magn, rFreq, phase, 0, part);
      x[1] = ToneAt(magn, rFreq, phase, 1, part);
      x[2] = c1 * x[1] - x[0];
      x[3] = c1 * x[2] - x[1];
      for (long long n = 0; n < len; ++n) {
        if (n >= 4) x[n & 3] = c2 * x[(n - 2) & 3] - x[n & 3];  // x[n - 4] sits where x[n] goes
        Write(d, n, part, x[n & 3]);
      }
    }
  }
}

template <class T, class P, class M>
VspStatus Tone(T* pDst, int len, M magn, P rFreq, P* pPhase, VspHintAlgorithm hint) {
  if (pPhase == nullptr) return vspStatNullPtr;
  if (!(magn > 0)) return vspStatToneMagnErr;
  if (!(rFreq >= 0 && rFreq < P(0.5))) return vspStatToneFreqErr;
  const double phase = *pPhase;
  if (!(phase >= 0 && phase < kTwoPi)) return vspStatTonePhaseErr;
  if (VspStatus st = CheckVec(len, pDst)) return st;
  double p = len * (kTwoPi * rFreq) + phase;
  p = p - std::trunc(p * 0.15915494309189535) * kTwoPi;
  const P out = static_cast<P>(p);
  *pPhase = (out < 0 || out >= static_cast<P>(kTwoPi)) ? P(0) : out;
  ownsTone(pDst, len, static_cast<double>(magn), static_cast<double>(rFreq), phase, hint == vspAlgHintFast);
  return vspStatOk;
}

// ---- Triangle ---------------------------------------------------------------------------------------

template <class T>
void ownsTriangle(T* d, int len, double magn, double rFreq, double asym, double phase, int part) {
  // asym is at least -pi in its own type; a float just below the double -pi counts as -pi (b = 0:
  // no falling slope, a sawtooth).
  const double a = kPi - asym, b = asym > -kPi ? kPi + asym : 0.0;
  const double fall = -4.0 * kPi * magn * rFreq / b, rise = 4.0 * kPi * magn * rFreq / a;
  bool rising = !(phase < b);
  double y = rising ? magn * (2.0 * (phase - b) / a - 1.0) : magn * (1.0 - 2.0 * phase / b);
  for (long long n = 0; n < len; ++n) {
    Write(d, n, part, y);
    y += rising ? rise : fall;
    if (rising && y > magn) {
      const double r = b > 0 ? y * (-a / b) + (magn + magn * a / b) : -2.0 * magn;
      if (r >= -magn) y = r, rising = false;
      else y = y - 4.0 * kPi * magn / a;
    } else if (!rising && y < -magn) {
      const double r = y * (-b / a) + (magn * (-b / a) - magn);
      if (r <= magn) y = r, rising = true;
      else y = y + 4.0 * kPi * magn / b;
    }
  }
}

template <class T, class P, class M>
VspStatus Triangle(T* pDst, int len, M magn, P rFreq, P asym, P* pPhase) {
  if (pPhase == nullptr) return vspStatNullPtr;
  if (!(magn > 0)) return vspStatTrnglMagnErr;
  if (!(rFreq >= 0 && rFreq < P(0.5))) return vspStatTrnglFreqErr;
  if (!(asym >= static_cast<P>(-kPi) && asym < static_cast<P>(kPi))) return vspStatTrnglAsymErr;
  const double phase = *pPhase;
  if (!(phase >= 0 && phase < kTwoPi)) return vspStatTrnglPhaseErr;
  if (VspStatus st = CheckVec(len, pDst)) return st;
  double p = len * kTwoPi * rFreq + phase;
  p = p - std::floor(p / kTwoPi) * kTwoPi;
  *pPhase = (p < 0 || p >= kTwoPi) ? P(0) : static_cast<P>(p);
  ownsTriangle(pDst, len, magn, rFreq, asym, phase, 0);
  if constexpr (kIsComplex<T>) {
    const double q = phase - kPi / 2;
    ownsTriangle(pDst, len, magn, rFreq, asym, q < 0 ? q + kTwoPi : q, 1);
  }
  return vspStatOk;
}

// ---- VectorJaehne and VectorSlope ------------------------------------------------------------------

template <class T> VspStatus Jaehne(T* pDst, int len, T magn) {
  if (VspStatus st = CheckVec(len, pDst)) return st;
  if constexpr (std::is_signed_v<T> || std::is_floating_point_v<T>)
    if (magn < 0) return vspStatJaehneErr;
  const float w = static_cast<float>(1.5707963267948966 / len);
  for (long long n = 0; n < len; ++n) {
    if constexpr (std::is_same_v<T, Vsp64f>) {
      const double x = static_cast<double>(n);
      pDst[n] = magn * math::Sin(static_cast<double>(w) * x * x);
    } else {
      const float x = static_cast<float>(n);
      const float s = static_cast<float>(math::Sin(w * x * x));  // the float argument's sine
      const float v = static_cast<float>(magn) * s;
      if constexpr (std::is_same_v<T, Vsp32f>) pDst[n] = v;
      else pDst[n] = RoundAwaySat<T>(v);
    }
  }
  return vspStatOk;
}

template <class T, class P> VspStatus Slope(T* pDst, int len, P offset, P slope) {
  if (VspStatus st = CheckVec(len, pDst)) return st;
  if constexpr (std::is_floating_point_v<T>) {
    for (long long n = 0; n < len; ++n) pDst[n] = offset + slope * static_cast<P>(n);
  } else if (slope == 0) {
    const T v = RoundAwaySat<T>(offset);
    for (long long n = 0; n < len; ++n) pDst[n] = v;
  } else {
    for (long long n = 0; n < len; ++n) pDst[n] = RoundAwaySat<T>(offset + slope * static_cast<float>(n));
  }
  return vspStatOk;
}

}  // namespace
}  // namespace vsp::gen

namespace G = vsp::gen;

#define VSP_TONE(t, m, p)                                                                                       \
  VSP_IMPL(VspStatus, vspsTone_##t, (Vsp##t * pDst, int len, m magn, p rFreq, p* pPhase, VspHintAlgorithm hint)) { \
    return G::Tone(pDst, len, magn, rFreq, pPhase, hint);                                                       \
  }                                                                                                             \
  VSP_IMPL(VspStatus, vspsTriangle_##t, (Vsp##t * pDst, int len, m magn, p rFreq, p asym, p* pPhase)) {          \
    return G::Triangle(pDst, len, magn, rFreq, asym, pPhase);                                                   \
  }
VSP_TONE(16s, Vsp16s, Vsp32f)
VSP_TONE(16sc, Vsp16s, Vsp32f)
VSP_TONE(32f, Vsp32f, Vsp32f)
VSP_TONE(32fc, Vsp32f, Vsp32f)
VSP_TONE(64f, Vsp64f, Vsp64f)
VSP_TONE(64fc, Vsp64f, Vsp64f)

#define VSP_JAEHNE(t) \
  VSP_IMPL(VspStatus, vspsVectorJaehne_##t, (Vsp##t * pDst, int len, Vsp##t magn)) { return G::Jaehne(pDst, len, magn); }
VSP_JAEHNE(8u)
VSP_JAEHNE(16u)
VSP_JAEHNE(16s)
VSP_JAEHNE(32s)
VSP_JAEHNE(32f)
VSP_JAEHNE(64f)

#define VSP_SLOPE(t, p)                                                                   \
  VSP_IMPL(VspStatus, vspsVectorSlope_##t, (Vsp##t * pDst, int len, p offset, p slope)) { \
    return G::Slope(pDst, len, offset, slope);                                            \
  }
VSP_SLOPE(8u, Vsp32f)
VSP_SLOPE(16u, Vsp32f)
VSP_SLOPE(16s, Vsp32f)
VSP_SLOPE(32u, Vsp32f)
VSP_SLOPE(32s, Vsp32f)
VSP_SLOPE(32f, Vsp32f)
VSP_SLOPE(64f, Vsp64f)
