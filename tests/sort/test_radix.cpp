// The radix sorts against a stable sort of keys built from the definition of the key order, the
// index forms over positive, negative and unaligned strides, work buffers of exactly the
// reported size at any alignment, and the buffer sizes.
#include <gtest/gtest.h>

#include <numeric>

#include "sort_data.h"
#include "support/budget.h"

namespace vsptest {
namespace {

// The key order: a float whose sign bit is set has all its bits inverted, any other float only
// its sign bit; signed integers have their sign bit inverted; unsigned ones are their own keys.
template <class T> UnsignedOf<T> RefKey(T x) {
  using U = UnsignedOf<T>;
  const U u = ToBits(x), sign = static_cast<U>(U{1} << (8 * sizeof(T) - 1));
  if constexpr (std::is_floating_point_v<T>) return (u & sign) ? static_cast<U>(~u) : static_cast<U>(u | sign);
  else if constexpr (std::is_signed_v<T>) return static_cast<U>(u ^ sign);
  else return u;
}

// Positions 0 .. n-1 in stable order of their keys, descending when desc.
template <class T> std::vector<size_t> RefOrder(const std::vector<T>& keys, bool desc) {
  std::vector<size_t> order(keys.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
    return desc ? RefKey(keys[a]) > RefKey(keys[b]) : RefKey(keys[a]) < RefKey(keys[b]);
  });
  return order;
}

template <class L> L BufferSize(L n, VspDataType type, bool index) {
  L size = -1;
  VspStatus st;
  if constexpr (sizeof(L) == 4) st = index ? vspsSortRadixIndexGetBufferSize(n, type, &size) : vspsSortRadixGetBufferSize(n, type, &size);
  else st = index ? vspsSortRadixIndexGetBufferSize_L(n, type, &size) : vspsSortRadixGetBufferSize_L(n, type, &size);
  EXPECT_EQ(st, vspStatOk) << "size query of type " << type;
  return size;
}

#define VSP_RADIX_MEMBER(t, L, sfx)                                                               \
  struct Radix_##t##sfx {                                                                         \
    using T = Vsp##t;                                                                             \
    using Len = L;                                                                                \
    static constexpr VspDataType kType = vsp##t;                                                  \
    static constexpr const char* kName = #t "_I" #sfx;                                            \
    static VspStatus Sort(bool desc, T* p, Len n, Vsp8u* b) {                                      \
      return desc ? vspsSortRadixDescend_##t##_I##sfx(p, n, b) : vspsSortRadixAscend_##t##_I##sfx(p, n, b); \
    }                                                                                             \
  };
VSP_RADIX_MEMBER(8u, int, ) VSP_RADIX_MEMBER(16u, int, ) VSP_RADIX_MEMBER(16s, int, ) VSP_RADIX_MEMBER(32u, int, )
VSP_RADIX_MEMBER(32s, int, ) VSP_RADIX_MEMBER(32f, int, ) VSP_RADIX_MEMBER(64f, int, )
VSP_RADIX_MEMBER(32s, long long, _L) VSP_RADIX_MEMBER(32f, long long, _L) VSP_RADIX_MEMBER(64u, long long, _L)
VSP_RADIX_MEMBER(64s, long long, _L) VSP_RADIX_MEMBER(64f, long long, _L)
#undef VSP_RADIX_MEMBER
using RadixMembers = TypeList<Radix_8u, Radix_16u, Radix_16s, Radix_32u, Radix_32s, Radix_32f, Radix_64f, Radix_32s_L,
                              Radix_32f_L, Radix_64u_L, Radix_64s_L, Radix_64f_L>;

#define VSP_RADIX_INDEX_MEMBER(t, L, sfx)                                                          \
  struct RadixIndex_##t##sfx {                                                                     \
    using T = Vsp##t;                                                                              \
    using Len = L;                                                                                 \
    static constexpr VspDataType kType = vsp##t;                                                   \
    static constexpr const char* kName = "Index_" #t #sfx;                                         \
    static VspStatus Sort(bool desc, const T* p, Len stride, Len* idx, Len n, Vsp8u* b) {           \
      return desc ? vspsSortRadixIndexDescend_##t##sfx(p, stride, idx, n, b)                        \
                  : vspsSortRadixIndexAscend_##t##sfx(p, stride, idx, n, b);                        \
    }                                                                                              \
  };
