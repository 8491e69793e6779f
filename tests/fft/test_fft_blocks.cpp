// Spec blocks whose Init did not finish are refused by every transform.
#include <gtest/gtest.h>

#include <vector>

#include "vsp.h"

namespace {

// From order 11 Init needs the init buffer; without it Init returns -8 after writing the header.
TEST(FftBlocks, UnfinishedInitIsRefused) {
  std::vector<Vsp8u> mem(1 << 20), buf(1 << 20);
  std::vector<Vsp64fc> x(1 << 11), y(1 << 11);
  auto* d = reinterpret_cast<double*>(x.data());
  auto* e = reinterpret_cast<double*>(y.data());
  auto* f = reinterpret_cast<float*>(x.data());
  auto* g = reinterpret_cast<float*>(y.data());
  Vsp8u* hdr = reinterpret_cast<Vsp8u*>((reinterpret_cast<uintptr_t>(mem.data()) + 63) & ~uintptr_t{63});
  VspFFTSpec_C_32fc* c32 = nullptr;
  ASSERT_EQ(vspsFFTInit_C_32fc(&c32, 11, 2, vspAlgHintNone, mem.data(), nullptr), vspStatNullPtr);
  c32 = reinterpret_cast<VspFFTSpec_C_32fc*>(hdr);
  EXPECT_EQ(vspsFFTFwd_CToC_32fc(reinterpret_cast<Vsp32fc*>(f), reinterpret_cast<Vsp32fc*>(g), c32, buf.data()), vspStatBadContext);
  EXPECT_EQ(vspsFFTInv_CToC_32fc(reinterpret_cast<Vsp32fc*>(f), reinterpret_cast<Vsp32fc*>(g), c32, buf.data()), vspStatBadContext);
  VspFFTSpec_C_32f* s32 = nullptr;
  ASSERT_EQ(vspsFFTInit_C_32f(&s32, 12, 2, vspAlgHintNone, mem.data(), nullptr), vspStatNullPtr);
  s32 = reinterpret_cast<VspFFTSpec_C_32f*>(hdr);
  EXPECT_EQ(vspsFFTFwd_CToC_32f(f, f + 8, g, g + 8, s32, buf.data()), vspStatBadContext);
  VspFFTSpec_R_32f* r32 = nullptr;
  ASSERT_EQ(vspsFFTInit_R_32f(&r32, 13, 2, vspAlgHintNone, mem.data(), nullptr), vspStatNullPtr);
  r32 = reinterpret_cast<VspFFTSpec_R_32f*>(hdr);
  EXPECT_EQ(vspsFFTFwd_RToPerm_32f(f, g, r32, buf.data()), vspStatBadContext);
  EXPECT_EQ(vspsFFTInv_CCSToR_32f(f, g, r32, buf.data()), vspStatBadContext);
  VspFFTSpec_C_64fc* c64 = nullptr;
  ASSERT_EQ(vspsFFTInit_C_64fc(&c64, 11, 2, vspAlgHintNone, mem.data(), nullptr), vspStatNullPtr);
  c64 = reinterpret_cast<VspFFTSpec_C_64fc*>(hdr);
  EXPECT_EQ(vspsFFTFwd_CToC_64fc(x.data(), y.data(), c64, buf.data()), vspStatBadContext);
  VspFFTSpec_C_64f* s64 = nullptr;
  ASSERT_EQ(vspsFFTInit_C_64f(&s64, 11, 2, vspAlgHintNone, mem.data(), nullptr), vspStatNullPtr);
  s64 = reinterpret_cast<VspFFTSpec_C_64f*>(hdr);
  EXPECT_EQ(vspsFFTInv_CToC_64f(d, d + 8, e, e + 8, s64, buf.data()), vspStatBadContext);
  VspFFTSpec_R_64f* r64 = nullptr;
  ASSERT_EQ(vspsFFTInit_R_64f(&r64, 11, 2, vspAlgHintNone, mem.data(), nullptr), vspStatNullPtr);
  r64 = reinterpret_cast<VspFFTSpec_R_64f*>(hdr);
  EXPECT_EQ(vspsFFTFwd_RToPack_64f(d, e, r64, buf.data()), vspStatBadContext);
  // The same memory, finished by Init, is accepted.
  ASSERT_EQ(vspsFFTInit_R_64f(&r64, 11, 2, vspAlgHintNone, mem.data(), buf.data()), vspStatOk);
  EXPECT_EQ(vspsFFTFwd_RToPack_64f(d, e, r64, buf.data()), vspStatOk);
}

}  // namespace
