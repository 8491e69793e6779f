// Zero, Set, Copy and Move for every element type: checks, then one type-blind kernel.
#include "core/check.h"
#include "core/copy.h"
#include "core/impl.h"

namespace {

using namespace vsp;

// The byte count of len elements, in 64-bit arithmetic: every len an int holds is valid, and a
// 2^28-element vector of 64fc is 4 GiB.
template <class T>
size_t Bytes(int len) {
  return static_cast<size_t>(len) * sizeof(T);
}

template <class T>
VspStatus Zero(T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pDst)) return st;
  ownsZero_8u(reinterpret_cast<Vsp8u*>(pDst), Bytes<T>(len));
  return vspStatOk;
}

template <class T>
VspStatus Set(T val, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pDst)) return st;
  ownsSet(val, pDst, len);
  return vspStatOk;
}

template <class T>
VspStatus Copy(const T* pSrc, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsCopy_8u(reinterpret_cast<const Vsp8u*>(pSrc), reinterpret_cast<Vsp8u*>(pDst), Bytes<T>(len));
  return vspStatOk;
}

template <class T>
VspStatus Move(const T* pSrc, T* pDst, int len) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsMove_8u(reinterpret_cast<const Vsp8u*>(pSrc), reinterpret_cast<Vsp8u*>(pDst), Bytes<T>(len));
  return vspStatOk;
}

}  // namespace

#define VSP_INIT_FAMILY(t)                                                                             \
  VSP_IMPL(VspStatus, vspsZero_##t, (Vsp##t * pDst, int len)) { return Zero(pDst, len); }              \
  VSP_IMPL(VspStatus, vspsSet_##t, (Vsp##t val, Vsp##t * pDst, int len)) { return Set(val, pDst, len); } \
  VSP_IMPL(VspStatus, vspsCopy_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {                     \
    return Copy(pSrc, pDst, len);                                                                      \
  }                                                                                                    \
  VSP_IMPL(VspStatus, vspsMove_##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len)) {                     \
    return Move(pSrc, pDst, len);                                                                      \
  }

VSP_INIT_FAMILY(8u)
VSP_INIT_FAMILY(16s)
VSP_INIT_FAMILY(16sc)
VSP_INIT_FAMILY(32s)
VSP_INIT_FAMILY(32sc)
VSP_INIT_FAMILY(32f)
VSP_INIT_FAMILY(32fc)
VSP_INIT_FAMILY(64s)
VSP_INIT_FAMILY(64sc)
VSP_INIT_FAMILY(64f)
VSP_INIT_FAMILY(64fc)
