// Thresholds of complex vectors (16sc, 32fc, 64fc): the squared magnitude of each element is
// compared with the squared level in the element's own vector layout (16sc exactly in 32-bit
// lanes, 32fc in double, 64fc in double after a power-of-two scaling chosen by the level); the
// replacement values (the level along an element's direction, reciprocals) are computed per
// element in double lanes, robustly: the element is first divided by its larger part.
#include <algorithm>
#include <cmath>

#include "arith/threshold_kernels.h"
#include "core/check.h"
#include "core/copy.h"
#include "core/impl.h"

namespace {

using namespace vsp;
using namespace vsp::thr;

using VD = hw::Vec<Vsp64f>;

// ---- one complex element in double lanes (re, im) ------------------------------------------------

// z = a * u with a = max(|re|, |im|) in both lanes, |u| = sqrt(s2) in [1, sqrt(2)] (s2 in both
// lanes). An element with an infinite part gets u = +-1 in its infinite parts and 0 elsewhere,
// and a = Inf (also with a NaN part). A zero element (both parts zero) has a = 0 and a NaN u;
// callers select its result by `zero`. Otherwise a NaN part makes u NaN.
struct Polar {
  VD u, a, s2, zero;
};

inline Polar Normalize(VD z) {
  const VD inf = hw::Set1(HUGE_VAL);
  const VD mag = hw::Abs(z);
  const VD isInf = hw::Eq(mag, inf);
  const VD anyInf = hw::Or(isInf, hw::SwapReIm(isInf));
  const VD isZero = hw::Eq(mag, hw::Zero<Vsp64f>());
  const VD unitOfInf = hw::And(isInf, hw::Or(hw::Set1(1.0), hw::And(z, hw::Set1(-0.0))));
  const VD a = hw::Select(anyInf, inf, hw::DupRe(hw::Max(mag, hw::SwapReIm(mag))));
  const VD u = hw::Select(anyInf, unitOfInf, hw::Div(z, a));
  const VD uu = hw::Mul(u, u);
  return {u, a, hw::Add(uu, hw::SwapReIm(uu)), hw::And(isZero, hw::SwapReIm(isZero))};
}

// (re, im) * scale squared and summed, in both lanes: the squared magnitude compared with the
// squared level.
inline VD Magnitude2(VD z, VD scale) {
  const VD s = hw::Mul(z, scale);
  const VD q = hw::Mul(s, s);
  return hw::PairSums(q, q);
}

// level * z / |z| = (level / |u|) * u; a zero element gives (level, 0).
inline VD AlongDirection(VD z, VD level, VD levelRe) {
  const Polar p = Normalize(z);
  const VD r = hw::Mul(p.u, hw::Div(level, hw::Sqrt(p.s2)));
  return hw::Select(p.zero, levelRe, r);
}

// ---- element layouts -------------------------------------------------------------------------------

template <class T> struct Cplx;

template <>
struct Cplx<Vsp16sc> {
  using V = hw::Vec<Vsp16s>;
  using M = hw::Vec<Vsp32u>;  // re^2 + im^2 <= 2^31 fits unsigned 32 bits
  static constexpr int kCount = 4;
  static M Square(double level) { return hw::Set1(static_cast<Vsp32u>(level * level)); }
  static M Mag2(V v, VD) { return hw::BitCast<Vsp32u>(hw::MulAddPairs(v, v)); }
  static V MaskOfElements(M m) { return hw::BitCast<Vsp16s>(m); }
  static void Unpack(V v, VD (&z)[kCount]) {
    const auto lo = hw::PromoteLo(v), hi = hw::PromoteHi(v);
    z[0] = hw::ConvertLoToDouble(lo), z[1] = hw::ConvertLoToDouble(hw::ShiftBytesDown<8>(lo));
    z[2] = hw::ConvertLoToDouble(hi), z[3] = hw::ConvertLoToDouble(hw::ShiftBytesDown<8>(hi));
  }
  // Parts rounded half away from zero (z + copysign(0.5, z) is exact below 2^52), truncated.
  static V Pack(const VD (&z)[kCount]) {
    hw::Vec<Vsp64u> r[kCount];
    for (int k = 0; k < kCount; ++k) {
      const VD half = hw::Or(hw::Set1(0.5), hw::And(z[k], hw::Set1(-0.0)));
      r[k] = hw::BitCast<Vsp64u>(hw::ConvertTrunc(hw::Add(z[k], half)));
    }
    return hw::NarrowSat16s(hw::BitCast<Vsp32s>(hw::InterleaveLo(r[0], r[1])),
                            hw::BitCast<Vsp32s>(hw::InterleaveLo(r[2], r[3])));
  }
};

template <>
struct Cplx<Vsp32fc> {
  using V = hw::Vec<Vsp32f>;
  using M = VD;  // squares of floats are exact in double
  static constexpr int kCount = 2;
  static M Square(double level) { return hw::Set1(level * level); }
  static M Mag2(V v, VD) {
    const VD z0 = hw::PromoteLo(v), z1 = hw::PromoteHi(v);
    return hw::PairSums(hw::Mul(z0, z0), hw::Mul(z1, z1));
  }
  static V MaskOfElements(M m) { return hw::BitCast<Vsp32f>(m); }
  static void Unpack(V v, VD (&z)[kCount]) { z[0] = hw::PromoteLo(v), z[1] = hw::PromoteHi(v); }
  static V Pack(const VD (&z)[kCount]) { return hw::Demote(z[0], z[1]); }
};

template <>
struct Cplx<Vsp64fc> {
  using V = VD;
  using M = VD;
  static constexpr int kCount = 1;
  static M Square(double scaledLevel) { return hw::Set1(scaledLevel * scaledLevel); }
  static M Mag2(V v, VD scale) { return Magnitude2(v, scale); }
  static V MaskOfElements(M m) { return m; }
  static void Unpack(V v, VD (&z)[kCount]) { z[0] = v; }
  static V Pack(const VD (&z)[kCount]) { return z[0]; }
};

// The level of one call: 64fc elements and level are scaled by the power of two that brings a
// finite non-zero level to [1, 2) (limited to 2^+-1000, which keeps every level's square
// normal); the other types need no scaling.
template <class T>
struct CallLevel {
  using C = Cplx<T>;
  double scale = 1;
  typename C::M square;
  VD scaleV, level, levelRe;
  explicit CallLevel(double lvl) {
    if constexpr (std::is_same_v<T, Vsp64fc>) {
      if (std::isfinite(lvl) && lvl > 0) scale = std::ldexp(1.0, -std::clamp(std::ilogb(lvl), -1000, 1000));
    }
    square = C::Square(lvl * scale);
    scaleV = hw::Set1(scale);
    level = hw::Set1(lvl);
    levelRe = hw::InterleaveLo(level, hw::Zero<Vsp64f>());
  }
};

// ---- rules ------------------------------------------------------------------------------------------

enum class Rel { kLess, kGreater };

// LT, GT: elements below (above) the level become the level along their direction.
template <class T, Rel kRel>
struct ToLevelRule {
  using C = Cplx<T>;
  using V = typename C::V;
  const CallLevel<T>& lv;
  V operator()(V x) const {
    const auto m = C::Mag2(x, lv.scaleV);
    const V mask = C::MaskOfElements(kRel == Rel::kLess ? hw::Lt(m, lv.square) : hw::Gt(m, lv.square));
    if (!hw::AnyTrue(mask)) return x;
    VD z[C::kCount];
    C::Unpack(x, z);
    for (VD& e : z) e = AlongDirection(e, lv.level, lv.levelRe);
    return hw::Select(mask, C::Pack(z), x);
  }
};

// LTVal keeps z exactly when level <= |z| (a NaN magnitude is replaced); GTVal replaces z
// exactly when |z| > level.
template <class T, Rel kRel>
struct ToValueRule {
  using C = Cplx<T>;
  using V = typename C::V;
  const CallLevel<T>& lv;
  V value;
  V operator()(V x) const {
    const auto m = C::Mag2(x, lv.scaleV);
    if constexpr (kRel == Rel::kLess) return hw::Select(C::MaskOfElements(hw::Le(lv.square, m)), x, value);
    else return hw::Select(C::MaskOfElements(hw::Gt(m, lv.square)), value, x);
  }
};

// 1 / z' with z' = level * z / |z| where |z| < level, else z: conj(u) / (|u| * level) or
// conj(u) / (a * |u|^2). A zero element gives (1 / level, 0) where raised, (+Inf, 0) where not
// (and is remembered).
template <class T>
struct InverseRule {
  using C = Cplx<T>;
  using V = typename C::V;
  const CallLevel<T>& lv;
  VD zeros = hw::Zero<Vsp64f>();
  V operator()(V x) {
    const VD conjugate = hw::InterleaveLo(hw::Zero<Vsp64f>(), hw::Set1(-0.0));
    const VD infRe = hw::InterleaveLo(hw::Set1(HUGE_VAL), hw::Zero<Vsp64f>());
    const VD invLevelRe = hw::InterleaveLo(hw::Div(hw::Set1(1.0), lv.level), hw::Zero<Vsp64f>());
    VD z[C::kCount];
    C::Unpack(x, z);
    for (VD& e : z) {
      const VD raised = hw::Lt(Magnitude2(e, lv.scaleV), lv.square);
      const Polar p = Normalize(e);
      const VD d = hw::Select(raised, hw::Mul(hw::Sqrt(p.s2), lv.level), hw::Mul(p.a, p.s2));
      const VD y = hw::Div(hw::Xor(p.u, conjugate), d);
      zeros = hw::Or(zeros, hw::AndNot(raised, p.zero));
      e = hw::Select(p.zero, hw::Select(raised, invLevelRe, infRe), y);
    }
    return C::Pack(z);
  }
};

// ---- implementations -------------------------------------------------------------------------------

template <class T>
size_t Bytes(int len) {
  return static_cast<size_t>(len) * sizeof(T);
}

// LT and GT (and the relation-operator members): `own` is the status of the relation operator.
template <class T>
VspStatus ToLevel(const T* pSrc, T* pDst, int len, BaseOf<T> level, Rel rel, VspStatus own = vspStatOk) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (own != vspStatOk) return own;
  if (level < 0) return vspStatNegThreshold;
  if (level == 0) {  // before any arithmetic: nothing lies below 0, everything non-zero above
    if (rel == Rel::kGreater) ownsZero_8u(reinterpret_cast<Vsp8u*>(pDst), Bytes<T>(len));
    else if (pSrc != pDst) ownsCopy_8u(reinterpret_cast<const Vsp8u*>(pSrc), reinterpret_cast<Vsp8u*>(pDst), Bytes<T>(len));
    return vspStatOk;
  }
  const CallLevel<T> lv(level);
  if (rel == Rel::kLess) {
    ToLevelRule<T, Rel::kLess> rule{lv};
    ownsThreshold(pSrc, pDst, len, rule);
  } else {
    ToLevelRule<T, Rel::kGreater> rule{lv};
    ownsThreshold(pSrc, pDst, len, rule);
  }
  return vspStatOk;
}

