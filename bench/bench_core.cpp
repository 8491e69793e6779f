// Data movement: Copy, Set, Zero, Move against the C library; Flip and SwapBytes against plain
// loops; sizes from 64 bytes to 64 MiB.
#include <cstring>

#include "harness.h"
#include "machine_limits.h"
#include "peers/core.h"

namespace vspbench {
namespace {

// `width` elements of T make one element of the operation (3 bytes for the packed 24-bit type).
template <class T, class F>
Body Unary(F f, long long width = 1) {
  return [f, width](benchmark::State& st, long long n) {
    Buffer<T> src(n * width), dst(n * width);
    for (auto _ : st) {
      f(src.data, dst.data, n);
      benchmark::DoNotOptimize(dst.data);
      benchmark::ClobberMemory();
    }
  };
}

template <class T, class F>
Body Fill(F f) {
  return [f](benchmark::State& st, long long n) {
    Buffer<T> dst(n);
    for (auto _ : st) {
      f(dst.data, n);
      benchmark::DoNotOptimize(dst.data);
      benchmark::ClobberMemory();
    }
  };
}

// The SSE limit of a case that reads and writes `width` bytes per element (sizes rounded down to
// whole 64-byte blocks; in cache only, up to 256 KiB).
void RegisterCopyLimit(const char* kase, const std::vector<long long>& sizes, size_t width) {
  std::vector<long long> inCache;
  for (long long n : sizes)
    if (n * static_cast<long long>(width) >= 64 && n * static_cast<long long>(width) <= (256 << 10)) inCache.push_back(n);
  Register(kase, "limit", inCache, 2.0 * width, [width](benchmark::State& st, long long n) {
    Buffer<unsigned char> src(n * width), dst(n * width);
    for (auto _ : st) {
      LimitCopy(src.data, dst.data, n * width & ~size_t{63});
      benchmark::ClobberMemory();
    }
  });
}

void RegisterStoreLimit(const char* kase, const std::vector<long long>& sizes, size_t width) {
  std::vector<long long> inCache;
  for (long long n : sizes)
    if (n * static_cast<long long>(width) >= 64 && n * static_cast<long long>(width) <= (256 << 10)) inCache.push_back(n);
  Register(kase, "limit", inCache, static_cast<double>(width), [width](benchmark::State& st, long long n) {
    Buffer<unsigned char> dst(n * width);
    for (auto _ : st) {
      LimitStore(dst.data, n * width & ~size_t{63});
      benchmark::ClobberMemory();
    }
  });
}

const int kRegistered = [] {
  auto bytes = ByteSizes64ToMiB64(1);
  Register("Copy_8u", "vsp", bytes, 2, Unary<Vsp8u>([](auto s, auto d, long long n) { vspsCopy_8u(s, d, static_cast<int>(n)); }));
  Register("Copy_8u", "memcpy", bytes, 2, Unary<Vsp8u>([](auto s, auto d, long long n) { std::memcpy(d, s, n); }));
  Register("Copy_8u", "loop", bytes, 2, Unary<Vsp8u>(loop_sse3::Copy8u));

  Register("Move_8u", "vsp", bytes, 2, Unary<Vsp8u>([](auto s, auto d, long long n) { vspsMove_8u(s, d, static_cast<int>(n)); }));
  Register("Move_8u", "memmove", bytes, 2, Unary<Vsp8u>([](auto s, auto d, long long n) { std::memmove(d, s, n); }));

  Register("Zero_8u", "vsp", bytes, 1, Fill<Vsp8u>([](auto d, long long n) { vspsZero_8u(d, static_cast<int>(n)); }));
  Register("Zero_8u", "memset", bytes, 1, Fill<Vsp8u>([](auto d, long long n) { std::memset(d, 0, n); }));
  Register("Zero_8u", "loop", bytes, 1, Fill<Vsp8u>(loop_sse3::Zero8u));

  auto floats = ByteSizes64ToMiB64(4);
  Register("Set_32f", "vsp", floats, 4, Fill<Vsp32f>([](auto d, long long n) { vspsSet_32f(1.25f, d, static_cast<int>(n)); }));
  Register("Set_32f", "memset-like", floats, 4, Fill<Vsp32f>([](auto d, long long n) { std::memset(d, 0x3F, n * 4); }));
  Register("Set_32f", "loop", floats, 4, Fill<Vsp32f>([](auto d, long long n) { loop_sse3::Set32f(1.25f, d, n); }));
  Register("Set_8u", "vsp", bytes, 1, Fill<Vsp8u>([](auto d, long long n) { vspsSet_8u(7, d, static_cast<int>(n)); }));
  Register("Set_8u", "memset", bytes, 1, Fill<Vsp8u>([](auto d, long long n) { std::memset(d, 7, n); }));

  Register("Flip_8u", "vsp", bytes, 2, Unary<Vsp8u>([](auto s, auto d, long long n) { vspsFlip_8u(s, d, static_cast<int>(n)); }));
  Register("Flip_8u", "loop", bytes, 2, Unary<Vsp8u>(loop_sse3::Flip8u));
  auto shorts = ByteSizes64ToMiB64(2);
  Register("Flip_16u", "vsp", shorts, 4, Unary<Vsp16u>([](auto s, auto d, long long n) { vspsFlip_16u(s, d, static_cast<int>(n)); }));
  Register("Flip_16u", "loop", shorts, 4, Unary<Vsp16u>(loop_sse3::Flip16u));
  Register("Flip_32f", "vsp", floats, 8, Unary<Vsp32f>([](auto s, auto d, long long n) { vspsFlip_32f(s, d, static_cast<int>(n)); }));
  Register("Flip_32f", "loop", floats, 8, Unary<Vsp32f>(loop_sse3::Flip32f));
  auto cplx = ByteSizes64ToMiB64(16);
  Register("Flip_64fc", "vsp", cplx, 32, Unary<Vsp64fc>([](auto s, auto d, long long n) { vspsFlip_64fc(s, d, static_cast<int>(n)); }));
  Register("Flip_64fc", "loop", cplx, 32, Unary<Vsp64fc>(loop_sse3::Flip64fc));

  Register("SwapBytes_16u", "vsp", shorts, 4, Unary<Vsp16u>([](auto s, auto d, long long n) { vspsSwapBytes_16u(s, d, static_cast<int>(n)); }));
  Register("SwapBytes_16u", "loop", shorts, 4, Unary<Vsp16u>(loop_sse3::Swap16u));
  Register("SwapBytes_32u", "vsp", floats, 8, Unary<Vsp32u>([](auto s, auto d, long long n) { vspsSwapBytes_32u(s, d, static_cast<int>(n)); }));
  Register("SwapBytes_32u", "loop", floats, 8, Unary<Vsp32u>(loop_sse3::Swap32u));
  auto longs = ByteSizes64ToMiB64(8);
  Register("SwapBytes_64u", "vsp", longs, 16, Unary<Vsp64u>([](auto s, auto d, long long n) { vspsSwapBytes_64u(s, d, static_cast<int>(n)); }));
  Register("SwapBytes_64u", "loop", longs, 16, Unary<Vsp64u>(loop_sse3::Swap64u));
  std::vector<long long> triples;
  for (long long b : bytes) triples.push_back(b / 3 > 0 ? b / 3 : 1);
  Register("SwapBytes_24u", "vsp", triples, 6, Unary<Vsp8u>([](auto s, auto d, long long n) { vspsSwapBytes_24u(s, d, static_cast<int>(n)); }, 3));
  Register("SwapBytes_24u", "loop", triples, 6, Unary<Vsp8u>(loop_sse3::Swap24u, 3));

  RegisterCopyLimit("Copy_8u", bytes, 1);
  RegisterStoreLimit("Zero_8u", bytes, 1);
  RegisterStoreLimit("Set_32f", floats, 4);
  RegisterCopyLimit("Flip_8u", bytes, 1);
  RegisterCopyLimit("Flip_16u", shorts, 2);
  RegisterCopyLimit("Flip_32f", floats, 4);
  RegisterCopyLimit("Flip_64fc", cplx, 16);
  RegisterCopyLimit("SwapBytes_16u", shorts, 2);
  RegisterCopyLimit("SwapBytes_32u", floats, 4);
  RegisterCopyLimit("SwapBytes_64u", longs, 8);
  RegisterCopyLimit("SwapBytes_24u", triples, 3);
  return 0;
}();

}  // namespace
}  // namespace vspbench
