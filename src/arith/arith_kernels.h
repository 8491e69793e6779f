// Element-wise float kernels (32f, 64f, 32fc, 64fc) and the sources every element-wise kernel
// reads from. Transforms and filters call these directly (spectral products, scaling by a
// constant) instead of going through the exports; like every kernel they never check and never
// fail.
//
// Complex products are (a.re*b.re - a.im*b.im, a.im*b.re + a.re*b.im); complex quotients x / y
// are ((x.re*y.re + x.im*y.im) / den, (x.im*y.re - x.re*y.im) / den) with
// den = y.re*y.re + y.im*y.im, every operation rounded in the element's precision. The vector
// bodies perform the same operations per element as the scalar heads and tails.
#pragma once

#include <cstring>

#include "core/loop.h"
#include "core/simd/sse3.h"
#include "core/types.h"

namespace vsp {

namespace hw = vsp::simd;

// ---- sources -------------------------------------------------------------------------------------

// A vector operand. At(i) is element i; Load(i) the 16 bytes from element i on, as lanes of the
// element's base type (a complex element is two lanes).
template <class T>
struct Stream {
  using Elem = T;
  const T* p;
  T At(long long i) const { return p[i]; }
  hw::Vec<BaseOf<T>> Load(long long i) const { return hw::LoadU(reinterpret_cast<const BaseOf<T>*>(p + i)); }
};

// A constant operand: the same element everywhere (a complex constant as its repeated pair).
template <class T>
struct Broadcast {
  using Elem = T;
  static constexpr const T* p = nullptr;  // no vector behind it
  T v;
  hw::Vec<BaseOf<T>> vec;
  explicit Broadcast(T value) : v(value) {
    alignas(hw::kVecBytes) T lanes[hw::kLanes<T>];
    for (T& x : lanes) x = value;
    vec = hw::Load(reinterpret_cast<const BaseOf<T>*>(lanes));
  }
  T At(long long) const { return v; }
  hw::Vec<BaseOf<T>> Load(long long) const { return vec; }
};

// ---- scalar complex arithmetic in the order of the vector bodies -----------------------------------

template <class T> inline T ElemAdd(T x, T y) {
  if constexpr (kIsComplex<T>) return {x.re + y.re, x.im + y.im};
  else return x + y;
}
template <class T> inline T ElemSub(T x, T y) {
  if constexpr (kIsComplex<T>) return {x.re - y.re, x.im - y.im};
  else return x - y;
}
template <class T> inline T ElemMul(T x, T y) {
  if constexpr (kIsComplex<T>) return {x.re * y.re - x.im * y.im, x.im * y.re + x.re * y.im};
  else return x * y;
}
template <class T> inline T ElemDiv(T x, T y) {
  if constexpr (kIsComplex<T>) {
    const BaseOf<T> den = y.re * y.re + y.im * y.im;
    return {(x.re * y.re + x.im * y.im) / den, (x.im * y.re - x.re * y.im) / den};
  } else {
    return x / y;
  }
}
template <class T> inline bool ElemIsZero(T x) {
  if constexpr (kIsComplex<T>) return x.re == 0 && x.im == 0;
  else return x == 0;
}

// ---- vector forms of the same operations --------------------------------------------------------

// x / y for lanes holding complex pairs.
template <class B> inline hw::Vec<B> ComplexDiv(hw::Vec<B> x, hw::Vec<B> y) {
  hw::Vec<B> sq = hw::Mul(y, y);
  hw::Vec<B> den = hw::Add(sq, hw::SwapReIm(sq));
  // (x.re*y.re, x.im*y.re) and (x.im*y.im, x.re*y.im): even lanes add, odd lanes subtract.
  hw::Vec<B> p = hw::Mul(x, hw::DupRe(y)), q = hw::Mul(hw::SwapReIm(x), hw::DupIm(y));
  return hw::Div(hw::AddSub(p, hw::Neg(q)), den);
}
// All ones in the lanes of every element of y that is zero (both parts, for complex pairs).
template <class T> inline hw::Vec<BaseOf<T>> ZeroElements(hw::Vec<BaseOf<T>> y) {
  auto z = hw::Eq(y, hw::Zero<BaseOf<T>>());
  if constexpr (kIsComplex<T>) z = hw::And(z, hw::SwapReIm(z));
  return z;
}

struct AddOp {
  template <class T> static T Scalar(T x, T y) { return ElemAdd(x, y); }
  template <class T, class V> static V Vector(V x, V y) { return hw::Add(x, y); }
};
struct SubOp {
  template <class T> static T Scalar(T x, T y) { return ElemSub(x, y); }
  template <class T, class V> static V Vector(V x, V y) { return hw::Sub(x, y); }
};
struct MulOp {
  template <class T> static T Scalar(T x, T y) { return ElemMul(x, y); }
  template <class T, class V> static V Vector(V x, V y) {
    if constexpr (kIsComplex<T>) return hw::MulComplex(x, y);
    else return hw::Mul(x, y);
  }
};
// pd + x * y, for the accumulating loop: the product rounded, then the sum with the destination.
struct MulAddOp : MulOp {
  static constexpr bool kAccumulate = true;
};
template <class Op> inline constexpr bool kAccumulates = requires { Op::kAccumulate; };

struct DivOp {
  template <class T> static T Scalar(T x, T y) { return ElemDiv(x, y); }
  template <class T, class V> static V Vector(V x, V y) {
    if constexpr (kIsComplex<T>) return ComplexDiv(x, y);
    else return hw::Div(x, y);
  }
};

// ---- the element-wise loop ------------------------------------------------------------------------

// Outputs from this size on are written with non-temporal stores when the vector body stores
// aligned and the output is not a source: they would not stay in the caches anyway, and
// bypassing them saves reading each destination line before it is overwritten.
constexpr long long kStreamBytes = 4LL << 20;

template <class T>
inline bool StreamOutput(const T* d, long long n, const void* x, const void* y) {
  const uintptr_t a = reinterpret_cast<uintptr_t>(d);
  return n * static_cast<long long>(sizeof(T)) >= kStreamBytes && a % (sizeof(T) < hw::kVecBytes ? sizeof(T) : hw::kVecBytes) == 0 &&
         static_cast<const void*>(d) != x && static_cast<const void*>(d) != y;
}
template <bool kStream, class B>
inline void Put(hw::Vec<B> v, B* p) {
  if constexpr (kStream) hw::StoreStream(v, p);
  else hw::StoreU(v, p);
}

// d[i] = Op(x[i], y[i]), or d[i] + Op(x[i], y[i]) for accumulating operations; with a divisor
// check, flag becomes true where y[i] is zero. Four vectors per step.
template <class Op, class T, class X, class Y, bool kCheckZero = false, bool kStream = false>
struct FloatEach {
  using B = BaseOf<T>;
  static constexpr int kLanes = hw::kLanes<T>;  // elements per vector
  static constexpr int kStep = 4 * kLanes;
  X x;
  Y y;
  T* d;
  hw::Vec<B> zeros = hw::Zero<B>();
  bool flag = false;

