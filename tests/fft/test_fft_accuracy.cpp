// Every FFT member at every order up to 2^20 (2^18 under the sanitizers) against a long-double
// reference: relative RMS error below 2 eps log2 N, maximum error below 8 eps log2 N (relative
// to the reference's RMS); the scaled flags equal the unscaled result times the factor.
#include <algorithm>

#include "fft_support.h"
#include "support/types.h"

namespace vsptest {
namespace {

using Precisions = TypeList<Vsp32f, Vsp64f>;

template <class T> std::vector<T> RandomReals(size_t n, uint64_t seed) {
  Rng rng(seed);
  std::vector<T> v(n);
  for (auto& x : v) x = static_cast<T>(rng.Uniform(-1, 1));
  return v;
}
template <class T> std::vector<CL> ToCL(const T* p, size_t n) {
  std::vector<CL> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = CL(p[2 * i], p[2 * i + 1]);
  return v;
}
template <class T> void ExpectAccurate(const std::vector<CL>& got, const std::vector<CL>& ref, int order, const char* what) {
  const double eps = Fft<T>::kEps, lg = std::max(order, 1);
  const ErrStats e = Compare(got, ref);
  EXPECT_LT(e.rms, 2 * eps * lg) << what << " order " << order;
  EXPECT_LT(e.max, 8 * eps * lg) << what << " order " << order;
}

// Interleaved and split, forward and inverse, out of place and in place, unscaled.
TEST(FftAccuracy, ComplexEveryOrder) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    for (int order = 0; order <= MaxTestedOrder(); ++order) {
      SCOPED_TRACE(std::string(TypeName<T>()) + " order " + std::to_string(order));
      const size_t n = size_t{1} << order;
      const std::vector<T> in = RandomReals<T>(2 * n, 100 + order);
      std::vector<CL> refF = ToCL(in.data(), n), refI = refF;
      RefFft(refF, -1);
      RefFft(refI, +1);
      Built<T> c = Build<T>(kComplex, order, FFT_SCALE_NONE);
      Built<T> s = Build<T>(kSplit, order, FFT_SCALE_NONE);
      ASSERT_EQ(c.st, vspStatOk);
      ASSERT_EQ(s.st, vspStatOk);
      GuardedVec<T> src(2 * n, Mis<T>(8)), dst(2 * n, Mis<T>(4));
      std::memcpy(src.data(), in.data(), 2 * n * sizeof(T));
      for (int inv = 0; inv < 2; ++inv) {
        const std::vector<CL>& ref = inv ? refI : refF;
        auto sc = c.template As<typename F::SpecC>();
        auto* s2 = reinterpret_cast<const typename F::Tc*>(src.data());
        auto* d2 = reinterpret_cast<typename F::Tc*>(dst.data());
        ASSERT_EQ((inv ? F::InvC : F::FwdC)(s2, d2, sc, c.Work()), vspStatOk);
        ExpectAccurate<T>(ToCL(dst.data(), n), ref, order, "interleaved");
        ASSERT_TRUE(dst.OutsideIntact());
        ASSERT_EQ(std::memcmp(src.data(), in.data(), 2 * n * sizeof(T)), 0) << "source written";
        // In place gives the same bits.
        std::vector<T> out(dst.data(), dst.data() + 2 * n);
        std::memcpy(dst.data(), in.data(), 2 * n * sizeof(T));
        ASSERT_EQ((inv ? F::InvCI : F::FwdCI)(d2, sc, c.Work()), vspStatOk);
        ASSERT_EQ(std::memcmp(dst.data(), out.data(), 2 * n * sizeof(T)), 0) << "in place differs";
        // Split form, out of place and in place: the same bits as the interleaved form.
        GuardedVec<T> re(n, Mis<T>(4)), im(n, Mis<T>(12)), ore(n), oim(n, Mis<T>(8));
        for (size_t i = 0; i < n; ++i) re[i] = in[2 * i], im[i] = in[2 * i + 1];
        auto ss = s.template As<typename F::SpecS>();
        ASSERT_EQ((inv ? F::InvS : F::FwdS)(re.data(), im.data(), ore.data(), oim.data(), ss, s.Work()), vspStatOk);
        for (size_t i = 0; i < n; ++i)
          ASSERT_TRUE(SameBits(ore[i], out[2 * i]) && SameBits(oim[i], out[2 * i + 1])) << "split bin " << i;
        ASSERT_EQ((inv ? F::InvSI : F::FwdSI)(re.data(), im.data(), ss, s.Work()), vspStatOk);
        for (size_t i = 0; i < n; ++i)
          ASSERT_TRUE(SameBits(re[i], out[2 * i]) && SameBits(im[i], out[2 * i + 1])) << "split in place bin " << i;
        ASSERT_TRUE(re.OutsideIntact() && im.OutsideIntact() && ore.OutsideIntact() && oim.OutsideIntact());
      }
    }
  });
}

