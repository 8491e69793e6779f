// Lengths near the top of the int range: byte counts and doubled complex lengths must be counted
// in 64 bits. Each case needs 4 GiB; they run in the Release build only.
#include <gtest/gtest.h>

#include <climits>

#include "support/budget.h"
#include "vsp.h"

namespace {

struct Big {
  explicit Big(long long bytes) : p(static_cast<Vsp8u*>(vspMalloc_L(bytes))), n(bytes) {}
  ~Big() { vspFree(p); }
  Vsp8u* p;
  long long n;
};

// The first, a middle and the last byte of every 1 GiB piece, and the last byte.
template <class F> void ForProbes(long long n, F&& f) {
  for (long long at = 0; at < n; at += 1LL << 30) f(at), f(at + (1LL << 29)), f(at + (1LL << 30) - 1);
  f(n - 1);
}

TEST(BigLengths, ZeroCopyMoveCountBytesIn64Bits) {
  if (vsptest::kSanitized) GTEST_SKIP() << "4 GiB buffers: Release build only";
  const int len = 1 << 28;  // 2^28 complex doubles: 4 GiB
  Big a(16LL * len), b(16LL * len);
  ASSERT_TRUE(a.p && b.p);
  ForProbes(a.n, [&](long long i) { a.p[i] = 0x5A; });
  EXPECT_EQ(vspsZero_64fc(reinterpret_cast<Vsp64fc*>(a.p), len), vspStatOk);
  ForProbes(a.n, [&](long long i) { EXPECT_EQ(a.p[i], 0) << "byte " << i; });
  ForProbes(a.n, [&](long long i) { a.p[i] = static_cast<Vsp8u>(i * 7 + 1); });
  EXPECT_EQ(vspsCopy_64fc(reinterpret_cast<Vsp64fc*>(a.p), reinterpret_cast<Vsp64fc*>(b.p), len), vspStatOk);
  ForProbes(a.n, [&](long long i) { EXPECT_EQ(b.p[i], static_cast<Vsp8u>(i * 7 + 1)) << "byte " << i; });
  EXPECT_EQ(vspsZero_64fc(reinterpret_cast<Vsp64fc*>(a.p), len), vspStatOk);
  EXPECT_EQ(vspsMove_64fc(reinterpret_cast<Vsp64fc*>(b.p), reinterpret_cast<Vsp64fc*>(a.p), len), vspStatOk);
  ForProbes(a.n, [&](long long i) { EXPECT_EQ(a.p[i], static_cast<Vsp8u>(i * 7 + 1)) << "byte " << i; });
}

// A scale factor that zeroes every result settles the call through Zero; with 2^30 complex
// elements the real view has 2^31 elements, more than an int holds.
TEST(BigLengths, AllZeroShortCutOfComplexMembers) {
  if (vsptest::kSanitized) GTEST_SKIP() << "4 GiB buffers: Release build only";
  const int len = 1 << 30;
  Big a(4LL * len), b(4LL * len);
  ASSERT_TRUE(a.p && b.p);
  auto* x = reinterpret_cast<Vsp16sc*>(a.p);
  auto* y = reinterpret_cast<Vsp16sc*>(b.p);
  auto fill = [&](Big& m) { ForProbes(m.n, [&](long long i) { m.p[i] = 0x11; }); };
  auto zeroed = [&](Big& m) { ForProbes(m.n, [&](long long i) { EXPECT_EQ(m.p[i], 0) << "byte " << i; }); };
  fill(a), fill(b);
  EXPECT_EQ(vspsAdd_16sc_ISfs(x, y, len, 40), vspStatOk);
  zeroed(b);
  fill(b);
  EXPECT_EQ(vspsAddC_16sc_ISfs(Vsp16sc{3, 4}, y, len, 40), vspStatOk);
  zeroed(b);
  fill(b);
  EXPECT_EQ(vspsSub_16sc_Sfs(x, x, y, len, 40), vspStatOk);
  zeroed(b);
}

}  // namespace
