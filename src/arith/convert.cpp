// Conversion between element types: checks, then one pipeline kernel per member (see
// convert_kernels.h), with the scale-factor clamps and the MXCSR discipline of each group.
#include <algorithm>

#include "arith/convert_kernels.h"
#include "core/check.h"
#include "core/impl.h"

namespace {

using namespace vsp;
using namespace vsp::cvt;

// Runs a kernel whose steps round in floating point under the to-nearest MXCSR setting.
template <class SF, class DF, class Step>
void ownsConvertNearest(const typename SF::Elem* src, typename DF::Elem* dst, long long n, const Step& step) {
  hw::RoundingScope scope(hw::Rounding::kNearest);
  ownsConvert<SF, DF>(src, dst, n, step);
}

// ---- by value --------------------------------------------------------------------------------

// kRounds: the step may round (or must see subnormal inputs), so it runs under the scope.
template <class SF, class DF, bool kRounds = false, class Step = Same>
VspStatus ByValue(const typename SF::Elem* pSrc, typename DF::Elem* pDst, int len, Step step = Step()) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if constexpr (kRounds) ownsConvertNearest<SF, DF>(pSrc, pDst, len, step);
  else ownsConvert<SF, DF>(pSrc, pDst, len, step);
  return vspStatOk;
}

// ---- integer to floating point with scaling -------------------------------------------------

// The scale-factor ranges of integer-to-float conversions (32-bit sources): inside [kLo, kHi] every
// non-zero |x| * 2^-s is a normal value of D, so converting and then multiplying by the exact factor
// rounds once; beyond [kMin, kMax] every result is what it is at the limit (+-Inf or +-0).
template <class D> struct IntScaleLimits;
template <> struct IntScaleLimits<Vsp32f> {
  static constexpr int kLo = -96, kHi = 126, kMin = -160, kMax = 200;
};
template <> struct IntScaleLimits<Vsp64f> {
  static constexpr int kLo = -992, kHi = 1022, kMin = -1100, kMax = 1140;
};

// Between the ranges the exact product is formed in double and rounded to float once (float
// results), or by two factors whose first product is exact and whose second rounds once (double).
template <class S, class D>
VspStatus ToFloatScaled(const S* pSrc, D* pDst, int len, int s) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  using L = IntScaleLimits<D>;
  using SF = FormatOf<S>;
  using DF = FormatOf<D>;
  using Step = std::conditional_t<std::is_same_v<D, Vsp32f>, IntToFloat<1>, ToDouble<1>>;
  using Plain = std::conditional_t<std::is_same_v<D, Vsp32f>, IntToFloat<0>, ToDouble<0>>;
  if (s == 0) {
    ownsConvertNearest<SF, DF>(pSrc, pDst, len, Plain{});
  } else if (s >= L::kLo && s <= L::kHi) {
    const auto f = hw::Set1(PowerOfTwo<D>(-s));
    ownsConvertNearest<SF, DF>(pSrc, pDst, len, Step{f, f});
  } else {
    s = std::clamp(s, L::kMin, L::kMax);
    if constexpr (std::is_same_v<D, Vsp32f>) {
      const auto f = hw::Set1(PowerOfTwo<Vsp64f>(-s));
      ownsConvertNearest<SF, DF>(pSrc, pDst, len, Then{ToDouble<1>{f, f}, ToFloat{}});
    } else {
      const int a = s / 2;
      ownsConvertNearest<SF, DF>(pSrc, pDst, len, ToDouble<2>{hw::Set1(PowerOfTwo<D>(-a)), hw::Set1(PowerOfTwo<D>(a - s))});
    }
  }
  return vspStatOk;
}

// ---- integer narrowing with scaling ----------------------------------------------------------

