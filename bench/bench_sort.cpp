// Sorting: the comparison sort and the radix sort of random floats against std::sort, at 1,000
// and 1,000,000 elements. Every iteration sorts a fresh copy of the same unsorted vector; the copy
// is timed for the small size (where pausing the clock would cost more than it) and left out of
// the large one.
#include <algorithm>
#include <cstring>
#include <random>

#include "harness.h"

namespace vspbench {
namespace {

constexpr long long kPauseFrom = 100000;

template <class F>
Body SortFloats(F sort) {
  return [sort](benchmark::State& st, long long n) {
    Buffer<Vsp32f> src(n), work(n);
    std::mt19937 gen(42);
    std::uniform_real_distribution<float> dist(-1000.0f, 1000.0f);
    for (long long i = 0; i < n; ++i) src.data[i] = dist(gen);
    for (auto _ : st) {
      if (n >= kPauseFrom) st.PauseTiming();
      std::memcpy(work.data, src.data, static_cast<size_t>(n) * sizeof(Vsp32f));
      if (n >= kPauseFrom) st.ResumeTiming();
      sort(work.data, n);
      benchmark::DoNotOptimize(work.data);
      benchmark::ClobberMemory();
    }
  };
}

const int kRegistered = [] {
  const std::vector<long long> sizes = {1000, 1000000};
  auto stdSort = SortFloats([](Vsp32f* p, long long n) { std::sort(p, p + n); });

  Register("SortAscend_32f_I", "vsp", sizes, 4,
           SortFloats([](Vsp32f* p, long long n) { vspsSortAscend_32f_I(p, static_cast<int>(n)); }));
  Register("SortAscend_32f_I", "std::sort", sizes, 4, stdSort);

  // The work buffer is allocated once per size, outside the timed loop, as a caller would.
  Register("SortRadixAscend_32f_I", "vsp", sizes, 4, [](benchmark::State& st, long long n) {
    int bytes = 0;
    vspsSortRadixGetBufferSize(static_cast<int>(n), vsp32f, &bytes);
    Vsp8u* buffer = vspsMalloc_8u(bytes);
    SortFloats([buffer](Vsp32f* p, long long m) { vspsSortRadixAscend_32f_I(p, static_cast<int>(m), buffer); })(st, n);
    vspsFree(buffer);
  });
  Register("SortRadixAscend_32f_I", "std::sort", sizes, 4, stdSort);
  return 0;
}();

}  // namespace
}  // namespace vspbench
