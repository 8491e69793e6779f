// Integer quotients: Div, Div_Round, DivC and DivCRev. The exact quotient n * 2^-s / d is rounded
// by the rounding mode (ties to even for every member without a mode) and saturated; a zero
// divisor writes 0, the maximum or the minimum by the dividend's sign and raises the warning.
#include "arith/int_kernels.h"
#include "arith/scale.h"
#include "arith/shapes.h"
#include "arith/shortcuts.h"
#include "core/check.h"
#include "core/impl.h"

namespace {

using namespace vsp;

// The value a zero divisor writes for dividend n.
template <class D, class W>
constexpr D ZeroDivisorValue(W n) {
  return n == 0 ? D(0) : n > 0 ? kMaxOf<D> : kMinOf<D>;
}

// round(n * 2^-s / d) by mode, saturated to D, for d != 0. W holds n and d; the magnitudes stay
// far enough below W's range that a quotient beyond the shifts below is 0 (s > 0) or saturates
// (s < 0) in every mode.
template <class D, class W>
D RoundQuotient(W n, W d, int s, VspRoundMode mode) {
  using U = typename WideInt<W>::U;
  constexpr int kBits = WideInt<W>::kBits;
  const bool negative = (n < 0) != (d < 0);
  U un = n < 0 ? U(0) - U(n) : U(n), ud = d < 0 ? U(0) - U(d) : U(d);
  if (un == 0) return D(0);
  const D saturated = negative ? kMinOf<D> : kMaxOf<D>;
  if (s > 0) {
    if (s >= kBits - 1 || (ud >> (kBits - 1 - s)) != 0) return D(0);  // d * 2^s >= 2^(kBits-1) > 4n
    ud <<= s;
  } else if (s < 0) {
    if (s <= -(kBits - 1)) return saturated;  // tested before negating: s may be INT_MIN
    const int k = -s;
    if (un > (~U(0) >> (k + 1))) return saturated;  // n * 2^k >= 2^(kBits-1) > d * max
    un <<= k;
  }
  U q = un / ud;
  const U r = un - q * ud, rest = ud - r;  // the quotient lies r / ud above q
  if (mode == vspRndNear) q += (r > rest || (r == rest && (q & 1))) ? 1 : 0;
  else if (mode == vspRndHalfAway) q += r >= rest ? 1 : 0;
  if (negative) return q > U(0) - U(static_cast<W>(kMinOf<D>)) ? kMinOf<D> : static_cast<D>(-static_cast<W>(q));
  return q > static_cast<U>(kMaxOf<D>) ? kMaxOf<D> : static_cast<D>(q);
}

// The wide type of a quotient's operands.
template <class T> using QuotientWide = std::conditional_t<sizeof(BaseOf<T>) == 8, __int128, Vsp64s>;

// One element: the rounded quotient, or the zero-divisor value (flag set).
template <class D, class A, class B>
inline D QuotientOf(A a, B b, int s, VspRoundMode mode, bool& zero) {
  using W = QuotientWide<D>;
  if constexpr (kIsComplex<D>) {
    // Each part of a * conj(b) over |b|^2.
    using P = BaseOf<D>;
    const W m = W(b.re) * b.re + W(b.im) * b.im;
    if (m == 0) {
      zero = true;
      return {ZeroDivisorValue<P>(W(a.re)), ZeroDivisorValue<P>(W(a.im))};
    }
    return {RoundQuotient<P>(W(a.re) * b.re + W(a.im) * b.im, m, s, mode),
            RoundQuotient<P>(W(a.im) * b.re - W(a.re) * b.im, m, s, mode)};
  } else {
    if (b == 0) {
      zero = true;
      return ZeroDivisorValue<D>(W(a));
    }
    return RoundQuotient<D>(W(a), W(b), s, mode);
  }
}

// Quotients of 8- and 16-bit elements in double lanes. With s clamped to [-(2 * bits + 1),
// bits + 2] (beyond, every quotient saturates or rounds to 0 as it does at the bound) the
// scaled dividend is exact in a double, the division rounds correctly, and a quotient lies
// either exactly on a half or at least 2^-17 from one, far beyond its rounding error: rounding
// the double quotient gives the exact result in every mode, whatever the MXCSR rounding mode.
template <class D, VspRoundMode kMode, class Num, class Den>
struct DivEach {
  static constexpr int kStep = hw::kLanes<D>;
  static constexpr int kK = static_cast<int>(4 / sizeof(D));
  static constexpr int kBits = static_cast<int>(8 * sizeof(D));
  Num num;
  Den den;
  D* d;
  int s;
  hw::Vec<Vsp64f> scale, lo, hi;
  hw::Vec<Vsp32s> zeros = hw::Zero<Vsp32s>();
  bool flag = false;

  DivEach(Num nm, Den dn, D* dst, int scale) : num(nm), den(dn), d(dst), s(scale) {
    const int c = s < -(2 * kBits + 1) ? -(2 * kBits + 1) : s > kBits + 2 ? kBits + 2 : s;
    double f = 1;
    for (int k = 0; k < (c < 0 ? -c : c); ++k) f *= 2;
    this->scale = hw::Set1(c < 0 ? f : 1 / f);
    lo = hw::Set1(static_cast<double>(kMinOf<D>) - 1);
    hi = hw::Set1(static_cast<double>(kMaxOf<D>) + 1);
  }

