// Products by a float constant written as integers: vspsMulC_32f16s_Sfs, vspsMulC_Low_32f16s and
// vspsMulC_64f64s_ISfs. The product is formed in the float type, multiplied by 2^-scaleFactor
// (as two exact power-of-two factors), rounded to nearest with ties to even whatever the
// MXCSR rounding mode, and saturated; NaN gives 0. Infinite products saturate at any scale
// factor, so no scale factor makes every result 0.
#include <bit>

#include "arith/arith_kernels.h"
#include "core/check.h"
#include "core/impl.h"
#include "core/simd/sse3_arith.h"

namespace {

using namespace vsp;

// 2^-s as two factors of normal range: s is clamped to [-2 * kHalf, 2 * kHalf], where every
// non-zero product already saturates (or every product rounds to 0).
template <class F, int kHalf>
struct PowerSplit {
  F a, b;
  explicit PowerSplit(int s) {
    s = s > 2 * kHalf ? 2 * kHalf : s < -2 * kHalf ? -2 * kHalf : s;
    a = Pow2(-(s / 2));
    b = Pow2(-(s - s / 2));
  }
  // 2^e for a normal exponent, built from its bits.
  static F Pow2(int e) {
    if constexpr (sizeof(F) == 4) return std::bit_cast<F>(static_cast<Vsp32u>(e + 127) << 23);
    else return std::bit_cast<F>(static_cast<Vsp64u>(e + 1023) << 52);
  }
};

// d[i] = saturate16s(round((x[i] * val) * a * b)), NaN to 0; scalar elements use the vector
// formula on one lane, so every path gives the same bits.
struct MulCTo16sEach {
  static constexpr int kStep = 8;
  const Vsp32f* x;
  hw::Vec<Vsp32f> val, a, b;
  Vsp16s* d;

  hw::Vec<Vsp32s> Rounded(hw::Vec<Vsp32f> v) const {
    hw::Vec<Vsp32f> q = hw::Mul(hw::Mul(hw::Mul(v, val), a), b);
    q = hw::And(q, hw::Eq(q, q));  // NaN to 0
    q = hw::Min(hw::Max(q, hw::Set1(-32768.0f)), hw::Set1(32767.0f));
    return hw::RoundEvenToInt(q);
  }
  void Scalar(long long i) { d[i] = static_cast<Vsp16s>(hw::GetLane0(Rounded(hw::Set1(x[i])))); }
  void Vector(long long i) {
    hw::StoreU(hw::NarrowSat16s(Rounded(hw::LoadU(x + i)), Rounded(hw::LoadU(x + i + 4))), d + i);
  }
};

VspStatus MulCTo16s(const Vsp32f* pSrc, Vsp32f val, Vsp16s* pDst, int len, int s) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  const PowerSplit<Vsp32f, 126> f(s);
  MulCTo16sEach op{pSrc, hw::Set1(val), hw::Set1(f.a), hw::Set1(f.b), pDst};
  ForEachAligned(pDst, len, op);
  return vspStatOk;
}

// round(q) to nearest, ties to even, saturated to 64s; NaN to 0.
Vsp64s RoundTo64s(Vsp64f q) {
  if (q != q) return 0;
  if (q >= 0x1p63) return kMaxOf<Vsp64s>;
  if (q < -0x1p63) return kMinOf<Vsp64s>;
  const Vsp64s t = static_cast<Vsp64s>(q);  // exact truncation
  const Vsp64f f = q - static_cast<Vsp64f>(t);
  if (f > 0.5 || (f == 0.5 && (t & 1))) return t + 1;
  if (f < -0.5 || (f == -0.5 && (t & 1))) return t - 1;
  return t;
}

}  // namespace

VSP_IMPL(VspStatus, vspsMulC_32f16s_Sfs, (const Vsp32f* pSrc, Vsp32f val, Vsp16s* pDst, int len, int scaleFactor)) {
  return MulCTo16s(pSrc, val, pDst, len, scaleFactor);
}
VSP_IMPL(VspStatus, vspsMulC_Low_32f16s, (const Vsp32f* pSrc, Vsp32f val, Vsp16s* pDst, int len)) {
  return MulCTo16s(pSrc, val, pDst, len, 0);
}

VSP_IMPL(VspStatus, vspsMulC_64f64s_ISfs, (Vsp64f val, Vsp64s* pSrcDst, int len, int scaleFactor)) {
  if (VspStatus st = CheckVec(len, pSrcDst)) return st;
  const PowerSplit<Vsp64f, 1022> f(scaleFactor);
  for (int i = 0; i < len; ++i) pSrcDst[i] = RoundTo64s(static_cast<Vsp64f>(pSrcDst[i]) * val * f.a * f.b);
  return vspStatOk;
}
