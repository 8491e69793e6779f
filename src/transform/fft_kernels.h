// Kernels of the power-of-two FFT, written once over the element type T (Vsp32f or Vsp64f,
// complex values interleaved as (re, im) pairs of T) and the direction (kInv: the inverse
// uses conjugated twiddles and the opposite quarter-turn).
//
// Single-level transforms are self-sorting decimation-in-time passes: one twiddle-free radix-8
// (odd order) or radix-4 pass, then radix-4 passes with twiddles, ping-ponging between the
// destination and a work buffer, so no bit reversal is needed; in
// between, the data is held in blocks of real and imaginary parts (see the block passes). Large
// transforms (orders above the single-level range) work on the destination with a work buffer
// smaller than the data: 2^b rows of 2^r points (r = order - b) are put in place (gathered in
// natural order from a separate source, or by a blocked bit-reversal permutation in place),
// every row is transformed, and a pass over batches of columns applies the twiddles
// exp(-2 pi i n1 k2 / N) and the 2^b-point transforms across the rows in the work buffer.
//
// Data is addressed through Halves: complex element i of an N-point array lies in `lo` for
// i < N/2 and in `hi` (at i - N/2) above, so a split-complex caller can lend its two output
// arrays as one interleaved array. Every pass reads and writes the halves in whole runs.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/simd/sse3_fft.h"
#include "transform/fft_tables.h"

