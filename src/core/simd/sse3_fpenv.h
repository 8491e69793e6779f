// The SSE control register (MXCSR) around kernels whose results depend on it.
//
// A kernel that rounds in floating point opens a RoundingScope for the whole call: the scope saves
// the caller's register, selects the rounding mode the kernel needs and clears
// denormals-are-zero and flush-to-zero (so subnormal inputs and results keep their values),
// writing the register only when one of these differs from the caller's setting. On leaving it
// restores the caller's control fields; exception flags that the kernel raised stay raised, as
// they would after any other floating-point code.
//
// The register is read and written behind compiler barriers, so no load or store of the kernel
// moves across them; kernel arithmetic always depends on loaded data and feeds stores.
#pragma once

#include <xmmintrin.h>

namespace vsp::simd {

// The rounding-control field (bits 13-14).
enum class Rounding : unsigned {
  kNearest = 0x0000,     // to nearest, ties to even
  kDown = 0x2000,        // toward -Inf
  kUp = 0x4000,          // toward +Inf
  kTowardZero = 0x6000,  // truncation
};

namespace fpenv {
constexpr unsigned kRoundingMask = 0x6000;
constexpr unsigned kFlushToZero = 0x8000;
constexpr unsigned kDenormalsAreZero = 0x0040;
constexpr unsigned kExceptionFlags = 0x003F;

inline unsigned Read() {
  asm volatile("" ::: "memory");
  return _mm_getcsr();
}
inline void Write(unsigned csr) {
  _mm_setcsr(csr);
  asm volatile("" ::: "memory");
}
}  // namespace fpenv

class RoundingScope {
 public:
  explicit RoundingScope(Rounding mode) : saved_(fpenv::Read()) {
    const unsigned want =
        (saved_ & ~(fpenv::kRoundingMask | fpenv::kFlushToZero | fpenv::kDenormalsAreZero)) |
        static_cast<unsigned>(mode);
    changed_ = want != saved_;
    if (changed_) fpenv::Write(want);
  }
  ~RoundingScope() {
    if (changed_) {
      const unsigned raised = fpenv::Read() & fpenv::kExceptionFlags;
      fpenv::Write(saved_ | raised);
    }
  }
  RoundingScope(const RoundingScope&) = delete;
  RoundingScope& operator=(const RoundingScope&) = delete;

 private:
  unsigned saved_;
  bool changed_;
};

}  // namespace vsp::simd
