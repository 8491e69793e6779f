// Radix sorts: least-significant-digit, stable, in place (SortRadix) or producing an index
// permutation (SortRadixIndex), with 32-bit or, in the _L forms, 64-bit lengths and counters; and
// the sizes of their work buffers.
//
// The work buffer is a copy area (len values, or len indices) followed by the digit histograms.
// Its start has no required alignment, and with the 8- and 16-bit types the histograms start at
// any byte, so the buffer is only accessed through Cell, whose alignment is 1.
#include <cstring>
#include <type_traits>

#include "core/check.h"
#include "core/copy.h"
#include "core/impl.h"
#include "core/simd/sse3_sort.h"
#include "core/types.h"

namespace {

using namespace vsp;

template <class T>
struct [[gnu::packed]] Cell {
  T v;
};

// ---- digits ------------------------------------------------------------------------------------

// Digit widths from the least significant digit up.
struct DigitLayout {
  int count;
  int bits[6];
};

constexpr DigitLayout DigitsOf(size_t keyBytes) {
  switch (keyBytes) {
    case 1: return {1, {8}};
    case 2: return {2, {8, 8}};
    case 4: return {3, {11, 11, 10}};
    default: return {6, {11, 11, 10, 11, 11, 10}};
  }
}

// Counters of all digits of a key size together: 256, 512, 5120, 10240.
constexpr long long CountersOf(size_t keyBytes) {
  const DigitLayout d = DigitsOf(keyBytes);
  long long total = 0;
  for (int i = 0; i < d.count; ++i) total += 1LL << d.bits[i];
  return total;
}

// The order-preserving key of an element given by its bits: unsigned keys as they are, signed
// ones with the sign bit inverted, floats with every bit inverted when the sign bit is set and
// only the sign bit otherwise. Descending order sorts the complements.
template <class T, bool kDescend>
inline BitsOf<sizeof(T)> RadixKey(BitsOf<sizeof(T)> u) {
  using U = BitsOf<sizeof(T)>;
  constexpr int kTop = 8 * sizeof(T) - 1;
  constexpr U kSign = static_cast<U>(U{1} << kTop);
  if constexpr (std::is_floating_point_v<T>) {
    const U negative = static_cast<U>(U{0} - static_cast<U>(u >> kTop));  // all ones when the sign is set
    u = static_cast<U>(u ^ (negative | kSign));
  } else if constexpr (std::is_signed_v<T>) {
    u = static_cast<U>(u ^ kSign);
  }
  if constexpr (kDescend) u = static_cast<U>(~u);
  return u;
}

// ---- the passes --------------------------------------------------------------------------------

// Turns the histogram of one digit, `buckets` counters of type C at h (any alignment), into bucket
// starts: exclusive running totals, one vector of counters (four 32-bit or two 64-bit) per step.
template <class C>
void ownsRadixBucketStarts(Vsp8u* h, C buckets) {
  namespace hw = vsp::simd;
  C* counts = reinterpret_cast<C*>(h);  // only used by unaligned vector loads and stores
  auto carry = hw::Zero<C>();
  for (C b = 0; b < buckets; b += hw::kLanes<C>) {
    const auto inclusive = hw::InclusiveScan(hw::LoadU(counts + b));
    hw::StoreU(hw::Add(hw::ShiftBytesUp<sizeof(C)>(inclusive), carry), counts + b);
    carry = hw::Add(carry, hw::BroadcastLast(inclusive));
  }
}

// Zeroes the histograms, counts every digit of the n keys keyAt(0 .. n-1) in one pass, turns each
// histogram into bucket starts and lists in `active` the digits whose keys are not all alike (the
// bucket of the first key's digit holds all n): the others would move nothing. Returns the number
// of active digits.
template <class U, class C, class KeyAt>
int ownsRadixCount(C n, KeyAt keyAt, Cell<C>* hist, int* active) {
  constexpr DigitLayout kDigits = DigitsOf(sizeof(U));
  ownsZero_8u(reinterpret_cast<Vsp8u*>(hist), static_cast<size_t>(CountersOf(sizeof(U))) * sizeof(C));
  for (C i = 0; i < n; ++i) {
    const U k = keyAt(i);
    Cell<C>* h = hist;
    int shift = 0;
    for (int d = 0; d < kDigits.count; ++d) {
      const U digit = static_cast<U>((k >> shift) & ((U{1} << kDigits.bits[d]) - 1));
      ++h[digit].v;
      shift += kDigits.bits[d];
      h += C{1} << kDigits.bits[d];
    }
  }
  const U first = keyAt(0);
  int passes = 0, shift = 0;
  Cell<C>* h = hist;
  for (int d = 0; d < kDigits.count; ++d) {
    const C buckets = C{1} << kDigits.bits[d];
    if (h[(first >> shift) & (buckets - 1)].v != n) active[passes++] = d;
    ownsRadixBucketStarts(reinterpret_cast<Vsp8u*>(h), buckets);
    shift += kDigits.bits[d];
    h += buckets;
  }
  return passes;
}

// One stable scatter pass over digit d: item i (itemAt(i)) goes to the next free place of the
// bucket of its digit.
template <class U, class C, class Item, class ItemAt, class KeyOf>
void ownsRadixScatter(C n, ItemAt itemAt, KeyOf keyOf, Cell<Item>* dst, Cell<C>* hist, int d) {
  constexpr DigitLayout kDigits = DigitsOf(sizeof(U));
  int shift = 0;
  for (int k = 0; k < d; ++k) hist += C{1} << kDigits.bits[k], shift += kDigits.bits[k];
  const U mask = static_cast<U>((U{1} << kDigits.bits[d]) - 1);
  for (C i = 0; i < n; ++i) {
    const Item it = itemAt(i);
    const U digit = static_cast<U>((keyOf(it) >> shift) & mask);
    dst[hist[digit].v++].v = it;
  }
}

// Sorts n elements in place; the counters are of type C.
template <class T, bool kDescend, class C>
void ownsSortRadix(T* data, C n, Vsp8u* buffer) {
  using U = BitsOf<sizeof(T)>;
  auto* values = reinterpret_cast<Cell<U>*>(data);
  auto* spare = reinterpret_cast<Cell<U>*>(buffer);
  auto* hist = reinterpret_cast<Cell<C>*>(buffer + static_cast<size_t>(n) * sizeof(T));
  auto keyOf = [](U u) { return RadixKey<T, kDescend>(u); };
  int active[DigitsOf(sizeof(U)).count];
  const int passes = ownsRadixCount<U>(n, [&](C i) { return keyOf(values[i].v); }, hist, active);
  if constexpr (sizeof(T) == 1) {
    // One digit that is the whole value: the values are written bucket by bucket.
    if (passes == 0) return;
    for (int b = 0; b < 256; ++b) {
      const C start = hist[b].v, end = b < 255 ? hist[b + 1].v : n;
      std::memset(data + start, static_cast<int>(RadixKey<T, kDescend>(static_cast<U>(b))), end - start);
    }
    return;
  }
  Cell<U>* src = values;
  Cell<U>* dst = spare;
  for (int p = 0; p < passes; ++p) {
    ownsRadixScatter<U>(n, [src](C i) { return src[i].v; }, keyOf, dst, hist, active[p]);
    Cell<U>* t = src;
    src = dst;
    dst = t;
  }
  if (src != values)
    ownsCopy_8u(reinterpret_cast<const Vsp8u*>(src), reinterpret_cast<Vsp8u*>(data), static_cast<size_t>(n) * sizeof(T));
}

// Writes to idx the stable order of the keys at src + k * stride, k < n; indices of type I,
// counters of type C.
template <class T, bool kDescend, class I, class C>
void ownsSortRadixIndex(const Vsp8u* src, long long stride, I* idx, C n, Vsp8u* buffer) {
  using U = BitsOf<sizeof(T)>;
  auto* out = reinterpret_cast<Cell<I>*>(idx);
  auto* spare = reinterpret_cast<Cell<I>*>(buffer);
  auto* hist = reinterpret_cast<Cell<C>*>(buffer + static_cast<size_t>(n) * sizeof(I));
  auto keyAt = [src, stride](I k) {
    U u;
    std::memcpy(&u, src + static_cast<long long>(k) * stride, sizeof(U));
    return RadixKey<T, kDescend>(u);
  };
  int active[DigitsOf(sizeof(U)).count];
  const int passes = ownsRadixCount<U>(n, [&](C i) { return keyAt(static_cast<I>(i)); }, hist, active);
  // The passes alternate between idx and the copy area, the last one writing idx.
  Cell<I>* a = passes % 2 ? out : spare;
  Cell<I>* b = passes % 2 ? spare : out;
  if (passes == 0) {
    for (C i = 0; i < n; ++i) out[i].v = static_cast<I>(i);
    return;
  }
  ownsRadixScatter<U>(n, [](C i) { return static_cast<I>(i); }, keyAt, a, hist, active[0]);
  for (int p = 1; p < passes; ++p) {
    ownsRadixScatter<U>(n, [a](C i) { return a[i].v; }, keyAt, b, hist, active[p]);
    Cell<I>* t = a;
    a = b;
    b = t;
  }
}

// ---- checks ------------------------------------------------------------------------------------

template <bool kDescend, class T, class L>
VspStatus SortRadix(T* pSrcDst, L len, Vsp8u* pBuffer) {
  if (VspStatus st = CheckVec(len, pSrcDst, pBuffer)) return st;
  using C = std::conditional_t<sizeof(L) == 8, Vsp64u, Vsp32u>;
  ownsSortRadix<T, kDescend>(pSrcDst, static_cast<C>(len), pBuffer);
  return vspStatOk;
}

template <bool kDescend, class T, class L, class I>
VspStatus SortRadixIndex(const T* pSrc, L srcStrideBytes, I* pDstIndx, L len, Vsp8u* pBuffer) {
  if (VspStatus st = CheckVec(len, pSrc, pDstIndx, pBuffer)) return st;
  constexpr L kKey = static_cast<L>(sizeof(T));
  if (srcStrideBytes < kKey && srcStrideBytes > -kKey) return vspStatBadSize;
  using C = std::conditional_t<sizeof(L) == 8, Vsp64u, Vsp32u>;
  ownsSortRadixIndex<T, kDescend>(reinterpret_cast<const Vsp8u*>(pSrc), srcStrideBytes, pDstIndx,
                                  static_cast<C>(len), pBuffer);
  return vspStatOk;
}

// ---- buffer sizes ------------------------------------------------------------------------------

// A data type a size function serves: the bytes of its key and of one copy-area item.
struct SizeRow {
  VspDataType type;
  int keyBytes;
  int itemBytes;
};

constexpr SizeRow kRadixRows[] = {{vsp8u, 1, 1},  {vsp16u, 2, 2}, {vsp16s, 2, 2}, {vsp32u, 4, 4},
                                  {vsp32s, 4, 4}, {vsp32f, 4, 4}, {vsp64f, 8, 8}};
constexpr SizeRow kRadixIndexRows[] = {{vsp8u, 1, 4},  {vsp16u, 2, 4}, {vsp16s, 2, 4},
                                       {vsp32u, 4, 4}, {vsp32s, 4, 4}, {vsp32f, 4, 4}};
constexpr SizeRow kRadixRowsL[] = {{vsp32s, 4, 4}, {vsp32f, 4, 4}, {vsp64u, 8, 8}, {vsp64s, 8, 8}, {vsp64f, 8, 8}};
constexpr SizeRow kRadixIndexRowsL[] = {{vsp64u, 8, 8}, {vsp64s, 8, 8}};

// len * itemBytes + the counters of the key size (32-bit counters for the int forms, 64-bit for
// the long long ones).
template <class L, size_t N>
VspStatus BufferSize(L len, VspDataType dataType, L* pBufferSize, const SizeRow (&rows)[N]) {
  if (VspStatus st = CheckVec(len, pBufferSize)) return st;
  const SizeRow* row = nullptr;
  for (const SizeRow& r : rows)
    if (r.type == dataType) row = &r;
  if (row == nullptr) {
    *pBufferSize = 0;
    return vspStatDataTypeErr;
  }
  const long long fixed = CountersOf(static_cast<size_t>(row->keyBytes)) * static_cast<long long>(sizeof(L));
  if constexpr (sizeof(L) == 4) {
    const long long size = static_cast<long long>(len) * row->itemBytes + fixed;
    if (size > 0x7FFFFFFF) return vspStatBadSize;
    *pBufferSize = static_cast<L>(size);
  } else {
    const double size = static_cast<double>(len) * row->itemBytes + static_cast<double>(fixed);
    if (size >= 0x1p63) return vspStatSizeOverflowErr;
    *pBufferSize = static_cast<L>(static_cast<Vsp64u>(len) * static_cast<Vsp64u>(row->itemBytes) + static_cast<Vsp64u>(fixed));
  }
  return vspStatOk;
}

}  // namespace

