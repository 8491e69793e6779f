// Comparison sorts: SortAscend, SortDescend and their index forms, one quicksort template over
// the element type, the direction and the presence of an index array.
#include "core/check.h"
#include "core/impl.h"
#include "core/types.h"

namespace {

using namespace vsp;

// Ranges of this many elements or fewer are finished by selection.
constexpr int kSelectionMax = 9;
// Pending ranges: the smaller side is always processed first, so the depth stays below log2(len).
constexpr int kStackDepth = 32;

// The element vector and, for the index forms, the permutation that travels with it.
template <class T, bool kIndex>
struct SortView {
  T* v;
  int* idx;
  void Swap(int a, int b) {
    T t = v[a];
    v[a] = v[b];
    v[b] = t;
    if constexpr (kIndex) {
      int k = idx[a];
      idx[a] = idx[b];
      idx[b] = k;
    }
  }
};

// True when a belongs after b in the requested order. Only this strict comparison is used.
template <bool kDescend, class T>
inline bool After(T a, T b) {
  if constexpr (kDescend) return b > a;
  else return a > b;
}

// Moves the NaN elements of v[0 .. n-1] to its end; returns the count of the others.
template <class T, bool kIndex>
int ownsSortMoveNaNsBack(SortView<T, kIndex> s, int n) {
  int lo = 0, hi = n - 1;
  for (;;) {
    while (lo <= hi && s.v[lo] == s.v[lo]) ++lo;
    while (hi > lo && s.v[hi] != s.v[hi]) --hi;
    if (lo >= hi) break;
    s.Swap(lo, hi);
    ++lo;
    --hi;
  }
  return lo;
}

// Selection: the extreme of [lo, hi] (the first one found) goes to hi, and the range shrinks.
template <bool kDescend, class T, bool kIndex>
inline void ownsSortSelect(SortView<T, kIndex> s, int lo, int hi) {
  // Two running extremes, over the even and the odd offsets, updated without branches: the two
  // chains of dependent comparisons run side by side. Of equal extremes the one at the lower
  // position wins, as in a single scan with the strict comparison.
  for (; hi > lo; --hi) {
    int best0 = lo, best1 = lo + 1;
    T ext0 = s.v[lo], ext1 = s.v[lo + 1];
    int k = lo + 2;
    for (; k < hi; k += 2) {
      const T x0 = s.v[k], x1 = s.v[k + 1];
      const bool later0 = After<kDescend>(x0, ext0), later1 = After<kDescend>(x1, ext1);
      best0 = later0 ? k : best0;
      ext0 = later0 ? x0 : ext0;
      best1 = later1 ? k + 1 : best1;
      ext1 = later1 ? x1 : ext1;
    }
    if (k == hi) {
      const bool later0 = After<kDescend>(s.v[k], ext0);
      best0 = later0 ? k : best0;
      ext0 = later0 ? s.v[k] : ext0;
    }
    const bool odd = After<kDescend>(ext1, ext0) || (!After<kDescend>(ext0, ext1) && best1 < best0);
    s.Swap(odd ? best1 : best0, hi);
  }
}

template <bool kDescend, class T, bool kIndex>
void ownsSortQuick(SortView<T, kIndex> s, int n) {
  struct Range {
    int lo, hi;
  };
  Range stack[kStackDepth];
  int depth = 0;
  int lo = 0, hi = n - 1;
  T* v = s.v;
  for (;;) {
    if (hi - lo + 1 <= kSelectionMax) {
      ownsSortSelect<kDescend>(s, lo, hi);
      if (depth == 0) return;
      --depth;
      lo = stack[depth].lo, hi = stack[depth].hi;
      continue;
    }
    // Median of three: after these exchanges v[lo] <= v[mid] <= v[hi] in the sort order, which
    // also stops both scans below inside the range.
    const int mid = lo + (hi - lo + 1) / 2;
    if (After<kDescend>(v[lo], v[mid])) s.Swap(lo, mid);
    if (After<kDescend>(v[mid], v[hi])) s.Swap(mid, hi);
    if (After<kDescend>(v[lo], v[mid])) s.Swap(lo, mid);
    const T pivot = v[mid];
    int i = lo, j = hi;
    do {
      while (After<kDescend>(pivot, v[i])) ++i;
      while (After<kDescend>(v[j], pivot)) --j;
      if (i <= j) {
        s.Swap(i, j);
        ++i;
        --j;
      }
    } while (i <= j);
    // [lo, j] holds no element after the pivot and [i, hi] none before it, so elements equal to
    // the pivot at the inner ends are already in place.
    while (j > lo && v[j] == pivot) --j;
    while (i < hi && v[i] == pivot) ++i;
    // The larger side waits; the smaller one is processed next. A side of one element or none is
    // finished.
    const int left = j - lo + 1, right = hi - i + 1;
    Range small{lo, j}, large{i, hi};
    if (left > right) small = {i, hi}, large = {lo, j};
    if (large.hi > large.lo) stack[depth++] = large;
    if (small.hi > small.lo) {
      lo = small.lo, hi = small.hi;
    } else {
      if (depth == 0) return;
      --depth;
      lo = stack[depth].lo, hi = stack[depth].hi;
    }
  }
}

template <bool kDescend, class T, bool kIndex>
void ownsSort(T* v, int* idx, int n) {
  SortView<T, kIndex> s{v, idx};
  if constexpr (kIndex)
    for (int k = 0; k < n; ++k) idx[k] = k;
  if constexpr (std::is_floating_point_v<T>) n = ownsSortMoveNaNsBack(s, n);
  if (n > 1) ownsSortQuick<kDescend>(s, n);
}

template <bool kDescend, class T>
VspStatus Sort(T* pSrcDst, int len) {
  if (VspStatus st = CheckVec(len, pSrcDst)) return st;
  ownsSort<kDescend, T, false>(pSrcDst, nullptr, len);
  return vspStatOk;
}

template <bool kDescend, class T>
VspStatus SortIndex(T* pSrcDst, int* pDstIndx, int len) {
  if (VspStatus st = CheckVec(len, pSrcDst, pDstIndx)) return st;
  ownsSort<kDescend, T, true>(pSrcDst, pDstIndx, len);
  return vspStatOk;
}

}  // namespace

#define VSP_SORT(t)                                                                                \
  VSP_IMPL(VspStatus, vspsSortAscend_##t##_I, (Vsp##t * pSrcDst, int len)) {                       \
    return Sort<false>(pSrcDst, len);                                                              \
  }                                                                                                \
  VSP_IMPL(VspStatus, vspsSortDescend_##t##_I, (Vsp##t * pSrcDst, int len)) {                      \
    return Sort<true>(pSrcDst, len);                                                               \
  }                                                                                                \
  VSP_IMPL(VspStatus, vspsSortIndexAscend_##t##_I, (Vsp##t * pSrcDst, int* pDstIndx, int len)) {   \
    return SortIndex<false>(pSrcDst, pDstIndx, len);                                               \
  }                                                                                                \
  VSP_IMPL(VspStatus, vspsSortIndexDescend_##t##_I, (Vsp##t * pSrcDst, int* pDstIndx, int len)) {  \
    return SortIndex<true>(pSrcDst, pDstIndx, len);                                                \
  }
VSP_SORT(8u)
VSP_SORT(16u)
VSP_SORT(16s)
VSP_SORT(32s)
VSP_SORT(32f)
VSP_SORT(64f)
