// Benchmark cases as rows: one case (an operation at one size) measured for vsp and for each of
// its peers in the same run. Names are "<case>/<impl>/<size>"; the ratio table printed at the
// end gives, for every case and size, each peer's time divided by vsp's (above 1: vsp faster).
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vsp.h"

namespace vspbench {

// A body runs one operation on n elements; buffers are prepared once per benchmark.
using Body = std::function<void(benchmark::State&, long long n)>;

// Registers `impl` of `kase` at each size; bytesPerElement feeds the GB/s column.
void Register(const std::string& kase, const std::string& impl, const std::vector<long long>& sizes,
              double bytesPerElement, Body body);

// Byte sizes from 64 B to 64 MiB, in powers of four.
std::vector<long long> ByteSizes64ToMiB64(size_t elementBytes);

// Aligned buffer filled with a repeatable pattern.
template <class T>
struct Buffer {
  explicit Buffer(long long n, size_t offsetBytes = 0)
      : raw(static_cast<unsigned char*>(vspMalloc_L(static_cast<long long>(n * sizeof(T) + 64)))),
        data(reinterpret_cast<T*>(raw + offsetBytes)) {
    unsigned char* b = reinterpret_cast<unsigned char*>(data);
    for (size_t i = 0; i < n * sizeof(T); ++i) b[i] = static_cast<unsigned char>(i * 37 + 11);
  }
  ~Buffer() { vspFree(raw); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  unsigned char* raw;
  T* data;
};

}  // namespace vspbench