// Real forward into every layout and the inverses, against the reference of the real signal.
TEST(FftAccuracy, RealEveryOrderAndLayout) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    for (int order = 0; order <= MaxTestedOrder(); ++order) {
      SCOPED_TRACE(std::string(TypeName<T>()) + " order " + std::to_string(order));
      const size_t n = size_t{1} << order;
      const std::vector<T> x = RandomReals<T>(n, 300 + order);
      std::vector<CL> ref(n);
      for (size_t i = 0; i < n; ++i) ref[i] = CL(x[i], 0);
      RefFft(ref, -1);
      Built<T> r = Build<T>(kReal, order, FFT_SCALE_NONE);
      ASSERT_EQ(r.st, vspStatOk);
      auto sp = r.template As<typename F::SpecR>();
      for (int lay = 0; lay < 3; ++lay) {
        const size_t len = lay == 2 ? n + 1 + (n > 1) : n;  // CCS: N + 2, or 2 for N = 1
        GuardedVec<T> dst(len, Mis<T>(4)), back(n, Mis<T>(8));
        ASSERT_EQ(F::FwdR[lay](x.data(), dst.data(), sp, r.Work()), vspStatOk);
        ASSERT_TRUE(dst.OutsideIntact());
        // Read bins 0..N/2 back from the layout by its definition.
        std::vector<CL> got(n / 2 + 1), want(ref.begin(), ref.begin() + n / 2 + 1);
        got[0] = CL(dst[0], 0);
        for (size_t k = 1; 2 * k < n; ++k) {
          const size_t at = lay == 0 ? 2 * k - 1 : 2 * k;
          got[k] = CL(dst[at], dst[at + 1]);
        }
        if (n > 1) got[n / 2] = CL(lay == 0 ? dst[n - 1] : lay == 1 ? dst[1] : dst[n], 0);
        if (lay == 2) {
          EXPECT_EQ(dst[1], T(0));
          if (n > 1) {
            EXPECT_EQ(dst[n + 1], T(0));
          }
        }
        ExpectAccurate<T>(got, want, order, "real forward");
        // Inverse: N times the signal.
        ASSERT_EQ(F::InvR[lay](dst.data(), back.data(), sp, r.Work()), vspStatOk);
        std::vector<CL> gotx(n), wantx(n);
        for (size_t i = 0; i < n; ++i) gotx[i] = CL(back[i], 0), wantx[i] = CL(static_cast<long double>(x[i]) * n, 0);
        ExpectAccurate<T>(gotx, wantx, order, "real inverse");
        ASSERT_TRUE(back.OutsideIntact());
        // In place: same bits.
        GuardedVec<T> io(len, Mis<T>(12));
        std::memcpy(io.data(), x.data(), n * sizeof(T));
        ASSERT_EQ(F::FwdRI[lay](io.data(), sp, r.Work()), vspStatOk);
        ASSERT_EQ(std::memcmp(io.data(), dst.data(), len * sizeof(T)), 0);
        ASSERT_EQ(F::InvRI[lay](io.data(), sp, r.Work()), vspStatOk);
        ASSERT_EQ(std::memcmp(io.data(), back.data(), n * sizeof(T)), 0);
      }
    }
  });
}

