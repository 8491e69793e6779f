// Thresholds of real vectors (16s, 32s, 32f, 64f): checks, then one rule per member applied by
// the threshold loop. Each rule is written once with the vector operations of the SIMD layer,
// whose float Min and Max (a < b ? a : b, a > b ? a : b) give the NaN and signed-zero results
// that the export list states.
#include "arith/threshold_kernels.h"
#include "core/check.h"
#include "core/impl.h"

namespace {

using namespace vsp;
using namespace vsp::thr;

template <class T> using V = hw::Vec<T>;
template <class T> inline constexpr bool kFloat = std::is_floating_point_v<T>;

// ---- rules -----------------------------------------------------------------------------------------

template <class T>
struct LTRule {
  V<T> level;
  V<T> operator()(V<T> x) const { return hw::Max(level, x); }  // level > x ? level : x
};
template <class T>
struct GTRule {
  V<T> level;
  V<T> operator()(V<T> x) const { return hw::Min(level, x); }  // level < x ? level : x
};
template <class T>
struct LTValRule {
  V<T> level, value;
  V<T> operator()(V<T> x) const { return hw::Select(hw::Le(level, x), x, value); }
};
template <class T>
struct GTValRule {
  V<T> level, value;
  V<T> operator()(V<T> x) const { return hw::Select(hw::Gt(x, level), value, x); }
};
template <class T>
struct LTValGTValRule {
  V<T> levelLT, valueLT, levelGT, valueGT;
  V<T> operator()(V<T> x) const {
    const V<T> upper = hw::Select(hw::Gt(x, levelGT), valueGT, x);
    return hw::Select(hw::Ge(x, levelLT), upper, valueLT);
  }
};

// Integers: -level < x < level, exactly (also for the most negative x, whose |x| wraps).
// negLevel = -level and level are given with level > 0, or both 0 (nothing is inside).
template <class T>
V<T> InsideOpen(V<T> x, V<T> negLevel, V<T> level) {
  return hw::And(hw::Gt(x, negLevel), hw::Lt(x, level));
}

template <class T>
struct LTAbsRule {
  V<T> level, negLevel;
  V<T> operator()(V<T> x) const {
    if constexpr (kFloat<T>) {
      return hw::Or(hw::Max(hw::Abs(x), level), hw::And(x, hw::Set1<T>(T(-0.0))));
    } else {
      const V<T> signed_ = hw::Select(hw::Lt(x, hw::Zero<T>()), negLevel, level);
      return hw::Select(InsideOpen(x, negLevel, level), signed_, x);
    }
  }
};
template <class T>
struct GTAbsRule {
  V<T> level, negLevel;
  V<T> operator()(V<T> x) const { return hw::Max(hw::Min(x, level), negLevel); }
};
template <class T>
struct LTAbsValRule {
  V<T> level, negLevel, value;
  V<T> operator()(V<T> x) const {
    if constexpr (kFloat<T>) return hw::Select(hw::Lt(hw::Abs(x), level), value, x);
    else return hw::Select(InsideOpen(x, negLevel, level), value, x);
  }
};
// 1 / (sign(x) * level where |x| < level, else x); zero divisors are remembered.
template <class T>
struct LTInvRule {
  V<T> level;
  V<T> zeros = hw::Zero<T>();
  V<T> operator()(V<T> x) {
    const V<T> raised = hw::Or(level, hw::And(x, hw::Set1<T>(T(-0.0))));
    const V<T> d = hw::Select(hw::Lt(hw::Abs(x), level), raised, x);
    zeros = hw::Or(zeros, hw::Eq(d, hw::Zero<T>()));
    return hw::Div(hw::Set1<T>(T(1)), d);
  }
};

// ---- implementations -------------------------------------------------------------------------------

// The vector checks, then the member's own status (computed by the caller without writing),
// then the rule.
template <class T, class Rule>
VspStatus Apply(const T* pSrc, T* pDst, int len, VspStatus own, Rule rule) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (own != vspStatOk) return own;
  ownsThreshold(pSrc, pDst, len, rule);
  return vspStatOk;
}

VspStatus NegativeLevel(double level) { return level < 0 ? vspStatNegThreshold : vspStatOk; }

template <class T>
VspStatus LT(const T* pSrc, T* pDst, int len, T level) {
  return Apply(pSrc, pDst, len, vspStatOk, LTRule<T>{hw::Set1(level)});
}
template <class T>
VspStatus GT(const T* pSrc, T* pDst, int len, T level) {
  return Apply(pSrc, pDst, len, vspStatOk, GTRule<T>{hw::Set1(level)});
}
template <class T>
VspStatus LTVal(const T* pSrc, T* pDst, int len, T level, T value) {
  return Apply(pSrc, pDst, len, vspStatOk, LTValRule<T>{hw::Set1(level), hw::Set1(value)});
}
template <class T>
VspStatus GTVal(const T* pSrc, T* pDst, int len, T level, T value) {
  return Apply(pSrc, pDst, len, vspStatOk, GTValRule<T>{hw::Set1(level), hw::Set1(value)});
}

