// Conversion kernels, written once for every pair of element formats.
//
// A conversion is a pipeline: the source format loads groups of four elements into 32-bit
// integer lanes (I4), float lanes (F4), double lanes (D4) or 64-bit integer lanes (L4); a step
// turns each group into a group of the destination format, which narrows and stores it. The
// loop runs the same step over whole vectors in the body and over one element at a time (the
// element copied into every lane) in the head and tail, so every path gives the same bits.
//
// Narrowing stores saturate where the instructions do (8- and 16-bit destinations); steps clamp
// where they do not (24-bit destinations, and float sources before their conversion to 32 bits).
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "arith/scale.h"
#include "core/simd/sse3.h"
#include "core/simd/sse3_fpenv.h"
#include "core/types.h"

namespace vsp::cvt {

namespace hw = vsp::simd;

using I4 = hw::Vec<Vsp32s>;
using F4 = hw::Vec<Vsp32f>;
struct D4 {
  hw::Vec<Vsp64f> lo, hi;
};
struct L4 {
  hw::Vec<Vsp64s> lo, hi;
};

// The rounding of a conversion to integers.
enum class Round { kZero, kNear, kHalfAway };

// rndMode of the rounding group: 0 toward zero, 1 to nearest (ties to even), any other value
// half away from zero.
inline Round RoundOf(int rndMode) {
  return rndMode == vspRndZero ? Round::kZero : rndMode == vspRndNear ? Round::kNear : Round::kHalfAway;
}

// The MXCSR rounding a kernel of that rounding runs under: half away from zero adds 0.5 to the
// magnitude, which must not round up (0.49999997f + 0.5f is 1 to nearest).
inline hw::Rounding HardwareRounding(Round r) {
  return r == Round::kHalfAway ? hw::Rounding::kTowardZero : hw::Rounding::kNearest;
}

// 2^e exactly, built from its bits, for e from the smallest subnormal power of F to the largest
// finite one.
template <class F>
F PowerOfTwo(int e) {
  using U = BitsOf<sizeof(F)>;
  constexpr int kMant = sizeof(F) == 4 ? 23 : 52, kBias = sizeof(F) == 4 ? 127 : 1023;
  const U bits = e >= 1 - kBias ? static_cast<U>(e + kBias) << kMant : U(1) << (e + kBias - 1 + kMant);
  F x;
  std::memcpy(&x, &bits, sizeof(x));
  return x;
}

// ---- formats --------------------------------------------------------------------------------

// Integers of 8 and 16 bits in 32-bit lanes. Stores saturate to the type.
template <class T>
struct SmallInt {
  using Elem = T;
  using Group = I4;
  static constexpr int kWidth = 1;                          // storage units per element
  static constexpr int kStep = hw::kLanes<T>;  // elements per vector
  static Group LoadOne(const T* p) { return hw::Set1<Vsp32s>(*p); }
  template <int kGroups>
  static void Load(const T* p, Group (&g)[kGroups]) {
    for (int v = 0; v < kGroups * hw::kLanes<Vsp32s> / kStep; ++v) {
      auto x = hw::LoadU(p + v * kStep);
      if constexpr (sizeof(T) == 1) {
        auto lo = hw::PromoteLo(x), hi = hw::PromoteHi(x);
        Group* o = g + 4 * v;
        o[0] = hw::BitCast<Vsp32s>(hw::PromoteLo(lo)), o[1] = hw::BitCast<Vsp32s>(hw::PromoteHi(lo));
        o[2] = hw::BitCast<Vsp32s>(hw::PromoteLo(hi)), o[3] = hw::BitCast<Vsp32s>(hw::PromoteHi(hi));
      } else {
        g[2 * v] = hw::BitCast<Vsp32s>(hw::PromoteLo(x)), g[2 * v + 1] = hw::BitCast<Vsp32s>(hw::PromoteHi(x));
      }
    }
  }
  // Saturating; a 16u destination takes lanes of at least INT32_MIN + 32768 (all that reach it).
  template <int kGroups>
  static void Store(const Group (&g)[kGroups], T* p) {
    for (int v = 0; v < kGroups * hw::kLanes<Vsp32s> / kStep; ++v) {
      if constexpr (std::is_same_v<T, Vsp8u> || std::is_same_v<T, Vsp8s>) {
        const Group* s = g + 4 * v;
        auto a = hw::NarrowSat16s(s[0], s[1]), b = hw::NarrowSat16s(s[2], s[3]);
        if constexpr (std::is_same_v<T, Vsp8u>) hw::StoreU(hw::NarrowSat8u(a, b), p + kStep * v);
        else hw::StoreU(hw::NarrowSat8s(a, b), p + kStep * v);
      } else if constexpr (std::is_same_v<T, Vsp16s>) {
        hw::StoreU(hw::NarrowSat16s(g[2 * v], g[2 * v + 1]), p + kStep * v);
      } else {
        hw::StoreU(hw::NarrowSat16u(g[2 * v], g[2 * v + 1]), p + kStep * v);
      }
    }
  }
};

// 32-bit integers (signed or unsigned bits) and floats, four to a vector.
template <class T>
struct Word {
  using Elem = T;
  using Group = std::conditional_t<std::is_same_v<T, Vsp32f>, F4, I4>;
  using Lane = std::conditional_t<std::is_same_v<T, Vsp32f>, Vsp32f, Vsp32s>;
  static constexpr int kWidth = 1;
  static constexpr int kStep = 4;
  static Group LoadOne(const T* p) { return hw::Set1<Lane>(static_cast<Lane>(*p)); }
  template <int kGroups>
  static void Load(const T* p, Group (&g)[kGroups]) {
    for (int k = 0; k < kGroups; ++k) g[k] = hw::LoadU(reinterpret_cast<const Lane*>(p) + 4 * k);
  }
  template <int kGroups>
  static void Store(const Group (&g)[kGroups], T* p) {
    for (int k = 0; k < kGroups; ++k) hw::StoreU(g[k], reinterpret_cast<Lane*>(p) + 4 * k);
  }
};

// 64-bit elements, two to a vector: doubles (D4) and signed integers (L4).
template <class T>
struct Wide {
  using Elem = T;
  using Group = std::conditional_t<std::is_same_v<T, Vsp64f>, D4, L4>;
  static constexpr int kWidth = 1;
  static constexpr int kStep = 4;
  static Group LoadOne(const T* p) { return {hw::Set1<T>(*p), hw::Set1<T>(*p)}; }
  template <int kGroups>
  static void Load(const T* p, Group (&g)[kGroups]) {
    for (int k = 0; k < kGroups; ++k) g[k] = {hw::LoadU(p + 4 * k), hw::LoadU(p + 4 * k + 2)};
  }
  template <int kGroups>
  static void Store(const Group (&g)[kGroups], T* p) {
    for (int k = 0; k < kGroups; ++k) hw::StoreU(g[k].lo, p + 4 * k), hw::StoreU(g[k].hi, p + 4 * k + 2);
  }
};

// Packed 24-bit samples, three bytes each, least significant first; sixteen fill three vectors.
// Stores keep the low three bytes of each lane (steps clamp to the 24-bit range first).
template <bool kSigned>
struct Packed24 {
  using Elem = Vsp8u;
  using Group = I4;
  static constexpr int kWidth = 3;
  // The byte shuffles below move four samples per 16-byte vector: a layer of another width gives
  // this format its own Load and Store.
  static_assert(hw::kVecBytes == 16, "packed 24-bit shuffles are written for 16-byte vectors");
  static constexpr int kStep = 16;

