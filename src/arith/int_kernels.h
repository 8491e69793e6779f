// Integer element-wise kernels with the scale-factor rule: one loop for every operation, type and
// scale path. An operation describes its exact result once, as a scalar in a wide type and as
// wide vector lanes; the path (ScalePath) turns the lanes into scaled values; the narrowing
// saturates them into the destination.
#pragma once

#include "arith/arith_kernels.h"
#include "arith/scale.h"
#include "core/simd/sse3_arith.h"

namespace vsp {

// ---- the scale paths in vector lanes ---------------------------------------------------------

// The constants of one scale factor for exact results in lanes of L written into D, set up once
// per call; Apply<P> gives the same values as ScaleRule<D> on the range of path P.
template <class L, class D>
struct LaneScaler {
  using V = hw::Vec<L>;
  static constexpr int kLaneBits = static_cast<int>(sizeof(L) * 8);
  int s = 0, left = 0;
  V one, bias, lowMask, half, lo, hi, pos, neg;

  explicit LaneScaler(int scale) : s(scale) {
    one = hw::Set1<L>(1);
    pos = hw::Set1<L>(static_cast<L>(kMaxOf<D>));
    neg = hw::Set1<L>(static_cast<L>(kMinOf<D>));
    if (s >= 1 && s <= kLaneBits) {
      const unsigned long long h = 1ULL << (s - 1);
      bias = hw::Set1<L>(static_cast<L>(h - 1));
      half = hw::Set1<L>(static_cast<L>(h));
      lowMask = hw::Set1<L>(static_cast<L>(2 * h - 1));
    }
    if (s < 0 && s > -kLaneBits) {
      left = -s;
      const long long dmax = static_cast<long long>(kMaxOf<D>), dmin = static_cast<long long>(kMinOf<D>);
      if constexpr (sizeof(L) > sizeof(D)) {
        // Clamp to one step beyond the last value that shifts in range; the narrowing saturates it.
        hi = hw::Set1<L>(static_cast<L>((dmax >> left) + 1));
        lo = hw::Set1<L>(static_cast<L>(dmin == 0 ? 0 : -((-dmin) >> left) - 1));
      } else {
        hi = hw::Set1<L>(static_cast<L>(dmax >> left));
        lo = hw::Set1<L>(static_cast<L>(dmin >> left));
      }
    }
  }

