// Integer members of Add, Sub, Mul, AddC, SubC, SubCRev, MulC and AddProduct against the
// scale-factor rule evaluated by exact 128-bit division: exhaustively over 8u x 8u and every
// scale factor around the dispatch boundaries, with random and extreme operands for the wider
// types, and over every head/body/tail split.
#include <gtest/gtest.h>

#include <functional>

#include "arith_ref.h"

namespace vsptest {
namespace {

// The exact result of one element from x (the first operand in the member's argument order)
// and y (the second vector's element or the constant); complex members give both parts.
struct Exact {
  i128 re, im;
};
using Real2 = Exact (*)(i128 x, i128 y);
Exact Sum(i128 x, i128 y) { return {x + y, 0}; }
Exact DiffYX(i128 x, i128 y) { return {y - x, 0}; }
Exact DiffXY(i128 x, i128 y) { return {x - y, 0}; }
Exact Prod(i128 x, i128 y) { return {x * y, 0}; }

// One member: call(x, y, c, d, n, s) runs it on vector x and vector y (or the constant c) into
// d; in-place members start from d holding their in-place operand.
template <class X, class Y, class D>
struct Member {
  const char* name;
  std::function<VspStatus(const X*, const Y*, Y, D*, int, int)> call;
  std::function<Exact(X, Y)> exact;
  bool scaled = true;
  bool constant = false;
};

template <class T> i128 Re(const T& v) {
  if constexpr (requires { v.re; }) return v.re;
  else return v;
}
template <class T> i128 Im(const T& v) {
  if constexpr (requires { v.im; }) return v.im;
  else return 0;
}
// Complex parts of a product and a sum.
template <class T> Exact CProd(const T& a, const T& b) { return {Re(a) * Re(b) - Im(a) * Im(b), Re(a) * Im(b) + Im(a) * Re(b)}; }
template <class T> Exact CSum(const T& a, const T& b, int sign) { return {Re(a) + sign * Re(b), Im(a) + sign * Im(b)}; }

template <class D> D Expected(const Exact& e, int s) {
  if constexpr (requires(D v) { v.re; }) {
    using B = decltype(D{}.re);
    return {RefScale<B>(e.re, s), RefScale<B>(e.im, s)};
  } else {
    return RefScale<D>(e.re, s);
  }
}

// Runs m on n random elements at the given byte offsets for every scale factor of `scales`.
template <class X, class Y, class D>
void Check(const Member<X, Y, D>& m, Rng& rng, int n, size_t offset, const std::vector<int>& scales,
           const std::vector<X>* fixedX = nullptr, const std::vector<Y>* fixedY = nullptr, const Y* fixedC = nullptr) {
  GuardedVec<X> x(n, offset % alignof(X) == 0 ? offset : 0);
  GuardedVec<Y> y(n, (offset + 4) % 16 / alignof(Y) * alignof(Y));
  GuardedVec<D> d(n, offset % alignof(D) == 0 ? offset : 0);
  for (int i = 0; i < n; ++i) {
    x[i] = fixedX ? (*fixedX)[i] : RandomElement<X>(rng);
    y[i] = fixedY ? (*fixedY)[i] : RandomElement<Y>(rng);
  }
  const Y c = fixedC ? *fixedC : RandomElement<Y>(rng);
  for (int s : scales) {
    if (!m.scaled && s != 0) continue;
    const VspStatus st = m.call(x.data(), y.data(), c, d.data(), n, s);
    ASSERT_EQ(st, vspStatOk) << m.name << " s " << s;
    for (int i = 0; i < n; ++i) {
      const D want = Expected<D>(m.exact(x[i], m.constant ? c : y[i]), s);
      if (!SameValue(d[i], want)) {
        FAIL() << m.name << " n " << n << " offset " << offset << " s " << s << " i " << i << ": x " << Show(x[i])
               << " y " << Show(m.constant ? c : y[i]) << " got " << Show(d[i]) << " want " << Show(want);
      }
    }
    ASSERT_TRUE(d.OutsideIntact() && x.OutsideIntact() && y.OutsideIntact()) << m.name;
  }
}

// Adapters from each signature to Member::call.
#define VV(f) [](const auto* x, const auto* y, auto, auto* d, int n, int s) { return f(x, y, d, n, s); }
#define VV0(f) [](const auto* x, const auto* y, auto, auto* d, int n, int) { return f(x, y, d, n); }
#define VVI(f) [](const auto* x, const auto* y, auto, auto* d, int n, int s) { std::memcpy(d, y, n * sizeof(*d)); return f(x, d, n, s); }
#define VVI0(f) [](const auto* x, const auto* y, auto, auto* d, int n, int) { std::memcpy(d, y, n * sizeof(*d)); return f(x, d, n); }
#define VC(f) [](const auto* x, const auto*, auto c, auto* d, int n, int s) { return f(x, c, d, n, s); }
#define VCI(f) [](const auto* x, const auto*, auto c, auto* d, int n, int s) { std::memcpy(d, x, n * sizeof(*d)); return f(c, d, n, s); }
#define VCI0(f) [](const auto* x, const auto*, auto c, auto* d, int n, int) { std::memcpy(d, x, n * sizeof(*d)); return f(c, d, n); }
// AddProduct: d starts from y (the accumulator); the factors are x and Mix(x, y).
template <class X, class Y> X Mix(X x, Y y) { return static_cast<X>(x ^ static_cast<X>(y >> 1)); }
#define ACC(f)                                                                    \
  [](const auto* x, const auto* y, auto, auto* d, int n, int s) {                 \
    std::vector<std::remove_cvref_t<decltype(*x)>> f2(n);                         \
    for (int i = 0; i < n; ++i) f2[i] = Mix(x[i], y[i]);                          \
    std::memcpy(d, y, n * sizeof(*d));                                            \
    return f(x, f2.data(), d, n, s);                                              \
  }
template <class X, class Y> Exact Accumulated(X x, Y y) { return {y + i128(x) * Mix(x, y), 0}; }

template <class T> std::vector<Member<T, T, T>> SameTypeMembers();

#define SFS_SET(t)                                                                                 \
  {"Add_" #t "_Sfs", VV(vspsAdd_##t##_Sfs), Sum}, {"Add_" #t "_ISfs", VVI(vspsAdd_##t##_ISfs), Sum},  \
  {"Sub_" #t "_Sfs", VV(vspsSub_##t##_Sfs), DiffYX}, {"Sub_" #t "_ISfs", VVI(vspsSub_##t##_ISfs), DiffYX}, \
  {"AddC_" #t "_Sfs", VC(vspsAddC_##t##_Sfs), Sum, true, true},                                     \
  {"AddC_" #t "_ISfs", VCI(vspsAddC_##t##_ISfs), Sum, true, true},                                  \
  {"SubC_" #t "_Sfs", VC(vspsSubC_##t##_Sfs), DiffXY, true, true},                                  \
  {"SubC_" #t "_ISfs", VCI(vspsSubC_##t##_ISfs), DiffXY, true, true},                               \
  {"SubCRev_" #t "_Sfs", VC(vspsSubCRev_##t##_Sfs), DiffYX, true, true},                            \
  {"SubCRev_" #t "_ISfs", VCI(vspsSubCRev_##t##_ISfs), DiffYX, true, true}
#define MUL_SET(t)                                                                                 \
  {"Mul_" #t "_Sfs", VV(vspsMul_##t##_Sfs), Prod}, {"Mul_" #t "_ISfs", VVI(vspsMul_##t##_ISfs), Prod}, \
  {"MulC_" #t "_Sfs", VC(vspsMulC_##t##_Sfs), Prod, true, true},                                    \
  {"MulC_" #t "_ISfs", VCI(vspsMulC_##t##_ISfs), Prod, true, true}

template <> std::vector<Member<Vsp8u, Vsp8u, Vsp8u>> SameTypeMembers() { return {SFS_SET(8u), MUL_SET(8u)}; }
template <> std::vector<Member<Vsp16u, Vsp16u, Vsp16u>> SameTypeMembers() {
  return {SFS_SET(16u), MUL_SET(16u), {"Add_16u", VV0(vspsAdd_16u), Sum, false}};
}
template <> std::vector<Member<Vsp16s, Vsp16s, Vsp16s>> SameTypeMembers() {
  return {SFS_SET(16s),
          MUL_SET(16s),
          {"Add_16s", VV0(vspsAdd_16s), Sum, false},
          {"Add_16s_I", VVI0(vspsAdd_16s_I), Sum, false},
          {"Sub_16s", VV0(vspsSub_16s), DiffYX, false},
          {"Sub_16s_I", VVI0(vspsSub_16s_I), DiffYX, false},
          {"Mul_16s", VV0(vspsMul_16s), Prod, false},
          {"Mul_16s_I", VVI0(vspsMul_16s_I), Prod, false},
          {"AddC_16s_I", VCI0(vspsAddC_16s_I), Sum, false, true},
          {"SubC_16s_I", VCI0(vspsSubC_16s_I), DiffXY, false, true},
          {"MulC_16s_I", VCI0(vspsMulC_16s_I), Prod, false, true},
          {"AddProduct_16s_Sfs", ACC(vspsAddProduct_16s_Sfs), Accumulated<Vsp16s, Vsp16s>}};
}
template <> std::vector<Member<Vsp32s, Vsp32s, Vsp32s>> SameTypeMembers() {
  return {SFS_SET(32s),
          {"Mul_32s_Sfs", VV(vspsMul_32s_Sfs), Prod},
          {"Mul_32s_ISfs", VVI(vspsMul_32s_ISfs), Prod},
          {"MulC_32s_Sfs", VC(vspsMulC_32s_Sfs), Prod, true, true},
          {"MulC_32s_ISfs", VCI(vspsMulC_32s_ISfs), Prod, true, true},
          {"AddProduct_32s_Sfs", ACC(vspsAddProduct_32s_Sfs), Accumulated<Vsp32s, Vsp32s>}};
}
template <> std::vector<Member<Vsp64s, Vsp64s, Vsp64s>> SameTypeMembers() {
  return {{"Add_64s_Sfs", VV(vspsAdd_64s_Sfs), Sum},
          {"AddC_64s_Sfs", VC(vspsAddC_64s_Sfs), Sum, true, true},
          {"MulC_64s_ISfs", VCI(vspsMulC_64s_ISfs), Prod, true, true}};
}
template <> std::vector<Member<Vsp64u, Vsp64u, Vsp64u>> SameTypeMembers() {
  return {{"AddC_64u_Sfs", VC(vspsAddC_64u_Sfs), Sum, true, true}};
}
template <> std::vector<Member<Vsp32u, Vsp32u, Vsp32u>> SameTypeMembers() { return {{"Add_32u", VV0(vspsAdd_32u), Sum, false}}; }

#define CPLX_SET(t)                                                                                               \
  {"Add_" #t "_Sfs", VV(vspsAdd_##t##_Sfs), [](T a, T b) { return CSum(a, b, 1); }},                              \
  {"Add_" #t "_ISfs", VVI(vspsAdd_##t##_ISfs), [](T a, T b) { return CSum(a, b, 1); }},                           \
  {"Sub_" #t "_Sfs", VV(vspsSub_##t##_Sfs), [](T a, T b) { return CSum(b, a, -1); }},                             \
  {"Sub_" #t "_ISfs", VVI(vspsSub_##t##_ISfs), [](T a, T b) { return CSum(b, a, -1); }},                          \
  {"Mul_" #t "_Sfs", VV(vspsMul_##t##_Sfs), CProd<T>}, {"Mul_" #t "_ISfs", VVI(vspsMul_##t##_ISfs), CProd<T>},    \
  {"AddC_" #t "_Sfs", VC(vspsAddC_##t##_Sfs), [](T a, T c) { return CSum(a, c, 1); }, true, true},                \
  {"AddC_" #t "_ISfs", VCI(vspsAddC_##t##_ISfs), [](T a, T c) { return CSum(a, c, 1); }, true, true},             \
  {"SubC_" #t "_Sfs", VC(vspsSubC_##t##_Sfs), [](T a, T c) { return CSum(a, c, -1); }, true, true},               \
  {"SubC_" #t "_ISfs", VCI(vspsSubC_##t##_ISfs), [](T a, T c) { return CSum(a, c, -1); }, true, true},            \
  {"SubCRev_" #t "_Sfs", VC(vspsSubCRev_##t##_Sfs), [](T a, T c) { return CSum(c, a, -1); }, true, true},         \
  {"SubCRev_" #t "_ISfs", VCI(vspsSubCRev_##t##_ISfs), [](T a, T c) { return CSum(c, a, -1); }, true, true},      \
  {"MulC_" #t "_Sfs", VC(vspsMulC_##t##_Sfs), CProd<T>, true, true},                                              \
  {"MulC_" #t "_ISfs", VCI(vspsMulC_##t##_ISfs), CProd<T>, true, true}
template <> std::vector<Member<Vsp16sc, Vsp16sc, Vsp16sc>> SameTypeMembers() {
  using T = Vsp16sc;
  return {CPLX_SET(16sc)};
}
template <> std::vector<Member<Vsp32sc, Vsp32sc, Vsp32sc>> SameTypeMembers() {
  using T = Vsp32sc;
  return {CPLX_SET(32sc)};
}

// Scale factors around every dispatch boundary of every member.
std::vector<int> BoundaryScales() {
  std::vector<int> s;
  for (int v = -70; v <= 70; ++v) s.push_back(v);
  for (int v : {125, 126, 127, 128, 200, -200, 100000, -100000}) s.push_back(v);
  return s;
}
// One scale factor of each path.
const std::vector<int> kPathScales = {0, 1, 3, -3, -40};

using SameTypes = TypeList<Vsp8u, Vsp16s, Vsp16u, Vsp32s, Vsp32u, Vsp64s, Vsp64u, Vsp16sc, Vsp32sc>;

TEST(IntArith, RandomAndExtremeOperandsAtEveryScale) {
  ForEachType(SameTypes{}, []<class T>() {
    Rng rng(1);
    for (const auto& m : SameTypeMembers<T>()) Check(m, rng, 300, alignof(T) % 16, BoundaryScales());
  });
}

TEST(IntArith, EveryLengthAndOffset) {
  ForEachType(SameTypes{}, []<class T>() {
    Rng rng(2);
    for (const auto& m : SameTypeMembers<T>()) {
      // In-place members run the kernels of their out-of-place forms: a few splits suffice.
      const bool inPlace = std::string(m.name).find("_I") != std::string::npos;
      for (int n : SweepLengths())
        for (size_t off : SweepOffsets<T>())
          if (!inPlace || n % 23 == 1) Check(m, rng, n, off, kPathScales);
    }
  });
}

// Every pair of bytes at every scale factor from the sign path to the zero-fill path; constants
// likewise over every value.
TEST(IntArith, Exhaustive8u) {
  std::vector<Vsp8u> a(65536), b(65536), x(256);
  for (int i = 0; i < 65536; ++i) a[i] = static_cast<Vsp8u>(i), b[i] = static_cast<Vsp8u>(i >> 8);
  for (int i = 0; i < 256; ++i) x[i] = static_cast<Vsp8u>(i);
  std::vector<int> scales;
  for (int s = -10; s <= 18; ++s) scales.push_back(s);
  Rng rng(3);
  for (const auto& m : SameTypeMembers<Vsp8u>()) {
    if (!m.constant) {
      Check(m, rng, 65536, 0, scales, &a, &b);
    } else {
      for (int c = 0; c < 256; c += static_cast<int>(Thin(5))) {
        const Vsp8u cv = static_cast<Vsp8u>(c);
        Check(m, rng, 256, 1, scales, &x, &x, &cv);
      }
    }
  }
}

// Members whose sources and destination differ in type.
TEST(IntArith, MixedTypes) {
  Rng rng(4);
  const std::vector<int> scales = BoundaryScales();
  for (int n : {1, 2, 3, 5, 7, 8, 9, 15, 17, 33, 300}) {
    for (size_t off : {0, 2, 4, 6, 8, 12}) {
      Check(Member<Vsp8u, Vsp8u, Vsp16u>{"Add_8u16u", VV0(vspsAdd_8u16u), Sum, false}, rng, n, off, {0});
      Check(Member<Vsp8u, Vsp8u, Vsp16u>{"Mul_8u16u", VV0(vspsMul_8u16u), Prod, false}, rng, n, off, {0});
      Check(Member<Vsp16s, Vsp16s, Vsp32s>{"Mul_16s32s_Sfs", VV(vspsMul_16s32s_Sfs), Prod}, rng, n, off, scales);
      Check(Member<Vsp16u, Vsp16s, Vsp16s>{"Mul_16u16s_Sfs", VV(vspsMul_16u16s_Sfs), Prod}, rng, n, off, scales);
      Check(Member<Vsp16s, Vsp32s, Vsp32s>{"AddProduct_16s32s_Sfs", ACC(vspsAddProduct_16s32s_Sfs), Accumulated<Vsp16s, Vsp32s>}, rng, n, off, scales);
      Check(Member<Vsp16s, Vsp32s, Vsp32s>{"Add_16s32s_I", VVI0(vspsAdd_16s32s_I), Sum, false}, rng, n, off, {0});
    }
  }
}

// The short-cuts through other exports give the rule's values.
TEST(IntArith, ShortCutResults) {
  Rng rng(8);
  constexpr int n = 1000;  // beyond the inline sizes of the copy and zero kernels
  std::vector<Vsp16s> a(n), b(n), d(n);
  for (int i = 0; i < n; ++i) a[i] = RandomValue<Vsp16s>(rng), b[i] = RandomValue<Vsp16s>(rng);
  // vspsAddC_16s_Sfs with 0 at scale 0 is a copy, also in place.
  ASSERT_EQ(vspsAddC_16s_Sfs(a.data(), 0, d.data(), n, 0), vspStatOk);
  EXPECT_EQ(d, a);
  ASSERT_EQ(vspsAddC_16s_ISfs(0, d.data(), n, 0), vspStatOk);
  EXPECT_EQ(d, a);
  // vspsAdd_16u_Sfs above 17 zeroes.
  std::vector<Vsp16u> u(n, 65535), ud(n, 7);
  ASSERT_EQ(vspsAdd_16u_Sfs(u.data(), u.data(), ud.data(), n, 18), vspStatOk);
  EXPECT_EQ(ud, std::vector<Vsp16u>(n, 0));
  // vspsMulC_32s_ISfs: 0 zeroes, 1 unscaled keeps the vector.
  std::vector<Vsp32s> w(n);
  for (auto& v : w) v = RandomValue<Vsp32s>(rng);
  const std::vector<Vsp32s> w0 = w;
  ASSERT_EQ(vspsMulC_32s_ISfs(1, w.data(), n, 0), vspStatOk);
  EXPECT_EQ(w, w0);
  ASSERT_EQ(vspsMulC_32s_ISfs(0, w.data(), n, 5), vspStatOk);
  EXPECT_EQ(w, std::vector<Vsp32s>(n, 0));
  // vspsMul_16sc_Sfs with the destination equal to either source equals the out-of-place result.
  std::vector<Vsp16sc> x(n), y(n), want(n), got(n);
  for (int i = 0; i < n; ++i) x[i] = RandomElement<Vsp16sc>(rng), y[i] = RandomElement<Vsp16sc>(rng);
  for (int s : {0, 3, -2}) {
    ASSERT_EQ(vspsMul_16sc_Sfs(x.data(), y.data(), want.data(), n, s), vspStatOk);
    got = x;
    ASSERT_EQ(vspsMul_16sc_Sfs(got.data(), y.data(), got.data(), n, s), vspStatOk);
    EXPECT_EQ(std::memcmp(got.data(), want.data(), n * sizeof(Vsp16sc)), 0) << "pDst == pSrc1, s " << s;
    got = y;
    ASSERT_EQ(vspsMul_16sc_Sfs(x.data(), got.data(), got.data(), n, s), vspStatOk);
    EXPECT_EQ(std::memcmp(got.data(), want.data(), n * sizeof(Vsp16sc)), 0) << "pDst == pSrc2, s " << s;
  }
}

}  // namespace
}  // namespace vsptest
