// References and inputs of the quotient tests: exact rational rounding in 128-bit arithmetic
// (floor quotient and remainder), not the library's reciprocal methods.
#pragma once

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "support/budget.h"
#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {

using i128 = __int128;

template <class D> constexpr i128 kLo = std::numeric_limits<D>::lowest();
template <class D> constexpr i128 kHi = std::numeric_limits<D>::max();

template <class D> D Clamp(i128 v) { return static_cast<D>(v < kLo<D> ? kLo<D> : v > kHi<D> ? kHi<D> : v); }

// round(num / den) by mode for den > 0: 0 toward zero, 1 to nearest even, 2 to nearest away.
inline i128 RoundDiv(i128 num, i128 den, int mode) {
  const bool neg = num < 0;
  const i128 a = neg ? -num : num;
  const bool narrow = a < (i128(1) << 62) && den < (i128(1) << 62);  // 64-bit division suffices
  i128 q = narrow ? i128(static_cast<long long>(a) / static_cast<long long>(den)) : a / den;
  const i128 twice = 2 * (a - q * den);
  if ((mode == 1 && (twice > den || (twice == den && (q & 1)))) || (mode == 2 && twice >= den)) ++q;
  return neg ? -q : q;
}

// round(num * 2^-s / den) by mode into D; den != 0, |num| and |den| below 2^64, |s| <= 60.
template <class D> D RefQuotient(i128 num, i128 den, int s, int mode) {
  if (den < 0) num = -num, den = -den;
  if (s >= 0) return Clamp<D>(RoundDiv(num, den << s, mode));
  return Clamp<D>(RoundDiv(num << -s, den, mode));
}
template <class D> D RefZeroDivisor(i128 num) { return num == 0 ? D(0) : num > 0 ? static_cast<D>(kHi<D>) : static_cast<D>(kLo<D>); }

// Random elements: a third from the edges of the range (min, max, 0, +-1, powers of two), the
// rest uniform.
template <class T> T RandomValue(Rng& rng) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(rng.Uniform(-1000, 1000));
  } else {
    const i128 lo = kLo<T>, hi = kHi<T>;
    if (rng.Int(0, 2) == 0) {
      const i128 edges[] = {lo, lo + 1, hi, hi - 1, 0, 1, -1, 2, -2, hi / 2, lo / 2, hi / 2 + 1};
      const i128 e = edges[rng.Int(0, 11)];
      if (e >= lo && e <= hi) return static_cast<T>(e);
    }
    T v;
    rng.FillBytes(&v, sizeof(v));
    return v;
  }
}
template <class T> T RandomElement(Rng& rng) {
  if constexpr (requires(T t) { t.re; }) return {RandomValue<decltype(T{}.re)>(rng), RandomValue<decltype(T{}.re)>(rng)};
  else return RandomValue<T>(rng);
}

// Lengths that cover every head, body and tail split, plus a few long vectors.
inline std::vector<int> SweepLengths() {
  std::vector<int> lens;
  for (int n = 1; n <= 70; ++n) lens.push_back(n);
  for (int n : {127, 1000}) lens.push_back(n);
  return lens;
}
// Every start offset (bytes past a 16-byte boundary) allowed by T's alignment, or every
// sanitizedStep-th one under the sanitizers.
template <class T> std::vector<size_t> SweepOffsets() {
  std::vector<size_t> offs;
  for (size_t o = 0; o < 16; o += alignof(T) * Thin(2)) offs.push_back(o);
  return offs;
}

// Float comparison: the same bits, or NaN against NaN (payloads depend on operand order).
template <class F> bool SameFloat(F a, F b) { return (a != a && b != b) || SameBits(a, b); }
template <class T> bool SameValue(const T& a, const T& b) {
  if constexpr (std::is_floating_point_v<T>) return SameFloat(a, b);
  else if constexpr (requires(T t) { t.re; }) return SameValue(a.re, b.re) && SameValue(a.im, b.im);
  else return a == b;
}
template <class T> std::string Show(const T& v) {
  if constexpr (requires(T t) { t.re; }) {
    std::string r = Show(v.re);  // appended rather than prefixed: GCC 12 warns wrongly on "(" + string
    r.insert(r.begin(), '(');
    return r.append(", ").append(Show(v.im)).append(")");
  }
  else if constexpr (std::is_floating_point_v<T>) return std::to_string(static_cast<double>(v));
  else return std::to_string(static_cast<long long>(v));
}

}  // namespace vsptest
