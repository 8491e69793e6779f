// Goertzel: every member against e^(jwN) sum x[n] e^(-jwn) in long double, on DFT bins and between
// them, and its check order.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "vsp.h"

namespace {

using CL = std::complex<long double>;

CL Reference(const std::vector<CL>& x, long double f) {
  const long double w = 6.283185307179586L * f;
  CL sum = 0;
  for (size_t n = 0; n < x.size(); ++n) sum += x[n] * std::polar(1.0L, -w * static_cast<long double>(n));
  return sum * std::polar(1.0L, w * static_cast<long double>(x.size()));
}

TEST(Goertzel, EveryMemberAgainstTheSum) {
  std::mt19937 rng(3);
  for (int len : {1, 2, 7, 64, 1000}) {
    for (double f : {0.0, 1.0 / len, 3.0 / len, 0.3, 0.5, 0.999}) {
      if (f >= 1) continue;
      std::vector<Vsp16s> s(2 * len);
      for (auto& v : s) v = static_cast<Vsp16s>(std::uniform_int_distribution<int>(-30000, 30000)(rng));
      std::vector<CL> real(len), cplx(len);
      long double mass = 0;
      for (int n = 0; n < len; ++n) real[n] = s[n], cplx[n] = CL(s[2 * n], s[2 * n + 1]), mass += std::abs(cplx[n]);
      const CL wr = Reference(real, f), wc = Reference(cplx, f);
      const long double tol64 = 1e-13L * len * mass, tol32 = tol64 + 1e-7L * mass;
      auto near = [](CL got, CL want, long double tol) { return std::abs(got - want) <= tol; };
      std::vector<Vsp32f> x32(s.begin(), s.end());
      std::vector<Vsp64f> x64(s.begin(), s.end());
      Vsp32fc r32;
      Vsp64fc r64;
      Vsp16sc r16;
      ASSERT_EQ(vspsGoertz_32f(x32.data(), len, &r32, static_cast<float>(f)), vspStatOk);
      const CL w32 = Reference(std::vector<CL>(real), static_cast<float>(f));
      EXPECT_TRUE(near(CL(r32.re, r32.im), w32, tol32)) << len << " " << f;
      ASSERT_EQ(vspsGoertz_64f(x64.data(), len, &r64, f), vspStatOk);
      EXPECT_TRUE(near(CL(r64.re, r64.im), wr, tol64)) << len << " " << f;
      ASSERT_EQ(vspsGoertz_64fc(reinterpret_cast<Vsp64fc*>(x64.data()), len, &r64, f), vspStatOk);
      EXPECT_TRUE(near(CL(r64.re, r64.im), wc, tol64)) << len << " " << f;
      ASSERT_EQ(vspsGoertz_32fc(reinterpret_cast<Vsp32fc*>(x32.data()), len, &r32, static_cast<float>(f)), vspStatOk);
      EXPECT_TRUE(near(CL(r32.re, r32.im), Reference(cplx, static_cast<float>(f)), tol32)) << len << " " << f;
      for (int sf : {0, 4, 12}) {
        const CL want = Reference(cplx, static_cast<float>(f)) * std::pow(2.0L, -sf);
        ASSERT_EQ(vspsGoertz_16sc_Sfs(reinterpret_cast<Vsp16sc*>(s.data()), len, &r16, static_cast<float>(f), sf), vspStatOk);
        auto sat = [](long double v) { return std::max(-32768.0L, std::min(32767.0L, v)); };
        EXPECT_NEAR(r16.re, sat(want.real()), 1 + 1e-12L * len * mass) << len << " " << f << " " << sf;
        EXPECT_NEAR(r16.im, sat(want.imag()), 1 + 1e-12L * len * mass) << len << " " << f << " " << sf;
      }
      ASSERT_EQ(vspsGoertz_16s_Sfs(s.data(), len, &r16, static_cast<float>(f), 2), vspStatOk);
    }
  }
  // rFreq = 0 is the sum of the elements.
  const Vsp64f v[3] = {1.5, -2, 4};
  Vsp64fc r;
  ASSERT_EQ(vspsGoertz_64f(v, 3, &r, 0.0), vspStatOk);
  EXPECT_DOUBLE_EQ(r.re, 3.5);
  EXPECT_EQ(r.im, 0.0);
}

TEST(Goertzel, Checks) {
  const Vsp32f x[4] = {1, 2, 3, 4};
  Vsp32fc out{-9, -9};
  EXPECT_EQ(vspsGoertz_32f(nullptr, 4, &out, 0.1f), vspStatNullPtr);
  EXPECT_EQ(vspsGoertz_32f(x, 4, nullptr, 0.1f), vspStatNullPtr);
  EXPECT_EQ(vspsGoertz_32f(x, 0, &out, 2.0f), vspStatBadSize);
  EXPECT_EQ(vspsGoertz_32f(x, 4, &out, 1.0f), vspStatRelFreqErr);
  EXPECT_EQ(vspsGoertz_32f(x, 4, &out, -0.1f), vspStatRelFreqErr);
  EXPECT_TRUE(out.re == -9 && out.im == -9);
  EXPECT_EQ(vspsGoertz_32f(x, 4, &out, std::nextafter(1.0f, 0.0f)), vspStatOk);
}

}  // namespace