template <class T>
VspStatus Threshold(const T* pSrc, T* pDst, int len, T level, int relOp) {
  const VspStatus own = relOp == RelOpLess || relOp == RelOpGreater ? vspStatOk : vspStatBadArg;
  if (relOp == RelOpGreater) return Apply(pSrc, pDst, len, own, GTRule<T>{hw::Set1(level)});
  return Apply(pSrc, pDst, len, own, LTRule<T>{hw::Set1(level)});
}

// -level for the rules; a negative integer level (refused, or not used) gives 0, so the most
// negative one does not overflow.
template <class T>
T Negated(T level) {
  if constexpr (kFloat<T>) return -level;
  else return level > 0 ? static_cast<T>(-level) : T(0);
}

// A level of -0.0 acts as +0.0 where the level's sign would show.
template <class T>
T PositiveZero(T level) {
  return level == T(0) ? T(0) : level;
}

template <class T>
VspStatus LTAbs(const T* pSrc, T* pDst, int len, T level) {
  level = PositiveZero(level);
  return Apply(pSrc, pDst, len, NegativeLevel(level), LTAbsRule<T>{hw::Set1(level), hw::Set1(Negated(level))});
}
template <class T>
VspStatus GTAbs(const T* pSrc, T* pDst, int len, T level) {
  return Apply(pSrc, pDst, len, NegativeLevel(level), GTAbsRule<T>{hw::Set1(level), hw::Set1(Negated(level))});
}
template <class T>
VspStatus LTAbsVal(const T* pSrc, T* pDst, int len, T level, T value) {
  if constexpr (!kFloat<T>) {
    if (level < 0) level = 0;  // nothing lies strictly inside
  }
  return Apply(pSrc, pDst, len, vspStatOk,
               LTAbsValRule<T>{hw::Set1(level), hw::Set1(Negated(level)), hw::Set1(value)});
}
template <class T>
VspStatus LTValGTVal(const T* pSrc, T* pDst, int len, T levelLT, T valueLT, T levelGT, T valueGT) {
  const VspStatus own = levelLT > levelGT ? vspStatThreshLevelOrder : vspStatOk;
  return Apply(pSrc, pDst, len, own,
               LTValGTValRule<T>{hw::Set1(levelLT), hw::Set1(valueLT), hw::Set1(levelGT), hw::Set1(valueGT)});
}
template <class T>
VspStatus LTInv(const T* pSrc, T* pDst, int len, T level) {
  if (VspStatus st = CheckVec(len, pSrc, pDst)) return st;
  if (VspStatus st = NegativeLevel(level)) return st;
  LTInvRule<T> rule{hw::Set1(PositiveZero(level))};
  ownsThreshold(pSrc, pDst, len, rule);
  return hw::AnyTrue(rule.zeros) ? VspStatus{vspStatInvZeroWarn} : VspStatus{vspStatOk};
}

}  // namespace

#define VSP_THRESHOLD_REAL(t)                                                                                  \
  VSP_THRESHOLD_LTGT(t, t)                                                                                     \
  VSP_THRESHOLD_PAIR(vspsThreshold_LTAbs_, t, LTAbs, (Vsp##t level), (level))                                  \
  VSP_THRESHOLD_PAIR(vspsThreshold_GTAbs_, t, GTAbs, (Vsp##t level), (level))                                  \
  VSP_THRESHOLD_PAIR(vspsThreshold_LTAbsVal_, t, LTAbsVal, (Vsp##t level, Vsp##t value), (level, value))       \
  VSP_THRESHOLD_PAIR(vspsThreshold_LTValGTVal_, t, LTValGTVal,                                                 \
                     (Vsp##t levelLT, Vsp##t valueLT, Vsp##t levelGT, Vsp##t valueGT),                        \
                     (levelLT, valueLT, levelGT, valueGT))
VSP_THRESHOLD_REAL(16s)
VSP_THRESHOLD_REAL(32s)
VSP_THRESHOLD_REAL(32f)
VSP_THRESHOLD_REAL(64f)

// The relation-operator and Val members exist for 16s, 32f and 64f; LTInv for the float types.
VSP_THRESHOLD_REL_VAL(16s, 16s)
VSP_THRESHOLD_REL_VAL(32f, 32f)
VSP_THRESHOLD_REL_VAL(64f, 64f)
VSP_THRESHOLD_PAIR(vspsThreshold_LTInv_, 32f, LTInv, (Vsp32f level), (level))
VSP_THRESHOLD_PAIR(vspsThreshold_LTInv_, 64f, LTInv, (Vsp64f level), (level))
