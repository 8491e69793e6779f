// Plain loops for the complex-utility and Goertzel benchmarks (compiled once per peer namespace).
#include <cmath>

#include "peers/complex.h"

namespace VSP_PEER_NS {

void Magnitude32fc(const Vsp32fc* s, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = std::sqrt(s[i].re * s[i].re + s[i].im * s[i].im);
}
void PowerSpectr32fc(const Vsp32fc* s, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = s[i].re * s[i].re + s[i].im * s[i].im;
}
void Goertz32f(const Vsp32f* s, long long n, float f, float* re, float* im) {
  const float w = 6.2831853f * f, c = std::cos(w), si = std::sin(w);
  float s1 = 0, s2 = 0;
  for (long long i = 0; i < n; ++i) {
    const float s0 = s[i] + 2 * c * s1 - s2;
    s2 = s1, s1 = s0;
  }
  *re = c * s1 - s2, *im = si * s1;
}

}  // namespace VSP_PEER_NS