  static Group LoadOne(const Vsp8u* p) {
    Vsp32u u = p[0] | (static_cast<Vsp32u>(p[1]) << 8) | (static_cast<Vsp32u>(p[2]) << 16);
    if constexpr (kSigned) return hw::Set1<Vsp32s>(static_cast<Vsp32s>(u << 8) >> 8);
    else return hw::Set1<Vsp32s>(static_cast<Vsp32s>(u));
  }
  template <int kGroups>
  static void Load(const Vsp8u* p, Group (&g)[kGroups]) {
    for (int b = 0; b < kGroups / 4; ++b) {
      const Vsp8u* s = p + 48 * b;
      auto v0 = hw::LoadU(s), v1 = hw::LoadU(s + 16), v2 = hw::LoadU(s + 32);
      // Twelve bytes (four samples) at the bottom of each vector.
      hw::Vec<Vsp8u> x[4] = {v0, hw::Or(hw::ShiftBytesDown<12>(v0), hw::ShiftBytesUp<4>(v1)),
                             hw::Or(hw::ShiftBytesDown<8>(v1), hw::ShiftBytesUp<8>(v2)), hw::ShiftBytesDown<4>(v2)};
      for (int k = 0; k < 4; ++k) g[4 * b + k] = Spread(x[k]);
    }
  }
  template <int kGroups>
  static void Store(const Group (&g)[kGroups], Vsp8u* p) {
    for (int b = 0; b < kGroups / 4; ++b) {
      hw::Vec<Vsp8u> x[4];
      for (int k = 0; k < 4; ++k) x[k] = Gather(g[4 * b + k]);
      Vsp8u* d = p + 48 * b;
      hw::StoreU(hw::Or(x[0], hw::ShiftBytesUp<12>(x[1])), d);
      hw::StoreU(hw::Or(hw::ShiftBytesDown<4>(x[1]), hw::ShiftBytesUp<8>(x[2])), d + 16);
      hw::StoreU(hw::Or(hw::ShiftBytesDown<8>(x[2]), hw::ShiftBytesUp<4>(x[3])), d + 32);
    }
  }

