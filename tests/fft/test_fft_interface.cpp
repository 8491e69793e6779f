// The FFT interface byte by byte: GetSize for every order, flag and kind against the size
// rules; the spec header; the check order of GetSize, Init, Fwd and Inv; foreign identifiers;
// spec, init and work buffers at every misalignment; specs are never written by transforms and
// serve concurrent calls.
#include <algorithm>
#include <thread>

#include "fft_support.h"
#include "support/types.h"

namespace vsptest {
namespace {

using Precisions = TypeList<Vsp32f, Vsp64f>;

// ---- the size rules, written out for the test ----------------------------------------------

long long R64(long long x) { return x & ~63LL; }
long long Brev(long long n) { return R64(n + 67); }
struct Expect {
  long long spec, init, work;
};
struct TW {
  long long t, w;
};
// Blocked rule, steps 1-2, for 64-bit (d) or 32-bit.
TW Steps12(int k, bool d) {
  int b, s;
  if (d) {
    b = k == 15 ? 4 : k <= 18 ? 4 : k <= 20 ? 6 : 8;
    s = k == 15 ? 8 : k <= 18 ? 10 : k <= 20 ? 13 : 14;
  } else {
    b = k == 17 ? 4 : k <= 20 ? 4 : k == 21 ? 6 : 8;
    s = k == 17 ? 9 : k <= 20 ? 10 : k == 21 ? 13 : 15;
  }
  const int r = k - b;
  const long long e = d ? 16 : 8;
  TW tw;
  if (r < (d ? 15 : 17)) tw = {R64(e * (1LL << r) + (d ? 79 : 71)), R64(e * (1LL << r) + 63)};
  else tw = Steps12(r, d);
  tw.t += e * (1LL << (k - 1));
  tw.w = std::max(tw.w, e * (1LL << s));
  return tw;
}
TW ComplexTW(int k, bool d) {
  const long long n = 1LL << k, e = d ? 16 : 8;
  if (k <= (d ? 14 : 16)) return {R64(e * n + (d ? 79 : 71)) + Brev(n), R64(e * n + 63)};
  TW tw = Steps12(k, d);
  if (k < (d ? 19 : 20)) {
    tw.t += Brev(n);
  } else {
    tw.t += 4 * (1LL << (k - 12)) + 4160;
    tw.w = std::max(tw.w, d ? 131072LL : 65536LL);
  }
  return tw;
}
long long InitOf(int k, bool d) { return k <= 10 ? 0 : R64((d ? 2 : 1) * (1LL << k) + (d ? 71 : 67)) + 64; }
Expect ComplexExpect(int k, bool d) {
  if (k <= 5) return {208, 0, 0};
  TW tw = ComplexTW(k, d);
  return {tw.t + 256, InitOf(k, d), tw.w + 64};
}
Expect RealExpect(int k, bool d) {
  if (k <= (d ? 5 : 4)) return {208, 0, 0};
  const long long n = 1LL << k;
  TW tw = k - 1 <= 5 ? TW{0, 0} : ComplexTW(k - 1, d);
  long long r;
  if (d) r = k < 18 ? R64(4 * n + 63) : R64(16 * (1LL << (k - 11)) + 8255);
  else r = k < 19 ? R64(2 * n + 63) : R64(8 * (1LL << (k - 12)) + 8255);
  const long long init = k <= 10 ? 0 : InitOf(k, d) + InitOf(k - 1, d);
  return {tw.t + 2 * r + 256, init, tw.w > 0 ? tw.w + 64 : 0};
}

TEST(FftInterface, GetSizeEveryOrderFlagAndKind) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    const bool d = sizeof(T) == 8;
    for (int kind = 0; kind < 3; ++kind) {
      auto get = kind == 0 ? F::GetSizeC : kind == 1 ? F::GetSizeS : F::GetSizeR;
      const int limit = kind == 2 ? F::kLimitR : F::kLimitC;
      for (int order = 0; order <= 30; ++order)
        for (int flag : {1, 2, 4, 8}) {
          SCOPED_TRACE(std::string(TypeName<T>()) + " kind " + std::to_string(kind) + " order " + std::to_string(order));
          int s[3] = {-1, -1, -1};
          const VspStatus st = get(order, flag, vspAlgHintAccurate, &s[0], &s[1], &s[2]);
          if (order > limit) {
            EXPECT_EQ(st, vspStatFftOrderErr);
            EXPECT_EQ(s[0], -1);
            continue;
          }
          ASSERT_EQ(st, vspStatOk);
          const Expect e = kind == 2 ? RealExpect(order, d) : ComplexExpect(order, d);
          EXPECT_EQ(s[0], e.spec);
          EXPECT_EQ(s[1], e.init);
          EXPECT_EQ(s[2], e.work);
        }
    }
  });
}

