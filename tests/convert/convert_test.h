// Shared pieces of the half-precision and complex-threshold tests: references in wide arithmetic
// (long double holds every float and 16-bit integer exactly, so src * 2^-s is exact before the
// one rounding under test) and the sweep over lengths and start offsets.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/budget.h"
#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {

// The unsigned integer of a float type's size.
template <class T>
using BitsOfType = std::conditional_t<sizeof(T) == 4, Vsp32u, Vsp64u>;

inline std::vector<int> SweepLengths() {
  std::vector<int> lens;
  for (int n = 1; n <= 70; ++n) lens.push_back(n);
  for (int n : {127, 1000, 4099}) lens.push_back(n);
  return lens;
}

// x * 2^-s for any 32-bit s (exponents beyond the long double range give 0 or Inf, as they should).
inline long double ScaledRef(long double x, long long s) {
  return std::ldexp(x, static_cast<int>(std::clamp(-s, -100000LL, 100000LL)));
}

// The rounding of rndMode: 0 toward zero, 1 to nearest even, other values half away from zero.
inline long double RoundRef(long double v, int mode) {
  if (mode == 0) return std::trunc(v);
  if (mode == 1) return std::nearbyint(v);
  return std::round(v);
}

// Float or integer source to integer destination D in [lo, hi]: round(x * 2^-s) by mode, saturated.
inline long long ToIntRef(long double x, long long s, int mode, long long lo, long long hi) {
  if (std::isnan(x)) return 0;
  const long double v = RoundRef(ScaledRef(x, s), mode);
  if (v <= lo) return lo;
  if (v >= hi) return hi;
  return static_cast<long long>(v);
}

// One member with its parameters bound, the expected destination element of a source element,
// and (where the member has one) its in-place form.
template <class S, class D>
struct Member {
  std::string name;
  std::function<VspStatus(const S*, D*, int)> call;
  std::function<D(const S&)> expect;
  std::function<VspStatus(D*, int)> inPlace = nullptr;
};

// Every length 1..70 and some long ones, every destination start offset with a source offset
// that differs from it: bit-exact results, the source unchanged, nothing written outside.
template <class S, class D>
void CheckLayouts(const Member<S, D>& m, const std::function<S(Rng&)>& gen) {
  Rng rng(std::hash<std::string>{}(m.name));
  for (int n : SweepLengths()) {
    for (size_t off = 0; off < 16; off += alignof(D)) {
      const size_t srcOff = (off * 7 + 4) % 16 / alignof(S) * alignof(S);
      GuardedVec<S> src(n, srcOff);
      GuardedVec<D> dst(n, off);
      for (int i = 0; i < n; ++i) src[i] = gen(rng);
      const std::vector<S> orig(src.data(), src.data() + n);
      ASSERT_EQ(m.call(src.data(), dst.data(), n), vspStatOk) << m.name;
      for (int i = 0; i < n; ++i) {
        const D want = m.expect(orig[i]);
        ASSERT_TRUE(SameBits(dst[i], want)) << m.name << " len " << n << " offset " << off << " element " << i;
      }
      ASSERT_TRUE(dst.OutsideIntact()) << m.name << " len " << n << " offset " << off;
      ASSERT_EQ(std::memcmp(src.data(), orig.data(), n * sizeof(S)), 0) << m.name << ": the source changed";
      if constexpr (std::is_same_v<S, D>) {
        if (!m.inPlace) continue;
        ASSERT_EQ(m.inPlace(src.data(), n), vspStatOk) << m.name << "_I";
        for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(src[i], dst[i])) << m.name << "_I len " << n << " element " << i;
        ASSERT_TRUE(src.OutsideIntact()) << m.name << "_I len " << n;
      }
    }
  }
}

// Every input in one call (the body path for almost all of them).
template <class S, class D>
void CheckInputs(const Member<S, D>& m, const std::vector<S>& inputs, long long step = 1) {
  std::vector<S> in;
  for (size_t i = 0; i < inputs.size(); i += step) in.push_back(inputs[i]);
  std::vector<D> out(in.size());
  ASSERT_EQ(m.call(in.data(), out.data(), static_cast<int>(in.size())), vspStatOk) << m.name;
  for (size_t i = 0; i < in.size(); ++i) {
    const D want = m.expect(in[i]);
    ASSERT_TRUE(SameBits(out[i], want)) << m.name << " input index " << i;
  }
}

// Random floats of T that reach every class: raw bit patterns (NaN, Inf, subnormals included),
// halves of small integers (ties), values near the integer destination limits, and moderate
// values.
template <class T>
T RandomFloat(Rng& rng) {
  switch (rng.Int(0, 4)) {
    case 0: {
      BitsOfType<T> bits = static_cast<BitsOfType<T>>(rng.Bits());
      T x;
      std::memcpy(&x, &bits, sizeof(T));
      return x;
    }
    case 1: return static_cast<T>(rng.Int(-300, 300)) + T(0.5);
    case 2: return static_cast<T>(rng.Uniform(-70000, 70000));
    case 3: {
      const T limits[] = {127, 128, 255, 256, 32767, 32768, 65535, 65536, 8388607, 8388608, 16777215, 2147483520.0f, 2147483648.0f};
      const T x = limits[rng.Int(0, 12)] + static_cast<T>(rng.Int(-2, 2)) * T(0.5);
      return rng.Int(0, 1) ? x : -x;
    }
    default: return static_cast<T>(rng.Uniform(-4, 4));
  }
}

}  // namespace vsptest
