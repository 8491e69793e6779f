// Reductions, norms and dot products against plain loops (compiled for SSE3 and for this
// machine) and against the load limit (aligned 16-byte loads of the same bytes), at 4,096
// elements (in cache) and 4,194,304 (in memory).
#include "harness.h"
#include "machine_limits.h"
#include "peers/stats.h"

namespace vspbench {
namespace {

const std::vector<long long> kSizes = {4096, 4194304};

// Values in [-1, 1) (floats) or [-1000, 1000] (integers) at every base position of n elements.
template <class T> struct BaseType { using Type = T; };
template <> struct BaseType<Vsp32fc> { using Type = Vsp32f; };
template <class T>
void FillBench(T* data, long long n, long long mul) {
  using B = typename BaseType<T>::Type;
  B* p = reinterpret_cast<B*>(data);
  for (long long i = 0; i < n * static_cast<long long>(sizeof(T) / sizeof(B)); ++i)
    p[i] = static_cast<B>(std::is_floating_point_v<B> ? static_cast<double>((i * mul) % 2001) / 1000 - 1
                                                      : static_cast<double>((i * mul) % 2001 - 1000));
}

// A body over one or two sources of T; f returns a value to keep.
template <class T, class F>
Body Reduce(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<T> a(n), b(n);
    FillBench(a.data, n, 7919);
    FillBench(b.data, n, 104729);
    for (auto _ : st) {
      auto r = f(a.data, b.data, n);
      benchmark::DoNotOptimize(r);
    }
  };
}

// The load limit of a case reading `bytes` per element.
void RegisterLoadLimit(const char* kase, size_t bytes) {
  Register(kase, "limit", kSizes, static_cast<double>(bytes), [bytes](benchmark::State& st, long long n) {
    Buffer<unsigned char> src(n * bytes);
    for (auto _ : st) {
      auto r = LimitLoad(src.data, n * bytes & ~size_t{63});
      benchmark::DoNotOptimize(r);
    }
  });
}

#define VSP_PEERS(kase, T, bytes, loop)                                          \
  Register(kase, "loop", kSizes, bytes, Reduce<T>(loop(loop_sse3)));             \
  Register(kase, "loop-native", kSizes, bytes, Reduce<T>(loop(loop_native)));    \
  RegisterLoadLimit(kase, bytes)

const int kRegistered = [] {
  Register("Sum_32f_accurate", "vsp", kSizes, 4, Reduce<Vsp32f>([](auto a, auto, long long n) {
             Vsp32f r; vspsSum_32f(a, static_cast<int>(n), &r, vspAlgHintAccurate); return r; }));
  Register("Sum_32f_fast", "vsp", kSizes, 4, Reduce<Vsp32f>([](auto a, auto, long long n) {
             Vsp32f r; vspsSum_32f(a, static_cast<int>(n), &r, vspAlgHintFast); return r; }));
#define SUM(ns) [](auto a, auto, long long n) { return ns::Sum32f(a, n); }
  VSP_PEERS("Sum_32f_accurate", Vsp32f, 4, SUM);
  VSP_PEERS("Sum_32f_fast", Vsp32f, 4, SUM);

  Register("Mean_64f", "vsp", kSizes, 8, Reduce<Vsp64f>([](auto a, auto, long long n) {
             Vsp64f r; vspsMean_64f(a, static_cast<int>(n), &r); return r; }));
#define MEAN(ns) [](auto a, auto, long long n) { return ns::Mean64f(a, n); }
  VSP_PEERS("Mean_64f", Vsp64f, 8, MEAN);

  Register("StdDev_32f", "vsp", kSizes, 4, Reduce<Vsp32f>([](auto a, auto, long long n) {
             Vsp32f r; vspsStdDev_32f(a, static_cast<int>(n), &r, vspAlgHintAccurate); return r; }));
  Register("StdDev_32f_fast", "vsp", kSizes, 4, Reduce<Vsp32f>([](auto a, auto, long long n) {
             Vsp32f r; vspsStdDev_32f(a, static_cast<int>(n), &r, vspAlgHintFast); return r; }));
#define STDDEV(ns) [](auto a, auto, long long n) { return ns::StdDev32f(a, n); }
  VSP_PEERS("StdDev_32f", Vsp32f, 4, STDDEV);
  VSP_PEERS("StdDev_32f_fast", Vsp32f, 4, STDDEV);

  Register("MaxIndx_32f", "vsp", kSizes, 4, Reduce<Vsp32f>([](auto a, auto, long long n) {
             Vsp32f m; int i; vspsMaxIndx_32f(a, static_cast<int>(n), &m, &i); return i; }));
#define MAXINDX(ns) [](auto a, auto, long long n) { Vsp32f m; return ns::MaxIndx32f(a, n, &m); }
  VSP_PEERS("MaxIndx_32f", Vsp32f, 4, MAXINDX);

  Register("MinMax_16s", "vsp", kSizes, 2, Reduce<Vsp16s>([](auto a, auto, long long n) {
             Vsp16s lo, hi; vspsMinMax_16s(a, static_cast<int>(n), &lo, &hi); return lo + hi; }));
#define MINMAX(ns) [](auto a, auto, long long n) { Vsp16s lo, hi; ns::MinMax16s(a, n, &lo, &hi); return lo + hi; }
  VSP_PEERS("MinMax_16s", Vsp16s, 2, MINMAX);

  Register("Norm_L2_32f", "vsp", kSizes, 4, Reduce<Vsp32f>([](auto a, auto, long long n) {
             Vsp32f r; vspsNorm_L2_32f(a, static_cast<int>(n), &r); return r; }));
#define NORM(ns) [](auto a, auto, long long n) { return ns::NormL2_32f(a, n); }
  VSP_PEERS("Norm_L2_32f", Vsp32f, 4, NORM);

  Register("DotProd_32f", "vsp", kSizes, 8, Reduce<Vsp32f>([](auto a, auto b, long long n) {
             Vsp32f r; vspsDotProd_32f(a, b, static_cast<int>(n), &r); return r; }));
#define DOT(ns) [](auto a, auto b, long long n) { return ns::DotProd32f(a, b, n); }
  VSP_PEERS("DotProd_32f", Vsp32f, 8, DOT);

  Register("DotProd_32fc", "vsp", kSizes, 16, Reduce<Vsp32fc>([](auto a, auto b, long long n) {
             Vsp32fc r; vspsDotProd_32fc(a, b, static_cast<int>(n), &r); return r.re; }));
#define DOTC(ns) [](auto a, auto b, long long n) { return ns::DotProd32fc(a, b, n).re; }
  VSP_PEERS("DotProd_32fc", Vsp32fc, 16, DOTC);
  return 0;
}();

}  // namespace
}  // namespace vspbench