  void Scalar(long long i) {
    const T yi = y.At(i);
    if constexpr (kCheckZero) flag |= ElemIsZero(yi);
    if constexpr (kAccumulates<Op>) d[i] = ElemAdd(d[i], Op::template Scalar<T>(x.At(i), yi));
    else d[i] = Op::template Scalar<T>(x.At(i), yi);
  }
  void Vector(long long i) {
    B* out = reinterpret_cast<B*>(d + i);
    for (int k = 0; k < 4; ++k) {
      hw::Vec<B> yv = y.Load(i + k * kLanes);
      if constexpr (kCheckZero) zeros = hw::Or(zeros, ZeroElements<T>(yv));
      hw::Vec<B> r = Op::template Vector<T>(x.Load(i + k * kLanes), yv);
      if constexpr (kAccumulates<Op>) r = hw::Add(hw::LoadU(out + k * hw::kLanes<B>), r);
      Put<kStream>(r, out + k * hw::kLanes<B>);
    }
  }
  bool Flagged() const { return flag || hw::AnyTrue(zeros); }
};

// d[i] = Op(x[i], y[i]) over n elements; returns true when kCheckZero and some y[i] was zero.
template <class Op, bool kCheckZero = false, class T, class X, class Y>
inline bool ownsEach(X x, Y y, T* d, long long n) {
  if (!kAccumulates<Op> && StreamOutput(d, n, x.p, y.p)) {
    FloatEach<Op, T, X, Y, kCheckZero, true> op{x, y, d};
    ForEachAligned(d, n, op);
    hw::StoreFence();
    return op.Flagged();
  }
  FloatEach<Op, T, X, Y, kCheckZero> op{x, y, d};
  ForEachAligned(d, n, op);
  return op.Flagged();
}

// ---- named kernels ------------------------------------------------------------------------------

// d = a + b, a - b, a * b (complex products for complex T).
template <class T> inline void ownsAdd(const T* a, const T* b, T* d, long long n) { ownsEach<AddOp>(Stream<T>{a}, Stream<T>{b}, d, n); }
template <class T> inline void ownsSub(const T* a, const T* b, T* d, long long n) { ownsEach<SubOp>(Stream<T>{a}, Stream<T>{b}, d, n); }
template <class T> inline void ownsMul(const T* a, const T* b, T* d, long long n) { ownsEach<MulOp>(Stream<T>{a}, Stream<T>{b}, d, n); }
// d = a + c, a - c, c - a, a * c for a constant c.
template <class T> inline void ownsAddC(const T* a, T c, T* d, long long n) { ownsEach<AddOp>(Stream<T>{a}, Broadcast<T>(c), d, n); }
template <class T> inline void ownsSubC(const T* a, T c, T* d, long long n) { ownsEach<SubOp>(Stream<T>{a}, Broadcast<T>(c), d, n); }
template <class T> inline void ownsSubCRev(const T* a, T c, T* d, long long n) { ownsEach<SubOp>(Broadcast<T>(c), Stream<T>{a}, d, n); }
template <class T> inline void ownsMulC(const T* a, T c, T* d, long long n) { ownsEach<MulOp>(Stream<T>{a}, Broadcast<T>(c), d, n); }
// d = a / b by IEEE division; true when some b[i] is zero.
template <class T> inline bool ownsDiv(const T* a, const T* b, T* d, long long n) {
  return ownsEach<DivOp, true>(Stream<T>{a}, Stream<T>{b}, d, n);
}

// d[i] += a[i] * b[i] and d[i] += a[i] * c (the product rounded, then the sum).
template <class T> inline void ownsAddProduct(const T* a, const T* b, T* d, long long n) {
  ownsEach<MulAddOp>(Stream<T>{a}, Stream<T>{b}, d, n);
}
template <class T> inline void ownsAddProductC(const T* a, T c, T* d, long long n) {
  ownsEach<MulAddOp>(Stream<T>{a}, Broadcast<T>(c), d, n);
}

// d[i] = a[i] * b[i] for a real vector a and a complex vector b: (a*b.re, a*b.im).
template <class B>
struct MulRealComplexEach {
  using C = std::conditional_t<std::is_same_v<B, Vsp32f>, Vsp32fc, Vsp64fc>;
  static constexpr int kLanes = hw::kLanes<C>;  // complex elements per vector
  static constexpr int kStep = 2 * kLanes;
  const B* a;
  const C* b;
  C* d;
  void Scalar(long long i) { d[i] = {a[i] * b[i].re, a[i] * b[i].im}; }
  void Vector(long long i) {
    const B* bb = reinterpret_cast<const B*>(b + i);
    B* out = reinterpret_cast<B*>(d + i);
    constexpr int kParts = hw::kLanes<B>;  // real lanes per vector
    if constexpr (kLanes == 2) {
      hw::Vec<B> r = hw::LoadU(a + i);  // four reals cover two steps of two complex elements
      hw::StoreU(hw::Mul(hw::InterleaveLo(r, r), hw::LoadU(bb)), out);
      hw::StoreU(hw::Mul(hw::InterleaveHi(r, r), hw::LoadU(bb + kParts)), out + kParts);
    } else {
      for (int k = 0; k < 2; ++k) hw::StoreU(hw::Mul(hw::Set1(a[i + k]), hw::LoadU(bb + k * kParts)), out + k * kParts);
    }
  }
};
template <class B, class C> inline void ownsMulRealComplex(const B* a, const C* b, C* d, long long n) {
  MulRealComplexEach<B> op{a, b, d};
  ForEachAligned(d, n, op);
}

// ---- 32f quotients by the refined reciprocal estimate ---------------------------------------------

// q = n / d through the hardware estimate r of 1 / d: e = 1 - d*r, q = (n*r) * ((1 + e) + e*e),
// each step rounded to 32f. Where |e| is not below 1/2 (zero, subnormal, infinite and NaN
// divisors, and those so large that the estimate underflows to 0) the lane takes the IEEE
// quotient n / d instead: the choice is made lane by lane, so the result of an element does not
// depend on the lanes it shares a vector with.
template <bool kStream>
struct RcpDivEach {
  static constexpr int kStep = 8;
  const Vsp32f* n;
  const Vsp32f* dv;
  Vsp32f* q;
  hw::Vec<Vsp32f> zeros = hw::Zero<Vsp32f>();
  bool flag = false;