// The scale factor is clamped into [sMin, sMax]; limits tighter than the documented ones give
// the same results (beyond them every result is 0 or saturated already).
template <class SF, class DF, bool kUnsigned = false>
VspStatus ScaledInt(const typename SF::Elem* pSrc, typename DF::Elem* pDst, int len, Round mode, int s, int sMin,
                    int sMax) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsScaleInt<SF, DF, kUnsigned>(pSrc, pDst, len, mode, std::clamp(s, sMin, sMax));
  return vspStatOk;
}

// ---- float to integer ----------------------------------------------------------------------------

template <class SF, class DF>
VspStatus Rounded(const typename SF::Elem* pSrc, typename DF::Elem* pDst, int len, Round mode, int s) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  ownsRoundScaled<SF, DF>(pSrc, pDst, len, mode, s);
  return vspStatOk;
}

// 64-bit integer results, one element at a time (no lane-wise 64-bit conversion in SSE3).
template <Round kMode, int kFactors>
void owns64f64s(const Vsp64f* src, Vsp64s* dst, long long n, double f1, double f2) {
  hw::RoundingScope scope(HardwareRounding(kMode));
  for (long long i = 0; i < n; ++i) {
    double v = src[i];
    if constexpr (kFactors >= 1) v *= f1;
    if constexpr (kFactors >= 2) v *= f2;
    dst[i] = RoundToInt64<kMode>(v);
  }
}

void owns64s32s(const Vsp64s* src, Vsp32s* dst, long long n, Round mode, int s) {
  for (long long i = 0; i < n; ++i) dst[i] = RoundScale64<Vsp32s>(src[i], s, mode);
}

// ---- 16-bit floats -----------------------------------------------------------------------------

// vspRndNear rounds to nearest; vspRndHalfAway is refused; every other value rounds toward zero.
bool HalfModeRefused(int rndMode) { return rndMode == vspRndHalfAway; }
Round HalfRound(int rndMode) { return rndMode == vspRndNear ? Round::kNear : Round::kZero; }

template <class SF, class Step>
VspStatus ToHalf(const typename SF::Elem* pSrc, Vsp16f* pDst, int len, int rndMode, Step toFloat) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (HalfModeRefused(rndMode)) return vspStatRoundModeErr;
  // The subnormal range rounds in a float addition: the MXCSR rounding is the conversion's.
  if (HalfRound(rndMode) == Round::kNear) {
    hw::RoundingScope scope(hw::Rounding::kNearest);
    ownsConvert<SF, HalfBits>(pSrc, pDst, len, Then{toFloat, FloatToHalf<Round::kNear>{}});
  } else {
    hw::RoundingScope scope(hw::Rounding::kTowardZero);
    ownsConvert<SF, HalfBits>(pSrc, pDst, len, Then{toFloat, FloatToHalf<Round::kZero>{}});
  }
  return vspStatOk;
}

}  // namespace

// ---- by value ----------------------------------------------------------------------------------

#define VSP_BY_VALUE(s, d, SF, DF, ...)                                                    \
  VSP_IMPL(VspStatus, vspsConvert_##s##d, (const SF::Elem* pSrc, DF::Elem* pDst, int len)) { \
    return ByValue<SF, DF, ##__VA_ARGS__>(pSrc, pDst, len);                                \
  }

using S8 = SmallInt<Vsp8s>;
using U8 = SmallInt<Vsp8u>;
using S16 = SmallInt<Vsp16s>;
using U16 = SmallInt<Vsp16u>;
using S32 = Word<Vsp32s>;
using U32 = Word<Vsp32u>;
using F32 = Word<Vsp32f>;
using S64 = Wide<Vsp64s>;
using F64 = Wide<Vsp64f>;
using S24 = Packed24<true>;
using U24 = Packed24<false>;

