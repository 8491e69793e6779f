// Bitwise logic and shifts against element loops over every layout, in place and not; every
// shift count from -2 to the width + 2; the short-cuts through Zero and Copy and the check order
// each implies.
#include "convert/convert_test.h"

namespace vsptest {
namespace {

// Out-of-place and in-place forms of one operation, and its element formula.
template <class T>
struct Op {
  const char* name;
  std::function<VspStatus(const T*, const T*, T*, int)> out;  // (pSrc1 or pSrc, pSrc2 or unused, pDst, len)
  std::function<VspStatus(const T*, T*, int)> in;             // (pSrc or unused, pSrcDst, len)
  std::function<T(T, T)> ref;                                 // (first source, second source or pSrcDst)
};

#define VSP_OPS(t)                                                                                                 \
  template <>                                                                                                      \
  std::vector<Op<Vsp##t>> Ops(Vsp##t c) {                                                                          \
    using T = Vsp##t;                                                                                              \
    return {                                                                                                       \
        {"And", vspsAnd_##t, vspsAnd_##t##_I, [](T a, T b) { return T(a & b); }},                                  \
        {"Or", vspsOr_##t, vspsOr_##t##_I, [](T a, T b) { return T(a | b); }},                                     \
        {"Xor", vspsXor_##t, vspsXor_##t##_I, [](T a, T b) { return T(a ^ b); }},                                  \
        {"AndC", [=](const T* s, const T*, T* d, int n) { return vspsAndC_##t(s, c, d, n); },                      \
         [=](const T*, T* p, int n) { return vspsAndC_##t##_I(c, p, n); }, [=](T a, T) { return T(a & c); }},      \
        {"OrC", [=](const T* s, const T*, T* d, int n) { return vspsOrC_##t(s, c, d, n); },                        \
         [=](const T*, T* p, int n) { return vspsOrC_##t##_I(c, p, n); }, [=](T a, T) { return T(a | c); }},       \
        {"XorC", [=](const T* s, const T*, T* d, int n) { return vspsXorC_##t(s, c, d, n); },                      \
         [=](const T*, T* p, int n) { return vspsXorC_##t##_I(c, p, n); }, [=](T a, T) { return T(a ^ c); }},      \
        {"Not", [](const T* s, const T*, T* d, int n) { return vspsNot_##t(s, d, n); },                            \
         [](const T*, T* p, int n) { return vspsNot_##t##_I(p, n); }, [](T a, T) { return T(~a); }},               \
    };                                                                                                             \
  }
template <class T> std::vector<Op<T>> Ops(T c);
VSP_OPS(8u) VSP_OPS(16u) VSP_OPS(32u)
#undef VSP_OPS

// pSrcDst of the in-place forms is the second operand; the constant forms read only it.
template <class T>
void CheckOp(const Op<T>& op, bool constant, Rng& rng) {
  for (int n : SweepLengths()) {
    for (size_t off = 0; off < 16; off += sizeof(T)) {
      SCOPED_TRACE(std::string(op.name) + " " + TypeName<T>() + " len " + std::to_string(n) + " offset " + std::to_string(off));
      GuardedVec<T> a(n, (off + 4) % 16), b(n, (off + 8) % 16), d(n, off);
      rng.FillBytes(a.data(), n * sizeof(T));
      rng.FillBytes(b.data(), n * sizeof(T));
      ASSERT_EQ(op.out(a.data(), b.data(), d.data(), n), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_EQ(d[i], op.ref(a[i], b[i])) << i;
      ASSERT_TRUE(d.OutsideIntact());
      std::vector<T> before(b.data(), b.data() + n);
      ASSERT_EQ(op.in(a.data(), b.data(), n), vspStatOk);
      for (int i = 0; i < n; ++i) ASSERT_EQ(b[i], constant ? op.ref(before[i], 0) : op.ref(before[i], a[i])) << i;
      ASSERT_TRUE(b.OutsideIntact());
    }
  }
}

TEST(Logic, EveryOperationTypeAndLayout) {
  ForEachType(TypeList<Vsp8u, Vsp16u, Vsp32u>{}, []<class T>() {
    Rng rng(sizeof(T));
    // Vector operations once; constant ones with a mixed pattern, all ones and one bit.
    for (T c : {T(0x5A5A5A5Au), T(~T(0)), T(1)}) {
      for (const Op<T>& op : Ops<T>(c)) {
        const bool constant = op.name[std::strlen(op.name) - 1] == 'C' || op.name[0] == 'N';
        if (constant || c == T(0x5A5A5A5Au)) CheckOp(op, constant, rng);
      }
    }
  });
}

// Shift members and their element formulas for a count in 0 .. 64.
template <class T>
struct ShiftMember {
  const char* name;
  VspStatus (*out)(const T*, int, T*, int);
  VspStatus (*in)(int, T*, int);
  bool left;
};

template <class T>
T ShiftRef(T x, int k, bool left) {
  constexpr int kBits = 8 * sizeof(T);
  if (left) return k >= kBits ? T(0) : T(static_cast<std::make_unsigned_t<T>>(x) << k);
  if (std::is_signed_v<T>) return T(x >> std::min(k, kBits - 1));
  return k >= kBits ? T(0) : T(x >> k);
}

template <class T>
void CheckShifts(const ShiftMember<T>& m) {
  constexpr int kBits = 8 * sizeof(T);
  Rng rng(kBits);
  for (int k = -2; k <= kBits + 2; ++k) {
    for (int n : {1, 5, 16, 33, 70, 1001}) {
      for (size_t off = 0; off < 16; off += 4 * sizeof(T) / 2 + 1) {
        const size_t o = off / sizeof(T) * sizeof(T);
        SCOPED_TRACE(std::string(m.name) + " count " + std::to_string(k) + " len " + std::to_string(n));
        GuardedVec<T> src(n, (o + 6) % 16 / sizeof(T) * sizeof(T)), dst(n, o);
        rng.FillBytes(src.data(), n * sizeof(T));
        const std::vector<T> orig(src.data(), src.data() + n);
        const VspStatus want = k < 0 ? vspStatShiftErr : vspStatOk;
        ASSERT_EQ(m.out(src.data(), k, dst.data(), n), want);
        ASSERT_EQ(m.in(k, src.data(), n), want);
        for (int i = 0; i < n && k >= 0; ++i) {
          ASSERT_EQ(dst[i], ShiftRef(orig[i], k, m.left)) << i;
          ASSERT_EQ(src[i], ShiftRef(orig[i], k, m.left)) << i;
        }
        if (k < 0) {
          ASSERT_EQ(std::memcmp(src.data(), orig.data(), n * sizeof(T)), 0);
        }
        ASSERT_TRUE(src.OutsideIntact() && dst.OutsideIntact());
      }
    }
  }
}

TEST(Shift, EveryCountFromMinus2ToWidthPlus2) {
  CheckShifts<Vsp8u>({"LShiftC_8u", vspsLShiftC_8u, vspsLShiftC_8u_I, true});
  CheckShifts<Vsp16u>({"LShiftC_16u", vspsLShiftC_16u, vspsLShiftC_16u_I, true});
  CheckShifts<Vsp16s>({"LShiftC_16s", vspsLShiftC_16s, vspsLShiftC_16s_I, true});
  CheckShifts<Vsp32s>({"LShiftC_32s", vspsLShiftC_32s, vspsLShiftC_32s_I, true});
  CheckShifts<Vsp8u>({"RShiftC_8u", vspsRShiftC_8u, vspsRShiftC_8u_I, false});
  CheckShifts<Vsp16u>({"RShiftC_16u", vspsRShiftC_16u, vspsRShiftC_16u_I, false});
  CheckShifts<Vsp16s>({"RShiftC_16s", vspsRShiftC_16s, vspsRShiftC_16s_I, false});
  CheckShifts<Vsp32s>({"RShiftC_32s", vspsRShiftC_32s, vspsRShiftC_32s_I, false});
}

// The short-cuts: which tests run before Zero or Copy take over.
TEST(Shift, ShortCutCheckOrders) {
  Vsp8u src[4] = {1, 2, 3, 0x81}, dst[4] = {9, 9, 9, 9};
  EXPECT_EQ(vspsLShiftC_8u(src, 8, nullptr, 4), vspStatNullPtr);  // vspsZero_8u's pointer test
  EXPECT_EQ(vspsLShiftC_8u(src, 8, dst, 0), vspStatBadSize);      // vspsZero_8u's length test
  EXPECT_EQ(vspsLShiftC_8u(nullptr, 8, dst, 4), vspStatNullPtr);  // pSrc is still tested
  EXPECT_EQ(vspsLShiftC_8u(src, -1, dst, 4), vspStatShiftErr);
  EXPECT_EQ(vspsLShiftC_8u(nullptr, 0, dst, 4), vspStatNullPtr);  // vspsCopy_8u
  EXPECT_EQ(vspsLShiftC_8u(src, -1, dst, 0), vspStatBadSize);     // the length before the count
  EXPECT_EQ(std::vector<Vsp8u>(dst, dst + 4), std::vector<Vsp8u>(4, 9));
  ASSERT_EQ(vspsLShiftC_8u(src, 100, dst, 4), vspStatOk);
  EXPECT_EQ(std::vector<Vsp8u>(dst, dst + 4), std::vector<Vsp8u>(4, 0));

  const Vsp16s s16[2] = {-5, 5};
  Vsp16s d16[2];
  ASSERT_EQ(vspsRShiftC_16s(s16, 20, d16, 2), vspStatOk);
  EXPECT_EQ(d16[0], -1);
  EXPECT_EQ(d16[1], 0);
  EXPECT_EQ(vspsRShiftC_16s(s16, 20, nullptr, 2), vspStatNullPtr);
  EXPECT_EQ(vspsRShiftC_16s(s16, -3, d16, 0), vspStatBadSize);
  const Vsp16u u16 = 0xFFFF;
  Vsp16u r16 = 7;
  ASSERT_EQ(vspsRShiftC_16u(&u16, 16, &r16, 1), vspStatOk);
  EXPECT_EQ(r16, 0);
}

TEST(Logic, ZeroConstantsAndNot) {
  Vsp32u v[3] = {1, 2, 3};
  EXPECT_EQ(vspsXorC_32u_I(0, v, 0), vspStatBadSize);
  EXPECT_EQ(vspsXorC_32u_I(0, nullptr, 3), vspStatNullPtr);
  ASSERT_EQ(vspsXorC_32u_I(0, v, 3), vspStatOk);
  EXPECT_EQ(v[2], 3u);
  Vsp16u a[2] = {0xF0F0, 0x1234}, b[2] = {7, 7};
  EXPECT_EQ(vspsAndC_16u(nullptr, 0, b, 2), vspStatNullPtr);
  EXPECT_EQ(vspsAndC_16u(a, 0, nullptr, 2), vspStatNullPtr);
  ASSERT_EQ(vspsAndC_16u(a, 0, b, 2), vspStatOk);
  EXPECT_EQ(b[0] | b[1], 0);
  ASSERT_EQ(vspsOrC_16u(a, 0, b, 2), vspStatOk);
  EXPECT_EQ(b[1], 0x1234);
  const Vsp8u x = 0x5A;
  Vsp8u y = 0;
  ASSERT_EQ(vspsNot_8u(&x, &y, 1), vspStatOk);
  EXPECT_EQ(y, 0xA5);
}

}  // namespace
}  // namespace vsptest
