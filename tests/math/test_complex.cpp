// Splitting and joining complex vectors (two destinations, or optional sources), and the
// interface's edge cases of the complex utilities.
#include <gtest/gtest.h>

#include <vector>

#include "vsp.h"

namespace {

TEST(ComplexParts, SplitAndJoin) {
  const std::vector<Vsp32fc> z = {{1, 2}, {3, 4}, {-5, 6}};
  std::vector<Vsp32f> re(3), im(3);
  ASSERT_EQ(vspsCplxToReal_32fc(z.data(), re.data(), im.data(), 3), vspStatOk);
  EXPECT_EQ(re, (std::vector<Vsp32f>{1, 3, -5}));
  EXPECT_EQ(im, (std::vector<Vsp32f>{2, 4, 6}));
  std::vector<Vsp32fc> back(3);
  ASSERT_EQ(vspsRealToCplx_32f(re.data(), im.data(), back.data(), 3), vspStatOk);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(back[i].re == z[i].re && back[i].im == z[i].im);
  // A missing part is written as zero; both missing, or no destination, is an error.
  ASSERT_EQ(vspsRealToCplx_32f(re.data(), nullptr, back.data(), 3), vspStatOk);
  EXPECT_TRUE(back[2].re == -5 && back[2].im == 0);
  ASSERT_EQ(vspsRealToCplx_32f(nullptr, im.data(), back.data(), 3), vspStatOk);
  EXPECT_TRUE(back[1].re == 0 && back[1].im == 4);
  EXPECT_EQ(vspsRealToCplx_32f(nullptr, nullptr, back.data(), 3), vspStatNullPtr);
  EXPECT_EQ(vspsRealToCplx_32f(re.data(), im.data(), nullptr, 0), vspStatNullPtr);  // pDst before len
  EXPECT_EQ(vspsRealToCplx_32f(re.data(), im.data(), back.data(), 0), vspStatBadSize);
  std::vector<Vsp16sc> s = {{-32768, -32768}, {7, -9}};
  std::vector<Vsp16s> sr(2), si(2);
  ASSERT_EQ(vspsCplxToReal_16sc(s.data(), sr.data(), si.data(), 2), vspStatOk);
  EXPECT_EQ(si, (std::vector<Vsp16s>{-32768, -9}));
  std::vector<Vsp64fc> d(2);
  ASSERT_EQ(vspsRealToCplx_64f(nullptr, std::vector<Vsp64f>{1.5, 2.5}.data(), d.data(), 2), vspStatOk);
  EXPECT_TRUE(d[1].re == 0 && d[1].im == 2.5);
  std::vector<Vsp32fc> f(2);
  ASSERT_EQ(vspsConjFlip_32fc(std::vector<Vsp32fc>{{1, 2}, {3, 4}}.data(), f.data(), 2), vspStatOk);
  EXPECT_TRUE(f[0].re == 3 && f[0].im == -4 && f[1].re == 1 && f[1].im == -2);
}

}  // namespace