  // The quotients of two lanes, clamped next to D's range.
  hw::Vec<Vsp64f> Pair(hw::Vec<Vsp32s> n, hw::Vec<Vsp32s> q) const {
    hw::Vec<Vsp64f> r = hw::Div(hw::Mul(hw::ConvertLoToDouble(n), scale), hw::ConvertLoToDouble(q));
    return hw::Min(hw::Max(r, lo), hi);
  }
  // x rounded by kMode to 32-bit lanes, from the truncation and the exact fraction.
  hw::Vec<Vsp32s> Round(hw::Vec<Vsp64f> q0, hw::Vec<Vsp64f> q1) const {
    using namespace hw;
    Vec<Vsp32s> t0 = ConvertTrunc(q0), t1 = ConvertTrunc(q1);
    Vec<Vsp32s> t = BitCast<Vsp32s>(InterleaveLo(BitCast<Vsp64u>(t0), BitCast<Vsp64u>(t1)));
    if constexpr (kMode == vspRndZero) {
      return t;
    } else {
      Vec<Vsp64f> f0 = Sub(q0, ConvertLoToDouble(t0)), f1 = Sub(q1, ConvertLoToDouble(t1));
      const Vec<Vsp64f> half = Set1(0.5), mhalf = Set1(-0.5);
      auto lanes = [](Vec<Vsp64f> a, Vec<Vsp64f> b) { return EvenLanes(BitCast<Vsp32s>(a), BitCast<Vsp32s>(b)); };
      Vec<Vsp32s> up, down;
      if constexpr (kMode == vspRndHalfAway) {
        up = lanes(Ge(f0, half), Ge(f1, half));
        down = lanes(Le(f0, mhalf), Le(f1, mhalf));
      } else {
        Vec<Vsp32s> odd = Sub(Zero<Vsp32s>(), And(t, Set1<Vsp32s>(1)));
        up = Or(lanes(Gt(f0, half), Gt(f1, half)), And(lanes(Eq(f0, half), Eq(f1, half)), odd));
        down = Or(lanes(Lt(f0, mhalf), Lt(f1, mhalf)), And(lanes(Eq(f0, mhalf), Eq(f1, mhalf)), odd));
      }
      return Add(Sub(t, up), down);  // masks are -1 where true
    }
  }

  void Scalar(long long i) { d[i] = QuotientOf<D>(num.At(i), den.At(i), s, kMode, flag); }
  void Vector(long long i) {
    using namespace hw;
    Vec<Vsp32s> n[kK], q[kK], r[kK];
    PromoteAll(num.Load(i), n);
    PromoteAll(den.Load(i), q);
    const Vec<Vsp32s> dmax = Set1<Vsp32s>(kMaxOf<D>), dmin = Set1<Vsp32s>(kMinOf<D>);
    for (int k = 0; k < kK; ++k) {
      r[k] = Round(Pair(n[k], q[k]), Pair(ShiftBytesDown<8>(n[k]), ShiftBytesDown<8>(q[k])));
      // Zero divisors: 0, the maximum or the minimum by the dividend's sign.
      Vec<Vsp32s> z = Eq(q[k], Zero<Vsp32s>());
      Vec<Vsp32s> v = Or(And(Gt(n[k], Zero<Vsp32s>()), dmax), And(Gt(Zero<Vsp32s>(), n[k]), dmin));
      r[k] = Select(z, v, r[k]);
      zeros = Or(zeros, z);
    }
    StoreNarrow(r, d + i);
  }
};

template <class D, VspRoundMode kMode, class Num, class Den>
bool RunDiv(Num num, Den den, D* d, long long n, int s) {
  DivEach<D, kMode, Num, Den> op(num, den, d, s);
  ForEachAligned(d, n, op);
  return op.flag || hw::AnyTrue(op.zeros);
}

// d[i] = round(num[i] * 2^-s / den[i]); true when some den[i] was zero.
template <class D, class Num, class Den>
bool ownsDivScaled(Num num, Den den, D* d, long long n, int s, VspRoundMode mode) {
  if constexpr (sizeof(D) <= 2 && !kIsComplex<D> && std::is_same_v<typename Num::Elem, D> &&
                std::is_same_v<typename Den::Elem, D>) {
    if (mode == vspRndZero) return RunDiv<D, vspRndZero>(num, den, d, n, s);
    if (mode == vspRndHalfAway) return RunDiv<D, vspRndHalfAway>(num, den, d, n, s);
    return RunDiv<D, vspRndNear>(num, den, d, n, s);
  } else {
    bool zero = false;
    for (long long i = 0; i < n; ++i) d[i] = QuotientOf<D>(num.At(i), den.At(i), s, mode, zero);
    return zero;
  }
}

// pSrc2 / pSrc1 (the first vector divides).
template <class X, class Y, class D>
VspStatus DivVV(const X* pSrc1, const Y* pSrc2, D* pDst, int len, int s, VspRoundMode mode = vspRndNear) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  if (mode != vspRndZero && mode != vspRndNear && mode != vspRndHalfAway) return vspStatRoundModeErr;
  return ownsDivScaled(Stream<Y>{pSrc2}, Stream<X>{pSrc1}, pDst, len, s, mode) ? vspStatDivByZeroWarn : vspStatOk;
}

