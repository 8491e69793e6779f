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

std::vector<Run> Calls() {
  const size_t nf = std::size(kFloats), nd = std::size(kDoubles), ni = std::size(kInts), nl = std::size(kLongs);
  std::vector<Run> r;
  for (int mode : {0, 1, 2}) {
    const auto m = VspRoundMode(mode);
    r.push_back(Out<Vsp16s>(nf, [=](Vsp16s* d, int n) { return vspsConvert_32f16s_Sfs(kFloats, d, n, m, 0); }));
    r.push_back(Out<Vsp32s>(nf, [=](Vsp32s* d, int n) { return vspsConvert_32f32s_Sfs(kFloats, d, n, m, -130); }));
    r.push_back(Out<Vsp8u>(nf, [=](Vsp8u* d, int n) { return vspsConvert_32f8u_Sfs(kFloats, d, n, m, -1); }));
    r.push_back(Out<Vsp32s>(nd, [=](Vsp32s* d, int n) { return vspsConvert_64f32s_Sfs(kDoubles, d, n, m, -1040); }));
    r.push_back(Out<Vsp64s>(nd, [=](Vsp64s* d, int n) { return vspsConvert_64f64s_Sfs(kDoubles, d, n, m, 1); }));
    r.push_back(Out<Vsp8s>(ni, [=](Vsp8s* d, int n) { return vspsConvert_16s8s_Sfs(reinterpret_cast<const Vsp16s*>(kInts), d, n, m, 2); }));
  }
  for (int mode : {0, 1}) {
    const auto m = VspRoundMode(mode);
    r.push_back(Out<Vsp16f>(nf, [=](Vsp16f* d, int n) { return vspsConvert_32f16f(kFloats, d, n, m); }));
    r.push_back(Out<Vsp16f>(ni, [=](Vsp16f* d, int n) { return vspsConvert_16s16f(reinterpret_cast<const Vsp16s*>(kInts), d, n, m); }));
  }
  r.push_back(Out<Vsp32f>(ni, [](Vsp32f* d, int n) { return vspsConvert_32s32f(kInts, d, n); }));
  r.push_back(Out<Vsp32f>(ni, [](Vsp32f* d, int n) { return vspsConvert_32s32f_Sfs(kInts, d, n, 150); }));
  r.push_back(Out<Vsp64f>(ni, [](Vsp64f* d, int n) { return vspsConvert_32s64f_Sfs(kInts, d, n, 1090); }));
  r.push_back(Out<Vsp64f>(nl, [](Vsp64f* d, int n) { return vspsConvert_64s64f(kLongs, d, n); }));
  r.push_back(Out<Vsp64f>(nf, [](Vsp64f* d, int n) { return vspsConvert_32f64f(kFloats, d, n); }));
  r.push_back(Out<Vsp32f>(nd, [](Vsp32f* d, int n) { return vspsConvert_64f32f(kDoubles, d, n); }));
  r.push_back(Out<Vsp8u>(nf, [](Vsp8u* d, int n) { return vspsConvert_32f24s_Sfs(kFloats, d, n / 3, -3); }));
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
