// Bitwise logic and shifts: checks and the short-cuts through Zero and Copy, then one element-wise
// kernel per operation, written once over the element type.
#include <climits>

#include "core/check.h"
#include "core/impl.h"
#include "core/loop.h"
#include "core/simd/sse3.h"

namespace {

using namespace vsp;
namespace hw = vsp::simd;

// ---- kernels -------------------------------------------------------------------------------------

// dst[i] = op(a[i], b[i]), or op(a[i]) for unary operations (b unused), four vectors per step.
template <class T, class Op, bool kBinary>
struct MapOp {
  static constexpr int kLanes = hw::kLanes<T>;
  static constexpr int kVectors = 4;
  static constexpr int kStep = kVectors * kLanes;
  const T* a;
  const T* b;
  T* dst;
  Op op;
  void Scalar(long long i) {
    if constexpr (kBinary) dst[i] = op(a[i], b[i]);
    else dst[i] = op(a[i]);
  }
  void Vector(long long i) {
    for (int k = 0; k < kVectors; ++k) {
      const auto x = hw::LoadU(a + i + k * kLanes);
      if constexpr (kBinary) hw::StoreU(op(x, hw::LoadU(b + i + k * kLanes)), dst + i + k * kLanes);
      else hw::StoreU(op(x), dst + i + k * kLanes);
    }
  }
};

template <class T, class Op>
void ownsMap(const T* a, const T* b, T* dst, long long n, Op op) {
  MapOp<T, Op, true> m{a, b, dst, op};
  ForEachAligned(dst, n, m);
}
template <class T, class Op>
void ownsMap(const T* a, T* dst, long long n, Op op) {
  MapOp<T, Op, false> m{a, nullptr, dst, op};
  ForEachAligned(dst, n, m);
}

enum class Bitwise { kAnd, kOr, kXor };

// a op b for elements and for vectors; with a constant, op(a) = a op c.
template <class T, Bitwise kOp>
struct BitOp {
  T c{};
  static T Scalar(T x, T y) {
    if constexpr (kOp == Bitwise::kAnd) return static_cast<T>(x & y);
    else if constexpr (kOp == Bitwise::kOr) return static_cast<T>(x | y);
    else return static_cast<T>(x ^ y);
  }
  static hw::Vec<T> Vector(hw::Vec<T> x, hw::Vec<T> y) {
    if constexpr (kOp == Bitwise::kAnd) return hw::And(x, y);
    else if constexpr (kOp == Bitwise::kOr) return hw::Or(x, y);
    else return hw::Xor(x, y);
  }
  T operator()(T x, T y) const { return Scalar(x, y); }
  hw::Vec<T> operator()(hw::Vec<T> x, hw::Vec<T> y) const { return Vector(x, y); }
  T operator()(T x) const { return Scalar(x, c); }
  hw::Vec<T> operator()(hw::Vec<T> x) const { return Vector(x, hw::Set1(c)); }
};

// Shift by k in 0 .. width - 1 (arithmetic right shifts for signed T). SSE has no 8-bit shift:
// 8u lanes shift as 16-bit lanes, and the bits that cross into a neighbouring byte are masked.
template <class T, bool kLeft>
struct ShiftOp {
  int k;
  T operator()(T x) const { return static_cast<T>(kLeft ? x << k : x >> k); }
  hw::Vec<T> operator()(hw::Vec<T> x) const {
    if constexpr (sizeof(T) == 1) {
      const auto w = hw::BitCast<Vsp16u>(x);
      const auto keep = hw::Set1<T>(static_cast<T>(kLeft ? 0xFF << k : 0xFF >> k));
      return hw::And(hw::BitCast<T>(kLeft ? hw::ShiftLeft(w, k) : hw::ShiftRight(w, k)), keep);
    } else {
      return kLeft ? hw::ShiftLeft(x, k) : hw::ShiftRight(x, k);
    }
  }
};

// ---- short-cut targets ----------------------------------------------------------------------------

// Zero and Copy of the element type, or of the signed type of the same size, which moves the
// same bits.
VspStatus ZeroOf(Vsp8u* p, int len) { return VSP_CALL(vspsZero_8u)(p, len); }
VspStatus ZeroOf(Vsp16u* p, int len) { return VSP_CALL(vspsZero_16s)(reinterpret_cast<Vsp16s*>(p), len); }
VspStatus ZeroOf(Vsp16s* p, int len) { return VSP_CALL(vspsZero_16s)(p, len); }
VspStatus ZeroOf(Vsp32u* p, int len) { return VSP_CALL(vspsZero_32s)(reinterpret_cast<Vsp32s*>(p), len); }
VspStatus ZeroOf(Vsp32s* p, int len) { return VSP_CALL(vspsZero_32s)(p, len); }
VspStatus CopyOf(const Vsp8u* s, Vsp8u* d, int len) { return VSP_CALL(vspsCopy_8u)(s, d, len); }
VspStatus CopyOf(const Vsp16u* s, Vsp16u* d, int len) {
  return VSP_CALL(vspsCopy_16s)(reinterpret_cast<const Vsp16s*>(s), reinterpret_cast<Vsp16s*>(d), len);
}
VspStatus CopyOf(const Vsp16s* s, Vsp16s* d, int len) { return VSP_CALL(vspsCopy_16s)(s, d, len); }
VspStatus CopyOf(const Vsp32u* s, Vsp32u* d, int len) {
  return VSP_CALL(vspsCopy_32s)(reinterpret_cast<const Vsp32s*>(s), reinterpret_cast<Vsp32s*>(d), len);
}
VspStatus CopyOf(const Vsp32s* s, Vsp32s* d, int len) { return VSP_CALL(vspsCopy_32s)(s, d, len); }

// ---- implementations ------------------------------------------------------------------------------

template <Bitwise kOp, class T>
VspStatus Vectors(const T* pSrc1, const T* pSrc2, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  ownsMap(pSrc1, pSrc2, pDst, len, BitOp<T, kOp>{});
  return vspStatOk;
}

// pSrc == pDst for the _I forms (pDst is then also pSrcDst).
template <Bitwise kOp, class T>
VspStatus Constant(const T* pSrc, T val, T* pDst, int len, bool inPlace) {
  if (val == 0) {
    if constexpr (kOp == Bitwise::kAnd) {
      if (!inPlace && !pSrc) return vspStatNullPtr;
      return ZeroOf(pDst, len);
    } else {
      if (!inPlace) return CopyOf(pSrc, pDst, len);
      return CheckVec(len, pDst);
    }
  }
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsMap(pSrc, pDst, len, BitOp<T, kOp>{val});
  return vspStatOk;
}

template <class T, bool kLeft>
VspStatus Shift(const T* pSrc, int val, T* pDst, int len, bool inPlace) {
  constexpr int kTop = static_cast<int>(sizeof(T)) * CHAR_BIT - 1;
  constexpr bool kSignFill = !kLeft && std::is_signed_v<T>;
  if (val == 0) return inPlace ? CheckVec(len, pDst) : CopyOf(pSrc, pDst, len);
  if (!kSignFill && val > kTop) {
    if (!inPlace && !pSrc) return vspStatNullPtr;
    return ZeroOf(pDst, len);
  }
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (val < 0) return vspStatShiftErr;
  ownsMap(pSrc, pDst, len, ShiftOp<T, kLeft>{val < kTop ? val : kTop});
  return vspStatOk;
}

}  // namespace