VSP_RADIX_INDEX_MEMBER(8u, int, ) VSP_RADIX_INDEX_MEMBER(16u, int, ) VSP_RADIX_INDEX_MEMBER(16s, int, )
VSP_RADIX_INDEX_MEMBER(32u, int, ) VSP_RADIX_INDEX_MEMBER(32s, int, ) VSP_RADIX_INDEX_MEMBER(32f, int, )
VSP_RADIX_INDEX_MEMBER(64u, long long, _L) VSP_RADIX_INDEX_MEMBER(64s, long long, _L)
#undef VSP_RADIX_INDEX_MEMBER
using RadixIndexMembers = TypeList<RadixIndex_8u, RadixIndex_16u, RadixIndex_16s, RadixIndex_32u, RadixIndex_32s,
                                   RadixIndex_32f, RadixIndex_64u_L, RadixIndex_64s_L>;

// Random bits limited to a width that varies with n, so that every number of digit passes (and
// the digits skipped because all keys share them) occurs.
template <class T> std::vector<T> Keys(Shape shape, size_t n, Rng& rng) {
  return MakeData<T>(shape, n, rng, 1 + static_cast<int>((n * 7) % (8 * sizeof(T))));
}

template <class M>
void CheckInPlace(const std::vector<typename M::T>& in, const std::string& what) {
  using T = typename M::T;
  using Len = typename M::Len;
  const Len n = static_cast<Len>(in.size());
  const Len bytes = BufferSize<Len>(n, M::kType, false);
  for (int desc = 0; desc < 2; ++desc) {
    GuardedVec<T> v(in.size(), (in.size() % 2) * sizeof(T));
    GuardedVec<Vsp8u> buf(static_cast<size_t>(bytes), in.size() % 8);
    std::copy(in.begin(), in.end(), v.data());
    std::memset(buf.data(), 0x5A, static_cast<size_t>(bytes));  // stale counters
    ASSERT_EQ(M::Sort(desc, v.data(), n, buf.data()), vspStatOk);
    const std::vector<size_t> order = RefOrder(in, desc);
    for (size_t j = 0; j < in.size(); ++j)
      ASSERT_TRUE(SameBits(v[j], in[order[j]])) << M::kName << (desc ? " desc " : " asc ") << what << " at " << j;
    ASSERT_TRUE(v.OutsideIntact());
    ASSERT_TRUE(buf.OutsideIntact());
  }
}

// Keys stored `stride` bytes apart (the gaps filled with noise), read through pSrc at the first
// key; a negative stride stores them from the end of the block down.
template <class M>
void CheckIndex(const std::vector<typename M::T>& in, long long stride, Rng& rng, const std::string& what) {
  using T = typename M::T;
  using Len = typename M::Len;
  const size_t n = in.size();
  const size_t step = static_cast<size_t>(stride < 0 ? -stride : stride);
  GuardedVec<Vsp8u> keys((n - 1) * step + sizeof(T), n % 16);
  rng.FillBytes(keys.data(), keys.size());
  Vsp8u* first = stride < 0 ? keys.data() + (n - 1) * step : keys.data();
  for (size_t k = 0; k < n; ++k) std::memcpy(first + static_cast<long long>(k) * stride, &in[k], sizeof(T));
  const std::vector<Vsp8u> before(keys.data(), keys.data() + keys.size());
  const Len bytes = BufferSize<Len>(static_cast<Len>(n), M::kType, true);
  for (int desc = 0; desc < 2; ++desc) {
    GuardedVec<Len> idx(n);
    GuardedVec<Vsp8u> buf(static_cast<size_t>(bytes), (n + 3) % 8);
    std::memset(buf.data(), 0x5A, static_cast<size_t>(bytes));  // stale counters
    ASSERT_EQ(M::Sort(desc, reinterpret_cast<const T*>(first), static_cast<Len>(stride), idx.data(), static_cast<Len>(n), buf.data()), vspStatOk);
    const std::vector<size_t> order = RefOrder(in, desc);
    for (size_t j = 0; j < n; ++j)
      ASSERT_EQ(static_cast<size_t>(idx[j]), order[j]) << M::kName << (desc ? " desc " : " asc ") << what << " stride " << stride << " at " << j;
    ASSERT_TRUE(idx.OutsideIntact());
    ASSERT_TRUE(buf.OutsideIntact());
    ASSERT_TRUE(keys.OutsideIntact());
    ASSERT_EQ(std::memcmp(keys.data(), before.data(), before.size()), 0) << "the keys were written";
  }
}

std::vector<size_t> RadixLengths() {
  std::vector<size_t> lens;
  for (size_t n = 1; n <= 100; n += vsptest::Thin(3)) lens.push_back(n);
  lens.push_back(1000);
  return lens;
}
// Past 65,536 equal 16-bit digits: long vectors of the shapes that stress the counters.
constexpr size_t kLong = 70001;
const Shape kLongShapes[] = {Shape::Random, Shape::Equal, Shape::FewDistinct};

