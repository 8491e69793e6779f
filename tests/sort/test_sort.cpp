// The comparison sorts and their index forms: ordered output, a permutation of the input (to the
// bit), an index that reproduces the output, NaNs at the end, over lengths 1..100, inputs of
// every shape and vectors of 10^6 elements.
#include <gtest/gtest.h>

#include "sort_data.h"
#include "support/budget.h"

namespace vsptest {
namespace {

template <class T> struct SortFns {
  VspStatus (*sort[2])(T*, int);          // ascending, descending
  VspStatus (*index[2])(T*, int*, int);
};
template <class T> SortFns<T> Fns();
#define VSP_SORT_FNS(t)                                                                                       \
  template <> SortFns<Vsp##t> Fns() {                                                                         \
    return {{vspsSortAscend_##t##_I, vspsSortDescend_##t##_I}, {vspsSortIndexAscend_##t##_I, vspsSortIndexDescend_##t##_I}}; \
  }
VSP_SORT_FNS(8u) VSP_SORT_FNS(16u) VSP_SORT_FNS(16s) VSP_SORT_FNS(32s) VSP_SORT_FNS(32f) VSP_SORT_FNS(64f)
#undef VSP_SORT_FNS

using SortTypes = TypeList<Vsp8u, Vsp16u, Vsp16s, Vsp32s, Vsp32f, Vsp64f>;

template <class T> bool IsNaN(T x) {
  if constexpr (std::is_floating_point_v<T>) return std::isnan(x);
  else return false;
}

// Empty when `out` is `in` sorted (descending when desc) with the NaNs last, and, when idx is
// given, out[k] is in[idx[k]]; otherwise what is wrong.
template <class T>
std::string Verify(const std::vector<T>& in, const T* out, const int* idx, bool desc) {
  const size_t n = in.size();
  if (BitMultiset(in.data(), n) != BitMultiset(out, n)) return "not a permutation of the input";
  size_t nans = 0;
  for (T x : in) nans += IsNaN(x);
  for (size_t k = 0; k < n; ++k)
    if (IsNaN(out[k]) != (k >= n - nans)) return "NaN out of place at " + std::to_string(k);
  for (size_t k = 0; k + 1 < n - nans; ++k)
    if (desc ? out[k] < out[k + 1] : out[k] > out[k + 1]) return "out of order at " + std::to_string(k);
  if (idx) {
    if (!IsPermutation(idx, n)) return "index is not a permutation";
    for (size_t k = 0; k < n; ++k)
      if (!SameBits(out[k], in[idx[k]])) return "index does not reproduce the output at " + std::to_string(k);
  }
  return {};
}

template <class T>
void CheckAllForms(const std::vector<T>& in, const std::string& what) {
  const SortFns<T> f = Fns<T>();
  const int n = static_cast<int>(in.size());
  for (int desc = 0; desc < 2; ++desc) {
    GuardedVec<T> v(n, (n % 2) * sizeof(T));
    std::copy(in.begin(), in.end(), v.data());
    ASSERT_EQ(f.sort[desc](v.data(), n), vspStatOk);
    ASSERT_EQ(Verify(in, v.data(), nullptr, desc), "") << TypeName<T>() << (desc ? " desc " : " asc ") << what;
    ASSERT_TRUE(v.OutsideIntact());

    GuardedVec<T> w(n);
    GuardedVec<int> idx(n);
    std::copy(in.begin(), in.end(), w.data());
    ASSERT_EQ(f.index[desc](w.data(), idx.data(), n), vspStatOk);
    ASSERT_EQ(Verify(in, w.data(), idx.data(), desc), "") << TypeName<T>() << " index" << (desc ? " desc " : " asc ") << what;
    ASSERT_TRUE(w.OutsideIntact());
    ASSERT_TRUE(idx.OutsideIntact());
  }
}

TEST(Sort, EveryShapeAndLengthUpTo100) {
  ForEachType(SortTypes{}, []<class T>() {
    Rng rng(11);
    for (Shape shape : kShapes)
      for (int n = 1; n <= 100; ++n) CheckAllForms(MakeData<T>(shape, n, rng), std::string(ShapeName(shape)) + " n " + std::to_string(n));
  });
}

// Runs the quicksort through its partitions and deeper stacks on longer vectors.
TEST(Sort, LongVectors) {
  ForEachType(SortTypes{}, []<class T>() {
    Rng rng(12);
    for (int n : {1000, 4099})
      for (Shape shape : kShapes) CheckAllForms(MakeData<T>(shape, n, rng), std::string(ShapeName(shape)) + " n " + std::to_string(n));
  });
}

TEST(Sort, MillionElements) {
  const size_t n = kSanitized ? 100000 : 1000000;
  Rng rng(13);
  for (Shape shape : {Shape::Random, Shape::Sorted, Shape::Reversed, Shape::Equal, Shape::FewDistinct, Shape::Specials})
    CheckAllForms(MakeData<Vsp32f>(shape, n, rng), ShapeName(shape));
  CheckAllForms(MakeData<Vsp16s>(Shape::Random, n, rng), "random");
}

TEST(Sort, SmallExamples) {
  Vsp32f v[3] = {3, 1, 2};
  ASSERT_EQ(vspsSortAscend_32f_I(v, 3), vspStatOk);
  EXPECT_EQ(v[0], 1);
  EXPECT_EQ(v[1], 2);
  EXPECT_EQ(v[2], 3);

  Vsp16s d[5] = {-4, 7, 0, 7, -32768};
  int idx[5];
  ASSERT_EQ(vspsSortIndexDescend_16s_I(d, idx, 5), vspStatOk);
  const Vsp16s want[5] = {7, 7, 0, -4, -32768};
  for (int k = 0; k < 5; ++k) EXPECT_EQ(d[k], want[k]);
  EXPECT_EQ(idx[2], 2);
  EXPECT_EQ(idx[3], 0);
  EXPECT_EQ(idx[4], 4);

  // One element: left as it is, index 0.
  Vsp64f one = -0.5;
  int i0 = 99;
  ASSERT_EQ(vspsSortIndexAscend_64f_I(&one, &i0, 1), vspStatOk);
  EXPECT_EQ(one, -0.5);
  EXPECT_EQ(i0, 0);
}

TEST(Sort, NaNsGoLastInBothOrders) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (int desc = 0; desc < 2; ++desc) {
    Vsp32f v[6] = {nan, 2, -nan, -1, nan, 0};
    ASSERT_EQ(Fns<Vsp32f>().sort[desc](v, 6), vspStatOk);
    EXPECT_EQ(v[0], desc ? 2 : -1);
    EXPECT_EQ(v[1], 0);
    EXPECT_EQ(v[2], desc ? -1 : 2);
    for (int k = 3; k < 6; ++k) EXPECT_TRUE(std::isnan(v[k])) << k;
  }
}

}  // namespace
}  // namespace vsptest
