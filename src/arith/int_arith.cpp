// Integer members of Add, Sub, Mul, AddC, SubC, SubCRev, MulC and AddProduct: checks, the
// short-cuts through other exports, then the scaled kernels of int_kernels.h.
#include "arith/int_kernels.h"
#include "arith/shapes.h"
#include "arith/shortcuts.h"
#include "core/check.h"
#include "core/impl.h"

namespace {

using namespace vsp;

// The operation behind (Kind, X, Y, D): sums, differences and products of 32s run on their own
// operations.
template <class Kind, class X, class Y, class D, bool k32 = std::is_same_v<X, Vsp32s> && std::is_same_v<Y, Vsp32s> &&
                                                              std::is_same_v<D, Vsp32s>>
using OpOf = std::conditional_t<!k32, IntOp<Kind, X, Y, D>, std::conditional_t<std::is_same_v<Kind, MulKind>, Mul32Op, Sum32Op<Kind>>>;

// Two vectors; kSwap computes pSrc2 op pSrc1 (Sub). Checks in argument order.
template <class Kind, bool kSwap, class X, class Y, class D>
VspStatus ScaledVV(const X* pSrc1, const Y* pSrc2, D* pDst, long long len, int s) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  auto zero = [&] { return ZeroOf(pDst, len); };
  if constexpr (kSwap) return RunScaled<OpOf<Kind, Y, X, D>>(Stream<Y>{pSrc2}, Stream<X>{pSrc1}, pDst, len, s, zero);
  else return RunScaled<OpOf<Kind, X, Y, D>>(Stream<X>{pSrc1}, Stream<Y>{pSrc2}, pDst, len, s, zero);
}

// Complex sums and differences: the length first, then the real form on twice the length.
template <class Kind, bool kSwap, class C>
VspStatus ComplexAsReal(const C* pSrc1, const C* pSrc2, C* pDst, int len, int s) {
  if (len < 1) return vspStatBadSize;
  using B = BaseOf<C>;
  return ScaledVV<Kind, kSwap>(reinterpret_cast<const B*>(pSrc1), reinterpret_cast<const B*>(pSrc2),
                               reinterpret_cast<B*>(pDst), 2LL * len, s);
}

// A vector and a constant; kConstFirst computes val op pSrc (SubCRev). A complex constant runs
// over the real view of the vectors.
template <class Kind, bool kConstFirst, class T>
VspStatus ScaledVC(const T* pSrc, T val, T* pDst, int len, int s) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  auto zero = [&] { return ZeroOf(pDst, len); };
  if constexpr (kIsComplex<T>) {
    using B = BaseOf<T>;
    using Op = OpOf<Kind, B, B, B>;
    Stream<B> x{reinterpret_cast<const B*>(pSrc)};
    PairBroadcast<B> c(val.re, val.im);
    B* d = reinterpret_cast<B*>(pDst);
    if constexpr (kConstFirst) return RunScaled<Op>(c, x, d, 2LL * len, s, zero);
    else return RunScaled<Op>(x, c, d, 2LL * len, s, zero);
  } else {
    using Op = OpOf<Kind, T, T, T>;
    if constexpr (kConstFirst) return RunScaled<Op>(Broadcast<T>(val), Stream<T>{pSrc}, pDst, len, s, zero);
    else return RunScaled<Op>(Stream<T>{pSrc}, Broadcast<T>(val), pDst, len, s, zero);
  }
}

// Complex integer products of two vectors or of a vector and a constant.
template <class T>
VspStatus ComplexMulVV(const T* pSrc1, const T* pSrc2, T* pDst, int len, int s) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  return RunComplexMul(Stream<T>{pSrc1}, Stream<T>{pSrc2}, pDst, len, s, [&] { return ZeroOf(pDst, len); });
}
template <class T>
VspStatus ComplexMulVC(const T* pSrc, T val, T* pDst, int len, int s) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  return RunComplexMul(Stream<T>{pSrc}, Broadcast<T>(val), pDst, len, s, [&] { return ZeroOf(pDst, len); });
}

// pSrcDst + pSrc1 * pSrc2, the exact sum scaled as a whole.
template <class X, class D>
VspStatus AddProductSfs(const X* pSrc1, const X* pSrc2, D* pSrcDst, int len, int s) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pSrcDst)) return st;
  return RunScaled<IntOp<MulKind, X, X, D, true>>(Stream<X>{pSrc1}, Stream<X>{pSrc2}, pSrcDst, len, s,
                                                  [&] { return ZeroOf(pSrcDst, len); });
}

