// The SSE3 layer's operations, lane by lane, against their scalar definitions: above all the
// emulations of what SSE3 lacks (unsigned and 32-bit min/max and compares, 32-bit products,
// unsigned narrowing), on random lanes mixed with each type's extremes.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "core/simd/sse3.h"
#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {
namespace {

namespace hw = vsp::simd;

// Lanes drawn from the extremes and their neighbours half of the time, random bits otherwise.
template <class T>
void Draw(Rng& rng, T* lanes, int n) {
  using L = std::numeric_limits<T>;
  const T special[] = {L::lowest(), static_cast<T>(L::lowest() + 1), T(0), T(1), static_cast<T>(T(0) - T(1)),
                       static_cast<T>(L::max() - 1), L::max()};
  for (int i = 0; i < n; ++i) {
    if (rng.Int(0, 1)) lanes[i] = special[rng.Int(0, 6)];
    else rng.FillBytes(&lanes[i], sizeof(T));
  }
}

template <class T>
struct Lanes {
  static constexpr int N = 16 / sizeof(T);
  T v[N];
  hw::Vec<T> Load() const { return hw::LoadU(v); }
  static Lanes From(hw::Vec<T> x) {
    Lanes l;
    hw::StoreU(x, l.v);
    return l;
  }
};

using IntLanes = TypeList<Vsp8u, Vsp8s, Vsp16u, Vsp16s, Vsp32u, Vsp32s>;

TEST(Sse3Layer, IntegerMinMaxCompareAgainstScalar) {
  ForEachType(IntLanes{}, []<class T>() {
    Rng rng(41);
    for (int trial = 0; trial < 4000; ++trial) {
      Lanes<T> a, b;
      Draw(rng, a.v, a.N);
      Draw(rng, b.v, b.N);
      auto mn = Lanes<T>::From(hw::Min(a.Load(), b.Load())), mx = Lanes<T>::From(hw::Max(a.Load(), b.Load()));
      auto gt = Lanes<T>::From(hw::Gt(a.Load(), b.Load())), ge = Lanes<T>::From(hw::Ge(a.Load(), b.Load()));
      auto eq = Lanes<T>::From(hw::Eq(a.Load(), b.Load()));
      for (int i = 0; i < a.N; ++i) {
        const T all = static_cast<T>(~T(0));
        ASSERT_EQ(mn.v[i], std::min(a.v[i], b.v[i])) << TypeName<T>();
        ASSERT_EQ(mx.v[i], std::max(a.v[i], b.v[i])) << TypeName<T>();
        ASSERT_EQ(gt.v[i], a.v[i] > b.v[i] ? all : T(0)) << TypeName<T>();
        ASSERT_EQ(ge.v[i], a.v[i] >= b.v[i] ? all : T(0)) << TypeName<T>();
        ASSERT_EQ(eq.v[i], a.v[i] == b.v[i] ? all : T(0)) << TypeName<T>();
      }
    }
  });
}

TEST(Sse3Layer, ProductsAbsAndWidening) {
  Rng rng(42);
  for (int trial = 0; trial < 4000; ++trial) {
    Lanes<Vsp32s> a, b;
    Draw(rng, a.v, 4);
    Draw(rng, b.v, 4);
    auto p = Lanes<Vsp32s>::From(hw::Mul(a.Load(), b.Load()));
    auto abs = Lanes<Vsp32s>::From(hw::Abs(a.Load()));
    for (int i = 0; i < 4; ++i) {
      ASSERT_EQ(static_cast<Vsp32u>(p.v[i]), static_cast<Vsp32u>(a.v[i]) * static_cast<Vsp32u>(b.v[i]));
      ASSERT_EQ(static_cast<Vsp32u>(abs.v[i]), a.v[i] < 0 ? 0u - static_cast<Vsp32u>(a.v[i]) : static_cast<Vsp32u>(a.v[i]));
    }
  }
  ForEachType(TypeList<Vsp8u, Vsp8s, Vsp16u, Vsp16s, Vsp32u, Vsp32s>{}, []<class T>() {
    using W = hw::Wider<T>;
    Rng rng(43);
    for (int trial = 0; trial < 500; ++trial) {
      Lanes<T> a;
      Draw(rng, a.v, a.N);
      auto lo = Lanes<W>::From(hw::PromoteLo(a.Load())), hi = Lanes<W>::From(hw::PromoteHi(a.Load()));
      for (int i = 0; i < a.N / 2; ++i) {
        ASSERT_EQ(lo.v[i], static_cast<W>(a.v[i])) << TypeName<T>();
        ASSERT_EQ(hi.v[i], static_cast<W>(a.v[a.N / 2 + i])) << TypeName<T>();
      }
    }
  });
}

TEST(Sse3Layer, SaturatingNarrowing) {
  Rng rng(44);
  auto sat = [](long long x, long long lo, long long hi) { return x < lo ? lo : (x > hi ? hi : x); };
  for (int trial = 0; trial < 20000; ++trial) {
    Lanes<Vsp32s> a, b;
    Draw(rng, a.v, 4);
    Draw(rng, b.v, 4);
    auto s16 = Lanes<Vsp16s>::From(hw::NarrowSat16s(a.Load(), b.Load()));
    auto u16 = Lanes<Vsp16u>::From(hw::NarrowSat16u(a.Load(), b.Load()));
    for (int i = 0; i < 8; ++i) {
      const long long x = i < 4 ? a.v[i] : b.v[i - 4];
      ASSERT_EQ(s16.v[i], sat(x, -32768, 32767)) << x;
      ASSERT_EQ(u16.v[i], sat(x, 0, 65535)) << x;
    }
    Lanes<Vsp16s> c, d;
    Draw(rng, c.v, 8);
    Draw(rng, d.v, 8);
    auto u8 = Lanes<Vsp8u>::From(hw::NarrowSat8u(c.Load(), d.Load()));
    auto s8 = Lanes<Vsp8s>::From(hw::NarrowSat8s(c.Load(), d.Load()));
    for (int i = 0; i < 16; ++i) {
      const long long x = i < 8 ? c.v[i] : d.v[i - 8];
      ASSERT_EQ(u8.v[i], sat(x, 0, 255)) << x;
      ASSERT_EQ(s8.v[i], sat(x, -128, 127)) << x;
    }
  }
}

TEST(Sse3Layer, LaneOrderAndComplexProduct) {
  Rng rng(45);
  Lanes<Vsp8u> b8;
  rng.FillBytes(b8.v, 16);
  auto r8 = Lanes<Vsp8u>::From(hw::Reverse(b8.Load()));
  for (int i = 0; i < 16; ++i) ASSERT_EQ(r8.v[i], b8.v[15 - i]);
  Lanes<Vsp16u> b16;
  rng.FillBytes(b16.v, 16);
  auto r16 = Lanes<Vsp16u>::From(hw::Reverse(b16.Load()));
  for (int i = 0; i < 8; ++i) ASSERT_EQ(r16.v[i], b16.v[7 - i]);
  Lanes<Vsp64u> b64;
  rng.FillBytes(b64.v, 16);
  auto s64 = Lanes<Vsp64u>::From(hw::ReverseBytesInLanes(b64.Load()));
  for (int i = 0; i < 2; ++i) ASSERT_EQ(s64.v[i], __builtin_bswap64(b64.v[i]));

  // (a*c - b*d, a*d + b*c), each product rounded, then one addition: bit for bit.
  for (int trial = 0; trial < 10000; ++trial) {
    float x[4], y[4];
    for (int i = 0; i < 4; ++i) x[i] = static_cast<float>(rng.Uniform(-1e3, 1e3)), y[i] = static_cast<float>(rng.Uniform(-1e3, 1e3));
    float z[4];
    hw::StoreU(hw::MulComplex(hw::LoadU(x), hw::LoadU(y)), z);
    for (int k = 0; k < 2; ++k) {
      const float re = x[2 * k] * y[2 * k] - x[2 * k + 1] * y[2 * k + 1];
      const float im = x[2 * k] * y[2 * k + 1] + x[2 * k + 1] * y[2 * k];
      ASSERT_TRUE(SameBits(z[2 * k], re) && SameBits(z[2 * k + 1], im));
    }
  }
}

}  // namespace
}  // namespace vsptest
