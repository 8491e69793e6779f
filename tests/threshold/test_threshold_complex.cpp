// Complex thresholds (16sc, 32fc, 64fc): every member, layout and in-place form gives the bits of
// its one-element call; decisions and replacement values against magnitudes and directions in
// long double; magnitudes exactly at the level, zero, infinite and NaN elements, zero levels.
#include "convert/convert_test.h"

namespace vsptest {
namespace {

template <class C> using B = std::remove_reference_t<decltype(C{}.re)>;
template <class C> constexpr bool kInt = std::is_integral_v<B<C>>;

struct Kind {
  const char* name;
  bool less, toValue, inverse;
};
const Kind kKinds[] = {{"LT", true, false, false}, {"GT", false, false, false}, {"LTVal", true, true, false},
                       {"GTVal", false, true, false}, {"LTInv", true, false, true}};

#define VSP_FN(t, fn) static constexpr auto fn = vspsThreshold_##fn##_##t, fn##_I = vspsThreshold_##fn##_##t##_I;
template <class C> struct Fns;
#define VSP_FNS(t, ...)                                                                                            \
  template <> struct Fns<Vsp##t> {                                                                               \
    VSP_FN(t, LT) VSP_FN(t, GT) VSP_FN(t, LTVal) VSP_FN(t, GTVal) __VA_ARGS__                                   \
    static constexpr auto Rel = vspsThreshold_##t, Rel_I = vspsThreshold_##t##_I;                               \
  };
VSP_FNS(16sc) VSP_FNS(32fc, VSP_FN(32fc, LTInv)) VSP_FNS(64fc, VSP_FN(64fc, LTInv))

// The member of a kind with its level (and value) bound (no call where the type has none); LT
// runs out of place and the relation-operator member in place, GT the other way round. Its
// expectation is the member's own one-element call (the head and tail path).
template <class C>
Member<C, C> Bind(const Kind& k, B<C> level, C value) {
  using F = Fns<C>;
  Member<C, C> m{std::string(k.name) + "_" + TypeName<C>(), nullptr, nullptr, nullptr};
  if (k.inverse) {
    if constexpr (requires { F::LTInv; }) {
      m.call = [=](const C* s, C* d, int n) { return F::LTInv(s, d, n, level); };
      m.inPlace = [=](C* p, int n) { return F::LTInv_I(p, n, level); };
    } else {
      return m;
    }
  } else if (k.toValue) {
    m.call = [=](const C* s, C* d, int n) { return (k.less ? F::LTVal : F::GTVal)(s, d, n, level, value); };
    m.inPlace = [=](C* p, int n) { return (k.less ? F::LTVal_I : F::GTVal_I)(p, n, level, value); };
  } else if (k.less) {
    m.call = [=](const C* s, C* d, int n) { return F::LT(s, d, n, level); };
    m.inPlace = [=](C* p, int n) { return F::Rel_I(p, n, level, RelOpLess); };
  } else {
    m.call = [=](const C* s, C* d, int n) { return F::Rel(s, d, n, level, RelOpGreater); };
    m.inPlace = [=](C* p, int n) { return F::GT_I(p, n, level); };
  }
  const auto one = m.call;
  m.expect = [=](const C& x) { C y; EXPECT_GE(one(&x, &y, 1), 0); return y; };
  return m;
}

// Parts near the level, boundary triples (3, 4) * level / 5, zeros, infinities, NaNs.
template <class C>
C RandomElement(Rng& r, long double level) {
  using T = B<C>;
  auto part = [&]() -> T {
    if constexpr (!kInt<C>) {
      if (r.Int(0, 15) == 0) return std::array<T, 4>{T(NAN), T(INFINITY), T(-INFINITY), T(0)}[r.Int(0, 3)];
    }
    return static_cast<T>(r.Uniform(-1.6, 1.6) * static_cast<double>(level ? level : 1));
  };
  if (r.Int(0, 7) == 0 && level == std::floor(level / 5) * 5) {
    const T a = static_cast<T>(3 * level / 5), b = static_cast<T>(4 * level / 5);
    return r.Int(0, 1) ? C{a, T(-b)} : C{T(-b), a};
  }
  return C{part(), part()};
}

template <class C>
void CheckAgainstReference(const Kind& k, B<C> level, const Member<C, C>& m) {
  using T = B<C>;
  constexpr long double kTol = std::is_same_v<T, Vsp64f> ? 0x1p-49L : kInt<C> ? 0 : 0x1p-22L;
  Rng rng(level * 1000 + k.less);
  const C value{T(7), T(-9)};
  std::vector<C> in(3000), out(3000);
  for (C& z : in) z = RandomElement<C>(rng, level);
  const VspStatus st = m.call(in.data(), out.data(), 3000);
  ASSERT_GE(st, 0) << m.name;
  const long double L = level, l2 = L * L;
  for (size_t i = 0; i < in.size(); ++i) {
    const long double re = in[i].re, im = in[i].im, m2 = re * re + im * im;
    if (std::fabs(m2 - l2) <= l2 * 0x1p-48L && m2 != l2) continue;  // too close to call in double
    const bool nan = std::isnan(m2);
    const bool replace = k.toValue ? (k.less ? (nan || m2 < l2) : m2 > l2) : (k.less ? m2 < l2 : m2 > l2);
    SCOPED_TRACE(m.name + " level " + std::to_string(static_cast<double>(level)) + " element " + std::to_string(i));
    if (k.toValue || (!replace && !k.inverse)) {
      ASSERT_TRUE(SameBits(out[i], replace ? value : in[i]));
      continue;
    }
    const bool infinite = std::isinf(re) || std::isinf(im);
    if (k.inverse && !infinite && (nan || (m2 == 0 && !replace))) {  // NaN, or a zero not raised
      ASSERT_TRUE(nan ? std::isnan(out[i].re) && std::isnan(out[i].im) : SameBits(out[i], C{T(INFINITY), T(0)}));
      continue;
    }
    // The direction (infinite parts count as +-1, finite ones as 0; a zero element points to +re).
    const long double ure = infinite ? (std::isinf(re) ? std::copysign(1.0L, re) : 0) : m2 == 0 ? 1 : re,
                      uim = infinite ? (std::isinf(im) ? std::copysign(1.0L, im) : 0) : m2 == 0 ? 0 : im,
                      umag = std::sqrt(ure * ure + uim * uim);
    long double wre = L * ure / umag, wim = L * uim / umag;  // the level along it (LT, GT)
    if (k.inverse) {  // 1 / z', z' = that where raised, else z (an infinite z gives 0)
      const long double zr = replace ? wre : re, zi = replace ? wim : im, d = zr * zr + zi * zi;
      wre = infinite ? 0 : zr / d, wim = infinite ? 0 : -zi / d;
    }
    if constexpr (kInt<C>) {
      ASSERT_EQ(out[i].re, static_cast<T>(std::round(wre)));
      ASSERT_EQ(out[i].im, static_cast<T>(std::round(wim)));
    } else {
      const long double tol = kTol * (k.inverse ? std::sqrt(wre * wre + wim * wim) : L);
      ASSERT_LE(std::fabs(out[i].re - wre), tol) << static_cast<double>(wre);
      ASSERT_LE(std::fabs(out[i].im - wim), tol) << static_cast<double>(wim);
    }
  }
}

template <class C>
void CheckType(std::vector<B<C>> levels) {
  for (const Kind& k : kKinds) {
    for (B<C> level : levels) {
      const Member<C, C> m = Bind<C>(k, level, C{B<C>(7), B<C>(-9)});
      if (!m.call) continue;
      CheckAgainstReference<C>(k, level, m);
      if (level == levels[0]) {
        const long double L = level;
        CheckLayouts(m, std::function<C(Rng&)>([=](Rng& r) {
                       C z = RandomElement<C>(r, L);
                       return k.inverse && z.re == 0 && z.im == 0 ? C{B<C>(1), B<C>(1)} : z;
                     }));
      }
    }
  }
}

TEST(ThresholdComplex, EveryMemberAgainstMagnitudesAndDirections) {
  CheckType<Vsp16sc>({100, 5, 30000, 1});
  CheckType<Vsp32fc>({2.5f, 5.0f, 1e-30f, 3e30f});
  CheckType<Vsp64fc>({2.5, 5.0, 1e-300, 1e300});
}

TEST(ThresholdComplex, BoundaryZeroInfiniteAndNaNElements) {
  const Vsp32fc in[] = {{3, 4}, {3, std::nextafter(4.0f, 5.0f)}, {3, std::nextafter(4.0f, 0.0f)}, {0, 0}, {INFINITY, 3},
                        {-INFINITY, INFINITY}, {NAN, 0}};
  Vsp32fc lt[7], gt[7], ltv[7], gtv[7];
  ASSERT_EQ(vspsThreshold_LT_32fc(in, lt, 7, 5.0f), vspStatOk);
  ASSERT_EQ(vspsThreshold_GT_32fc(in, gt, 7, 5.0f), vspStatOk);
  ASSERT_EQ(vspsThreshold_LTVal_32fc(in, ltv, 7, 5.0f, {9, 9}), vspStatOk);
  ASSERT_EQ(vspsThreshold_GTVal_32fc(in, gtv, 7, 5.0f, {9, 9}), vspStatOk);
  for (const Vsp32fc* r : {lt, gt, ltv, gtv}) EXPECT_TRUE(SameBits(r[0], in[0]));  // exactly at the level
  // Just inside the level: raised (lowered) to it along the element's direction.
  EXPECT_TRUE(SameBits(lt[1], in[1]) && SameBits(gt[2], in[2]));
  for (const Vsp32fc& z : {lt[2], gt[1]}) {
    EXPECT_FLOAT_EQ(z.re, 3.0f);
    EXPECT_FLOAT_EQ(z.im, 4.0f);
  }
  EXPECT_TRUE(SameBits(lt[3], Vsp32fc{5, 0}) && SameBits(gt[4], Vsp32fc{5, 0}));
  EXPECT_FLOAT_EQ(gt[5].re, -5 / std::sqrt(2.0f));
  EXPECT_FLOAT_EQ(gt[5].im, 5 / std::sqrt(2.0f));
  EXPECT_TRUE(std::isnan(lt[6].re) && std::isnan(gt[6].re) && std::isnan(gtv[6].re));
  EXPECT_TRUE(SameBits(ltv[6], Vsp32fc{9, 9}) && SameBits(ltv[2], Vsp32fc{9, 9}) && SameBits(gtv[1], Vsp32fc{9, 9}));
  const Vsp16sc s[] = {{-32768, -32768}, {3, -4}, {0, 0}};
  Vsp16sc so[3];
  ASSERT_EQ(vspsThreshold_GT_16sc(s, so, 3, 5), vspStatOk);
  EXPECT_TRUE(SameBits(so[0], Vsp16sc{-4, -4}) && SameBits(so[1], s[1]) && SameBits(so[2], s[2]));
}

TEST(ThresholdComplex, ZeroLevelAndInverseWarnings) {
  const Vsp64fc in[] = {{NAN, 1}, {-0.0, -0.0}, {2, 0}, {INFINITY, 1}};
  Vsp64fc out[4];
  ASSERT_EQ(vspsThreshold_64fc(in, out, 4, 0.0, RelOpGreater), vspStatOk);
  for (const Vsp64fc& z : out) EXPECT_TRUE(SameBits(z, Vsp64fc{0, 0}));
  ASSERT_EQ(vspsThreshold_64fc(in, out, 4, 0.0, RelOpLess), vspStatOk);
  EXPECT_EQ(std::memcmp(in, out, sizeof(in)), 0);
  EXPECT_EQ(vspsThreshold_LTInv_64fc(in, out, 4, 0.0), vspStatInvZeroWarn);
  EXPECT_TRUE(SameBits(out[1], Vsp64fc{INFINITY, 0}));
  EXPECT_TRUE(SameBits(out[2], Vsp64fc{0.5, -0.0}));
  EXPECT_TRUE(out[3].re == 0 && out[3].im == 0);
  EXPECT_EQ(vspsThreshold_LTInv_64fc(in, out, 4, 4.0), vspStatOk);
  EXPECT_TRUE(SameBits(out[1], Vsp64fc{0.25, 0}));
  EXPECT_TRUE(SameBits(out[2], Vsp64fc{0.25, -0.0}));
  EXPECT_EQ(vspsThreshold_LTInv_64fc(in, out, 4, -1.0), vspStatNegThreshold);
}

}  // namespace
}  // namespace vsptest
