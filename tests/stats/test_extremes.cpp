// Extremes against strict-compare loops: every position of short vectors and the chunk borders of
// long ones, ties, NaN first and elsewhere, saturated magnitudes; MaxOrder against ilogb with the
// caller's floating-point flags; MaxEvery/MinEvery over overlapping vectors;
// SumWindow against its float recurrence.
#include <gtest/gtest.h>

#include <cfenv>

#include "stats_support.h"

namespace vsptest {
namespace {

// The first index of the extreme key under strict compares, from element 0.
template <class T, class K, class Better>
std::pair<T, int> RefExtreme(const T* v, int n, K key, Better better) {
  T best = key(v[0]);
  int at = 0;
  for (int i = 1; i < n; ++i)
    if (better(key(v[i]), best)) best = key(v[i]), at = i;
  return {best, at};
}
template <class T> T SatAbs(T x) {
  if constexpr (std::is_floating_point_v<T>) return std::fabs(x);
  else return x >= 0 ? x : (x == std::numeric_limits<T>::lowest() ? std::numeric_limits<T>::max() : T(-x));
}

// Random data of T: a small range with ties, or the whole range; NaNs for floats (mode 2).
template <class T> void FillExtremes(T* v, int n, int mode, Rng& rng) {
  for (int i = 0; i < n; ++i) {
    if (mode == 1 && std::is_integral_v<T>) v[i] = static_cast<T>(rng.Bits());
    else v[i] = static_cast<T>(rng.Int(std::is_signed_v<T> ? -50 : 0, 50));
    if (mode == 2 && std::is_floating_point_v<T> && rng.Int(0, 9) == 0) v[i] = std::numeric_limits<T>::quiet_NaN();
  }
}
// Positions where the tests plant extremes: all for short vectors, the borders otherwise.
std::vector<int> Positions(int n) {
  std::vector<int> pos;
  for (int p = 0; p < n; ++p)
    if (n <= 70 || p < 3 || p > n - 3 || p % 2048 < 2 || p % 2048 > 2045) pos.push_back(p);
  return pos;
}

// Max, Min, MaxAbs, MinAbs and their index forms (the Abs index forms exist for integers only).
template <class T> struct ExtremeFns;
#define VSP_EXTREME_FNS(t, maxAbsIndx, minAbsIndx)                                                                \
  template <> struct ExtremeFns<Vsp##t> {                                                                         \
    static constexpr VspStatus (*kPlain[4])(const Vsp##t*, int, Vsp##t*) = {vspsMax_##t, vspsMin_##t, vspsMaxAbs_##t, vspsMinAbs_##t}; \
    static constexpr VspStatus (*kIndx[4])(const Vsp##t*, int, Vsp##t*, int*) = {vspsMaxIndx_##t, vspsMinIndx_##t, maxAbsIndx, minAbsIndx}; \
  };
VSP_EXTREME_FNS(16s, vspsMaxAbsIndx_16s, vspsMinAbsIndx_16s) VSP_EXTREME_FNS(32s, vspsMaxAbsIndx_32s, vspsMinAbsIndx_32s)
VSP_EXTREME_FNS(32f, nullptr, nullptr) VSP_EXTREME_FNS(64f, nullptr, nullptr)
#undef VSP_EXTREME_FNS

TEST(Extremes, ValuesAndFirstIndices) {
  ForEachType(TypeList<Vsp16s, Vsp32s, Vsp32f, Vsp64f>{}, []<class T>() {
    using F = ExtremeFns<T>;
    Rng rng(21);
    auto same = [](T x) { return x; };
    auto gt = [](T a, T b) { return a > b; };
    auto lt = [](T a, T b) { return a < b; };
    for (int n : StatLengths()) {
      for (int pos : Positions(n)) {
        const int mode = pos % 3;
        GuardedVec<T> v(n, StatOffsets<T>()[pos % StatOffsets<T>().size()]);
        FillExtremes(v.data(), n, mode, rng);
        v[pos] = static_cast<T>(pos % 2 ? 60 : -60);  // a planted extreme, tied once later
        if (pos + 5 < n) v[pos + 5] = v[pos];
        SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(n) + " pos " + std::to_string(pos));
        const std::pair<T, int> ref[4] = {RefExtreme(v.data(), n, same, gt), RefExtreme(v.data(), n, same, lt),
                                          RefExtreme(v.data(), n, SatAbs<T>, gt), RefExtreme(v.data(), n, SatAbs<T>, lt)};
        for (int k = 0; k < 4; ++k) {
          T value;
          ASSERT_EQ(F::kPlain[k](v.data(), n, &value), vspStatOk);
          ASSERT_TRUE(value == ref[k].first || (value != value && ref[k].first != ref[k].first)) << "function " << k;
          int at = -1;
          if (!F::kIndx[k]) continue;
          ASSERT_EQ(F::kIndx[k](v.data(), n, &value, &at), vspStatOk);
          ASSERT_EQ(at, ref[k].second) << "function " << k;
          ASSERT_TRUE(SameBits(value, ref[k].first)) << "function " << k;
        }
        ASSERT_TRUE(v.OutsideIntact());
      }
    }
  });
}

template <class T> struct MinMaxFns;
#define VSP_MINMAX_FNS(t)                                                                              \
  template <> struct MinMaxFns<Vsp##t> {                                                               \
    static constexpr auto kMinMax = vspsMinMax_##t;                                                    \
    static constexpr auto kMinMaxIndx = vspsMinMaxIndx_##t;                                            \
  };
VSP_MINMAX_FNS(8u) VSP_MINMAX_FNS(16u) VSP_MINMAX_FNS(16s) VSP_MINMAX_FNS(32u) VSP_MINMAX_FNS(32s)
VSP_MINMAX_FNS(32f) VSP_MINMAX_FNS(64f)
#undef VSP_MINMAX_FNS

TEST(Extremes, MinMaxAndTheirFirstIndices) {
  ForEachType(TypeList<Vsp8u, Vsp16u, Vsp16s, Vsp32u, Vsp32s, Vsp32f, Vsp64f>{}, []<class T>() {
    Rng rng(23);
    auto same = [](T x) { return x; };
    for (int n : StatLengths()) {
      for (int mode = 0; mode < 3; ++mode) {
        for (size_t off : StatOffsets<T>()) {
          GuardedVec<T> v(n, off);
          FillExtremes(v.data(), n, mode, rng);
          SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(n) + " mode " + std::to_string(mode));
          auto mx = RefExtreme(v.data(), n, same, [](T a, T b) { return a > b; });
          auto mn = RefExtreme(v.data(), n, same, [](T a, T b) { return a < b; });
          T lo, hi;
          int ilo = -1, ihi = -1;
          ASSERT_EQ(MinMaxFns<T>::kMinMax(v.data(), n, &lo, &hi), vspStatOk);
          ASSERT_TRUE(lo == mn.first || (lo != lo && mn.first != mn.first));
          ASSERT_TRUE(hi == mx.first || (hi != hi && mx.first != mx.first));
          ASSERT_EQ(MinMaxFns<T>::kMinMaxIndx(v.data(), n, &lo, &ilo, &hi, &ihi), vspStatOk);
          ASSERT_EQ(ilo, mn.second);
          ASSERT_EQ(ihi, mx.second);
          ASSERT_TRUE(SameBits(lo, mn.first) && SameBits(hi, mx.first));
        }
      }
    }
  });
}

