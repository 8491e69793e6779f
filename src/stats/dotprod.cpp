// Dot products: sum of pSrc1[n] * pSrc2[n] without conjugation, for real, complex and mixed
// operands; float results in blocked float lanes, double results in double lanes, integer
// results from exact sums.
#include "core/check.h"
#include "core/impl.h"
#include "stats/accumulate.h"

namespace {

using namespace vsp;
using namespace vsp::stats;

// ---- complex products as four sums --------------------------------------------------------------------

// A complex product a * b is accumulated as two lane pairs: straight a * b = (ar br, ai bi) and
// crossed a * SwapReIm(b) = (ar bi, ai br); a real a (duplicated into both lanes) needs only the
// straight one. The sums combine at the end as re = sum(ar br) - sum(ai bi) and
// im = sum(ar bi) + sum(ai br).
inline Pair Combine(Pair straight, Pair crossed) { return {straight.re - straight.im, crossed.re + crossed.im}; }

// Operand shapes: R real x real, C complex x complex, M real x complex.
enum class Shape { kR, kC, kM };

// ---- float results ------------------------------------------------------------------------------------

// Float lanes over blocks of kDotBlock elements (elements before the first 16-byte boundary of
// pSrc1 widened into the double totals), block partials moved to double.
template <Shape kShape>
struct FloatDotOp {
  static constexpr int kSums = kShape == Shape::kC ? 2 : 1;
  static constexpr int kStep = kShape == Shape::kR ? kSumLanes : kSumLanes / 2;  // elements
  static constexpr int kWidth = kShape == Shape::kC ? 2 : 1;  // floats per element of pSrc1
  const Vsp32f* a;
  const Vsp32f* b;
  FloatLanes<kSums> acc{};
  Pair straight{}, crossed{};  // double totals

  // Element i as double lanes (head) or as float lanes 0-1 (tail): (a, b) values.
  void Head(long long i) {
    if constexpr (kShape == Shape::kR) {
      straight.re += static_cast<Vsp64f>(a[i]) * b[i];
    } else {
      const Vsp64f ar = a[kShape == Shape::kC ? 2 * i : i], ai = kShape == Shape::kC ? a[2 * i + 1] : 0;
      const Vsp64f br = b[2 * i], bi = b[2 * i + 1];
      if constexpr (kShape == Shape::kC) {
        straight.re += ar * br, straight.im += ai * bi, crossed.re += ar * bi, crossed.im += ai * br;
      } else {
        straight.re += ar * br, straight.im += ar * bi;
      }
    }
  }
  void Product(int k, F32 x, F32 y) {
    if constexpr (kShape == Shape::kR) {
      acc.Add(0, k, hw::Mul(x, y));
    } else if constexpr (kShape == Shape::kC) {
      acc.Add(0, k, hw::Mul(x, y));
      acc.Add(1, k, hw::Mul(x, hw::SwapReIm(y)));
    } else {
      acc.Add(0, k, hw::Mul(x, y));  // x holds each real value twice
    }
  }
  void Vector(long long i) {
    if constexpr (kShape == Shape::kM) {
      for (int h = 0; h < 2; ++h) {
        F32 x = hw::LoadU(a + i + 4 * h);
        Product(2 * h, hw::InterleaveLo(x, x), hw::LoadU(b + 2 * i + 8 * h));
        Product(2 * h + 1, hw::InterleaveHi(x, x), hw::LoadU(b + 2 * i + 8 * h + 4));
      }
    } else {
      for (int k = 0; k < 4; ++k) Product(k, hw::LoadU(a + i * kWidth + 4 * k), hw::LoadU(b + i * kWidth + 4 * k));
    }
  }
  void Scalar(long long i) {
    if constexpr (kShape == Shape::kR) Product(0, hw::SetLo(a[i]), hw::SetLo(b[i]));
    else if constexpr (kShape == Shape::kC) Product(0, hw::LoadLo2(a + 2 * i), hw::LoadLo2(b + 2 * i));
    else Product(0, hw::InterleaveLo(hw::SetLo(a[i]), hw::SetLo(a[i])), hw::LoadLo2(b + 2 * i));
  }
  void Flush() {
    if constexpr (kShape == Shape::kR) {
      straight.re += Total(acc.Fold(0));
    } else {
      Pair r = Parts(acc.Fold(0));
      straight.re += r.re, straight.im += r.im;
      if constexpr (kShape == Shape::kC) {
        Pair m = Parts(acc.Fold(1));
        crossed.re += m.re, crossed.im += m.im;
      }
    }
    acc.Clear();
  }
  Pair Result() const { return kShape == Shape::kC ? Combine(straight, crossed) : straight; }
};
constexpr long long kDotBlock = 4096;

// ---- double results -----------------------------------------------------------------------------------

// Double lanes (four accumulators per sum): real or complex operands of 32f / 64f parts widened
// to double (products of floats are exact there); the real operand of kM is 64f.
template <class T, Shape kShape>
struct DoubleDotOp {
  static constexpr int kSums = kShape == Shape::kC ? 2 : 1;
  static constexpr int kStep = AsDoubles<T>::kStep;
  AsDoubles<T> x, y;
  const Vsp64f* real = nullptr;  // kM: the real operand
  DoubleLanes<kSums> acc;

