// Conversion, logic and threshold cases against plain loops compiled for the library's target
// (loop) and for this machine (native), at 4,096 elements (in cache) and 1,048,576 (in memory).
// Sources hold ordinary values of the element type (no subnormals, which would time the
// processor's slow path rather than the code).
#include <cmath>

#include "harness.h"
#include "peers/convert.h"

namespace vspbench {
namespace {

const std::vector<long long> kSizes = {4096, 1048576};

template <class T>
void Fill(T* p, long long n) {
  for (long long i = 0; i < n; ++i) {
    const double x = std::sin(0.001 * static_cast<double>(i) * (1 + i % 7));
    if constexpr (std::is_floating_point_v<T>) p[i] = static_cast<T>(x * 40000.0);
    else if constexpr (std::is_same_v<T, Vsp32fc>) p[i] = {static_cast<float>(x * 3), static_cast<float>(x * x * 3 - 1)};
    else p[i] = static_cast<T>(static_cast<long long>(x * 1e9));
  }
}

// A body of one-source operations: f(src, dst, n).
template <class S, class D, class F>
Body Unary(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<S> src(n);
    Buffer<D> dst(n);
    Fill(src.data, n);
    for (auto _ : st) {
      f(src.data, dst.data, n);
      benchmark::DoNotOptimize(dst.data);
      benchmark::ClobberMemory();
    }
  };
}

template <class S, class D, class Vsp, class Loop, class Native>
void Case(const std::string& name, double bytes, Vsp vsp, Loop loop, Native native) {
  Register(name, "vsp", kSizes, bytes, Unary<S, D>(vsp));
  Register(name, "loop", kSizes, bytes, Unary<S, D>(loop));
  Register(name, "native", kSizes, bytes, Unary<S, D>(native));
}

const int kRegistered = [] {
  Case<Vsp16s, Vsp32f>("Convert_16s32f", 6, [](auto s, auto d, long long n) { vspsConvert_16s32f(s, d, static_cast<int>(n)); },
                       loop_sse3::Convert16s32f, loop_native::Convert16s32f);
  Case<Vsp32s, Vsp32f>("Convert_32s32f", 8, [](auto s, auto d, long long n) { vspsConvert_32s32f(s, d, static_cast<int>(n)); },
                       loop_sse3::Convert32s32f, loop_native::Convert32s32f);
  using Peer16s = void (*)(const Vsp32f*, Vsp16s*, long long, float);
  const struct {
    const char* name;
    VspRoundMode mode;
    Peer16s loop, native;
  } modes[] = {{"Convert_32f16s_Sfs_Zero", vspRndZero, loop_sse3::Convert32f16sZero, loop_native::Convert32f16sZero},
               {"Convert_32f16s_Sfs_Near", vspRndNear, loop_sse3::Convert32f16sNear, loop_native::Convert32f16sNear},
               {"Convert_32f16s_Sfs_HalfAway", vspRndHalfAway, loop_sse3::Convert32f16sHalfAway, loop_native::Convert32f16sHalfAway}};
  for (const auto& m : modes) {
    const VspRoundMode mode = m.mode;
    const Peer16s loop = m.loop, native = m.native;
    Case<Vsp32f, Vsp16s>(m.name, 6, [mode](auto s, auto d, long long n) { vspsConvert_32f16s_Sfs(s, d, static_cast<int>(n), mode, 1); },
                         [loop](auto s, auto d, long long n) { loop(s, d, n, 0.5f); },
                         [native](auto s, auto d, long long n) { native(s, d, n, 0.5f); });
  }
  Case<Vsp32f, Vsp8u>("Convert_32f8u_Sfs_Near", 5,
                      [](auto s, auto d, long long n) { vspsConvert_32f8u_Sfs(s, d, static_cast<int>(n), vspRndNear, 8); },
                      [](auto s, auto d, long long n) { loop_sse3::Convert32f8uNear(s, d, n, 1.0f / 256); },
                      [](auto s, auto d, long long n) { loop_native::Convert32f8uNear(s, d, n, 1.0f / 256); });
  using And = void (*)(const Vsp8u*, const Vsp8u*, Vsp8u*, long long);
  const And vspAnd = [](const Vsp8u* a, const Vsp8u* b, Vsp8u* d, long long n) { vspsAnd_8u(a, b, d, static_cast<int>(n)); };
  for (auto [impl, f] : {std::pair<const char*, And>{"vsp", vspAnd}, {"loop", loop_sse3::And8u}, {"native", loop_native::And8u}}) {
    Register("And_8u", impl, kSizes, 3, [f](benchmark::State& st, long long n) {
      Buffer<Vsp8u> a(n), b(n), d(n);
      for (auto _ : st) {
        f(a.data, b.data, d.data, n);
        benchmark::DoNotOptimize(d.data);
        benchmark::ClobberMemory();
      }
    });
  }
  Case<Vsp16s, Vsp16s>("RShiftC_16s", 4, [](auto s, auto d, long long n) { vspsRShiftC_16s(s, 3, d, static_cast<int>(n)); },
                       [](auto s, auto d, long long n) { loop_sse3::RShift16s(s, 3, d, n); },
                       [](auto s, auto d, long long n) { loop_native::RShift16s(s, 3, d, n); });
  Case<Vsp32f, Vsp32f>("Threshold_LT_32f", 8, [](auto s, auto d, long long n) { vspsThreshold_LT_32f(s, d, static_cast<int>(n), 100.0f); },
                       [](auto s, auto d, long long n) { loop_sse3::ThresholdLT32f(s, d, n, 100.0f); },
                       [](auto s, auto d, long long n) { loop_native::ThresholdLT32f(s, d, n, 100.0f); });
  Case<Vsp32f, Vsp32f>("Threshold_GTAbs_32f", 8,
                       [](auto s, auto d, long long n) { vspsThreshold_GTAbs_32f(s, d, static_cast<int>(n), 20000.0f); },
                       [](auto s, auto d, long long n) { loop_sse3::ThresholdGTAbs32f(s, d, n, 20000.0f); },
                       [](auto s, auto d, long long n) { loop_native::ThresholdGTAbs32f(s, d, n, 20000.0f); });
  const Vsp32fc value = {0.0f, 0.0f};
  Case<Vsp32fc, Vsp32fc>("Threshold_LTVal_32fc", 16,
                         [value](auto s, auto d, long long n) { vspsThreshold_LTVal_32fc(s, d, static_cast<int>(n), 1.5f, value); },
                         [value](auto s, auto d, long long n) { loop_sse3::ThresholdLTVal32fc(s, d, n, 1.5f, value); },
                         [value](auto s, auto d, long long n) { loop_native::ThresholdLTVal32fc(s, d, n, 1.5f, value); });
  return 0;
}();

}  // namespace
}  // namespace vspbench
