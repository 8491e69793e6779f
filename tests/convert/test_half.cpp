// IEEE half precision against a reference built from the format's definition: every one of the
// 65,536 bit patterns to float, every half value, every midpoint between neighbours and the
// floats next to it back to half in both rounding modes, every 16-bit integer, random floats.
#include "convert/convert_test.h"

namespace vsptest {
namespace {

long double HalfValue(Vsp16u h) {
  const int e = (h >> 10) & 31, m = h & 1023;
  const long double mag = e == 31 ? (m ? NAN : INFINITY) : e == 0 ? std::ldexp(m, -24) : std::ldexp(1024 + m, e - 25);
  return h & 0x8000 ? -mag : mag;
}

// Positive finite halves in value order (index = bits), with 0x7C00 standing for 2^16, the next
// value of an unbounded exponent, so that ties at the top round to even (to infinity).
const std::vector<long double>& Ladder() {
  static const std::vector<long double> v = [] {
    std::vector<long double> l;
    for (int h = 0; h < 0x7C00; ++h) l.push_back(HalfValue(static_cast<Vsp16u>(h)));
    l.push_back(65536.0L);
    return l;
  }();
  return v;
}

Vsp16u HalfOf(float x, bool nearest) {
  Vsp32u bits;
  std::memcpy(&bits, &x, 4);
  const Vsp16u sign = static_cast<Vsp16u>((bits >> 16) & 0x8000);
  if (std::isnan(x)) return sign | 0x7E00 | ((bits >> 13) & 0x3FF);
  if (std::isinf(x)) return sign | 0x7C00;
  const long double a = std::fabs(static_cast<long double>(x));
  const auto& l = Ladder();
  const size_t lo = std::upper_bound(l.begin(), l.end(), a) - l.begin() - 1;  // l[lo] <= a
  size_t h = lo;
  if (!nearest) {
    h = std::min<size_t>(lo, 0x7BFF);
  } else if (l[lo] != a && lo < 0x7C00) {
    const long double below = a - l[lo], above = l[lo + 1] - a;
    if (above < below || (above == below && (lo & 1))) h = lo + 1;
  }
  return sign | static_cast<Vsp16u>(h);
}

float FloatOfHalf(Vsp16u h) {
  if ((h & 0x7C00) == 0x7C00 && (h & 0x3FF)) {
    const Vsp32u bits = (static_cast<Vsp32u>(h & 0x8000) << 16) | 0x7F800000 | ((h & 0x3FF) << 13);
    float x;
    std::memcpy(&x, &bits, 4);
    return x;
  }
  return static_cast<float>(HalfValue(h));
}

Vsp16f H(Vsp16u bits) { return Vsp16f{bits}; }

TEST(Half, EveryPatternToFloatAndBack) {
  std::vector<Vsp16f> all(65536);
  for (int h = 0; h < 65536; ++h) all[h] = H(static_cast<Vsp16u>(h));
  CheckInputs<Vsp16f, Vsp32f>({"16f32f", vspsConvert_16f32f, [](Vsp16f h) { return FloatOfHalf(h.bits); }}, all);
  // Every half value converts back to itself (NaNs become quiet) in both modes.
  std::vector<Vsp32f> values(65536);
  ASSERT_EQ(vspsConvert_16f32f(all.data(), values.data(), 65536), vspStatOk);
  for (int mode : {0, 1, 7}) {
    const bool nearest = mode == 1;
    CheckInputs<Vsp32f, Vsp16f>({"32f16f", [=](const Vsp32f* s, Vsp16f* d, int n) { return vspsConvert_32f16f(s, d, n, VspRoundMode(mode)); },
                                 [=](Vsp32f x) { return H(HalfOf(x, nearest)); }},
                                values);
  }
}

TEST(Half, MidpointsAndTheirNeighbours) {
  // Between consecutive positive halves (and beyond the largest), the midpoint and the floats
  // next to it, both signs.
  std::vector<Vsp32f> in;
  for (int h = 0; h < 0x7C00; ++h) {
    const float mid = static_cast<float>((HalfValue(static_cast<Vsp16u>(h)) + (h == 0x7BFF ? 65536.0L : HalfValue(h + 1))) / 2);
    for (float x : {mid, std::nextafter(mid, 0.0f), std::nextafter(mid, INFINITY)}) in.push_back(x), in.push_back(-x);
  }
  for (float x : {1e-30f, 0x1p-149f, 65519.99f, 65520.0f, 1e10f, 0x1p-25f, 0x1.0p-24f, 0x1.8p-25f}) in.push_back(x), in.push_back(-x);
  for (int mode : {0, 1}) {
    CheckInputs<Vsp32f, Vsp16f>({"32f16f", [=](const Vsp32f* s, Vsp16f* d, int n) { return vspsConvert_32f16f(s, d, n, VspRoundMode(mode)); },
                                 [=](Vsp32f x) { return H(HalfOf(x, mode == 1)); }},
                                in, Thin(5));
    CheckLayouts<Vsp32f, Vsp16f>({"32f16f layout", [=](const Vsp32f* s, Vsp16f* d, int n) { return vspsConvert_32f16f(s, d, n, VspRoundMode(mode)); },
                                  [=](Vsp32f x) { return H(HalfOf(x, mode == 1)); }},
                                 RandomFloat<Vsp32f>);
  }
}

TEST(Half, IntegersBothWays) {
  std::vector<Vsp16s> all(65536);
  for (int i = 0; i < 65536; ++i) all[i] = static_cast<Vsp16s>(i - 32768);
  for (int mode : {0, 1, 3}) {
    CheckInputs<Vsp16s, Vsp16f>({"16s16f", [=](const Vsp16s* s, Vsp16f* d, int n) { return vspsConvert_16s16f(s, d, n, VspRoundMode(mode)); },
                                 [=](Vsp16s x) { return H(HalfOf(x, mode == 1)); }},
                                all);
  }
  std::vector<Vsp16f> halves(65536);
  for (int h = 0; h < 65536; ++h) halves[h] = H(static_cast<Vsp16u>(h));
  for (int s : {0, 1, -1, 3, -15, 20, 40, -40, 1000, -1000}) {
    for (int mode : {0, 1, 5}) {
      CheckInputs<Vsp16f, Vsp16s>({"16f16s_Sfs", [=](const Vsp16f* p, Vsp16s* d, int n) { return vspsConvert_16f16s_Sfs(p, d, n, VspRoundMode(mode), s); },
                                   [=](Vsp16f h) { return Vsp16s(ToIntRef(HalfValue(h.bits), s, mode == 1 ? 1 : 0, -32768, 32767)); }},
                                  halves, Thin(7));
    }
  }
  CheckLayouts<Vsp16f, Vsp16s>({"16f16s_Sfs layout", [](const Vsp16f* p, Vsp16s* d, int n) { return vspsConvert_16f16s_Sfs(p, d, n, vspRndNear, -2); },
                                [](Vsp16f h) { return Vsp16s(ToIntRef(HalfValue(h.bits), -2, 1, -32768, 32767)); }},
                               [](Rng& r) { return H(static_cast<Vsp16u>(r.Bits())); });
  CheckLayouts<Vsp16f, Vsp32f>({"16f32f layout", vspsConvert_16f32f, [](Vsp16f h) { return FloatOfHalf(h.bits); }},
                               [](Rng& r) { return H(static_cast<Vsp16u>(r.Bits())); });
}

}  // namespace
}  // namespace vsptest