TEST(Extremes, WorkedExamples) {
  const Vsp32f a[3] = {1, 3, 3};
  Vsp32f m;
  int at = -1;
  ASSERT_EQ(vspsMaxIndx_32f(a, 3, &m, &at), vspStatOk);
  EXPECT_EQ(m, 3.0f);
  EXPECT_EQ(at, 1);
  m = 0;
  ASSERT_EQ(vspsMaxIndx_32f(a, 3, &m, nullptr), vspStatOk);
  EXPECT_EQ(m, 3.0f);
  const Vsp16s s = -32768;
  Vsp16s r;
  ASSERT_EQ(vspsMaxAbs_16s(&s, 1, &r), vspStatOk);
  EXPECT_EQ(r, 32767);
  const Vsp16s pair[2] = {32767, -32768};
  ASSERT_EQ(vspsMaxAbsIndx_16s(pair, 2, &r, &at), vspStatOk);
  EXPECT_EQ(r, 32767);
  EXPECT_EQ(at, 0);
  // NaN first stays the result at index 0, in the scalar and the chunked search; NaN elsewhere
  // is never chosen.
  for (int n : {3, 40, 5000}) {
    std::vector<Vsp64f> d(n, 1.0);
    d[n - 1] = 2.0;
    d[0] = NAN;
    Vsp64f v;
    ASSERT_EQ(vspsMinIndx_64f(d.data(), n, &v, &at), vspStatOk);
    EXPECT_TRUE(std::isnan(v) && at == 0) << n;
    d[0] = 1.0, d[1] = NAN;
    ASSERT_EQ(vspsMaxIndx_64f(d.data(), n, &v, &at), vspStatOk);
    EXPECT_TRUE(v == 2.0 && at == n - 1) << n;
  }
  const Vsp32s i = -2147483647 - 1;
  Vsp32s ri;
  ASSERT_EQ(vspsMaxAbs_32s(&i, 1, &ri), vspStatOk);
  EXPECT_EQ(ri, 2147483647);
}

