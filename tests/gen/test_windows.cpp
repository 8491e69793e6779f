// Window functions: every member and length against the window formula in long double.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "support/buffers.h"
#include "support/registry.h"
#include "support/types.h"
#include "vsp.h"

namespace vsptest {
namespace {

enum class W { Bartlett, Hann, Hamming, Blackman, BlackmanStd, BlackmanOpt, Kaiser };
constexpr const char* kNames[] = {"Bartlett", "Hann", "Hamming", "Blackman", "BlackmanStd", "BlackmanOpt", "Kaiser"};
constexpr W kAll[] = {W::Bartlett, W::Hann, W::Hamming, W::Blackman, W::BlackmanStd, W::BlackmanOpt, W::Kaiser};
using Types = TypeList<Vsp16s, Vsp16sc, Vsp32f, Vsp32fc, Vsp64f, Vsp64fc>;

template <class T> using Base = std::conditional_t<std::is_same_v<T, Vsp16sc>, Vsp16s,
                                std::conditional_t<std::is_same_v<T, Vsp32fc>, Vsp32f,
                                std::conditional_t<std::is_same_v<T, Vsp64fc>, Vsp64f, T>>>;
template <class T> using Alpha = std::conditional_t<std::is_same_v<Base<T>, Vsp64f>, Vsp64f, Vsp32f>;
template <class T> constexpr int kParts = sizeof(T) / sizeof(Base<T>);
bool HasAlpha(W w) { return w == W::Blackman || w == W::Kaiser; }

// Calls vspsWin<w>_<T> (or its _I form) through the export.
template <class T> VspStatus Call(W w, bool inPlace, const T* s, T* d, int len, Alpha<T> a) {
  const std::string name = std::string("vspsWin") + kNames[static_cast<int>(w)] + "_" + TypeName<T>() + (inPlace ? "_I" : "");
  void* fn = FindExport(name)->fn;
  if (inPlace) {
    if (HasAlpha(w)) return reinterpret_cast<VspStatus (*)(T*, int, Alpha<T>)>(fn)(d, len, a);
    return reinterpret_cast<VspStatus (*)(T*, int)>(fn)(d, len);
  }
  if (HasAlpha(w)) return reinterpret_cast<VspStatus (*)(const T*, T*, int, Alpha<T>)>(fn)(s, d, len, a);
  return reinterpret_cast<VspStatus (*)(const T*, T*, int)>(fn)(s, d, len);
}

long double I0(long double x) {
  long double term = 1, sum = 1;
  for (int k = 1; k < 2000 && term > sum * 1e-22L; ++k) term *= (x * x / 4) / (static_cast<long double>(k) * k), sum += term;
  return sum;
}

// w[n] of the window, in long double; alpha as the member receives it.
template <class T> long double Ref(W w, int n, int len, Alpha<T> alpha) {
  const long double pi = 3.141592653589793238462643383279502884L, m = len - 1, c = std::cos(2 * pi * n / m);
  auto blackman = [&](long double a) { return (a + 1) / 2 - 0.5L * c - a / 2 * std::cos(4 * pi * n / m); };
  switch (w) {
    case W::Bartlett: return n <= m / 2 ? 2 * n / m : 2 - 2 * n / m;
    case W::Hann: return 0.5L - 0.5L * c;
    case W::Hamming: return 0.54L - 0.46L * c;
    case W::Blackman: return blackman(alpha);
    case W::BlackmanStd: return blackman(-0.16f);
    case W::BlackmanOpt: {
      const long double a = -std::pow(0.5L / std::cos(pi / m), 2);
      return blackman(std::is_same_v<Alpha<T>, Vsp32f> ? static_cast<long double>(static_cast<float>(a)) : a);
    }
    case W::Kaiser: {
      const long double a = std::fabs(static_cast<long double>(alpha));
      return I0(a * std::sqrt(static_cast<long double>(n) * (m - n))) / I0(a * m / 2);
    }
  }
  return 0;
}

// The deviation allowed for x * w: the float Kaiser's I0 approximations (relative 2e-7 each),
// the recurrence of the cosine windows (growing with N^2 eps in double), the element's rounding.
template <class T> long double Tol(W w, int len, long double x) {
  if constexpr (std::is_same_v<Base<T>, Vsp16s>) return 1.0L;
  const long double eps = std::is_same_v<Base<T>, Vsp32f> ? 0x1p-23L : 0x1p-52L;
  long double rel = 2 * eps + 8.0L * len * len * 0x1p-52L;
  if (w == W::Kaiser && std::is_same_v<Base<T>, Vsp32f>) rel += 6e-7L;
  return rel * std::fabs(x) + 1e-300L;
}

TEST(Windows, EveryMemberAgainstItsFormula) {
  std::mt19937 rng(7);
  const std::vector<int> lengths = [] {
    std::vector<int> v;
    for (int n = 1; n <= 40; ++n) v.push_back(n);
    for (int n : {63, 64, 97, 128, 1000}) v.push_back(n);
    return v;
  }();
  ForEachType(Types{}, [&]<class T>() {
    using B = Base<T>;
    for (W w : kAll) {
      const int minLen = w == W::Kaiser ? 1 : w == W::BlackmanOpt ? 4 : 3;
      for (int len : lengths) {
        if (len < minLen) continue;
        const Alpha<T> alpha = w == W::Kaiser ? Alpha<T>(len < 60 ? 1.3 : 0.07) : Alpha<T>(-0.27);
        GuardedVec<T> src(len), out(len), inp(len);
        B* x = reinterpret_cast<B*>(src.data());
        for (int i = 0; i < kParts<T> * len; ++i)
          x[i] = std::is_same_v<B, Vsp16s> ? B(std::uniform_int_distribution<int>(-30000, 30000)(rng))
                                           : B(std::uniform_real_distribution<double>(-1, 1)(rng));
        std::memcpy(inp.data(), src.data(), sizeof(T) * len);
        SCOPED_TRACE(std::string(kNames[static_cast<int>(w)]) + "_" + TypeName<T>() + " len " + std::to_string(len));
        ASSERT_EQ(Call<T>(w, false, src.data(), out.data(), len, alpha), vspStatOk);
        ASSERT_EQ(Call<T>(w, true, nullptr, inp.data(), len, alpha), vspStatOk);
        EXPECT_EQ(std::memcmp(out.data(), inp.data(), sizeof(T) * len), 0) << "in place differs";
        const B* y = reinterpret_cast<const B*>(out.data());
        const bool three = len == 3 && w != W::Hamming && w != W::Kaiser;
        for (int n = 0; n < len; ++n) {
          const int k = n < len / 2 ? n : len - 1 - n;
          const bool middle = (len & 1) && n == len / 2;
          for (int j = 0; j < kParts<T>; ++j) {
            const long double xv = x[kParts<T> * n + j], yv = y[kParts<T> * n + j];
            if (three) {
              EXPECT_EQ(yv, n == 1 ? xv : 0) << "n " << n;
            } else if (middle && w != W::Hamming) {
              EXPECT_EQ(yv, xv) << "middle element";
            } else if (std::is_same_v<B, Vsp16s> && (w == W::Hann || w == W::Hamming) && k == 0) {
              const float end = w == W::Hann ? 0.5f - 0.5f : 0.54f - 0.46f;
              EXPECT_EQ(yv, std::trunc(static_cast<float>(xv) * end)) << "end " << n;
            } else {
              long double want = xv * Ref<T>(w, k, len, alpha);
              if (std::is_same_v<B, Vsp16s>) want = std::nearbyint(want);
              EXPECT_NEAR(yv, want, Tol<T>(w, len, xv)) << "n " << n;
            }
          }
        }
        EXPECT_TRUE(out.OutsideIntact() && inp.OutsideIntact());
      }
    }
  });
}

// The edge cases of the interface, member by member.
TEST(Windows, EdgeCases) {
  std::vector<Vsp32f> ones(5, 1.0f), y(101);
  ASSERT_EQ(vspsWinHamming_32f(ones.data(), y.data(), 5), vspStatOk);
  const float hamming5[] = {0.08f, 0.54f, 1.0f, 0.54f, 0.08f};
  for (int n = 0; n < 5; ++n) EXPECT_NEAR(y[n], hamming5[n], 1e-6f);
  std::vector<Vsp16s> k(7, 1000);
  ASSERT_EQ(vspsWinHamming_16s_I(k.data(), 7), vspStatOk);
  EXPECT_EQ(k[0], 80);
  EXPECT_EQ(k[6], 80);
  std::vector<Vsp32f> x(101, 2.0f), canary(101, -5.0f);
  y = canary;
  EXPECT_EQ(vspsWinKaiser_32f(x.data(), y.data(), 101, 0.77f), vspStatHugeWinErr);
  EXPECT_EQ(y, canary);
  EXPECT_EQ(vspsWinKaiser_32f(x.data(), y.data(), 101, 0.76f), vspStatOk);
  EXPECT_EQ(y[50], 2.0f);
  // The double members take the larger limit, the 16-bit members too.
  std::vector<Vsp64f> xd(101, 1.0), yd(101);
  EXPECT_EQ(vspsWinKaiser_64f(xd.data(), yd.data(), 101, 6.0), vspStatOk);
  EXPECT_EQ(vspsWinKaiser_64f(xd.data(), yd.data(), 101, 6.2), vspStatHugeWinErr);
  std::vector<Vsp16s> xs(101, 1000), ys(101);
  EXPECT_EQ(vspsWinKaiser_16s(xs.data(), ys.data(), 101, 6.0f), vspStatOk);
  // Bartlett and Blackman hand an out-of-place call on one buffer to the in-place member.
  std::vector<Vsp32f> a(9, 3.0f), b(9, 3.0f);
  ASSERT_EQ(vspsWinBartlett_32f(a.data(), a.data(), 9), vspStatOk);
  ASSERT_EQ(vspsWinBartlett_32f_I(b.data(), 9), vspStatOk);
  EXPECT_EQ(a, b);
  EXPECT_EQ(vspsWinBlackmanOpt_32f(nullptr, nullptr, 3), vspStatBadSize);
  EXPECT_EQ(vspsWinHann_32f(ones.data(), y.data(), 2), vspStatBadSize);
}

}  // namespace
}  // namespace vsptest