VSP_BY_VALUE(8s, 16s, S8, S16)
VSP_BY_VALUE(16s, 32s, S16, S32)
VSP_BY_VALUE(24s, 32s, S24, S32)
VSP_BY_VALUE(24u, 32u, U24, U32)
VSP_BY_VALUE(32s, 16s, S32, S16)
VSP_BY_VALUE(8s, 8u, S8, U8)
VSP_BY_VALUE(16f, 32f, HalfSource, F32)
VSP_BY_VALUE(8s, 32f, S8, F32, false, IntToFloat<0>)
VSP_BY_VALUE(8u, 32f, U8, F32, false, IntToFloat<0>)
VSP_BY_VALUE(16s, 32f, S16, F32, false, IntToFloat<0>)
VSP_BY_VALUE(16u, 32f, U16, F32, false, IntToFloat<0>)
VSP_BY_VALUE(24s, 32f, S24, F32, false, IntToFloat<0>)
VSP_BY_VALUE(24u, 32f, U24, F32, false, IntToFloat<0>)
VSP_BY_VALUE(32s, 64f, S32, F64, false, ToDouble<0>)
VSP_BY_VALUE(32s, 32f, S32, F32, true, IntToFloat<0>)
VSP_BY_VALUE(64s, 64f, S64, F64, true, ToDouble<0>)
VSP_BY_VALUE(32f, 64f, F32, F64, true, ToDouble<0>)
VSP_BY_VALUE(64f, 32f, F64, F32, true, ToFloat)

// ---- integer to floating point with scaling -----------------------------------------------------

