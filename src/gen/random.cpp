// Random generators: uniform and normal vectors from xoshiro256** states in caller memory.
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "core/block.h"
#include "core/check.h"
#include "core/impl.h"
#include "math/scalar.h"

namespace vsp::gen {
namespace {

// ---- the generator ------------------------------------------------------------------------------

inline uint64_t Rotl(uint64_t x, int k) { return (x << k) | (x >> (64 - k)); }

struct Xoshiro {
  uint64_t s[4];
  void Seed(uint32_t seed) {
    uint64_t z = seed;
    for (uint64_t& w : s) {  // splitmix64
      z += 0x9E3779B97F4A7C15ULL;
      uint64_t x = z;
      x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
      x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
      w = x ^ (x >> 31);
    }
  }
  uint64_t Next() {
    const uint64_t r = Rotl(s[1] * 5, 7) * 9, t = s[1] << 17;
    s[2] ^= s[0], s[3] ^= s[1], s[1] ^= s[2], s[0] ^= s[3];
    s[2] ^= t;
    s[3] = Rotl(s[3], 45);
    return r;
  }
  double Unit53() { return static_cast<double>(Next() >> 11) * 0x1p-53; }
};

// A state: the block head, the generator, the parameters, and the sample held over between calls
// (the second float of a 64-bit output, the second normal of a Box-Muller pair).
struct State {
  block::Head head;
  int32_t haveSpare;
  uint32_t spareBits;
  double a, b;  // low and high - low, or mean and stdDev
  double spare;
  Xoshiro gen;
};
constexpr uintptr_t kAlign = 64;

template <class T> constexpr uint32_t kUniId = sizeof(T) == 2 ? block::kRandUniform_16s : sizeof(T) == 4 ? block::kRandUniform_32f : block::kRandUniform_64f;
template <class T> constexpr uint32_t kGaussId = sizeof(T) == 2 ? block::kRandGauss_16s : sizeof(T) == 4 ? block::kRandGauss_32f : block::kRandGauss_64f;

VspStatus GetSize(int* pSize) {
  if (pSize == nullptr) return vspStatNullPtr;
  block::Arena arena(sizeof(State));
  *pSize = static_cast<int>(block::SizeWithSlack(arena.Bytes(), kAlign));
  return vspStatOk;
}

State* Lay(void* mem, uint32_t id, double a, double b, uint32_t seed) {
  State* st = block::AlignUp<State>(static_cast<unsigned char*>(mem), kAlign);
  block::Begin(st, id);
  st->a = a, st->b = b;
  st->gen.Seed(seed);
  block::Finish(st);
  return st;
}

// ---- uniform ------------------------------------------------------------------------------------

template <class T> VspStatus UniformInit(void* pState, T low, T high, uint32_t seed) {
  if (pState == nullptr) return vspStatNullPtr;
  if (!(low < high)) return vspStatBadArg;
  Lay(pState, kUniId<T>, low, static_cast<double>(high) - static_cast<double>(low), seed);
  return vspStatOk;
}

// The largest T below x.
template <class T> T Below(T x) { return std::nextafter(x, -INFINITY); }

template <class T> void ownsUniform(T* d, long long n, State* st) {
  if constexpr (std::is_same_v<T, Vsp32f>) {
    const float low = static_cast<float>(st->a), width = static_cast<float>(st->b), high = low + width;
    auto put = [&](long long i, uint32_t bits24) {
      const float v = low + width * (static_cast<float>(bits24) * 0x1p-24f);
      d[i] = v < high ? v : Below(high);
    };
    long long i = 0;
    if (st->haveSpare && n > 0) put(i++, st->spareBits), st->haveSpare = 0;
    for (; i + 2 <= n; i += 2) {
      const uint64_t r = st->gen.Next();
      put(i, static_cast<uint32_t>(r >> 40));
      put(i + 1, static_cast<uint32_t>(r >> 8) & 0xFFFFFF);
    }
    if (i < n) {
      const uint64_t r = st->gen.Next();
      put(i, static_cast<uint32_t>(r >> 40));
      st->haveSpare = 1, st->spareBits = static_cast<uint32_t>(r >> 8) & 0xFFFFFF;
    }
  } else if constexpr (std::is_same_v<T, Vsp64f>) {
    const double low = st->a, width = st->b, high = low + width;
    for (long long i = 0; i < n; ++i) {
      const double v = low + width * st->gen.Unit53();
      d[i] = v < high ? v : Below(high);
    }
  } else {
    const double low = st->a, width = st->b;
    for (long long i = 0; i < n; ++i) d[i] = static_cast<T>(low + std::floor(st->gen.Unit53() * width));
  }
}

// ---- normal -------------------------------------------------------------------------------------

template <class T> VspStatus GaussInit(void* pState, T mean, T stdDev, uint32_t seed) {
  if (pState == nullptr) return vspStatNullPtr;
  if (!(stdDev >= 0)) return vspStatBadArg;
  Lay(pState, kGaussId<T>, mean, stdDev, seed);
  return vspStatOk;
}

template <class T> inline T FromDouble(double v) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(v);
  } else {
    const double r = std::trunc(v + std::copysign(0.5, v));
    return r <= -32768.0 ? T(-32768) : r >= 32767.0 ? T(32767) : static_cast<T>(r);
  }
}

