// The caller's SSE control register around conversions: under every rounding mode, with and
// without denormals-are-zero and flush-to-zero, the results equal those under the default
// setting, and afterwards the control fields are the caller's and no exception flag the caller
// had raised is cleared.
#include <xmmintrin.h>

#include "convert/convert_test.h"

namespace vsptest {
namespace {

constexpr unsigned kDefaultCsr = 0x1F80;
constexpr unsigned kFlags = 0x3F;

// Values that tell rounding modes and flush settings apart.
const float kFloats[] = {2.5f, -2.5f, 0.5f, -1.5f, 0.49999997f, 3.4999998f, 1e-40f, -0x1p-149f, 16777217.0f,
                         2147483520.0f, 1e30f, 0x1.0p-24f, 0x1.8p-25f, 65519.0f, 7.75f, -0.0f};
const double kDoubles[] = {2.5, -2.5, 0.5, 1e-310, -0x1p-1074, 4503599627370497.5, 1e-45, 3.0000001, 0.49999999999999994,
                           -7.5, 1e300, 2147483647.5};
const Vsp32s kInts[] = {16777217, -16777219, 2147483647, 33554435, -5, 0, 1 << 30, 123456789};
const Vsp64s kLongs[] = {(1LL << 53) + 1, -((1LL << 60) + 12345), INT64_MAX, 7, -(1LL << 62) - 3};

// Each call converts the inputs above and appends its output bytes.
using Run = std::function<void(std::vector<unsigned char>&)>;
template <class D, class F>
Run Out(size_t n, F f) {
  return [=](std::vector<unsigned char>& bytes) {
    std::vector<D> d(n);
    EXPECT_EQ(f(d.data(), static_cast<int>(n)), vspStatOk);
    const auto* b = reinterpret_cast<const unsigned char*>(d.data());
    bytes.insert(bytes.end(), b, b + n * sizeof(D));
  };
}

// Members whose kernels round in floating point (and one integer-only member), each with
// inputs that tell the settings apart.
#define VSP_RUN(D, in, call) r.push_back(Out<D>(std::size(in), [=](D* d, int n) { return call; }))
std::vector<Run> Calls() {
  std::vector<Run> r;
  for (VspRoundMode m : {vspRndZero, vspRndNear, vspRndHalfAway}) {
    VSP_RUN(Vsp16s, kFloats, vspsConvert_32f16s_Sfs(kFloats, d, n, m, 0));
    VSP_RUN(Vsp32s, kFloats, vspsConvert_32f32s_Sfs(kFloats, d, n, m, -130));
    VSP_RUN(Vsp32s, kDoubles, vspsConvert_64f32s_Sfs(kDoubles, d, n, m, -1040));
    VSP_RUN(Vsp64s, kDoubles, vspsConvert_64f64s_Sfs(kDoubles, d, n, m, 1));
    VSP_RUN(Vsp8s, kInts, vspsConvert_16s8s_Sfs(reinterpret_cast<const Vsp16s*>(kInts), d, n, m, 2));
    if (m != vspRndHalfAway) VSP_RUN(Vsp16f, kFloats, vspsConvert_32f16f(kFloats, d, n, m));
  }
  VSP_RUN(Vsp32f, kInts, vspsConvert_32s32f(kInts, d, n));
  VSP_RUN(Vsp32f, kInts, vspsConvert_32s32f_Sfs(kInts, d, n, 150));
  VSP_RUN(Vsp64f, kInts, vspsConvert_32s64f_Sfs(kInts, d, n, 1090));
  VSP_RUN(Vsp64f, kLongs, vspsConvert_64s64f(kLongs, d, n));
  VSP_RUN(Vsp64f, kFloats, vspsConvert_32f64f(kFloats, d, n));
  VSP_RUN(Vsp32f, kDoubles, vspsConvert_64f32f(kDoubles, d, n));
  return r;
}

std::vector<unsigned char> RunAll(const std::vector<Run>& calls, unsigned csr) {
  std::vector<unsigned char> bytes;
  for (const Run& run : calls) {
    _mm_setcsr(csr);
    run(bytes);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(kDefaultCsr);
    EXPECT_EQ(after & ~kFlags, csr & ~kFlags) << std::hex << "caller 0x" << csr << " after 0x" << after;
    EXPECT_EQ(after & csr & kFlags, csr & kFlags) << std::hex << "caller flags cleared: 0x" << csr << " after 0x" << after;
  }
  return bytes;
}

TEST(RoundingControl, ResultsAndRegisterUnderEveryCallerSetting) {
  const auto calls = Calls();
  const auto want = RunAll(calls, kDefaultCsr);
  for (unsigned rc : {0x0000u, 0x2000u, 0x4000u, 0x6000u}) {
    for (unsigned flush : {0x0000u, 0x0040u, 0x8000u, 0x8040u}) {
      for (unsigned flags : {0x00u, 0x21u}) {
        const unsigned csr = kDefaultCsr | rc | flush | flags;
        EXPECT_EQ(RunAll(calls, csr), want) << std::hex << "caller 0x" << csr;
      }
    }
  }
}

// Flags the conversion raises stay raised after the caller's setting is restored.
TEST(RoundingControl, RaisedFlagsStay) {
  const float x = 2.5f;
  Vsp16s r;
  _mm_setcsr(kDefaultCsr | 0x6000);
  ASSERT_EQ(vspsConvert_32f16s_Sfs(&x, &r, 1, vspRndNear, 0), vspStatOk);
  const unsigned after = _mm_getcsr();
  _mm_setcsr(kDefaultCsr);
  EXPECT_EQ(r, 2);
  EXPECT_EQ(after & ~kFlags, kDefaultCsr | 0x6000);
  EXPECT_NE(after & 0x20, 0u) << "the inexact flag of 2.5 -> 2 was dropped";
}

}  // namespace
}  // namespace vsptest
