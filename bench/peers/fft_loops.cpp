// Plain loops for the packed-spectrum benchmarks (compiled once per peer namespace).
#include "peers/fft.h"

namespace VSP_PEER_NS {

void MulPerm32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n) {
  d[0] = a[0] * b[0];
  long long k = 1;
  if (n % 2 == 0) d[1] = a[1] * b[1], k = 2;
  for (; k + 1 < n; k += 2) {
    d[k] = a[k] * b[k] - a[k + 1] * b[k + 1];
    d[k + 1] = a[k + 1] * b[k] + a[k] * b[k + 1];
  }
}
void ConjPerm32fc(const Vsp32f* x, Vsp32fc* y, long long n) {
  y[0] = {x[0], 0.0f};
  long long k = 1, at = 1;
  if (n % 2 == 0) y[n / 2] = {x[1], 0.0f}, at = 2;
  for (; 2 * k < n; ++k, at += 2) {
    y[k] = {x[at], x[at + 1]};
    y[n - k] = {x[at], -x[at + 1]};
  }
}

}  // namespace VSP_PEER_NS
