// Packed real spectra: products of two spectra in Pack or Perm layout, and the expansion of
// Pack, Perm and CCS to the full complex spectrum.
#include <cstring>

#include "core/check.h"
#include "core/impl.h"
#include "core/loop.h"
#include "core/simd/sse3_fft.h"

namespace vsp {
namespace {

namespace hw = vsp::simd;

enum class Lay { Pack, Perm, Ccs };
enum class Prod { Mul, MulConj };

// Offset of the first (re, im) pair and of the Nyquist value (-1: none) of an N-value layout.
inline long long PairStart(Lay lay, long long n) { return (lay == Lay::Perm && n % 2 == 0) ? 2 : 1; }
inline long long NyquistAt(Lay lay, long long n) { return n % 2 ? -1 : lay == Lay::Perm ? 1 : n - 1; }

// dst[k] = a[k] x b[k] (or a[k] x conj b[k]) over `pairs` complex values stored as T pairs;
// the complex product rounds each product once, then adds once, on every path.
template <class T, Prod kProd> struct PairProduct {
  static constexpr int kStep = hw::kPairs<T>;
  const T* a;
  const T* b;
  T* d;
  void Scalar(long long i) {
    const T ar = a[2 * i], ai = a[2 * i + 1], br = b[2 * i], bi = b[2 * i + 1];
    if constexpr (kProd == Prod::Mul) {
      d[2 * i] = ar * br - ai * bi;
      d[2 * i + 1] = ai * br + ar * bi;
    } else {
      d[2 * i] = ar * br + ai * bi;
      d[2 * i + 1] = ai * br - ar * bi;
    }
  }
  void Vector(long long i) {
    hw::Vec<T> x = hw::LoadU(a + 2 * i), y = hw::LoadU(b + 2 * i);
    hw::StoreU(kProd == Prod::Mul ? hw::MulComplex(x, y) : hw::MulComplexConj(x, y), d + 2 * i);
  }
};
template <class T> struct ComplexOf;
template <> struct ComplexOf<Vsp32f> { using Type = Vsp32fc; };
template <> struct ComplexOf<Vsp64f> { using Type = Vsp64fc; };

// d = a x b (Mul) or a x conj(b) (MulConj), all three in layout `lay`; d may be b.
template <class T, Prod kProd> void ownsMulPacked(Lay lay, const T* a, const T* b, T* d, long long n) {
  const long long pairs = (n - 1) / 2, at = PairStart(lay, n), nyq = NyquistAt(lay, n);
  d[0] = a[0] * b[0];
  if (nyq >= 0) d[nyq] = a[nyq] * b[nyq];
  PairProduct<T, kProd> op{a + at, b + at, d + at};
  ForEachAligned(reinterpret_cast<typename ComplexOf<T>::Type*>(d + at), pairs, op);
}
template <class T, Prod kProd> VspStatus MulInPlace(Lay lay, const T* src, T* srcDst, int len) {
  if (VspStatus st = CheckVec(len, src, srcDst)) return st;
  ownsMulPacked<T, kProd>(lay, src, srcDst, srcDst, len);
  return vspStatOk;
}
template <class T> VspStatus MulOut(Lay lay, const T* src1, const T* src2, T* dst, int len) {
  if (VspStatus st = CheckVec(len, src1, src2, dst)) return st;
  ownsMulPacked<T, Prod::Mul>(lay, src1, src2, dst, len);
  return vspStatOk;
}

// Expansion to N complex values. Out of place: bins 0 .. N/2 copied (for CCS whole, for Pack
// and Perm from the layout's places with 0 imaginary parts for the real bins), then mirrored:
// Y(N - k) = conj Y(k) for k = 1 .. (N-1)/2, a whole vector of bins at a time (the two ranges
// never overlap).
template <class T> void ownsMirror(T* y, long long n) {
  constexpr int P = hw::kPairs<T>;
  const long long h = (n - 1) / 2;
  long long k = 1;
  for (; k + P - 1 <= h; k += P)
    hw::StoreU(hw::ReversePairs(hw::Conj(hw::LoadU(y + 2 * k))), y + 2 * (n - k - P + 1));
  for (; k <= h; ++k) hw::Store1(hw::Conj(hw::Load1(y + 2 * k)), y + 2 * (n - k));
}

template <class T> VspStatus ExpandInPlace(Lay lay, T* y, int len) {
  if (VspStatus st = CheckVec(len, y)) return st;
  const long long n = len, h = (n - 1) / 2;
  if (lay == Lay::Ccs) {
    ownsMirror(y, n);
    return vspStatOk;
  }
  const long long nyq = NyquistAt(lay, n);
  if (nyq >= 0) {
    const T v = y[nyq];
    y[n] = v;
    y[n + 1] = 0;
  }
  // Where the pairs stand one value below their complex slots (Pack, Perm of odd N), they
  // move up by one value first.
  if (PairStart(lay, n) == 1) std::memmove(y + 2, y + 1, 2 * h * sizeof(T));
  ownsMirror(y, n);
  y[1] = 0;
  return vspStatOk;
}

template <class T> VspStatus ExpandOut(Lay lay, const T* x, T* y, int len) {
  if (VspStatus st = CheckVec(len, x, y)) return st;
  const long long n = len, h = (n - 1) / 2;
  if (lay == Lay::Ccs) {
    std::memcpy(y, x, (2 * (n / 2) + 2) * sizeof(T));
  } else {
    y[0] = x[0];
    y[1] = 0;
    std::memcpy(y + 2, x + PairStart(lay, n), 2 * h * sizeof(T));
    if (const long long nyq = NyquistAt(lay, n); nyq >= 0) y[n] = x[nyq], y[n + 1] = 0;
  }
  ownsMirror(y, n);
  return vspStatOk;
}

}  // namespace
}  // namespace vsp

