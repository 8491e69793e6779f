// SumWindow: sliding sums of maskSize elements into float.
#include "core/check.h"
#include "core/impl.h"
#include "core/types.h"

namespace {

using namespace vsp;

// Up to these mask sizes every window sum and every partial sum of the first window stays within
// 2^24 in magnitude, so the float recurrence is exact and integer sums give the same values.
template <class T> constexpr long long kExactMask = std::is_same_v<T, Vsp8u> ? 65793 : 512;

// pDst[0] = the first window summed in float in order; pDst[n + 1] = pDst[n] + (float)(the exact
// difference of the element entering and the one leaving).
template <class T>
void ownsSumWindow(const T* s, Vsp32f* d, long long n, long long m) {
  if (m <= kExactMask<T>) {
    long long acc = 0;
    for (long long k = 0; k < m; ++k) acc += s[k];
    d[0] = static_cast<Vsp32f>(acc);
    for (long long i = 0; i + 1 < n; ++i) {
      acc += static_cast<long long>(s[i + m]) - s[i];
      d[i + 1] = static_cast<Vsp32f>(acc);
    }
    return;
  }
  Vsp32f acc = 0;
  for (long long k = 0; k < m; ++k) acc += static_cast<Vsp32f>(s[k]);
  d[0] = acc;
  for (long long i = 0; i + 1 < n; ++i) {
    acc += static_cast<Vsp32f>(static_cast<Vsp32s>(s[i + m]) - s[i]);
    d[i + 1] = acc;
  }
}

template <class T>
VspStatus SumWindow(const T* pSrc, Vsp32f* pDst, int len, int maskSize) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (maskSize < 1) return vspStatMaskSizeErr;
  ownsSumWindow(pSrc, pDst, len, maskSize);
  return vspStatOk;
}

}  // namespace

VSP_IMPL(VspStatus, vspsSumWindow_8u32f, (const Vsp8u* pSrc, Vsp32f* pDst, int len, int maskSize)) {
  return SumWindow(pSrc, pDst, len, maskSize);
}
VSP_IMPL(VspStatus, vspsSumWindow_16s32f, (const Vsp16s* pSrc, Vsp32f* pDst, int len, int maskSize)) {
  return SumWindow(pSrc, pDst, len, maskSize);
}