  void Product(int k, F64 u, F64 v) {
    if constexpr (kShape == Shape::kR) {
      acc.Add(0, k, hw::Mul(u, v));
    } else if constexpr (kShape == Shape::kC) {
      acc.Add(0, k, hw::Mul(u, v));
      acc.Add(1, k, hw::Mul(u, hw::SwapReIm(v)));
    } else {
      acc.Add(0, k, hw::Mul(u, v));  // u holds the real value twice
    }
  }
  void Scalar(long long i) {
    if constexpr (kShape == Shape::kM) Product(0, hw::Set1(real[i]), y.Elem(i));
    else Product(0, x.Elem(i), y.Elem(i));
  }
  void Vector(long long i) {
    F64 u[4], v[4];
    y.Step(i, v);
    if constexpr (kShape == Shape::kM) {
      for (int k = 0; k < 4; ++k) u[k] = hw::Set1(real[i + k]);
    } else {
      x.Step(i, u);
    }
    for (int k = 0; k < 4; ++k) Product(k, u[k], v[k]);
  }
  Pair Result() const {
    if constexpr (kShape == Shape::kR) return {Total(acc.Fold(0)), 0};
    else if constexpr (kShape == Shape::kM) return Parts(acc.Fold(0));
    else return Combine(Parts(acc.Fold(0)), Parts(acc.Fold(1)));
  }
};

// ---- integer operands ---------------------------------------------------------------------------------

// Exact sums of 16s products (pmaddwd pairs widened to 64 bits). For 16sc operands the lanes
// hold one complex element each: re = ar br - ai bi (always inside 32 bits) and
// im = ar bi + ai br (a pair sum, widened as such).
template <bool kComplex>
struct IntDotOp {
  static constexpr int kStep = kComplex ? 4 : 8;  // elements
  const Vsp16s* a;
  const Vsp16s* b;
  hw::Vec<Vsp64s> re = hw::Zero<Vsp64s>(), im = hw::Zero<Vsp64s>();
  long long sRe = 0, sIm = 0;

