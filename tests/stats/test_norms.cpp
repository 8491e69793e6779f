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

// Exact integer norms of 16s data: Inf, L1 and L2 (square of L2) in 64 bits.
struct IntNorms {
  unsigned long long inf = 0, l1 = 0, sq = 0;
};
IntNorms RefIntNorms(const Vsp16s* x, const Vsp16s* y, int n) {
  IntNorms r;
  for (int i = 0; i < n; ++i) {
    unsigned long long m = static_cast<unsigned long long>(std::llabs(static_cast<long long>(x[i]) - (y ? y[i] : 0)));
    r.inf = std::max(r.inf, m), r.l1 += m, r.sq += m * m;
  }
  return r;
}

TEST(Norms, IntegerNormsAreExactAndScaled) {
  Rng rng(63);
  for (int n : {1, 7, 8, 9, 31, 64, 1000, 70001}) {
    for (int kind = 0; kind < 3; ++kind) {
      GuardedVec<Vsp16s> a(n, 2 * (n % 8)), b(n, 2 * ((n + 3) % 8));
      for (int i = 0; i < n; ++i) {
        a[i] = kind == 0 ? -32768 : static_cast<Vsp16s>(rng.Int(-32768, 32767));
        b[i] = kind == 0 ? 32767 : kind == 1 ? static_cast<Vsp16s>(rng.Int(-32768, 32767)) : a[i];
      }
      for (int diff = 0; diff < 2; ++diff) {
        const IntNorms ref = RefIntNorms(a.data(), diff ? b.data() : nullptr, n);
        SCOPED_TRACE("len " + std::to_string(n) + " kind " + std::to_string(kind) + (diff ? " diff" : ""));
        Vsp32f f[3];
        ASSERT_EQ(diff ? vspsNormDiff_Inf_16s32f(a.data(), b.data(), n, f) : vspsNorm_Inf_16s32f(a.data(), n, f),
                  vspStatOk);
        ASSERT_EQ(diff ? vspsNormDiff_L1_16s32f(a.data(), b.data(), n, f + 1) : vspsNorm_L1_16s32f(a.data(), n, f + 1),
                  vspStatOk);
        ASSERT_EQ(diff ? vspsNormDiff_L2_16s32f(a.data(), b.data(), n, f + 2) : vspsNorm_L2_16s32f(a.data(), n, f + 2),
                  vspStatOk);
        EXPECT_EQ(f[0], static_cast<Vsp32f>(ref.inf));
        EXPECT_EQ(f[1], static_cast<Vsp32f>(ref.l1));
        EXPECT_NEAR(f[2], std::sqrt(static_cast<double>(ref.sq)), 6e-8 * std::sqrt(static_cast<double>(ref.sq)));
        for (int sf = -40; sf <= 40; ++sf) {
          Vsp32s r[3];
          Vsp64s sq;
          ASSERT_EQ(diff ? vspsNormDiff_Inf_16s32s_Sfs(a.data(), b.data(), n, r, sf)
                         : vspsNorm_Inf_16s32s_Sfs(a.data(), n, r, sf),
                    vspStatOk);
          ASSERT_EQ(diff ? vspsNormDiff_L1_16s32s_Sfs(a.data(), b.data(), n, r + 1, sf)
                         : vspsNorm_L1_16s32s_Sfs(a.data(), n, r + 1, sf),
                    vspStatOk);
          ASSERT_EQ(diff ? vspsNormDiff_L2_16s32s_Sfs(a.data(), b.data(), n, r + 2, sf)
                         : vspsNorm_L2_16s32s_Sfs(a.data(), n, r + 2, sf),
                    vspStatOk);
          ASSERT_EQ(diff ? vspsNormDiff_L2Sqr_16s64s_Sfs(a.data(), b.data(), n, &sq, sf)
                         : vspsNorm_L2Sqr_16s64s_Sfs(a.data(), n, &sq, sf),
                    vspStatOk);
          ASSERT_EQ(r[0], RefRound<Vsp32s>(std::ldexp(static_cast<long double>(ref.inf), -sf))) << sf;
          ASSERT_EQ(r[1], RefRound<Vsp32s>(std::ldexp(static_cast<long double>(ref.l1), -sf))) << sf;
          ASSERT_EQ(sq, RefRound<Vsp64s>(std::ldexp(static_cast<long double>(ref.sq), -sf))) << sf;
          const long double l2 = std::ldexp(std::sqrt(static_cast<long double>(ref.sq)), -sf);
          if (!NearHalf(l2, 1e-15L)) {
            ASSERT_EQ(r[2], RefRound<Vsp32s>(l2)) << sf;
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

TEST(DotProducts, IntegerResultsAreExactThenScaled) {
  Rng rng(67);
  for (int n : {1, 3, 4, 5, 8, 9, 33, 1000, 65537}) {
    for (int kind = 0; kind < 3; ++kind) {
      GuardedVec<Vsp16s> a(2 * n, 2 * (n % 8)), b(2 * n, 2 * ((n + 1) % 8));
      GuardedVec<Vsp32s> w(n, 4 * (n % 4)), z(n, 0);
      for (int i = 0; i < 2 * n; ++i) {
        a[i] = kind == 0 ? -32768 : static_cast<Vsp16s>(rng.Int(-32768, 32767));
        b[i] = kind == 0 ? -32768 : kind == 1 ? 32767 : static_cast<Vsp16s>(rng.Int(-32768, 32767));
      }
      for (int i = 0; i < n; ++i) {
        w[i] = kind == 0 ? -2147483647 - 1 : static_cast<Vsp32s>(rng.Int(-(1LL << 31), (1LL << 31) - 1));
        z[i] = kind == 0 ? -2147483647 - 1 : static_cast<Vsp32s>(rng.Int(-(1LL << 31), (1LL << 31) - 1));
      }
      long long s = 0, re = 0, im = 0;
      __int128 s32 = 0;
      for (int i = 0; i < n; ++i) {
        s += static_cast<long long>(a[i]) * b[i];
        s32 += static_cast<__int128>(static_cast<long long>(w[i]) * z[i]);
        re += static_cast<long long>(a[2 * i]) * b[2 * i] - static_cast<long long>(a[2 * i + 1]) * b[2 * i + 1];
        im += static_cast<long long>(a[2 * i]) * b[2 * i + 1] + static_cast<long long>(a[2 * i + 1]) * b[2 * i];
      }
      SCOPED_TRACE("len " + std::to_string(n) + " kind " + std::to_string(kind));
      const auto* ac = reinterpret_cast<const Vsp16sc*>(a.data());
      const auto* bc = reinterpret_cast<const Vsp16sc*>(b.data());
      Vsp64s r64;
      Vsp32f r32f;
      Vsp32fc rc;
      ASSERT_EQ(vspsDotProd_16s64s(a.data(), b.data(), n, &r64), vspStatOk);
      EXPECT_EQ(r64, s);
      ASSERT_EQ(vspsDotProd_16s32f(a.data(), b.data(), n, &r32f), vspStatOk);
      EXPECT_EQ(r32f, static_cast<Vsp32f>(s));
      ASSERT_EQ(vspsDotProd_16sc32fc(ac, bc, n, &rc), vspStatOk);
      EXPECT_EQ(rc.re, static_cast<Vsp32f>(re));
      EXPECT_EQ(rc.im, static_cast<Vsp32f>(im));
      for (int sf = -40; sf <= 40; ++sf) {
        Vsp16s r16;
        Vsp32s r32;
        Vsp16sc c16;
        ASSERT_EQ(vspsDotProd_16s_Sfs(a.data(), b.data(), n, &r16, sf), vspStatOk);
        ASSERT_EQ(r16, RefRound<Vsp16s>(std::ldexp(static_cast<long double>(s), -sf))) << sf;
        ASSERT_EQ(vspsDotProd_16s32s_Sfs(a.data(), b.data(), n, &r32, sf), vspStatOk);
        ASSERT_EQ(r32, RefRound<Vsp32s>(std::ldexp(static_cast<long double>(s), -sf))) << sf;
        ASSERT_EQ(vspsDotProd_16sc_Sfs(ac, bc, n, &c16, sf), vspStatOk);
        ASSERT_EQ(c16.re, RefRound<Vsp16s>(std::ldexp(static_cast<long double>(re), -sf))) << sf;
        ASSERT_EQ(c16.im, RefRound<Vsp16s>(std::ldexp(static_cast<long double>(im), -sf))) << sf;
        // 128-bit sums: long double holds them exactly while they stay below 2^64.
        if (s32 < (static_cast<__int128>(1) << 63) && s32 > -(static_cast<__int128>(1) << 63)) {
          ASSERT_EQ(vspsDotProd_32s_Sfs(w.data(), z.data(), n, &r32, sf), vspStatOk);
          ASSERT_EQ(r32, RefRound<Vsp32s>(std::ldexp(static_cast<long double>(s32), -sf))) << sf;
        }
      }
    }
  }
  // Four products of (-2^31)^2: 2^64, beyond 64 bits, scaled back into range.
  const Vsp32s m[4] = {-2147483647 - 1, -2147483647 - 1, -2147483647 - 1, -2147483647 - 1};
  Vsp32s r;
  ASSERT_EQ(vspsDotProd_32s_Sfs(m, m, 4, &r, 40), vspStatOk);
  EXPECT_EQ(r, 1 << 24);
}

}  // namespace
}  // namespace vsptest
