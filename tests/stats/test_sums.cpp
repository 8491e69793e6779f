// Sum, Mean, StdDev, MeanStdDev against exact or extended-precision references: ill-conditioned
// float sums whose exact total is a double (the accurate path rounds it once), exactly summable
// data on the fast path, the integer scaling rules over scale factors -40..40 at the saturation
// boundaries, and deviations of all-equal vectors (exactly 0).
#include <gtest/gtest.h>

#include "stats_support.h"

namespace vsptest {
namespace {

template <class T> struct SumFns;
#define VSP_SUM_FNS(t, call)                                                                              \
  template <> struct SumFns<Vsp##t> {                                                                     \
    static VspStatus Sum(const Vsp##t* p, int n, Vsp##t* r, [[maybe_unused]] VspHintAlgorithm h) { return vspsSum_##t call; }   \
    static VspStatus Mean(const Vsp##t* p, int n, Vsp##t* r, [[maybe_unused]] VspHintAlgorithm h) { return vspsMean_##t call; } \
  };
VSP_SUM_FNS(32f, (p, n, r, h)) VSP_SUM_FNS(32fc, (p, n, r, h))
VSP_SUM_FNS(64f, (p, n, r)) VSP_SUM_FNS(64fc, (p, n, r))
#undef VSP_SUM_FNS

template <class T> struct PartOf { using Type = T; };
template <> struct PartOf<Vsp32fc> { using Type = Vsp32f; };
template <> struct PartOf<Vsp64fc> { using Type = Vsp64f; };

// Integer-valued parts: big values and their negatives around small ones, so the sum cancels,
// with every partial sum an integer below 2^53 (exact in double) when `big` is set; small
// integers (every float partial sum exact) otherwise.
template <class P> void FillCancelling(P* v, size_t count, bool big, Rng& rng) {
  for (size_t i = 0; i < count; ++i) {
    if (big && i % 3 != 2) v[i] = static_cast<P>(std::ldexp(static_cast<double>(rng.Int(-(1 << 23), 1 << 23)), rng.Int(0, 12)));
    else v[i] = static_cast<P>(rng.Int(-100, 100));
  }
  if (big)
    for (size_t i = 1; i < count; i += 3) v[i] = -v[i - 1];  // exact cancellation pairs
}

TEST(Sums, FloatSumsAndMeansRoundTheExactTotalOnce) {
  ForEachType(TypeList<Vsp32f, Vsp32fc, Vsp64f, Vsp64fc>{}, []<class T>() {
    using P = typename PartOf<T>::Type;
    constexpr int kW = sizeof(T) / sizeof(P);
    Rng rng(11);
    for (int n : StatLengths()) {
      for (size_t off : StatOffsets<T>()) {
        for (int hint : {0, 1, 2, 7}) {
          const bool fast = hint == 1 && sizeof(P) == 4;
          SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(n) + " off " + std::to_string(off) +
                       " hint " + std::to_string(hint));
          GuardedVec<T> src(n, off);
          P* v = reinterpret_cast<P*>(src.data());
          FillCancelling(v, static_cast<size_t>(n) * kW, !fast, rng);
          T sum, mean;
          ASSERT_EQ(SumFns<T>::Sum(src.data(), n, &sum, static_cast<VspHintAlgorithm>(hint)), vspStatOk);
          ASSERT_EQ(SumFns<T>::Mean(src.data(), n, &mean, static_cast<VspHintAlgorithm>(hint)), vspStatOk);
          const P* s = reinterpret_cast<const P*>(&sum);
          const P* m = reinterpret_cast<const P*>(&mean);
          for (int c = 0; c < kW; ++c) {
            long double exact = 0;
            for (int i = 0; i < n; ++i) exact += v[i * kW + c];  // integers below 2^63: exact
            ASSERT_EQ(s[c], static_cast<P>(static_cast<double>(exact))) << "part " << c;
            ASSERT_EQ(m[c], static_cast<P>(static_cast<double>(exact) / n)) << "part " << c;
          }
        }
      }
    }
  });
}

// The fast path on data whose float sums round: close to the exact total, and blocked (error far
// below that of one float accumulator).
TEST(Sums, FastFloatSumStaysCloseOnRoundingData) {
  const int n = 1 << 20;
  std::vector<Vsp32f> v(n);
  Rng rng(5);
  long double exact = 0, mag = 0;
  for (auto& x : v) x = static_cast<Vsp32f>(rng.Uniform(0, 1)), exact += x, mag += std::fabs(x);
  Vsp32f sum;
  ASSERT_EQ(vspsSum_32f(v.data(), n, &sum, vspAlgHintFast), vspStatOk);
  EXPECT_NEAR(sum, static_cast<double>(exact), 1e-6 * static_cast<double>(mag));
}

// Means of 16s, 16sc and 32s data: the exact mean scaled, rounded to nearest even (values within
// a relative 1e-12 of a tie are not decided); the integer sums are reference rows.
TEST(Sums, IntegerMeansFollowTheirScalingRule) {
  Rng rng(3);
  for (int n : {1, 7, 8, 9, 33, 1000, 70001}) {
    for (int kind = 0; kind < 4; ++kind) {
      GuardedVec<Vsp16s> v(2 * n, 2 * (n % 8));
      GuardedVec<Vsp32s> w(n, 4 * (n % 4));
      for (int i = 0; i < 2 * n; ++i)
        v[i] = kind == 0 ? 32767 : kind == 1 ? -32768 : static_cast<Vsp16s>(rng.Int(-32768, kind == 2 ? 32767 : 100));
      for (int i = 0; i < n; ++i)
        w[i] = kind == 0 ? 2147483647 : kind == 1 ? -2147483647 - 1 : static_cast<Vsp32s>(rng.Int(-(1LL << 31), (1LL << 31) - 1));
      long long s16 = 0, sim = 0;
      __int128 s32 = 0;
      for (int i = 0; i < n; ++i) s16 += v[i], s32 += w[i], sim += v[2 * i + 1];
      const auto* vc = reinterpret_cast<const Vsp16sc*>(v.data());
      for (int sf = -40; sf <= 40; ++sf) {
        SCOPED_TRACE("len " + std::to_string(n) + " kind " + std::to_string(kind) + " sf " + std::to_string(sf));
        Vsp16s r16;
        Vsp32s r32;
        Vsp16sc c16;
        const long double mean16 = std::ldexp(static_cast<long double>(s16) / n, -sf);
        if (!NearHalf(mean16)) {
          ASSERT_EQ(vspsMean_16s_Sfs(v.data(), n, &r16, sf), vspStatOk);
          ASSERT_EQ(r16, RefRound<Vsp16s>(mean16));
        }
        const long double meanIm = std::ldexp(static_cast<long double>(sim) / n, -sf);
        if (!NearHalf(meanIm)) {
          ASSERT_EQ(vspsMean_16sc_Sfs(vc, n, &c16, sf), vspStatOk);
          ASSERT_EQ(c16.im, RefRound<Vsp16s>(meanIm));
        }
        const long double mean32 = std::ldexp(static_cast<long double>(s32) / n, -sf);
        if (!NearHalf(mean32, 1e-15L)) {
          ASSERT_EQ(vspsMean_32s_Sfs(w.data(), n, &r32, sf), vspStatOk);
          ASSERT_EQ(r32, RefRound<Vsp32s>(mean32));
        }
      }
    }
  }
  // The double factor of the sums is built from a clamped exponent: 1023 and above multiply by 0.
  const Vsp16s big[2] = {32767, 32767};
  Vsp32s r;
  ASSERT_EQ(vspsSum_16s32s_Sfs(big, 2, &r, 1023), vspStatOk);
  EXPECT_EQ(r, 0);
}

template <class T> long double TwoPassDeviation(const T* v, int n) {
  long double mean = 0, var = 0;
  for (int i = 0; i < n; ++i) mean += v[i];
  mean /= n;
  for (int i = 0; i < n; ++i) var += (v[i] - mean) * (v[i] - mean);
  return std::sqrt(var / (n - 1));
}

TEST(Sums, DeviationsAgreeWithTwoPassReferences) {
  Rng rng(9);
  for (int n : {2, 3, 17, 64, 1023, 1024, 1025, 5000}) {
    GuardedVec<Vsp32f> f(n, 4);
    GuardedVec<Vsp64f> d(n, 8);
    GuardedVec<Vsp16s> s(n, 2);
    for (int i = 0; i < n; ++i) {
      f[i] = static_cast<Vsp32f>(rng.Uniform(-3, 5));
      d[i] = rng.Uniform(-3, 5);
      s[i] = static_cast<Vsp16s>(rng.Int(-32768, 32767));
    }
    Vsp32f sf, mf;
    Vsp64f sd, md;
    const long double rf = TwoPassDeviation(f.data(), n), rd = TwoPassDeviation(d.data(), n);
    for (auto hint : {vspAlgHintNone, vspAlgHintFast, vspAlgHintAccurate}) {
      ASSERT_EQ(vspsStdDev_32f(f.data(), n, &sf, hint), vspStatOk);
      EXPECT_NEAR(sf, static_cast<double>(rf), 1e-5 * static_cast<double>(rf)) << n;
    }
    ASSERT_EQ(vspsMeanStdDev_32f(f.data(), n, &mf, &sf), vspStatOk);
    EXPECT_NEAR(sf, static_cast<double>(rf), 1e-6 * static_cast<double>(rf));
    ASSERT_EQ(vspsStdDev_64f(d.data(), n, &sd), vspStatOk);
    EXPECT_NEAR(sd, static_cast<double>(rd), 1e-12 * static_cast<double>(rd));
    ASSERT_EQ(vspsMeanStdDev_64f(d.data(), n, &md, &sd), vspStatOk);
    EXPECT_NEAR(sd, static_cast<double>(rd), 1e-12 * static_cast<double>(rd));
    long double mean = 0;
    for (int i = 0; i < n; ++i) mean += d[i];
    EXPECT_NEAR(md, static_cast<double>(mean / n), 1e-13);

    const long double rs = TwoPassDeviation(s.data(), n);
    for (int scale = -40; scale <= 40; scale += 3) {
      const long double x = std::ldexp(rs, -scale);
      if (NearHalf(x, 1e-9L)) continue;
      Vsp32s r32, m32;
      Vsp16s r16, m16;
      ASSERT_EQ(vspsStdDev_16s32s_Sfs(s.data(), n, &r32, scale), vspStatOk);
      ASSERT_EQ(r32, RefRound<Vsp32s>(x)) << n << " sf " << scale;
      ASSERT_EQ(vspsStdDev_16s_Sfs(s.data(), n, &r16, scale), vspStatOk);
      ASSERT_EQ(r16, RefRound<Vsp16s>(x));
      ASSERT_EQ(vspsMeanStdDev_16s32s_Sfs(s.data(), n, &m32, &r32, scale), vspStatOk);
      ASSERT_EQ(r32, RefRound<Vsp32s>(x));
      ASSERT_EQ(vspsMeanStdDev_16s_Sfs(s.data(), n, &m16, &r16, scale), vspStatOk);
      ASSERT_EQ(r16, RefRound<Vsp16s>(x));
    }
  }
}

TEST(Sums, AllEqualVectorsHaveZeroDeviation) {
  for (int n : {2, 5, 33, 1000, 100003}) {
    for (double value : {0.1, -7.3, 1e6 + 0.1, 3e30}) {
      std::vector<Vsp32f> f(n, static_cast<Vsp32f>(value));
      std::vector<Vsp64f> d(n, value);
      std::vector<Vsp16s> s(n, static_cast<Vsp16s>(value > 0 && value < 32767 ? value : -32768));
      Vsp32f rf = -1, mf;
      Vsp64f rd = -1, md;
      for (auto hint : {vspAlgHintFast, vspAlgHintAccurate}) {
        ASSERT_EQ(vspsStdDev_32f(f.data(), n, &rf, hint), vspStatOk);
        EXPECT_EQ(rf, 0.0f) << n << " " << value;
      }
      ASSERT_EQ(vspsMeanStdDev_32f(f.data(), n, &mf, &rf), vspStatOk);
      EXPECT_EQ(rf, 0.0f);
      ASSERT_EQ(vspsStdDev_64f(d.data(), n, &rd), vspStatOk);
      EXPECT_EQ(rd, 0.0);
      ASSERT_EQ(vspsMeanStdDev_64f(d.data(), n, &md, &rd), vspStatOk);
      EXPECT_EQ(rd, 0.0);
      Vsp32s r32 = -1;
      ASSERT_EQ(vspsStdDev_16s32s_Sfs(s.data(), n, &r32, -20), vspStatOk);
      EXPECT_EQ(r32, 0);
    }
  }
}

TEST(Sums, WorkedExamples) {
  std::vector<Vsp16s> v(1000, 32767);
  Vsp16s r16;
  Vsp32s r32;
  ASSERT_EQ(vspsSum_16s_Sfs(v.data(), 1000, &r16, 0), vspStatOk);
  EXPECT_EQ(r16, 32767);
  ASSERT_EQ(vspsSum_16s32s_Sfs(v.data(), 1000, &r32, 0), vspStatOk);
  EXPECT_EQ(r32, 32767000);
  const Vsp32f one = 1.0f;
  Vsp32f sd;
  EXPECT_EQ(vspsStdDev_32f(&one, 1, &sd, vspAlgHintNone), vspStatBadSize);
}

}  // namespace
}  // namespace vsptest
