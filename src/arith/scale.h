// The scale-factor rule of every integer result: the exact result R, computed in a wide type,
// becomes saturate(round(R * 2^-s)) with rounding to nearest, ties to even. This is the scalar
// form; SIMD bodies must give the same values, and the scalar heads and tails of kernels use
// these functions directly.
//
// The dispatch by scale-factor range (DispatchScale) is shared by every integer family: a family
// states the largest |R| it can produce and its destination type, the limits follow from them,
// and each range runs the kernel instantiated for its path.
#pragma once

#include "core/types.h"

namespace vsp {

// The wide signed types that hold exact results. The standard traits do not describe __int128
// in strict C++, so the few properties needed are spelled out here.
template <class W> struct WideInt;
template <> struct WideInt<Vsp32s> { using U = Vsp32u; static constexpr int kBits = 32; };
template <> struct WideInt<Vsp64s> { using U = Vsp64u; static constexpr int kBits = 64; };
template <> struct WideInt<__int128> { using U = unsigned __int128; static constexpr int kBits = 128; };

template <class W> inline constexpr W kWideMax = static_cast<W>(~typename WideInt<W>::U(0) >> 1);

// R clamped to the range of D.
template <class D, class W>
constexpr D Saturate(W r) {
  if (r < static_cast<W>(kMinOf<D>)) return kMinOf<D>;
  if (r > static_cast<W>(kMaxOf<D>)) return kMaxOf<D>;
  return static_cast<D>(r);
}

// round(R / 2^s) with ties to the even neighbour, for 1 <= s < bits of W, using the flooring
// right shift: (R + 2^(s-1) - 1 + ((R >> s) & 1)) >> s. The caller keeps R + 2^(s-1) inside W.
template <class W>
constexpr W RoundShiftEven(W r, int s) {
  return (r + ((W(1) << (s - 1)) - 1) + ((r >> s) & 1)) >> s;
}

// saturate(round(R * 2^-s)) into D for any s.
template <class D, class W>
constexpr D ScaleRule(W r, int s) {
  using U = typename WideInt<W>::U;
  constexpr int kBits = WideInt<W>::kBits;
  if (s == 0) return Saturate<D>(r);
  if (s > 0) {
    // From kBits on, |R| <= 2^(kBits-1) is at most one half after scaling, and a half rounds to 0.
    if (s >= kBits) return D(0);
    const W half = W(1) << (s - 1);
    if (r > kWideMax<W> - half) {
      // R + 2^(s-1) would leave W: round the quotient without forming the sum.
      W q = r >> s;
      const U rem = static_cast<U>(r) & ((U(1) << s) - 1);
      if (rem > static_cast<U>(half) || (rem == static_cast<U>(half) && (q & 1))) ++q;
      return Saturate<D>(q);
    }
    return Saturate<D>(RoundShiftEven(r, s));
  }
  // s < 0: R * 2^-s, saturating instead of wrapping (s = INT_MIN included: no negation first).
  if (r == 0) return D(0);
  if (s <= -(kBits - 1)) return r > 0 ? kMaxOf<D> : kMinOf<D>;
  const int left = -s;
  const W limit = kWideMax<W> >> left;  // largest |R| that shifts in range
  if (r > limit) return kMaxOf<D>;
  if (r < -limit) return kMinOf<D>;
  return Saturate<D>(static_cast<W>(static_cast<U>(r) << left));
}

// saturate(round(v * 2^-s)) for a value computed in double (ties to even; NaN gives 0), for
// families whose exact result is not an integer (Goertzel bins, phases, polar products). The
// scale is clamped where every result is 0 or saturated already.
template <class D> inline D ScaleRuleDouble(double v, int s) {
  if (v != v) return D(0);
  s = s > 1100 ? 1100 : s < -1100 ? -1100 : s;
  const double x = __builtin_ldexp(v, -s);
  if (x >= static_cast<double>(kMaxOf<D>)) return kMaxOf<D>;
  if (x <= static_cast<double>(kMinOf<D>)) return kMinOf<D>;
  const double f = __builtin_floor(x), r = x - f;
  long long q = static_cast<long long>(f);
  if (r > 0.5 || (r == 0.5 && (q & 1))) ++q;
  return Saturate<D>(q);
}

// ---- dispatch by scale-factor range --------------------------------------------------------------

// The kernel paths of an Sfs operation. Each gives exactly ScaleRule's values on its range.
enum class ScalePath {
  kPlain,      // s = 0: saturation only
  kHalf,       // s = 1: (R + ((R >> 1) & 1)) >> 1
  kRound,      // 2 <= s, while R + 2^(s-1) fits the kernel's lanes: the integer formula
  kRoundWide,  // up to the zero limit: floor(R / 2^s), plus one above a half or at an odd half
  kLeft,       // saturation limit < s < 0: left shift with saturation
  kSign,       // s <= saturation limit: maximum where R > 0, minimum where R < 0, 0 where R = 0
};

// The scale-factor ranges of an operation: every result is 0 when s > zero, and every non-zero
// result saturates when s <= sat.
struct SfsLimits {
  int zero;
  int sat;
};

constexpr int BitWidth(unsigned __int128 x) {
  int n = 0;
  for (; x != 0; x >>= 1) ++n;
  return n;
}

// The limits of an operation whose exact results reach |R| = maxAbsR, written into D:
// zero is the largest s at which maxAbsR * 2^-s still exceeds one half; sat is the largest
// negative s at which 1 * 2^-s no longer fits below D's maximum.
template <class D>
constexpr SfsLimits DeriveLimits(unsigned __int128 maxAbsR) {
  constexpr int kDstBits = static_cast<int>(sizeof(D) * 8);
  return {BitWidth(maxAbsR - 1), kMinOf<D> < 0 ? -(kDstBits - 1) : -kDstBits};
}

// Runs the kernel path for scale factor s: run.template operator()<P>() for the path P of s, or
// zero() above the zero limit (the caller's vspsZero_<T> short-cut, whose status is returned).
// kLimits are the operation's limits; kFastRound is the largest s for which the kernel's lanes
// hold R + 2^(s-1) (from there to the zero limit the wide rounding runs).
template <SfsLimits kLimits, int kFastRound, class Run, class ZeroFill>
VspStatus DispatchScale(int s, Run&& run, ZeroFill&& zero) {
  if (s > kLimits.zero) return zero();
  if (s == 0) run.template operator()<ScalePath::kPlain>();
  else if (s == 1) run.template operator()<ScalePath::kHalf>();
  else if (s > 1 && s <= kFastRound) run.template operator()<ScalePath::kRound>();
  else if (s > 1) run.template operator()<ScalePath::kRoundWide>();
  else if (s > kLimits.sat) run.template operator()<ScalePath::kLeft>();
  else run.template operator()<ScalePath::kSign>();
  return vspStatOk;
}

}  // namespace vsp
