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

// A state: the block head, the generator, the parameters, the second float of a 64-bit output
// held over between calls, and for normal states the ziggurat tables behind the struct.
struct State {
  block::Head head;
  int32_t haveSpare;
  uint32_t spareBits;
  double a, b;  // low and high - low, or mean and stdDev
  Xoshiro gen;
  block::Off<double> edge, ratio;  // normal states: the ziggurat's layer edges and their ratios
};

// The ziggurat of the normal density f(x) = exp(-x^2 / 2): 128 layers of equal area kV, the base
// layer reaching to kR and carrying the tail.
constexpr int kLayers = 128;
constexpr double kR = 3.442619855899, kV = 9.91256303526217e-3;

template <class A> void LayGauss(A& arena, State* st) {
  const block::Off<double> edge = arena.template Take<double>(kLayers + 1), ratio = arena.template Take<double>(kLayers);
  if (st) st->edge = edge, st->ratio = ratio;
}
constexpr uintptr_t kAlign = 64;

template <class T> constexpr uint32_t kUniId = sizeof(T) == 2 ? block::kRandUniform_16s : sizeof(T) == 4 ? block::kRandUniform_32f : block::kRandUniform_64f;
template <class T> constexpr uint32_t kGaussId = sizeof(T) == 2 ? block::kRandGauss_16s : sizeof(T) == 4 ? block::kRandGauss_32f : block::kRandGauss_64f;

template <bool kGauss> VspStatus GetSize(int* pSize) {
  if (pSize == nullptr) return vspStatNullPtr;
  block::Arena arena(sizeof(State));
  if constexpr (kGauss) LayGauss(arena, nullptr);
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

// The generator is copied into locals for the loop (its words stay in registers) and stored back.
template <class T> void ownsUniform(T* d, long long n, State* st) {
  Xoshiro g = st->gen;
  if constexpr (std::is_same_v<T, Vsp32f>) {
    const float low = static_cast<float>(st->a), width = static_cast<float>(st->b), high = low + width, top = Below(high);
    auto value = [&](uint32_t bits24) {
      const float v = low + width * (static_cast<float>(bits24) * 0x1p-24f);
      return v < high ? v : top;
    };
    long long i = 0;
    if (st->haveSpare && n > 0) d[i++] = value(st->spareBits), st->haveSpare = 0;
    for (; i + 2 <= n; i += 2) {
      const uint64_t r = g.Next();
      d[i] = value(static_cast<uint32_t>(r >> 40));
      d[i + 1] = value(static_cast<uint32_t>(r >> 8) & 0xFFFFFF);
    }
    if (i < n) {
      const uint64_t r = g.Next();
      d[i] = value(static_cast<uint32_t>(r >> 40));
      st->haveSpare = 1, st->spareBits = static_cast<uint32_t>(r >> 8) & 0xFFFFFF;
    }
  } else if constexpr (std::is_same_v<T, Vsp64f>) {
    const double low = st->a, width = st->b, high = low + width, top = Below(high);
    for (long long i = 0; i < n; ++i) {
      const double v = low + width * g.Unit53();
      d[i] = v < high ? v : top;
    }
  } else {
    const double low = st->a, width = st->b;
    for (long long i = 0; i < n; ++i) d[i] = static_cast<T>(low + std::floor(g.Unit53() * width));
  }
  st->gen = g;
}

// ---- normal -------------------------------------------------------------------------------------

template <class T> VspStatus GaussInit(void* pState, T mean, T stdDev, uint32_t seed) {
  if (pState == nullptr) return vspStatNullPtr;
  if (!(stdDev >= 0)) return vspStatBadArg;
  State* st = Lay(pState, kGaussId<T>, mean, stdDev, seed);
  st->head.done = 0;  // finished again below, after the tables
  block::Arena arena(st, sizeof(State));
  LayGauss(arena, st);
  double* x = st->edge.In(st);
  double* q = st->ratio.In(st);
  double f = math::Exp(-0.5 * kR * kR);
  x[0] = kV / f, x[1] = kR, x[kLayers] = 0.0;
  for (int i = 2; i < kLayers; ++i) {
    x[i] = std::sqrt(-2.0 * math::Log(kV / x[i - 1] + f));
    f = math::Exp(-0.5 * x[i] * x[i]);
  }
  for (int i = 0; i < kLayers; ++i) q[i] = x[i + 1] / x[i];
  block::Finish(st);
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

// One standard normal variate by the ziggurat: a 64-bit output gives the layer (7 bits) and a
// signed 53-bit uniform u; inside the layer's rectangle below the next edge (about 99% of draws)
// the value is u x[i]; else the base layer samples the tail beyond kR (Marsaglia's method) and
// the other layers accept by the density between the two edges.
__attribute__((noinline)) double NormalSlow(Xoshiro& g, const double* x, const double* q, int i, double u);

// The fast path inline; the rare rest (about 1% of draws) out of line.
inline double Normal(Xoshiro& g, const double* x, const double* q) {
  const uint64_t r = g.Next();
  const int i = static_cast<int>(r & (kLayers - 1));
  const double u = static_cast<double>(r >> 11) * 0x1p-52 - 1.0;
  if (std::fabs(u) < q[i]) return u * x[i];
  return NormalSlow(g, x, q, i, u);
}

double NormalSlow(Xoshiro& g, const double* x, const double* q, int i, double u) {
  for (;;) {
    if (i == 0) {
      double t, y;
      do {
        t = -math::Log(1.0 - g.Unit53()) / kR;
        y = -math::Log(1.0 - g.Unit53());
      } while (y + y < t * t);
      return u < 0 ? -(kR + t) : kR + t;
    }
    const double v = u * x[i];
    const double f0 = math::Exp(-0.5 * (x[i] * x[i] - v * v)), f1 = math::Exp(-0.5 * (x[i + 1] * x[i + 1] - v * v));
    if (f1 + g.Unit53() * (f0 - f1) < 1.0) return v;
    const uint64_t r = g.Next();
    i = static_cast<int>(r & (kLayers - 1));
    u = static_cast<double>(r >> 11) * 0x1p-52 - 1.0;
    if (std::fabs(u) < q[i]) return u * x[i];
  }
}

template <class T> void ownsGauss(T* d, long long n, State* st) {
  const double* x = st->edge.In(st);
  const double* q = st->ratio.In(st);
  const double mean = st->a, sd = st->b;
  Xoshiro g = st->gen;
  for (long long i = 0; i < n; ++i) d[i] = FromDouble<T>(mean + sd * Normal(g, x, q));
  st->gen = g;
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
  VSP_IMPL(VspStatus, vspsRandUniformGetSize_##t, (int* pRandStateSize)) { return G::GetSize<false>(pRandStateSize); } \
  VSP_IMPL(VspStatus, vspsRandGaussGetSize_##t, (int* pRandStateSize)) { return G::GetSize<true>(pRandStateSize); }    \
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