TEST(FftInterface, GetSizeCheckOrder) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    for (auto get : {F::GetSizeC, F::GetSizeS, F::GetSizeR}) {
      int a = 7, b = 7, c = 7;
      EXPECT_EQ(get(31, 1, vspAlgHintNone, nullptr, nullptr, nullptr), vspStatFftOrderErr);
      EXPECT_EQ(get(-1, 99, vspAlgHintNone, &a, &b, &c), vspStatFftOrderErr);
      EXPECT_EQ(get(3, 99, vspAlgHintNone, nullptr, &b, &c), vspStatNullPtr);
      EXPECT_EQ(get(3, 1, vspAlgHintNone, &a, nullptr, &c), vspStatNullPtr);
      EXPECT_EQ(get(3, 1, vspAlgHintNone, &a, &b, nullptr), vspStatNullPtr);
      EXPECT_EQ(get(3, 0, vspAlgHintNone, &a, &b, &c), vspStatFftFlagErr);
      EXPECT_EQ(get(30, 3, vspAlgHintNone, &a, &b, &c), vspStatFftFlagErr);  // flag before the limit
      EXPECT_EQ(get(30, 1, vspAlgHintNone, &a, &b, &c), vspStatFftOrderErr);
      EXPECT_EQ(a + b + c, 21) << "written on error";
    }
    int a, b, c;
    EXPECT_EQ(F::GetSizeC(F::kLimitC + 1, 1, vspAlgHintNone, &a, &b, &c), vspStatFftOrderErr);
    EXPECT_EQ(F::GetSizeR(F::kLimitR, 1, vspAlgHintNone, &a, &b, &c), vspStatOk);
  });
}

// Header fields: identifier, order, scaled flags, factor, hint, work bytes, zero word.
template <class T> struct HeaderView {
  uint32_t id;
  int32_t order, fwd, inv;
  double scale;
  int32_t hint, work, zero;
  explicit HeaderView(const void* p) {
    auto* b = static_cast<const unsigned char*>(p);
    std::memcpy(&id, b, 4);
    std::memcpy(&order, b + 4, 4);
    std::memcpy(&fwd, b + 8, 4);
    std::memcpy(&inv, b + 12, 4);
    T s;
    std::memcpy(&s, b + 16, sizeof(T));
    scale = s;
    const size_t at = 16 + sizeof(T);
    std::memcpy(&hint, b + at, 4);
    std::memcpy(&work, b + at + 4, 4);
    std::memcpy(&zero, b + at + 8, 4);
  }
};

TEST(FftInterface, InitHeaderFields) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    const uint32_t ids[3] = {sizeof(T) == 8 ? 7u : 4u, sizeof(T) == 8 ? 8u : 5u, sizeof(T) == 8 ? 9u : 6u};
    for (int kind = 0; kind < 3; ++kind)
      for (int order : {0, 3, 5, 6, 7, 11, 14, 17})
        for (int flag : {1, 2, 4, 8}) {
          SCOPED_TRACE(std::string(TypeName<T>()) + " kind " + std::to_string(kind) + " order " + std::to_string(order) + " flag " + std::to_string(flag));
          Built<T> b = Build<T>(static_cast<Kind>(kind), order, flag);
          ASSERT_EQ(b.st, vspStatOk);
          EXPECT_EQ(reinterpret_cast<uintptr_t>(b.p) % 64, 0u);
          EXPECT_GE(reinterpret_cast<const Vsp8u*>(b.p), b.spec->data());
          EXPECT_LT(reinterpret_cast<const Vsp8u*>(b.p), b.spec->data() + 64);
          const HeaderView<T> h(b.p);
          EXPECT_EQ(h.id, ids[kind]);
          EXPECT_EQ(h.order, order);
          EXPECT_EQ(h.fwd, flag == 1 || flag == 4);
          EXPECT_EQ(h.inv, flag == 2 || flag == 4);
          const double n = std::ldexp(1.0, order);
          const double want = flag == 8 ? 0.0 : flag == 4 ? static_cast<double>(static_cast<T>(1.0 / std::sqrt(n))) : 1.0 / n;
          EXPECT_EQ(h.scale, want);
          EXPECT_EQ(h.hint, vspAlgHintNone);
          EXPECT_EQ(h.work, b.sizes[2] > 0 ? b.sizes[2] - 64 : 0);
          EXPECT_EQ(h.zero, 0);
        }
    // The hint is kept as given.
    int s[3];
    ASSERT_EQ(F::GetSizeC(4, 1, vspAlgHintFast, &s[0], &s[1], &s[2]), 0);
    std::vector<Vsp8u> mem(s[0]);
    typename F::SpecC* p = nullptr;
    ASSERT_EQ(F::InitC(&p, 4, 1, vspAlgHintFast, mem.data(), nullptr), 0);
    EXPECT_EQ(HeaderView<T>(p).hint, vspAlgHintFast);
  });
}