using vsp::Lay;
using vsp::Prod;

#define VSP_PACKED_MUL(L, t)                                                                                     \
  VSP_IMPL(VspStatus, vspsMul##L##_##t##_I, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len)) {                   \
    return vsp::MulInPlace<Vsp##t, Prod::Mul>(Lay::L, pSrc, pSrcDst, len);                                       \
  }                                                                                                              \
  VSP_IMPL(VspStatus, vspsMul##L##_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, int len)) {    \
    if (pSrc2 == pDst) return VSP_CALL(vspsMul##L##_##t##_I)(pSrc1, pDst, len);                                  \
    if (pSrc1 == pDst) return VSP_CALL(vspsMul##L##_##t##_I)(pSrc2, pDst, len);                                  \
    return vsp::MulOut(Lay::L, pSrc1, pSrc2, pDst, len);                                                         \
  }
VSP_PACKED_MUL(Pack, 32f)
VSP_PACKED_MUL(Perm, 32f)
VSP_PACKED_MUL(Pack, 64f)
VSP_PACKED_MUL(Perm, 64f)
#undef VSP_PACKED_MUL

VSP_IMPL(VspStatus, vspsMulPackConj_32f_I, (const Vsp32f* pSrc, Vsp32f* pSrcDst, int len)) {
  return vsp::MulInPlace<Vsp32f, Prod::MulConj>(Lay::Pack, pSrc, pSrcDst, len);
}
VSP_IMPL(VspStatus, vspsMulPackConj_64f_I, (const Vsp64f* pSrc, Vsp64f* pSrcDst, int len)) {
  return vsp::MulInPlace<Vsp64f, Prod::MulConj>(Lay::Pack, pSrc, pSrcDst, len);
}

#define VSP_PACKED_CONJ(L, t, b)                                                                                \
  VSP_IMPL(VspStatus, vspsConj##L##_##t##_I, (Vsp##t * pSrcDst, int len)) {                                     \
    return vsp::ExpandInPlace(Lay::L, reinterpret_cast<Vsp##b*>(pSrcDst), len);                                \
  }                                                                                                             \
  VSP_IMPL(VspStatus, vspsConj##L##_##t, (const Vsp##b* pSrc, Vsp##t* pDst, int len)) {                        \
    if (Lay::L != Lay::Ccs && static_cast<const void*>(pSrc) == static_cast<const void*>(pDst))                 \
      return VSP_CALL(vspsConj##L##_##t##_I)(pDst, len);                                                        \
    return vsp::ExpandOut(Lay::L, pSrc, reinterpret_cast<Vsp##b*>(pDst), len);                                  \
  }
VSP_PACKED_CONJ(Pack, 32fc, 32f)
VSP_PACKED_CONJ(Perm, 32fc, 32f)
VSP_PACKED_CONJ(Ccs, 32fc, 32f)
VSP_PACKED_CONJ(Pack, 64fc, 64f)
VSP_PACKED_CONJ(Perm, 64fc, 64f)
VSP_PACKED_CONJ(Ccs, 64fc, 64f)
#undef VSP_PACKED_CONJ