  // The refined quotient; `off` gains the lanes that need the IEEE quotient.
  static hw::Vec<Vsp32f> Refined(hw::Vec<Vsp32f> num, hw::Vec<Vsp32f> den, hw::Vec<Vsp32f>& off) {
    const hw::Vec<Vsp32f> one = hw::Set1(1.0f);
    hw::Vec<Vsp32f> r = hw::ApproxRecip(den);
    hw::Vec<Vsp32f> e = hw::Sub(one, hw::Mul(den, r));
    off = hw::Or(off, hw::NotLt(hw::Abs(e), hw::Set1(0.5f)));
    return hw::Mul(hw::Mul(num, r), hw::Add(hw::Add(one, e), hw::Mul(e, e)));
  }
  static hw::Vec<Vsp32f> Quotient(hw::Vec<Vsp32f> num, hw::Vec<Vsp32f> den) {
    hw::Vec<Vsp32f> off = hw::Zero<Vsp32f>();
    hw::Vec<Vsp32f> r = Refined(num, den, off);
    return hw::Select(off, hw::Div(num, den), r);
  }
  void Scalar(long long i) {
    flag |= dv[i] == 0;
    q[i] = hw::GetLane0(Quotient(hw::Set1(n[i]), hw::Set1(dv[i])));
  }
  void Vector(long long i) {
    hw::Vec<Vsp32f> n0 = hw::LoadU(n + i), n1 = hw::LoadU(n + i + 4);
    hw::Vec<Vsp32f> d0 = hw::LoadU(dv + i), d1 = hw::LoadU(dv + i + 4);
    hw::Vec<Vsp32f> off = hw::Zero<Vsp32f>();
    hw::Vec<Vsp32f> q0 = Refined(n0, d0, off), q1 = Refined(n1, d1, off);
    if (hw::AnyTrue(off)) {  // a zero divisor lands here too
      zeros = hw::Or(zeros, hw::Or(hw::Eq(d0, hw::Zero<Vsp32f>()), hw::Eq(d1, hw::Zero<Vsp32f>())));
      q0 = Quotient(n0, d0), q1 = Quotient(n1, d1);
    }
    Put<kStream>(q0, q + i);
    Put<kStream>(q1, q + i + 4);
  }
};
// q = n / d over len elements as above; true when some d[i] is zero.
inline bool ownsDivRcp_32f(const Vsp32f* n, const Vsp32f* d, Vsp32f* q, long long len) {
  auto run = [&](auto op) {
    ForEachAligned(q, len, op);
    return op.flag || hw::AnyTrue(op.zeros);
  };
  if (!StreamOutput(q, len, n, d)) return run(RcpDivEach<false>{n, d, q});
  const bool zero = run(RcpDivEach<true>{n, d, q});
  hw::StoreFence();
  return zero;
}

}  // namespace vsp