  template <ScalePath P>
  V Apply(V r) const {
    using namespace hw;
    if constexpr (P == ScalePath::kPlain) {
      return r;
    } else if constexpr (P == ScalePath::kHalf) {
      return ShiftRight<1>(Add(r, And(ShiftRight<1>(r), one)));
    } else if constexpr (P == ScalePath::kRound) {
      return ShiftRight(Add(Add(r, bias), And(ShiftRight(r, s), one)), s);
    } else if constexpr (P == ScalePath::kRoundWide) {
      V q = ShiftRight(r, s), low = And(r, lowMask);
      V odd = Sub(Zero<L>(), And(q, one));
      return Sub(q, Or(GtU(low, half), And(Eq(low, half), odd)));
    } else if constexpr (P == ScalePath::kLeft) {
      if constexpr (sizeof(L) > sizeof(D)) {
        V c = Min(r, hi);
        if constexpr (std::is_signed_v<L>) c = Max(c, lo);
        return ShiftLeft(c, left);
      } else {
        return Select(Gt(r, hi), pos, Select(Gt(lo, r), neg, ShiftLeft(r, left)));
      }
    } else {
      V p = And(Gt(r, Zero<L>()), pos);
      if constexpr (std::is_signed_v<D>) p = Or(p, And(Gt(Zero<L>(), r), neg));
      return p;
    }
  }
};

// Stores the scaled wide lanes r[0..K) at d: narrowed in pairs (or fours) when D is narrower
// than L, as they are when D has L's width.
template <class D, class L, int K>
inline void StoreNarrow(const hw::Vec<L> (&r)[K], D* d) {
  if constexpr (sizeof(D) == sizeof(L)) {
    for (int k = 0; k < K; ++k) hw::StoreU(hw::BitCast<D>(r[k]), d + k * hw::kLanes<D>);
  } else if constexpr (sizeof(L) == 4 * sizeof(D)) {
    hw::StoreU(hw::NarrowTo(D{}, r[0], r[1], r[2], r[3]), d);
  } else {
    for (int k = 0; k < K; k += 2) hw::StoreU(hw::NarrowTo(D{}, r[k], r[k + 1]), d + (k / 2) * hw::kLanes<D>);
  }
}

// The lanes of an integer vector widened exactly to L: 16 / sizeof(S) * sizeof(S) / sizeof(L)
// vectors, lowest lanes first.
template <class L, class S, int K = static_cast<int>(sizeof(L) / sizeof(S))>
inline void PromoteAll(hw::Vec<S> v, hw::Vec<L> (&out)[K]) {
  if constexpr (sizeof(L) == sizeof(S)) {
    out[0] = hw::BitCast<L>(v);
  } else if constexpr (sizeof(L) == 2 * sizeof(S)) {
    out[0] = hw::BitCast<L>(hw::PromoteLo(v));
    out[1] = hw::BitCast<L>(hw::PromoteHi(v));
  } else {
    hw::Vec<hw::Wider<S>> half[2];
    PromoteAll(v, half);
    hw::Vec<L> a[2], b[2];
    PromoteAll(half[0], a);
    PromoteAll(half[1], b);
    out[0] = a[0], out[1] = a[1], out[2] = b[0], out[3] = b[1];
  }
}

// ---- operations --------------------------------------------------------------------------------

// The exact result of one element, in the scalar wide type W.
struct AddKind {
  template <class W> static constexpr W Exact(W x, W y) { return x + y; }
};
struct SubKind {
  template <class W> static constexpr W Exact(W x, W y) { return x - y; }
};
struct MulKind {
  template <class W> static constexpr W Exact(W x, W y) { return x * y; }
};

// The largest |Exact(x, y)| and the largest positive Exact(x, y) over the ranges of X and Y
// (the extremes of sums, differences and products lie at the corners).
template <class Kind, class X, class Y>
constexpr __int128 CornerExtreme(bool magnitude) {
  const __int128 xs[2] = {kMinOf<X>, kMaxOf<X>}, ys[2] = {kMinOf<Y>, kMaxOf<Y>};
  __int128 best = 0;
  for (__int128 x : xs)
    for (__int128 y : ys) {
      __int128 r = Kind::Exact(x, y);
      if (magnitude && r < 0) r = -r;
      if (r > best) best = r;
    }
  return best;
}

// The wide lane type of the vector bodies: 16-bit lanes for sums and differences of bytes,
// unsigned lanes for products of unsigned elements, else 32-bit lanes.
template <class Kind, class X, class Y, class D>
using LaneFor = std::conditional_t<
    sizeof(X) == 1,
    std::conditional_t<std::is_same_v<Kind, MulKind>, Vsp16u, Vsp16s>,
    std::conditional_t<std::is_same_v<Kind, MulKind> && std::is_unsigned_v<X> && std::is_unsigned_v<Y>, Vsp32u, Vsp32s>>;

// An operation on elements X and Y written to D, with the optional accumulation of the
// destination (R = d + x * y). The default kernels of 8- and 16-bit elements compute it in lanes
// of L; kVector false leaves an operation to its scalar loop.
template <class Kind, class X, class Y, class D, bool kAccumulate = false>
struct IntOp {
  using L = LaneFor<Kind, X, Y, D>;
  using Scaler = LaneScaler<L, D>;
  static constexpr bool kAcc = kAccumulate;
  static constexpr bool kDirect = false;
  static constexpr __int128 kMaxAbs = CornerExtreme<Kind, X, Y>(true) + (kAccumulate ? -static_cast<__int128>(kMinOf<D>) : 0);
  static constexpr __int128 kMaxPos = CornerExtreme<Kind, X, Y>(false) + (kAccumulate ? static_cast<__int128>(kMaxOf<D>) : 0);
  using W = std::conditional_t<(kMaxAbs < (__int128(1) << 31)), Vsp32s,
                               std::conditional_t<(kMaxAbs < (__int128(1) << 63)), Vsp64s, __int128>>;
  static constexpr SfsLimits kLimits = DeriveLimits<D>(static_cast<unsigned __int128>(kMaxAbs));
  // 8- and 16-bit sources of one size, destination of that size or (products) of twice it.
  static constexpr bool kVector = sizeof(X) == sizeof(Y) && sizeof(X) <= 2 && !std::is_same_v<W, __int128> &&
                                  (sizeof(D) == sizeof(X) || sizeof(D) == sizeof(L)) &&
                                  (!kAccumulate || sizeof(D) == sizeof(X));
  // The largest s for which R + 2^(s-1) stays inside L.
  static constexpr int FastRound() {
    const __int128 laneMax = std::is_signed_v<L> ? (__int128(1) << (sizeof(L) * 8 - 1)) - 1 : (__int128(1) << (sizeof(L) * 8)) - 1;
    int s = 1;
    while (s < kLimits.zero && kMaxPos + (__int128(1) << s) <= laneMax) ++s;
    return s;
  }
  static constexpr int kFastRound = FastRound();