TEST(SortRadix, MatchesAStableSortOfTheKeys) {
  ForEachType(RadixMembers{}, []<class M>() {
    Rng rng(21);
    for (size_t n : RadixLengths())
      for (Shape shape : kShapes)
        CheckInPlace<M>(Keys<typename M::T>(shape, n, rng), std::string(ShapeName(shape)) + " n " + std::to_string(n));
    for (Shape shape : kLongShapes) CheckInPlace<M>(Keys<typename M::T>(shape, kLong, rng), ShapeName(shape));
  });
}

TEST(SortRadix, MillionFloats) {
  const size_t n = kSanitized ? 100000 : 1000000;
  Rng rng(22);
  for (Shape shape : {Shape::Random, Shape::Specials, Shape::FewDistinct}) {
    CheckInPlace<Radix_32f>(Keys<Vsp32f>(shape, n, rng), ShapeName(shape));
    CheckInPlace<Radix_64f_L>(Keys<Vsp64f>(shape, n, rng), ShapeName(shape));
  }
}

TEST(SortRadixIndex, StableOverEveryStride) {
  ForEachType(RadixIndexMembers{}, []<class M>() {
    Rng rng(23);
    const long long s = sizeof(typename M::T);
    for (size_t n : RadixLengths())
      for (Shape shape : kShapes)
        for (long long stride : {s, s + 1, 2 * s + 3, -s, -(s + 1)})
          CheckIndex<M>(Keys<typename M::T>(shape, n, rng), stride, rng, std::string(ShapeName(shape)) + " n " + std::to_string(n));
    for (Shape shape : kLongShapes) CheckIndex<M>(Keys<typename M::T>(shape, kLong, rng), -(s + 1), rng, ShapeName(shape));
  });
}

TEST(SortRadix, Examples) {
  Vsp32f v[4] = {0.0f, -0.0f, -1.0f, 1.0f};
  std::vector<Vsp8u> buf(BufferSize(4, vsp32f, false));
  ASSERT_EQ(vspsSortRadixAscend_32f_I(v, 4, buf.data()), vspStatOk);
  const Vsp32f want[4] = {-1.0f, -0.0f, 0.0f, 1.0f};
  for (int k = 0; k < 4; ++k) EXPECT_TRUE(SameBits(v[k], want[k])) << k;

  const Vsp32s keys[4] = {5, 1, 5, 0};
  int idx[4];
  std::vector<Vsp8u> ibuf(BufferSize(4, vsp32s, true));
  ASSERT_EQ(vspsSortRadixIndexAscend_32s(keys, 4, idx, 4, ibuf.data()), vspStatOk);
  const int wantIdx[4] = {3, 1, 0, 2};
  for (int k = 0; k < 4; ++k) EXPECT_EQ(idx[k], wantIdx[k]);
  ASSERT_EQ(vspsSortRadixIndexDescend_32s(keys, 4, idx, 4, ibuf.data()), vspStatOk);
  const int wantDesc[4] = {0, 2, 1, 3};  // equal keys in input order in both directions
  for (int k = 0; k < 4; ++k) EXPECT_EQ(idx[k], wantDesc[k]);
  EXPECT_EQ(vspsSortRadixIndexAscend_32s(keys, 2, idx, 4, ibuf.data()), vspStatBadSize);

  // NaNs by their sign: -NaN before -Inf, +NaN after +Inf.
  const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
  Vsp64f d[5] = {nan, inf, -nan, -inf, 0.0};
  std::vector<Vsp8u> dbuf(BufferSize(5LL, vsp64f, false));
  ASSERT_EQ(vspsSortRadixAscend_64f_I_L(d, 5, dbuf.data()), vspStatOk);
  EXPECT_TRUE(std::isnan(d[0]) && std::signbit(d[0]));
  EXPECT_EQ(d[1], -inf);
  EXPECT_EQ(d[2], 0.0);
  EXPECT_EQ(d[3], inf);
  EXPECT_TRUE(std::isnan(d[4]) && !std::signbit(d[4]));
}

// ---- buffer sizes ------------------------------------------------------------------------------

struct SizeRule {
  int type;
  long long perElement, fixed;
};
struct SizeFunction {
  const char* name;
  std::vector<SizeRule> rules;  // the data types served; every other code is refused
  bool wide;                    // the _L form
  bool index;
};
const SizeFunction kSizeFunctions[] = {
    {"SortRadixGetBufferSize", {{1, 1, 1024}, {5, 2, 2048}, {7, 2, 2048}, {9, 4, 20480}, {11, 4, 20480}, {13, 4, 20480}, {19, 8, 40960}}, false, false},
    {"SortRadixIndexGetBufferSize", {{1, 4, 1024}, {5, 4, 2048}, {7, 4, 2048}, {9, 4, 20480}, {11, 4, 20480}, {13, 4, 20480}}, false, true},
    {"SortRadixGetBufferSize_L", {{11, 4, 40960}, {13, 4, 40960}, {15, 8, 81920}, {17, 8, 81920}, {19, 8, 81920}}, true, false},
    {"SortRadixIndexGetBufferSize_L", {{15, 8, 81920}, {17, 8, 81920}}, true, true},
};