// Exact results of 16s elements written as 32f.
template <class Kind>
VspStatus ToFloat(const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp32f* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  using X = Stream<Vsp16s>;
  // Sub writes pSrc2 - pSrc1.
  X a{std::is_same_v<Kind, SubKind> ? pSrc2 : pSrc1}, b{std::is_same_v<Kind, SubKind> ? pSrc1 : pSrc2};
  ExactToFloatEach<IntOp<Kind, Vsp16s, Vsp16s, Vsp32s>, X, X> op{a, b, pDst};
  ForEachAligned(pDst, len, op);
  return vspStatOk;
}

// The families as single templates for the export shapes (shapes.h); the members without a
// scale factor run the rule with s = 0.
template <class T> VspStatus AddVV(const T* a, const T* b, T* d, int len, int s) { return ScaledVV<AddKind, false>(a, b, d, len, s); }
template <class T> VspStatus SubVV(const T* a, const T* b, T* d, int len, int s) { return ScaledVV<SubKind, true>(a, b, d, len, s); }
template <class T> VspStatus MulVV(const T* a, const T* b, T* d, int len, int s) { return ScaledVV<MulKind, false>(a, b, d, len, s); }
template <class T> VspStatus AddVV0(const T* a, const T* b, T* d, int len) { return AddVV(a, b, d, len, 0); }
template <class T> VspStatus SubVV0(const T* a, const T* b, T* d, int len) { return SubVV(a, b, d, len, 0); }
template <class T> VspStatus MulVV0(const T* a, const T* b, T* d, int len) { return MulVV(a, b, d, len, 0); }
template <class T> VspStatus AddCplx(const T* a, const T* b, T* d, int len, int s) { return ComplexAsReal<AddKind, false>(a, b, d, len, s); }
template <class T> VspStatus SubCplx(const T* a, const T* b, T* d, int len, int s) { return ComplexAsReal<SubKind, true>(a, b, d, len, s); }
template <class T> VspStatus AddVC(const T* x, T v, T* d, int len, int s) { return ScaledVC<AddKind, false>(x, v, d, len, s); }
template <class T> VspStatus SubVC(const T* x, T v, T* d, int len, int s) { return ScaledVC<SubKind, false>(x, v, d, len, s); }
template <class T> VspStatus SubRevVC(const T* x, T v, T* d, int len, int s) { return ScaledVC<SubKind, true>(x, v, d, len, s); }
template <class T> VspStatus MulVC(const T* x, T v, T* d, int len, int s) { return ScaledVC<MulKind, false>(x, v, d, len, s); }
template <class T> VspStatus AddVC0(const T* x, T v, T* d, int len) { return AddVC(x, v, d, len, 0); }
template <class T> VspStatus SubVC0(const T* x, T v, T* d, int len) { return SubVC(x, v, d, len, 0); }
template <class T> VspStatus MulVC0(const T* x, T v, T* d, int len) { return MulVC(x, v, d, len, 0); }

}  // namespace

// ---- two vectors ----------------------------------------------------------------------------------

VSP_SHAPE_VV_SFS_BOTH(Add, AddVV, 8u)
VSP_SHAPE_VV_SFS_BOTH(Add, AddVV, 16s)
VSP_SHAPE_VV_SFS_BOTH(Add, AddVV, 32s)
VSP_SHAPE_VV_SFS(Add, AddVV, 64s)
VSP_SHAPE_VV_SFS_BOTH(Add, AddCplx, 16sc)
VSP_SHAPE_VV_SFS_BOTH(Add, AddCplx, 32sc)
VSP_SHAPE_VV_SFS_BOTH(Sub, SubVV, 8u)
VSP_SHAPE_VV_SFS_BOTH(Sub, SubVV, 16s)
VSP_SHAPE_VV_SFS_BOTH(Sub, SubVV, 16u)
VSP_SHAPE_VV_SFS_BOTH(Sub, SubVV, 32s)
VSP_SHAPE_VV_SFS_BOTH(Sub, SubCplx, 16sc)
VSP_SHAPE_VV_SFS_BOTH(Sub, SubCplx, 32sc)
VSP_SHAPE_VV_SFS_BOTH(Mul, MulVV, 8u)
VSP_SHAPE_VV_SFS_BOTH(Mul, MulVV, 16s)
VSP_SHAPE_VV_SFS_BOTH(Mul, MulVV, 16u)
VSP_SHAPE_VV_SFS_BOTH(Mul, MulVV, 32s)
VSP_SHAPE_VV_BOTH(Add, AddVV0, 16s)
VSP_SHAPE_VV(Add, AddVV0, 16u)
VSP_SHAPE_VV_BOTH(Sub, SubVV0, 16s)
VSP_SHAPE_VV_BOTH(Mul, MulVV0, 16s)

