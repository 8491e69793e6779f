// Flip with the destination equal to the source (the element results of SwapBytes and Flip are
// reference rows of the argument-check program).
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {
namespace {

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
