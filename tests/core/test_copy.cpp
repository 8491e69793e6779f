// Move over overlapping vectors and Set at byte offsets no element alignment gives (the element
// results of Zero, Set, Copy and Move are reference rows of the argument-check program).
#include <gtest/gtest.h>

#include <vector>

#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {
namespace {

template <class T> VspStatus (*Move())(const T*, T*, int);
template <> VspStatus (*Move<Vsp8u>())(const Vsp8u*, Vsp8u*, int) { return vspsMove_8u; }
template <> VspStatus (*Move<Vsp16s>())(const Vsp16s*, Vsp16s*, int) { return vspsMove_16s; }
template <> VspStatus (*Move<Vsp32f>())(const Vsp32f*, Vsp32f*, int) { return vspsMove_32f; }
template <> VspStatus (*Move<Vsp64fc>())(const Vsp64fc*, Vsp64fc*, int) { return vspsMove_64fc; }

// Move gives the result of copying through a temporary for every overlap.
TEST(InitCopy, MoveOverlapsInBothDirections) {
  ForEachType(TypeList<Vsp8u, Vsp16s, Vsp32f, Vsp64fc>{}, []<class T>() {
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
          ASSERT_EQ(Move<T>()(buf.data() + s, buf.data() + d, n), vspStatOk);
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
