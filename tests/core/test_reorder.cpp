// SwapBytes and Flip against element loops, in place and not, over every head/body/tail split.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {
namespace {

std::vector<int> Lengths() {
  std::vector<int> lens;
  for (int n = 1; n <= 70; ++n) lens.push_back(n);
  for (int n : {255, 1024, 4097}) lens.push_back(n);
  return lens;
}

struct Swap {
  const char* name;
  size_t size;  // bytes per element
  VspStatus (*out)(const void*, void*, int);
  VspStatus (*inPlace)(void*, int);
};
#define VSP_SWAP_ROW(t, T, sz)                                                                                 \
  Swap{#t, sz, [](const void* s, void* d, int n) { return vspsSwapBytes_##t(static_cast<const T*>(s), static_cast<T*>(d), n); }, \
       [](void* p, int n) { return vspsSwapBytes_##t##_I(static_cast<T*>(p), n); }}
const Swap kSwaps[] = {VSP_SWAP_ROW(16u, Vsp16u, 2), VSP_SWAP_ROW(24u, Vsp8u, 3), VSP_SWAP_ROW(32u, Vsp32u, 4),
                       VSP_SWAP_ROW(64u, Vsp64u, 8)};

TEST(SwapBytes, ReversesTheBytesOfEachElement) {
  Vsp8u b24[3] = {1, 2, 3};
  ASSERT_EQ(vspsSwapBytes_24u_I(b24, 1), vspStatOk);
  EXPECT_EQ(b24[0], 3);
  EXPECT_EQ(b24[1], 2);
  EXPECT_EQ(b24[2], 1);

  Rng rng(5);
  for (const Swap& s : kSwaps) {
    for (int n : Lengths()) {
      for (size_t off = 0; off < 16; off += (s.size == 3 ? 1 : s.size)) {
        const size_t bytes = n * s.size;
        GuardedVec<Vsp8u> src(bytes, (off + 5) % 16 / s.size * s.size), dst(bytes, off);
        rng.FillBytes(src.data(), bytes);
        std::vector<Vsp8u> want(bytes);
        for (size_t e = 0; e < static_cast<size_t>(n); ++e)
          for (size_t b = 0; b < s.size; ++b) want[e * s.size + b] = src[e * s.size + s.size - 1 - b];
        ASSERT_EQ(s.out(src.data(), dst.data(), n), vspStatOk);
        ASSERT_EQ(std::memcmp(dst.data(), want.data(), bytes), 0) << s.name << " n " << n << " off " << off;
        ASSERT_TRUE(dst.OutsideIntact());
        ASSERT_EQ(s.inPlace(src.data(), n), vspStatOk);
        ASSERT_EQ(std::memcmp(src.data(), want.data(), bytes), 0) << s.name << "_I n " << n << " off " << off;
        ASSERT_TRUE(src.OutsideIntact());
      }
    }
  }
}

template <class T> struct FlipFns {
  VspStatus (*out)(const T*, T*, int);
  VspStatus (*inPlace)(T*, int);
};
template <class T> FlipFns<T> Flips();
#define VSP_FLIP_FNS(t) template <> FlipFns<Vsp##t> Flips() { return {vspsFlip_##t, vspsFlip_##t##_I}; }
VSP_FLIP_FNS(8u) VSP_FLIP_FNS(16u) VSP_FLIP_FNS(32f) VSP_FLIP_FNS(32fc) VSP_FLIP_FNS(64f) VSP_FLIP_FNS(64fc)
#undef VSP_FLIP_FNS

TEST(Flip, ReversesTheElementOrder) {
  ForEachType(TypeList<Vsp8u, Vsp16u, Vsp32f, Vsp32fc, Vsp64f, Vsp64fc>{}, []<class T>() {
    const FlipFns<T> f = Flips<T>();
    Rng rng(9);
    const size_t step = alignof(T);
    for (int n : Lengths()) {
      for (size_t off = 0; off < 16; off += step) {
        GuardedVec<T> src(n, (16 - off) % 16), dst(n, off);
        rng.FillBytes(src.data(), n * sizeof(T));
        std::vector<T> want(src.data(), src.data() + n);
        std::reverse(want.begin(), want.end());
        ASSERT_EQ(f.out(src.data(), dst.data(), n), vspStatOk);
        ASSERT_EQ(std::memcmp(dst.data(), want.data(), n * sizeof(T)), 0) << TypeName<T>() << " n " << n << " off " << off;
        ASSERT_TRUE(dst.OutsideIntact());
        ASSERT_EQ(f.inPlace(src.data(), n), vspStatOk);
        ASSERT_EQ(std::memcmp(src.data(), want.data(), n * sizeof(T)), 0) << TypeName<T>() << "_I n " << n << " off " << off;
        ASSERT_TRUE(src.OutsideIntact());
      }
    }
  });
}

TEST(Flip, ComplexWithEqualPointersReversesInPlace) {
  std::vector<Vsp32fc> v = {{1, 2}, {3, 4}, {5, 6}};
  ASSERT_EQ(vspsFlip_32fc(v.data(), v.data(), 3), vspStatOk);
  EXPECT_EQ(v[0].re, 5);
  EXPECT_EQ(v[0].im, 6);
  EXPECT_EQ(v[2].re, 1);
  EXPECT_EQ(v[2].im, 2);
  Vsp8u one = 42, out = 0;
  ASSERT_EQ(vspsFlip_8u(&one, &out, 1), vspStatOk);
  EXPECT_EQ(out, 42);
}

}  // namespace
}  // namespace vsptest