  void Scalar(long long i) {
    if constexpr (kComplex) {
      const long long ar = a[2 * i], ai = a[2 * i + 1], br = b[2 * i], bi = b[2 * i + 1];
      sRe += ar * br - ai * bi, sIm += ar * bi + ai * br;
    } else {
      sRe += static_cast<long long>(a[i]) * b[i];
    }
  }
  static void Accumulate(hw::Vec<Vsp64s>& to, hw::Vec<Vsp32s> pairSums) {
    hw::Vec<Vsp64s> lo, hi;
    hw::WidenPairSums(pairSums, lo, hi);
    to = hw::Add(to, hw::Add(lo, hi));
  }
  void Vector(long long i) {
    const hw::Vec<Vsp16s> x = hw::LoadU(a + i * (kComplex ? 2 : 1)), y = hw::LoadU(b + i * (kComplex ? 2 : 1));
    if constexpr (kComplex) {
      const hw::Vec<Vsp16s> reOnly = hw::BitCast<Vsp16s>(hw::Set1<Vsp32s>(0x0000FFFF));
      // (ar, 0) . (br, bi) - (0, ai) . (br, bi): exact in 32 bits.
      hw::Vec<Vsp32s> r = hw::Sub(hw::MulAddPairs(hw::And(reOnly, x), y), hw::MulAddPairs(hw::AndNot(reOnly, x), y));
      re = hw::Add(re, hw::WidenAddHalves(r));
      Accumulate(im, hw::MulAddPairs(x, hw::SwapPairs(y)));
    } else {
      Accumulate(re, hw::MulAddPairs(x, y));
    }
  }
  void Sums(long long out[2]) const {
    hw::Lanes<Vsp64s> r(re), m(im);
    out[0] = r.v[0] + r.v[1] + sRe, out[1] = m.v[0] + m.v[1] + sIm;
  }
};

template <bool kComplex>
void ownsDot_16s(const Vsp16s* a, const Vsp16s* b, long long n, long long out[2]) {
  IntDotOp<kComplex> op{a, b};
  using Elem = std::conditional_t<kComplex, Vsp16sc, Vsp16s>;
  ForEachAligned(reinterpret_cast<const Elem*>(a), n, op);
  op.Sums(out);
}

// The exact sum of 32s products in 128 bits.
__int128 ownsDot_32s(const Vsp32s* a, const Vsp32s* b, long long n) {
  __int128 s0 = 0, s1 = 0;
  long long i = 0;
  for (; i + 2 <= n; i += 2) {
    s0 += static_cast<long long>(a[i]) * b[i];
    s1 += static_cast<long long>(a[i + 1]) * b[i + 1];
  }
  if (i < n) s0 += static_cast<long long>(a[i]) * b[i];
  return s0 + s1;
}

// The scale-factor rule for a 128-bit exact sum (|s| < 2^94), saturated to 32 bits.
Vsp32s ScaleRule128(__int128 s, int scaleFactor) {
  if (s == 0) return 0;
  if (scaleFactor > 0) {
    if (scaleFactor > 100) return 0;
    return Saturate<Vsp32s>(RoundShiftEven(s, scaleFactor));
  }
  if (scaleFactor <= -32) return s > 0 ? kMaxOf<Vsp32s> : kMinOf<Vsp32s>;
  return Saturate<Vsp32s>(s * (static_cast<__int128>(1) << -scaleFactor));
}

// ---- implementations ----------------------------------------------------------------------------------

// Float results: blocked float lanes.
template <Shape kShape, class A, class B, class R>
VspStatus DotFloat(const A* pSrc1, const B* pSrc2, int len, R* pDp) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDp)) return st;
  FloatDotOp<kShape> op{reinterpret_cast<const Vsp32f*>(pSrc1), reinterpret_cast<const Vsp32f*>(pSrc2)};
  Blocked(pSrc1, len, kDotBlock, op);
  StorePair(pDp, op.Result());
  return vspStatOk;
}

// Double results.
template <Shape kShape, class A, class B, class R>
VspStatus DotDouble(const A* pSrc1, const B* pSrc2, int len, R* pDp) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDp)) return st;
  Pair r;
  if constexpr (kShape == Shape::kM) {
    DoubleDotOp<B, kShape> op{AsDoubles<B>(pSrc2), AsDoubles<B>(pSrc2), pSrc1};
    ForEachAligned(pSrc2, len, op);
    r = op.Result();
  } else {
    DoubleDotOp<A, kShape> op{AsDoubles<A>(pSrc1), AsDoubles<A>(pSrc2)};
    ForEachAligned(pSrc1, len, op);
    r = op.Result();
  }
  StorePair(pDp, r);
  return vspStatOk;
}

