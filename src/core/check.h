// Argument-check helpers that keep the library-wide order: pointers in argument order (-8),
// then lengths (-6), then the family's own parameters. An implementation returns the first
// failing check before it writes anything:
//
//   if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
//   if (val < 0) return vspStatShiftErr;
#pragma once

#include "vsp.h"

namespace vsp {

template <class... P>
constexpr bool AnyNull(const P*... p) {
  return ((p == nullptr) || ...);
}

// vspStatNullPtr if any pointer is null, else vspStatBadSize if len < 1, else vspStatOk.
template <class... P>
constexpr VspStatus CheckVec(long long len, const P*... ptrs) {
  if (AnyNull(ptrs...)) return vspStatNullPtr;
  if (len < 1) return vspStatBadSize;
  return vspStatOk;
}

// vspStatNullPtr if any pointer is null, else vspStatOk.
template <class... P>
constexpr VspStatus CheckPtrs(const P*... ptrs) {
  return AnyNull(ptrs...) ? vspStatNullPtr : vspStatOk;
}

}  // namespace vsp
