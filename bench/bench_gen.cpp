// Windows, tones, triangles and random vectors against plain loops calling the C library's
// cos/sin/exp and the C++ standard library's engines, at 4,096 and 1,048,576 elements.
#include <vector>

#include "harness.h"
#include "peers/gen.h"

namespace vspbench {
namespace {

const std::vector<long long> kSizes = {4096, 1048576};

template <class T, class F> Body Window(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<T> a(n), b(n);
    for (long long i = 0; i < n; ++i) a.data[i] = T(1);
    for (auto _ : st) {
      f(a.data, b.data, n);
      benchmark::DoNotOptimize(b.data[n / 2]);
    }
  };
}
template <class F> Body Fill(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<Vsp32f> d(n);
    for (auto _ : st) {
      f(d.data, n);
      benchmark::DoNotOptimize(d.data[n - 1]);
    }
  };
}
// A generator state kept for the whole benchmark, as a stream of calls would.
template <class S, auto GetSize, auto Init, auto Gen> Body Random(float a, float b) {
  return [a, b](benchmark::State& st, long long n) {
    int size = 0;
    GetSize(&size);
    std::vector<Vsp8u> mem(size);
    S* s = reinterpret_cast<S*>(mem.data());
    Init(s, a, b, 1u);
    Buffer<Vsp32f> d(n);
    for (auto _ : st) {
      Gen(d.data, static_cast<int>(n), s);
      benchmark::DoNotOptimize(d.data[n - 1]);
    }
  };
}

#define VSP_GEN_PEERS(kase, body, call)                                     \
  Register(kase, "loop", kSizes, 4, body([](auto... x) { loop_sse3::call(x...); }));   \
  Register(kase, "loop-native", kSizes, 4, body([](auto... x) { loop_native::call(x...); }))

const int kRegistered = [] {
  Register("WinHann_32f", "vsp", kSizes, 4, Window<Vsp32f>([](auto s, auto d, long long n) { vspsWinHann_32f(s, d, int(n)); }));
  VSP_GEN_PEERS("WinHann_32f", Window<Vsp32f>, WinHann32f);
  Register("WinKaiser_32f", "vsp", kSizes, 4,
           Window<Vsp32f>([](auto s, auto d, long long n) { vspsWinKaiser_32f(s, d, int(n), 20.0f / n); }));
  Register("WinKaiser_32f", "loop", kSizes, 4,
           Window<Vsp32f>([](auto s, auto d, long long n) { loop_sse3::WinKaiser32f(s, d, n, 20.0f / n); }));
  Register("WinBlackmanOpt_64f", "vsp", kSizes, 8,
           Window<Vsp64f>([](auto s, auto d, long long n) { vspsWinBlackmanOpt_64f(s, d, int(n)); }));
  Register("WinBlackmanOpt_64f", "loop", kSizes, 8, Window<Vsp64f>([](auto s, auto d, long long n) { loop_sse3::WinBlackmanOpt64f(s, d, n); }));
  for (VspHintAlgorithm h : {vspAlgHintNone, vspAlgHintFast})
    Register(h == vspAlgHintFast ? "Tone_32f_fast" : "Tone_32f", "vsp", kSizes, 4, Fill([h](Vsp32f* d, long long n) {
               Vsp32f ph = 0.5f;
               vspsTone_32f(d, int(n), 1.0f, 0.0123f, &ph, h);
             }));
  for (const char* k : {"Tone_32f", "Tone_32f_fast"})
    Register(k, "loop", kSizes, 4, Fill([](Vsp32f* d, long long n) { loop_sse3::Tone32f(d, n, 1.0f, 0.0123f, 0.5f); }));
  Register("Triangle_32f", "vsp", kSizes, 4, Fill([](Vsp32f* d, long long n) {
             Vsp32f ph = 0.5f;
             vspsTriangle_32f(d, int(n), 1.0f, 0.0123f, 0.0f, &ph);
           }));
  Register("Triangle_32f", "loop", kSizes, 4, Fill([](Vsp32f* d, long long n) { loop_sse3::Triangle32f(d, n, 1.0f, 0.0123f, 0.5f); }));
  Register("RandUniform_32f", "vsp", kSizes, 4,
           Random<VspRandUniState_32f, vspsRandUniformGetSize_32f, vspsRandUniformInit_32f, vspsRandUniform_32f>(-1.0f, 1.0f));
  Register("RandUniform_32f", "std", kSizes, 4, Fill([](Vsp32f* d, long long n) { loop_sse3::RandUniform32f(d, n, 1u); }));
  Register("RandGauss_32f", "vsp", kSizes, 4,
           Random<VspRandGaussState_32f, vspsRandGaussGetSize_32f, vspsRandGaussInit_32f, vspsRandGauss_32f>(0.0f, 1.0f));
  Register("RandGauss_32f", "std", kSizes, 4, Fill([](Vsp32f* d, long long n) { loop_sse3::RandGauss32f(d, n, 1u); }));
  return 0;
}();

}  // namespace
}  // namespace vspbench