  static W Scalar(X x, Y y, D d) {
    W r = Kind::Exact(static_cast<W>(x), static_cast<W>(y));
    if constexpr (kAccumulate) r += static_cast<W>(d);
    return r;
  }

  // The exact results of one vector of X and one of Y, in lanes of L.
  template <int K>
  static void Vector(hw::Vec<X> x, hw::Vec<Y> y, hw::Vec<L> (&r)[K]) {
    if constexpr (std::is_same_v<Kind, MulKind> && sizeof(X) == 2) {
      hw::MulWide(x, y, r[0], r[1]);
    } else {
      hw::Vec<L> a[K], b[K];
      PromoteAll(x, a);
      PromoteAll(y, b);
      for (int k = 0; k < K; ++k) {
        if constexpr (std::is_same_v<Kind, AddKind>) r[k] = hw::Add(a[k], b[k]);
        else if constexpr (std::is_same_v<Kind, SubKind>) r[k] = hw::Sub(a[k], b[k]);
        else r[k] = hw::Mul(a[k], b[k]);
      }
    }
  }

  // s = 0 without widening, where SSE has the saturating instruction.
  static constexpr bool kNativePlain = !kAccumulate && std::is_same_v<X, D> && std::is_same_v<Y, D> &&
                                       (std::is_same_v<Kind, AddKind> || std::is_same_v<Kind, SubKind> ||
                                        std::is_same_v<D, Vsp16u>);
  static hw::Vec<D> Plain(hw::Vec<X> x, hw::Vec<Y> y) {
    if constexpr (std::is_same_v<Kind, AddKind>) return hw::AddSat(x, y);
    else if constexpr (std::is_same_v<Kind, SubKind>) return hw::SubSat(x, y);
    else return hw::Or(hw::Mul(x, y), hw::Not(hw::Eq(hw::MulHi(x, y), hw::Zero<D>())));  // 16u: any high bit saturates
  }
};

// Sums and differences of 32s elements (x + y or x - y) into 32s, in 32-bit lanes: saturating
// sums for s = 0 and for the left shifts and signs (a saturated sum keeps the sign and saturates
// alike), and for s >= 1 the exact floor(R / 2) with R's lowest bit, which hold the 33-bit R.
template <class Kind>
struct Sum32Op {
  using L = Vsp32s;
  using W = Vsp64s;
  using Scaler = LaneScaler<L, L>;
  static constexpr bool kVector = true, kDirect = true, kAcc = false;
  static constexpr SfsLimits kLimits = DeriveLimits<Vsp32s>(CornerExtreme<Kind, Vsp32s, Vsp32s>(true));
  static constexpr int kFastRound = kLimits.zero;