// The largest s at which some quotient by a constant is still not 0: the bit length of the
// largest |quotient| (|x| itself, dividing by 1; complex parts stay within it), less one.
template <class T>
constexpr int DivCZeroLimit() {
  using B = BaseOf<T>;
  const unsigned __int128 m = kMinOf<B> < 0 ? static_cast<unsigned __int128>(-static_cast<__int128>(kMinOf<B>)) : kMaxOf<B>;
  return DeriveLimits<B>(m).zero;
}

// pSrc / val; a zero val is refused after the vectors; above the zero limit the result is
// vspsZero_<T>.
template <class T>
VspStatus DivVC(const T* pSrc, T val, T* pDst, int len, int s) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (ElemIsZero(val)) return vspStatDivByZeroErr;
  if (s > DivCZeroLimit<T>()) return ZeroOf(pDst, len);
  ownsDivScaled(Stream<T>{pSrc}, Broadcast<T>(val), pDst, len, s, vspRndNear);
  return vspStatOk;
}

// val / pSrc[i]. With val 0 every quotient is 0: the destination is zeroed, and a zero element
// still raises the warning.
template <class T>
VspStatus DivRevVC(const T* pSrc, T val, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (val == 0) {
    bool zero = false;
    for (int i = 0; i < len; ++i) zero |= pSrc[i] == 0;
    if (VspStatus st = ZeroOf(pDst, len)) return st;
    return zero ? vspStatDivByZeroWarn : vspStatOk;
  }
  return ownsDivScaled(Broadcast<T>(val), Stream<T>{pSrc}, pDst, len, 0, vspRndNear) ? vspStatDivByZeroWarn : vspStatOk;
}

}  // namespace

VSP_SHAPE_VV_SFS_BOTH(Div, DivVV, 8u)
VSP_SHAPE_VV_SFS_BOTH(Div, DivVV, 16u)
VSP_SHAPE_VV_SFS_BOTH(Div, DivVV, 16sc)
VSP_SHAPE_VV_SFS_BOTH(Div, DivVV, 32s)

// Above 15 every quotient of 16s elements rounds to 0: the zero divisors alone get values.
VSP_IMPL(VspStatus, vspsDiv_16s_Sfs, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp16s* pDst, int len, int scaleFactor)) {
  if (scaleFactor <= 15) return DivVV(pSrc1, pSrc2, pDst, len, scaleFactor);
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  bool zero = false;
  for (int i = 0; i < len; ++i) {
    zero |= pSrc1[i] == 0;
    pDst[i] = pSrc1[i] == 0 ? ZeroDivisorValue<Vsp16s>(pSrc2[i]) : Vsp16s(0);
  }
  return zero ? vspStatDivByZeroWarn : vspStatOk;
}
VSP_IMPL(VspStatus, vspsDiv_16s_ISfs, (const Vsp16s* pSrc, Vsp16s* pSrcDst, int len, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc, pSrcDst)) return st;
  return VSP_CALL(vspsDiv_16s_Sfs)(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}

VSP_IMPL(VspStatus, vspsDiv_32s16s_Sfs, (const Vsp16s* pSrc1, const Vsp32s* pSrc2, Vsp16s* pDst, int len, int scaleFactor)) {
  return DivVV(pSrc1, pSrc2, pDst, len, scaleFactor);
}

#define VSP_DIV_ROUND(t)                                                                                         \
  VSP_IMPL(VspStatus, vspsDiv_Round_##t##_Sfs,                                                                   \
           (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, int len, VspRoundMode rndMode, int scaleFactor)) { \
    return DivVV(pSrc1, pSrc2, pDst, len, scaleFactor, rndMode);                                                 \
  }                                                                                                              \
  VSP_IMPL(VspStatus, vspsDiv_Round_##t##_ISfs,                                                                  \
           (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len, VspRoundMode rndMode, int scaleFactor)) {              \
    return DivVV<Vsp##t>(pSrc, pSrcDst, pSrcDst, len, scaleFactor, rndMode);                                     \
  }
VSP_DIV_ROUND(8u)
VSP_DIV_ROUND(16s)
VSP_DIV_ROUND(16u)

VSP_SHAPE_VC_SFS_BOTH(DivC, DivVC, 8u)
VSP_SHAPE_VC_SFS_BOTH(DivC, DivVC, 16s)
VSP_SHAPE_VC_SFS_BOTH(DivC, DivVC, 16u)
VSP_SHAPE_VC_SFS_BOTH(DivC, DivVC, 16sc)
VSP_SHAPE_VC_ISFS(DivC, DivVC, 64s)

VSP_SHAPE_VC_BOTH(DivCRev, DivRevVC, 16u)