// Every flag: the scaled direction equals the unscaled result times the spec's factor (in the
// element type), and Fwd then Inv returns the input (times N for flag 8).
TEST(FftAccuracy, FlagsScaleAndRoundTrip) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    for (int order : {0, 1, 3, 4, 5, 6, 7, 10, 11, 15, 17}) {
      const size_t n = size_t{1} << order;
      const std::vector<T> in = RandomReals<T>(2 * n, 500 + order);
      Built<T> none = Build<T>(kComplex, order, FFT_SCALE_NONE);
      Built<T> rnone = Build<T>(kReal, order, FFT_SCALE_NONE);
      std::vector<T> f0(2 * n), i0(2 * n), rf0(n + 2), ri0(n);
      auto* cin = reinterpret_cast<const typename F::Tc*>(in.data());
      ASSERT_EQ(F::FwdC(cin, reinterpret_cast<typename F::Tc*>(f0.data()), none.template As<typename F::SpecC>(), none.Work()), 0);
      ASSERT_EQ(F::InvC(cin, reinterpret_cast<typename F::Tc*>(i0.data()), none.template As<typename F::SpecC>(), none.Work()), 0);
      ASSERT_EQ(F::FwdR[2](in.data(), rf0.data(), rnone.template As<typename F::SpecR>(), rnone.Work()), 0);
      ASSERT_EQ(F::InvR[1](in.data(), ri0.data(), rnone.template As<typename F::SpecR>(), rnone.Work()), 0);
      for (int flag : {FFT_SCALE_FWD_BY_N, FFT_SCALE_INV_BY_N, FFT_SCALE_BY_SQRTN, FFT_SCALE_NONE}) {
        SCOPED_TRACE(std::string(TypeName<T>()) + " order " + std::to_string(order) + " flag " + std::to_string(flag));
        const T fs = flag == 1 ? T(1.0 / n) : flag == 4 ? T(1.0 / std::sqrt(double(n))) : T(1);
        const T is = flag == 2 ? T(1.0 / n) : flag == 4 ? T(1.0 / std::sqrt(double(n))) : T(1);
        Built<T> c = Build<T>(kComplex, order, flag);
        Built<T> r = Build<T>(kReal, order, flag);
        auto sc = c.template As<typename F::SpecC>();
        auto sr = r.template As<typename F::SpecR>();
        std::vector<T> f(2 * n), iv(2 * n), rf(n + 2), ri(n);
        ASSERT_EQ(F::FwdC(cin, reinterpret_cast<typename F::Tc*>(f.data()), sc, c.Work()), 0);
        ASSERT_EQ(F::InvC(cin, reinterpret_cast<typename F::Tc*>(iv.data()), sc, c.Work()), 0);
        ASSERT_EQ(F::FwdR[2](in.data(), rf.data(), sr, r.Work()), 0);
        ASSERT_EQ(F::InvR[1](in.data(), ri.data(), sr, r.Work()), 0);
        for (size_t i = 0; i < 2 * n; ++i) {
          ASSERT_TRUE(SameBits(f[i], fs == 1 ? f0[i] : T(f0[i] * fs))) << i;
          ASSERT_TRUE(SameBits(iv[i], is == 1 ? i0[i] : T(i0[i] * is))) << i;
        }
        for (size_t i = 0; i < n + 2; ++i) ASSERT_TRUE(SameBits(rf[i], fs == 1 ? rf0[i] : T(rf0[i] * fs))) << i;
        for (size_t i = 0; i < n; ++i) ASSERT_TRUE(SameBits(ri[i], is == 1 ? ri0[i] : T(ri0[i] * is))) << i;
        // Round trip.
        std::vector<T> back(2 * n);
        ASSERT_EQ(F::InvC(reinterpret_cast<const typename F::Tc*>(f.data()), reinterpret_cast<typename F::Tc*>(back.data()), sc, c.Work()), 0);
        const long double gain = flag == FFT_SCALE_NONE ? static_cast<long double>(n) : 1.0L;
        std::vector<CL> got(n), want(n);
        for (size_t i = 0; i < n; ++i)
          got[i] = CL(back[2 * i], back[2 * i + 1]), want[i] = CL(in[2 * i] * gain, in[2 * i + 1] * gain);
        ExpectAccurate<T>(got, want, 2 * order, "round trip");
        std::vector<T> rback(n);
        ASSERT_EQ(F::InvR[2](rf.data(), rback.data(), sr, r.Work()), 0);
        for (size_t i = 0; i < n; ++i) got[i] = CL(rback[i], 0), want[i] = CL(in[i] * gain, 0);
        ExpectAccurate<T>(got, want, 2 * order, "real round trip");
      }
    }
  });
}

