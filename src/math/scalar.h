// Scalar double-precision cosine, sine, exponential, logarithm and arctangent of the library's own, for the set-up work
// of other families (window coefficients, Kaiser's Bessel function): arguments of moderate size,
// results within 2 ulp. They are constexpr-free plain functions without errno or tables.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

namespace vsp::math {

namespace detail {

// The nearest integer (halves away from zero), whatever the caller's rounding mode.
inline double Nearest(double t) { return static_cast<double>(static_cast<int64_t>(t + (t >= 0 ? 0.5 : -0.5))); }

// Taylor polynomials on |r| <= pi/4: the truncation error is below 2^-60 relative.
inline double SinPoly(double r) {
  const double z = r * r;
  double p = 1.0 / 355687428096000.0;          // 1/17!
  p = p * z - 1.0 / 1307674368000.0;           // 1/15!
  p = p * z + 1.0 / 6227020800.0;              // 1/13!
  p = p * z - 1.0 / 39916800.0;                // 1/11!
  p = p * z + 1.0 / 362880.0;                  // 1/9!
  p = p * z - 1.0 / 5040.0;                    // 1/7!
  p = p * z + 1.0 / 120.0;                     // 1/5!
  p = p * z - 1.0 / 6.0;                       // 1/3!
  return r + r * (z * p);
}
inline double CosPoly(double r) {
  const double z = r * r;
  double p = -1.0 / 6402373705728000.0;        // -1/18!
  p = p * z + 1.0 / 20922789888000.0;          // 1/16!
  p = p * z - 1.0 / 87178291200.0;             // 1/14!
  p = p * z + 1.0 / 479001600.0;               // 1/12!
  p = p * z - 1.0 / 3628800.0;                 // 1/10!
  p = p * z + 1.0 / 40320.0;                   // 1/8!
  p = p * z - 1.0 / 720.0;                     // 1/6!
  p = p * z + 1.0 / 24.0;                      // 1/4!
  const double h = 0.5 * z;
  const double w = 1.0 - h;
  // 1 - z/2 + z^2 p with the rounding error of 1 - z/2 carried into the small terms.
  return w + (((1.0 - w) - h) + z * (z * p));
}

// x - k pi/2 for k = nearest(x 2/pi), with pi/2 in three parts (exact products for |k| < 2^20).
inline double Reduce(double x, int64_t* quadrant) {
  constexpr double kTwoOverPi = 0.63661977236758134308;
  constexpr double kP1 = 1.57079632673412561417e+00;  // first 33 bits of pi/2
  constexpr double kP2 = 6.07710050630396597660e-11;  // next 33 bits
  constexpr double kP3 = 2.02226624879595063154e-21;  // the rest
  const double k = Nearest(x * kTwoOverPi);
  *quadrant = static_cast<int64_t>(k);
  return ((x - k * kP1) - k * kP2) - k * kP3;
}

}  // namespace detail

// cos(x) and sin(x) for |x| < 2^20 * pi/2.
inline double Cos(double x) {
  int64_t q;
  const double r = detail::Reduce(x, &q);
  switch (q & 3) {
    case 0: return detail::CosPoly(r);
    case 1: return -detail::SinPoly(r);
    case 2: return -detail::CosPoly(r);
    default: return detail::SinPoly(r);
  }
}
inline double Sin(double x) {
  int64_t q;
  const double r = detail::Reduce(x, &q);
  switch (q & 3) {
    case 0: return detail::SinPoly(r);
    case 1: return detail::CosPoly(r);
    case 2: return -detail::SinPoly(r);
    default: return -detail::CosPoly(r);
  }
}

// e^x for |x| <= 700 (no overflow or underflow handling: the callers stay inside).
inline double Exp(double x) {
  constexpr double kLog2e = 1.4426950408889634074;
  constexpr double kLn2Hi = 6.93147180369123816490e-01;  // ln 2 with its low bits cleared
  constexpr double kLn2Lo = 1.90821492927058770002e-10;
  const double k = detail::Nearest(x * kLog2e);
  const double r = (x - k * kLn2Hi) - k * kLn2Lo;  // |r| <= 0.35
  // Taylor to r^14: truncation below 2^-60 relative.
  double p = 1.0 / 87178291200.0;
  constexpr double kInvFact[] = {1.0 / 6227020800.0, 1.0 / 479001600.0, 1.0 / 39916800.0, 1.0 / 3628800.0,
                                 1.0 / 362880.0,     1.0 / 40320.0,     1.0 / 5040.0,     1.0 / 720.0,
                                 1.0 / 120.0,        1.0 / 24.0,        1.0 / 6.0,        0.5};
  for (double c : kInvFact) p = p * r + c;
  const double e = 1.0 + (r + r * (r * p));
  // Scale by 2^k through the exponent field (k within the normal range for |x| <= 700).
  const uint64_t bits = static_cast<uint64_t>(static_cast<int64_t>(k) + 1023) << 52;
  double scale;
  std::memcpy(&scale, &bits, sizeof scale);
  return e * scale;
}

// ln(x) for finite x > 0 (normal or subnormal): x = m 2^e with m in [sqrt(1/2), sqrt(2)),
// ln m = 2 atanh(s), s = (m - 1)/(m + 1), |s| <= 0.172, by its series to s^23.
inline double Log(double x) {
  uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  int e = 0;
  if ((bits >> 52) == 0) {  // subnormal: scale into the normal range first
    x *= 0x1p54;
    std::memcpy(&bits, &x, sizeof bits);
    e = -54;
  }
  e += static_cast<int>(bits >> 52) - 1023;
  bits = (bits & 0x000FFFFFFFFFFFFFULL) | 0x3FF0000000000000ULL;  // m in [1, 2)
  double m;
  std::memcpy(&m, &bits, sizeof m);
  if (m > 1.4142135623730951) m *= 0.5, ++e;
  const double s = (m - 1.0) / (m + 1.0), z = s * s;
  double p = 1.0 / 23.0;
  constexpr double kOdd[] = {1.0 / 21, 1.0 / 19, 1.0 / 17, 1.0 / 15, 1.0 / 13, 1.0 / 11, 1.0 / 9, 1.0 / 7, 1.0 / 5, 1.0 / 3};
  for (double c : kOdd) p = p * z + c;
  constexpr double kLn2Hi = 6.93147180369123816490e-01, kLn2Lo = 1.90821492927058770002e-10;
  const double f = 2.0 * s, fz = f * (z * p);
  return e * kLn2Hi + (f + (fz + e * kLn2Lo));
}

// atan2(y, x) in (-pi, pi] (atan2(+-0, x) = +-0 or +-pi by the signs, as IEEE's atan2): the
// ratio of the smaller to the larger part in [0, 1], halved twice by
// atan(t) = 2 atan(t / (1 + sqrt(1 + t^2))) to |t| <= 0.2, its series to t^31, then the octant.
inline double Atan2(double y, double x) {
  constexpr double kPi = 3.141592653589793116, kPiLo = 1.2246467991473532e-16;  // pi = kPi + kPiLo
  if (x != x || y != y) return x + y;
  const double ax = x < 0 ? -x : x, ay = y < 0 ? -y : y;
  const bool ySign = std::signbit(y), xNeg = std::signbit(x);
  double a;  // atan(ay / ax) in [0, pi/2]
  if (ay == 0) {
    a = 0;
  } else if (ax == ay && ax - ax != ax - ax) {  // both infinite
    a = kPi / 4;
  } else {
    const bool swap = ay > ax;
    const double num = swap ? ax : ay, den = swap ? ay : ax;
    double t = den - den != den - den ? 0.0 : num / den;  // an infinite larger part: ratio 0
    double scale = 1.0;
    for (int k = 0; k < 2 && t > 0.2; ++k) t = t / (1.0 + std::sqrt(1.0 + t * t)), scale *= 2.0;
    const double z = t * t;
    double p = 1.0 / 31;
    for (int k = 29; k >= 3; k -= 2) p = p * (-z) + 1.0 / k;
    a = scale * (t - t * (z * p));
    if (swap) a = (kPi / 2 - a) + kPiLo / 2;
  }
  double r = xNeg ? (kPi - a) + kPiLo : a;
  return ySign ? -r : r;
}

}  // namespace vsp::math
