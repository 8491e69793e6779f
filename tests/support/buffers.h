// Test buffers: vectors that end against an inaccessible page, canary patterns, and seeded
// random data.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace vsptest {

// Bytes of the canary pattern that fills outputs before a call which must not write them.
inline unsigned char CanaryByte(size_t i) { return static_cast<unsigned char>(0xA5 ^ (i * 29)); }

// n elements of T whose first byte sits at `misalign` bytes past a 16-byte boundary and whose
// end is as close as that allows (0..15 bytes) to a page that may not be touched: a write or a
// read running past the end faults, and the bytes between the end and the page carry a canary
// that TailIntact() checks. The bytes in front of the data carry the canary too.
template <class T>
class GuardedVec {
 public:
  explicit GuardedVec(size_t n, size_t misalign = 0) : n_(n) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t bytes = n * sizeof(T);
    const size_t data_pages = (bytes + 64 + page - 1) / page + 1;
    map_bytes_ = (data_pages + 1) * page;
    void* m = mmap(nullptr, map_bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (m == MAP_FAILED) std::abort();
    map_ = static_cast<unsigned char*>(m);
    unsigned char* guard = map_ + data_pages * page;
    mprotect(guard, page, PROT_NONE);
    // Highest start with the wanted alignment such that start + bytes <= guard.
    uintptr_t start = reinterpret_cast<uintptr_t>(guard) - bytes;
    start -= (start - misalign) & 15;
    data_ = reinterpret_cast<T*>(start);
    front_ = map_;
    for (unsigned char* p = map_; p < guard; ++p) *p = CanaryByte(static_cast<size_t>(p - map_));
  }
  GuardedVec(const GuardedVec&) = delete;
  GuardedVec& operator=(const GuardedVec&) = delete;
  ~GuardedVec() { munmap(map_, map_bytes_); }

  T* data() { return data_; }
  const T* data() const { return data_; }
  size_t size() const { return n_; }
  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }

  // True when no byte outside the n elements (in the mapped area) changed.
  bool OutsideIntact() const {
    const unsigned char* d = reinterpret_cast<const unsigned char*>(data_);
    const unsigned char* end = d + n_ * sizeof(T);
    const unsigned char* guard = map_ + map_bytes_ - static_cast<size_t>(sysconf(_SC_PAGESIZE));
    for (const unsigned char* p = front_; p < d; ++p)
      if (*p != CanaryByte(static_cast<size_t>(p - map_))) return false;
    for (const unsigned char* p = end; p < guard; ++p)
      if (*p != CanaryByte(static_cast<size_t>(p - map_))) return false;
    return true;
  }

 private:
  size_t n_;
  size_t map_bytes_;
  unsigned char* map_;
  unsigned char* front_;
  T* data_;
};

// A reproducible random source for one test.
class Rng {
 public:
  explicit Rng(uint64_t seed) : gen_(seed) {}
  uint64_t Bits() { return gen_(); }
  // Uniform integer in [lo, hi].
  long long Int(long long lo, long long hi) {
    return lo + static_cast<long long>(gen_() % static_cast<uint64_t>(hi - lo + 1));
  }
  double Uniform(double lo, double hi) { return lo + (hi - lo) * (static_cast<double>(gen_() >> 11) * 0x1.0p-53); }
  // Fills raw bytes.
  void FillBytes(void* p, size_t n) {
    auto* b = static_cast<unsigned char*>(p);
    for (size_t i = 0; i < n; ++i) b[i] = static_cast<unsigned char>(gen_() >> 56);
  }

 private:
  std::mt19937_64 gen_;
};

}  // namespace vsptest
