// Twiddle sources of the FFT: the fixed quarter-wave sine table of order 10, the long-double
// sine that builds it and the base tables of higher orders, and the lookup of one twiddle
// exp(-2 pi i m / n) from a quarter-wave table.
#pragma once

#include <cstdint>

#include "vsp.h"

namespace vsp::fft {

inline constexpr long double kPiL = 3.141592653589793238462643383279502884L;

// sin(x) for 0 <= x <= pi/4 by its Taylor series in long double (error below 1e-19).
constexpr long double SinSmall(long double x) {
  long double term = x, sum = x, x2 = x * x;
  for (int k = 1; k < 14; ++k) {
    term = -term * x2 / static_cast<long double>((2 * k) * (2 * k + 1));
    sum += term;
  }
  return sum;
}
constexpr long double CosSmall(long double x) {
  long double term = 1.0L, sum = 1.0L, x2 = x * x;
  for (int k = 1; k < 14; ++k) {
    term = -term * x2 / static_cast<long double>((2 * k - 1) * (2 * k));
    sum += term;
  }
  return sum;
}
// sin(2 pi j / m) for 0 <= j <= m / 4, m a power of two >= 4.
constexpr long double QuarterSin(long long j, long long m) {
  if (8 * j <= m) return SinSmall(2.0L * kPiL * static_cast<long double>(j) / static_cast<long double>(m));
  return CosSmall(2.0L * kPiL * static_cast<long double>(m / 4 - j) / static_cast<long double>(m));
}

// The fixed table: sin(2 pi j / 1024) for j = 0..256 (the last entry is 1).
inline constexpr int kFixedOrder = 10;
template <class T> struct FixedSine {
  T v[257];
  constexpr FixedSine() : v() {
    for (int j = 0; j <= 256; ++j) v[j] = static_cast<T>(QuarterSin(j, 1024));
  }
};
inline constexpr FixedSine<Vsp64f> fft_fix_twiddle_table_64f{};
inline constexpr FixedSine<Vsp32f> fft_fix_twiddle_table_32f{};
template <class T> constexpr const T* FixedTable() {
  if constexpr (sizeof(T) == 8) return fft_fix_twiddle_table_64f.v;
  else return fft_fix_twiddle_table_32f.v;
}

// A quarter-wave sine table of order L: t[j] = sin(2 pi j / 2^L), j = 0 .. 2^L / 4.
template <class T> struct SineSource {
  const T* t;
  int order;
  // exp(-2 pi i m / n) for 0 <= m < n, n a power of two with n <= 2^L: (cos, -sin), each a
  // table value or its negation.
  constexpr void Twiddle(long long m, long long n, T& re, T& im) const {
    const long long full = 1LL << order, q = full / 4;
    const long long j = (m * (full / n)) & (full - 1);
    re = Sin((j + q) & (full - 1), q);
    im = -Sin(j, q);
  }
  constexpr T Sin(long long j, long long q) const {
    const long long r = j % q;
    switch (j / q) {
      case 0: return t[r];
      case 1: return t[q - r];
      case 2: return -t[r];
      default: return -t[q - r];
    }
  }
};

// Builds the base table of order L (2^L / 4 + 1 values) into dst.
template <class T> void ownsFFTBuildSine(T* dst, int order) {
  const long long m = 1LL << order;
  for (long long j = 0; j <= m / 4; ++j) dst[j] = static_cast<T>(QuarterSin(j, m));
}

}  // namespace vsp::fft