// Above 17 every sum of two 16u elements rounds to 0: only the sources are tested, then the
// destination is zeroed with vspsZero_16s's checks.
VSP_IMPL(VspStatus, vspsAdd_16u_Sfs, (const Vsp16u* pSrc1, const Vsp16u* pSrc2, Vsp16u* pDst, int len, int scaleFactor)) {
  if (scaleFactor > 17) {
    if (VspStatus st = CheckPtrs(pSrc1, pSrc2)) return st;
    return VSP_CALL(vspsZero_16s)(reinterpret_cast<Vsp16s*>(pDst), len);
  }
  return ScaledVV<AddKind, false>(pSrc1, pSrc2, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsAdd_16u_ISfs, (const Vsp16u* pSrc, Vsp16u* pSrcDst, int len, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc, pSrcDst)) return st;
  return VSP_CALL(vspsAdd_16u_Sfs)(pSrc, pSrcDst, pSrcDst, len, scaleFactor);
}

VSP_IMPL(VspStatus, vspsAdd_8u16u, (const Vsp8u* pSrc1, const Vsp8u* pSrc2, Vsp16u* pDst, int len)) {
  return ScaledVV<AddKind, false>(pSrc1, pSrc2, pDst, len, 0);
}
VSP_IMPL(VspStatus, vspsMul_8u16u, (const Vsp8u* pSrc1, const Vsp8u* pSrc2, Vsp16u* pDst, int len)) {
  return ScaledVV<MulKind, false>(pSrc1, pSrc2, pDst, len, 0);
}
VSP_IMPL(VspStatus, vspsMul_16s32s_Sfs, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp32s* pDst, int len, int scaleFactor)) {
  return ScaledVV<MulKind, false>(pSrc1, pSrc2, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsMul_16u16s_Sfs, (const Vsp16u* pSrc1, const Vsp16s* pSrc2, Vsp16s* pDst, int len, int scaleFactor)) {
  return ScaledVV<MulKind, false>(pSrc1, pSrc2, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsAdd_16s32f, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp32f* pDst, int len)) {
  return ToFloat<AddKind>(pSrc1, pSrc2, pDst, len);
}
VSP_IMPL(VspStatus, vspsSub_16s32f, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp32f* pDst, int len)) {
  return ToFloat<SubKind>(pSrc1, pSrc2, pDst, len);
}
VSP_IMPL(VspStatus, vspsMul_16s32f, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp32f* pDst, int len)) {
  return ToFloat<MulKind>(pSrc1, pSrc2, pDst, len);
}

// A 16s vector added into a 32s vector, and 32u sums, saturated.
VSP_IMPL(VspStatus, vspsAdd_16s32s_I, (const Vsp16s* pSrc, Vsp32s* pSrcDst, int len)) {
  if (VspStatus st = CheckVec(len, pSrc, pSrcDst)) return st;
  ownsScaled<ScalePath::kPlain, Sum32Op<AddKind>>(Widened16{pSrc}, Stream<Vsp32s>{pSrcDst}, pSrcDst, len, 0);
  return vspStatOk;
}
VSP_IMPL(VspStatus, vspsAdd_32u, (const Vsp32u* pSrc1, const Vsp32u* pSrc2, Vsp32u* pDst, int len)) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pDst)) return st;
  ownsScaled<ScalePath::kPlain, SumU32Op>(Stream<Vsp32u>{pSrc1}, Stream<Vsp32u>{pSrc2}, pDst, len, 0);
  return vspStatOk;
}

// Complex products. vspsMul_16sc_Sfs turns into its in-place form when the destination is one of
// the sources, before any other test.
VSP_IMPL(VspStatus, vspsMul_16sc_Sfs, (const Vsp16sc* pSrc1, const Vsp16sc* pSrc2, Vsp16sc* pDst, int len, int scaleFactor)) {
  if (pDst == pSrc2) return VSP_CALL(vspsMul_16sc_ISfs)(pSrc1, pDst, len, scaleFactor);
  if (pDst == pSrc1) return VSP_CALL(vspsMul_16sc_ISfs)(pSrc2, pDst, len, scaleFactor);
  return ComplexMulVV(pSrc1, pSrc2, pDst, len, scaleFactor);
}
VSP_SHAPE_VV_ISFS(Mul, ComplexMulVV, 16sc)
VSP_SHAPE_VV_SFS_BOTH(Mul, ComplexMulVV, 32sc)

// ---- a vector and a constant --------------------------------------------------------------------

