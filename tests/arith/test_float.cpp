// vspsDiv_32f against its refined reciprocal estimate (the other float members are reference
// rows of the argument-check program).
#include <gtest/gtest.h>
#include <pmmintrin.h>

#include <cfloat>
#include <cmath>
#include <limits>

#include "support/budget.h"
#include "support/buffers.h"
#include "vsp.h"

namespace vsptest {
namespace {

// Any NaN matches any NaN; otherwise the same bits.
bool SameFloat(float a, float b) { return (a != a && b != b) || std::memcmp(&a, &b, 4) == 0; }

// Random floats of every magnitude, with the special values now and then.
template <class F> F RandomFloat(Rng& rng) {
  const F specials[] = {F(0), -F(0), std::numeric_limits<F>::infinity(), -std::numeric_limits<F>::infinity(),
                        std::numeric_limits<F>::quiet_NaN(), std::numeric_limits<F>::denorm_min(),
                        std::numeric_limits<F>::max(), -std::numeric_limits<F>::min(), F(1), F(-1)};
  if (rng.Int(0, 15) == 0) return specials[rng.Int(0, 9)];
  const F m = static_cast<F>(rng.Uniform(-2, 2));
  return std::ldexp(m, static_cast<int>(rng.Int(-40, 40)));
}

// vspsDiv_32f: e = 1 - d*r, q = (n*r) * ((1 + e) + e*e) with r the hardware estimate of 1/d;
// the IEEE quotient where |e| is not below 1/2.
float RefinedQuotient(float n, float d) {
  const float r = _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(d)));
  const float e = 1.0f - d * r;
  if (!(std::fabs(e) < 0.5f)) return n / d;
  return (n * r) * ((1.0f + e) + e * e);
}

TEST(FloatArith, Div32fRefinedReciprocal) {
  Rng rng(12);
  for (int n = 1; n <= 300; n += n < 70 ? 1 : 23) {
    for (size_t off = 0; off < 16; off += 4 * Thin(2)) {
      GuardedVec<Vsp32f> x(n, off), y(n, 12 - off), d(n, off);
      bool zero = false;
      for (int i = 0; i < n; ++i) {
        x[i] = RandomFloat<Vsp32f>(rng), y[i] = RandomFloat<Vsp32f>(rng);
        if (rng.Int(0, 9) == 0) x[i] = std::ldexp(x[i], static_cast<int>(rng.Int(-130, 130)));
        zero |= x[i] == 0;
      }
      ASSERT_EQ(vspsDiv_32f(x.data(), y.data(), d.data(), n), zero ? vspStatDivByZeroWarn : vspStatOk);
      for (int i = 0; i < n; ++i) {
        ASSERT_TRUE(SameFloat(d[i], RefinedQuotient(y[i], x[i]))) << y[i] << " / " << x[i] << " got " << d[i];
        // Within a few ulps of the true quotient where both are normal.
        const float q = y[i] / x[i];
        if (std::isnormal(q) && std::isnormal(d[i])) {
          ASSERT_LE(std::fabs(d[i] - q), 4 * std::fabs(q) * FLT_EPSILON);
        }
      }
      ASSERT_EQ(vspsDiv_32f_I(x.data(), y.data(), n), zero ? vspStatDivByZeroWarn : vspStatOk);
      ASSERT_EQ(std::memcmp(y.data(), d.data(), n * sizeof(float)), 0) << "in place differs";
      ASSERT_TRUE(d.OutsideIntact());
    }
  }
  // A zero divisor among normal ones: the whole vector is written, the zero lane is IEEE.
  float num[8] = {1, -2, 0, 4, 5, 6, 7, 8}, den[8] = {2, 0, 0, 4, 3, 0.5f, -7, 1e-3f}, q[8];
  ASSERT_EQ(vspsDiv_32f(den, num, q, 8), vspStatDivByZeroWarn);
  EXPECT_EQ(q[1], -std::numeric_limits<float>::infinity());
  EXPECT_TRUE(q[2] != q[2]);
  for (int i : {0, 3, 4, 5, 6, 7}) EXPECT_TRUE(SameFloat(q[i], RefinedQuotient(num[i], den[i]))) << i;
}

}  // namespace
}  // namespace vsptest