template <class T>
VspStatus LT(const T* pSrc, T* pDst, int len, BaseOf<T> level) {
  return ToLevel(pSrc, pDst, len, level, Rel::kLess);
}
template <class T>
VspStatus GT(const T* pSrc, T* pDst, int len, BaseOf<T> level) {
  return ToLevel(pSrc, pDst, len, level, Rel::kGreater);
}

template <class T>
VspStatus Threshold(const T* pSrc, T* pDst, int len, BaseOf<T> level, int relOp) {
  const VspStatus own = relOp == RelOpLess || relOp == RelOpGreater ? vspStatOk : vspStatBadArg;
  return ToLevel(pSrc, pDst, len, level, relOp == RelOpGreater ? Rel::kGreater : Rel::kLess, own);
}

template <class T, Rel kRel>
VspStatus ToValue(const T* pSrc, T* pDst, int len, BaseOf<T> level, T value) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (level < 0) return vspStatNegThreshold;
  const CallLevel<T> lv(level);
  ToValueRule<T, kRel> rule{lv, ElemVec<T>::Broadcast(value)};
  ownsThreshold(pSrc, pDst, len, rule);
  return vspStatOk;
}

template <class T>
VspStatus LTVal(const T* pSrc, T* pDst, int len, BaseOf<T> level, T value) {
  return ToValue<T, Rel::kLess>(pSrc, pDst, len, level, value);
}
template <class T>
VspStatus GTVal(const T* pSrc, T* pDst, int len, BaseOf<T> level, T value) {
  return ToValue<T, Rel::kGreater>(pSrc, pDst, len, level, value);
}

template <class T>
VspStatus LTInv(const T* pSrc, T* pDst, int len, BaseOf<T> level) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (level < 0) return vspStatNegThreshold;
  const CallLevel<T> lv(level);
  InverseRule<T> rule{lv};
  ownsThreshold(pSrc, pDst, len, rule);
  return hw::AnyTrue(rule.zeros) ? VspStatus{vspStatInvZeroWarn} : VspStatus{vspStatOk};
}

}  // namespace

VSP_THRESHOLD_LTGT(16sc, 16s)
VSP_THRESHOLD_LTGT(32fc, 32f)
VSP_THRESHOLD_LTGT(64fc, 64f)
VSP_THRESHOLD_REL_VAL(16sc, 16s)
VSP_THRESHOLD_REL_VAL(32fc, 32f)
VSP_THRESHOLD_REL_VAL(64fc, 64f)
VSP_THRESHOLD_PAIR(vspsThreshold_LTInv_, 32fc, LTInv, (Vsp32f level), (level))
VSP_THRESHOLD_PAIR(vspsThreshold_LTInv_, 64fc, LTInv, (Vsp64f level), (level))
