// Conversions against references in wide arithmetic: every layout (lengths 1..70 and long ones,
// every start offset), every 8- and 16-bit input exhaustively through the members that take one
// and across a sweep of scale factors and every rounding mode, random and boundary values
// elsewhere, and the stated examples.
#include "convert/convert_test.h"

namespace vsptest {
namespace {

inline const Vsp8u* Raw(const Sample24* p) { return p->b; }
inline Vsp8u* Raw(Sample24* p) { return p->b; }
template <class T> T* Raw(T* p) { return p; }

// A member with its extra arguments bound.
#define BIND(fn, ...) [=](auto src_, auto dst_, int n_) { return fn(Raw(src_), Raw(dst_), n_ __VA_OPT__(, ) __VA_ARGS__); }

std::vector<int> ScaleSweep() {
  std::vector<int> s;
  for (int k = -20; k <= 20; ++k) s.push_back(k);
  for (int k : {31, 32, 33, 63, 64, 65, 128, 129, 130, 150, 200, 1023, 1025, 1100, 1200, INT_MAX})
    s.push_back(k), s.push_back(k == INT_MAX ? INT_MIN : -k);
  return s;
}

template <class T>
std::vector<T> AllOf() {
  std::vector<T> v;
  for (long long x = std::numeric_limits<T>::lowest(); x <= std::numeric_limits<T>::max(); ++x) v.push_back(static_cast<T>(x));
  return v;
}

template <class T>
std::vector<T> RandomOf(size_t n, std::function<T(Rng&)> gen, uint64_t seed) {
  Rng rng(seed);
  std::vector<T> v(n);
  for (T& x : v) x = gen(rng);
  return v;
}

template <class D> D AsFloat(long double v) { return static_cast<D>(v); }

TEST(Convert, ByValueEveryLayout) {
  CheckLayouts<Vsp8s, Vsp16s>({"8s16s", BIND(vspsConvert_8s16s), [](Vsp8s x) { return Vsp16s(x); }}, RandomInt<Vsp8s>);
  CheckLayouts<Vsp16s, Vsp32s>({"16s32s", BIND(vspsConvert_16s32s), [](Vsp16s x) { return Vsp32s(x); }}, RandomInt<Vsp16s>);
  CheckLayouts<Vsp8s, Vsp32f>({"8s32f", BIND(vspsConvert_8s32f), [](Vsp8s x) { return Vsp32f(x); }}, RandomInt<Vsp8s>);
  CheckLayouts<Vsp8u, Vsp32f>({"8u32f", BIND(vspsConvert_8u32f), [](Vsp8u x) { return Vsp32f(x); }}, RandomInt<Vsp8u>);
  CheckLayouts<Vsp16s, Vsp32f>({"16s32f", BIND(vspsConvert_16s32f), [](Vsp16s x) { return Vsp32f(x); }}, RandomInt<Vsp16s>);
  CheckLayouts<Vsp16u, Vsp32f>({"16u32f", BIND(vspsConvert_16u32f), [](Vsp16u x) { return Vsp32f(x); }}, RandomInt<Vsp16u>);
  CheckLayouts<Vsp32s, Vsp32f>({"32s32f", BIND(vspsConvert_32s32f), [](Vsp32s x) { return AsFloat<Vsp32f>(x); }}, RandomInt<Vsp32s>);
  CheckLayouts<Vsp32s, Vsp64f>({"32s64f", BIND(vspsConvert_32s64f), [](Vsp32s x) { return Vsp64f(x); }}, RandomInt<Vsp32s>);
  CheckLayouts<Vsp64s, Vsp64f>({"64s64f", BIND(vspsConvert_64s64f), [](Vsp64s x) { return AsFloat<Vsp64f>(x); }}, RandomInt<Vsp64s>);
  CheckLayouts<Vsp32f, Vsp64f>({"32f64f", BIND(vspsConvert_32f64f), [](Vsp32f x) { return Vsp64f(x); }}, RandomFloat<Vsp32f>);
  CheckLayouts<Vsp64f, Vsp32f>({"64f32f", BIND(vspsConvert_64f32f), [](Vsp64f x) { return AsFloat<Vsp32f>(x); }}, RandomFloat<Vsp64f>);
  CheckLayouts<Vsp32s, Vsp16s>({"32s16s", BIND(vspsConvert_32s16s), [](Vsp32s x) { return SaturateRef<Vsp16s>(x); }}, RandomInt<Vsp32s>);
  CheckLayouts<Vsp8s, Vsp8u>({"8s8u", BIND(vspsConvert_8s8u), [](Vsp8s x) { return Vsp8u(x < 0 ? 0 : x); }}, RandomInt<Vsp8s>);
  auto sample = [](Rng& r) { return Make24(static_cast<long long>(r.Bits())); };
  CheckLayouts<Sample24, Vsp32s>({"24s32s", BIND(vspsConvert_24s32s), [](Sample24 x) { return Vsp32s(Value24(x, true)); }}, sample);
  CheckLayouts<Sample24, Vsp32u>({"24u32u", BIND(vspsConvert_24u32u), [](Sample24 x) { return Vsp32u(Value24(x, false)); }}, sample);
  CheckLayouts<Sample24, Vsp32f>({"24s32f", BIND(vspsConvert_24s32f), [](Sample24 x) { return Vsp32f(Value24(x, true)); }}, sample);
  CheckLayouts<Sample24, Vsp32f>({"24u32f", BIND(vspsConvert_24u32f), [](Sample24 x) { return Vsp32f(Value24(x, false)); }}, sample);
}

// Float narrowing rounds subnormal results to nearest even (the layouts cover NaN and Inf).
TEST(Convert, FloatNarrowingTies) {
  const double in[] = {0x1p-150, 0x1.8p-150, 0x1.000003p0, 0x1.000001p0};
  float out[4];
  ASSERT_EQ(vspsConvert_64f32f(in, out, 4), vspStatOk);
  EXPECT_EQ(std::vector<float>(out, out + 4), (std::vector<float>{0.0f, 0x1p-149f, 0x1.000004p0f, 0x1p0f}));
}

// Every 8- and 16-bit input, every scale factor of the sweep, every rounding mode.
TEST(Convert, EverySmallIntegerInput) {
  const auto s16 = AllOf<Vsp16s>();
  const auto u16 = AllOf<Vsp16u>();
  const auto s8 = AllOf<Vsp8s>();
  const auto u8 = AllOf<Vsp8u>();
  CheckInputs<Vsp16s, Vsp32s>({"16s32s", BIND(vspsConvert_16s32s), [](Vsp16s x) { return Vsp32s(x); }}, s16);
  CheckInputs<Vsp16s, Vsp32f>({"16s32f", BIND(vspsConvert_16s32f), [](Vsp16s x) { return Vsp32f(x); }}, s16);
  CheckInputs<Vsp16u, Vsp32f>({"16u32f", BIND(vspsConvert_16u32f), [](Vsp16u x) { return Vsp32f(x); }}, u16);
  CheckInputs<Vsp8s, Vsp16s>({"8s16s", BIND(vspsConvert_8s16s), [](Vsp8s x) { return Vsp16s(x); }}, s8);
  CheckInputs<Vsp8s, Vsp8u>({"8s8u", BIND(vspsConvert_8s8u), [](Vsp8s x) { return Vsp8u(x < 0 ? 0 : x); }}, s8);
  for (int s : ScaleSweep()) {
    SCOPED_TRACE("scaleFactor " + std::to_string(s));
    CheckInputs<Vsp16s, Vsp32f>({"16s32f_Sfs", BIND(vspsConvert_16s32f_Sfs, s), [=](Vsp16s x) { return AsFloat<Vsp32f>(ScaledRef(x, s)); }},
                                s16, Thin(13));
    CheckInputs<Vsp16s, Vsp64f>({"16s64f_Sfs", BIND(vspsConvert_16s64f_Sfs, s), [=](Vsp16s x) { return AsFloat<Vsp64f>(ScaledRef(x, s)); }},
                                s16, Thin(13));
    CheckInputs<Vsp8u, Vsp8s>({"8u8s_Sfs", BIND(vspsConvert_8u8s_Sfs, s), [=](Vsp8u x) { return Vsp8s(ToIntRef(x, s, 1, -128, 127)); }}, u8);
    for (int mode : {0, 1, 2, 7}) {
      CheckInputs<Vsp16s, Vsp8s>({"16s8s_Sfs mode " + std::to_string(mode), BIND(vspsConvert_16s8s_Sfs, VspRoundMode(mode), s),
                                  [=](Vsp16s x) { return Vsp8s(ToIntRef(x, s, mode, -128, 127)); }},
                                 s16, Thin(13));
    }
  }
}

// Integer narrowing with scaling, with the documented clamps of the scale factor.
TEST(Convert, ScaledIntegerNarrowing) {
  for (int s : ScaleSweep()) {
    SCOPED_TRACE("scaleFactor " + std::to_string(s));
    const int c15 = std::clamp(s, -15, 31), c31 = std::clamp(s, -31, 31);
    const Member<Vsp32s, Vsp16s> m16{"32s16s_Sfs", BIND(vspsConvert_32s16s_Sfs, s),
                                     [=](Vsp32s x) { return Vsp16s(ToIntRef(x, c15, 1, -32768, 32767)); }};
    const Member<Vsp32s, Sample24> m24s{"32s24s_Sfs", BIND(vspsConvert_32s24s_Sfs, s),
                                        [=](Vsp32s x) { return Make24(ToIntRef(x, c31, 1, -(1 << 23), (1 << 23) - 1)); }};
    const Member<Vsp32u, Sample24> m24u{"32u24u_Sfs", BIND(vspsConvert_32u24u_Sfs, s),
                                        [=](Vsp32u x) { return Make24(ToIntRef(x, c31, 1, 0, (1 << 24) - 1)); }};
    const Member<Vsp64s, Vsp32s> m64{"64s32s_Sfs", BIND(vspsConvert_64s32s_Sfs, VspRoundMode(s & 3), s),
                                     [=](Vsp64s x) { return Vsp32s(ToIntRef(x, s, s & 3, INT32_MIN, INT32_MAX)); }};
    CheckInputs(m16, RandomOf<Vsp32s>(3000, RandomInt<Vsp32s>, s));
    CheckInputs(m24s, RandomOf<Vsp32s>(3000, RandomInt<Vsp32s>, s));
    CheckInputs(m24u, RandomOf<Vsp32u>(3000, RandomInt<Vsp32u>, s));
    CheckInputs(m64, RandomOf<Vsp64s>(3000, RandomInt<Vsp64s>, s));
    if (s == 3 || s == -2) {
      CheckLayouts(m16, RandomInt<Vsp32s>), CheckLayouts(m24s, RandomInt<Vsp32s>);
      CheckLayouts(m24u, RandomInt<Vsp32u>), CheckLayouts(m64, RandomInt<Vsp64s>);
    }
  }
  // At the largest scale factor: an exact half rounds to the even 0, three quarters to 1.
  const Vsp32s in[] = {INT32_MIN, INT32_MAX, 1 << 30, 3 << 29};
  Vsp16s out[4];
  ASSERT_EQ(vspsConvert_32s16s_Sfs(in, out, 4, 40), vspStatOk);
  EXPECT_EQ(out[0], -1);
  EXPECT_EQ(out[1], 1);
  EXPECT_EQ(out[2], 0);
  EXPECT_EQ(out[3], 1);
}

// A rounding-group member from a float format into an integer destination of range [lo, hi].
template <class S, class D>
void CheckRoundingMember(const char* name, VspStatus (*fn)(const S*, D*, int, VspRoundMode, int), long long lo,
                         long long hi) {
  const auto inputs = RandomOf<S>(2000, RandomFloat<S>, 99);
  for (int s : ScaleSweep()) {
    for (int mode : {0, 1, 2, 7}) {
      const Member<S, D> m{std::string(name) + " mode " + std::to_string(mode) + " scaleFactor " + std::to_string(s),
                           [=](const S* a, D* b, int n) { return fn(a, b, n, VspRoundMode(mode), s); },
                           [=](S x) { return static_cast<D>(ToIntRef(x, s, mode, lo, hi)); }};
      CheckInputs(m, inputs);
      if ((s == 0 && mode == 1) || (s == -3 && mode == 2) || (s == 5 && mode == 0))
        CheckLayouts(m, std::function<S(Rng&)>(RandomFloat<S>));
    }
  }
}

TEST(Convert, RoundingGroupFromFloats) {
  CheckRoundingMember("32f8s", vspsConvert_32f8s_Sfs, -128, 127);
  CheckRoundingMember("32f8u", vspsConvert_32f8u_Sfs, 0, 255);
  CheckRoundingMember("32f16s", vspsConvert_32f16s_Sfs, -32768, 32767);
  CheckRoundingMember("32f16u", vspsConvert_32f16u_Sfs, 0, 65535);
  CheckRoundingMember("32f32s", vspsConvert_32f32s_Sfs, INT32_MIN, INT32_MAX);
  CheckRoundingMember("64f8s", vspsConvert_64f8s_Sfs, -128, 127);
  CheckRoundingMember("64f8u", vspsConvert_64f8u_Sfs, 0, 255);
  CheckRoundingMember("64f16s", vspsConvert_64f16s_Sfs, -32768, 32767);
  CheckRoundingMember("64f16u", vspsConvert_64f16u_Sfs, 0, 65535);
  CheckRoundingMember("64f32s", vspsConvert_64f32s_Sfs, INT32_MIN, INT32_MAX);
  CheckRoundingMember("64f64s", vspsConvert_64f64s_Sfs, INT64_MIN, INT64_MAX);
}

TEST(Convert, IntegerToFloatWithScaling) {
  for (int s : ScaleSweep()) {
    const Member<Vsp32s, Vsp32f> f{"32s32f_Sfs " + std::to_string(s), BIND(vspsConvert_32s32f_Sfs, s),
                                   [=](Vsp32s x) { return AsFloat<Vsp32f>(ScaledRef(x, s)); }};
    const Member<Vsp32s, Vsp64f> d{"32s64f_Sfs " + std::to_string(s), BIND(vspsConvert_32s64f_Sfs, s),
                                   [=](Vsp32s x) { return AsFloat<Vsp64f>(ScaledRef(x, s)); }};
    CheckInputs(f, RandomOf<Vsp32s>(3000, RandomInt<Vsp32s>, s));
    CheckInputs(d, RandomOf<Vsp32s>(3000, RandomInt<Vsp32s>, s));
    if (s == 5 || s == -140 || s == 160) CheckLayouts(f, RandomInt<Vsp32s>), CheckLayouts(d, RandomInt<Vsp32s>);
  }
  CheckLayouts<Vsp16s, Vsp32f>({"16s32f_Sfs", BIND(vspsConvert_16s32f_Sfs, 3), [](Vsp16s x) { return x / 8.0f; }}, RandomInt<Vsp16s>);
  CheckLayouts<Vsp16s, Vsp64f>({"16s64f_Sfs", BIND(vspsConvert_16s64f_Sfs, -1050), [](Vsp16s x) { return AsFloat<Vsp64f>(ScaledRef(x, -1050)); }},
                               RandomInt<Vsp16s>);
}

TEST(Convert, FloatTo24Bit) {
  for (int s : {0, 4, -300}) {
    const Member<Vsp32f, Sample24> ms{"32f24s_Sfs", BIND(vspsConvert_32f24s_Sfs, s),
                                      [=](Vsp32f x) { return Make24(ToIntRef(x, s, 1, -(1 << 23), (1 << 23) - 1)); }};
    const Member<Vsp32f, Sample24> mu{"32f24u_Sfs", BIND(vspsConvert_32f24u_Sfs, s),
                                      [=](Vsp32f x) { return Make24(ToIntRef(x, s, 1, 0, (1 << 24) - 1)); }};
    CheckLayouts(ms, std::function<Vsp32f(Rng&)>(RandomFloat<Vsp32f>));
    CheckLayouts(mu, std::function<Vsp32f(Rng&)>(RandomFloat<Vsp32f>));
  }
}

TEST(Convert, StatedExamples) {
  const float in[] = {2.5f, -2.5f, 40000.0f, -40000.0f, 0.49999997f, INFINITY, -INFINITY, NAN};
  const Vsp16s want[3][8] = {{2, -2, 32767, -32768, 0, 32767, -32768, 0},
                             {2, -2, 32767, -32768, 0, 32767, -32768, 0},
                             {3, -3, 32767, -32768, 0, 32767, -32768, 0}};
  for (int mode : {0, 1, 2, 7}) {
    Vsp16s out[8];
    ASSERT_EQ(vspsConvert_32f16s_Sfs(in, out, 8, VspRoundMode(mode), 0), vspStatOk);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(out[i], want[mode == 7 ? 2 : (mode == 0 ? 0 : mode)][i]) << mode << " " << i;
  }
}

}  // namespace
}  // namespace vsptest