TEST(FftInterface, InitCheckOrder) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    std::vector<Vsp8u> mem(1 << 16, 0xEE), init(1 << 16);
    typename F::SpecC* p = nullptr;
    typename F::SpecC* const canary = reinterpret_cast<typename F::SpecC*>(&mem);
    EXPECT_EQ(F::InitC(nullptr, 99, 99, vspAlgHintNone, nullptr, nullptr), vspStatNullPtr);
    p = canary;
    EXPECT_EQ(F::InitC(&p, F::kLimitC + 1, 99, vspAlgHintNone, nullptr, nullptr), vspStatFftOrderErr);
    EXPECT_EQ(F::InitC(&p, -1, 1, vspAlgHintNone, mem.data(), init.data()), vspStatFftOrderErr);
    EXPECT_EQ(F::InitC(&p, 3, 99, vspAlgHintNone, nullptr, nullptr), vspStatNullPtr);
    EXPECT_TRUE(std::all_of(mem.begin(), mem.end(), [](Vsp8u v) { return v == 0xEE; })) << "written on error";
    // A flag error writes the header with identifier 0 and leaves the out pointer.
    EXPECT_EQ(F::InitC(&p, 12, 3, vspAlgHintNone, mem.data() + 5, nullptr), vspStatFftFlagErr);
    EXPECT_EQ(p, canary);
    const Vsp8u* hdr = reinterpret_cast<const Vsp8u*>((reinterpret_cast<uintptr_t>(mem.data() + 5) + 63) & ~uintptr_t{63});
    EXPECT_EQ(HeaderView<T>(hdr).id, 0u);
    EXPECT_EQ(HeaderView<T>(hdr).order, 12);
    // From order 11 the init buffer is required; the header is already written then.
    EXPECT_EQ(F::InitC(&p, 11, 1, vspAlgHintNone, mem.data() + 5, nullptr), vspStatNullPtr);
    EXPECT_EQ(p, canary);
    EXPECT_EQ(HeaderView<T>(hdr).id, sizeof(T) == 8 ? 7u : 4u);
    EXPECT_EQ(F::InitC(&p, 10, 1, vspAlgHintNone, mem.data() + 5, nullptr), vspStatOk);
    EXPECT_EQ(reinterpret_cast<const Vsp8u*>(p), hdr);
    // The limits of the kinds.
    typename F::SpecR* pr = nullptr;
    EXPECT_EQ(F::InitR(&pr, F::kLimitR + 1, 1, vspAlgHintNone, mem.data(), init.data()), vspStatFftOrderErr);
    typename F::SpecS* ps = nullptr;
    EXPECT_EQ(F::InitS(&ps, F::kLimitC + 1, 1, vspAlgHintNone, mem.data(), init.data()), vspStatFftOrderErr);
  });
}

