// Plain loops for the conversion, logic and threshold benchmarks (compiled once per peer
// namespace): what a user writes with the C library, saturating like the library does.
#include <cmath>

#include "peers/convert.h"

namespace VSP_PEER_NS {

namespace {
template <class D>
D Clamp(long v, long lo, long hi) {
  return static_cast<D>(v < lo ? lo : v > hi ? hi : v);
}
float ClampF(float v, float lo, float hi) { return v < lo ? lo : v > hi ? hi : v; }
}  // namespace

void Convert16s32f(const Vsp16s* s, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<float>(s[i]);
}
void Convert32s32f(const Vsp32s* s, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<float>(s[i]);
}
void Convert32f16sNear(const Vsp32f* s, Vsp16s* d, long long n, float scale) {
  for (long long i = 0; i < n; ++i) d[i] = Clamp<Vsp16s>(std::lrint(ClampF(s[i] * scale, -32768.f, 32767.f)), -32768, 32767);
}
void Convert32f16sZero(const Vsp32f* s, Vsp16s* d, long long n, float scale) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<Vsp16s>(static_cast<int>(ClampF(s[i] * scale, -32768.f, 32767.f)));
}
void Convert32f16sHalfAway(const Vsp32f* s, Vsp16s* d, long long n, float scale) {
  for (long long i = 0; i < n; ++i) d[i] = Clamp<Vsp16s>(std::lround(ClampF(s[i] * scale, -32768.f, 32767.f)), -32768, 32767);
}
void Convert32f8uNear(const Vsp32f* s, Vsp8u* d, long long n, float scale) {
  for (long long i = 0; i < n; ++i) d[i] = Clamp<Vsp8u>(std::lrint(ClampF(s[i] * scale, 0.f, 255.f)), 0, 255);
}
void And8u(const Vsp8u* a, const Vsp8u* b, Vsp8u* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<Vsp8u>(a[i] & b[i]);
}
void RShift16s(const Vsp16s* s, int k, Vsp16s* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<Vsp16s>(s[i] >> k);
}
void ThresholdLT32f(const Vsp32f* s, Vsp32f* d, long long n, float level) {
  for (long long i = 0; i < n; ++i) d[i] = s[i] < level ? level : s[i];
}
void ThresholdGTAbs32f(const Vsp32f* s, Vsp32f* d, long long n, float level) {
  for (long long i = 0; i < n; ++i) d[i] = s[i] > level ? level : s[i] < -level ? -level : s[i];
}
void ThresholdLTVal32fc(const Vsp32fc* s, Vsp32fc* d, long long n, float level, Vsp32fc value) {
  const float l2 = level * level;
  for (long long i = 0; i < n; ++i) d[i] = s[i].re * s[i].re + s[i].im * s[i].im < l2 ? value : s[i];
}

}  // namespace VSP_PEER_NS
