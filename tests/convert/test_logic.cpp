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
    // Vector operations once; constant ones with a mixed pattern, all ones, one bit and 0 (the
    // constant that goes through Zero or Copy).
    for (T c : {T(0x5A5A5A5Au), T(~T(0)), T(1), T(0)}) {
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

// Stated examples; the statuses of the short-cuts are rows of the check rules.
TEST(Logic, StatedExamples) {
  const Vsp8u x = 0x5A;
  Vsp8u y = 0;
  ASSERT_EQ(vspsNot_8u(&x, &y, 1), vspStatOk);
  EXPECT_EQ(y, 0xA5);
  EXPECT_EQ(vspsLShiftC_8u(&x, 8, nullptr, 1), vspStatNullPtr);  // vspsZero_8u's pointer test
  EXPECT_EQ(vspsLShiftC_8u(&x, 8, &y, 0), vspStatBadSize);       // and its length test
  EXPECT_EQ(vspsXorC_32u_I(0, reinterpret_cast<Vsp32u*>(&y), 0), vspStatBadSize);
  EXPECT_EQ(y, 0xA5);
}

}  // namespace
}  // namespace vsptest
