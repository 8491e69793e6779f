// Element-wise arithmetic against plain loops compiled for the library's target (-O3 -msse3) and
// for this machine (-O3 -march=native), at 256, 4,096, 65,536 and 4,194,304 elements.
#include "harness.h"
#include "peers/arith.h"

namespace vspbench {
namespace {

const std::vector<long long> kSizes = {256, 4096, 65536, 4194304};

// Repeatable operands: small integers, or floats away from 0.
template <class T> T Value(long long i) {
  if constexpr (std::is_same_v<T, Vsp32fc>) return {Value<Vsp32f>(i), Value<Vsp32f>(i + 1)};
  else if constexpr (std::is_floating_point_v<T>) return static_cast<T>(1 + (i * 37 % 1000)) * T(0.01);
  else return static_cast<T>(i * 2654435761u >> 7);
}

// Two sources and a destination of n elements each; f(a, b, d, n).
template <class T, class F>
Body Binary(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<T> a(n), b(n), d(n);
    for (long long i = 0; i < n; ++i) a.data[i] = Value<T>(i), b.data[i] = Value<T>(i * 7 + 3);
    for (auto _ : st) {
      f(a.data, b.data, d.data, n);
      benchmark::DoNotOptimize(d.data);
      benchmark::ClobberMemory();
    }
  };
}

template <class T, class Vsp, class Sse, class Native>
void Case(const std::string& name, double bytes, Vsp vsp, Sse sse, Native native) {
  Register(name, "vsp", kSizes, bytes, Binary<T>(vsp));
  Register(name, "loop-sse3", kSizes, bytes, Binary<T>(sse));
  Register(name, "loop-native", kSizes, bytes, Binary<T>(native));
}

#define VSP2(f) [](auto a, auto b, auto d, long long n) { f(a, b, d, static_cast<int>(n)); }
#define VSP2S(f, s) [](auto a, auto b, auto d, long long n) { f(a, b, d, static_cast<int>(n), s); }
#define PEER2S(ns, f, s) [](auto a, auto b, auto d, long long n) { ns::f(a, b, d, n, s); }
#define PEERC(ns, f) [](auto a, auto, auto d, long long n) { ns::f(a, 1.5f, d, n); }

const int kRegistered = [] {
  Case<Vsp32f>("Add_32f", 12, VSP2(vspsAdd_32f), loop_sse3::Add32f, loop_native::Add32f);
  Case<Vsp32f>("Mul_32f", 12, VSP2(vspsMul_32f), loop_sse3::Mul32f, loop_native::Mul32f);
  Case<Vsp32f>("Div_32f", 12, VSP2(vspsDiv_32f), loop_sse3::Div32f, loop_native::Div32f);
  Case<Vsp32f>("MulC_32f", 8, [](auto a, auto, auto d, long long n) { vspsMulC_32f(a, 1.5f, d, static_cast<int>(n)); },
               PEERC(loop_sse3, MulC32f), PEERC(loop_native, MulC32f));
  Case<Vsp32fc>("Add_32fc", 24, VSP2(vspsAdd_32fc), loop_sse3::Add32fc, loop_native::Add32fc);
  Case<Vsp32fc>("Mul_32fc", 24, VSP2(vspsMul_32fc), loop_sse3::Mul32fc, loop_native::Mul32fc);
  Case<Vsp16s>("Add_16s_Sfs0", 6, VSP2S(vspsAdd_16s_Sfs, 0), PEER2S(loop_sse3, AddSfs16s, 0), PEER2S(loop_native, AddSfs16s, 0));
  Case<Vsp16s>("Add_16s_Sfs1", 6, VSP2S(vspsAdd_16s_Sfs, 1), PEER2S(loop_sse3, AddSfs16s, 1), PEER2S(loop_native, AddSfs16s, 1));
  Case<Vsp16s>("Add_16s_Sfs3", 6, VSP2S(vspsAdd_16s_Sfs, 3), PEER2S(loop_sse3, AddSfs16s, 3), PEER2S(loop_native, AddSfs16s, 3));
  Case<Vsp16s>("Mul_16s_Sfs15", 6, VSP2S(vspsMul_16s_Sfs, 15), PEER2S(loop_sse3, MulSfs16s, 15), PEER2S(loop_native, MulSfs16s, 15));
  Case<Vsp8u>("Add_8u_Sfs1", 3, VSP2S(vspsAdd_8u_Sfs, 1), PEER2S(loop_sse3, AddSfs8u, 1), PEER2S(loop_native, AddSfs8u, 1));
  Case<Vsp32s>("Mul_32s_Sfs31", 12, VSP2S(vspsMul_32s_Sfs, 31), PEER2S(loop_sse3, MulSfs32s, 31), PEER2S(loop_native, MulSfs32s, 31));
  return 0;
}();

}  // namespace
}  // namespace vspbench