// A foreign spec (another kind or precision) is -17 before the data pointers are looked at; a
// spec that needs no work buffer accepts NULL for it. (Null pointers in order, with untouched
// outputs, are the argument-check harness's cases on real specs.)
TEST(FftInterface, TransformCheckOrder) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    using Tc = typename F::Tc;
    using SC = const typename F::SpecC*;
    using SS = const typename F::SpecS*;
    using SR = const typename F::SpecR*;
    Built<T> c = Build<T>(kComplex, 3, 1), s = Build<T>(kSplit, 3, 1), r = Build<T>(kReal, 3, 1);
    Built<Vsp32f> f32 = Build<Vsp32f>(kReal, 3, 1);
    Built<Vsp64f> f64 = Build<Vsp64f>(kComplex, 3, 1);
    const void* other = sizeof(T) == 8 ? f32.p : f64.p;  // a spec of the other precision
    std::vector<T> src(18, T(1)), dst(18, T(7)), dst2(18, T(7));
    auto* cs = reinterpret_cast<const Tc*>(src.data());
    auto* cd = reinterpret_cast<Tc*>(dst.data());
    for (auto fn : {F::FwdC, F::InvC}) {
      for (const void* foreign : {s.p, r.p, other}) EXPECT_EQ(fn(nullptr, nullptr, static_cast<SC>(foreign), nullptr), vspStatBadContext);
      EXPECT_EQ(fn(cs, cd, static_cast<SC>(c.p), nullptr), vspStatOk);
    }
    for (auto fn : {F::FwdCI, F::InvCI}) EXPECT_EQ(fn(nullptr, static_cast<SC>(s.p), nullptr), vspStatBadContext);
    for (auto fn : {F::FwdS, F::InvS}) {
      EXPECT_EQ(fn(nullptr, nullptr, nullptr, nullptr, static_cast<SS>(c.p), nullptr), vspStatBadContext);
      EXPECT_EQ(fn(src.data(), src.data(), dst.data(), dst2.data(), static_cast<SS>(s.p), nullptr), vspStatOk);
    }
    for (auto fn : {F::FwdSI, F::InvSI}) EXPECT_EQ(fn(nullptr, nullptr, static_cast<SS>(r.p), nullptr), vspStatBadContext);
    for (int lay = 0; lay < 3; ++lay) {
      for (auto fn : {F::FwdR[lay], F::InvR[lay]}) {
        for (const void* foreign : {c.p, other}) EXPECT_EQ(fn(nullptr, nullptr, static_cast<SR>(foreign), nullptr), vspStatBadContext);
        EXPECT_EQ(fn(src.data(), dst.data(), static_cast<SR>(r.p), nullptr), vspStatOk);
      }
      for (auto fn : {F::FwdRI[lay], F::InvRI[lay]}) EXPECT_EQ(fn(nullptr, static_cast<SR>(s.p), nullptr), vspStatBadContext);
    }
  });
}

