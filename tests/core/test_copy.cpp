// Zero, Set, Copy and Move of every element type against element loops, over every head, body
// and tail split (lengths 1..70 and larger, every start offset), with the vectors ending at an
// inaccessible page.
#include <gtest/gtest.h>

#include <vector>

#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {
namespace {

template <class T> struct InitFns {
  VspStatus (*zero)(T*, int);
  VspStatus (*set)(T, T*, int);
  VspStatus (*copy)(const T*, T*, int);
  VspStatus (*move)(const T*, T*, int);
};
template <class T> InitFns<T> Fns();
#define VSP_FNS(t) \
  template <> InitFns<Vsp##t> Fns() { return {vspsZero_##t, vspsSet_##t, vspsCopy_##t, vspsMove_##t}; }
VSP_FNS(8u) VSP_FNS(16s) VSP_FNS(16sc) VSP_FNS(32s) VSP_FNS(32sc) VSP_FNS(32f) VSP_FNS(32fc)
VSP_FNS(64s) VSP_FNS(64sc) VSP_FNS(64f) VSP_FNS(64fc)
#undef VSP_FNS

using InitTypes = TypeList<Vsp8u, Vsp16s, Vsp16sc, Vsp32s, Vsp32sc, Vsp32f, Vsp32fc, Vsp64s, Vsp64sc, Vsp64f, Vsp64fc>;

std::vector<int> Lengths() {
  std::vector<int> lens;
  for (int n = 1; n <= 70; ++n) lens.push_back(n);
  for (int n : {127, 128, 129, 1000, 4099, 65536 + 3}) lens.push_back(n);
  return lens;
}

// Every start offset (bytes past a 16-byte boundary) that the element's alignment allows.
template <class T> std::vector<size_t> Offsets() {
  std::vector<size_t> offs;
  for (size_t o = 0; o < 16; o += alignof(T)) offs.push_back(o);
  return offs;
}

TEST(InitCopy, EveryTypeLengthAndOffset) {
  ForEachType(InitTypes{}, []<class T>() {
    const InitFns<T> f = Fns<T>();
    Rng rng(7);
    for (int n : Lengths()) {
      const std::vector<size_t> offs = Offsets<T>();
      for (size_t k = 0; k < offs.size(); ++k) {
        const size_t off = offs[k];
        SCOPED_TRACE(std::string(TypeName<T>()) + " len " + std::to_string(n) + " offset " + std::to_string(off));
        GuardedVec<T> src(n, offs[(k + 1) % offs.size()]), dst(n, off);
        rng.FillBytes(src.data(), n * sizeof(T));
        std::vector<T> orig(src.data(), src.data() + n);

        ASSERT_EQ(f.copy(src.data(), dst.data(), n), vspStatOk);
        ASSERT_EQ(std::memcmp(dst.data(), orig.data(), n * sizeof(T)), 0);
        ASSERT_TRUE(dst.OutsideIntact());

        ASSERT_EQ(f.zero(dst.data(), n), vspStatOk);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(dst[i], T{})) << i;
        ASSERT_TRUE(dst.OutsideIntact());

        ASSERT_EQ(f.move(src.data(), dst.data(), n), vspStatOk);
        ASSERT_EQ(std::memcmp(dst.data(), orig.data(), n * sizeof(T)), 0);
        ASSERT_TRUE(dst.OutsideIntact() && src.OutsideIntact());

        // A pattern whose bytes differ, and one whose bytes are all alike.
        for (int pattern = 0; pattern < 2; ++pattern) {
          T val;
          if (pattern) std::memset(&val, 0xFF, sizeof(T));
          else rng.FillBytes(&val, sizeof(T));
          ASSERT_EQ(f.set(val, dst.data(), n), vspStatOk);
          for (int i = 0; i < n; ++i) ASSERT_TRUE(SameBits(dst[i], val)) << i;
          ASSERT_TRUE(dst.OutsideIntact());
        }
        ASSERT_EQ(std::memcmp(src.data(), orig.data(), n * sizeof(T)), 0) << "the source changed";
      }
    }
  });
}

// Move gives the result of copying through a temporary for every overlap.
TEST(InitCopy, MoveOverlapsInBothDirections) {
  ForEachType(TypeList<Vsp8u, Vsp16s, Vsp32f, Vsp64fc>{}, []<class T>() {
    const InitFns<T> f = Fns<T>();
    Rng rng(11);
    constexpr int kRoom = 160;
    for (int n : {1, 2, 3, 5, 8, 15, 16, 17, 31, 33, 64, 65, 90}) {
      for (int s = 0; s + n <= kRoom; s += 7) {
        for (int d = 0; d + n <= kRoom; d += 3) {
          std::vector<T> buf(kRoom);
          rng.FillBytes(buf.data(), kRoom * sizeof(T));
          std::vector<T> want = buf;
          std::vector<T> tmp(buf.begin() + s, buf.begin() + s + n);
          std::copy(tmp.begin(), tmp.end(), want.begin() + d);
          ASSERT_EQ(f.move(buf.data() + s, buf.data() + d, n), vspStatOk);
          ASSERT_EQ(std::memcmp(buf.data(), want.data(), kRoom * sizeof(T)), 0)
              << TypeName<T>() << " n " << n << " src " << s << " dst " << d;
        }
      }
    }
  });
}

// Zero and Set write exactly len elements also when the byte count is not a multiple of 16 and
// the start is only byte-aligned (the kernels are type-blind and accept any address).
TEST(InitCopy, ByteMisalignedVectors) {
  Rng rng(3);
  for (size_t off = 1; off < 16; off += 2) {
    for (int n : {1, 7, 33, 100}) {
      GuardedVec<unsigned char> raw(n * sizeof(Vsp32fc), off);
      auto* v = reinterpret_cast<Vsp32fc*>(raw.data());
      Vsp32fc val = {1.5f, -2.25f};
      ASSERT_EQ(vspsSet_32fc(val, v, n), vspStatOk);
      for (int i = 0; i < n; ++i) {
        Vsp32fc got;
        std::memcpy(&got, raw.data() + i * sizeof(Vsp32fc), sizeof(got));
        ASSERT_TRUE(SameBits(got, val));
      }
      ASSERT_TRUE(raw.OutsideIntact());
    }
  }
}

}  // namespace
}  // namespace vsptest
