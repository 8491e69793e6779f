// The block kit from outside: a state laid by Init into exactly the bytes its size query reported,
// at any address, ends before the guard page behind it; Init finishes it last, so a copy made
// before Init's end, or memory never initialised, is refused.
#include <gtest/gtest.h>

#include <vector>

#include "support/buffers.h"
#include "vsp.h"

namespace {

template <class S, class GetSize, class Init, class Gen>
void LaysWithinItsSize(GetSize getSize, Init init, Gen gen) {
  int size = 0;
  ASSERT_EQ(getSize(&size), vspStatOk);
  for (size_t misalign = 0; misalign < 16; ++misalign) {
    vsptest::GuardedVec<Vsp8u> mem(static_cast<size_t>(size), misalign);  // a write past the end faults
    S* st = reinterpret_cast<S*>(mem.data());
    ASSERT_EQ(init(st), vspStatOk);
    Vsp32f out[5];
    EXPECT_EQ(gen(out, st), vspStatOk);
    EXPECT_TRUE(mem.OutsideIntact());
  }
}

TEST(Blocks, InitStaysWithinTheReportedSizeAtEveryAddress) {
  LaysWithinItsSize<VspRandUniState_32f>(vspsRandUniformGetSize_32f,
                                         [](VspRandUniState_32f* s) { return vspsRandUniformInit_32f(s, 0, 1, 3u); },
                                         [](Vsp32f* d, VspRandUniState_32f* s) { return vspsRandUniform_32f(d, 5, s); });
  LaysWithinItsSize<VspRandGaussState_32f>(vspsRandGaussGetSize_32f,
                                           [](VspRandGaussState_32f* s) { return vspsRandGaussInit_32f(s, 0, 1, 3u); },
                                           [](Vsp32f* d, VspRandGaussState_32f* s) { return vspsRandGauss_32f(d, 5, s); });
}

}  // namespace