VSP_IMPL(VspStatus, vspsConvert_16s32f_Sfs, (const Vsp16s* pSrc, Vsp32f* pDst, int len, int scaleFactor)) {
  return ToFloatScaled(pSrc, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsConvert_32s32f_Sfs, (const Vsp32s* pSrc, Vsp32f* pDst, int len, int scaleFactor)) {
  return ToFloatScaled(pSrc, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsConvert_16s64f_Sfs, (const Vsp16s* pSrc, Vsp64f* pDst, int len, int scaleFactor)) {
  return ToFloatScaled(pSrc, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsConvert_32s64f_Sfs, (const Vsp32s* pSrc, Vsp64f* pDst, int len, int scaleFactor)) {
  return ToFloatScaled(pSrc, pDst, len, scaleFactor);
}

// ---- integer narrowing with scaling --------------------------------------------------------------

// Left shifts beyond the destination's width saturate every non-zero source: -24 serves for the
// documented -31 of the 24-bit members, -8 for every lower 8u8s factor.
VSP_IMPL(VspStatus, vspsConvert_32s16s_Sfs, (const Vsp32s* pSrc, Vsp16s* pDst, int len, int scaleFactor)) {
  return ScaledInt<S32, S16>(pSrc, pDst, len, Round::kNear, scaleFactor, -15, 31);
}
VSP_IMPL(VspStatus, vspsConvert_32s24s_Sfs, (const Vsp32s* pSrc, Vsp8u* pDst, int len, int scaleFactor)) {
  return ScaledInt<S32, S24>(pSrc, pDst, len, Round::kNear, scaleFactor, -24, 31);
}
VSP_IMPL(VspStatus, vspsConvert_32u24u_Sfs, (const Vsp32u* pSrc, Vsp8u* pDst, int len, int scaleFactor)) {
  return ScaledInt<U32, U24, true>(pSrc, pDst, len, Round::kNear, scaleFactor, -24, 31);
}
// Above 9 every result rounds to 0 (255 / 2^10 < 1/2).
VSP_IMPL(VspStatus, vspsConvert_8u8s_Sfs, (const Vsp8u* pSrc, Vsp8s* pDst, int len, int scaleFactor)) {
  return ScaledInt<U8, S8>(pSrc, pDst, len, Round::kNear, scaleFactor, -8, 9);
}

// ---- the rounding group ----------------------------------------------------------------------------

// Above 17 every result is 0 in every mode (32768 / 2^18 < 1/2).
VSP_IMPL(VspStatus, vspsConvert_16s8s_Sfs,
         (const Vsp16s* pSrc, Vsp8s* pDst, int len, VspRoundMode rndMode, int scaleFactor)) {
  return ScaledInt<S16, S8>(pSrc, pDst, len, RoundOf(rndMode), scaleFactor, -8, 17);
}
VSP_IMPL(VspStatus, vspsConvert_64s32s_Sfs,
         (const Vsp64s* pSrc, Vsp32s* pDst, int len, VspRoundMode rndMode, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  owns64s32s(pSrc, pDst, len, RoundOf(rndMode), scaleFactor);
  return vspStatOk;
}

#define VSP_ROUNDED(s, d, SF, DF)                                                                                     \
  VSP_IMPL(VspStatus, vspsConvert_##s##d##_Sfs,                                                                       \
           (const SF::Elem* pSrc, DF::Elem* pDst, int len, VspRoundMode rndMode, int scaleFactor)) {                   \
    return Rounded<SF, DF>(pSrc, pDst, len, RoundOf(rndMode), scaleFactor);                                          \
  }
VSP_ROUNDED(32f, 8s, F32, S8)
VSP_ROUNDED(32f, 8u, F32, U8)
VSP_ROUNDED(32f, 16s, F32, S16)
VSP_ROUNDED(32f, 16u, F32, U16)
VSP_ROUNDED(32f, 32s, F32, S32)
VSP_ROUNDED(64f, 8s, F64, S8)
VSP_ROUNDED(64f, 8u, F64, U8)
VSP_ROUNDED(64f, 16s, F64, S16)
VSP_ROUNDED(64f, 16u, F64, U16)
VSP_ROUNDED(64f, 32s, F64, S32)

VSP_IMPL(VspStatus, vspsConvert_64f64s_Sfs,
         (const Vsp64f* pSrc, Vsp64s* pDst, int len, VspRoundMode rndMode, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  WithRound(RoundOf(rndMode), [&]<Round kMode>() {
    WithScaleFactors<Vsp64f>(scaleFactor, [&]<int kFactors>(double f1, double f2) {
      owns64f64s<kMode, kFactors>(pSrc, pDst, len, f1, f2);
    });
  });
  return vspStatOk;
}

// ---- float to 24-bit -----------------------------------------------------------------------------

VSP_IMPL(VspStatus, vspsConvert_32f24s_Sfs, (const Vsp32f* pSrc, Vsp8u* pDst, int len, int scaleFactor)) {
  return Rounded<F32, S24>(pSrc, pDst, len, Round::kNear, scaleFactor);
}
VSP_IMPL(VspStatus, vspsConvert_32f24u_Sfs, (const Vsp32f* pSrc, Vsp8u* pDst, int len, int scaleFactor)) {
  return Rounded<F32, U24>(pSrc, pDst, len, Round::kNear, scaleFactor);
}

// ---- 16-bit floats ---------------------------------------------------------------------------------

VSP_IMPL(VspStatus, vspsConvert_32f16f, (const Vsp32f* pSrc, Vsp16f* pDst, int len, VspRoundMode rndMode)) {
  return ToHalf<F32>(pSrc, pDst, len, rndMode, Same{});
}
// Every 16-bit integer is a float exactly; the half rounding is the only one.
VSP_IMPL(VspStatus, vspsConvert_16s16f, (const Vsp16s* pSrc, Vsp16f* pDst, int len, VspRoundMode rndMode)) {
  return ToHalf<S16>(pSrc, pDst, len, rndMode, IntToFloat<0>{});
}
VSP_IMPL(VspStatus, vspsConvert_16f16s_Sfs,
         (const Vsp16f* pSrc, Vsp16s* pDst, int len, VspRoundMode rndMode, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (HalfModeRefused(rndMode)) return vspStatRoundModeErr;
  ownsRoundScaled<HalfSource, S16>(pSrc, pDst, len, HalfRound(rndMode), scaleFactor);
  return vspStatOk;
}