 private:
  // Byte masks: lane k of a 32-bit lane vector (its low three bytes), and sample k of a packed run.
  struct Masks {
    Vsp8u lane[4][16], sample[4][16];
  };
  static constexpr Masks MakeMasks() {
    Masks m{};
    for (int k = 0; k < 4; ++k)
      for (int b = 0; b < 3; ++b) m.lane[k][4 * k + b] = 0xFF, m.sample[k][3 * k + b] = 0xFF;
    return m;
  }
  alignas(hw::kVecBytes) static constexpr Masks kMasks = MakeMasks();
  static hw::Vec<Vsp8u> M(const Vsp8u (&m)[16]) { return hw::Load(m); }

  // Four packed samples (bytes 0..11) to four lanes, sign-extended for 24s.
  static I4 Spread(hw::Vec<Vsp8u> x) {
    auto r = hw::Or(hw::Or(hw::And(x, M(kMasks.lane[0])), hw::And(hw::ShiftBytesUp<1>(x), M(kMasks.lane[1]))),
                    hw::Or(hw::And(hw::ShiftBytesUp<2>(x), M(kMasks.lane[2])), hw::And(hw::ShiftBytesUp<3>(x), M(kMasks.lane[3]))));
    I4 w = hw::BitCast<Vsp32s>(r);
    if constexpr (kSigned) w = hw::ShiftRight<8>(hw::ShiftLeft<8>(w));
    return w;
  }
  // Four lanes to four packed samples in bytes 0..11 (bytes 12..15 zero).
  static hw::Vec<Vsp8u> Gather(I4 w) {
    auto x = hw::BitCast<Vsp8u>(w);
    return hw::Or(hw::Or(hw::And(x, M(kMasks.sample[0])), hw::And(hw::ShiftBytesDown<1>(x), M(kMasks.sample[1]))),
                  hw::Or(hw::And(hw::ShiftBytesDown<2>(x), M(kMasks.sample[2])), hw::And(hw::ShiftBytesDown<3>(x), M(kMasks.sample[3]))));
  }
};

// IEEE half precision: as a source it loads exact float values (mode-independent integer and
// exact float steps); as a destination it stores the half bits that a step left in 32-bit lanes.
struct HalfSource {
  using Elem = Vsp16f;
  using Group = F4;
  static constexpr int kWidth = 1;
  static constexpr int kStep = 8;
  static Group LoadOne(const Vsp16f* p) { return Decode(hw::Set1<Vsp32s>(p->bits)); }
  template <int kGroups>
  static void Load(const Vsp16f* p, Group (&g)[kGroups]) {
    I4 bits[kGroups];
    SmallInt<Vsp16u>::Load(reinterpret_cast<const Vsp16u*>(p), bits);
    for (int k = 0; k < kGroups; ++k) g[k] = Decode(bits[k]);
  }
  // Half bits (zero-extended) to the float of the same value.
  static F4 Decode(I4 h) {
    const I4 magnitude = hw::And(h, hw::Set1<Vsp32s>(0x7FFF));
    const I4 exponent = hw::And(h, hw::Set1<Vsp32s>(0x7C00));
    const I4 shifted = hw::ShiftLeft<13>(magnitude);
    // Normal: rebias the exponent by 127 - 15; Inf and NaN: exponent 255, payload kept.
    const I4 special = hw::Eq(exponent, hw::Set1<Vsp32s>(0x7C00));
    const I4 normal = hw::Add(shifted, hw::Select(special, hw::Set1<Vsp32s>(0x70000000), hw::Set1<Vsp32s>(0x38000000)));
    // Zero and subnormal: fraction * 2^-24, exact in every rounding mode.
    const F4 tiny = hw::Mul(hw::ConvertToFloat(hw::And(h, hw::Set1<Vsp32s>(0x3FF))), hw::Set1<Vsp32f>(0x1p-24f));
    const I4 isTiny = hw::Eq(exponent, hw::Zero<Vsp32s>());
    const I4 value = hw::Select(isTiny, hw::BitCast<Vsp32s>(tiny), normal);
    const I4 sign = hw::ShiftLeft<16>(hw::And(h, hw::Set1<Vsp32s>(0x8000)));
    return hw::BitCast<Vsp32f>(hw::Or(value, sign));
  }
};

struct HalfBits : SmallInt<Vsp16u> {
  using Elem = Vsp16f;
  template <int kGroups>
  static void Store(const Group (&g)[kGroups], Vsp16f* p) {
    SmallInt<Vsp16u>::Store(g, reinterpret_cast<Vsp16u*>(p));
  }
};

// ---- the loop -------------------------------------------------------------------------------

// Elements to convert one by one before dst + head * bytes is 16-byte aligned; 0 when whole
// elements never reach a boundary; at most n.
inline long long HeadToAlign(const void* dst, int bytes, long long n) {
  const uintptr_t a = reinterpret_cast<uintptr_t>(dst);
  for (long long h = 0; h < hw::kVecBytes; ++h)
    if (((a + static_cast<uintptr_t>(h * bytes)) % hw::kVecBytes) == 0) return h < n ? h : n;
  return 0;
}

// One element: the source element in every lane, the step, the destination's own narrowing.
template <class SF, class DF, class Step>
inline void ConvertOne(const typename SF::Elem* s, typename DF::Elem* d, const Step& step) {
  constexpr int kOutGroups = DF::kStep < 4 ? 1 : DF::kStep / 4;
  using DG = typename DF::Group;
  const DG r = step(SF::LoadOne(s));
  DG g[kOutGroups];
  for (DG& x : g) x = r;
  alignas(hw::kVecBytes) typename DF::Elem tmp[kOutGroups * 4 * DF::kWidth];
  DF::Store(g, tmp);
  std::memcpy(d, tmp, sizeof(typename DF::Elem) * DF::kWidth);
}

template <class SF, class DF, class Step>
void ownsConvert(const typename SF::Elem* src, typename DF::Elem* dst, long long n, const Step& step) {
  // Sixteen elements a step: enough work per iteration that the loop control does not limit it.
  constexpr int kStep = std::max({16, SF::kStep, DF::kStep});
  constexpr int kGroups = kStep / 4;
  constexpr int kElemBytes = static_cast<int>(sizeof(typename DF::Elem)) * DF::kWidth;
  long long i = 0;
  for (const long long head = HeadToAlign(dst, kElemBytes, n); i < head; ++i)
    ConvertOne<SF, DF>(src + i * SF::kWidth, dst + i * DF::kWidth, step);
  for (const long long last = n - kStep; i <= last; i += kStep) {
    typename SF::Group in[kGroups];
    typename DF::Group out[kGroups];
    SF::Load(src + i * SF::kWidth, in);
    for (int k = 0; k < kGroups; ++k) out[k] = step(in[k]);
    DF::Store(out, dst + i * DF::kWidth);
  }
  for (; i < n; ++i) ConvertOne<SF, DF>(src + i * SF::kWidth, dst + i * DF::kWidth, step);
}

// ---- steps ------------------------------------------------------------------------------------

struct Same {
  template <class G>
  G operator()(G g) const { return g; }
};

// b(a(g)).
template <class A, class B>
struct Then {
  A a;
  B b;
  template <class G>
  auto operator()(G g) const { return b(a(g)); }
};
template <class A, class B>
Then(A, B) -> Then<A, B>;

// Integer lanes to float (rounded in the current mode above 2^24), times kFactors exact powers
// of two.
template <int kFactors>
struct IntToFloat {
  F4 f1, f2;
  F4 operator()(I4 x) const {
    F4 r = hw::ConvertToFloat(x);
    if constexpr (kFactors >= 1) r = hw::Mul(r, f1);
    if constexpr (kFactors >= 2) r = hw::Mul(r, f2);
    return r;
  }
};

// Integer or float lanes to double (exact), times kFactors powers of two.
template <int kFactors>
struct ToDouble {
  hw::Vec<Vsp64f> f1, f2;
  hw::Vec<Vsp64f> Scale(hw::Vec<Vsp64f> d) const {
    if constexpr (kFactors >= 1) d = hw::Mul(d, f1);
    if constexpr (kFactors >= 2) d = hw::Mul(d, f2);
    return d;
  }
  D4 operator()(I4 x) const {
    return {Scale(hw::ConvertLoToDouble(x)), Scale(hw::ConvertLoToDouble(hw::ShiftBytesDown<8>(x)))};
  }
  D4 operator()(F4 x) const { return {Scale(hw::PromoteLo(x)), Scale(hw::PromoteHi(x))}; }
  // 64-bit integers: hi * 2^32 + lo, both parts exact, one rounding (current mode) in the sum.
  D4 operator()(L4 x) const { return {Scale(FromInt64(x.lo)), Scale(FromInt64(x.hi))}; }

