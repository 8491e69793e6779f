// Plain loops for the data-movement benchmarks (compiled once per peer namespace).
#include "peers/core.h"

namespace VSP_PEER_NS {

void Copy8u(const Vsp8u* s, Vsp8u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = s[i];
}
void Set32f(Vsp32f v, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = v;
}
void Zero8u(Vsp8u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = 0;
}
void Move8u(const Vsp8u* s, Vsp8u* d, long long n) {
  if (d < s) {
    for (long long i = 0; i < n; ++i) d[i] = s[i];
  } else {
    for (long long i = n - 1; i >= 0; --i) d[i] = s[i];
  }
}
void Flip8u(const Vsp8u* s, Vsp8u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = s[n - 1 - i];
}
void Flip16u(const Vsp16u* s, Vsp16u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = s[n - 1 - i];
}
void Flip32f(const Vsp32f* s, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = s[n - 1 - i];
}
void Flip64fc(const Vsp64fc* s, Vsp64fc* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = s[n - 1 - i];
}
void Swap16u(const Vsp16u* s, Vsp16u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<Vsp16u>((s[i] << 8) | (s[i] >> 8));
}
void Swap24u(const Vsp8u* s, Vsp8u* d, long long n) {
  for (long long i = 0; i < n; ++i) {
    Vsp8u a = s[3 * i], b = s[3 * i + 1], c = s[3 * i + 2];
    d[3 * i] = c, d[3 * i + 1] = b, d[3 * i + 2] = a;
  }
}
void Swap32u(const Vsp32u* s, Vsp32u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = __builtin_bswap32(s[i]);
}
void Swap64u(const Vsp64u* s, Vsp64u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = __builtin_bswap64(s[i]);
}

}  // namespace VSP_PEER_NS
