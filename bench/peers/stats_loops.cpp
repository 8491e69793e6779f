// Plain loops for the statistics benchmarks (compiled once per peer namespace). Float sums run
// in the order written: without reassociation the compiler keeps one scalar chain.
#include <cmath>

#include "peers/stats.h"

namespace VSP_PEER_NS {

Vsp32f Sum32f(const Vsp32f* s, long long n) {
  Vsp32f acc = 0;
  for (long long i = 0; i < n; ++i) acc += s[i];
  return acc;
}
Vsp64f Mean64f(const Vsp64f* s, long long n) {
  Vsp64f acc = 0;
  for (long long i = 0; i < n; ++i) acc += s[i];
  return acc / static_cast<Vsp64f>(n);
}
Vsp32f StdDev32f(const Vsp32f* s, long long n) {
  Vsp64f s1 = 0, s2 = 0;
  for (long long i = 0; i < n; ++i) s1 += s[i], s2 += static_cast<Vsp64f>(s[i]) * s[i];
  const Vsp64f m = static_cast<Vsp64f>(n);
  return static_cast<Vsp32f>(std::sqrt((m * s2 - s1 * s1) / (m * (m - 1))));
}
int MaxIndx32f(const Vsp32f* s, long long n, Vsp32f* max) {
  Vsp32f best = s[0];
  long long at = 0;
  for (long long i = 1; i < n; ++i)
    if (s[i] > best) best = s[i], at = i;
  *max = best;
  return static_cast<int>(at);
}
void MinMax16s(const Vsp16s* s, long long n, Vsp16s* min, Vsp16s* max) {
  Vsp16s lo = s[0], hi = s[0];
  for (long long i = 1; i < n; ++i) {
    lo = s[i] < lo ? s[i] : lo;
    hi = s[i] > hi ? s[i] : hi;
  }
  *min = lo, *max = hi;
}
Vsp32f NormL2_32f(const Vsp32f* s, long long n) {
  Vsp32f acc = 0;
  for (long long i = 0; i < n; ++i) acc += s[i] * s[i];
  return std::sqrt(acc);
}
Vsp32f DotProd32f(const Vsp32f* a, const Vsp32f* b, long long n) {
  Vsp32f acc = 0;
  for (long long i = 0; i < n; ++i) acc += a[i] * b[i];
  return acc;
}
Vsp32fc DotProd32fc(const Vsp32fc* a, const Vsp32fc* b, long long n) {
  Vsp32f re = 0, im = 0;
  for (long long i = 0; i < n; ++i) {
    re += a[i].re * b[i].re - a[i].im * b[i].im;
    im += a[i].re * b[i].im + a[i].im * b[i].re;
  }
  return {re, im};
}

}  // namespace VSP_PEER_NS