  static W Scalar(Vsp32s x, Vsp32s y, Vsp32s) { return Kind::Exact(W(x), W(y)); }
  template <ScalePath P>
  static hw::Vec<L> Direct(hw::Vec<L> x, hw::Vec<L> y, const LaneScaler<L, L>& k) {
    using namespace hw;
    constexpr bool kAdd = std::is_same_v<Kind, AddKind>;
    if constexpr (P == ScalePath::kPlain || P == ScalePath::kLeft || P == ScalePath::kSign) {
      return k.template Apply<P>(kAdd ? AddSat(x, y) : SubSat(x, y));
    } else {
      Vec<L> h = kAdd ? HalfSum(x, y) : HalfDiff(x, y);
      Vec<L> bit = And(Xor(x, y), k.one);
      if constexpr (P == ScalePath::kHalf) {
        // An odd R with h odd rounds up; only a difference reaches h = 2^31 - 1 with odd R.
        if constexpr (kAdd) return Add(h, And(bit, h));
        else return AddSat(h, And(bit, h));
      }
      Vec<L> q = ShiftRight(h, k.s - 1);
      Vec<L> low = Or(ShiftLeft<1>(And(h, k.bias)), bit);  // R mod 2^s
      Vec<L> odd = Sub(Zero<L>(), And(q, k.one));
      return Sub(q, Or(GtU(low, k.half), And(Eq(low, k.half), odd)));
    }
  }
};

// Products of 32s elements into 32s: the exact products in 64-bit lanes, rounded there for
// s >= 1; saturated to 32 bits first for the other paths (saturation keeps the sign, and a
// saturated product saturates alike when shifted left).
struct Mul32Op {
  using L = Vsp64s;
  using W = Vsp64s;
  static constexpr bool kVector = true, kDirect = true, kAcc = false;
  static constexpr SfsLimits kLimits = DeriveLimits<Vsp32s>(CornerExtreme<MulKind, Vsp32s, Vsp32s>(true));
  static constexpr int kFastRound = kLimits.zero;
  struct Scaler {
    LaneScaler<Vsp32s, Vsp32s> k32;
    int s;
    hw::Vec<Vsp64s> bias;
    explicit Scaler(int scale) : k32(scale), s(scale) {
      bias = hw::Set1<Vsp64s>(s >= 1 && s < 63 ? (1LL << (s - 1)) - 1 : 0);
    }
    hw::Vec<Vsp64s> Round(hw::Vec<Vsp64s> r) const {
      return hw::ShiftRightArith(hw::Add(hw::Add(r, bias), hw::BitAt(r, s)), s);
    }
  };

