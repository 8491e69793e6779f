// Complex utilities and Goertzel against plain loops (the float formula as a user writes it, at
// -O3 -msse3 and -O3 -march=native), at 4,096 and 1,048,576 elements.
#include "harness.h"
#include "peers/complex.h"

namespace vspbench {
namespace {

const std::vector<long long> kSizes = {4096, 1048576};

template <class F> Body Map(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<Vsp32fc> a(n);
    Buffer<Vsp32f> b(n);
    for (long long i = 0; i < n; ++i) a.data[i] = {static_cast<float>(i % 17) - 8, static_cast<float>(i % 13) - 6};
    for (auto _ : st) {
      f(a.data, b.data, n);
      benchmark::DoNotOptimize(b.data[n - 1]);
    }
  };
}
template <class F> Body Bin(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<Vsp32f> a(n);
    for (long long i = 0; i < n; ++i) a.data[i] = static_cast<float>(i % 17) - 8;
    for (auto _ : st) {
      Vsp32fc r = f(a.data, n);
      benchmark::DoNotOptimize(r);
    }
  };
}

const int kRegistered = [] {
  Register("Magnitude_32fc", "vsp", kSizes, 12, Map([](auto s, auto d, long long n) { vspsMagnitude_32fc(s, d, int(n)); }));
  Register("Magnitude_32fc", "loop", kSizes, 12, Map([](auto s, auto d, long long n) { loop_sse3::Magnitude32fc(s, d, n); }));
  Register("Magnitude_32fc", "loop-native", kSizes, 12, Map([](auto s, auto d, long long n) { loop_native::Magnitude32fc(s, d, n); }));
  Register("PowerSpectr_32fc", "vsp", kSizes, 12, Map([](auto s, auto d, long long n) { vspsPowerSpectr_32fc(s, d, int(n)); }));
  Register("PowerSpectr_32fc", "loop", kSizes, 12, Map([](auto s, auto d, long long n) { loop_sse3::PowerSpectr32fc(s, d, n); }));
  Register("PowerSpectr_32fc", "loop-native", kSizes, 12, Map([](auto s, auto d, long long n) { loop_native::PowerSpectr32fc(s, d, n); }));
  Register("Goertz_32f", "vsp", kSizes, 4, Bin([](auto s, long long n) { Vsp32fc r; vspsGoertz_32f(s, int(n), &r, 0.1f); return r; }));
  Register("Goertz_32f", "loop", kSizes, 4, Bin([](auto s, long long n) { Vsp32fc r; loop_sse3::Goertz32f(s, n, 0.1f, &r.re, &r.im); return r; }));
  return 0;
}();

}  // namespace
}  // namespace vspbench
