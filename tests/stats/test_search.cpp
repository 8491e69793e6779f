// FindNearest against a brute-force search, CountInRange and ZeroCrossing against loops,
// ReplaceNAN and Normalize element by element (every length and offset), the scaled Normalize
// against an extended-precision quotient.
#include <gtest/gtest.h>

#include "stats_support.h"

namespace vsptest {
namespace {

TEST(Search, FindNearestMatchesBruteForce) {
  Rng rng(71);
  for (int tblLen : {1, 2, 3, 10, 257}) {
    std::vector<Vsp16u> table(tblLen);
    for (auto& t : table) t = static_cast<Vsp16u>(rng.Int(0, tblLen < 10 ? 20 : 65535));
    std::sort(table.begin(), table.end());
    const int n = 600;
    std::vector<Vsp16u> vals(n), out(n);
    std::vector<int> idx(n);
    for (int i = 0; i < n; ++i) vals[i] = i < 20 ? static_cast<Vsp16u>(i) : static_cast<Vsp16u>(rng.Int(0, 65535));
    vals[n - 1] = 65535;
    ASSERT_EQ(vspsFindNearest_16u(vals.data(), out.data(), idx.data(), n, table.data(), tblLen), vspStatOk);
    for (int i = 0; i < n; ++i) {
      int best = 0;
      for (int k = 1; k < tblLen; ++k)
        if (std::abs(table[k] - vals[i]) < std::abs(table[best] - vals[i])) best = k;  // strict: lower wins ties
      ASSERT_EQ(out[i], table[best]) << "value " << vals[i] << " table " << tblLen;
      ASSERT_EQ(idx[i], best) << "value " << vals[i];
      Vsp16u one;
      int oneIdx;
      ASSERT_EQ(vspsFindNearestOne_16u(vals[i], &one, &oneIdx, table.data(), tblLen), vspStatOk);
      ASSERT_EQ(one, out[i]);
      ASSERT_EQ(oneIdx, idx[i]);
    }
  }
}

TEST(Search, CountInRangeCountsTheClosedInterval) {
  Rng rng(73);
  for (int n : StatLengths()) {
    GuardedVec<Vsp32s> v(n, 4 * (n % 4));
    for (int i = 0; i < n; ++i) v[i] = static_cast<Vsp32s>(i % 5 == 0 ? rng.Bits() : rng.Int(-10, 10));
    const Vsp32s bounds[][2] = {{-3, 3}, {0, 0}, {-2147483647 - 1, 2147483647}, {-2147483647 - 1, -5}, {7, 2147483647}};
    for (auto& b : bounds) {
      int count = -1, ref = 0;
      for (int i = 0; i < n; ++i) ref += v[i] >= b[0] && v[i] <= b[1];
      ASSERT_EQ(vspsCountInRange_32s(v.data(), n, &count, b[0], b[1]), vspStatOk);
      ASSERT_EQ(count, ref) << "len " << n << " [" << b[0] << ", " << b[1] << "]";
    }
  }
}

template <class T>
double RefCrossings(const T* v, int n, int type) {
  auto sign = [](T x) { return x > 0 ? 1 : (x < 0 ? -1 : 0); };
  double c = 0;
  for (int i = 1; i < n; ++i) {
    if (type == 1)
      c += std::signbit(static_cast<double>(v[i])) != std::signbit(static_cast<double>(v[i - 1]));
    else if (type == 0)
      c += std::abs(sign(v[i]) - sign(v[i - 1])) / 2.0;
    else
      c += sign(v[i]) * sign(v[i - 1]) < 0;
  }
  return c;
}

TEST(Search, ZeroCrossingMeasures) {
  Rng rng(75);
  for (int n : StatLengths()) {
    GuardedVec<Vsp16s> s(n, 2 * (n % 8));
    GuardedVec<Vsp32f> f(n, 4 * (n % 4));
    for (int i = 0; i < n; ++i) {
      s[i] = static_cast<Vsp16s>(rng.Int(0, 3) == 0 ? 0 : rng.Int(-32768, 32767));
      const int k = static_cast<int>(rng.Int(0, 9));
      f[i] = k == 0 ? 0.0f : k == 1 ? -0.0f : k == 2 ? NAN : static_cast<Vsp32f>(rng.Uniform(-1, 1));
    }
    for (int type = 0; type < 3; ++type) {
      Vsp32f rs, rf;
      ASSERT_EQ(vspsZeroCrossing_16s32f(s.data(), n, &rs, static_cast<VspZCType>(type)), vspStatOk);
      ASSERT_EQ(vspsZeroCrossing_32f(f.data(), n, &rf, static_cast<VspZCType>(type)), vspStatOk);
      ASSERT_EQ(rs, RefCrossings(s.data(), n, type)) << "16s len " << n << " type " << type;
      ASSERT_EQ(rf, RefCrossings(f.data(), n, type)) << "32f len " << n << " type " << type;
    }
  }
}

VspStatus NormalizeReal(const Vsp32f* s, Vsp32f* d, int n) { return vspsNormalize_32f(s, d, n, 1.25f, -0.3f); }
VspStatus NormalizeReal(const Vsp64f* s, Vsp64f* d, int n) { return vspsNormalize_64f(s, d, n, 1.25, -0.3); }
VspStatus ReplaceNan(Vsp32f* p, int n) { return vspsReplaceNAN_32f_I(p, n, 7.0f); }
VspStatus ReplaceNan(Vsp64f* p, int n) { return vspsReplaceNAN_64f_I(p, n, 7.0); }

TEST(Search, ReplaceNanAndNormalizeElementByElement) {
  Rng rng(77);
  ForEachType(TypeList<Vsp32f, Vsp64f>{}, [&]<class T>() {
    for (int n : StatLengths()) {
      for (size_t off : StatOffsets<T>()) {
        GuardedVec<T> v(n, off), d(n, StatOffsets<T>().back() - off);
        for (int i = 0; i < n; ++i) {
          const int k = static_cast<int>(rng.Int(0, 5));
          v[i] = k == 0   ? -std::numeric_limits<T>::quiet_NaN()
                 : k == 1 ? std::numeric_limits<T>::infinity()
                          : static_cast<T>(rng.Uniform(-9, 9));
        }
        std::vector<T> orig(v.data(), v.data() + n);
        const T sub = static_cast<T>(1.25), div = static_cast<T>(-0.3);
        ASSERT_EQ(NormalizeReal(v.data(), d.data(), n), vspStatOk);
        for (int i = 0; i < n; ++i)
          ASSERT_TRUE(SameBits(d[i], static_cast<T>((orig[i] - sub) / div)) || (d[i] != d[i] && orig[i] != orig[i]))
              << i;
        ASSERT_EQ(ReplaceNan(v.data(), n), vspStatOk);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(v[i], orig[i] != orig[i] ? T(7) : orig[i])) << i;
        ASSERT_TRUE(v.OutsideIntact() && d.OutsideIntact());
      }
    }
  });
  // Complex: each part less its part of vSub, divided by the real vDiv; in place.
  for (int n : {1, 2, 3, 17}) {
    std::vector<Vsp32fc> c(n);
    std::vector<Vsp64fc> z(n);
    for (int i = 0; i < n; ++i) c[i] = {static_cast<Vsp32f>(i), static_cast<Vsp32f>(-i)}, z[i] = {1.0 * i, 2.0 * i};
    std::vector<Vsp32fc> c0 = c;
    ASSERT_EQ(vspsNormalize_32fc(c.data(), c.data(), n, {1.0f, -2.0f}, 3.0f), vspStatOk);
    ASSERT_EQ(vspsNormalize_64fc(z.data(), z.data(), n, {0.5, 0.25}, 0.5), vspStatOk);
    for (int i = 0; i < n; ++i) {
      EXPECT_EQ(c[i].re, (c0[i].re - 1.0f) / 3.0f);
      EXPECT_EQ(c[i].im, (c0[i].im + 2.0f) / 3.0f);
      EXPECT_EQ(z[i].re, (1.0 * i - 0.5) / 0.5);
      EXPECT_EQ(z[i].im, (2.0 * i - 0.25) / 0.5);
    }
  }
}

TEST(Search, ScaledNormalizeRoundsTheExactQuotient) {
  Rng rng(79);
  const int n = 67;
  std::vector<Vsp16s> v(2 * n), d(2 * n);
  for (auto& x : v) x = static_cast<Vsp16s>(rng.Int(-32768, 32767));
  v[0] = -32768, v[1] = 32767, v[2] = 3, v[3] = 5;
  for (int vDiv : {1, -1, 2, 3, -7, 1000, 2147483647}) {
    for (int sf = -20; sf <= 20; ++sf) {
      const Vsp16s sub = 17;
      const Vsp16sc subc = {-5, 9};
      ASSERT_EQ(vspsNormalize_16s_Sfs(v.data(), d.data(), 2 * n, sub, vDiv, sf), vspStatOk);
      for (int i = 0; i < 2 * n; ++i) {
        const long double q = std::ldexp(static_cast<long double>(v[i] - sub), -sf) / vDiv;
        if (!NearHalf(q, 1e-15L)) {
          ASSERT_EQ(d[i], RefRound<Vsp16s>(q)) << v[i] << " / " << vDiv << " sf " << sf;
        }
      }
      ASSERT_EQ(vspsNormalize_16sc_Sfs(reinterpret_cast<const Vsp16sc*>(v.data()), reinterpret_cast<Vsp16sc*>(d.data()),
                                       n, subc, vDiv, sf),
                vspStatOk);
      for (int i = 0; i < 2 * n; ++i) {
        const long double q = std::ldexp(static_cast<long double>(v[i] - (i % 2 ? subc.im : subc.re)), -sf) / vDiv;
        if (!NearHalf(q, 1e-15L)) {
          ASSERT_EQ(d[i], RefRound<Vsp16s>(q)) << i << " sf " << sf;
        }
      }
    }
  }
  // Exact halves go to the even neighbour: 3 / 2 -> 2, 5 / 2 -> 2.
  const Vsp16s h[2] = {3, 5};
  Vsp16s r[2];
  ASSERT_EQ(vspsNormalize_16s_Sfs(h, r, 2, 0, 2, 0), vspStatOk);
  EXPECT_EQ(r[0], 2);
  EXPECT_EQ(r[1], 2);
}

}  // namespace
}  // namespace vsptest