  static hw::Vec<Vsp64f> FromInt64(hw::Vec<Vsp64s> v) {
    // Lanes (lo0, lo1, hi0, hi1) of the two 64-bit values.
    const auto w = hw::BitCast<Vsp32s>(v);
    const auto parts = hw::InterleaveLo(w, hw::ShiftBytesDown<8>(w));
    const auto hi = hw::ConvertLoToDouble(hw::ShiftBytesDown<8>(parts));
    const auto loBiased = hw::ConvertLoToDouble(hw::Xor(parts, hw::Set1<Vsp32s>(INT32_MIN)));
    const auto lo = hw::Add(loBiased, hw::Set1<Vsp64f>(2147483648.0));
    return hw::Add(hw::Mul(hi, hw::Set1<Vsp64f>(4294967296.0)), lo);
  }
};

// Double lanes to float, rounded in the current mode.
struct ToFloat {
  F4 operator()(D4 x) const { return hw::Demote(x.lo, x.hi); }
};

// Float or double lanes to 32-bit integers: the value x * f1 (* f2) exactly (the factors are
// powers of two), NaN as 0, clamped to [lo, hi], rounded as kMode says. kHiIs2p31: hi is 2^31
// (a float destination range ending at INT32_MAX), which the conversion turns into INT32_MIN;
// those lanes are flipped to INT32_MAX.
template <class F, Round kMode, int kFactors, bool kHiIs2p31 = false>
struct RoundToInt {
  using V = hw::Vec<F>;
  V f1, f2, lo, hi;