namespace vsp::fft {

namespace hw = vsp::simd;

// Inlined into their callers, so that the direct kernels see every length and stride as a
// constant and unroll completely.
#define VSP_FFT_INLINE [[gnu::always_inline]] inline
// Kept out of line: each pass compiles to its own tight loop.
#define VSP_FFT_NOINLINE [[gnu::noinline]]

template <class T> struct Halves {
  T* lo;
  T* hi;
  // Complex element i of an array of n.
  T* At(long long i, long long n) const { return i < n / 2 ? lo + 2 * i : hi + 2 * (i - n / 2); }
};
// An ordinary interleaved array of n complex elements.
template <class T> Halves<T> Whole(T* p, long long n) { return {p, p + 2 * (n / 2)}; }

// ---- butterflies ---------------------------------------------------------------------------

template <bool kInv, class V>
VSP_FFT_INLINE void Bfly4(V a, V b, V c, V d, V& y0, V& y1, V& y2, V& y3) {
  V t0 = hw::Add(a, c), t1 = hw::Sub(a, c), t2 = hw::Add(b, d), t3 = hw::MulRot<kInv>(hw::Sub(b, d));
  y0 = hw::Add(t0, t2);
  y1 = hw::Add(t1, t3);
  y2 = hw::Sub(t0, t2);
  y3 = hw::Sub(t1, t3);
}

// 8-point DFT of x[0..7] in place (outputs in natural order).
template <bool kInv, class T>
VSP_FFT_INLINE void Bfly8(hw::Vec<T>* x) {
  const hw::Vec<T> h = hw::Set1<T>(static_cast<T>(0.70710678118654752440L));
  hw::Vec<T> a[4], b[4];
  for (int j = 0; j < 4; ++j) a[j] = hw::Add(x[j], x[j + 4]), b[j] = hw::Sub(x[j], x[j + 4]);
  // b[j] *= W8^j: W8 z = (z + rot z) * sqrt(1/2), W8^2 z = rot z, W8^3 z = rot(W8 z).
  b[1] = hw::Mul(hw::Add(b[1], hw::MulRot<kInv>(b[1])), h);
  b[2] = hw::MulRot<kInv>(b[2]);
  b[3] = hw::MulRot<kInv>(hw::Mul(hw::Add(b[3], hw::MulRot<kInv>(b[3])), h));
  Bfly4<kInv>(a[0], a[1], a[2], a[3], x[0], x[2], x[4], x[6]);
  Bfly4<kInv>(b[0], b[1], b[2], b[3], x[1], x[3], x[5], x[7]);
}

// ---- block passes ------------------------------------------------------------------------
//
// Between the first and the last pass, transforms large enough keep their data in blocks of
// L = kLanes complex values: the L real parts, then the L imaginary parts, in the bytes the L
// interleaved values would take. Complex arithmetic on blocks needs no shuffles (a quarter-turn
// is a swap of the parts); the first pass converts from the interleaved input, transposing its
// outputs into blocks, and the last pass converts back.

// Offset of the real part of complex value i in an array of blocks (its imaginary part follows
// L values later).
template <class T> constexpr long long BlockRe(long long i) {
  return 2 * (i - i % hw::kLanes<T>) + i % hw::kLanes<T>;
}

template <class T> struct CV {
  hw::Vec<T> re, im;
};
template <class T> VSP_FFT_INLINE CV<T> CAdd(CV<T> a, CV<T> b) { return {hw::Add(a.re, b.re), hw::Add(a.im, b.im)}; }
template <class T> VSP_FFT_INLINE CV<T> CSub(CV<T> a, CV<T> b) { return {hw::Sub(a.re, b.re), hw::Sub(a.im, b.im)}; }
// a * w (kConj: a * conj w), each product rounded, then one addition.
template <bool kConj, class T> VSP_FFT_INLINE CV<T> CMul(CV<T> a, hw::Vec<T> wr, hw::Vec<T> wi) {
  if constexpr (kConj) return {hw::Add(hw::Mul(a.re, wr), hw::Mul(a.im, wi)), hw::Sub(hw::Mul(a.im, wr), hw::Mul(a.re, wi))};
  else return {hw::Sub(hw::Mul(a.re, wr), hw::Mul(a.im, wi)), hw::Add(hw::Mul(a.re, wi), hw::Mul(a.im, wr))};
}
// a * (-i) forward, a * i inverse.
template <bool kInv, class T> VSP_FFT_INLINE CV<T> CRot(CV<T> a) {
  if constexpr (kInv) return {hw::Neg(a.im), a.re};
  else return {a.im, hw::Neg(a.re)};
}
template <bool kInv, class T>
VSP_FFT_INLINE void BlockBfly4(CV<T> a, CV<T> b, CV<T> c, CV<T> d, CV<T>& y0, CV<T>& y1, CV<T>& y2, CV<T>& y3) {
  const CV<T> t0 = CAdd(a, c), t1 = CSub(a, c), t2 = CAdd(b, d), u = CSub(b, d);
  y0 = CAdd(t0, t2);
  y2 = CSub(t0, t2);
  // t1 + rot(u) and t1 - rot(u), the quarter-turn folded into the additions.
  if constexpr (kInv) {
    y1 = {hw::Sub(t1.re, u.im), hw::Add(t1.im, u.re)};
    y3 = {hw::Add(t1.re, u.im), hw::Sub(t1.im, u.re)};
  } else {
    y1 = {hw::Add(t1.re, u.im), hw::Sub(t1.im, u.re)};
    y3 = {hw::Sub(t1.re, u.im), hw::Add(t1.im, u.re)};
  }
}
// The R-point DFT of the twiddled passes, which are radix 4 (see PassLog).
template <bool kInv, int kR, class T> VSP_FFT_INLINE void BlockDft(CV<T>* v) {
  static_assert(kR == 4);
  BlockBfly4<kInv>(v[0], v[1], v[2], v[3], v[0], v[1], v[2], v[3]);
}
template <class T> VSP_FFT_INLINE CV<T> LoadBlock(const T* p) { return {hw::LoadU(p), hw::LoadU(p + hw::kLanes<T>)}; }
template <class T> VSP_FFT_INLINE void StoreBlock(CV<T> v, T* p) {
  hw::StoreU(v.re, p);
  hw::StoreU(v.im, p + hw::kLanes<T>);
}
// kLanes interleaved values at p as a block. Doubles take the two parts from overlapping loads
// merged with a half load, which uses no shuffle unit.
template <class T> VSP_FFT_INLINE CV<T> LoadInterleaved(const T* p) {
  if constexpr (hw::kPairs<T> == 1) {
    return {hw::InsertLow(hw::LoadU(p + 1), p), hw::InsertLow(hw::LoadU(p + 2), p + 1)};
  } else {
    const hw::Vec<T> a = hw::LoadU(p), b = hw::LoadU(p + hw::kLanes<T>);
    return {hw::RealParts(a, b), hw::ImagParts(a, b)};
  }
}
template <class T> VSP_FFT_INLINE void StoreInterleaved(CV<T> v, T* p) {
  hw::StoreU(hw::InterleaveLo(v.re, v.im), p);
  hw::StoreU(hw::InterleaveHi(v.re, v.im), p + hw::kLanes<T>);
}

// The first pass (stride 1) from interleaved input to blocks, over L groups p at a time. Its
// twiddles are stored in blocks too: for each k, L real parts then L imaginary parts per p-block.
// ---- single-level passes -----------------------------------------------------------------------
//
// A transform of N = 2^order points (order >= 4) runs as passes of radix R = 4 or 8 in the
// self-sorting decimation-in-time order: after the passes with radices R_1 .. R_t, whose product
// is L, position b L + k (k < L) holds the L-point DFT of the decimated sequence x[b + m N / L].
// The pass from length Ls to L = R Ls reads positions i + j N/R (i = b Ls + k, j < R), multiplies
// input j by W_L^(jk), and writes the R-point DFT to positions b L + k + r Ls (r < R).
//
// Between the passes the data is held in blocks of kLanes complex values, the real parts then the
// imaginary parts, so that complex products and quarter-turns need no shuffles and the twiddles of
// a pass are loaded per lane, never broadcast. The first pass (Ls = 1, no twiddles) reads the
// interleaved input and transposes its outputs into blocks; the last one (L = N) writes the
// interleaved output, in place when its source is the destination. For complex floats of an
// even order the first pass and the one after it run fused (FirstPass16Body).

// log2 of the radix of pass i of a transform of order k >= 4, 0 past the last pass: one radix-8
// pass first for an odd order (it has no twiddles), radix-4 passes after it. A radix-4 pass on
// blocks keeps its 4 inputs, their twiddles and the butterfly in the 16 vector registers, where a
// radix-8 pass spills; and its 4 + 4 streams of a power-of-two stride stay in the cache sets that
// 8 + 8 streams overrun once the data leaves the first-level cache.
constexpr int PassLog(int k, int i) {
  const int lead = k % 2;
  return i >= lead + (k - 3 * lead) / 2 ? 0 : i < lead ? 3 : 2;
}
constexpr int PassCount(int k) {
  int c = 0;
  while (PassLog(k, c)) ++c;
  return c;
}
// Complex values of the twiddle table of a transform of order k >= 4: (R - 1) Ls for every pass
// after the first, N - R_1 in all.
constexpr long long StockhamTwiddles(int order) { return (1LL << order) - (1LL << PassLog(order, 0)); }

// Fills the table: for each pass after the first, for each block of kLanes values of k, for
// j = 1 .. R-1, the block of W_L^(jk).
template <class T> constexpr void ownsFFTFillStockham(T* dst, int order, SineSource<T> src) {
  constexpr int kL = hw::kLanes<T>;
  long long ls = 1LL << PassLog(order, 0);
  for (int i = 1; i < PassCount(order); ls <<= PassLog(order, i), ++i) {
    const long long radix = 1LL << PassLog(order, i), len = radix * ls;
    for (long long kb = 0; kb < ls; kb += kL)
      for (long long j = 1; j < radix; ++j, dst += 2 * kL)
        for (int l = 0; l < kL; ++l) src.Twiddle(j * (kb + l), len, dst[l], dst[kL + l]);
  }
}

// Four vectors of two complex floats each, w[r] = (z_r, z'_r), as the blocks (z_0..z_3) and
// (z'_0..z'_3): a 4 x 4 transposition.
template <class T> VSP_FFT_INLINE void PairsToBlocks(const hw::Vec<T>* w, CV<T>& lo, CV<T>& hi) {
  const hw::Vec<T> lo01 = hw::PairsLo(w[0], w[1]), lo23 = hw::PairsLo(w[2], w[3]);
  const hw::Vec<T> hi01 = hw::PairsHi(w[0], w[1]), hi23 = hw::PairsHi(w[2], w[3]);
  lo = {hw::RealParts(lo01, lo23), hw::ImagParts(lo01, lo23)};
  hi = {hw::RealParts(hi01, hi23), hw::ImagParts(hi01, hi23)};
}

// The first pass: inputs x[i + j N/R] (interleaved; j < R/2 in the low half), outputs, in blocks,
// at positions R i + r. The DFT runs on the interleaved values (kPairs consecutive i per vector),
// and one transposition of each kLanes outputs of an i makes a block; no deinterleave is needed.
template <class T, bool kInv, int kR>
VSP_FFT_INLINE void FirstPassBody(Halves<T> x, Halves<T> y, long long n) {
  constexpr int kL = hw::kLanes<T>, kP = hw::kPairs<T>, kH = kR / 2;
  const long long m = n / kR;
  // kP lanes (kR kP outputs) at a time: at i + kP p and, when the loop covers both halves of the
  // output (m / 2 >= kLanes), at the same place of the high half.
  auto group = [&](long long i, int p, T* yb) {
    hw::Vec<T> v[kR];
    for (int j = 0; j < kH; ++j)
      v[j] = hw::LoadU(x.lo + 2 * (i + kP * p + j * m)), v[j + kH] = hw::LoadU(x.hi + 2 * (i + kP * p + j * m));
    if constexpr (kR == 4) Bfly4<kInv>(v[0], v[1], v[2], v[3], v[0], v[1], v[2], v[3]);
    else Bfly8<kInv, T>(v);
    for (int c = 0; c < kR / kL; ++c) {
      const hw::Vec<T>* w = v + kL * c;
      T* d = yb + 2 * kL * c;
      if constexpr (kP == 2) {
        CV<T> lo, hi;
        PairsToBlocks(w, lo, hi);
        StoreBlock(lo, d);
        StoreBlock(hi, d + 2 * kR);
      } else {
        StoreBlock(CV<T>{hw::InterleaveLo(w[0], w[1]), hw::InterleaveHi(w[0], w[1])}, d);
      }
    }
  };
  if (m < 2 * kL) {  // one block of lanes
    for (int p = 0; p < kL / kP; ++p) {
      const long long pos = kR * kP * p;
      group(0, p, pos < n / 2 ? y.lo + 2 * pos : y.hi + 2 * (pos - n / 2));
    }
    return;
  }
  for (int half = 0; half < 2; ++half) {
    T* yb = half ? y.hi : y.lo;
    for (long long i = half * m / 2; i < (half + 1) * m / 2; i += kL, yb += 2 * kR * kL)
      for (int p = 0; p < kL / kP; ++p) group(i, p, yb + 2 * kR * kP * p);
  }
}

// The first two radix-4 passes of an even order fused (Ls = 1 to L = 16), for four complex
// values per block: for each pair of b (lanes b, b + 1 of the interleaved vectors), the first
// pass of the four i = b + j N/16 as FirstPassBody computes it, whose transposed outputs are
// the blocks (lanes k = r) that the second pass would read back; their twiddles W_16^(jk) (tw,
// the table of the second pass) and 4-point DFTs follow in registers, written to positions
// 16 b + k + 4 r. The same operations as the two passes in turn, so the same bits.
template <class T, bool kInv>
VSP_FFT_INLINE void FirstPass16Body(Halves<T> x, Halves<T> y, long long n, const T* tw) {
  static_assert(hw::kPairs<T> == 2 && hw::kLanes<T> == 4);
  constexpr int kL = hw::kLanes<T>;
  const long long m = n / 4, q = n / 16;
  for (int half = 0; half < 2; ++half) {
    T* yb = half ? y.hi : y.lo;
    for (long long b = half * q / 2; b < (half + 1) * q / 2; b += 2, yb += 2 * 32) {
      CV<T> a[4], c[4];  // the blocks of b and of b + 1, for j = 0..3
      for (int j = 0; j < 4; ++j) {
        const long long i = b + j * q;
        hw::Vec<T> v0 = hw::LoadU(x.lo + 2 * i), v1 = hw::LoadU(x.lo + 2 * (i + m));
        hw::Vec<T> v2 = hw::LoadU(x.hi + 2 * i), v3 = hw::LoadU(x.hi + 2 * (i + m));
        Bfly4<kInv>(v0, v1, v2, v3, v0, v1, v2, v3);
        const hw::Vec<T> w[4] = {v0, v1, v2, v3};
        PairsToBlocks(w, a[j], c[j]);
      }
      for (int p = 0; p < 2; ++p) {
        CV<T>* u = p ? c : a;
        for (int j = 1; j < 4; ++j) u[j] = CMul<kInv>(u[j], hw::Load(tw + 2 * kL * (j - 1)), hw::Load(tw + 2 * kL * (j - 1) + kL));
        BlockBfly4<kInv>(u[0], u[1], u[2], u[3], u[0], u[1], u[2], u[3]);
        for (int r = 0; r < 4; ++r) StoreBlock(u[r], yb + 2 * (16 * p + 4 * r));
      }
    }
  }
}

// Inputs of a twiddled pass: block j of R at xl + j is (j < R/2) or xh + (j - R/2) is, each
// multiplied by its twiddle block (tw: R - 1 blocks of re, im).
template <class T, bool kInv, int kR>
VSP_FFT_INLINE void LoadTwiddled(CV<T>* v, const T* xl, const T* xh, long long is, const T* tw) {
  constexpr int kL = hw::kLanes<T>, kH = kR / 2;
  v[0] = LoadBlock(xl);
  v[0] = {hw::Pin(v[0].re), hw::Pin(v[0].im)};
  for (int j = 1; j < kR; ++j) {
    CV<T> a = LoadBlock(j < kH ? xl + j * is : xh + (j - kH) * is);
    a = {hw::Pin(a.re), hw::Pin(a.im)};
    v[j] = CMul<kInv>(a, hw::Load(tw + 2 * kL * (j - 1)), hw::Load(tw + 2 * kL * (j - 1) + kL));
  }
}

// A middle pass from length ls to R ls: blocks to blocks. kLs, when not 0, is ls as a constant,
// so that the few steps over k of a short ls unroll.
template <class T, bool kInv, int kR, long long kLs = 0>
VSP_FFT_INLINE void MidPassBody(Halves<T> x, Halves<T> y, long long n, long long lsRun, const T* tw) {
  constexpr int kL = hw::kLanes<T>;
  const long long ls = kLs ? kLs : lsRun;
  const long long is = 2 * (n / kR), len = kR * ls, mh = n / 2;
  for (long long b = 0; b < n / len; ++b) {
    T* yb = b * len < mh ? y.lo + 2 * b * len : y.hi + 2 * (b * len - mh);
    const T* xl = x.lo + 2 * b * ls;
    const T* xh = x.hi + 2 * b * ls;
    const T* t = tw;
    for (long long k = 0; k < ls; k += kL, xl += 2 * kL, xh += 2 * kL, yb += 2 * kL, t += 2 * kL * (kR - 1)) {
      CV<T> v[kR];
      LoadTwiddled<T, kInv, kR>(v, xl, xh, is, t);
      BlockDft<kInv, kR, T>(v);
      for (int r = 0; r < kR; ++r) StoreBlock(v[r], yb + 2 * r * ls);
    }
  }
}

// The last pass (L = N): blocks at k + j N/R to interleaved values at the same positions, each
// multiplied by `scale` when `scaled`; x may be y.
template <class T, bool kInv, int kR>
VSP_FFT_INLINE void LastPassBody(Halves<T> x, Halves<T> y, long long n, const T* tw, bool scaled, T scale) {
  constexpr int kL = hw::kLanes<T>, kH = kR / 2;
  const long long s = n / kR, is = 2 * s;
  const hw::Vec<T> sc = hw::Set1<T>(scale);
  for (long long k = 0; k < s; k += kL, tw += 2 * kL * (kR - 1)) {
    CV<T> v[kR];
    LoadTwiddled<T, kInv, kR>(v, x.lo + 2 * k, x.hi + 2 * k, is, tw);
    BlockDft<kInv, kR, T>(v);
    for (int r = 0; r < kR; ++r) {
      if (scaled) v[r] = {hw::Mul(v[r].re, sc), hw::Mul(v[r].im, sc)};
      StoreInterleaved(v[r], (r < kH ? y.lo : y.hi) + 2 * (k + (r % kH) * s));
    }
  }
}

// Each pass out of line (one tight loop per function), or inlined where the order is a constant.
template <class T, bool kInv, int kR> VSP_FFT_NOINLINE void FirstPass(Halves<T> x, Halves<T> y, long long n) {
  FirstPassBody<T, kInv, kR>(x, y, n);
}
template <class T, bool kInv> VSP_FFT_NOINLINE void FirstPass16(Halves<T> x, Halves<T> y, long long n, const T* tw) {
  FirstPass16Body<T, kInv>(x, y, n, tw);
}
template <class T, bool kInv, int kR, long long kLs>
VSP_FFT_NOINLINE void MidPass(Halves<T> x, Halves<T> y, long long n, long long ls, const T* tw) {
  MidPassBody<T, kInv, kR, kLs>(x, y, n, ls, tw);
}
template <class T, bool kInv, int kR>
VSP_FFT_NOINLINE void LastPass(Halves<T> x, Halves<T> y, long long n, const T* tw, bool scaled, T scale) {
  LastPassBody<T, kInv, kR>(x, y, n, tw, scaled, scale);
}
template <class T, bool kInv, bool kInl> struct PassSet {
  template <int kR> VSP_FFT_INLINE static void First(Halves<T> x, Halves<T> y, long long n) {
    if constexpr (kInl) FirstPassBody<T, kInv, kR>(x, y, n);
    else FirstPass<T, kInv, kR>(x, y, n);
  }
  VSP_FFT_INLINE static void First16(Halves<T> x, Halves<T> y, long long n, const T* tw) {
    if constexpr (kInl) FirstPass16Body<T, kInv>(x, y, n, tw);
    else FirstPass16<T, kInv>(x, y, n, tw);
  }
  template <int kR, long long kLs = 0>
  VSP_FFT_INLINE static void Mid(Halves<T> x, Halves<T> y, long long n, long long ls, const T* tw) {
    if constexpr (kInl) MidPassBody<T, kInv, kR, kLs>(x, y, n, ls, tw);
    else MidPass<T, kInv, kR, kLs>(x, y, n, ls, tw);
  }
  template <int kR>
  VSP_FFT_INLINE static void Last(Halves<T> x, Halves<T> y, long long n, const T* tw, bool scaled, T scale) {
    if constexpr (kInl) LastPassBody<T, kInv, kR>(x, y, n, tw, scaled, scale);
    else LastPass<T, kInv, kR>(x, y, n, tw, scaled, scale);
  }
};

// The whole transform of 2^order points (order >= 4) from `in` to `out` with `tmp` of N complex
// values (in may be out or tmp; tmp must differ from out).
template <class T, bool kInv, bool kInl>
VSP_FFT_INLINE void StockhamPasses(int order, const T* tw, Halves<T> in, Halves<T> out, Halves<T> tmp, bool scaled, T scale) {
  using P = PassSet<T, kInv, kInl>;
  const long long n = 1LL << order;
  const int count = PassCount(order);
  // The first pass writes tmp, or out when the input is in tmp; the last pass writes out, in
  // place when the pass before it wrote there.
  Halves<T> cur = in.lo == tmp.lo ? out : tmp, next = in.lo == tmp.lo ? tmp : out;
  long long ls = 1LL << PassLog(order, 0);
  int i = 1;
  if (PassLog(order, 0) == 3) {
    P::template First<8>(in, cur, n);
  } else if (hw::kPairs<T> == 2 && count > 2) {
    // Radix 4 then a middle pass: both at once, radix 16.
    if constexpr (hw::kPairs<T> == 2) P::First16(in, cur, n, tw);
    tw += 2 * 3 * ls;
    ls *= 4, ++i;
  } else {
    P::template First<4>(in, cur, n);
  }
  for (; i + 1 < count; ++i, ls *= 4) {
    if (ls == 8) P::template Mid<4, 8>(cur, next, n, ls, tw);
    else if (ls == 16) P::template Mid<4, 16>(cur, next, n, ls, tw);
    else if (ls == 32) P::template Mid<4, 32>(cur, next, n, ls, tw);
    else P::template Mid<4>(cur, next, n, ls, tw);
    tw += 2 * 3 * ls;
    const Halves<T> t = cur;
    cur = next;
    next = t;
  }
  P::template Last<4>(cur, out, n, tw, scaled, scale);
}

template <class T, bool kInv>
void ownsFFTStockham(int order, const T* tw, Halves<T> in, Halves<T> out, Halves<T> tmp, bool scaled, T scale) {
  StockhamPasses<T, kInv, false>(order, tw, in, out, tmp, scaled, scale);
}

// Stockham twiddles of the direct kernels (orders 4 and 5), from the fixed table.
template <class T, int kOrder> struct SmallTwiddles {
  T v[2 * StockhamTwiddles(kOrder)];
  constexpr SmallTwiddles() : v() {
    ownsFFTFillStockham(v, kOrder, SineSource<T>{FixedTable<T>(), kFixedOrder});
  }
};
template <class T> inline constexpr SmallTwiddles<T, 4> kSmallTw4{};
template <class T> inline constexpr SmallTwiddles<T, 5> kSmallTw5{};

// Transforms with the order fixed at compile time, so that every pass is unrolled: the direct
// kernels of 1 .. 32 points (constant twiddles, a stack buffer) and the small tabled orders.
template <class T, bool kInv, int kOrder>
void StockhamN(const T* tw, Halves<T> in, Halves<T> out, Halves<T> tmp, bool scaled, T scale) {
  StockhamPasses<T, kInv, true>(kOrder, tw, in, out, tmp, scaled, scale);
}
// W_32^m for m = 0..21, as (re, im) pairs: the twiddles of the 16- and 32-point kernels below.
template <class T> struct W32Powers {
  T v[2 * 22];
  constexpr W32Powers() : v() {
    for (int m = 0; m < 22; ++m) SineSource<T>{FixedTable<T>(), kFixedOrder}.Twiddle(m, 32, v[2 * m], v[2 * m + 1]);
  }
};
template <class T> inline constexpr W32Powers<T> kW32{};
// a * W_16^m (kInv: a * conj W_16^m) on interleaved values.
template <bool kInv, int kM, class T> VSP_FFT_INLINE hw::Vec<T> MulW16(hw::Vec<T> a) {
  return hw::MulTwiddle<kInv>(a, hw::Load1(kW32<T>.v + 2 * (2 * kM)));
}
// 16 points as 4 x 4: 4-point DFTs of x[j + 4m] over m, the twiddles W_16^(j r), and 4-point
// DFTs across j; X[r + 4s] lands in v[4r + s]. W_16^2 and W_16^6 multiply as the eighth turns
// of Bfly8, W_16^4 as a quarter-turn.
template <bool kInv, class T> VSP_FFT_INLINE void Bfly16(hw::Vec<T>* v) {
  const hw::Vec<T> h = hw::Set1<T>(static_cast<T>(0.70710678118654752440L));
  for (int j = 0; j < 4; ++j) Bfly4<kInv>(v[j], v[j + 4], v[j + 8], v[j + 12], v[j], v[j + 4], v[j + 8], v[j + 12]);
  auto w2 = [&](hw::Vec<T> a) { return hw::Mul(hw::Add(a, hw::MulRot<kInv>(a)), h); };
  v[5] = MulW16<kInv, 1>(v[5]);
  v[9] = w2(v[9]);
  v[13] = MulW16<kInv, 3>(v[13]);
  v[6] = w2(v[6]);
  v[10] = hw::MulRot<kInv>(v[10]);
  v[14] = hw::MulRot<kInv>(w2(v[14]));
  v[7] = MulW16<kInv, 3>(v[7]);
  v[11] = hw::MulRot<kInv>(w2(v[11]));
  v[15] = MulW16<kInv, 9>(v[15]);
  for (int r = 0; r < 4; ++r) {
    hw::Vec<T>* u = v + 4 * r;
    Bfly4<kInv>(u[0], u[1], u[2], u[3], u[0], u[1], u[2], u[3]);
  }
}
// 2, 4, 8 and 16 points in registers, one complex value per vector.
template <class T, bool kInv, int kOrder>
void TinyN(Halves<T> in, Halves<T> out, bool scaled, T scale) {
  constexpr int kN = 1 << kOrder, kH = kN / 2;
  hw::Vec<T> v[kN];
  for (int j = 0; j < kN; ++j) v[j] = hw::Load1(j < kH ? in.lo + 2 * j : in.hi + 2 * (j - kH));
  if constexpr (kN == 16) {
    // X[r + 4s] is in u[4r + s]; v takes the outputs in their natural order.
    hw::Vec<T> u[kN];
    for (int j = 0; j < kN; ++j) u[j] = v[j];
    Bfly16<kInv, T>(u);
    for (int k = 0; k < kN; ++k) v[k] = u[4 * (k % 4) + k / 4];
  } else if constexpr (kN == 2) {
    const hw::Vec<T> a = v[0];
    v[0] = hw::Add(a, v[1]);
    v[1] = hw::Sub(a, v[1]);
  } else if constexpr (kN == 4) {
    Bfly4<kInv>(v[0], v[1], v[2], v[3], v[0], v[1], v[2], v[3]);
  } else {
    Bfly8<kInv, T>(v);
  }
  const hw::Vec<T> sc = hw::Set1<T>(scale);
  for (int j = 0; j < kN; ++j) hw::Store1(scaled ? hw::Mul(v[j], sc) : v[j], j < kH ? out.lo + 2 * j : out.hi + 2 * (j - kH));
}
// 32 points, one complex value per vector, as the two self-sorting passes 8 x 4 through a stack
// buffer, both on interleaved values: with only two passes the conversions to blocks and back
// would cost more shuffles than the complex products of the second pass.
template <class T, bool kInv>
void Interleaved32(Halves<T> in, Halves<T> out, bool scaled, T scale) {
  alignas(hw::kVecBytes) T buf[64];
  for (int i = 0; i < 4; ++i) {
    hw::Vec<T> v[8];
    for (int j = 0; j < 8; ++j) v[j] = hw::Load1(in.At(i + 4 * j, 32));
    Bfly8<kInv, T>(v);
    for (int r = 0; r < 8; ++r) hw::Store1(v[r], buf + 2 * (8 * i + r));
  }
  const hw::Vec<T> sc = hw::Set1<T>(scale);
  for (int k = 0; k < 8; ++k) {
    hw::Vec<T> v[4];
    v[0] = hw::Load1(buf + 2 * k);
    for (int j = 1; j < 4; ++j)
      v[j] = hw::MulTwiddle<kInv>(hw::Load1(buf + 2 * (k + 8 * j)), hw::Load1(kW32<T>.v + 2 * (j * k)));
    Bfly4<kInv>(v[0], v[1], v[2], v[3], v[0], v[1], v[2], v[3]);
    for (int r = 0; r < 4; ++r) hw::Store1(scaled ? hw::Mul(v[r], sc) : v[r], out.At(k + 8 * r, 32));
  }
}
template <class T, bool kInv, int kOrder>
void DirectN(Halves<T> in, Halves<T> out, bool scaled, T scale) {
  alignas(hw::kVecBytes) T buf[2 << kOrder];
  const T* tw = kOrder == 4 ? kSmallTw4<T>.v : kSmallTw5<T>.v;
  StockhamPasses<T, kInv, true>(kOrder, tw, in, out, Whole(buf, 1LL << kOrder), scaled, scale);
}
template <class T, bool kInv>
void ownsFFTDirect(int order, Halves<T> in, Halves<T> out, bool scaled, T scale) {
  switch (order) {
    case 0: {
      const T re = in.lo[0], im = in.lo[1];
      out.lo[0] = scaled ? re * scale : re;
      out.lo[1] = scaled ? im * scale : im;
      return;
    }
    case 1: return TinyN<T, kInv, 1>(in, out, scaled, scale);
    case 2: return TinyN<T, kInv, 2>(in, out, scaled, scale);
    case 3: return TinyN<T, kInv, 3>(in, out, scaled, scale);
    case 4:
      // One complex double per vector: in registers, without the block transposes.
      if constexpr (hw::kPairs<T> == 1) return TinyN<T, kInv, 4>(in, out, scaled, scale);
      else return DirectN<T, kInv, 4>(in, out, scaled, scale);
    default:
      if constexpr (hw::kPairs<T> == 1) return Interleaved32<T, kInv>(in, out, scaled, scale);
      else return DirectN<T, kInv, 5>(in, out, scaled, scale);
  }
}
// A single-level transform with the spec's twiddles; orders 6 and 7 unrolled.
template <class T, bool kInv>
void ownsFFTSingle(int order, const T* tw, Halves<T> in, Halves<T> out, Halves<T> tmp, bool scaled, T scale) {
  switch (order) {
    case 6: return StockhamN<T, kInv, 6>(tw, in, out, tmp, scaled, scale);
    case 7: return StockhamN<T, kInv, 7>(tw, in, out, tmp, scaled, scale);
    default: return ownsFFTStockham<T, kInv>(order, tw, in, out, tmp, scaled, scale);
  }
}

// ---- bit reversal ----------------------------------------------------------------------------

// Reversal of the middle index of the 8 x 8-blocked permutation of order k >= 6: the middle
// m has k - 6 bits, split into lo (the low m / 2 bits) and hi; the table holds rev(lo) for
// every lo, then rev(hi) for every hi.
struct RevTable {
  const uint32_t* t;
  int loBits, hiBits;
  RevTable(const uint32_t* table, int order) : t(table), loBits((order - 6) / 2), hiBits(order - 6 - (order - 6) / 2) {}
  uint32_t Rev(uint32_t m) const {
    return (t[m & ((1u << loBits) - 1)] << hiBits) | t[(1u << loBits) + (m >> loBits)];
  }
};
constexpr long long RevTableWords(int order) { return (1LL << ((order - 6) / 2)) + (1LL << (order - 6 - (order - 6) / 2)); }
inline void ownsFFTFillRev(uint32_t* t, int order) {
  auto rev = [](uint32_t v, int bits) {
    uint32_t r = 0;
    for (int i = 0; i < bits; ++i) r |= ((v >> i) & 1u) << (bits - 1 - i);
    return r;
  };
  const int lo = (order - 6) / 2, hi = order - 6 - lo;
  for (uint32_t v = 0; v < (1u << lo); ++v) t[v] = rev(v, lo);
  for (uint32_t v = 0; v < (1u << hi); ++v) t[(1u << lo) + v] = rev(v, hi);
}

inline constexpr int kRev3[8] = {0, 4, 2, 6, 1, 5, 3, 7};

// y[rev(n)] = x[n] for the 2^order points, order >= 6; x == y permutes in place.
template <class T>
void ownsFFTBitRev(Halves<T> x, Halves<T> y, int order, RevTable rt) {
  const long long eighth = 1LL << (order - 3), blocks = 1LL << (order - 6);
  const bool inPlace = x.lo == y.lo;
  alignas(hw::kVecBytes) T a[128], b[128];
  auto load = [&](T* buf, long long m) {
    for (int r = 0; r < 8; ++r) std::memcpy(buf + 16 * r, x.At(r * eighth + 8 * m, 8 * eighth), 16 * sizeof(T));
  };
  // Element (r, c) of a block goes to row rev3(c), column rev3(r) of the partner block.
  auto store = [&](const T* buf, long long m) {
    for (int r = 0; r < 8; ++r) {
      T* d = y.At(r * eighth + 8 * m, 8 * eighth);
      for (int c = 0; c < 8; ++c) hw::Store1(hw::Load1(buf + 16 * kRev3[c] + 2 * kRev3[r]), d + 2 * c);
    }
  };
  for (long long m = 0; m < blocks; ++m) {
    const long long mr = rt.Rev(static_cast<uint32_t>(m));
    if (inPlace && mr < m) continue;
    load(a, m);
    if (inPlace && mr != m) load(b, mr), store(b, m);
    store(a, mr);
  }
}

// ---- large transforms --------------------------------------------------------------------------

// One level of the blocked plan: 2^order points as 2^b rows of 2^(order - b).
struct Level {
  int32_t order, block;
  int32_t offA, offB, offSmall, offRowRev;  // byte offsets from the spec block
};
// Factor tables of a level: A[n1l - 1][k2] = W_N^(n1l k2) for 1 <= n1l < 2^bl, B[n1h - 1][k2] =
// W_N^(2^bl n1h k2) for 1 <= n1h < 2^bh, so that W_N^(n1 k2) = A[n1l] B[n1h]; small[j] =
// W_(2^b)^j for j < 2^(b-1).
constexpr int LoBits(int block) { return block / 2; }
// Complex values from one row of A or B to the next: a cache line more than the row, so that the
// rows read together for a batch of columns lie in different sets of the first-level cache (rows
// of a power-of-two length would all fall in the same few sets, beside the rows of the data).
template <class T> constexpr long long FactorRowStride(long long n2) { return n2 + 64 / (2 * static_cast<long long>(sizeof(T))); }

template <class T> struct LargePlan {
  const unsigned char* base;  // the spec block
  const Level* levels;
  int count;
  const T* rowTw;  // Stockham twiddles of the innermost rows
};

// Two radix-2 steps across rows at distances h and 2h (rows x0..x3 at 0, h, 2h, 3h): the
// first with twiddle wa = W_2h^j, the second with wb = W_4h^j (and -i wb), in place, on
// blocks with the twiddles broadcast.
template <bool kInv, class T>
VSP_FFT_INLINE void Bfly22(CV<T>& x0, CV<T>& x1, CV<T>& x2, CV<T>& x3, const T* wa, const T* wb) {
  const hw::Vec<T> ar = hw::Set1<T>(wa[0]), ai = hw::Set1<T>(wa[1]), br = hw::Set1<T>(wb[0]), bi = hw::Set1<T>(wb[1]);
  x1 = CMul<kInv>(x1, ar, ai);
  x3 = CMul<kInv>(x3, ar, ai);
  const CV<T> a0 = CAdd(x0, x1), a1 = CSub(x0, x1);
  const CV<T> a2 = CMul<kInv>(CAdd(x2, x3), br, bi), a3 = CRot<kInv>(CMul<kInv>(CSub(x2, x3), br, bi));
  x0 = CAdd(a0, a2), x2 = CSub(a0, a2), x1 = CAdd(a1, a3), x3 = CSub(a1, a3);
}

// The column pass of one level: batches of `cols` columns; row j (holding the decimated
// sequence n1 = rev_b(j)) is multiplied by W_N^(n1 k2) while it is gathered into the work
// buffer as blocks, together with the first radix-2x2 step across the rows (consecutive rows,
// no twiddles); further steps run on the blocks in the work buffer, and the last one writes the
// rows back, interleaved and in natural order, scaled when asked. The block order b is even;
// the factor tables A and B hold their rows in blocks.
template <class T, bool kInv>
void ColumnPasses(const LargePlan<T>& pl, const Level& lv, Halves<T> d, T* work, long long workPairs, bool scaled,
                  T scale) {
  constexpr int kL = hw::kLanes<T>;
  const int b = lv.block, r = lv.order - b, bl = LoBits(b);
  const long long n1 = 1LL << b, n2 = 1LL << r;
  const T* tabA = reinterpret_cast<const T*>(pl.base + lv.offA);
  const T* tabB = reinterpret_cast<const T*>(pl.base + lv.offB);
  const T* small = reinterpret_cast<const T*>(pl.base + lv.offSmall);
  long long cols = workPairs / n1;
  const long long cap = (256 * 1024 / (2 * sizeof(T))) / n1;
  if (cols > cap) cols = cap;
  if (cols > n2) cols = n2;
  const hw::Vec<T> sc = hw::Set1<T>(scale);
  for (long long c0 = 0; c0 < n2; c0 += cols) {
    for (long long g = 0; g < n1; g += 4) {
      const T* src[4];
      const T* fa[4];
      const T* fb[4];
      for (int i = 0; i < 4; ++i) {
        long long v = 0;
        for (int bit = 0; bit < b; ++bit) v |= ((g + i) >> bit & 1) << (b - 1 - bit);
        const long long lo = v & ((1LL << bl) - 1), hi = v >> bl;
        src[i] = d.At((g + i) * n2 + c0, n1 * n2);
        fa[i] = lo ? tabA + 2 * ((lo - 1) * FactorRowStride<T>(n2) + c0) : nullptr;
        fb[i] = hi ? tabB + 2 * ((hi - 1) * FactorRowStride<T>(n2) + c0) : nullptr;
      }
      T* w0 = work + 2 * g * cols;
      for (long long t = 0; t < cols; t += kL) {
        CV<T> x[4];
        for (int i = 0; i < 4; ++i) {
          x[i] = LoadInterleaved(src[i] + 2 * t);
          if (fa[i]) x[i] = CMul<kInv>(x[i], hw::LoadU(fa[i] + 2 * t), hw::LoadU(fa[i] + 2 * t + kL));
          if (fb[i]) x[i] = CMul<kInv>(x[i], hw::LoadU(fb[i] + 2 * t), hw::LoadU(fb[i] + 2 * t + kL));
        }
        // Rows in bit-reversed order: the 4-point DFT of (x0, x2, x1, x3).
        BlockBfly4<kInv>(x[0], x[2], x[1], x[3], x[0], x[1], x[2], x[3]);
        for (int i = 0; i < 4; ++i) StoreBlock(x[i], w0 + 2 * (i * cols + t));
      }
    }
    for (long long h = 4; h < n1; h *= 4) {
      const bool last = 4 * h == n1;
      for (long long jj = 0; jj < h; ++jj) {
        const T* wa = small + 2 * (jj * (n1 / (2 * h)));
        const T* wb = small + 2 * (jj * (n1 / (4 * h)));
        for (long long g = 0; g < n1; g += 4 * h) {
          T* in[4];
          T* out[4];
          for (int i = 0; i < 4; ++i) {
            in[i] = work + 2 * (g + jj + i * h) * cols;
            out[i] = last ? d.At((g + jj + i * h) * n2 + c0, n1 * n2) : in[i];
          }
          for (long long t = 0; t < cols; t += kL) {
            CV<T> x[4];
            for (int i = 0; i < 4; ++i) x[i] = LoadBlock(in[i] + 2 * t);
            Bfly22<kInv>(x[0], x[1], x[2], x[3], wa, wb);
            for (int i = 0; i < 4; ++i) {
              if (!last) {
                StoreBlock(x[i], out[i] + 2 * t);
                continue;
              }
              if (scaled) x[i] = {hw::Mul(x[i].re, sc), hw::Mul(x[i].im, sc)};
              StoreInterleaved(x[i], out[i] + 2 * t);
            }
          }
        }
      }
    }
  }
}

// Out-of-place first step of the blocked plan: row rev_b(n1) of y receives x[n1 + 2^b n2] in
// natural order of n2, taking four consecutive n1 at a time: every read is a run of four values
// and only four rows are written at once, in order (more streams of stores run slower); two
// complex floats of consecutive n2 are paired into one vector for each row.
template <class T>
void ownsFFTGatherRows(Halves<T> x, Halves<T> y, int order, int block) {
  constexpr int kRun = 4, kP = hw::kPairs<T>;
  const long long n1 = 1LL << block, n2 = 1LL << (order - block);
  for (long long t = 0; t < n1; t += kRun) {
    T* rows[kRun];
    for (int i = 0; i < kRun; ++i) {
      long long v = 0;
      for (int bit = 0; bit < block; ++bit) v |= ((t + i) >> bit & 1) << (block - 1 - bit);
      rows[i] = y.At(v * n2, n1 * n2);
    }
    for (long long k2 = 0; k2 < n2; k2 += kP) {
      const T* run = x.At(t + n1 * k2, n1 * n2);
      if constexpr (kP == 2) {
        const T* next = x.At(t + n1 * (k2 + 1), n1 * n2);
        for (int i = 0; i < kRun; i += 2) {
          const hw::Vec<T> a = hw::LoadU(run + 2 * i), b = hw::LoadU(next + 2 * i);
          hw::StoreU(hw::PairsLo(a, b), rows[i] + 2 * k2);
          hw::StoreU(hw::PairsHi(a, b), rows[i + 1] + 2 * k2);
        }
      } else {
        for (int i = 0; i < kRun; ++i) hw::StoreU(hw::LoadU(run + 2 * i), rows[i] + 2 * k2);
      }
    }
  }
}

// The transform of level li in place on d, whose rows hold their decimated sequences in
// bit-reversed order (natural false) or in natural order (natural true).
template <class T, bool kInv>
void LargeCore(const LargePlan<T>& pl, int li, Halves<T> d, T* work, long long workPairs, bool scaled, T scale,
               bool natural) {
  const Level& lv = pl.levels[li];
  const int r = lv.order - lv.block;
  const long long n1 = 1LL << lv.block, n2 = 1LL << r;
  const RevTable rt(reinterpret_cast<const uint32_t*>(pl.base + lv.offRowRev), r);
  for (long long j = 0; j < n1; ++j) {
    const Halves<T> row = Whole(d.At(j * n2, n1 * n2), n2);
    if (li + 1 < pl.count) {
      if (natural) ownsFFTBitRev(row, row, r, rt);
      LargeCore<T, kInv>(pl, li + 1, row, work, workPairs, false, T(0), false);
    } else if (natural) {
      ownsFFTStockham<T, kInv>(r, pl.rowTw, row, row, Whole(work, n2), false, T(0));
    } else {
      ownsFFTBitRev(row, Whole(work, n2), r, rt);
      ownsFFTStockham<T, kInv>(r, pl.rowTw, Whole(work, n2), row, Whole(work, n2), false, T(0));
    }
  }
  ColumnPasses<T, kInv>(pl, lv, d, work, workPairs, scaled, scale);
}

// ---- real recombination ----------------------------------------------------------------------

// Twiddles of the recombination of a real transform of N points (M = N/2 complex values):
// forward U_k = -i W_N^k / 2, inverse V_k = i conj(W_N^k), for k < N/4. Held whole (f = 0) or,
// for large N, factored: U_k = U_(k mod f) * W_N^(f (k / f)) (inverse: V_(k mod f) *
// conj W_N^(f (k / f))), f values of the first table followed by N / (4f) of the second.
template <class T> struct RecTable {
  const T* t;
  long long f;
  // The twiddles of k and, for two complex floats per vector, k + 1.
  hw::Vec<T> Get(long long k) const {
    if (f == 0) {
      if constexpr (hw::kPairs<T> == 2) return hw::LoadU(t + 2 * k);
      else return hw::Load1(t + 2 * k);
    }
    const T* second = t + 2 * f;
    if constexpr (hw::kPairs<T> == 2) {
      hw::Vec<T> u = hw::Load2(t + 2 * (k % f), t + 2 * ((k + 1) % f));
      return hw::MulComplex(u, hw::Load2(second + 2 * (k / f), second + 2 * ((k + 1) / f)));
    } else {
      return hw::MulComplex(hw::Load1(t + 2 * (k % f)), hw::Load1(second + 2 * (k / f)));
    }
  }
};

// The pairs (k, M - k), 1 <= k < M/2, of a recombination in place on M complex values: `pair`
// maps the values at k and M - k and the twiddle of k to the new values.
template <class T, class Pair> VSP_FFT_INLINE void RecombinePairs(T* z, long long m, RecTable<T> tw, Pair pair) {
  using V = hw::Vec<T>;
  constexpr int P = hw::kPairs<T>;
  long long k = 1;
  for (; k + P <= m / 2; k += P) {
    V a, b;
    pair(hw::LoadU(z + 2 * k), hw::ReversePairs(hw::LoadU(z + 2 * (m - k - P + 1))), tw.Get(k), a, b);
    hw::StoreU(a, z + 2 * k);
    hw::StoreU(hw::ReversePairs(b), z + 2 * (m - k - P + 1));
  }
  for (; k < m / 2; ++k) {
    V a, b;
    pair(hw::Load1(z + 2 * k), hw::Load1(z + 2 * (m - k)), tw.Get(k), a, b);
    hw::Store1(a, z + 2 * k);
    hw::Store1(b, z + 2 * (m - k));
  }
}

// Fills the first `count` recombination twiddles of an n-point real transform: forward
// U_j = -i W_n^j / 2 = (wi / 2, -wr / 2), inverse V_j = i conj W_n^j = (wi, wr).
template <class T> constexpr void ownsFFTFillRec(T* t, long long count, long long n, bool inv, SineSource<T> src) {
  for (long long j = 0; j < count; ++j) {
    T wr, wi;
    src.Twiddle(j, n, wr, wi);
    t[2 * j] = inv ? wi : wi * T(0.5);
    t[2 * j + 1] = inv ? wr : -wr * T(0.5);
  }
}
// The whole tables of the real orders 2..5, which have no tables in their spec.
template <class T, int kOrder> struct SmallRec {
  static constexpr long long kN = 1LL << kOrder;
  T fwd[kN / 2], inv[kN / 2];
  constexpr SmallRec() : fwd(), inv() {
    ownsFFTFillRec(fwd, kN / 4, kN, false, SineSource<T>{FixedTable<T>(), kFixedOrder});
    ownsFFTFillRec(inv, kN / 4, kN, true, SineSource<T>{FixedTable<T>(), kFixedOrder});
  }
};
template <class T> inline constexpr SmallRec<T, 2> kRec2{};
template <class T> inline constexpr SmallRec<T, 3> kRec3{};
template <class T> inline constexpr SmallRec<T, 4> kRec4{};
template <class T> inline constexpr SmallRec<T, 5> kRec5{};
template <class T> constexpr const T* SmallRecTable(int order, bool inv) {
  switch (order) {
    case 2: return inv ? kRec2<T>.inv : kRec2<T>.fwd;
    case 3: return inv ? kRec3<T>.inv : kRec3<T>.fwd;
    case 4: return inv ? kRec4<T>.inv : kRec4<T>.fwd;
    default: return inv ? kRec5<T>.inv : kRec5<T>.fwd;
  }
}

// Forward recombination in place on the M = N/2 complex results Z of the half-length transform:
// X(k) = A/2 + U_k B, X(M - k) = conj(A/2 - U_k B) with A = Z(k) + conj Z(M - k), B = Z(k) -
// conj Z(M - k); X(M/2) = conj Z(M/2); slot 0 becomes (X(0), X(M)) = (Re Z0 + Im Z0, Re Z0 -
// Im Z0): the Perm layout. Every value is multiplied by `scale` when `scaled`.
template <class T>
void ownsFFTRecombineFwd(T* z, long long m, RecTable<T> tw, bool scaled, T scale) {
  using V = hw::Vec<T>;
  const V half = hw::Set1<T>(T(0.5)), sc = hw::Set1<T>(scale);
  RecombinePairs(z, m, tw, [&](V zk, V zm, V u, V& xk, V& xm) {
    zm = hw::Conj(zm);
    V a = hw::Mul(hw::Add(zk, zm), half), c = hw::MulComplex(hw::Sub(zk, zm), u);
    xk = hw::Add(a, c);
    xm = hw::Conj(hw::Sub(a, c));
    if (scaled) xk = hw::Mul(xk, sc), xm = hw::Mul(xm, sc);
  });
  V mid = hw::Conj(hw::Load1(z + m));
  hw::Store1(scaled ? hw::Mul(mid, sc) : mid, z + m);
  const T re = z[0], im = z[1];
  z[0] = scaled ? (re + im) * scale : re + im;
  z[1] = scaled ? (re - im) * scale : re - im;
}

// Inverse recombination in place on a Perm spectrum (M complex slots) into the values Z' whose
// unscaled inverse transform of M points is N times the real signal seen as M complex values:
// Z'(k) = A + V_k C, Z'(M - k) = conj(A - V_k C), A = X(k) + conj X(M - k), C = X(k) - conj
// X(M - k); Z'(M/2) = 2 conj X(M/2); Z'(0) = (X0 + X(M), X0 - X(M)).
template <class T>
void ownsFFTRecombineInv(T* z, long long m, RecTable<T> tw) {
  using V = hw::Vec<T>;
  RecombinePairs(z, m, tw, [](V xk, V xm, V v, V& zk, V& zm) {
    xm = hw::Conj(xm);
    V a = hw::Add(xk, xm), d = hw::MulComplex(hw::Sub(xk, xm), v);
    zk = hw::Add(a, d);
    zm = hw::Conj(hw::Sub(a, d));
  });
  V mid = hw::Conj(hw::Load1(z + m));
  hw::Store1(hw::Add(mid, mid), z + m);
  const T x0 = z[0], xm = z[1];
  z[0] = x0 + xm;
  z[1] = x0 - xm;
}

}  // namespace vsp::fft