// Impulses and single tones land in the right bins of every layout: x(n) = cos(2 pi b n / N)
// gives N/2 at bins b and N - b (N at b = 0 or N/2); a shifted impulse gives unit magnitude.
TEST(FftAccuracy, TonesAndImpulsesInEveryLayout) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    for (int order : {2, 4, 5, 6, 9, 12}) {
      const size_t n = size_t{1} << order;
      Built<T> r = Build<T>(kReal, order, FFT_SCALE_NONE);
      auto sp = r.template As<typename F::SpecR>();
      for (size_t bin : {size_t{0}, size_t{1}, n / 4, n / 2 - 1, n / 2}) {
        std::vector<T> x(n);
        for (size_t i = 0; i < n; ++i) x[i] = static_cast<T>(cosl(2 * 3.141592653589793238L * bin * i / n));
        std::vector<T> perm(n), pack(n), ccs(n + 2);
        ASSERT_EQ(F::FwdR[0](x.data(), pack.data(), sp, r.Work()), 0);
        ASSERT_EQ(F::FwdR[1](x.data(), perm.data(), sp, r.Work()), 0);
        ASSERT_EQ(F::FwdR[2](x.data(), ccs.data(), sp, r.Work()), 0);
        const double tol = 64 * Fft<T>::kEps * n;
        for (size_t k = 0; k <= n / 2; ++k) {
          const double want = (k == bin) ? ((bin == 0 || bin == n / 2) ? double(n) : n / 2.0) : 0.0;
          const double c = ccs[2 * k];
          EXPECT_NEAR(c, want, tol) << "CCS bin " << k << " tone " << bin;
          EXPECT_NEAR(ccs[2 * k + 1], 0.0, tol) << "CCS im bin " << k;
          const double pk = k == 0 ? pack[0] : k == n / 2 ? pack[n - 1] : pack[2 * k - 1];
          const double pm = k == 0 ? perm[0] : k == n / 2 ? perm[1] : perm[2 * k];
          EXPECT_NEAR(pk, want, tol) << "Pack bin " << k;
          EXPECT_NEAR(pm, want, tol) << "Perm bin " << k;
        }
      }
      // An impulse at 1: X(k) = exp(-2 pi i k / N), so Im X(N/4) = -1.
      std::vector<T> imp(n), ccs(n + 2);
      imp[1] = 1;
      ASSERT_EQ(F::FwdR[2](imp.data(), ccs.data(), sp, r.Work()), 0);
      EXPECT_NEAR(ccs[2 * (n / 4)], 0.0, 1e-6);
      EXPECT_NEAR(ccs[2 * (n / 4) + 1], -1.0, 1e-6);
      EXPECT_NEAR(ccs[n], -1.0, 1e-6);
    }
  });
}

}  // namespace
}  // namespace vsptest
