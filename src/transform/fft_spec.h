// The FFT spec block: its 144-byte header, the byte counts that GetSize reports, and the
// internal work-buffer queries that the FFT-based filter and correlation families use.
#pragma once

#include <cstdint>

#include "core/block.h"
#include "transform/fft_kernels.h"
#include "vsp.h"

namespace vsp::fft {

// The identifiers of the six kinds, from the library-wide list.
enum : uint32_t {
  kIdC32fc = block::kFFT_C_32fc, kIdC32f = block::kFFT_C_32f, kIdR32f = block::kFFT_R_32f,
  kIdC64fc = block::kFFT_C_64fc, kIdC64f = block::kFFT_C_64f, kIdR64f = block::kFFT_R_64f
};

inline constexpr int kHeaderBytes = 144;
inline constexpr int kMaxLevels = 2;

// Header of a spec block whose element precision is T (fields in the interface order).
template <class T> struct SpecHeader {
  uint32_t id;          // identifier of the kind; 0 after a flag error
  int32_t order;        // order of the transform (of the real length for real specs)
  int32_t fwdScaled;    // 1 when Fwd multiplies by `scale`
  int32_t invScaled;    // 1 when Inv multiplies by `scale`
  T scale;              // 1/N or 1/sqrt(N); 0 when unscaled
  int32_t hint;         // the caller's hint, kept
  int32_t workBytes;    // work buffer without its alignment slack; 0 when none
  int32_t zero;         // always 0
  const uint32_t* bitRev;  // bit-reversal table of the blocked permutation, behind the header
  const T* twiddle;        // Stockham twiddles (of the rows, in the blocked plan)
  int32_t levels;          // blocked plan: number of levels (0: single level or direct)
  uint32_t done;           // block::kDone once Init has finished; the transforms refuse others
  Level level[kMaxLevels];
  const T* recFwd;  // real specs: forward recombination twiddles
  const T* recInv;  // real specs: inverse recombination twiddles
};
static_assert(sizeof(SpecHeader<Vsp64f>) <= kHeaderBytes && sizeof(SpecHeader<Vsp32f>) <= kHeaderBytes);

// round64 and B(n) of the size rules.
constexpr long long Round64(long long x) { return x & ~63LL; }
constexpr long long RevBytes(long long n) { return Round64(n + 67); }

// Precision-dependent constants of the size rules and the plan.
template <class T> struct Prec {
  static constexpr bool k64 = sizeof(T) == 8;
  static constexpr long long kPair = 2 * sizeof(T);     // bytes of a complex value
  static constexpr int kSingleMax = k64 ? 14 : 16;      // last single-level complex order
  static constexpr int kComplexMax = k64 ? 27 : 28;     // complex order limit
  static constexpr int kRealMax = k64 ? 28 : 29;        // real order limit
  static constexpr int kRealDirectMax = k64 ? 5 : 4;    // real orders with direct kernels
  static constexpr int kLargeRevFrom = k64 ? 19 : 20;   // large form of the bit-reversal table
  static constexpr long long kMinLargeWork = k64 ? 131072 : 65536;
  static constexpr int kRealFactorFrom = k64 ? 18 : 19; // factored recombination tables
  static constexpr long long kRecFactor = k64 ? 512 : 1024;
  static constexpr long long kTwSlack = k64 ? 79 : 71;
  // Block order b and buffer order s of the blocked plan, for orders 9..30.
  static constexpr int Block(int k) {
    if constexpr (k64) return k < 15 ? 0 : k < 19 ? 4 : k < 21 ? 6 : 8;
    else return k < 17 ? 0 : k < 21 ? 4 : k < 22 ? 6 : 8;
  }
  static constexpr int BufOrder(int k) {
    if constexpr (k64) return k < 15 ? 0 : k == 15 ? 8 : k < 19 ? 10 : k < 21 ? 13 : 14;
    else return k < 17 ? 0 : k == 17 ? 9 : k < 21 ? 10 : k < 22 ? 13 : 15;
  }
};

struct Sizes {
  long long spec, init, work;
};

template <class T> struct TW {
  long long t, w;
};
// Steps 1-2 of the blocked rule (the table, the rows and the remaining stages).
template <class T> constexpr TW<T> BlockedTW(int k) {
  using P = Prec<T>;
  const int r = k - P::Block(k);
  TW<T> tw{};
  if (r <= P::kSingleMax) {
    tw.t = Round64(P::kPair * (1LL << r) + P::kTwSlack);
    tw.w = Round64(P::kPair * (1LL << r) + 63);
  } else {
    tw = BlockedTW<T>(r);
  }
  tw.t += P::kPair * (1LL << (k - 1));
  const long long ws = P::kPair * (1LL << P::BufOrder(k));
  if (ws > tw.w) tw.w = ws;
  return tw;
}
// T and W of a complex transform of order k >= 6.
template <class T> constexpr TW<T> ComplexTW(int k) {
  using P = Prec<T>;
  const long long n = 1LL << k;
  if (k <= P::kSingleMax) return {Round64(P::kPair * n + P::kTwSlack) + RevBytes(n), Round64(P::kPair * n + 63)};
  TW<T> tw = BlockedTW<T>(k);
  if (k < P::kLargeRevFrom) {
    tw.t += RevBytes(n);
  } else {
    tw.t += 4 * (1LL << (k - 12)) + 4160;
    if (tw.w < P::kMinLargeWork) tw.w = P::kMinLargeWork;
  }
  return tw;
}
template <class T> constexpr long long InitBytes(int k) {
  return k <= 10 ? 0 : Round64((Prec<T>::k64 ? 2 : 1) * (1LL << k) + (Prec<T>::k64 ? 71 : 67)) + 64;
}
template <class T> constexpr Sizes ComplexSizes(int k) {
  if (k <= 5) return {208, 0, 0};
  const TW<T> tw = ComplexTW<T>(k);
  return {tw.t + 256, InitBytes<T>(k), tw.w + 64};
}
// Bytes of one recombination table of a real transform of order k.
template <class T> constexpr long long RecBytes(int k) {
  using P = Prec<T>;
  if (k < P::kRealFactorFrom) return Round64(P::kPair * (1LL << k) / 4 + 63);
  return Round64(P::kPair * (1LL << (k - (P::k64 ? 11 : 12))) + 8255);
}
template <class T> constexpr Sizes RealSizes(int k) {
  using P = Prec<T>;
  if (k <= P::kRealDirectMax) return {208, 0, 0};
  const int h = k - 1;
  const TW<T> tw = h <= 5 ? TW<T>{0, 0} : ComplexTW<T>(h);
  const long long init = k <= 10 ? 0 : InitBytes<T>(k) + InitBytes<T>(h);
  return {tw.t + 2 * RecBytes<T>(k) + 256, init, tw.w > 0 ? tw.w + 64 : 0};
}

}  // namespace vsp::fft

// Work-buffer queries of existing specs, for the families that run on the FFT: -8 when a
// pointer is NULL, -17 when the identifier is not of the kind, else the spec's work-buffer
// bytes plus 64 (the alignment slack), or 0 when the spec needs none.
VspStatus ownsFFTGetBufSize_C_32fc(const VspFFTSpec_C_32fc* pSpec, int* pSize);
VspStatus ownsFFTGetBufSize_C_32f(const VspFFTSpec_C_32f* pSpec, int* pSize);
VspStatus ownsFFTGetBufSize_R_32f(const VspFFTSpec_R_32f* pSpec, int* pSize);
VspStatus ownsFFTGetBufSize_C_64fc(const VspFFTSpec_C_64fc* pSpec, int* pSize);
VspStatus ownsFFTGetBufSize_C_64f(const VspFFTSpec_C_64f* pSpec, int* pSize);
VspStatus ownsFFTGetBufSize_R_64f(const VspFFTSpec_R_64f* pSpec, int* pSize);
