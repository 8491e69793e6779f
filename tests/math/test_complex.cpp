// Splitting and joining complex vectors (two destinations, or optional sources), and the
// interface's edge cases of the complex utilities.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "vsp.h"

namespace {

TEST(ComplexParts, SplitAndJoin) {
  const std::vector<Vsp32fc> z = {{1, 2}, {3, 4}, {-5, 6}};
  std::vector<Vsp32f> re(3), im(3);
  ASSERT_EQ(vspsCplxToReal_32fc(z.data(), re.data(), im.data(), 3), vspStatOk);
  EXPECT_EQ(re, (std::vector<Vsp32f>{1, 3, -5}));
  EXPECT_EQ(im, (std::vector<Vsp32f>{2, 4, 6}));
  std::vector<Vsp32fc> back(3);
  ASSERT_EQ(vspsRealToCplx_32f(re.data(), im.data(), back.data(), 3), vspStatOk);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(back[i].re == z[i].re && back[i].im == z[i].im);
  // A missing part is written as zero; both missing, or no destination, is an error.
  ASSERT_EQ(vspsRealToCplx_32f(re.data(), nullptr, back.data(), 3), vspStatOk);
  EXPECT_TRUE(back[2].re == -5 && back[2].im == 0);
  ASSERT_EQ(vspsRealToCplx_32f(nullptr, im.data(), back.data(), 3), vspStatOk);
  EXPECT_TRUE(back[1].re == 0 && back[1].im == 4);
  EXPECT_EQ(vspsRealToCplx_32f(nullptr, nullptr, back.data(), 3), vspStatNullPtr);
  EXPECT_EQ(vspsRealToCplx_32f(re.data(), im.data(), nullptr, 0), vspStatNullPtr);  // pDst before len
  EXPECT_EQ(vspsRealToCplx_32f(re.data(), im.data(), back.data(), 0), vspStatBadSize);
  std::vector<Vsp16sc> s = {{-32768, -32768}, {7, -9}};
  std::vector<Vsp16s> sr(2), si(2);
  ASSERT_EQ(vspsCplxToReal_16sc(s.data(), sr.data(), si.data(), 2), vspStatOk);
  EXPECT_EQ(si, (std::vector<Vsp16s>{-32768, -9}));
  std::vector<Vsp64fc> d(2);
  ASSERT_EQ(vspsRealToCplx_64f(nullptr, std::vector<Vsp64f>{1.5, 2.5}.data(), d.data(), 2), vspStatOk);
  EXPECT_TRUE(d[1].re == 0 && d[1].im == 2.5);
  std::vector<Vsp32fc> f(2);
  ASSERT_EQ(vspsConjFlip_32fc(std::vector<Vsp32fc>{{1, 2}, {3, 4}}.data(), f.data(), 2), vspStatOk);
  EXPECT_TRUE(f[0].re == 3 && f[0].im == -4 && f[1].re == 1 && f[1].im == -2);
}

// CartToPolar is Magnitude and Phase; PolarToCart inverts it (magn cos, magn sin in double).
TEST(ComplexParts, PolarForms) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> u(-100, 100);
  const int n = 37;
  std::vector<Vsp64fc> z(n);
  std::vector<Vsp64f> re(n), im(n);
  for (int i = 0; i < n; ++i) z[i] = {u(rng), u(rng)}, re[i] = z[i].re, im[i] = z[i].im;
  std::vector<Vsp64f> m(n), p(n), m2(n), p2(n), x(n), y(n);
  ASSERT_EQ(vspsCartToPolar_64fc(z.data(), m.data(), p.data(), n), vspStatOk);
  ASSERT_EQ(vspsMagnitude_64fc(z.data(), m2.data(), n), vspStatOk);
  ASSERT_EQ(vspsPhase_64fc(z.data(), p2.data(), n), vspStatOk);
  EXPECT_EQ(m, m2);
  EXPECT_EQ(p, p2);
  ASSERT_EQ(vspsCartToPolar_64f(re.data(), im.data(), m2.data(), p2.data(), n), vspStatOk);
  EXPECT_EQ(m, m2);
  EXPECT_EQ(p, p2);
  ASSERT_EQ(vspsPolarToCart_64f(m.data(), p.data(), x.data(), y.data(), n), vspStatOk);
  std::vector<Vsp64fc> back(n);
  ASSERT_EQ(vspsPolarToCart_64fc(m.data(), p.data(), back.data(), n), vspStatOk);
  for (int i = 0; i < n; ++i) {
    const long double wr = m[i] * std::cos(static_cast<long double>(p[i])), wi = m[i] * std::sin(static_cast<long double>(p[i]));
    EXPECT_NEAR(x[i], wr, 1e-13) << i;
    EXPECT_NEAR(y[i], wi, 1e-13) << i;
    EXPECT_TRUE(back[i].re == x[i] && back[i].im == y[i]);
    EXPECT_NEAR(x[i], z[i].re, 1e-12);  // the round trip
  }
  // Floats and the scaled 16-bit forms: phase in units of 2^-13 rad, products scaled.
  std::vector<Vsp32fc> zf(n);
  std::vector<Vsp32f> mf(n), pf(n);
  for (int i = 0; i < n; ++i) zf[i] = {static_cast<float>(z[i].re), static_cast<float>(z[i].im)};
  ASSERT_EQ(vspsCartToPolar_32fc(zf.data(), mf.data(), pf.data(), n), vspStatOk);
  std::vector<Vsp32fc> bf(n);
  ASSERT_EQ(vspsPolarToCart_32fc(mf.data(), pf.data(), bf.data(), n), vspStatOk);
  for (int i = 0; i < n; ++i) EXPECT_NEAR(bf[i].re, zf[i].re, 1e-4);
  const std::vector<Vsp16sc> zs = {{3, 4}, {-1000, 0}, {0, -7}, {0, 0}};
  std::vector<Vsp16s> ms(4), ps(4);
  ASSERT_EQ(vspsCartToPolar_16sc_Sfs(zs.data(), ms.data(), ps.data(), 4, -2), vspStatOk);
  EXPECT_EQ(ms, (std::vector<Vsp16s>{20, 4000, 28, 0}));
  EXPECT_EQ(ps, (std::vector<Vsp16s>{4, 13, -6, 0}));  // 0.927, pi, -pi/2 times 4, rounded
  const std::vector<Vsp16s> mag = {100, 50}, ph = {0, 3};
  std::vector<Vsp16sc> c(2);
  ASSERT_EQ(vspsPolarToCart_16sc_Sfs(mag.data(), ph.data(), c.data(), 2, 1), vspStatOk);
  EXPECT_TRUE(c[0].re == 50 && c[0].im == 0);
  EXPECT_TRUE(c[1].re == static_cast<Vsp16s>(std::lround(25 * std::cos(3.0))) && c[1].im == static_cast<Vsp16s>(std::lround(25 * std::sin(3.0))));
  EXPECT_EQ(vspsCartToPolar_32f(nullptr, nullptr, mf.data(), pf.data(), 0), vspStatNullPtr);
  EXPECT_EQ(vspsPolarToCart_32f(mf.data(), pf.data(), mf.data(), pf.data(), 0), vspStatBadSize);
}

}  // namespace
