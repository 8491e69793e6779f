// FindNearest against a brute-force search, CountInRange and ZeroCrossing against loops.
#include <gtest/gtest.h>

#include "stats_support.h"

namespace vsptest {
namespace {

TEST(Search, FindNearestMatchesBruteForce) {
  Rng rng(71);
  for (int tblLen : {1, 2, 3, 10, 257}) {
    std::vector<Vsp16u> table(tblLen);
    for (auto& t : table) t = static_cast<Vsp16u>(rng.Int(0, tblLen < 10 ? 20 : 65535));
    std::sort(table.begin(), table.end());
    const int n = 600;
    std::vector<Vsp16u> vals(n), out(n);
    std::vector<int> idx(n);
    for (int i = 0; i < n; ++i) vals[i] = i < 20 ? static_cast<Vsp16u>(i) : static_cast<Vsp16u>(rng.Int(0, 65535));
    vals[n - 1] = 65535;
    ASSERT_EQ(vspsFindNearest_16u(vals.data(), out.data(), idx.data(), n, table.data(), tblLen), vspStatOk);
    for (int i = 0; i < n; ++i) {
      int best = 0;
      for (int k = 1; k < tblLen; ++k)
        if (std::abs(table[k] - vals[i]) < std::abs(table[best] - vals[i])) best = k;  // strict: lower wins ties
      ASSERT_EQ(out[i], table[best]) << "value " << vals[i] << " table " << tblLen;
      ASSERT_EQ(idx[i], best) << "value " << vals[i];
      Vsp16u one;
      int oneIdx;
      ASSERT_EQ(vspsFindNearestOne_16u(vals[i], &one, &oneIdx, table.data(), tblLen), vspStatOk);
      ASSERT_EQ(one, out[i]);
      ASSERT_EQ(oneIdx, idx[i]);
    }
  }
}

TEST(Search, CountInRangeCountsTheClosedInterval) {
  Rng rng(73);
  for (int n : StatLengths()) {
    GuardedVec<Vsp32s> v(n, 4 * (n % 4));
    for (int i = 0; i < n; ++i) v[i] = static_cast<Vsp32s>(i % 5 == 0 ? rng.Bits() : rng.Int(-10, 10));
    const Vsp32s bounds[][2] = {{-3, 3}, {0, 0}, {-2147483647 - 1, 2147483647}, {-2147483647 - 1, -5}, {7, 2147483647}};
    for (auto& b : bounds) {
      int count = -1, ref = 0;
      for (int i = 0; i < n; ++i) ref += v[i] >= b[0] && v[i] <= b[1];
      ASSERT_EQ(vspsCountInRange_32s(v.data(), n, &count, b[0], b[1]), vspStatOk);
      ASSERT_EQ(count, ref) << "len " << n << " [" << b[0] << ", " << b[1] << "]";
    }
  }
}

template <class T>
double RefCrossings(const T* v, int n, int type) {
  auto sign = [](T x) { return x > 0 ? 1 : (x < 0 ? -1 : 0); };
  double c = 0;
  for (int i = 1; i < n; ++i) {
    if (type == 1)
      c += std::signbit(static_cast<double>(v[i])) != std::signbit(static_cast<double>(v[i - 1]));
    else if (type == 0)
      c += std::abs(sign(v[i]) - sign(v[i - 1])) / 2.0;
    else
      c += sign(v[i]) * sign(v[i - 1]) < 0;
  }
  return c;
}

TEST(Search, ZeroCrossingMeasures) {
  Rng rng(75);
  for (int n : StatLengths()) {
    GuardedVec<Vsp16s> s(n, 2 * (n % 8));
    GuardedVec<Vsp32f> f(n, 4 * (n % 4));
    for (int i = 0; i < n; ++i) {
      s[i] = static_cast<Vsp16s>(rng.Int(0, 3) == 0 ? 0 : rng.Int(-32768, 32767));
      const int k = static_cast<int>(rng.Int(0, 9));
      f[i] = k == 0 ? 0.0f : k == 1 ? -0.0f : k == 2 ? NAN : static_cast<Vsp32f>(rng.Uniform(-1, 1));
    }
    for (int type = 0; type < 3; ++type) {
      Vsp32f rs, rf;
      ASSERT_EQ(vspsZeroCrossing_16s32f(s.data(), n, &rs, static_cast<VspZCType>(type)), vspStatOk);
      ASSERT_EQ(vspsZeroCrossing_32f(f.data(), n, &rf, static_cast<VspZCType>(type)), vspStatOk);
      ASSERT_EQ(rs, RefCrossings(s.data(), n, type)) << "16s len " << n << " type " << type;
      ASSERT_EQ(rf, RefCrossings(f.data(), n, type)) << "32f len " << n << " type " << type;
    }
  }
}

}  // namespace
}  // namespace vsptest