  hw::Vec<Vsp32s> Lanes(V x) const {
    V v = x;
    if constexpr (kFactors >= 1) v = hw::Mul(v, f1);
    if constexpr (kFactors >= 2) v = hw::Mul(v, f2);
    v = hw::And(v, hw::Eq(v, v));
    v = hw::Max(hw::Min(v, hi), lo);
    hw::Vec<Vsp32s> r;
    if constexpr (kMode == Round::kNear) {
      r = hw::ConvertRound(v);
    } else if constexpr (kMode == Round::kZero) {
      r = hw::ConvertTrunc(v);
    } else {
      // |v| + 0.5 rounded toward zero (the kernel's MXCSR setting), the sign put back, truncated.
      const V sign = hw::And(v, hw::Set1<F>(F(-0.0)));
      r = hw::ConvertTrunc(hw::Or(hw::Add(hw::Abs(v), hw::Set1<F>(F(0.5))), sign));
    }
    if constexpr (kHiIs2p31) r = hw::Xor(r, hw::BitCast<Vsp32s>(hw::Ge(v, hi)));
    return r;
  }
  I4 operator()(F4 x) const { return Lanes(x); }
  I4 operator()(D4 x) const {
    const auto a = hw::BitCast<Vsp64u>(Lanes(x.lo)), b = hw::BitCast<Vsp64u>(Lanes(x.hi));
    return hw::BitCast<Vsp32s>(hw::InterleaveLo(a, b));
  }
};

// Integer lanes clamped to [lo, hi]; kUnsigned: lanes are unsigned and only hi applies.
template <bool kUnsigned>
struct Clamp {
  I4 lo, hi;
  I4 operator()(I4 r) const {
    if constexpr (kUnsigned) return hw::BitCast<Vsp32s>(hw::Min(hw::BitCast<Vsp32u>(r), hw::BitCast<Vsp32u>(hi)));
    else return hw::Max(hw::Min(r, hi), lo);
  }
};

// round(r * 2^-s) for 1 <= s <= 31 as kMode says, from the floored quotient q = r >> s and the
// remainder r - q * 2^s; kUnsigned: lanes are unsigned 32-bit values.
template <Round kMode, bool kUnsigned>
struct ShiftRightRound {
  int s;
  I4 mask, half;
  explicit ShiftRightRound(int shift)
      : s(shift), mask(hw::Set1<Vsp32s>(static_cast<Vsp32s>((1u << shift) - 1))),
        half(hw::Set1<Vsp32s>(static_cast<Vsp32s>(1u << (shift - 1)))) {}
  I4 operator()(I4 r) const {
    const I4 q = kUnsigned ? hw::BitCast<Vsp32s>(hw::ShiftRight(hw::BitCast<Vsp32u>(r), s)) : hw::ShiftRight(r, s);
    const I4 rem = hw::And(r, mask);
    I4 up;  // all ones where the quotient goes up by one
    if constexpr (kMode == Round::kNear) {
      const I4 odd = hw::ShiftRight<31>(hw::ShiftLeft<31>(q));
      up = hw::Or(hw::Gt(rem, half), hw::And(hw::Eq(rem, half), odd));
    } else if constexpr (kMode == Round::kZero) {
      if constexpr (kUnsigned) return q;
      up = hw::And(hw::ShiftRight<31>(r), hw::Gt(rem, hw::Zero<Vsp32s>()));
    } else {
      // rem >= half for r >= 0, rem > half for r < 0.
      I4 bar = hw::Sub(half, hw::Set1<Vsp32s>(1));
      if constexpr (!kUnsigned) bar = hw::Sub(bar, hw::ShiftRight<31>(r));
      up = hw::Gt(rem, bar);
    }
    return hw::Sub(q, up);
  }
};

// r * 2^k saturated: r is first clamped to [preLo, preHi], where every value outside still
// saturates after the shift and the shifted values stay inside 32 bits; the destination clamp
// (or saturating store) follows.
template <bool kUnsigned>
struct ShiftLeftSat {
  int k;
  I4 preLo, preHi;
  I4 operator()(I4 r) const { return hw::ShiftLeft(Clamp<kUnsigned>{preLo, preHi}(r), k); }
};

// Float lanes to half bits (zero-extended in 32-bit lanes), rounded to nearest (ties to even) or
// toward zero: the normal range in integer arithmetic on the float bits, the subnormal range by
// one float addition under the kernel's MXCSR rounding (|x| + 0.5 puts the half quantum 2^-24
// at the last bit of the sum).
template <Round kMode>
struct FloatToHalf {
  I4 operator()(F4 x) const {
    const I4 bits = hw::BitCast<Vsp32s>(x);
    const I4 a = hw::And(bits, hw::Set1<Vsp32s>(0x7FFFFFFF));
    const I4 sign = hw::BitCast<Vsp32s>(hw::ShiftRight<16>(hw::BitCast<Vsp32u>(hw::Sub(bits, a))));
    const I4 rebased = hw::Sub(a, hw::Set1<Vsp32s>(0x38000000));
    I4 normal;
    if constexpr (kMode == Round::kNear) {
      const I4 odd = hw::And(hw::ShiftRight<13>(a), hw::Set1<Vsp32s>(1));
      normal = hw::ShiftRight<13>(hw::Add(rebased, hw::Add(hw::Set1<Vsp32s>(0xFFF), odd)));
    } else {
      normal = hw::ShiftRight<13>(rebased);
    }
    const F4 sum = hw::Add(hw::BitCast<Vsp32f>(a), hw::Set1<Vsp32f>(0.5f));
    const I4 tiny = hw::Sub(hw::BitCast<Vsp32s>(sum), hw::Set1<Vsp32s>(0x3F000000));
    const I4 overflow = hw::Set1<Vsp32s>(kMode == Round::kNear ? 0x7C00 : 0x7BFF);
    const I4 nan = hw::Or(hw::Set1<Vsp32s>(0x7E00), hw::And(hw::ShiftRight<13>(a), hw::Set1<Vsp32s>(0x3FF)));
    I4 h = hw::Select(hw::Gt(a, hw::Set1<Vsp32s>(0x7F800000)), nan, hw::Set1<Vsp32s>(0x7C00));
    h = hw::Select(hw::Lt(a, hw::Set1<Vsp32s>(0x7F800000)), overflow, h);
    h = hw::Select(hw::Lt(a, hw::Set1<Vsp32s>(0x47800000)), normal, h);
    h = hw::Select(hw::Lt(a, hw::Set1<Vsp32s>(0x38800000)), tiny, h);
    return hw::Or(h, sign);
  }
};

// ---- dispatch helpers -------------------------------------------------------------------------

// The format that carries each element type.
template <class T> struct FormatFor { using Type = SmallInt<T>; };
template <> struct FormatFor<Vsp32s> { using Type = Word<Vsp32s>; };
template <> struct FormatFor<Vsp32u> { using Type = Word<Vsp32u>; };
template <> struct FormatFor<Vsp32f> { using Type = Word<Vsp32f>; };
template <> struct FormatFor<Vsp64s> { using Type = Wide<Vsp64s>; };
template <> struct FormatFor<Vsp64f> { using Type = Wide<Vsp64f>; };
template <class T> using FormatOf = typename FormatFor<T>::Type;

// The range of an integer destination format.
template <class DF> struct IntRange;
template <class T> struct IntRange<SmallInt<T>> {
  static constexpr Vsp32s kLo = kMinOf<T>, kHi = kMaxOf<T>;
};
template <> struct IntRange<Word<Vsp32s>> {
  static constexpr Vsp32s kLo = INT32_MIN, kHi = INT32_MAX;
};
template <bool kSigned> struct IntRange<Packed24<kSigned>> {
  static constexpr Vsp32s kLo = kSigned ? -(1 << 23) : 0, kHi = kSigned ? (1 << 23) - 1 : (1 << 24) - 1;
};

// Stores of these formats saturate by themselves; the others need a clamp step.
template <class DF> inline constexpr bool kStoreSaturates = false;
template <class T> inline constexpr bool kStoreSaturates<SmallInt<T>> = true;

// The lane type of a float group.
template <class G> using LaneOf = std::conditional_t<std::is_same_v<G, F4>, Vsp32f, Vsp64f>;

// Scale factors of float sources. One factor 2^-s serves while it is a value of F (every product
// that matters is then exact: a product that overflows saturates anyway, one that becomes
// subnormal rounds to 0 in every mode). Below, two factors, each a value of F, make the same
// exact product. Beyond the outer limits every result is what it is at the limit: 0 above,
// saturated for every non-zero source below (the smallest subnormal times 2^-s exceeds 2^63).
template <class F>
struct FloatScaleLimits {
  static constexpr int kMaxSingle = std::is_same_v<F, Vsp32f> ? 129 : 1025;
  static constexpr int kMinSingle = std::is_same_v<F, Vsp32f> ? -127 : -1023;
  static constexpr int kMin = std::is_same_v<F, Vsp32f> ? -214 : -1140;
};

// Calls run.template operator()<kMode>() for a rounding known only at run time.
template <class Run>
void WithRound(Round mode, Run&& run) {
  switch (mode) {
    case Round::kZero: return run.template operator()<Round::kZero>();
    case Round::kNear: return run.template operator()<Round::kNear>();
    case Round::kHalfAway: return run.template operator()<Round::kHalfAway>();
  }
}

// Calls run.template operator()<kFactors>(f1, f2) with the factors that make v = x * 2^-s
// exactly for a float source x of lane type F.
template <class F, class Run>
void WithScaleFactors(int s, Run&& run) {
  using L = FloatScaleLimits<F>;
  s = std::min(s, L::kMaxSingle);
  if (s == 0) {
    run.template operator()<0>(F(1), F(1));
  } else if (s >= L::kMinSingle) {
    run.template operator()<1>(PowerOfTwo<F>(-s), F(1));
  } else {
    s = std::max(s, L::kMin);
    const int a = s / 2;
    run.template operator()<2>(PowerOfTwo<F>(-a), PowerOfTwo<F>(a - s));
  }
}

// The rounding conversion from a float format: factors, rounding and the MXCSR scope.
template <class SF, class DF, Round kMode, int kFactors, class F>
void ownsRoundFactors(const typename SF::Elem* src, typename DF::Elem* dst, long long n, F f1, F f2) {
  using R = IntRange<DF>;
  constexpr bool kHiIs2p31 = std::is_same_v<F, Vsp32f> && R::kHi == INT32_MAX;
  const RoundToInt<F, kMode, kFactors, kHiIs2p31> step{hw::Set1(f1), hw::Set1(f2), hw::Set1(static_cast<F>(R::kLo)),
                                                       hw::Set1(static_cast<F>(R::kHi))};
  hw::RoundingScope scope(HardwareRounding(kMode));
  ownsConvert<SF, DF>(src, dst, n, step);
}

template <class SF, class DF>
void ownsRoundScaled(const typename SF::Elem* src, typename DF::Elem* dst, long long n, Round mode, int s) {
  using F = LaneOf<typename SF::Group>;
  WithRound(mode, [&]<Round kMode>() {
    WithScaleFactors<F>(s, [&]<int kFactors>(F f1, F f2) { ownsRoundFactors<SF, DF, kMode, kFactors>(src, dst, n, f1, f2); });
  });
}

// Integer sources scaled by 2^-s with rounding kMode, s already clamped to the member's range.
template <class SF, class DF, bool kUnsigned, class Step>
void ownsScaleIntRun(const typename SF::Elem* src, typename DF::Elem* dst, long long n, const Step& step) {
  using R = IntRange<DF>;
  if constexpr (kStoreSaturates<DF>) {
    ownsConvert<SF, DF>(src, dst, n, step);
  } else {
    const Clamp<kUnsigned> clamp{hw::Set1<Vsp32s>(R::kLo), hw::Set1<Vsp32s>(R::kHi)};
    ownsConvert<SF, DF>(src, dst, n, Then{step, clamp});
  }
}

template <class SF, class DF, bool kUnsigned = false>
void ownsScaleInt(const typename SF::Elem* src, typename DF::Elem* dst, long long n, Round mode, int s) {
  using R = IntRange<DF>;
  if (s == 0) {
    ownsScaleIntRun<SF, DF, kUnsigned>(src, dst, n, Same{});
  } else if (s > 0) {
    WithRound(mode, [&]<Round kMode>() {
      ownsScaleIntRun<SF, DF, kUnsigned>(src, dst, n, ShiftRightRound<kMode, kUnsigned>(s));
    });
  } else {
    const int k = -s;
    const ShiftLeftSat<kUnsigned> step{k, hw::Set1<Vsp32s>((R::kLo >> k) - 1), hw::Set1<Vsp32s>((R::kHi >> k) + 1)};
    ownsScaleIntRun<SF, DF, kUnsigned>(src, dst, n, step);
  }
}

// round(r * 2^-s) by mode and saturated into D, for 64-bit sources one element at a time (SSE3
// has no lane-wise 64-bit shifts or compares). Exact for every s.
template <class D>
D RoundScale64(Vsp64s r, int s, Round mode) {
  if (s <= 0) return ScaleRule<D>(r, std::max(s, -64));  // from 2^64 on every non-zero r saturates
  s = std::min(s, 65);  // |r| * 2^-65 <= 1/4: 0 in every mode
  const __int128 w = r, q = w >> s, rem = w - (q << s), half = static_cast<__int128>(1) << (s - 1);
  bool up;
  if (mode == Round::kNear) up = rem > half || (rem == half && (q & 1));
  else if (mode == Round::kZero) up = r < 0 && rem != 0;
  else up = r < 0 ? rem > half : rem >= half;
  const __int128 v = q + (up ? 1 : 0);
  return v < kMinOf<D> ? kMinOf<D> : v > kMaxOf<D> ? kMaxOf<D> : static_cast<D>(v);
}

// A double rounded by mode to a 64-bit integer, NaN as 0, saturated; the MXCSR rounding of the
// kernel applies as for the 32-bit lanes (to nearest for kNear, toward zero for kHalfAway).
template <Round kMode>
Vsp64s RoundToInt64(double v) {
  if (v != v) return 0;
  if (v >= 0x1p63) return INT64_MAX;
  if (v < -0x1p63) return INT64_MIN;
  if constexpr (kMode == Round::kNear) return __builtin_llrint(v);
  else if constexpr (kMode == Round::kZero) return static_cast<Vsp64s>(v);
  else return static_cast<Vsp64s>(__builtin_copysign(__builtin_fabs(v) + 0.5, v));
}

}  // namespace vsp::cvt