// 16s and 16sc operands: each part of the exact sum through `convert` (a conversion to the
// result type, or the scale-factor rule).
template <bool kComplex, class A, class R, class Convert>
VspStatus DotInt(const A* pSrc1, const A* pSrc2, int len, R* pDp, Convert convert) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDp)) return st;
  long long s[2];
  ownsDot_16s<kComplex>(reinterpret_cast<const Vsp16s*>(pSrc1), reinterpret_cast<const Vsp16s*>(pSrc2), len, s);
  BaseOf<R>* o = reinterpret_cast<BaseOf<R>*>(pDp);
  for (int c = 0; c < (kComplex ? 2 : 1); ++c) o[c] = convert(s[c]);
  return vspStatOk;
}
template <class P> auto Convert() { return [](long long v) { return static_cast<P>(v); }; }
template <class P> auto Scale(int scaleFactor) { return [scaleFactor](long long v) { return ScaleRule<P>(v, scaleFactor); }; }

}  // namespace

VSP_IMPL(VspStatus, vspsDotProd_32f, (const Vsp32f* pSrc1, const Vsp32f* pSrc2, int len, Vsp32f* pDp)) {
  return DotFloat<Shape::kR>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_32fc, (const Vsp32fc* pSrc1, const Vsp32fc* pSrc2, int len, Vsp32fc* pDp)) {
  return DotFloat<Shape::kC>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_32f32fc, (const Vsp32f* pSrc1, const Vsp32fc* pSrc2, int len, Vsp32fc* pDp)) {
  return DotFloat<Shape::kM>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_32f64f, (const Vsp32f* pSrc1, const Vsp32f* pSrc2, int len, Vsp64f* pDp)) {
  return DotDouble<Shape::kR>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_32fc64fc, (const Vsp32fc* pSrc1, const Vsp32fc* pSrc2, int len, Vsp64fc* pDp)) {
  return DotDouble<Shape::kC>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_64f, (const Vsp64f* pSrc1, const Vsp64f* pSrc2, int len, Vsp64f* pDp)) {
  return DotDouble<Shape::kR>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_64fc, (const Vsp64fc* pSrc1, const Vsp64fc* pSrc2, int len, Vsp64fc* pDp)) {
  return DotDouble<Shape::kC>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_64f64fc, (const Vsp64f* pSrc1, const Vsp64fc* pSrc2, int len, Vsp64fc* pDp)) {
  return DotDouble<Shape::kM>(pSrc1, pSrc2, len, pDp);
}
VSP_IMPL(VspStatus, vspsDotProd_16s64s, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, int len, Vsp64s* pDp)) {
  return DotInt<false>(pSrc1, pSrc2, len, pDp, Convert<Vsp64s>());
}
VSP_IMPL(VspStatus, vspsDotProd_16s32f, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, int len, Vsp32f* pDp)) {
  return DotInt<false>(pSrc1, pSrc2, len, pDp, Convert<Vsp32f>());
}
VSP_IMPL(VspStatus, vspsDotProd_16sc32fc, (const Vsp16sc* pSrc1, const Vsp16sc* pSrc2, int len, Vsp32fc* pDp)) {
  return DotInt<true>(pSrc1, pSrc2, len, pDp, Convert<Vsp32f>());
}
VSP_IMPL(VspStatus, vspsDotProd_16s_Sfs, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, int len, Vsp16s* pDp, int scaleFactor)) {
  return DotInt<false>(pSrc1, pSrc2, len, pDp, Scale<Vsp16s>(scaleFactor));
}
VSP_IMPL(VspStatus, vspsDotProd_16s32s_Sfs, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, int len, Vsp32s* pDp, int scaleFactor)) {
  return DotInt<false>(pSrc1, pSrc2, len, pDp, Scale<Vsp32s>(scaleFactor));
}
VSP_IMPL(VspStatus, vspsDotProd_16sc_Sfs, (const Vsp16sc* pSrc1, const Vsp16sc* pSrc2, int len, Vsp16sc* pDp, int scaleFactor)) {
  return DotInt<true>(pSrc1, pSrc2, len, pDp, Scale<Vsp16s>(scaleFactor));
}
VSP_IMPL(VspStatus, vspsDotProd_32s_Sfs, (const Vsp32s* pSrc1, const Vsp32s* pSrc2, int len, Vsp32s* pDp, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDp)) return st;
  *pDp = ScaleRule128(ownsDot_32s(pSrc1, pSrc2, len), scaleFactor);
  return vspStatOk;
}
