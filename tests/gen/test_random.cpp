// Random generators: reproducible from the seed, continuing across calls, and statistically sound
// (chi-square of uniformity, Kolmogorov-Smirnov of normality, lag-1 correlation; 10^6 samples,
// fixed seeds, thresholds at a significance of 0.001).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/types.h"
#include "vsp.h"

namespace vsptest {
namespace {

// One kind of generator through one interface.
template <class T, bool kGauss> struct Rng;
#define VSP_RNG(t, kind, Kind, G)                                                                         \
  template <> struct Rng<Vsp##t, G> {                                                                     \
    std::vector<Vsp8u> mem;                                                                               \
    Vsp##Kind##State_##t* st;                                                                             \
    Rng(Vsp##t a, Vsp##t b, unsigned seed) {                                                              \
      int size = 0;                                                                                       \
      EXPECT_EQ(vspsRand##kind##GetSize_##t(&size), vspStatOk);                                           \
      mem.assign(size + 3, 0);                                                                            \
      st = reinterpret_cast<Vsp##Kind##State_##t*>(mem.data() + 3);                                       \
      EXPECT_EQ(vspsRand##kind##Init_##t(st, a, b, seed), vspStatOk);                                     \
    }                                                                                                     \
    VspStatus Fill(Vsp##t* d, int n) { return vspsRand##kind##_##t(d, n, st); }                           \
  };
VSP_RNG(16s, Uniform, RandUni, false)
VSP_RNG(32f, Uniform, RandUni, false)
VSP_RNG(64f, Uniform, RandUni, false)
VSP_RNG(16s, Gauss, RandGauss, true)
VSP_RNG(32f, Gauss, RandGauss, true)
VSP_RNG(64f, Gauss, RandGauss, true)
using Types = TypeList<Vsp16s, Vsp32f, Vsp64f>;

TEST(Random, SameSeedSameSequenceAcrossCalls) {
  ForEachType(Types{}, []<class T>() {
    auto check = [](auto make) {
      auto a = make(), b = make();
      std::vector<T> one(1001), split(1001);
      ASSERT_EQ(a.Fill(one.data(), 1001), vspStatOk);
      for (int at = 0, step = 1; at < 1001; at += step, step = step % 7 + 2)
        ASSERT_EQ(b.Fill(split.data() + at, std::min(step, 1001 - at)), vspStatOk);
      EXPECT_EQ(one, split) << TypeName<T>();
      auto c = make();
      std::vector<T> again(1001);
      c.Fill(again.data(), 1001);
      EXPECT_EQ(one, again);
    };
    check([] { return Rng<T, false>(T(-100), T(100), 12345u); });
    check([] { return Rng<T, true>(T(3), T(40), 12345u); });
    Rng<T, false> x(T(-100), T(100), 1u), y(T(-100), T(100), 2u);
    std::vector<T> p(64), q(64);
    x.Fill(p.data(), 64), y.Fill(q.data(), 64);
    EXPECT_NE(p, q) << "different seeds, same sequence";
  });
}

constexpr int kN = 1000000;

double LagOneCorrelation(const std::vector<double>& v) {
  double m = 0;
  for (double x : v) m += x;
  m /= v.size();
  double num = 0, den = 0;
  for (size_t i = 0; i < v.size(); ++i) {
    den += (v[i] - m) * (v[i] - m);
    if (i + 1 < v.size()) num += (v[i] - m) * (v[i + 1] - m);
  }
  return num / den;
}

TEST(Random, UniformChiSquareAndCorrelation) {
  ForEachType(Types{}, []<class T>() {
    // 100 bins over [-1000, 1000): chi-square with 99 degrees of freedom below 148.2.
    Rng<T, false> r(T(-1000), T(1000), 777u);
    std::vector<T> v(kN);
    ASSERT_EQ(r.Fill(v.data(), kN), vspStatOk);
    std::vector<double> counts(100), d(kN);
    for (int i = 0; i < kN; ++i) {
      ASSERT_TRUE(v[i] >= T(-1000) && v[i] < T(1000)) << v[i];
      counts[static_cast<int>((static_cast<double>(v[i]) + 1000) / 20)] += 1;
      d[i] = v[i];
    }
    double chi2 = 0;
    for (double c : counts) chi2 += (c - kN / 100.0) * (c - kN / 100.0) / (kN / 100.0);
    EXPECT_LT(chi2, 148.2) << TypeName<T>();
    EXPECT_LT(std::fabs(LagOneCorrelation(d)), 3.3 / std::sqrt(kN)) << TypeName<T>();
  });
  // A small integer range reaches each of its values and nothing else.
  Rng<Vsp16s, false> r(-3, 5, 9u);
  std::vector<Vsp16s> v(4000);
  r.Fill(v.data(), 4000);
  std::vector<int> seen(8);
  for (Vsp16s x : v) {
    ASSERT_TRUE(x >= -3 && x < 5) << x;
    ++seen[x + 3];
  }
  for (int c : seen) EXPECT_GT(c, 400);
}

TEST(Random, GaussKolmogorovSmirnovAndRounding) {
  ForEachType(TypeList<Vsp32f, Vsp64f>{}, []<class T>() {
    Rng<T, true> r(T(2), T(3), 4242u);
    std::vector<T> v(kN);
    ASSERT_EQ(r.Fill(v.data(), kN), vspStatOk);
    std::vector<double> z(kN);
    for (int i = 0; i < kN; ++i) z[i] = (static_cast<double>(v[i]) - 2) / 3;
    EXPECT_LT(std::fabs(LagOneCorrelation(z)), 3.3 / std::sqrt(kN));
    std::sort(z.begin(), z.end());
    double dMax = 0;
    for (int i = 0; i < kN; ++i) {
      const double f = 0.5 * std::erfc(-z[i] / std::sqrt(2.0));
      dMax = std::max({dMax, f - static_cast<double>(i) / kN, static_cast<double>(i + 1) / kN - f});
    }
    EXPECT_LT(dMax * std::sqrt(kN), 1.95) << TypeName<T>();  // the 0.001 critical value
  });
  // 16s rounds to nearest: with mean 0 and stdDev 1, P(0) = P(|z| < 0.5) = 0.3829 (truncation
  // would give P(|z| < 1) = 0.6827).
  Rng<Vsp16s, true> r(0, 1, 5u);
  std::vector<Vsp16s> v(kN / 4);
  r.Fill(v.data(), kN / 4);
  const double zeros = std::count(v.begin(), v.end(), Vsp16s(0)) / static_cast<double>(v.size());
  EXPECT_NEAR(zeros, 0.3829, 0.006);
  Rng<Vsp16s, true> big(0, 30000, 6u);
  big.Fill(v.data(), kN / 4);
  EXPECT_TRUE(std::count(v.begin(), v.end(), Vsp16s(32767)) > 0) << "saturates";
}

TEST(Random, Errors) {
  int size = 0;
  EXPECT_EQ(vspsRandUniformGetSize_32f(nullptr), vspStatNullPtr);
  ASSERT_EQ(vspsRandUniformGetSize_32f(&size), vspStatOk);
  int gaussSize = 0;
  ASSERT_EQ(vspsRandGaussGetSize_32f(&gaussSize), vspStatOk);
  EXPECT_GT(gaussSize, size) << "the normal state holds the ziggurat";
  std::vector<Vsp8u> mem(gaussSize, 0);  // room for either kind of state
  auto* uni = reinterpret_cast<VspRandUniState_32f*>(mem.data());
  auto* gau = reinterpret_cast<VspRandGaussState_32f*>(mem.data());
  std::vector<Vsp32f> d(4, -1.0f);
  EXPECT_EQ(vspsRandUniform_32f(d.data(), 4, uni), vspStatBadContext) << "never initialised";
  EXPECT_EQ(vspsRandUniformInit_32f(nullptr, 0, 1, 1), vspStatNullPtr);
  EXPECT_EQ(vspsRandUniformInit_32f(uni, 1, 1, 1), vspStatBadArg);
  EXPECT_EQ(vspsRandUniformInit_32f(uni, 0, NAN, 1), vspStatBadArg);
  EXPECT_EQ(vspsRandGaussInit_32f(gau, 0, -1, 1), vspStatBadArg);
  ASSERT_EQ(vspsRandGaussInit_32f(gau, 0, 1, 1), vspStatOk);
  EXPECT_EQ(vspsRandUniform_32f(d.data(), 4, uni), vspStatBadContext) << "a normal state";
  EXPECT_EQ(vspsRandGauss_32f(nullptr, 4, gau), vspStatNullPtr);
  EXPECT_EQ(vspsRandGauss_32f(d.data(), 0, gau), vspStatBadSize);
  EXPECT_EQ(vspsRandGauss_32f(d.data(), 4, nullptr), vspStatNullPtr);
  EXPECT_EQ(d, std::vector<Vsp32f>(4, -1.0f));
}

}  // namespace
}  // namespace vsptest
