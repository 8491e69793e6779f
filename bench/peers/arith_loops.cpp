// Plain loops for the arithmetic benchmarks (compiled once per peer namespace).
#include "peers/arith.h"

namespace VSP_PEER_NS {

void Add32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = a[i] + b[i];
}
void Mul32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = a[i] * b[i];
}
void Div32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = b[i] / a[i];
}
void MulC32f(const Vsp32f* a, Vsp32f c, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = a[i] * c;
}
void Add32fc(const Vsp32fc* a, const Vsp32fc* b, Vsp32fc* d, long long n) {
  for (long long i = 0; i < n; ++i) {
    d[i].re = a[i].re + b[i].re;
    d[i].im = a[i].im + b[i].im;
  }
}
void Mul32fc(const Vsp32fc* a, const Vsp32fc* b, Vsp32fc* d, long long n) {
  for (long long i = 0; i < n; ++i) {
    const Vsp32f re = a[i].re * b[i].re - a[i].im * b[i].im;
    const Vsp32f im = a[i].re * b[i].im + a[i].im * b[i].re;
    d[i].re = re;
    d[i].im = im;
  }
}

namespace {
inline int Round(int r, int s, int bias) { return (r + bias + ((r >> s) & 1)) >> s; }
inline long long Round(long long r, int s, long long bias) { return (r + bias + ((r >> s) & 1)) >> s; }
template <class T> inline T Clamp(long long r, long long lo, long long hi) { return static_cast<T>(r < lo ? lo : r > hi ? hi : r); }
}  // namespace

void AddSfs16s(const Vsp16s* a, const Vsp16s* b, Vsp16s* d, long long n, int s) {
  if (s == 0) {
    for (long long i = 0; i < n; ++i) {
      const int r = a[i] + b[i];
      d[i] = static_cast<Vsp16s>(r < -32768 ? -32768 : r > 32767 ? 32767 : r);
    }
    return;
  }
  const int bias = (1 << (s - 1)) - 1;
  for (long long i = 0; i < n; ++i) {
    const int r = Round(a[i] + b[i], s, bias);
    d[i] = static_cast<Vsp16s>(r < -32768 ? -32768 : r > 32767 ? 32767 : r);
  }
}
void MulSfs16s(const Vsp16s* a, const Vsp16s* b, Vsp16s* d, long long n, int s) {
  const int bias = (1 << (s - 1)) - 1;
  for (long long i = 0; i < n; ++i) {
    const int r = Round(a[i] * b[i], s, bias);
    d[i] = static_cast<Vsp16s>(r < -32768 ? -32768 : r > 32767 ? 32767 : r);
  }
}
void AddSfs8u(const Vsp8u* a, const Vsp8u* b, Vsp8u* d, long long n, int s) {
  const int bias = (1 << (s - 1)) - 1;
  for (long long i = 0; i < n; ++i) {
    const int r = Round(a[i] + b[i], s, bias);
    d[i] = static_cast<Vsp8u>(r > 255 ? 255 : r);
  }
}
void MulSfs32s(const Vsp32s* a, const Vsp32s* b, Vsp32s* d, long long n, int s) {
  const long long bias = (1LL << (s - 1)) - 1;
  for (long long i = 0; i < n; ++i) d[i] = Clamp<Vsp32s>(Round(static_cast<long long>(a[i]) * b[i], s, bias), -2147483648LL, 2147483647LL);
}

}  // namespace VSP_PEER_NS