// Spec, init and work buffers at every offset 0..63 from a 64-byte boundary give the same bits;
// the spec is not written by any transform.
TEST(FftInterface, EveryMisalignmentAndReadOnlySpec) {
  ForEachType(Precisions{}, []<class T>() {
    using F = Fft<T>;
    using Tc = typename F::Tc;
    const int big = sizeof(T) == 8 ? 15 : 17;  // first order of the blocked plan
    for (int order : {5, 6, 7, 11, 14, big, big + 2}) {
      const size_t n = size_t{1} << order;
      std::vector<T> in(2 * n + 2);
      Rng rng(order);
      for (auto& v : in) v = static_cast<T>(rng.Uniform(-1, 1));
      std::vector<T> refC, refR;
      // Every offset for the orders below 12; a spread of them for the larger ones.
      const int step = order < 12 ? (kSanitized ? 7 : 1) : 9;
      for (int mis = 0; mis < 64; mis += step) {
        SCOPED_TRACE(std::string(TypeName<T>()) + " order " + std::to_string(order) + " misalignment " + std::to_string(mis));
        int sc[3], sr[3];
        ASSERT_EQ(F::GetSizeC(order, 4, vspAlgHintNone, &sc[0], &sc[1], &sc[2]), 0);
        ASSERT_EQ(F::GetSizeR(order, 4, vspAlgHintNone, &sr[0], &sr[1], &sr[2]), 0);
        // Blocks that start `mis` bytes past a 64-byte boundary, ending at a guard page.
        auto at = [mis](GuardedVec<Vsp8u>& g) {
          uintptr_t p = reinterpret_cast<uintptr_t>(g.data());
          return reinterpret_cast<Vsp8u*>(p + ((static_cast<uintptr_t>(mis) - p) & 63));
        };
        GuardedVec<Vsp8u> specC(sc[0] + 64), initC(sc[1] + 64), workC(sc[2] + 64);
        GuardedVec<Vsp8u> specR(sr[0] + 64), initR(sr[1] + 64), workR(sr[2] + 64);
        // The bytes past each block of the reported size carry a pattern that must survive.
        auto mark = [&](GuardedVec<Vsp8u>& g, int size) {
          std::fill(at(g) + size, g.data() + g.size(), Vsp8u{0xCD});
        };
        auto marked = [&](GuardedVec<Vsp8u>& g, int size) {
          return std::all_of(at(g) + size, g.data() + g.size(), [](Vsp8u v) { return v == 0xCD; });
        };
        mark(specC, sc[0]), mark(initC, sc[1]), mark(workC, sc[2]), mark(specR, sr[0]), mark(initR, sr[1]), mark(workR, sr[2]);
        typename F::SpecC* pc = nullptr;
        typename F::SpecR* pr = nullptr;
        ASSERT_EQ(F::InitC(&pc, order, 4, vspAlgHintNone, at(specC), sc[1] ? at(initC) : nullptr), 0);
        ASSERT_EQ(F::InitR(&pr, order, 4, vspAlgHintNone, at(specR), sr[1] ? at(initR) : nullptr), 0);
        const std::vector<Vsp8u> specBytes(at(specC), at(specC) + sc[0]), specRBytes(at(specR), at(specR) + sr[0]);
        std::vector<T> outC(2 * n), outR(n + 2);
        ASSERT_EQ(F::FwdC(reinterpret_cast<const Tc*>(in.data()), reinterpret_cast<Tc*>(outC.data()), pc, at(workC)), 0);
        ASSERT_EQ(F::InvC(reinterpret_cast<const Tc*>(in.data()), reinterpret_cast<Tc*>(outC.data()), pc, at(workC)), 0);
        ASSERT_EQ(F::FwdR[2](in.data(), outR.data(), pr, at(workR)), 0);
        ASSERT_EQ(F::InvR[0](outR.data(), outR.data(), pr, at(workR)), 0);
        if (mis == 0) refC = outC, refR = outR;
        ASSERT_EQ(outC, refC);
        ASSERT_EQ(outR, refR);
        ASSERT_TRUE(std::equal(specBytes.begin(), specBytes.end(), at(specC))) << "complex spec written";
        ASSERT_TRUE(std::equal(specRBytes.begin(), specRBytes.end(), at(specR))) << "real spec written";
        ASSERT_TRUE(marked(specC, sc[0]) && marked(initC, sc[1]) && marked(workC, sc[2])) << "complex: beyond a block";
        ASSERT_TRUE(marked(specR, sr[0]) && marked(initR, sr[1]) && marked(workR, sr[2])) << "real: beyond a block";
        ASSERT_TRUE(specC.OutsideIntact() && initC.OutsideIntact() && workC.OutsideIntact());
        ASSERT_TRUE(specR.OutsideIntact() && initR.OutsideIntact() && workR.OutsideIntact());
      }
    }
  });
}

// One spec serves two threads at once, each with its own work buffer.
TEST(FftInterface, SharedSpecAcrossThreads) {
  using F = Fft<Vsp32f>;
  const int order = 12;
  const size_t n = size_t{1} << order;
  Built<Vsp32f> c = Build<Vsp32f>(kComplex, order, 2);
  std::vector<Vsp32f> in(2 * n);
  for (size_t i = 0; i < in.size(); ++i) in[i] = static_cast<Vsp32f>(i % 13) - 6.0f;
  std::vector<Vsp32f> want(2 * n);
  ASSERT_EQ(F::FwdC(reinterpret_cast<const Vsp32fc*>(in.data()), reinterpret_cast<Vsp32fc*>(want.data()),
                    c.As<F::SpecC>(), c.Work()),
            0);
  auto run = [&](bool* ok) {
    std::vector<Vsp8u> work(c.sizes[2]);
    std::vector<Vsp32f> out(2 * n);
    *ok = true;
    for (int i = 0; i < 50; ++i) {
      F::FwdC(reinterpret_cast<const Vsp32fc*>(in.data()), reinterpret_cast<Vsp32fc*>(out.data()), c.As<F::SpecC>(), work.data());
      *ok = *ok && out == want;
    }
  };
  bool ok1 = false, ok2 = false;
  std::thread t1(run, &ok1), t2(run, &ok2);
  t1.join();
  t2.join();
  EXPECT_TRUE(ok1 && ok2);
}

}  // namespace
}  // namespace vsptest
