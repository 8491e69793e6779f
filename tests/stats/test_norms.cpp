// Norms, distances and dot products against long double references (float and double data) and
// exact integer references (16s, 16sc, 32s data), over lengths 1..70 and larger, every offset,
// the extreme 16-bit values whose pair products wrap pmaddwd, and scale factors -40..40.
#include <gtest/gtest.h>

#include <complex>

#include "stats_support.h"

namespace vsptest {
namespace {

template <class T>
struct PartOf {
  using Type = T;
};
template <>
struct PartOf<Vsp32fc> {
  using Type = Vsp32f;
};
template <>
struct PartOf<Vsp64fc> {
  using Type = Vsp64f;
};

// Norm functions of one source type, indexed [Inf, L1, L2][plain, diff]; R the result type.
template <class T>
struct NormFns;
#define VSP_NORM_FNS(t, sInf, sL)                                                                            \
  template <>                                                                                                \
  struct NormFns<Vsp##t> {                                                                                   \
    using RInf = Vsp##sInf;                                                                                  \
    using RL = Vsp##sL;                                                                                      \
    static constexpr VspStatus (*kInf[2])(const Vsp##t*, int, RInf*) = {vspsNorm_Inf_##t, nullptr};          \
    static constexpr VspStatus (*kInfDiff)(const Vsp##t*, const Vsp##t*, int, RInf*) = vspsNormDiff_Inf_##t; \
    static constexpr VspStatus (*kL[2])(const Vsp##t*, int, RL*) = {vspsNorm_L1_##t, vspsNorm_L2_##t};       \
    static constexpr VspStatus (*kLDiff[2])(const Vsp##t*, const Vsp##t*, int, RL*) = {vspsNormDiff_L1_##t,  \
                                                                                       vspsNormDiff_L2_##t}; \
  };
#define vspsNorm_Inf_32fc vspsNorm_Inf_32fc32f
#define vspsNormDiff_Inf_32fc vspsNormDiff_Inf_32fc32f
#define vspsNorm_Inf_64fc vspsNorm_Inf_64fc64f
#define vspsNormDiff_Inf_64fc vspsNormDiff_Inf_64fc64f
#define vspsNorm_L1_32fc vspsNorm_L1_32fc64f
#define vspsNormDiff_L1_32fc vspsNormDiff_L1_32fc64f
#define vspsNorm_L2_32fc vspsNorm_L2_32fc64f
#define vspsNormDiff_L2_32fc vspsNormDiff_L2_32fc64f
#define vspsNorm_L1_64fc vspsNorm_L1_64fc64f
#define vspsNormDiff_L1_64fc vspsNormDiff_L1_64fc64f
#define vspsNorm_L2_64fc vspsNorm_L2_64fc64f
#define vspsNormDiff_L2_64fc vspsNormDiff_L2_64fc64f
VSP_NORM_FNS(32f, 32f, 32f)
VSP_NORM_FNS(64f, 64f, 64f) VSP_NORM_FNS(32fc, 32f, 64f) VSP_NORM_FNS(64fc, 64f, 64f)

    TEST(Norms, FloatNormsAgreeWithExtendedReferences) {
  ForEachType(TypeList<Vsp32f, Vsp64f, Vsp32fc, Vsp64fc>{}, []<class T>() {
    using P = typename PartOf<T>::Type;
    using F = NormFns<T>;
    constexpr int kW = sizeof(T) / sizeof(P);
    Rng rng(61);
    for (int n : StatLengths()) {
      for (size_t off : StatOffsets<T>()) {
        GuardedVec<T> a(n, off), b(n, StatOffsets<T>().back() - off);
        P* x = reinterpret_cast<P*>(a.data());
        P* y = reinterpret_cast<P*>(b.data());
        for (int i = 0; i < n * kW; ++i)
          x[i] = static_cast<P>(rng.Uniform(-4, 4)), y[i] = static_cast<P>(rng.Uniform(-4, 4));
        for (int diff = 0; diff < 2; ++diff) {
          long double inf = 0, l1 = 0, l2 = 0;
          for (int i = 0; i < n; ++i) {
            long double sq = 0;
            for (int c = 0; c < kW; ++c) {
              long double d =
                  diff ? static_cast<long double>(static_cast<P>(x[i * kW + c] - y[i * kW + c])) : x[i * kW + c];
              sq += d * d;
            }
            inf = std::max(inf, std::sqrt(sq)), l1 += std::sqrt(sq), l2 += sq;
          }
          l2 = std::sqrt(l2);
          SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(n) + (diff ? " diff" : ""));
          typename F::RInf rInf;
          typename F::RL r1, r2;
          ASSERT_EQ(diff ? F::kInfDiff(a.data(), b.data(), n, &rInf) : F::kInf[0](a.data(), n, &rInf), vspStatOk);
          ASSERT_EQ(diff ? F::kLDiff[0](a.data(), b.data(), n, &r1) : F::kL[0](a.data(), n, &r1), vspStatOk);
          ASSERT_EQ(diff ? F::kLDiff[1](a.data(), b.data(), n, &r2) : F::kL[1](a.data(), n, &r2), vspStatOk);
          const double tolInf = sizeof(typename F::RInf) == 4 ? 3e-7 : 1e-15;
          const double tolL = sizeof(typename F::RL) == 4 ? 2e-6 : 1e-14;
          EXPECT_NEAR(rInf, static_cast<double>(inf), tolInf * static_cast<double>(inf));
          EXPECT_NEAR(r1, static_cast<double>(l1), tolL * static_cast<double>(l1));
          EXPECT_NEAR(r2, static_cast<double>(l2), tolL * static_cast<double>(l2));
        }
        x[n / 2 * kW] = std::numeric_limits<P>::quiet_NaN();
        typename F::RInf rInf;
        ASSERT_EQ(F::kInf[0](a.data(), n, &rInf), vspStatOk);
        EXPECT_TRUE(std::isnan(rInf)) << TypeName<T>() << " len " << n;
      }
    }
  });
}

// The root of the exact squared L2 norm of 16s data, scaled and rounded (the other integer norms
// are reference rows of the argument checks); values within 1e-15 of a tie are not decided.
TEST(Norms, IntegerL2NormsRoundTheirRoot) {
  Rng rng(63);
  for (int n : {1, 7, 8, 9, 31, 64, 1000, 70001}) {
    for (int kind = 0; kind < 3; ++kind) {
      GuardedVec<Vsp16s> a(n, 2 * (n % 8)), b(n, 2 * ((n + 3) % 8));
      for (int i = 0; i < n; ++i) {
        a[i] = kind == 0 ? -32768 : static_cast<Vsp16s>(rng.Int(-32768, 32767));
        b[i] = kind == 0 ? 32767 : kind == 1 ? static_cast<Vsp16s>(rng.Int(-32768, 32767)) : a[i];
      }
      for (int diff = 0; diff < 2; ++diff) {
        unsigned long long sq = 0;
        for (int i = 0; i < n; ++i) {
          const long long m = static_cast<long long>(a[i]) - (diff ? b[i] : 0);
          sq += static_cast<unsigned long long>(m * m);
        }
        for (int sf = -40; sf <= 40; ++sf) {
          Vsp32s r;
          ASSERT_EQ(diff ? vspsNormDiff_L2_16s32s_Sfs(a.data(), b.data(), n, &r, sf) : vspsNorm_L2_16s32s_Sfs(a.data(), n, &r, sf), vspStatOk);
          const long double l2 = std::ldexp(std::sqrt(static_cast<long double>(sq)), -sf);
          if (!NearHalf(l2, 1e-15L)) {
            ASSERT_EQ(r, RefRound<Vsp32s>(l2)) << "len " << n << " kind " << kind << " diff " << diff << " sf " << sf;
          }
        }
      }
    }
  }
}

TEST(DotProducts, FloatAndDoubleResultsAgreeWithExtendedReferences) {
  Rng rng(65);
  using C = std::complex<long double>;
  for (int n : StatLengths()) {
    for (size_t off : {size_t{0}, size_t{4}, size_t{8}}) {
      GuardedVec<Vsp32fc> fa(n, off), fb(n, 8 - off % 8);
      GuardedVec<Vsp64fc> da(n, off % 16 / 8 * 8), db(n, 8);
      for (int i = 0; i < n; ++i) {
        fa[i] = {static_cast<Vsp32f>(rng.Uniform(-2, 2)), static_cast<Vsp32f>(rng.Uniform(-2, 2))};
        fb[i] = {static_cast<Vsp32f>(rng.Uniform(-2, 2)), static_cast<Vsp32f>(rng.Uniform(-2, 2))};
        da[i] = {rng.Uniform(-2, 2), rng.Uniform(-2, 2)};
        db[i] = {rng.Uniform(-2, 2), rng.Uniform(-2, 2)};
      }
      // Real vectors are the first n parts of the complex ones.
      const Vsp32f* fr = &fa[0].re;
      const Vsp64f* dr = &da[0].re;
      long double rr = 0, rrd = 0, mag = 0, magd = 0;
      C cc = 0, ccd = 0, mc = 0, mcd = 0;
      for (int i = 0; i < n; ++i) {
        rr += static_cast<long double>(fr[i]) * (&fb[0].re)[i];
        rrd += static_cast<long double>(dr[i]) * (&db[0].re)[i];
        cc += C(fa[i].re, fa[i].im) * C(fb[i].re, fb[i].im);
        ccd += C(da[i].re, da[i].im) * C(db[i].re, db[i].im);
        mc += C(fr[i]) * C(fb[i].re, fb[i].im);
        mcd += C(dr[i]) * C(db[i].re, db[i].im);
        mag += 4 * std::fabs(static_cast<long double>(fr[i])) + 16;
        magd += 16;
      }
      SCOPED_TRACE("len " + std::to_string(n));
      const double tf = 1e-6 * static_cast<double>(mag), td = 1e-15 * static_cast<double>(magd);
      Vsp32f f;
      Vsp64f d;
      Vsp32fc fc;
      Vsp64fc dc;
      ASSERT_EQ(vspsDotProd_32f(fr, &fb[0].re, n, &f), vspStatOk);
      EXPECT_NEAR(f, static_cast<double>(rr), tf);
      ASSERT_EQ(vspsDotProd_32f64f(fr, &fb[0].re, n, &d), vspStatOk);
      EXPECT_NEAR(d, static_cast<double>(rr), td);
      ASSERT_EQ(vspsDotProd_64f(dr, &db[0].re, n, &d), vspStatOk);
      EXPECT_NEAR(d, static_cast<double>(rrd), td);
      ASSERT_EQ(vspsDotProd_32fc(fa.data(), fb.data(), n, &fc), vspStatOk);
      EXPECT_NEAR(fc.re, static_cast<double>(cc.real()), tf);
      EXPECT_NEAR(fc.im, static_cast<double>(cc.imag()), tf);
      ASSERT_EQ(vspsDotProd_32fc64fc(fa.data(), fb.data(), n, &dc), vspStatOk);
      EXPECT_NEAR(dc.re, static_cast<double>(cc.real()), td);
      EXPECT_NEAR(dc.im, static_cast<double>(cc.imag()), td);
      ASSERT_EQ(vspsDotProd_64fc(da.data(), db.data(), n, &dc), vspStatOk);
      EXPECT_NEAR(dc.re, static_cast<double>(ccd.real()), td);
      EXPECT_NEAR(dc.im, static_cast<double>(ccd.imag()), td);
      ASSERT_EQ(vspsDotProd_32f32fc(fr, fb.data(), n, &fc), vspStatOk);
      EXPECT_NEAR(fc.re, static_cast<double>(mc.real()), tf);
      EXPECT_NEAR(fc.im, static_cast<double>(mc.imag()), tf);
      ASSERT_EQ(vspsDotProd_64f64fc(dr, db.data(), n, &dc), vspStatOk);
      EXPECT_NEAR(dc.re, static_cast<double>(mcd.real()), td);
      EXPECT_NEAR(dc.im, static_cast<double>(mcd.imag()), td);
    }
  }
}

}  // namespace
}  // namespace vsptest