  static W Scalar(Vsp32s x, Vsp32s y, Vsp32s) { return W(x) * y; }
  template <ScalePath P>
  static hw::Vec<Vsp32s> Direct(hw::Vec<Vsp32s> x, hw::Vec<Vsp32s> y, const Scaler& k) {
    hw::Vec<Vsp64s> even, odd;
    hw::MulWide(x, y, even, odd);
    if constexpr (P == ScalePath::kPlain || P == ScalePath::kLeft || P == ScalePath::kSign)
      return k.k32.template Apply<P>(hw::NarrowSat32s(even, odd));
    else
      return hw::NarrowSat32s(k.Round(even), k.Round(odd));
  }
};

// Saturating sums of 32u elements (the members without a scale factor).
struct SumU32Op {
  using L = Vsp32u;
  using W = Vsp64s;
  using Scaler = LaneScaler<L, L>;
  static constexpr bool kVector = true, kDirect = true, kAcc = false;
  static W Scalar(Vsp32u x, Vsp32u y, Vsp32u) { return W(x) + W(y); }
  template <ScalePath P>
  static hw::Vec<L> Direct(hw::Vec<L> x, hw::Vec<L> y, const LaneScaler<L, L>&) {
    static_assert(P == ScalePath::kPlain);
    return hw::AddSat(x, y);
  }
};

// ---- further sources ---------------------------------------------------------------------------

// A complex integer constant over the real view of a complex vector: real element i takes the
// real part where i is even and the imaginary part where it is odd, whatever i a vector starts at.
template <class B>
struct PairBroadcast {
  using Elem = B;
  B v[2];
  hw::Vec<B> even, odd;
  PairBroadcast(B re, B im) : v{re, im} {
    alignas(hw::kVecBytes) B lanes[hw::kLanes<B>];
    for (int k = 0; k < hw::kLanes<B>; ++k) lanes[k] = v[k & 1];
    even = hw::Load(lanes);
    for (int k = 0; k < hw::kLanes<B>; ++k) lanes[k] = v[(k + 1) & 1];
    odd = hw::Load(lanes);
  }
  B At(long long i) const { return v[i & 1]; }
  hw::Vec<B> Load(long long i) const { return (i & 1) ? odd : even; }
};

// A 16s vector read as 32s elements.
struct Widened16 {
  using Elem = Vsp32s;
  const Vsp16s* p;
  Vsp32s At(long long i) const { return p[i]; }
  hw::Vec<Vsp32s> Load(long long i) const { return hw::PromoteLo(hw::LoadHalf(p + i)); }
};

// The products of two 16s vectors read as 32s elements (exact: |a * b| <= 2^30).
struct Products16 {
  using Elem = Vsp32s;
  const Vsp16s* a;
  const Vsp16s* b;
  Vsp32s At(long long i) const { return Vsp32s(a[i]) * b[i]; }
  hw::Vec<Vsp32s> Load(long long i) const {
    hw::Vec<Vsp32s> lo, hi;
    hw::MulWide(hw::LoadHalf(a + i), hw::LoadHalf(b + i), lo, hi);
    return lo;
  }
};

// ---- the element loop -------------------------------------------------------------------------

// d[i] = ScaleRule(Op(x[i], y[i] [, d[i]]), s) over the path P of s.
template <ScalePath P, class Op, class X, class Y, class D>
struct ScaledEach {
  using L = typename Op::L;
  static constexpr int kK = static_cast<int>(sizeof(L) / sizeof(typename X::Elem));
  static constexpr int kStep = Op::kVector ? hw::kLanes<typename X::Elem> : 1;
  X x;
  Y y;
  D* d;
  int s;
  std::conditional_t<Op::kVector, typename Op::Scaler, int> k;

  void Scalar(long long i) { d[i] = ScaleRule<D>(Op::Scalar(x.At(i), y.At(i), d[i]), s); }
  void Vector(long long i) {
    if constexpr (!Op::kVector) {
      Scalar(i);
    } else if constexpr (Op::kDirect) {
      hw::StoreU(Op::template Direct<P>(x.Load(i), y.Load(i), k), d + i);
    } else if constexpr (P == ScalePath::kPlain && Op::kNativePlain) {
      hw::StoreU(Op::Plain(x.Load(i), y.Load(i)), d + i);
    } else {
      hw::Vec<L> r[kK];
      Op::Vector(x.Load(i), y.Load(i), r);
      if constexpr (Op::kAcc) {
        hw::Vec<L> acc[kK];
        PromoteAll(hw::LoadU(d + i), acc);
        for (int j = 0; j < kK; ++j) r[j] = hw::Add(r[j], acc[j]);
      }
      for (auto& v : r) v = k.template Apply<P>(v);
      StoreNarrow(r, d + i);
    }
  }
};

template <ScalePath P, class Op, class X, class Y, class D>
inline void ownsScaled(X x, Y y, D* d, long long n, int s) {
  using K = decltype(ScaledEach<P, Op, X, Y, D>::k);
  ScaledEach<P, Op, X, Y, D> op{x, y, d, s, K(s)};
  ForEachAligned(d, n, op);
}

// The Sfs dispatch of one operation: the kernel of the path of s, or the zero short-cut.
template <class Op, class X, class Y, class D, class ZeroFill>
inline VspStatus RunScaled(X x, Y y, D* d, long long n, int s, ZeroFill&& zero) {
  return DispatchScale<Op::kLimits, Op::kFastRound>(
      s, [&]<ScalePath P>() { ownsScaled<P, Op>(x, y, d, n, s); }, zero);
}

// ---- exact results converted to 32f ---------------------------------------------------------------

// d[i] = (float)Op(x[i], y[i]) for the exact 32-bit results of 16-bit elements (rounded to
// nearest by the conversion where they need more than 24 bits).
template <class Op, class X, class Y>
struct ExactToFloatEach {
  static constexpr int kStep = 8;
  X x;
  Y y;
  Vsp32f* d;
  void Scalar(long long i) { d[i] = static_cast<Vsp32f>(Op::Scalar(x.At(i), y.At(i), 0)); }
  void Vector(long long i) {
    hw::Vec<Vsp32s> r[2];
    Op::Vector(x.Load(i), y.Load(i), r);
    hw::StoreU(hw::ConvertToFloat(r[0]), d + i);
    hw::StoreU(hw::ConvertToFloat(r[1]), d + i + 4);
  }
};

// ---- complex integer products -------------------------------------------------------------------

// d[i] = x[i] * y[i] for 16sc or 32sc, each part formed exactly and scaled by path P. The 16sc
// body forms the real parts from the four lane products and the imaginary parts with pmaddwd;
// the one imaginary part that reaches 2^31 (all four parts -32768) wraps to -2^31 there and is
// replaced by 2^31 - 2, which scales and saturates to the same values for every s.
template <class T>
struct ComplexMulOp {
  using B = BaseOf<T>;
  using W = std::conditional_t<std::is_same_v<B, Vsp16s>, Vsp64s, __int128>;
  using L = Vsp32s;
  static constexpr bool kVector = std::is_same_v<B, Vsp16s>;
  static constexpr __int128 kMaxAbs = static_cast<__int128>(kMinOf<B>) * kMinOf<B> * 2;
  static constexpr SfsLimits kLimits = DeriveLimits<B>(static_cast<unsigned __int128>(kMaxAbs));
  static constexpr int kFastRound = 1;  // the lanes hold no rounding term next to |R| near 2^31

