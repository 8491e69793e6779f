// Plain loops for the window, tone and random benchmarks (compiled once per peer namespace).
#include <cmath>
#include <random>

#include "peers/gen.h"

namespace VSP_PEER_NS {

namespace {
constexpr double kPi = 3.14159265358979323846;
double I0(double x) {
  double term = 1, sum = 1;
  for (int k = 1; k < 500 && term > sum * 1e-17; ++k) term *= x * x / 4 / (double(k) * k), sum += term;
  return sum;
}
}  // namespace

void WinHann32f(const Vsp32f* s, Vsp32f* d, long long n) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<float>(s[i] * (0.5 - 0.5 * std::cos(2 * kPi * i / (n - 1))));
}
void WinKaiser32f(const Vsp32f* s, Vsp32f* d, long long n, float alpha) {
  const double den = I0(alpha * (n - 1) * 0.5);
  for (long long i = 0; i < n; ++i) d[i] = static_cast<float>(s[i] * I0(alpha * std::sqrt(double(i) * (n - 1 - i))) / den);
}
void WinBlackmanOpt64f(const Vsp64f* s, Vsp64f* d, long long n) {
  const double c = 0.5 / std::cos(kPi / (n - 1)), a = -c * c;
  for (long long i = 0; i < n; ++i) {
    const double t = 2 * kPi * i / (n - 1);
    d[i] = s[i] * ((a + 1) / 2 - 0.5 * std::cos(t) - a / 2 * std::cos(2 * t));
  }
}
void Tone32f(Vsp32f* d, long long n, float magn, float rFreq, float phase) {
  for (long long i = 0; i < n; ++i) d[i] = static_cast<float>(magn * std::cos(phase + 2 * kPi * rFreq * i));
}
void Triangle32f(Vsp32f* d, long long n, float magn, float rFreq, float phase) {
  for (long long i = 0; i < n; ++i) {
    double t = std::fmod(phase + 2 * kPi * rFreq * i, 2 * kPi);
    d[i] = static_cast<float>(t < kPi ? magn * (1 - 2 * t / kPi) : magn * (2 * (t - kPi) / kPi - 1));
  }
}
void RandUniform32f(Vsp32f* d, long long n, unsigned seed) {
  std::mt19937 g(seed);
  std::uniform_real_distribution<float> u(-1.0f, 1.0f);
  for (long long i = 0; i < n; ++i) d[i] = u(g);
}
void RandGauss32f(Vsp32f* d, long long n, unsigned seed) {
  std::mt19937 g(seed);
  std::normal_distribution<float> u(0.0f, 1.0f);
  for (long long i = 0; i < n; ++i) d[i] = u(g);
}

}  // namespace VSP_PEER_NS
