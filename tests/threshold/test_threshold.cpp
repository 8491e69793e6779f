// Real thresholds (16s, 32s, 32f, 64f) against the element rules written as plain comparisons:
// every member, layout and in-place form, with levels equal to elements, NaN elements, zero levels.
#include "convert/convert_test.h"

namespace vsptest {
namespace {

template <class T> constexpr bool kFloat = std::is_floating_point_v<T>;
template <class T> long double Mag(T x) { return std::fabs(static_cast<long double>(x)); }

// Elements that meet the levels: the levels themselves and their negatives, zeros, specials.
template <class T>
std::function<T(Rng&)> Elements(T a, T b) {
  return [=](Rng& r) -> T {
    const T x = std::array<T, 4>{a, b, T(0), kFloat<T> ? T(r.Uniform(-9, 9)) : T(r.Int(-12, 12))}[r.Int(0, 3)];
    if constexpr (kFloat<T>) {
      if (r.Int(0, 7) == 0) return std::array<T, 5>{NAN, -NAN, INFINITY, T(-0.0), T(1e-310)}[r.Int(0, 4)];
    } else {
      if (r.Int(0, 15) == 0) return std::numeric_limits<T>::lowest();
    }
    return r.Int(0, 1) ? x : T(-x);
  };
}

// Out-of-place and in-place forms with bound parameters, and the rule for one element.
#define VSP_CHECK(fn, rule, ...)                                                                                \
  CheckLayouts(Member<T, T>{#fn, [=](const T* s, T* d, int n) { return F::fn(s, d, n, __VA_ARGS__); }, rule,    \
                            [=](T* p, int n) { return F::fn##_I(p, n, __VA_ARGS__); }},                         \
               gen)

#define VSP_FN(t, fn) static constexpr auto fn = vspsThreshold_##fn##_##t, fn##_I = vspsThreshold_##fn##_##t##_I;
template <class T> struct Fns;
#define VSP_FNS(t, ...)                                                                                        \
  template <> struct Fns<Vsp##t> {                                                                           \
    VSP_FN(t, LT) VSP_FN(t, GT) VSP_FN(t, LTAbs) VSP_FN(t, GTAbs) VSP_FN(t, LTAbsVal) VSP_FN(t, LTValGTVal) \
    __VA_ARGS__                                                                                            \
  };
#define VSP_REL(t) VSP_FN(t, LTVal) VSP_FN(t, GTVal) static constexpr auto Rel = vspsThreshold_##t, Rel_I = vspsThreshold_##t##_I;
VSP_FNS(16s, VSP_REL(16s)) VSP_FNS(32s) VSP_FNS(32f, VSP_REL(32f)) VSP_FNS(64f, VSP_REL(64f))

// Every member of T with a level, a value and an upper level.
template <class T>
void CheckMembers(T level, T value, T upper) {
  using F = Fns<T>;
  const auto gen = Elements<T>(level, upper);
  VSP_CHECK(LT, [=](T x) { return x < level ? level : x; }, level);
  VSP_CHECK(GT, [=](T x) { return x > level ? level : x; }, level);
  VSP_CHECK(LTAbsVal, [=](T x) { return Mag(x) < level ? value : x; }, level, value);
  const auto clip = [=](T x) -> T {
    if (kFloat<T> && std::isnan(x)) return value;
    return x < level ? value : x > upper ? T(-value) : x;
  };
  if (level <= upper) VSP_CHECK(LTValGTVal, clip, level, value, upper, T(-value));
  if (level >= 0) {
    // Floats: NaN becomes level with its sign, +-0 becomes +-level; with level 0, GTAbs gives -0.0.
    const auto ltAbs = [=](T x) -> T {
      if constexpr (kFloat<T>) return std::isnan(x) || Mag(x) < level ? std::copysign(level, x) : x;
      else return Mag(x) < level ? T(x < 0 ? -level : level) : x;
    };
    const auto gtAbs = [=](T x) -> T {
      if (kFloat<T> && level == 0) return T(-0.0);
      if (kFloat<T> && std::isnan(x)) return level;
      return x > level ? level : x < -level ? T(-level) : x;
    };
    VSP_CHECK(LTAbs, ltAbs, level);
    VSP_CHECK(GTAbs, gtAbs, level);
  }
  if constexpr (!std::is_same_v<T, Vsp32s>) {
    VSP_CHECK(LTVal, [=](T x) { return level <= x ? x : value; }, level, value);
    VSP_CHECK(GTVal, [=](T x) { return x > level ? value : x; }, level, value);
    VSP_CHECK(Rel, [=](T x) { return x < level ? level : x; }, level, RelOpLess);
    VSP_CHECK(Rel, [=](T x) { return x > level ? level : x; }, level, RelOpGreater);
  }
}

TEST(Threshold, RealMembersEveryLayout) {
  CheckMembers<Vsp16s>(3, -7, 9);
  CheckMembers<Vsp16s>(0, 5, 0);
  CheckMembers<Vsp16s>(-4, 5, 4);
  CheckMembers<Vsp32s>(5, 1, 5);
  CheckMembers<Vsp32s>(INT32_MAX, 2, INT32_MAX);
  CheckMembers<Vsp32f>(1.5f, -0.25f, 2.0f);
  CheckMembers<Vsp32f>(0.0f, 3.0f, 0.0f);
  CheckMembers<Vsp64f>(2.5, 8.0, 2.5);
  CheckMembers<Vsp64f>(0.0, -1.0, 1e-300);
}

TEST(Threshold, LTInvReal) {
  for (float level : {0.5f, 0.0f, 3.0f}) {
    auto rule = [=](Vsp32f x) { return 1.0f / (std::fabs(x) < level ? std::copysign(level, x) : x); };
    CheckLayouts(Member<Vsp32f, Vsp32f>{"LTInv_32f", [=](const Vsp32f* s, Vsp32f* d, int n) { return vspsThreshold_LTInv_32f(s, d, n, level); },
                                        rule, [=](Vsp32f* p, int n) { return vspsThreshold_LTInv_32f_I(p, n, level); }},
                 std::function<Vsp32f(Rng&)>([](Rng& r) { const float x = RandomFloat<Vsp32f>(r); return x == 0 ? 1.0f : x; }));
  }
  const double in[] = {-0.0, 4.0, -0.125, NAN, INFINITY};
  double out[5];
  EXPECT_EQ(vspsThreshold_LTInv_64f(in, out, 5, 0.5), vspStatOk);
  EXPECT_EQ(std::vector<double>(out, out + 3), (std::vector<double>{-2, 0.25, -2}));
  EXPECT_TRUE(std::isnan(out[3]) && out[4] == 0);
  EXPECT_EQ(vspsThreshold_LTInv_64f(in, out, 5, 0.0), vspStatInvZeroWarn);
  EXPECT_EQ(out[0], -INFINITY);
  EXPECT_EQ(out[2], -8.0);
}

}  // namespace
}  // namespace vsptest