template <class T> void ownsGauss(T* d, long long n, State* st) {
  constexpr double kTwoPi = 6.283185307179586;
  long long i = 0;
  if (st->haveSpare && n > 0) d[i++] = FromDouble<T>(st->a + st->b * st->spare), st->haveSpare = 0;
  for (; i < n; i += 2) {
    const double u1 = 1.0 - st->gen.Unit53(), u2 = st->gen.Unit53();
    const double r = std::sqrt(-2.0 * math::Log(u1)), t = kTwoPi * u2;
    const double z0 = r * math::Cos(t), z1 = r * math::Sin(t);
    d[i] = FromDouble<T>(st->a + st->b * z0);
    if (i + 1 < n) d[i + 1] = FromDouble<T>(st->a + st->b * z1);
    else st->haveSpare = 1, st->spare = z1;
  }
}

template <class T, bool kGauss> VspStatus Generate(T* pDst, int len, void* pState) {
  State* st = nullptr;
  if (VspStatus s = block::Open(pState, kGauss ? kGaussId<T> : kUniId<T>, kAlign, &st)) return s;
  if (VspStatus s = CheckVec(len, pDst)) return s;
  if constexpr (kGauss) ownsGauss(pDst, len, st);
  else ownsUniform(pDst, len, st);
  return vspStatOk;
}

}  // namespace
}  // namespace vsp::gen

namespace G = vsp::gen;

#define VSP_RAND(t)                                                                                              \
  VSP_IMPL(VspStatus, vspsRandUniformGetSize_##t, (int* pRandStateSize)) { return G::GetSize(pRandStateSize); } \
  VSP_IMPL(VspStatus, vspsRandGaussGetSize_##t, (int* pRandStateSize)) { return G::GetSize(pRandStateSize); }   \
  VSP_IMPL(VspStatus, vspsRandUniformInit_##t,                                                                   \
           (VspRandUniState_##t * pRandState, Vsp##t low, Vsp##t high, unsigned int seed)) {                     \
    return G::UniformInit(pRandState, low, high, seed);                                                          \
  }                                                                                                              \
  VSP_IMPL(VspStatus, vspsRandGaussInit_##t,                                                                     \
           (VspRandGaussState_##t * pRandState, Vsp##t mean, Vsp##t stdDev, unsigned int seed)) {                \
    return G::GaussInit(pRandState, mean, stdDev, seed);                                                         \
  }                                                                                                              \
  VSP_IMPL(VspStatus, vspsRandUniform_##t, (Vsp##t * pDst, int len, VspRandUniState_##t * pRandState)) {         \
    return G::Generate<Vsp##t, false>(pDst, len, pRandState);                                                    \
  }                                                                                                              \
  VSP_IMPL(VspStatus, vspsRandGauss_##t, (Vsp##t * pDst, int len, VspRandGaussState_##t * pRandState)) {         \
    return G::Generate<Vsp##t, true>(pDst, len, pRandState);                                                     \
  }

VSP_RAND(16s)
VSP_RAND(32f)
VSP_RAND(64f)
