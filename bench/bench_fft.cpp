// FFT: complex (interleaved, out of place) and real (forward into Perm, out of place) transforms
// of N = 2^4 .. 2^20 points in float and double, against FFTW 3 planned with FFTW_MEASURE for
// the same precision and placement; each case also reports the benchFFT figure "mflops":
// 5 N log2 N / t for complex and 2.5 N log2 N / t for real transforms. The packed-spectrum
// product and expansion run against plain loops.
#include <cmath>
#include <vector>

#include "harness.h"
#include "peers/fft.h"
#ifdef VSP_BENCH_HAVE_FFTW
#include <fftw3.h>
#endif

namespace vspbench {
namespace {

std::vector<long long> Pow2Sizes() {
  std::vector<long long> s;
  for (int k = 4; k <= 20; ++k) s.push_back(1LL << k);
  return s;
}
void Flops(benchmark::State& st, long long n, double perPoint) {
  const double lg = std::log2(static_cast<double>(n));
  st.counters["mflops"] = benchmark::Counter(perPoint * static_cast<double>(n) * lg * static_cast<double>(st.iterations()) / 1e6,
                                              benchmark::Counter::kIsRate);
}
int Order(long long n) { return static_cast<int>(std::lround(std::log2(static_cast<double>(n)))); }

// The members of one precision.
template <class T> struct Members;
#define VSP_BENCH_MEMBERS(t)                                  \
  template <> struct Members<Vsp##t> {                        \
    using Tc = Vsp##t##c;                                     \
    using SpecC = VspFFTSpec_C_##t##c;                        \
    using SpecR = VspFFTSpec_R_##t;                           \
    static constexpr auto GetSizeC = vspsFFTGetSize_C_##t##c; \
    static constexpr auto InitC = vspsFFTInit_C_##t##c;       \
    static constexpr auto FwdC = vspsFFTFwd_CToC_##t##c;      \
    static constexpr auto GetSizeR = vspsFFTGetSize_R_##t;    \
    static constexpr auto InitR = vspsFFTInit_R_##t;          \
    static constexpr auto FwdR = vspsFFTFwd_RToPerm_##t;      \
  };
VSP_BENCH_MEMBERS(32f)
VSP_BENCH_MEMBERS(64f)
#undef VSP_BENCH_MEMBERS

// vsp: spec, init and work buffers from the size query; complex (kReal false) or real forward.
template <class T, bool kReal> Body Vsp() {
  return [](benchmark::State& st, long long n) {
    using M = Members<T>;
    int sz[3];
    (kReal ? M::GetSizeR : M::GetSizeC)(Order(n), FFT_SCALE_NONE, vspAlgHintNone, &sz[0], &sz[1], &sz[2]);
    Buffer<Vsp8u> spec(sz[0]), init(sz[1] + 1), work(sz[2] + 1);
    Buffer<T> src(2 * n), dst(2 * n + 2);
    typename M::SpecC* pc = nullptr;
    typename M::SpecR* pr = nullptr;
    if (kReal) M::InitR(&pr, Order(n), FFT_SCALE_NONE, vspAlgHintNone, spec.data, init.data);
    else M::InitC(&pc, Order(n), FFT_SCALE_NONE, vspAlgHintNone, spec.data, init.data);
    for (auto _ : st) {
      if (kReal) M::FwdR(src.data, dst.data, pr, work.data);
      else M::FwdC(reinterpret_cast<const typename M::Tc*>(src.data), reinterpret_cast<typename M::Tc*>(dst.data), pc, work.data);
      benchmark::DoNotOptimize(dst.data);
      benchmark::ClobberMemory();
    }
    Flops(st, n, kReal ? 2.5 : 5.0);
  };
}

#ifdef VSP_BENCH_HAVE_FFTW
// FFTW: out-of-place plans made with FFTW_MEASURE on the benchmark's own buffers.
template <class T, bool kReal> Body Fftw() {
  return [](benchmark::State& st, long long n) {
    Buffer<T> src(2 * n), dst(2 * n + 2);
    const int ni = static_cast<int>(n);
    if constexpr (sizeof(T) == 4) {
      fftwf_plan p = kReal ? fftwf_plan_dft_r2c_1d(ni, src.data, reinterpret_cast<fftwf_complex*>(dst.data), FFTW_MEASURE)
                           : fftwf_plan_dft_1d(ni, reinterpret_cast<fftwf_complex*>(src.data),
                                               reinterpret_cast<fftwf_complex*>(dst.data), FFTW_FORWARD, FFTW_MEASURE);
      for (auto _ : st) {
        fftwf_execute(p);
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
      }
      fftwf_destroy_plan(p);
    } else {
      fftw_plan p = kReal ? fftw_plan_dft_r2c_1d(ni, src.data, reinterpret_cast<fftw_complex*>(dst.data), FFTW_MEASURE)
                          : fftw_plan_dft_1d(ni, reinterpret_cast<fftw_complex*>(src.data),
                                             reinterpret_cast<fftw_complex*>(dst.data), FFTW_FORWARD, FFTW_MEASURE);
      for (auto _ : st) {
        fftw_execute(p);
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
      }
      fftw_destroy_plan(p);
    }
    Flops(st, n, kReal ? 2.5 : 5.0);
  };
}
#endif

template <class T, bool kReal> void RegisterCase(const std::string& name) {
  const double bytes = kReal ? 2.0 * sizeof(T) : 4.0 * sizeof(T);
  Register(name, "vsp", Pow2Sizes(), bytes, Vsp<T, kReal>());
#ifdef VSP_BENCH_HAVE_FFTW
  Register(name, "fftw", Pow2Sizes(), bytes, Fftw<T, kReal>());
#endif
}

// Packed spectra: the Perm product and the expansion to a full spectrum, against plain loops.
Body Product(void (*f)(const Vsp32f*, const Vsp32f*, Vsp32f*, long long)) {
  return [f](benchmark::State& st, long long n) {
    Buffer<Vsp32f> a(n), b(n), d(n);
    for (auto _ : st) {
      f(a.data, b.data, d.data, n);
      benchmark::DoNotOptimize(d.data);
      benchmark::ClobberMemory();
    }
  };
}
Body Expand(void (*f)(const Vsp32f*, Vsp32fc*, long long)) {
  return [f](benchmark::State& st, long long n) {
    Buffer<Vsp32f> x(n);
    Buffer<Vsp32fc> y(n);
    for (auto _ : st) {
      f(x.data, y.data, n);
      benchmark::DoNotOptimize(y.data);
      benchmark::ClobberMemory();
    }
  };
}

const int kRegistered = [] {
  const auto sizes = ByteSizes64ToMiB64(4);
  Register("MulPerm_32f", "vsp", sizes, 12,
           Product([](const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n) { vspsMulPerm_32f(a, b, d, static_cast<int>(n)); }));
  Register("MulPerm_32f", "loop", sizes, 12, Product(loop_sse3::MulPerm32f));
  Register("MulPerm_32f", "native", sizes, 12, Product(loop_native::MulPerm32f));
  Register("ConjPerm_32fc", "vsp", sizes, 12,
           Expand([](const Vsp32f* x, Vsp32fc* y, long long n) { vspsConjPerm_32fc(x, y, static_cast<int>(n)); }));
  Register("ConjPerm_32fc", "loop", sizes, 12, Expand(loop_sse3::ConjPerm32fc));
  RegisterCase<Vsp32f, false>("FFT_C_32fc");
  RegisterCase<Vsp64f, false>("FFT_C_64fc");
  RegisterCase<Vsp32f, true>("FFT_R_32f");
  RegisterCase<Vsp64f, true>("FFT_R_64f");
  return 0;
}();

}  // namespace
}  // namespace vspbench
