// Shared pieces of the FFT tests: the members of each spec kind as one table, a long-double
// reference transform, error measures, and a spec built in guarded memory.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <memory>
#include <vector>

#include "support/budget.h"
#include "support/buffers.h"
#include "vsp.h"

namespace vsptest {

using CL = std::complex<long double>;

// Reference DFT: iterative radix-2 in long double with the N roots from cosl/sinl; sign -1
// forward, +1 inverse, unscaled.
inline void RefFft(std::vector<CL>& x, int sign) {
  const size_t n = x.size();
  if (n < 2) return;
  for (size_t i = 1, j = 0; i < n; ++i) {
    size_t bit = n >> 1;
    for (; j & bit; bit >>= 1) j ^= bit;
    j ^= bit;
    if (i < j) std::swap(x[i], x[j]);
  }
  const long double pi = 3.141592653589793238462643383279502884L;
  std::vector<CL> root(n / 2);
  for (size_t k = 0; k < n / 2; ++k) {
    const long double a = sign * 2 * pi * static_cast<long double>(k) / static_cast<long double>(n);
    root[k] = CL(cosl(a), sinl(a));
  }
  for (size_t len = 2; len <= n; len *= 2)
    for (size_t g = 0; g < n; g += len)
      for (size_t k = 0; k < len / 2; ++k) {
        const CL t = root[k * (n / len)] * x[g + k + len / 2];
        x[g + k + len / 2] = x[g + k] - t;
        x[g + k] = x[g + k] + t;
      }
}

// Relative RMS error and maximum error (relative to the RMS of the reference).
struct ErrStats {
  double rms, max;
};
inline ErrStats Compare(const std::vector<CL>& got, const std::vector<CL>& ref) {
  long double num = 0, den = 0, mx = 0;
  for (size_t i = 0; i < ref.size(); ++i) {
    const long double e = std::abs(got[i] - ref[i]);
    num += e * e;
    den += std::norm(ref[i]);
    if (e > mx) mx = e;
  }
  const long double refRms = std::sqrt(den / static_cast<long double>(ref.size()));
  if (den == 0) return {static_cast<double>(std::sqrt(num)), static_cast<double>(mx)};
  return {static_cast<double>(std::sqrt(num / den)), static_cast<double>(mx / refRms)};
}

// The members of one precision, so that one test body serves 32f and 64f.
template <class T> struct Fft;
#define VSP_FFT_TRAITS(t, C)                                                                               \
  template <> struct Fft<Vsp##t> {                                                                         \
    using Tc = Vsp##C;                                                                                     \
    using SpecC = VspFFTSpec_C_##C;                                                                        \
    using SpecS = VspFFTSpec_C_##t;                                                                        \
    using SpecR = VspFFTSpec_R_##t;                                                                        \
    static constexpr int kLimitC = sizeof(Vsp##t) == 8 ? 27 : 28;                                          \
    static constexpr int kLimitR = sizeof(Vsp##t) == 8 ? 28 : 29;                                          \
    static constexpr double kEps = sizeof(Vsp##t) == 8 ? 0x1p-53 : 0x1p-24;                                \
    static constexpr auto GetSizeC = vspsFFTGetSize_C_##C;                                                  \
    static constexpr auto GetSizeS = vspsFFTGetSize_C_##t;                                                  \
    static constexpr auto GetSizeR = vspsFFTGetSize_R_##t;                                                  \
    static constexpr auto InitC = vspsFFTInit_C_##C;                                                        \
    static constexpr auto InitS = vspsFFTInit_C_##t;                                                        \
    static constexpr auto InitR = vspsFFTInit_R_##t;                                                        \
    static constexpr auto FwdC = vspsFFTFwd_CToC_##C;                                                       \
    static constexpr auto InvC = vspsFFTInv_CToC_##C;                                                       \
    static constexpr auto FwdCI = vspsFFTFwd_CToC_##C##_I;                                                  \
    static constexpr auto InvCI = vspsFFTInv_CToC_##C##_I;                                                  \
    static constexpr auto FwdS = vspsFFTFwd_CToC_##t;                                                       \
    static constexpr auto InvS = vspsFFTInv_CToC_##t;                                                       \
    static constexpr auto FwdSI = vspsFFTFwd_CToC_##t##_I;                                                  \
    static constexpr auto InvSI = vspsFFTInv_CToC_##t##_I;                                                  \
    static constexpr VspStatus (*FwdR[3])(const Vsp##t*, Vsp##t*, const SpecR*, Vsp8u*) = {               \
        vspsFFTFwd_RToPack_##t, vspsFFTFwd_RToPerm_##t, vspsFFTFwd_RToCCS_##t};                            \
    static constexpr VspStatus (*InvR[3])(const Vsp##t*, Vsp##t*, const SpecR*, Vsp8u*) = {               \
        vspsFFTInv_PackToR_##t, vspsFFTInv_PermToR_##t, vspsFFTInv_CCSToR_##t};                            \
    static constexpr VspStatus (*FwdRI[3])(Vsp##t*, const SpecR*, Vsp8u*) = {                              \
        vspsFFTFwd_RToPack_##t##_I, vspsFFTFwd_RToPerm_##t##_I, vspsFFTFwd_RToCCS_##t##_I};                \
    static constexpr VspStatus (*InvRI[3])(Vsp##t*, const SpecR*, Vsp8u*) = {                              \
        vspsFFTInv_PackToR_##t##_I, vspsFFTInv_PermToR_##t##_I, vspsFFTInv_CCSToR_##t##_I};                \
  };
VSP_FFT_TRAITS(32f, 32fc)
VSP_FFT_TRAITS(64f, 64fc)
#undef VSP_FFT_TRAITS

enum Kind { kComplex, kSplit, kReal };

// A spec of one kind built in memory of exactly the reported sizes (ending at a guard page),
// with its work buffer.
template <class T> struct Built {
  std::unique_ptr<GuardedVec<Vsp8u>> spec, init, work;
  const void* p = nullptr;
  int sizes[3] = {};
  VspStatus st = vspStatOk;
  Vsp8u* Work() { return work ? work->data() : nullptr; }
  template <class S> const S* As() const { return static_cast<const S*>(p); }
};
template <class T> Built<T> Build(Kind kind, int order, int flag, size_t mis = 0) {
  using F = Fft<T>;
  Built<T> b;
  auto get = kind == kComplex ? F::GetSizeC : kind == kSplit ? F::GetSizeS : F::GetSizeR;
  b.st = get(order, flag, vspAlgHintNone, &b.sizes[0], &b.sizes[1], &b.sizes[2]);
  if (b.st != vspStatOk) return b;
  b.spec = std::make_unique<GuardedVec<Vsp8u>>(b.sizes[0], mis);
  if (b.sizes[1] > 0) b.init = std::make_unique<GuardedVec<Vsp8u>>(b.sizes[1], mis);
  if (b.sizes[2] > 0) b.work = std::make_unique<GuardedVec<Vsp8u>>(b.sizes[2], mis);
  Vsp8u* init = b.init ? b.init->data() : nullptr;
  if (kind == kComplex) {
    typename F::SpecC* s = nullptr;
    b.st = F::InitC(&s, order, flag, vspAlgHintNone, b.spec->data(), init);
    b.p = s;
  } else if (kind == kSplit) {
    typename F::SpecS* s = nullptr;
    b.st = F::InitS(&s, order, flag, vspAlgHintNone, b.spec->data(), init);
    b.p = s;
  } else {
    typename F::SpecR* s = nullptr;
    b.st = F::InitR(&s, order, flag, vspAlgHintNone, b.spec->data(), init);
    b.p = s;
  }
  return b;
}

// A start offset of about `bytes` past a 16-byte boundary that T's alignment allows.
template <class T> size_t Mis(size_t bytes) { return bytes / sizeof(T) * sizeof(T) % 16; }

// Highest order the accuracy sweeps reach in this build.
inline int MaxTestedOrder() { return kSanitized ? 18 : 20; }

}  // namespace vsptest