// Reference order: ilogb + 1 for normal maxima, the exponent floor for subnormal ones.
template <class T> int RefOrder(const T* v, int n, bool* nonFinite) {
  T m = 0;
  *nonFinite = false;
  for (int i = 0; i < n; ++i) {
    if (!std::isfinite(v[i])) *nonFinite = true;
    else m = std::max(m, std::fabs(v[i]));
  }
  if (m == 0) return 0;
  if (m < std::numeric_limits<T>::min()) return std::numeric_limits<T>::min_exponent - 1;
  return std::ilogb(m) + 1;
}

TEST(Extremes, MaxOrder) {
  int order = -1;
  const Vsp32f a[2] = {0.75f, -3.0f};
  ASSERT_EQ(vspsMaxOrder_32f(a, 2, &order), vspStatOk);
  EXPECT_EQ(order, 2);
  const Vsp32f b[2] = {1.0f, INFINITY};
  ASSERT_EQ(vspsMaxOrder_32f(b, 2, &order), vspStatNonFiniteArg);
  EXPECT_EQ(order, 1);
  const Vsp16s c[1] = {-5}, z[1] = {0}, lo[1] = {-32768};
  ASSERT_EQ(vspsMaxOrder_16s(c, 1, &order), vspStatOk);
  EXPECT_EQ(order, 3);
  ASSERT_EQ(vspsMaxOrder_16s(z, 1, &order), vspStatOk);
  EXPECT_EQ(order, 0);
  ASSERT_EQ(vspsMaxOrder_16s(lo, 1, &order), vspStatOk);
  EXPECT_EQ(order, 16);
  EXPECT_EQ(vspsMaxOrder_32f(nullptr, 0, &order), vspStatBadSize);

  Rng rng(31);
  ForEachType(TypeList<Vsp32f, Vsp64f>{}, [&]<class T>() {
    for (int n : StatLengths()) {
      for (int mode = 0; mode < 4; ++mode) {
        GuardedVec<T> v(n, StatOffsets<T>()[n % StatOffsets<T>().size()]);
        for (int i = 0; i < n; ++i) v[i] = static_cast<T>(std::ldexp(rng.Uniform(-1, 1), static_cast<int>(rng.Int(-30, 30))));
        if (mode == 1) v[rng.Int(0, n - 1)] = std::numeric_limits<T>::quiet_NaN();
        if (mode == 2) v[rng.Int(0, n - 1)] = -std::numeric_limits<T>::infinity();
        if (mode == 3) v[rng.Int(0, n - 1)] = std::numeric_limits<T>::denorm_min();
        bool nonFinite;
        const int ref = RefOrder(v.data(), n, &nonFinite);
        for (bool raised : {false, true}) {
          std::feclearexcept(FE_ALL_EXCEPT);
          if (raised) std::feraiseexcept(FE_INVALID);
          int got = -99;
          VspStatus st = std::is_same_v<T, Vsp32f> ? vspsMaxOrder_32f(reinterpret_cast<const Vsp32f*>(v.data()), n, &got)
                                                     : vspsMaxOrder_64f(reinterpret_cast<const Vsp64f*>(v.data()), n, &got);
          ASSERT_EQ(std::fetestexcept(FE_INVALID) != 0, raised) << "the invalid flag changed";
          ASSERT_EQ(st, nonFinite ? vspStatNonFiniteArg : vspStatOk);
          ASSERT_EQ(got, ref) << TypeName<T>() << " len " << n << " mode " << mode;
        }
      }
    }
  });
  for (int n : {1, 9, 40}) {
    GuardedVec<Vsp16s> s(n, 2);
    GuardedVec<Vsp32s> w(n, 4);
    for (int bits = 0; bits <= 16; ++bits) {
      unsigned or16 = 0, or32 = 0;
      for (int i = 0; i < n; ++i) {
        s[i] = static_cast<Vsp16s>(rng.Int(-(1LL << bits) / 2, (1LL << bits) / 2));
        w[i] = static_cast<Vsp32s>(rng.Int(-(1LL << (2 * bits)) / 2, (1LL << (2 * bits)) / 2));
        or16 |= static_cast<unsigned>(std::abs(static_cast<int>(s[i])));
        or32 |= static_cast<unsigned>(std::llabs(static_cast<long long>(w[i])));
      }
      ASSERT_EQ(vspsMaxOrder_16s(s.data(), n, &order), vspStatOk);
      ASSERT_EQ(order, or16 ? 32 - __builtin_clz(or16) : 0);
      ASSERT_EQ(vspsMaxOrder_32s(w.data(), n, &order), vspStatOk);
      ASSERT_EQ(order, or32 ? 32 - __builtin_clz(or32) : 0);
    }
  }
}

