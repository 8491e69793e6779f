// Shared pieces of the statistics tests: the lengths and offsets swept, and reference scaling.
#pragma once

#include <cmath>
#include <vector>

#include "support/budget.h"
#include "support/buffers.h"
#include "support/types.h"
#include "vsp.h"

namespace vsptest {

// Lengths 1..70, the chunk borders of the index searches and a few large ones.
inline std::vector<int> StatLengths() {
  std::vector<int> lens;
  for (int n = 1; n <= 70; ++n) lens.push_back(n);
  for (int n : {127, 2047, 2048, 2049, 4095, 4096, 4097, 40000}) lens.push_back(n);
  return lens;
}

// Byte offsets past a 16-byte boundary that an element of T can start at.
template <class T> std::vector<size_t> StatOffsets() {
  std::vector<size_t> offs;
  for (size_t o = 0; o < 16; o += alignof(T)) offs.push_back(o);
  return offs;
}

// saturate(round(x)) with ties to even, for an exactly known x.
template <class D> D RefRound(long double x) {
  long double lo = static_cast<long double>(std::numeric_limits<D>::lowest());
  long double hi = static_cast<long double>(std::numeric_limits<D>::max());
  if (x <= lo) return std::numeric_limits<D>::lowest();
  if (x >= hi) return std::numeric_limits<D>::max();
  long double r = std::floor(x), f = x - r;
  if (f > 0.5L || (f == 0.5L && std::fmod(r, 2.0L) != 0)) r += 1;
  return static_cast<D>(r);
}

// True when x lies within a relative distance eps of a rounding boundary (k + 1/2), where a
// reference computed in extended precision cannot decide the rounding.
inline bool NearHalf(long double x, long double eps = 1e-12L) {
  long double f = x - std::floor(x);
  return std::fabs(f - 0.5L) <= eps * (1 + std::fabs(x));
}

}  // namespace vsptest
