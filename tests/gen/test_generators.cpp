// Tone, Triangle, VectorJaehne and VectorSlope against their formulas in long double, the phase
// hand-over between calls, and the check orders.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/types.h"
#include "vsp.h"

namespace vsptest {
namespace {

constexpr long double kPi = 3.141592653589793238462643383279502884L;

// Tone and Triangle of every type through one signature: (dst, len, magn, rFreq, asym, phase, hint).
template <class T> struct Gen;
#define VSP_GEN(t, m, p)                                                                                          \
  template <> struct Gen<Vsp##t> {                                                                                \
    using M = m;                                                                                                  \
    using P = p;                                                                                                  \
    static VspStatus Tone(Vsp##t* d, int n, M a, P f, P* ph, VspHintAlgorithm h) { return vspsTone_##t(d, n, a, f, ph, h); } \
    static VspStatus Tri(Vsp##t* d, int n, M a, P f, P as, P* ph) { return vspsTriangle_##t(d, n, a, f, as, ph); } \
  };
VSP_GEN(16s, Vsp16s, Vsp32f)
VSP_GEN(16sc, Vsp16s, Vsp32f)
VSP_GEN(32f, Vsp32f, Vsp32f)
VSP_GEN(32fc, Vsp32f, Vsp32f)
VSP_GEN(64f, Vsp64f, Vsp64f)
VSP_GEN(64fc, Vsp64f, Vsp64f)
using Types = TypeList<Vsp16s, Vsp16sc, Vsp32f, Vsp32fc, Vsp64f, Vsp64fc>;

template <class T> constexpr int kParts = std::is_same_v<T, Vsp16sc> || std::is_same_v<T, Vsp32fc> || std::is_same_v<T, Vsp64fc> ? 2 : 1;
template <class T> long double Part(const std::vector<T>& v, int n, int part) {
  using B = typename Gen<T>::M;
  return reinterpret_cast<const B*>(v.data())[kParts<T> * n + part];
}
// Allowed deviation: truncation of 16-bit samples; float rounding; the recurrences' drift.
template <class T> long double Tol(long double magn, int len) {
  using B = typename Gen<T>::M;
  if (std::is_same_v<B, Vsp16s>) return 1.0L + magn * len * 1e-12L;
  return magn * ((std::is_same_v<B, Vsp32f> ? 0x1p-23L : 0x1p-52L) * 4 + len * len * 1e-15L);
}

long double TriangleAt(long double magn, long double asym, long double theta) {
  theta -= 2 * kPi * std::floor(theta / (2 * kPi));
  const long double a = kPi - asym, b = kPi + asym;
  return theta < b ? magn * (1 - 2 * theta / b) : magn * (2 * (theta - b) / a - 1);
}

TEST(Generators, ToneAndTriangleAgainstFormulasAndAcrossCalls) {
  ForEachType(Types{}, []<class T>() {
    using G = Gen<T>;
    using P = typename G::P;
    using M = typename G::M;
    constexpr bool k16 = std::is_same_v<M, Vsp16s>;
    const M magn = std::is_same_v<M, Vsp16s> ? M(12000) : M(2.5);
    for (int len : {1, 2, 3, 4, 5, 17, 1000, 2500}) {
      for (P rFreq : {P(0), P(0.0123), P(0.25), P(0.4999)}) {
        for (VspHintAlgorithm hint : {vspAlgHintNone, vspAlgHintFast}) {
          SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(len) + " f " + std::to_string(rFreq));
          // One call, then the same samples in two calls with the phase passed on.
          const P phase0 = P(1.1);
          P ph = phase0;
          std::vector<T> one(len), two(len);
          ASSERT_EQ(G::Tone(one.data(), len, magn, rFreq, &ph, hint), vspStatOk);
          const long double w = 2 * kPi * static_cast<long double>(rFreq);
          const long double endPhase = std::fmod(len * w + phase0, 2 * kPi);
          EXPECT_NEAR(ph, endPhase, 1e-5L * (1 + len * w));
          for (int n = 0; n < len; ++n)
            for (int part = 0; part < kParts<T>; ++part) {
              const long double arg = phase0 + n * w;
              const long double want = magn * (part ? std::sin(arg) : std::cos(arg));
              EXPECT_NEAR(Part(one, n, part), k16 ? std::trunc(want) : want, Tol<T>(magn, len)) << n;
            }
          const int half = len / 2;
          if (half > 0 && std::is_same_v<P, Vsp64f>) {
            P p2 = phase0;
            ASSERT_EQ(G::Tone(two.data(), half, magn, rFreq, &p2, hint), vspStatOk);
            ASSERT_EQ(G::Tone(two.data() + half, len - half, magn, rFreq, &p2, hint), vspStatOk);
            for (int n = 0; n < len; ++n) EXPECT_NEAR(Part(two, n, 0), Part(one, n, 0), Tol<T>(magn, len)) << n;
          }
        }
        // Triangle: the wave at phase + n 2 pi rFreq (imaginary part a quarter period later).
        for (P asym : {P(0), P(-1.0), P(2.0), P(-3.14159265)}) {
          P ph = P(0.4);
          std::vector<T> y(len);
          ASSERT_EQ(G::Tri(y.data(), len, magn, rFreq, asym, &ph), vspStatOk);
          for (int n = 0; n < len; ++n)
            for (int part = 0; part < kParts<T>; ++part) {
              const long double theta = 0.4L + n * 2 * kPi * static_cast<long double>(rFreq) - (part ? kPi / 2 : 0);
              const long double want = TriangleAt(magn, asym, theta);
              EXPECT_NEAR(Part(y, n, part), k16 ? std::trunc(want) : want,
                          Tol<T>(magn, len) + magn * 1e-9L * n + (k16 ? 1 : 0))
                  << "triangle n " << n << " asym " << asym;
            }
        }
      }
    }
  });
}

TEST(Generators, CheckOrdersLeaveEverythingUntouched) {
  std::vector<Vsp32f> d(8, -7.0f);
  const std::vector<Vsp32f> canary = d;
  Vsp32f ph = 1.0f;
  struct Case {
    VspStatus got, want;
  } cases[] = {
      {vspsTone_32f(nullptr, 8, 1, 0.1f, nullptr, vspAlgHintNone), vspStatNullPtr},
      {vspsTone_32f(nullptr, 8, 0, 0.1f, &ph, vspAlgHintNone), vspStatToneMagnErr},
      {vspsTone_32f(nullptr, 0, 1, 0.5f, &ph, vspAlgHintNone), vspStatToneFreqErr},
      {vspsTone_32f(nullptr, 0, 1, -0.1f, &ph, vspAlgHintNone), vspStatToneFreqErr},
      {vspsTone_32f(nullptr, 0, 1, 0.1f, &(ph = 6.2832f), vspAlgHintNone), vspStatTonePhaseErr},
      {vspsTone_32f(nullptr, 0, 1, 0.1f, &(ph = 1.0f), vspAlgHintNone), vspStatNullPtr},
      {vspsTone_32f(d.data(), 0, 1, 0.1f, &ph, vspAlgHintNone), vspStatBadSize},
      {vspsTriangle_32f(nullptr, 8, 1, 0.1f, 0, nullptr), vspStatNullPtr},
      {vspsTriangle_32f(nullptr, 8, -1, 0.1f, 0, &ph), vspStatTrnglMagnErr},
      {vspsTriangle_32f(nullptr, 8, 1, 0.5f, 0, &ph), vspStatTrnglFreqErr},
      {vspsTriangle_32f(nullptr, 8, 1, 0.1f, 3.1416f, &ph), vspStatTrnglAsymErr},
      {vspsTriangle_32f(nullptr, 8, 1, 0.1f, 0, &(ph = -0.1f)), vspStatTrnglPhaseErr},
      {vspsTriangle_32f(nullptr, 8, 1, 0.1f, 0, &(ph = 1.0f)), vspStatNullPtr},
      {vspsTriangle_32f(d.data(), -1, 1, 0.1f, 0, &ph), vspStatBadSize},
      {vspsVectorJaehne_32f(d.data(), 8, -1.0f), vspStatJaehneErr},
      {vspsVectorJaehne_32f(nullptr, 0, -1.0f), vspStatNullPtr},
      {vspsVectorJaehne_32f(d.data(), 0, -1.0f), vspStatBadSize},
      {vspsVectorSlope_32f(nullptr, 8, 0, 1), vspStatNullPtr},
  };
  for (const Case& c : cases) EXPECT_EQ(c.got, c.want);
  EXPECT_EQ(d, canary);
  EXPECT_EQ(ph, 1.0f);
  EXPECT_EQ(vspsTriangle_32f(d.data(), 8, 1, 0.1f, -3.14159265f, &ph), vspStatOk);  // -pi is accepted
}

TEST(Generators, JaehneAndSlope) {
  // Jaehne: magn sin(w n^2), w = (pi/2)/len in float; the float member forms the argument in float.
  for (int len : {1, 2, 100, 777}) {
    const float w = static_cast<float>(1.5707963267948966 / len);
    std::vector<Vsp32f> f(len);
    std::vector<Vsp64f> g(len);
    std::vector<Vsp16s> s(len);
    std::vector<Vsp8u> u(len);
    ASSERT_EQ(vspsVectorJaehne_32f(f.data(), len, 3.0f), vspStatOk);
    ASSERT_EQ(vspsVectorJaehne_64f(g.data(), len, 3.0), vspStatOk);
    ASSERT_EQ(vspsVectorJaehne_16s(s.data(), len, 1000), vspStatOk);
    ASSERT_EQ(vspsVectorJaehne_8u(u.data(), len, 200), vspStatOk);
    for (int n = 0; n < len; ++n) {
      const float x = static_cast<float>(n), arg = w * x * x;
      const long double sf = std::sin(static_cast<long double>(arg));
      EXPECT_NEAR(f[n], 3 * sf, 1e-6) << n;
      EXPECT_NEAR(g[n], 3 * std::sin(static_cast<long double>(w) * n * n), 1e-14) << n;
      EXPECT_NEAR(s[n], std::round(1000 * sf), 1) << n;
      EXPECT_NEAR(u[n], std::max(0.0L, std::round(200 * sf)), 1) << n;
    }
    if (len == 1) {
      EXPECT_EQ(f[0], 0.0f);
    }
  }
  // Slope: offset + slope n; integers rounded half away from zero and saturated.
  std::vector<Vsp16s> s(6);
  ASSERT_EQ(vspsVectorSlope_16s(s.data(), 6, 40000.0f, 0.0f), vspStatOk);
  EXPECT_EQ(s, std::vector<Vsp16s>(6, 32767));
  ASSERT_EQ(vspsVectorSlope_16s(s.data(), 6, -2.5f, 0.0f), vspStatOk);
  EXPECT_EQ(s, std::vector<Vsp16s>(6, -3));
  ASSERT_EQ(vspsVectorSlope_16s(s.data(), 6, -2.5f, 1.0f), vspStatOk);
  EXPECT_EQ(s, (std::vector<Vsp16s>{-3, -2, -1, 1, 2, 3}));
  std::vector<Vsp8u> u(4);
  ASSERT_EQ(vspsVectorSlope_8u(u.data(), 4, -1.0f, 100.0f), vspStatOk);
  EXPECT_EQ(u, (std::vector<Vsp8u>{0, 99, 199, 255}));
  std::vector<Vsp32u> w(3);
  ASSERT_EQ(vspsVectorSlope_32u(w.data(), 3, 4e9f, 1e9f), vspStatOk);
  EXPECT_EQ(w, (std::vector<Vsp32u>{4000000000u, 4294967295u, 4294967295u}));
  std::vector<Vsp64f> d(3);
  ASSERT_EQ(vspsVectorSlope_64f(d.data(), 3, 0.25, -0.5), vspStatOk);
  EXPECT_EQ(d, (std::vector<Vsp64f>{0.25, -0.25, -0.75}));
}

}  // namespace
}  // namespace vsptest