#define VSP_LOGIC_TYPE(t)                                                                                          \
  VSP_IMPL(VspStatus, vspsAnd_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, int len)) {            \
    return Vectors<Bitwise::kAnd>(pSrc1, pSrc2, pDst, len);                                                        \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsOr_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, int len)) {             \
    return Vectors<Bitwise::kOr>(pSrc1, pSrc2, pDst, len);                                                         \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsXor_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, int len)) {            \
    return Vectors<Bitwise::kXor>(pSrc1, pSrc2, pDst, len);                                                        \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsAnd_##t##_I, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len)) {                           \
    return Vectors<Bitwise::kAnd>(pSrcDst, pSrc, pSrcDst, len);                                                    \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsOr_##t##_I, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len)) {                            \
    return Vectors<Bitwise::kOr>(pSrcDst, pSrc, pSrcDst, len);                                                     \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsXor_##t##_I, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len)) {                           \
    return Vectors<Bitwise::kXor>(pSrcDst, pSrc, pSrcDst, len);                                                    \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsAndC_##t, (const Vsp##t* pSrc, Vsp##t val, Vsp##t* pDst, int len)) {                     \
    return Constant<Bitwise::kAnd>(pSrc, val, pDst, len, false);                                                   \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsOrC_##t, (const Vsp##t* pSrc, Vsp##t val, Vsp##t* pDst, int len)) {                      \
    return Constant<Bitwise::kOr>(pSrc, val, pDst, len, false);                                                    \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsXorC_##t, (const Vsp##t* pSrc, Vsp##t val, Vsp##t* pDst, int len)) {                     \
    return Constant<Bitwise::kXor>(pSrc, val, pDst, len, false);                                                   \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsAndC_##t##_I, (Vsp##t val, Vsp##t * pSrcDst, int len)) {                                 \
    return Constant<Bitwise::kAnd>(pSrcDst, val, pSrcDst, len, true);                                              \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsOrC_##t##_I, (Vsp##t val, Vsp##t * pSrcDst, int len)) {                                  \
    return Constant<Bitwise::kOr>(pSrcDst, val, pSrcDst, len, true);                                               \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsXorC_##t##_I, (Vsp##t val, Vsp##t * pSrcDst, int len)) {                                 \
    return Constant<Bitwise::kXor>(pSrcDst, val, pSrcDst, len, true);                                              \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsNot_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {                                  \
    return VSP_CALL(vspsXorC_##t)(pSrc, static_cast<Vsp##t>(~Vsp##t{0}), pDst, len);                               \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsNot_##t##_I, (Vsp##t * pSrcDst, int len)) {                                              \
    return VSP_CALL(vspsXorC_##t##_I)(static_cast<Vsp##t>(~Vsp##t{0}), pSrcDst, len);                              \
  }
VSP_LOGIC_TYPE(8u)
VSP_LOGIC_TYPE(16u)
VSP_LOGIC_TYPE(32u)

#define VSP_SHIFT(op, t, left)                                                                 \
  VSP_IMPL(VspStatus, vsps##op##_##t, (const Vsp##t* pSrc, int val, Vsp##t* pDst, int len)) {  \
    return Shift<Vsp##t, left>(pSrc, val, pDst, len, false);                                   \
  }                                                                                            \
  VSP_IMPL(VspStatus, vsps##op##_##t##_I, (int val, Vsp##t * pSrcDst, int len)) {              \
    return Shift<Vsp##t, left>(pSrcDst, val, pSrcDst, len, true);                              \
  }
VSP_SHIFT(LShiftC, 8u, true)
VSP_SHIFT(LShiftC, 16u, true)
VSP_SHIFT(LShiftC, 32s, true)
VSP_SHIFT(RShiftC, 8u, false)
VSP_SHIFT(RShiftC, 16u, false)
VSP_SHIFT(RShiftC, 16s, false)
VSP_SHIFT(RShiftC, 32s, false)

// The left shift of 16s elements is the 16u operation on the same bits.
VSP_IMPL(VspStatus, vspsLShiftC_16s, (const Vsp16s* pSrc, int val, Vsp16s* pDst, int len)) {
  return VSP_CALL(vspsLShiftC_16u)(reinterpret_cast<const Vsp16u*>(pSrc), val, reinterpret_cast<Vsp16u*>(pDst), len);
}
VSP_IMPL(VspStatus, vspsLShiftC_16s_I, (int val, Vsp16s * pSrcDst, int len)) {
  return VSP_CALL(vspsLShiftC_16u_I)(val, reinterpret_cast<Vsp16u*>(pSrcDst), len);
}
