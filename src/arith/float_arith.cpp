// Float members of the arithmetic families (32f, 64f, 32fc, 64fc): checks, then the kernels of
// arith_kernels.h.
#include "arith/arith_kernels.h"
#include "arith/shapes.h"
#include "core/check.h"
#include "core/impl.h"

namespace {

using namespace vsp;

// x op y for two vectors; the non-commutative families pass their operands in formula order.
template <class Op, class T>
VspStatus VecVec(const T* p1, const T* p2, const T* x, const T* y, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, p1, p2, pDst)) return st;
  ownsEach<Op>(Stream<T>{x}, Stream<T>{y}, pDst, len);
  return vspStatOk;
}
template <class T> VspStatus AddVV(const T* a, const T* b, T* d, int len) { return VecVec<AddOp>(a, b, a, b, d, len); }
template <class T> VspStatus SubVV(const T* a, const T* b, T* d, int len) { return VecVec<SubOp>(a, b, b, a, d, len); }
template <class T> VspStatus MulVV(const T* a, const T* b, T* d, int len) { return VecVec<MulOp>(a, b, a, b, d, len); }

// pSrc2 / pSrc1: the refined reciprocal for 32f, IEEE division otherwise; 6 for a zero divisor.
template <class T>
VspStatus DivVV(const T* pSrc1, const T* pSrc2, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  bool zero;
  if constexpr (std::is_same_v<T, Vsp32f>) zero = ownsDivRcp_32f(pSrc2, pSrc1, pDst, len);
  else zero = ownsDiv(pSrc2, pSrc1, pDst, len);
  return zero ? vspStatDivByZeroWarn : vspStatOk;
}

// x op y with one operand the constant; kConstFirst puts it on the left (SubCRev).
template <class Op, bool kConstFirst = false, class T>
VspStatus VecConst(const T* pSrc, T val, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if constexpr (kConstFirst) ownsEach<Op>(Broadcast<T>(val), Stream<T>{pSrc}, pDst, len);
  else ownsEach<Op>(Stream<T>{pSrc}, Broadcast<T>(val), pDst, len);
  return vspStatOk;
}
template <class T> VspStatus AddVC(const T* s, T v, T* d, int len) { return VecConst<AddOp>(s, v, d, len); }
template <class T> VspStatus SubVC(const T* s, T v, T* d, int len) { return VecConst<SubOp>(s, v, d, len); }
template <class T> VspStatus SubRevVC(const T* s, T v, T* d, int len) { return VecConst<SubOp, true>(s, v, d, len); }
template <class T> VspStatus MulVC(const T* s, T v, T* d, int len) { return VecConst<MulOp>(s, v, d, len); }

// pSrc / val by division (64f and complex members); a zero val is refused after the vectors.
template <class T>
VspStatus DivVC(const T* pSrc, T val, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (ElemIsZero(val)) return vspStatDivByZeroErr;
  ownsEach<DivOp>(Stream<T>{pSrc}, Broadcast<T>(val), pDst, len);
  return vspStatOk;
}

// val / pSrc[i]: IEEE division, 6 when some element is zero.
template <class T>
VspStatus DivRevVC(const T* pSrc, T val, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  return ownsEach<DivOp, true>(Broadcast<T>(val), Stream<T>{pSrc}, pDst, len) ? vspStatDivByZeroWarn : vspStatOk;
}

template <class T>
VspStatus AddProduct(const T* pSrc1, const T* pSrc2, T* pSrcDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pSrcDst)) return st;
  ownsAddProduct(pSrc1, pSrc2, pSrcDst, len);
  return vspStatOk;
}

}  // namespace

#define VSP_FLOAT_FAMILIES(t)           \
  VSP_SHAPE_VV_BOTH(Add, AddVV, t)      \
  VSP_SHAPE_VV_BOTH(Sub, SubVV, t)      \
  VSP_SHAPE_VV_BOTH(Mul, MulVV, t)      \
  VSP_SHAPE_VV_BOTH(Div, DivVV, t)      \
  VSP_SHAPE_VC_BOTH(AddC, AddVC, t)     \
  VSP_SHAPE_VC_BOTH(SubC, SubVC, t)     \
  VSP_SHAPE_VC_BOTH(SubCRev, SubRevVC, t) \
  VSP_SHAPE_VC_BOTH(MulC, MulVC, t)     \
  VSP_IMPL(VspStatus, vspsAddProduct_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pSrcDst, int len)) { \
    return AddProduct(pSrc1, pSrc2, pSrcDst, len);                                                                \
  }

VSP_FLOAT_FAMILIES(32f)
VSP_FLOAT_FAMILIES(64f)
VSP_FLOAT_FAMILIES(32fc)
VSP_FLOAT_FAMILIES(64fc)
VSP_SHAPE_VC_BOTH(DivC, DivVC, 64f)
VSP_SHAPE_VC_BOTH(DivC, DivVC, 32fc)
VSP_SHAPE_VC_BOTH(DivC, DivVC, 64fc)

// vspsDivC_32f settles the quotient as a product by the reciprocal through vspsMulC_32f; only a
// zero val is refused here, before the vectors are looked at.
VSP_IMPL(VspStatus, vspsDivC_32f, (const Vsp32f* pSrc, Vsp32f val, Vsp32f* pDst, int len)) {
  if (val == 0) return vspStatDivByZeroErr;
  return VSP_CALL(vspsMulC_32f)(pSrc, 1.0f / val, pDst, len);
}
VSP_IMPL(VspStatus, vspsDivC_32f_I, (Vsp32f val, Vsp32f* pSrcDst, int len)) {
  if (VspStatus st = CheckVec(len, pSrcDst)) return st;
  return VSP_CALL(vspsDivC_32f)(pSrcDst, val, pSrcDst, len);
}

VSP_SHAPE_VC_BOTH(DivCRev, DivRevVC, 32f)

VSP_IMPL(VspStatus, vspsAddProductC_32f, (const Vsp32f* pSrc, Vsp32f val, Vsp32f* pSrcDst, int len)) {
  if (VspStatus st = CheckVec(len, pSrc, pSrcDst)) return st;
  ownsAddProductC(pSrc, val, pSrcDst, len);
  return vspStatOk;
}

// A real vector times a complex one.
VSP_IMPL(VspStatus, vspsMul_32f32fc, (const Vsp32f* pSrc1, const Vsp32fc* pSrc2, Vsp32fc* pDst, int len)) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  ownsMulRealComplex(pSrc1, pSrc2, pDst, len);
  return vspStatOk;
}
VSP_IMPL(VspStatus, vspsMul_32f32fc_I, (const Vsp32f* pSrc, Vsp32fc* pSrcDst, int len)) {
  return VSP_CALL(vspsMul_32f32fc)(pSrc, pSrcDst, pSrcDst, len);
}
