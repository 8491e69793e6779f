// Real thresholds (16s, 32s, 32f, 64f) against the stated element rules written as plain
// comparisons: every member, layout and in-place form, with levels equal to elements, NaN
// elements, zero levels and the error order.
#include "convert/convert_test.h"

namespace vsptest {
namespace {

template <class T> constexpr bool kFloat = std::is_floating_point_v<T>;

// |x| without wrapping, for the integer rules.
template <class T> long double Mag(T x) { return std::fabs(static_cast<long double>(x)); }

// Elements that meet the levels: the levels themselves, their negatives, zeros, specials.
template <class T>
std::function<T(Rng&)> Elements(std::vector<T> levels) {
  return [levels](Rng& r) -> T {
    switch (r.Int(0, 5)) {
      case 0: { T l = levels[r.Int(0, levels.size() - 1)]; return r.Int(0, 1) ? l : T(-l); }
      case 1: if constexpr (kFloat<T>) return std::array<T, 6>{NAN, -NAN, INFINITY, -INFINITY, T(-0.0), T(1e-310)}[r.Int(0, 5)];
              else return std::numeric_limits<T>::lowest() + T(r.Int(0, 1));
      case 2: return T(0);
      default: return kFloat<T> ? static_cast<T>(r.Uniform(-10, 10)) : static_cast<T>(r.Int(-12, 12));
    }
  };
}

// The out-of-place and in-place forms of one member with bound parameters, and its rule.
#define VSP_MEMBER(name, fn, ...)                                                                   \
  Member<T, T> {                                                                                    \
    name, [=](const T* s, T* d, int n) { return fn(s, d, n, __VA_ARGS__); }, rule,                  \
        [=](T* p, int n) { return fn##_I(p, n, __VA_ARGS__); }                                      \
  }

template <class T> struct Fns;
#define VSP_FNS(t)                                                                                    \
  template <> struct Fns<Vsp##t> {                                                                    \
    static constexpr auto LT = vspsThreshold_LT_##t; static constexpr auto LT_I = vspsThreshold_LT_##t##_I; \
    static constexpr auto GT = vspsThreshold_GT_##t; static constexpr auto GT_I = vspsThreshold_GT_##t##_I; \
    static constexpr auto LTAbs = vspsThreshold_LTAbs_##t; static constexpr auto LTAbs_I = vspsThreshold_LTAbs_##t##_I; \
    static constexpr auto GTAbs = vspsThreshold_GTAbs_##t; static constexpr auto GTAbs_I = vspsThreshold_GTAbs_##t##_I; \
    static constexpr auto LTAbsVal = vspsThreshold_LTAbsVal_##t;                                      \
    static constexpr auto LTAbsVal_I = vspsThreshold_LTAbsVal_##t##_I;                                \
    static constexpr auto LTValGTVal = vspsThreshold_LTValGTVal_##t;                                  \
    static constexpr auto LTValGTVal_I = vspsThreshold_LTValGTVal_##t##_I;                            \
  };
VSP_FNS(16s) VSP_FNS(32s) VSP_FNS(32f) VSP_FNS(64f)
#undef VSP_FNS

// Members of every real type.
template <class T>
void CheckCommon(T level, T value, T levelGT, Rng&) {
  using F = Fns<T>;
  const auto gen = Elements<T>({level, levelGT, value});
  {
    auto rule = [=](T x) { return x < level ? level : x; };
    CheckLayouts(VSP_MEMBER("LT", F::LT, level), gen);
  }
  {
    auto rule = [=](T x) { return x > level ? level : x; };
    CheckLayouts(VSP_MEMBER("GT", F::GT, level), gen);
  }
  if (level >= 0) {
    auto rule = [=](T x) -> T {
      if constexpr (kFloat<T>) {
        if (std::isnan(x) || Mag(x) < level) return std::copysign(level == 0 ? T(0) : level, x);
        return x;
      } else {
        return Mag(x) < level ? T(x < 0 ? -level : level) : x;
      }
    };
    CheckLayouts(VSP_MEMBER("LTAbs", F::LTAbs, level), gen);
  }
  if (level >= 0) {
    auto rule = [=](T x) -> T {
      if constexpr (kFloat<T>) {
        if (level == 0) return T(-0.0);
        if (std::isnan(x)) return level;
      }
      return x > level ? level : x < -level ? T(-level) : x;
    };
    CheckLayouts(VSP_MEMBER("GTAbs", F::GTAbs, level), gen);
  }
  {
    auto rule = [=](T x) { return Mag(x) < level ? value : x; };
    CheckLayouts(VSP_MEMBER("LTAbsVal", F::LTAbsVal, level, value), gen);
  }
  if (level <= levelGT) {
    auto rule = [=](T x) -> T {
      if constexpr (kFloat<T>) {
        if (std::isnan(x)) return value;
      }
      return x < level ? value : x > levelGT ? T(-value) : x;
    };
    CheckLayouts(VSP_MEMBER("LTValGTVal", F::LTValGTVal, level, value, levelGT, T(-value)), gen);
  }
}

// Members of 16s, 32f and 64f only.
template <class T, class FnRel, class FnRelI, class FnV, class FnVI>
void CheckRelAndVal(T level, T value, FnRel rel, FnRelI relI, FnV ltVal, FnVI ltValI, FnV gtVal, FnVI gtValI) {
  const auto gen = Elements<T>({level, value});
  for (VspRelOp op : {RelOpLess, RelOpGreater}) {
    auto rule = [=](T x) { return op == RelOpLess ? (x < level ? level : x) : (x > level ? level : x); };
    CheckLayouts(Member<T, T>{"Threshold", [=](const T* s, T* d, int n) { return rel(s, d, n, level, op); }, rule,
                              [=](T* p, int n) { return relI(p, n, level, op); }},
                 gen);
  }
  CheckLayouts(Member<T, T>{"LTVal", [=](const T* s, T* d, int n) { return ltVal(s, d, n, level, value); },
                            [=](T x) { return level <= x ? x : value; }, [=](T* p, int n) { return ltValI(p, n, level, value); }},
               gen);
  CheckLayouts(Member<T, T>{"GTVal", [=](const T* s, T* d, int n) { return gtVal(s, d, n, level, value); },
                            [=](T x) { return x > level ? value : x; }, [=](T* p, int n) { return gtValI(p, n, level, value); }},
               gen);
}

TEST(Threshold, RealMembersEveryLayout) {
  Rng rng(5);
  CheckCommon<Vsp16s>(3, -7, 9, rng);
  CheckCommon<Vsp16s>(0, 5, 0, rng);
  CheckCommon<Vsp16s>(-4, 5, 4, rng);
  CheckCommon<Vsp32s>(5, 1, 5, rng);
  CheckCommon<Vsp32s>(INT32_MAX, 2, INT32_MAX, rng);
  CheckCommon<Vsp32f>(1.5f, -0.25f, 2.0f, rng);
  CheckCommon<Vsp32f>(0.0f, 3.0f, 0.0f, rng);
  CheckCommon<Vsp64f>(2.5, 8.0, 2.5, rng);
  CheckCommon<Vsp64f>(0.0, -1.0, 1e-300, rng);
  CheckRelAndVal<Vsp16s>(2, -9, vspsThreshold_16s, vspsThreshold_16s_I, vspsThreshold_LTVal_16s, vspsThreshold_LTVal_16s_I,
                         vspsThreshold_GTVal_16s, vspsThreshold_GTVal_16s_I);
  CheckRelAndVal<Vsp32f>(-1.5f, 4.0f, vspsThreshold_32f, vspsThreshold_32f_I, vspsThreshold_LTVal_32f, vspsThreshold_LTVal_32f_I,
                         vspsThreshold_GTVal_32f, vspsThreshold_GTVal_32f_I);
  CheckRelAndVal<Vsp64f>(0.0, 7.0, vspsThreshold_64f, vspsThreshold_64f_I, vspsThreshold_LTVal_64f, vspsThreshold_LTVal_64f_I,
                         vspsThreshold_GTVal_64f, vspsThreshold_GTVal_64f_I);
}

TEST(Threshold, StatedNaNRulesAndZeroLevels) {
  const float in[] = {NAN, 1.0f, 2.0f, 3.0f};
  float out[4];
  ASSERT_EQ(vspsThreshold_LTVal_32f(in, out, 4, 2.0f, -5.0f), vspStatOk);
  EXPECT_EQ(std::vector<float>(out, out + 4), (std::vector<float>{-5, -5, 2, 3}));
  ASSERT_EQ(vspsThreshold_GTVal_32f(in, out, 4, 2.0f, -5.0f), vspStatOk);
  EXPECT_TRUE(std::isnan(out[0]));
  EXPECT_EQ(std::vector<float>(out + 1, out + 4), (std::vector<float>{1, 2, -5}));
  ASSERT_EQ(vspsThreshold_GTAbs_32f(in, out, 4, 0.0f), vspStatOk);
  for (float y : out) EXPECT_TRUE(y == 0 && std::signbit(y));
  const double d[] = {1.0, 2.0, 3.0, NAN};
  double o[4];
  ASSERT_EQ(vspsThreshold_LTValGTVal_64f(d, o, 4, 2.0, -1.0, 2.0, 9.0), vspStatOk);
  EXPECT_EQ(std::vector<double>(o, o + 4), (std::vector<double>{-1, 2, 9, -1}));
  EXPECT_EQ(vspsThreshold_LTValGTVal_64f(d, o, 4, 2.5, -1.0, 2.0, 9.0), vspStatThreshLevelOrder);
  EXPECT_EQ(vspsThreshold_LTAbs_64f(d, o, 4, -1.0), vspStatNegThreshold);
  EXPECT_EQ(vspsThreshold_64f(d, o, 4, 1.0, VspRelOp(1)), vspStatBadArg);
  EXPECT_EQ(o[3], -1);  // untouched by the errors
}

TEST(Threshold, LTInvReal) {
  for (float level : {0.5f, 0.0f, 3.0f}) {
    auto rule = [=](Vsp32f x) { return 1.0f / (std::fabs(x) < level ? std::copysign(level, x) : x); };
    const auto gen = [](Rng& r) { float x = RandomFloat<Vsp32f>(r); return x == 0 ? 1.0f : x; };
    CheckLayouts(Member<Vsp32f, Vsp32f>{"LTInv_32f", [=](const Vsp32f* s, Vsp32f* d, int n) { return vspsThreshold_LTInv_32f(s, d, n, level); },
                                        rule, [=](Vsp32f* p, int n) { return vspsThreshold_LTInv_32f_I(p, n, level); }},
                 std::function<Vsp32f(Rng&)>(gen));
  }
  const double in[] = {-0.0, 4.0, -0.125, NAN, INFINITY};
  double out[5];
  EXPECT_EQ(vspsThreshold_LTInv_64f(in, out, 5, 0.5), vspStatOk);
  EXPECT_EQ(std::vector<double>(out, out + 3), (std::vector<double>{-2, 0.25, -2}));
  EXPECT_TRUE(std::isnan(out[3]));
  EXPECT_EQ(out[4], 0.0);
  EXPECT_EQ(vspsThreshold_LTInv_64f(in, out, 5, 0.0), vspStatInvZeroWarn);
  EXPECT_EQ(out[0], -INFINITY);
  EXPECT_EQ(out[2], -8.0);
}

}  // namespace
}  // namespace vsptest
