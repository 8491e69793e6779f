// Bit-string copies against a bit-by-bit reference written from the numbering rules, over
// many offsets and lengths (all three paths), with both strings ending at an inaccessible page.
#include <gtest/gtest.h>

#include <vector>

#include "support/buffers.h"
#include "vsp.h"

namespace vsptest {
namespace {

// Bit k of a string that starts at bit `off` of p[0]; msbFirst numbers bits from 0x80.
bool GetBit(const Vsp8u* p, long long off, long long k, bool msbFirst) {
  long long a = off + k;
  int pos = static_cast<int>(a % 8);
  return (p[a / 8] >> (msbFirst ? 7 - pos : pos)) & 1;
}
void PutBit(Vsp8u* p, long long off, long long k, bool v, bool msbFirst) {
  long long a = off + k;
  int pos = static_cast<int>(a % 8);
  Vsp8u m = static_cast<Vsp8u>(1u << (msbFirst ? 7 - pos : pos));
  p[a / 8] = static_cast<Vsp8u>(v ? p[a / 8] | m : p[a / 8] & ~m);
}

using CopyBits = VspStatus (*)(const Vsp8u*, int, Vsp8u*, int, int);
struct Member {
  const char* name;
  CopyBits fn;
  bool msbFirst;
};
const Member kMembers[] = {{"CopyLE_1u", vspsCopyLE_1u, true}, {"CopyBE_1u", vspsCopyBE_1u, false}};

TEST(BitCopy, StatedExamples) {
  Vsp8u src = 0x80, dst = 0x00;
  ASSERT_EQ(vspsCopyLE_1u(&src, 0, &dst, 7, 1), vspStatOk);
  EXPECT_EQ(dst, 0x01);
  src = 0x01, dst = 0x00;
  ASSERT_EQ(vspsCopyBE_1u(&src, 0, &dst, 7, 1), vspStatOk);
  EXPECT_EQ(dst, 0x80);
  // An offset of 8 reads the first byte again, from bit 0.
  Vsp8u two[2] = {0x80, 0x00};
  dst = 0;
  ASSERT_EQ(vspsCopyLE_1u(two, 8, &dst, 0, 1), vspStatOk);
  EXPECT_EQ(dst, 0x80);
}

TEST(BitCopy, MatchesBitByBitReference) {
  Rng rng(2024);
  for (const Member& m : kMembers) {
    for (int trial = 0; trial < 6000; ++trial) {
      // Lengths concentrate around the path borders (16 and 48 bits) and cover long strings.
      int len = trial < 3000 ? 1 + trial % 90 : static_cast<int>(rng.Int(1, 700));
      int so = static_cast<int>(rng.Int(0, 23)), dof = static_cast<int>(rng.Int(0, 23));
      size_t srcBytes = static_cast<size_t>((so % 8 + len + 7) / 8), dstBytes = static_cast<size_t>((dof % 8 + len + 7) / 8);
      GuardedVec<Vsp8u> src(srcBytes, rng.Int(0, 15)), dst(dstBytes, rng.Int(0, 15));
      rng.FillBytes(src.data(), srcBytes);
      rng.FillBytes(dst.data(), dstBytes);
      std::vector<Vsp8u> want(dst.data(), dst.data() + dstBytes);
      for (int k = 0; k < len; ++k) PutBit(want.data(), dof % 8, k, GetBit(src.data(), so % 8, k, m.msbFirst), m.msbFirst);
      ASSERT_EQ(m.fn(src.data(), so, dst.data(), dof, len), vspStatOk);
      ASSERT_EQ(std::vector<Vsp8u>(dst.data(), dst.data() + dstBytes), want)
          << m.name << " len " << len << " offsets " << so << " " << dof;
      ASSERT_TRUE(dst.OutsideIntact());
    }
  }
}

}  // namespace
}  // namespace vsptest