// MaxEvery_I and MinEvery_I with the source one element behind the destination: the result of
// the forward element loop (the element results are reference rows of the argument checks).
TEST(Extremes, EveryFormsOverlappingTheirSource) {
  Rng rng(41);
  for (int n : {2, 3, 17, 70, 1001}) {
    for (bool max : {true, false}) {
      std::vector<Vsp32f> v(n);
      FillExtremes(v.data(), n, 2, rng);
      std::vector<Vsp32f> want = v;
      for (int i = 0; i + 1 < n; ++i) want[i + 1] = (max ? want[i] > want[i + 1] : want[i] < want[i + 1]) ? want[i] : want[i + 1];
      ASSERT_EQ((max ? vspsMaxEvery_32f_I : vspsMinEvery_32f_I)(v.data(), v.data() + 1, n - 1), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(v[i], want[i])) << (max ? "max " : "min ") << n << " at " << i;
    }
  }
}

TEST(Extremes, SumWindowFollowsItsRecurrence) {
  Rng rng(51);
  auto check = [&]<class T>(T lo, T hi, int n, int mask) {
    std::vector<T> s(n + mask - 1);
    for (auto& x : s) x = static_cast<T>(rng.Int(lo, hi));
    GuardedVec<Vsp32f> d(n, 4 * (n % 4));
    VspStatus st = std::is_same_v<T, Vsp8u> ? vspsSumWindow_8u32f(reinterpret_cast<const Vsp8u*>(s.data()), d.data(), n, mask)
                                            : vspsSumWindow_16s32f(reinterpret_cast<const Vsp16s*>(s.data()), d.data(), n, mask);
    ASSERT_EQ(st, vspStatOk);
    Vsp32f acc = 0;
    for (int k = 0; k < mask; ++k) acc += static_cast<Vsp32f>(s[k]);
    ASSERT_EQ(d[0], acc);
    for (int i = 0; i + 1 < n; ++i) {
      acc += static_cast<Vsp32f>(static_cast<int>(s[i + mask]) - static_cast<int>(s[i]));
      ASSERT_EQ(d[i + 1], acc) << "len " << n << " mask " << mask << " at " << i + 1;
    }
    ASSERT_TRUE(d.OutsideIntact());
  };
  for (int n : {1, 2, 5, 64, 1001}) {
    for (int mask : {1, 2, 3, 17, 257, 258, 512, 513}) {
      check(Vsp8u(0), Vsp8u(255), n, mask);
      check(Vsp16s(-32768), Vsp16s(32767), n, mask);
    }
  }
  check(Vsp8u(200), Vsp8u(255), 300, 70000);  // sums above 2^24: the float recurrence rounds
}

}  // namespace
}  // namespace vsptest
