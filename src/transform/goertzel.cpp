// Goertzel: one DFT bin by a second-order recursion, in double for every member.
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "arith/scale.h"
#include "core/check.h"
#include "core/impl.h"
#include "core/types.h"
#include "math/scalar.h"

namespace vsp::goertzel {
namespace {

template <class T, class C, class F> VspStatus Goertz(const T* pSrc, int len, C* pVal, F rFreq, int scale) {
  if (AnyNull(pSrc, pVal)) return vspStatNullPtr;
  if (len < 1) return vspStatBadSize;
  if (!(rFreq >= 0 && rFreq < F(1))) return vspStatRelFreqErr;
  const double w = 6.283185307179586 * static_cast<double>(rFreq);
  const double c = math::Cos(w), s = math::Sin(w), c2 = 2.0 * c;
  double r1 = 0, r2 = 0, i1 = 0, i2 = 0;  // s(n-1), s(n-2)
  for (long long n = 0; n < len; ++n) {
    double xr, xi = 0;
    if constexpr (kIsComplex<T>) xr = pSrc[n].re, xi = pSrc[n].im;
    else xr = pSrc[n];
    const double r0 = xr + c2 * r1 - r2, i0 = xi + c2 * i1 - i2;
    r2 = r1, r1 = r0, i2 = i1, i1 = i0;
  }
  const double re = c * r1 - s * i1 - r2, im = c * i1 + s * r1 - i2;
  if constexpr (std::is_same_v<BaseOf<C>, Vsp16s>) *pVal = C{ScaleRuleDouble<Vsp16s>(re, scale), ScaleRuleDouble<Vsp16s>(im, scale)};
  else *pVal = C{static_cast<BaseOf<C>>(re), static_cast<BaseOf<C>>(im)};
  return vspStatOk;
}

}  // namespace
}  // namespace vsp::goertzel

namespace Gz = vsp::goertzel;

VSP_IMPL(VspStatus, vspsGoertz_32f, (const Vsp32f* pSrc, int len, Vsp32fc* pVal, Vsp32f rFreq)) { return Gz::Goertz(pSrc, len, pVal, rFreq, 0); }
VSP_IMPL(VspStatus, vspsGoertz_64f, (const Vsp64f* pSrc, int len, Vsp64fc* pVal, Vsp64f rFreq)) { return Gz::Goertz(pSrc, len, pVal, rFreq, 0); }
VSP_IMPL(VspStatus, vspsGoertz_32fc, (const Vsp32fc* pSrc, int len, Vsp32fc* pVal, Vsp32f rFreq)) { return Gz::Goertz(pSrc, len, pVal, rFreq, 0); }
VSP_IMPL(VspStatus, vspsGoertz_64fc, (const Vsp64fc* pSrc, int len, Vsp64fc* pVal, Vsp64f rFreq)) { return Gz::Goertz(pSrc, len, pVal, rFreq, 0); }
VSP_IMPL(VspStatus, vspsGoertz_16s_Sfs, (const Vsp16s* pSrc, int len, Vsp16sc* pVal, Vsp32f rFreq, int scaleFactor)) {
  return Gz::Goertz(pSrc, len, pVal, rFreq, scaleFactor);
}
VSP_IMPL(VspStatus, vspsGoertz_16sc_Sfs, (const Vsp16sc* pSrc, int len, Vsp16sc* pVal, Vsp32f rFreq, int scaleFactor)) {
  return Gz::Goertz(pSrc, len, pVal, rFreq, scaleFactor);
}