#define VSP_RADIX(t, L, sfx)                                                                         \
  VSP_IMPL(VspStatus, vspsSortRadixAscend_##t##_I##sfx, (Vsp##t * pSrcDst, L len, Vsp8u * pBuffer)) {  \
    return SortRadix<false>(pSrcDst, len, pBuffer);                                                  \
  }                                                                                                  \
  VSP_IMPL(VspStatus, vspsSortRadixDescend_##t##_I##sfx, (Vsp##t * pSrcDst, L len, Vsp8u * pBuffer)) { \
    return SortRadix<true>(pSrcDst, len, pBuffer);                                                   \
  }
VSP_RADIX(8u, int, )
VSP_RADIX(16u, int, )
VSP_RADIX(16s, int, )
VSP_RADIX(32u, int, )
VSP_RADIX(32s, int, )
VSP_RADIX(32f, int, )
VSP_RADIX(64f, int, )
VSP_RADIX(32s, long long, _L)
VSP_RADIX(32f, long long, _L)
VSP_RADIX(64u, long long, _L)
VSP_RADIX(64s, long long, _L)
VSP_RADIX(64f, long long, _L)

#define VSP_RADIX_INDEX(t, L, sfx)                                                                        \
  VSP_IMPL(VspStatus, vspsSortRadixIndexAscend_##t##sfx,                                                  \
           (const Vsp##t* pSrc, L srcStrideBytes, L* pDstIndx, L len, Vsp8u* pBuffer)) {                  \
    return SortRadixIndex<false>(pSrc, srcStrideBytes, pDstIndx, len, pBuffer);                           \
  }                                                                                                       \
  VSP_IMPL(VspStatus, vspsSortRadixIndexDescend_##t##sfx,                                                 \
           (const Vsp##t* pSrc, L srcStrideBytes, L* pDstIndx, L len, Vsp8u* pBuffer)) {                  \
    return SortRadixIndex<true>(pSrc, srcStrideBytes, pDstIndx, len, pBuffer);                            \
  }
VSP_RADIX_INDEX(8u, int, )
VSP_RADIX_INDEX(16u, int, )
VSP_RADIX_INDEX(16s, int, )
VSP_RADIX_INDEX(32u, int, )
VSP_RADIX_INDEX(32s, int, )
VSP_RADIX_INDEX(32f, int, )
VSP_RADIX_INDEX(64u, long long, _L)
VSP_RADIX_INDEX(64s, long long, _L)

VSP_IMPL(VspStatus, vspsSortRadixGetBufferSize, (int len, VspDataType dataType, int* pBufferSize)) {
  return BufferSize(len, dataType, pBufferSize, kRadixRows);
}
VSP_IMPL(VspStatus, vspsSortRadixIndexGetBufferSize, (int len, VspDataType dataType, int* pBufferSize)) {
  return BufferSize(len, dataType, pBufferSize, kRadixIndexRows);
}
VSP_IMPL(VspStatus, vspsSortRadixGetBufferSize_L, (long long len, VspDataType dataType, long long* pBufferSize)) {
  return BufferSize(len, dataType, pBufferSize, kRadixRowsL);
}
VSP_IMPL(VspStatus, vspsSortRadixIndexGetBufferSize_L,
         (long long len, VspDataType dataType, long long* pBufferSize)) {
  return BufferSize(len, dataType, pBufferSize, kRadixIndexRowsL);
}
