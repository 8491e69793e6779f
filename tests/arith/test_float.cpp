// Float members against the plain IEEE formula in the element's precision (bit for bit, any NaN
// matching any NaN), with NaN, infinite, zero and subnormal operands, over every head/body/tail
// split; vspsDiv_32f against its refined reciprocal estimate; the float-to-integer products.
#include <gtest/gtest.h>
#include <pmmintrin.h>

#include <cfloat>
#include <functional>

#include "arith_ref.h"

namespace vsptest {
namespace {

// Random floats of every magnitude, with the special values now and then.
template <class F> F RandomFloat(Rng& rng) {
  const F specials[] = {F(0), -F(0), std::numeric_limits<F>::infinity(), -std::numeric_limits<F>::infinity(),
                        std::numeric_limits<F>::quiet_NaN(), std::numeric_limits<F>::denorm_min(),
                        std::numeric_limits<F>::max(), -std::numeric_limits<F>::min(), F(1), F(-1)};
  if (rng.Int(0, 15) == 0) return specials[rng.Int(0, 9)];
  const F m = static_cast<F>(rng.Uniform(-2, 2));
  return std::ldexp(m, static_cast<int>(rng.Int(-40, 40)));
}
template <class T> T RandomOperand(Rng& rng) {
  if constexpr (requires(T t) { t.re; }) return {RandomFloat<decltype(T{}.re)>(rng), RandomFloat<decltype(T{}.re)>(rng)};
  else return RandomFloat<T>(rng);
}

// The formulas, written out per element.
template <class T> T FAdd(T a, T b) {
  if constexpr (requires { a.re; }) return {a.re + b.re, a.im + b.im};
  else return a + b;
}
template <class T> T FSub(T a, T b) {
  if constexpr (requires { a.re; }) return {a.re - b.re, a.im - b.im};
  else return a - b;
}
template <class T> T FMul(T a, T b) {
  if constexpr (requires { a.re; }) return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
  else return a * b;
}
template <class T> T FDiv(T a, T b) {
  if constexpr (requires { a.re; }) {
    const auto den = b.re * b.re + b.im * b.im;
    return {(a.re * b.re + a.im * b.im) / den, (a.im * b.re - a.re * b.im) / den};
  } else {
    return a / b;
  }
}
template <class T> bool IsZero(T v) {
  if constexpr (requires { v.re; }) return v.re == 0 && v.im == 0;
  else return v == 0;
}

// A member: call(x, y, c, d, n) on vectors x, y (or the constant c) into d; want(x, y or c).
template <class T>
struct FMember {
  std::string name;
  std::function<VspStatus(const T*, const T*, T, T*, int)> call;
  std::function<T(T, T, T)> want;  // (x, y, previous d) for accumulating members
  bool constant = false;
  bool warnsOnZero = false;
};

#define FVV(f) [](const auto* x, const auto* y, auto, auto* d, int n) { return f(x, y, d, n); }
#define FVVI(f) [](const auto* x, const auto* y, auto, auto* d, int n) { std::memcpy(d, y, n * sizeof(*d)); return f(x, d, n); }
#define FVC(f) [](const auto* x, const auto*, auto c, auto* d, int n) { return f(x, c, d, n); }
#define FVCI(f) [](const auto* x, const auto*, auto c, auto* d, int n) { std::memcpy(d, x, n * sizeof(*d)); return f(c, d, n); }

#define FLOAT_MEMBERS(t)                                                                                          \
  {"Add_" #t, FVV(vspsAdd_##t), [](T x, T y, T) { return FAdd(x, y); }},                                          \
  {"Add_" #t "_I", FVVI(vspsAdd_##t##_I), [](T x, T y, T) { return FAdd(x, y); }},                                \
  {"Sub_" #t, FVV(vspsSub_##t), [](T x, T y, T) { return FSub(y, x); }},                                          \
  {"Sub_" #t "_I", FVVI(vspsSub_##t##_I), [](T x, T y, T) { return FSub(y, x); }},                                \
  {"Mul_" #t, FVV(vspsMul_##t), [](T x, T y, T) { return FMul(x, y); }},                                          \
  {"Mul_" #t "_I", FVVI(vspsMul_##t##_I), [](T x, T y, T) { return FMul(x, y); }},                                \
  {"AddC_" #t, FVC(vspsAddC_##t), [](T x, T c, T) { return FAdd(x, c); }, true},                                  \
  {"AddC_" #t "_I", FVCI(vspsAddC_##t##_I), [](T x, T c, T) { return FAdd(x, c); }, true},                        \
  {"SubC_" #t, FVC(vspsSubC_##t), [](T x, T c, T) { return FSub(x, c); }, true},                                  \
  {"SubC_" #t "_I", FVCI(vspsSubC_##t##_I), [](T x, T c, T) { return FSub(x, c); }, true},                        \
  {"SubCRev_" #t, FVC(vspsSubCRev_##t), [](T x, T c, T) { return FSub(c, x); }, true},                            \
  {"SubCRev_" #t "_I", FVCI(vspsSubCRev_##t##_I), [](T x, T c, T) { return FSub(c, x); }, true},                  \
  {"MulC_" #t, FVC(vspsMulC_##t), [](T x, T c, T) { return FMul(x, c); }, true},                                  \
  {"MulC_" #t "_I", FVCI(vspsMulC_##t##_I), [](T x, T c, T) { return FMul(x, c); }, true},                        \
  {"AddProduct_" #t, [](const T* x, const T* y, T, T* d, int n) { std::memcpy(d, y, n * sizeof(T)); return vspsAddProduct_##t(x, y, d, n); }, \
   [](T x, T y, T) { return FAdd(y, FMul(x, y)); }}
// IEEE quotients (every type but 32f, whose Div and DivC follow their own methods).
#define DIV_MEMBERS(t)                                                                                            \
  {"Div_" #t, FVV(vspsDiv_##t), [](T x, T y, T) { return FDiv(y, x); }, false, true},                             \
  {"Div_" #t "_I", FVVI(vspsDiv_##t##_I), [](T x, T y, T) { return FDiv(y, x); }, false, true},                   \
  {"DivC_" #t, FVC(vspsDivC_##t), [](T x, T c, T) { return FDiv(x, c); }, true},                                  \
  {"DivC_" #t "_I", FVCI(vspsDivC_##t##_I), [](T x, T c, T) { return FDiv(x, c); }, true}

template <class T> std::vector<FMember<T>> FloatMembers();
template <> std::vector<FMember<Vsp32f>> FloatMembers() {
  using T = Vsp32f;
  return {FLOAT_MEMBERS(32f),
          {"DivC_32f", FVC(vspsDivC_32f), [](T x, T c, T) { return x * (1.0f / c); }, true},
          {"DivC_32f_I", FVCI(vspsDivC_32f_I), [](T x, T c, T) { return x * (1.0f / c); }, true},
          {"DivCRev_32f", FVC(vspsDivCRev_32f), [](T x, T c, T) { return c / x; }, true, true},
          {"DivCRev_32f_I", FVCI(vspsDivCRev_32f_I), [](T x, T c, T) { return c / x; }, true, true},
          {"AddProductC_32f", [](const T* x, const T* y, T c, T* d, int n) { std::memcpy(d, y, n * sizeof(T)); return vspsAddProductC_32f(x, c, d, n); },
           [](T x, T c, T y) { return y + x * c; }, true}};
}
template <> std::vector<FMember<Vsp64f>> FloatMembers() {
  using T = Vsp64f;
  return {FLOAT_MEMBERS(64f), DIV_MEMBERS(64f)};
}
template <> std::vector<FMember<Vsp32fc>> FloatMembers() {
  using T = Vsp32fc;
  return {FLOAT_MEMBERS(32fc), DIV_MEMBERS(32fc)};
}
template <> std::vector<FMember<Vsp64fc>> FloatMembers() {
  using T = Vsp64fc;
  return {FLOAT_MEMBERS(64fc), DIV_MEMBERS(64fc)};
}

template <class T>
void CheckFloat(const FMember<T>& m, Rng& rng, int n, size_t off) {
  GuardedVec<T> x(n, off), y(n, (off + 8) % 16 / alignof(T) * alignof(T)), d(n, off);
  for (int i = 0; i < n; ++i) x[i] = RandomOperand<T>(rng), y[i] = RandomOperand<T>(rng);
  T c = RandomOperand<T>(rng);
  if (m.name.rfind("DivC_", 0) == 0)
    while (IsZero(c)) c = RandomOperand<T>(rng);
  bool zero = false;  // x is the divisor of the members that warn
  for (int i = 0; i < n; ++i) zero |= IsZero(x[i]);
  const VspStatus st = m.call(x.data(), y.data(), c, d.data(), n);
  ASSERT_EQ(st, m.warnsOnZero && zero ? vspStatDivByZeroWarn : vspStatOk) << m.name << " n " << n;
  for (int i = 0; i < n; ++i) {
    const T want = m.want(x[i], m.constant ? c : y[i], y[i]);
    ASSERT_TRUE(SameValue(d[i], want)) << m.name << " n " << n << " off " << off << " i " << i << ": x " << Show(x[i])
                                       << " y " << Show(y[i]) << " c " << Show(c) << " got " << Show(d[i]) << " want " << Show(want);
  }
  ASSERT_TRUE(d.OutsideIntact() && x.OutsideIntact() && y.OutsideIntact()) << m.name;
}

using FloatTypes = TypeList<Vsp32f, Vsp64f, Vsp32fc, Vsp64fc>;

TEST(FloatArith, EveryMemberLengthAndOffset) {
  ForEachType(FloatTypes{}, []<class T>() {
    Rng rng(11);
    for (const FMember<T>& m : FloatMembers<T>())
      for (int n : SweepLengths())
        for (size_t off : SweepOffsets<T>()) CheckFloat(m, rng, n, off);
  });
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
  for (int n : SweepLengths()) {
    for (size_t off : SweepOffsets<Vsp32f>()) {
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

TEST(FloatArith, MixedTypes) {
  Rng rng(13);
  for (int n : SweepLengths()) {
    for (size_t off : {0, 4, 8, 12}) {
      GuardedVec<Vsp16s> a(n, off / 2 * 2), b(n, 6);
      GuardedVec<Vsp32f> f(n, off);
      GuardedVec<Vsp32fc> z(n, off / 8 * 8), zd(n, off / 8 * 8);
      for (int i = 0; i < n; ++i) a[i] = RandomValue<Vsp16s>(rng), b[i] = RandomValue<Vsp16s>(rng);
      ASSERT_EQ(vspsAdd_16s32f(a.data(), b.data(), f.data(), n), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_EQ(f[i], static_cast<float>(a[i] + b[i]));
      ASSERT_EQ(vspsSub_16s32f(a.data(), b.data(), f.data(), n), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_EQ(f[i], static_cast<float>(b[i] - a[i]));
      ASSERT_EQ(vspsMul_16s32f(a.data(), b.data(), f.data(), n), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_EQ(f[i], static_cast<float>(a[i] * b[i])) << a[i] << " * " << b[i];
      for (int i = 0; i < n; ++i) f[i] = RandomFloat<float>(rng), z[i] = RandomOperand<Vsp32fc>(rng);
      ASSERT_EQ(vspsMul_32f32fc(f.data(), z.data(), zd.data(), n), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_TRUE(SameValue(zd[i], Vsp32fc{f[i] * z[i].re, f[i] * z[i].im})) << i;
      ASSERT_EQ(vspsMul_32f32fc_I(f.data(), z.data(), n), vspStatOk);
      ASSERT_EQ(std::memcmp(z.data(), zd.data(), n * sizeof(Vsp32fc)), 0);
      ASSERT_TRUE(f.OutsideIntact() && zd.OutsideIntact());
    }
  }
}

// round(p * 2^-s) to nearest even, saturated; NaN to 0 (p exact in long double).
template <class D> D RoundScaled(long double p, int s) {
  if (p != p) return 0;
  const long double q = std::ldexp(p, -s);
  if (q >= static_cast<long double>(kHi<D>)) return static_cast<D>(kHi<D>);
  if (q <= static_cast<long double>(kLo<D>)) return static_cast<D>(kLo<D>);
  long double f = std::floor(q);
  const long double frac = q - f;
  if (frac > 0.5L || (frac == 0.5L && std::fmod(f, 2.0L) != 0)) f += 1;
  return static_cast<D>(f);
}

TEST(FloatArith, ProductsWrittenAsIntegers) {
  Rng rng(14);
  std::vector<int> scales;
  for (int s = -40; s <= 40; ++s) scales.push_back(s);
  for (int s : {-300, -160, -150, -130, 126, 127, 128, 129, 130, 260, 100000, -100000}) scales.push_back(s);
  for (int n : {1, 3, 8, 13, 64, 301}) {
    GuardedVec<Vsp32f> x(n, 4 * (n % 4));
    GuardedVec<Vsp16s> d(n, 2 * (n % 8));
    GuardedVec<Vsp64s> w(n, 8 * (n % 2));
    for (int i = 0; i < n; ++i) x[i] = rng.Int(0, 3) ? static_cast<float>(rng.Uniform(-70000, 70000)) : RandomFloat<float>(rng);
    for (int s : scales) {
      const float val = rng.Int(0, 1) ? 1.0f : RandomFloat<float>(rng);
      ASSERT_EQ(vspsMulC_32f16s_Sfs(x.data(), val, d.data(), n, s), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_EQ(d[i], RoundScaled<Vsp16s>(x[i] * val, s)) << x[i] << " * " << val << " s " << s;
      if (s == 0) {
        ASSERT_EQ(vspsMulC_Low_32f16s(x.data(), val, d.data(), n), vspStatOk);
        for (int i = 0; i < n; ++i) ASSERT_EQ(d[i], RoundScaled<Vsp16s>(x[i] * val, 0));
      }
      for (int i = 0; i < n; ++i) w[i] = RandomValue<Vsp64s>(rng);
      std::vector<Vsp64s> w0(w.data(), w.data() + n);
      const double dv = rng.Int(0, 1) ? static_cast<double>(val) : rng.Uniform(-3, 3);
      ASSERT_EQ(vspsMulC_64f64s_ISfs(dv, w.data(), n, s), vspStatOk);
      for (int i = 0; i < n; ++i)
        ASSERT_EQ(w[i], RoundScaled<Vsp64s>(static_cast<double>(w0[i]) * dv, s)) << w0[i] << " * " << dv << " s " << s;
      ASSERT_TRUE(d.OutsideIntact() && w.OutsideIntact());
    }
  }
}

// vspsDivC_32f: a zero val is refused before anything else; a NaN val passes.
TEST(FloatArith, DivC32fConstant) {
  float x[3] = {1, 2, 3}, d[3] = {7, 7, 7};
  EXPECT_EQ(vspsDivC_32f(nullptr, 0.0f, d, 3), vspStatDivByZeroErr);
  EXPECT_EQ(vspsDivC_32f(x, -0.0f, d, 0), vspStatDivByZeroErr);
  EXPECT_EQ(d[0], 7);
  EXPECT_EQ(vspsDivC_32f(x, std::numeric_limits<float>::quiet_NaN(), d, 3), vspStatOk);
  for (float v : d) EXPECT_TRUE(v != v);
  EXPECT_EQ(vspsDivC_32f_I(0.0f, nullptr, 3), vspStatNullPtr);
}

}  // namespace
}  // namespace vsptest
