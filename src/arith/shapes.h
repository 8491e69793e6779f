// The argument lists of the arithmetic exports, one macro each: a member of family `fam` for
// type code `t`, implemented by the function template `run` instantiated for Vsp<t>. In-place
// members pass pSrcDst as the second operand and as the destination, so they run the same
// implementation as their out-of-place sibling, with its checks.
#pragma once

#include "core/impl.h"

// (pSrc1, pSrc2, pDst, len) and (pSrc, pSrcDst, len)
#define VSP_SHAPE_VV(fam, run, t)                                                                           \
  VSP_IMPL(VspStatus, vsps##fam##_##t, (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, int len)) { \
    return run<Vsp##t>(pSrc1, pSrc2, pDst, len);                                                             \
  }
#define VSP_SHAPE_VV_I(fam, run, t)                                                             \
  VSP_IMPL(VspStatus, vsps##fam##_##t##_I, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len)) {    \
    return run<Vsp##t>(pSrc, pSrcDst, pSrcDst, len);                                            \
  }
// (pSrc1, pSrc2, pDst, len, scaleFactor) and (pSrc, pSrcDst, len, scaleFactor)
#define VSP_SHAPE_VV_SFS(fam, run, t)                                                                     \
  VSP_IMPL(VspStatus, vsps##fam##_##t##_Sfs,                                                              \
           (const Vsp##t* pSrc1, const Vsp##t* pSrc2, Vsp##t* pDst, int len, int scaleFactor)) {          \
    return run<Vsp##t>(pSrc1, pSrc2, pDst, len, scaleFactor);                                             \
  }
#define VSP_SHAPE_VV_ISFS(fam, run, t)                                                                        \
  VSP_IMPL(VspStatus, vsps##fam##_##t##_ISfs, (const Vsp##t* pSrc, Vsp##t* pSrcDst, int len, int scaleFactor)) { \
    return run<Vsp##t>(pSrc, pSrcDst, pSrcDst, len, scaleFactor);                                             \
  }
// (pSrc, val, pDst, len) and (val, pSrcDst, len)
#define VSP_SHAPE_VC(fam, run, t)                                                                  \
  VSP_IMPL(VspStatus, vsps##fam##_##t, (const Vsp##t* pSrc, Vsp##t val, Vsp##t* pDst, int len)) { \
    return run<Vsp##t>(pSrc, val, pDst, len);                                                     \
  }
#define VSP_SHAPE_VC_I(fam, run, t)                                                    \
  VSP_IMPL(VspStatus, vsps##fam##_##t##_I, (Vsp##t val, Vsp##t * pSrcDst, int len)) {  \
    return run<Vsp##t>(pSrcDst, val, pSrcDst, len);                                    \
  }
// (pSrc, val, pDst, len, scaleFactor) and (val, pSrcDst, len, scaleFactor)
#define VSP_SHAPE_VC_SFS(fam, run, t)                                                                               \
  VSP_IMPL(VspStatus, vsps##fam##_##t##_Sfs, (const Vsp##t* pSrc, Vsp##t val, Vsp##t* pDst, int len, int scaleFactor)) { \
    return run<Vsp##t>(pSrc, val, pDst, len, scaleFactor);                                                          \
  }
#define VSP_SHAPE_VC_ISFS(fam, run, t)                                                                  \
  VSP_IMPL(VspStatus, vsps##fam##_##t##_ISfs, (Vsp##t val, Vsp##t * pSrcDst, int len, int scaleFactor)) { \
    return run<Vsp##t>(pSrcDst, val, pSrcDst, len, scaleFactor);                                        \
  }

// Both members of a family: out of place and in place.
#define VSP_SHAPE_VV_BOTH(fam, run, t) VSP_SHAPE_VV(fam, run, t) VSP_SHAPE_VV_I(fam, run, t)
#define VSP_SHAPE_VV_SFS_BOTH(fam, run, t) VSP_SHAPE_VV_SFS(fam, run, t) VSP_SHAPE_VV_ISFS(fam, run, t)
#define VSP_SHAPE_VC_BOTH(fam, run, t) VSP_SHAPE_VC(fam, run, t) VSP_SHAPE_VC_I(fam, run, t)
#define VSP_SHAPE_VC_SFS_BOTH(fam, run, t) VSP_SHAPE_VC_SFS(fam, run, t) VSP_SHAPE_VC_ISFS(fam, run, t)