// Calls a size function; the result starts as a canary.
VspStatus QuerySize(const SizeFunction& f, long long len, int type, long long* size) {
  const auto t = static_cast<VspDataType>(type);
  if (f.wide) return f.index ? vspsSortRadixIndexGetBufferSize_L(len, t, size) : vspsSortRadixGetBufferSize_L(len, t, size);
  int s = static_cast<int>(*size);
  VspStatus st = f.index ? vspsSortRadixIndexGetBufferSize(static_cast<int>(len), t, &s) : vspsSortRadixGetBufferSize(static_cast<int>(len), t, &s);
  *size = s;
  return st;
}

TEST(SortRadixBufferSize, EveryDataTypeCode) {
  for (const SizeFunction& f : kSizeFunctions) {
    for (int type = -1; type <= 21; ++type) {
      const SizeRule* rule = nullptr;
      for (const SizeRule& r : f.rules)
        if (r.type == type) rule = &r;
      for (long long len : {1LL, 100LL, 123457LL}) {
        long long size = 12345;
        VspStatus st = QuerySize(f, len, type, &size);
        if (rule) {
          EXPECT_EQ(st, vspStatOk) << f.name << " type " << type;
          EXPECT_EQ(size, rule->perElement * len + rule->fixed) << f.name << " type " << type << " len " << len;
        } else {
          EXPECT_EQ(st, vspStatDataTypeErr) << f.name << " type " << type;
          EXPECT_EQ(size, 0) << f.name << " writes 0 for type " << type;
        }
      }
      // Pointer, then length, before the type; nothing written.
      long long size = 12345;
      EXPECT_EQ(QuerySize(f, 0, type, &size), vspStatBadSize);
      EXPECT_EQ(QuerySize(f, -1, type, &size), vspStatBadSize);
      EXPECT_EQ(size, 12345);
    }
  }
  int s = 0;
  EXPECT_EQ(vspsSortRadixGetBufferSize(100, vsp32f, &s), vspStatOk);
  EXPECT_EQ(s, 20880);
  EXPECT_EQ(vspsSortRadixGetBufferSize(100, vsp8s, nullptr), vspStatNullPtr);
  EXPECT_EQ(vspsSortRadixIndexGetBufferSize_L(100, vsp64f, nullptr), vspStatNullPtr);
}

TEST(SortRadixBufferSize, SizesBeyondTheCountType) {
  // 32-bit forms: a size above 2^31 - 1 is refused as a length out of range.
  int s = 7;
  const int maxLen = (0x7FFFFFFF - 20480) / 4;
  ASSERT_EQ(vspsSortRadixGetBufferSize(maxLen, vsp32f, &s), vspStatOk);
  EXPECT_EQ(s, 4LL * maxLen + 20480);
  s = 7;
  EXPECT_EQ(vspsSortRadixGetBufferSize(maxLen + 1, vsp32f, &s), vspStatBadSize);
  EXPECT_EQ(vspsSortRadixIndexGetBufferSize(0x7FFFFFFF, vsp8u, &s), vspStatBadSize);
  EXPECT_EQ(s, 7);
  // 64-bit forms: sizes from 2^63 up (in double precision) are an overflow; below, exact.
  long long l = 7;
  const long long fits = (1LL << 60) - 20480;  // 8n + 81920 = 2^63 - 81920, exact in double
  ASSERT_EQ(vspsSortRadixIndexGetBufferSize_L(fits, vsp64u, &l), vspStatOk);
  EXPECT_EQ(l, 0x7FFFFFFFFFFFFFFFLL - 81919);
  l = 7;
  EXPECT_EQ(vspsSortRadixIndexGetBufferSize_L((1LL << 60) - 10240, vsp64u, &l), vspStatSizeOverflowErr);  // exactly 2^63
  EXPECT_EQ(vspsSortRadixGetBufferSize_L(1LL << 62, vsp64f, &l), vspStatSizeOverflowErr);
  EXPECT_EQ(vspsSortRadixGetBufferSize_L(0x7FFFFFFFFFFFFFFFLL, vsp32f, &l), vspStatSizeOverflowErr);
  EXPECT_EQ(l, 7);
  ASSERT_EQ(vspsSortRadixGetBufferSize_L((1LL << 61) - 20480, vsp32s, &l), vspStatOk);
  EXPECT_EQ(l, 0x7FFFFFFFFFFFFFFFLL - 40959);
}

}  // namespace
}  // namespace vsptest
