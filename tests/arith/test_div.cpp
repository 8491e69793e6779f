// Integer quotients (Div, Div_Round, DivC, DivCRev) against exact rational rounding in 128-bit
// arithmetic, zero divisors and their warning, and the short-cuts of vspsDiv_16s_Sfs above 15
// and vspsDivCRev_16u with val 0.
#include <gtest/gtest.h>

#include <functional>

#include "arith_ref.h"

namespace vsptest {
namespace {

// round(num * 2^-s / den) by mode into D, for |num|, |den| < 2^32 at any s and below 2^64 for
// |s| <= 60.
template <class D> D Quotient(i128 num, i128 den, int s, int mode) {
  if (den < 0) num = -num, den = -den;
  if (s > 60) return D(0);
  if (s < -60) {
    i128 v = num;
    for (long long k = 0; k < -static_cast<long long>(s) && v < (den << 34) && v > -(den << 34); ++k) v *= 2;
    return Clamp<D>(RoundDiv(v, den, mode));
  }
  return RefQuotient<D>(num, den, s, mode);
}

// The expected element of pDst for dividend a and divisor b.
template <class T, class P, class Q> T Expected(const P& a, const Q& b, int s, int mode, bool& zero) {
  if constexpr (requires { a.re; }) {
    using B = decltype(a.re);
    const i128 den = i128(b.re) * b.re + i128(b.im) * b.im;
    if (den == 0) {
      zero = true;
      return {RefZeroDivisor<B>(a.re), RefZeroDivisor<B>(a.im)};
    }
    return {Quotient<B>(i128(a.re) * b.re + i128(a.im) * b.im, den, s, mode),
            Quotient<B>(i128(a.im) * b.re - i128(a.re) * b.im, den, s, mode)};
  } else {
    if (b == 0) {
      zero = true;
      return RefZeroDivisor<T>(a);
    }
    return Quotient<T>(a, b, s, mode);
  }
}

// A quotient member: call(divisor, dividend, c, d, n, s, mode); the constant forms divide x by
// c (DivC) or c by x (DivCRev).
template <class X, class Y, class D>
struct Quot {
  const char* name;
  std::function<VspStatus(const X*, const Y*, Y, D*, int, int, int)> call;
  enum { kVec, kByConst, kConstBy } shape = kVec;
  bool scaled = true;
};

#define DIV(f) [](const auto* x, const auto* y, auto, auto* d, int n, int s, int) { return f(x, y, d, n, s); }
#define DIVI(f) [](const auto* x, const auto* y, auto, auto* d, int n, int s, int) { std::memcpy(d, y, n * sizeof(*d)); return f(x, d, n, s); }
#define DIVR(f) [](const auto* x, const auto* y, auto, auto* d, int n, int s, int m) { return f(x, y, d, n, VspRoundMode(m), s); }
#define DIVRI(f) [](const auto* x, const auto* y, auto, auto* d, int n, int s, int m) { std::memcpy(d, y, n * sizeof(*d)); return f(x, d, n, VspRoundMode(m), s); }
#define DIVC(f) [](const auto* x, const auto*, auto c, auto* d, int n, int s, int) { return f(x, c, d, n, s); }
#define DIVCI(f) [](const auto* x, const auto*, auto c, auto* d, int n, int s, int) { std::memcpy(d, x, n * sizeof(*d)); return f(c, d, n, s); }
#define DIVCR(f) [](const auto* x, const auto*, auto c, auto* d, int n, int, int) { return f(x, c, d, n); }
#define DIVCRI(f) [](const auto* x, const auto*, auto c, auto* d, int n, int, int) { std::memcpy(d, x, n * sizeof(*d)); return f(c, d, n); }

template <class X, class Y, class D>
void Check(const Quot<X, Y, D>& m, Rng& rng, int n, size_t off, const std::vector<int>& scales, const std::vector<int>& modes,
           const Y* fixedC = nullptr) {
  GuardedVec<X> x(n, off);
  GuardedVec<Y> y(n, (off + 6) % 16 / alignof(Y) * alignof(Y));
  GuardedVec<D> d(n, off % alignof(D) == 0 ? off : 0);
  for (int i = 0; i < n; ++i) x[i] = RandomElement<X>(rng), y[i] = RandomElement<Y>(rng);
  Y c = fixedC ? *fixedC : RandomElement<Y>(rng);
  if (m.shape == Quot<X, Y, D>::kByConst) {
    while (SameValue(c, Y{})) c = RandomElement<Y>(rng);  // a zero constant is an error, tested apart
  }
  for (int s : scales) {
    for (int mode : modes) {
      bool zero = false;
      std::vector<D> want(n);
      for (int i = 0; i < n; ++i) {
        if (m.shape == Quot<X, Y, D>::kVec) want[i] = Expected<D>(y[i], x[i], s, mode, zero);
        else if (m.shape == Quot<X, Y, D>::kByConst) want[i] = Expected<D>(x[i], c, s, mode, zero);
        else want[i] = Expected<D>(c, x[i], 0, 1, zero);
      }
      const VspStatus st = m.call(x.data(), y.data(), c, d.data(), n, s, mode);
      ASSERT_EQ(st, zero ? vspStatDivByZeroWarn : vspStatOk) << m.name << " s " << s;
      for (int i = 0; i < n; ++i)
        ASSERT_TRUE(SameValue(d[i], want[i])) << m.name << " n " << n << " s " << s << " mode " << mode << " i " << i
                                               << ": " << Show(x[i]) << " " << Show(y[i]) << " c " << Show(c) << " got "
                                               << Show(d[i]) << " want " << Show(want[i]);
      ASSERT_TRUE(d.OutsideIntact()) << m.name;
    }
  }
}

std::vector<int> Scales(int lo, int hi) {
  std::vector<int> v;
  for (int s = lo; s <= hi; ++s) v.push_back(s);
  return v;
}

template <class T> void CheckAllQuotients(Rng& rng, int n, size_t off, const std::vector<int>& scales) {
  const std::vector<int> near = {1}, modes = {0, 1, 2};
  if constexpr (std::is_same_v<T, Vsp8u> || std::is_same_v<T, Vsp16s> || std::is_same_v<T, Vsp16u>) {
#define DIV_ROUND_MEMBERS(t)                                                                          \
  Check(Quot<T, T, T>{"Div_Round_" #t "_Sfs", DIVR(vspsDiv_Round_##t##_Sfs)}, rng, n, off, scales, modes); \
  Check(Quot<T, T, T>{"Div_Round_" #t "_ISfs", DIVRI(vspsDiv_Round_##t##_ISfs)}, rng, n, off, scales, modes);
    if constexpr (std::is_same_v<T, Vsp8u>) { DIV_ROUND_MEMBERS(8u) }
    else if constexpr (std::is_same_v<T, Vsp16s>) { DIV_ROUND_MEMBERS(16s) }
    else { DIV_ROUND_MEMBERS(16u) }
  }
#define DIV_MEMBERS(t)                                                                            \
  Check(Quot<T, T, T>{"Div_" #t "_Sfs", DIV(vspsDiv_##t##_Sfs)}, rng, n, off, scales, near);        \
  Check(Quot<T, T, T>{"Div_" #t "_ISfs", DIVI(vspsDiv_##t##_ISfs)}, rng, n, off, scales, near);
#define DIVC_MEMBERS(t)                                                                                            \
  Check(Quot<T, T, T>{"DivC_" #t "_Sfs", DIVC(vspsDivC_##t##_Sfs), Quot<T, T, T>::kByConst}, rng, n, off, scales, near); \
  Check(Quot<T, T, T>{"DivC_" #t "_ISfs", DIVCI(vspsDivC_##t##_ISfs), Quot<T, T, T>::kByConst}, rng, n, off, scales, near);
  if constexpr (std::is_same_v<T, Vsp8u>) { DIV_MEMBERS(8u) DIVC_MEMBERS(8u) }
  if constexpr (std::is_same_v<T, Vsp16s>) { DIV_MEMBERS(16s) DIVC_MEMBERS(16s) }
  if constexpr (std::is_same_v<T, Vsp16u>) {
    DIV_MEMBERS(16u) DIVC_MEMBERS(16u)
    Check(Quot<T, T, T>{"DivCRev_16u", DIVCR(vspsDivCRev_16u), Quot<T, T, T>::kConstBy, false}, rng, n, off, {0}, near);
    Check(Quot<T, T, T>{"DivCRev_16u_I", DIVCRI(vspsDivCRev_16u_I), Quot<T, T, T>::kConstBy, false}, rng, n, off, {0}, near);
    // val 0 zeroes the destination through vspsZero_16s and still warns about zero elements.
    const T zero = 0;
    Check(Quot<T, T, T>{"DivCRev_16u of 0", DIVCR(vspsDivCRev_16u), Quot<T, T, T>::kConstBy, false}, rng, n, off, {0}, near, &zero);
  }
  if constexpr (std::is_same_v<T, Vsp16sc>) { DIV_MEMBERS(16sc) DIVC_MEMBERS(16sc) }
  if constexpr (std::is_same_v<T, Vsp32s>) {
    DIV_MEMBERS(32s)
    Check(Quot<Vsp16s, Vsp32s, Vsp16s>{"Div_32s16s_Sfs", DIV(vspsDiv_32s16s_Sfs)}, rng, n, off, scales, near);
  }
}

TEST(IntDiv, RandomAndExtremeOperandsAtEveryScale) {
  ForEachType(TypeList<Vsp8u, Vsp16s, Vsp16u, Vsp16sc, Vsp32s>{}, []<class T>() {
    Rng rng(5);
    std::vector<int> scales = Scales(-70, 70);
    for (int s : {100, -100, 100000, -100000}) scales.push_back(s);
    CheckAllQuotients<T>(rng, 200, alignof(T), scales);
  });
  Rng rng(6);
  for (int n : {1, 5, 100}) {
    Check(Quot<Vsp64s, Vsp64s, Vsp64s>{"DivC_64s_ISfs", DIVCI(vspsDivC_64s_ISfs), Quot<Vsp64s, Vsp64s, Vsp64s>::kByConst},
          rng, n, 8, Scales(-60, 60), {1});
  }
}

TEST(IntDiv, EveryLengthAndOffset) {
  ForEachType(TypeList<Vsp8u, Vsp16s, Vsp16u, Vsp16sc, Vsp32s>{}, []<class T>() {
    Rng rng(7);
    for (int n : SweepLengths())
      for (size_t off : SweepOffsets<T>())
        if (off % (4 * alignof(T)) == 0 || n < 20) CheckAllQuotients<T>(rng, n, off, {0, 2, -3});
  });
}

// All pairs of bytes for every scale factor and rounding mode.
TEST(IntDiv, Exhaustive8u) {
  std::vector<Vsp8u> a(65536), b(65536), d(65536);
  for (int i = 0; i < 65536; ++i) a[i] = static_cast<Vsp8u>(i), b[i] = static_cast<Vsp8u>(i >> 8);
  for (int s = -18; s <= 11; ++s) {
    for (int mode = 0; mode < 3; ++mode) {
      ASSERT_EQ(vspsDiv_Round_8u_Sfs(a.data(), b.data(), d.data(), 65536, VspRoundMode(mode), s), vspStatDivByZeroWarn);
      for (int i = 0; i < 65536; ++i) {
        const Vsp8u want = a[i] == 0 ? RefZeroDivisor<Vsp8u>(b[i]) : Quotient<Vsp8u>(b[i], a[i], s, mode);
        ASSERT_EQ(d[i], want) << int(b[i]) << " / " << int(a[i]) << " s " << s << " mode " << mode;
      }
    }
  }
}

}  // namespace
}  // namespace vsptest