VSP_SHAPE_VC_SFS_BOTH(AddC, AddVC, 8u)
VSP_SHAPE_VC_SFS_BOTH(AddC, AddVC, 16u)
VSP_SHAPE_VC_SFS_BOTH(AddC, AddVC, 16sc)
VSP_SHAPE_VC_SFS_BOTH(AddC, AddVC, 32s)
VSP_SHAPE_VC_SFS_BOTH(AddC, AddVC, 32sc)
VSP_SHAPE_VC_SFS(AddC, AddVC, 64s)
VSP_SHAPE_VC_SFS(AddC, AddVC, 64u)
VSP_SHAPE_VC_SFS_BOTH(SubC, SubVC, 8u)
VSP_SHAPE_VC_SFS_BOTH(SubC, SubVC, 16s)
VSP_SHAPE_VC_SFS_BOTH(SubC, SubVC, 16u)
VSP_SHAPE_VC_SFS_BOTH(SubC, SubVC, 16sc)
VSP_SHAPE_VC_SFS_BOTH(SubC, SubVC, 32s)
VSP_SHAPE_VC_SFS_BOTH(SubC, SubVC, 32sc)
VSP_SHAPE_VC_SFS_BOTH(SubCRev, SubRevVC, 8u)
VSP_SHAPE_VC_SFS_BOTH(SubCRev, SubRevVC, 16s)
VSP_SHAPE_VC_SFS_BOTH(SubCRev, SubRevVC, 16u)
VSP_SHAPE_VC_SFS_BOTH(SubCRev, SubRevVC, 16sc)
VSP_SHAPE_VC_SFS_BOTH(SubCRev, SubRevVC, 32s)
VSP_SHAPE_VC_SFS_BOTH(SubCRev, SubRevVC, 32sc)
VSP_SHAPE_VC_SFS_BOTH(MulC, MulVC, 8u)
VSP_SHAPE_VC_SFS_BOTH(MulC, MulVC, 16s)
VSP_SHAPE_VC_SFS_BOTH(MulC, MulVC, 16u)
VSP_SHAPE_VC_SFS(MulC, MulVC, 32s)
VSP_SHAPE_VC_ISFS(MulC, MulVC, 64s)
VSP_SHAPE_VC_I(AddC, AddVC0, 16s)
VSP_SHAPE_VC_I(SubC, SubVC0, 16s)
VSP_SHAPE_VC_I(MulC, MulVC0, 16s)
VSP_SHAPE_VC_SFS_BOTH(MulC, ComplexMulVC, 16sc)
VSP_SHAPE_VC_SFS_BOTH(MulC, ComplexMulVC, 32sc)

// Adding 0 without scaling is a copy.
VSP_IMPL(VspStatus, vspsAddC_16s_Sfs, (const Vsp16s* pSrc, Vsp16s val, Vsp16s* pDst, int len, int scaleFactor)) {
  if (val == 0 && scaleFactor == 0) return VSP_CALL(vspsCopy_16s)(pSrc, pDst, len);
  return ScaledVC<AddKind, false>(pSrc, val, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsAddC_16s_ISfs, (Vsp16s val, Vsp16s* pSrcDst, int len, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrcDst)) return st;
  return VSP_CALL(vspsAddC_16s_Sfs)(pSrcDst, val, pSrcDst, len, scaleFactor);
}

// Multiplying by 0 zeroes the vector; by 1 without scaling it leaves the vector as it is.
VSP_IMPL(VspStatus, vspsMulC_32s_ISfs, (Vsp32s val, Vsp32s* pSrcDst, int len, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrcDst)) return st;
  if (val == 0) return VSP_CALL(vspsZero_32s)(pSrcDst, len);
  if (val == 1 && scaleFactor == 0) return vspStatOk;
  return ScaledVC<MulKind, false, Vsp32s>(pSrcDst, val, pSrcDst, len, scaleFactor);
}

// ---- accumulated products ---------------------------------------------------------------------------

VSP_IMPL(VspStatus, vspsAddProduct_16s_Sfs, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp16s* pSrcDst, int len, int scaleFactor)) {
  return AddProductSfs(pSrc1, pSrc2, pSrcDst, len, scaleFactor);
}
// The 16s products are exact in 32 bits: a sum of two 32s elements.
VSP_IMPL(VspStatus, vspsAddProduct_16s32s_Sfs, (const Vsp16s* pSrc1, const Vsp16s* pSrc2, Vsp32s* pSrcDst, int len, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc1, pSrc2, pSrcDst)) return st;
  return RunScaled<Sum32Op<AddKind>>(Stream<Vsp32s>{pSrcDst}, Products16{pSrc1, pSrc2}, pSrcDst, len, scaleFactor,
                                     [&] { return ZeroOf(pSrcDst, len); });
}
VSP_IMPL(VspStatus, vspsAddProduct_32s_Sfs, (const Vsp32s* pSrc1, const Vsp32s* pSrc2, Vsp32s* pSrcDst, int len, int scaleFactor)) {
  return AddProductSfs(pSrc1, pSrc2, pSrcDst, len, scaleFactor);
}