  template <ScalePath P>
  static hw::Vec<B> Vector(hw::Vec<B> a, hw::Vec<B> b, const LaneScaler<L, B>& k) {
    using namespace hw;
    Vec<L> lo, hi;
    MulWide(a, b, lo, hi);  // (re*re, im*im) per element
    Vec<L> re = Sub(EvenLanes(lo, hi), OddLanes(lo, hi));
    Vec<L> im = MulAddPairs(a, SwapPairs(b));
    Vec<L> wrapped = Eq(im, Set1<L>(kMinOf<L>));
    im = Add(im, Add(wrapped, wrapped));
    re = k.template Apply<P>(re);
    im = k.template Apply<P>(im);
    return NarrowSat16s(InterleaveLo(re, im), InterleaveHi(re, im));
  }
};

template <ScalePath P, class T, class X, class Y>
struct ComplexMulEach {
  using Op = ComplexMulOp<T>;
  using B = typename Op::B;
  using W = typename Op::W;
  static constexpr int kStep = Op::kVector ? 4 : 1;
  X x;
  Y y;
  T* d;
  int s;
  std::conditional_t<Op::kVector, LaneScaler<Vsp32s, B>, int> k;

  void Scalar(long long i) {
    const T a = x.At(i), b = y.At(i);
    d[i] = {ScaleRule<B>(W(a.re) * b.re - W(a.im) * b.im, s), ScaleRule<B>(W(a.re) * b.im + W(a.im) * b.re, s)};
  }
  void Vector(long long i) {
    if constexpr (Op::kVector) hw::StoreU(Op::template Vector<P>(x.Load(i), y.Load(i), k), reinterpret_cast<B*>(d + i));
    else Scalar(i);
  }
};

template <class T, class X, class Y, class ZeroFill>
inline VspStatus RunComplexMul(X x, Y y, T* d, long long n, int s, ZeroFill&& zero) {
  using Op = ComplexMulOp<T>;
  return DispatchScale<Op::kLimits, Op::kFastRound>(
      s,
      [&]<ScalePath P>() {
        using E = ComplexMulEach<P, T, X, Y>;
        E op{x, y, d, s, decltype(E::k)(s)};
        ForEachAligned(d, n, op);
      },
      zero);
}

}  // namespace vsp
