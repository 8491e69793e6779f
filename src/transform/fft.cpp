// The FFT family: sizes, Init, and the complex and real transforms in both directions.
#include <cmath>
#include <cstring>

#include "core/check.h"
#include "core/impl.h"
#include "transform/fft_spec.h"

namespace vsp::fft {
namespace {

template <class P> P* Align64(P* p) {
  return reinterpret_cast<P*>((reinterpret_cast<uintptr_t>(p) + 63) & ~uintptr_t{63});
}

bool ValidFlag(int flag) { return flag == 1 || flag == 2 || flag == 4 || flag == 8; }

enum class Layout { Pack, Perm, CCS };

// ---- sizes and Init ---------------------------------------------------------------------------

template <class T>
VspStatus GetSize(bool real, int order, int flag, int* pSpecSize, int* pInitSize, int* pWorkSize) {
  if (order < 0 || order > 30) return vspStatFftOrderErr;
  if (AnyNull(pSpecSize, pInitSize, pWorkSize)) return vspStatNullPtr;
  if (!ValidFlag(flag)) return vspStatFftFlagErr;
  if (order > (real ? Prec<T>::kRealMax : Prec<T>::kComplexMax)) return vspStatFftOrderErr;
  const Sizes s = real ? RealSizes<T>(order) : ComplexSizes<T>(order);
  *pSpecSize = static_cast<int>(s.spec);
  *pInitSize = static_cast<int>(s.init);
  *pWorkSize = static_cast<int>(s.work);
  return vspStatOk;
}

// Hands out 64-byte aligned pieces of the spec block behind the header.
// The tables are laid behind the header by the block kit's arena, each at a 64-byte boundary.
using Bump = block::Arena;

// The tables of a complex transform of order c (>= 6) into the spec; returns the work bytes.
template <class T> long long BuildComplex(SpecHeader<T>* h, Bump& bump, int c, SineSource<T> src) {
  using P = Prec<T>;
  uint32_t* rev = bump.TakePtr<uint32_t>(RevTableWords(c));
  ownsFFTFillRev(rev, c);
  h->bitRev = rev;
  if (c <= P::kSingleMax) {
    T* tw = bump.TakePtr<T>(2 * StockhamTwiddles(c));
    ownsFFTFillStockham(tw, c, src);
    h->twiddle = tw;
    return Round64(P::kPair * (1LL << c) + 63);
  }
  for (int kk = c, li = 0;; kk = kk - P::Block(kk), ++li) {
    const int b = P::Block(kk), r = kk - b, bl = LoBits(b), bh = b - bl;
    const long long n = 1LL << kk, n2 = 1LL << r;
    Level& lv = h->level[li];
    lv.order = kk;
    lv.block = b;
    const long long stride = FactorRowStride<T>(n2);
    T* a = bump.TakePtr<T>(2 * ((1LL << bl) - 1) * stride);
    lv.offA = static_cast<int32_t>(reinterpret_cast<unsigned char*>(a) - bump.Base());
    for (long long i = 1; i < (1LL << bl); ++i, a += 2 * stride)
      for (long long k2 = 0; k2 < n2; ++k2) src.Twiddle(i * k2, n, a[BlockRe<T>(k2)], a[BlockRe<T>(k2) + hw::kLanes<T>]);
    T* bt = bump.TakePtr<T>(2 * ((1LL << bh) - 1) * stride);
    lv.offB = static_cast<int32_t>(reinterpret_cast<unsigned char*>(bt) - bump.Base());
    for (long long i = 1; i < (1LL << bh); ++i, bt += 2 * stride)
      for (long long k2 = 0; k2 < n2; ++k2) src.Twiddle((i << bl) * k2, n, bt[BlockRe<T>(k2)], bt[BlockRe<T>(k2) + hw::kLanes<T>]);
    T* sm = bump.TakePtr<T>(1LL << b);
    lv.offSmall = static_cast<int32_t>(reinterpret_cast<unsigned char*>(sm) - bump.Base());
    for (long long j = 0; j < (1LL << (b - 1)); ++j) src.Twiddle(j, 1LL << b, sm[2 * j], sm[2 * j + 1]);
    h->levels = li + 1;
    uint32_t* rr = bump.TakePtr<uint32_t>(RevTableWords(r));
    ownsFFTFillRev(rr, r);
    lv.offRowRev = static_cast<int32_t>(reinterpret_cast<unsigned char*>(rr) - bump.Base());
    if (r <= P::kSingleMax) {
      T* tw = bump.TakePtr<T>(2 * StockhamTwiddles(r));
      ownsFFTFillStockham(tw, r, src);
      h->twiddle = tw;
      break;
    }
  }
  return ComplexTW<T>(c).w;
}

// Recombination tables of a real transform of order k: forward U, then inverse V.
template <class T> void BuildRecombination(SpecHeader<T>* h, Bump& bump, int k, SineSource<T> src) {
  using P = Prec<T>;
  const long long n = 1LL << k, n4 = n / 4;
  const bool factored = k >= P::kRealFactorFrom;
  const long long first = factored ? P::kRecFactor : n4, second = factored ? n4 / P::kRecFactor : 0;
  for (int dir = 0; dir < 2; ++dir) {
    T* t = bump.TakePtr<T>(2 * (first + second));
    (dir == 0 ? h->recFwd : h->recInv) = t;
    ownsFFTFillRec(t, first, n, dir == 1, src);
    for (long long j = 0; j < second; ++j) {
      T wr, wi;
      src.Twiddle(j * P::kRecFactor, n, wr, wi);
      t[2 * (first + j)] = wr;
      t[2 * (first + j) + 1] = dir == 0 ? wi : -wi;
    }
  }
}

template <class T>
VspStatus Init(uint32_t id, bool real, void** ppSpec, int order, int flag, int hint, Vsp8u* pMemSpec, Vsp8u* pMemInit) {
  using P = Prec<T>;
  if (ppSpec == nullptr) return vspStatNullPtr;
  if (order < 0 || order > (real ? P::kRealMax : P::kComplexMax)) return vspStatFftOrderErr;
  if (pMemSpec == nullptr) return vspStatNullPtr;
  unsigned char* base = Align64(pMemSpec);
  std::memset(base, 0, kHeaderBytes);
  auto* h = reinterpret_cast<SpecHeader<T>*>(base);
  h->hint = hint;
  h->order = order;
  h->workBytes = 0;
  h->zero = 0;
  if (!ValidFlag(flag)) {
    h->id = 0;
    return vspStatFftFlagErr;
  }
  const long long n = 1LL << order;
  if (flag == 1 || flag == 2) {
    h->scale = P::k64 ? static_cast<T>(1.0 / static_cast<double>(n)) : static_cast<T>(1.0f / static_cast<float>(n));
  } else if (flag == 4) {
    h->scale = static_cast<T>(1.0 / std::sqrt(static_cast<double>(n)));
  }
  h->fwdScaled = flag == 1 || flag == 4;
  h->invScaled = flag == 2 || flag == 4;
  h->id = id;
  if (order >= 11 && pMemInit == nullptr) return vspStatNullPtr;

  SineSource<T> src{FixedTable<T>(), kFixedOrder};
  if (order > kFixedOrder) {
    T* sine = reinterpret_cast<T*>(Align64(pMemInit));
    ownsFFTBuildSine(sine, order);
    src = {sine, order};
  }
  Bump bump(base, kHeaderBytes);
  const int c = real ? order - 1 : order;
  if (c >= 6) h->workBytes = static_cast<int32_t>(BuildComplex(h, bump, c, src));
  if (real && order > P::kRealDirectMax) BuildRecombination(h, bump, order, src);
  h->done = block::kDone;
  *ppSpec = base;
  return vspStatOk;
}

// ---- running the transforms ----------------------------------------------------------------

template <class T> const SpecHeader<T>* Header(const void* spec) { return static_cast<const SpecHeader<T>*>(spec); }

// A spec of kind `id` whose Init ran to the end (an Init that failed after writing the
// identifier, e.g. for a missing init buffer, leaves no completion mark).
template <class T> bool Finished(const SpecHeader<T>* h, uint32_t id) { return h->id == id && h->done == block::kDone; }

// Checks common to every Fwd/Inv: the spec, its identifier, the data pointers, the buffer.
template <class T, class... D>
VspStatus CheckCall(const void* spec, uint32_t id, const Vsp8u* buf, const D*... data) {
  if (spec == nullptr) return vspStatNullPtr;
  if (!Finished(Header<T>(spec), id)) return vspStatBadContext;
  if (AnyNull(data...)) return vspStatNullPtr;
  if (buf == nullptr && Header<T>(spec)->workBytes > 0) return vspStatNullPtr;
  return vspStatOk;
}

// The complex transform of order c of the spec from `in` to `out`.
template <class T, bool kInv>
void RunComplex(const SpecHeader<T>* h, int c, Halves<T> in, Halves<T> out, Vsp8u* buf, bool scaled, T scale) {
  T* work = reinterpret_cast<T*>(Align64(buf));
  if (c <= 5) {
    ownsFFTDirect<T, kInv>(c, in, out, scaled, scale);
  } else if (c <= Prec<T>::kSingleMax) {
    ownsFFTSingle<T, kInv>(c, h->twiddle, in, out, Whole(work, 1LL << c), scaled, scale);
  } else {
    const bool inPlace = in.lo == out.lo;
    if (inPlace) ownsFFTBitRev(in, out, c, RevTable(h->bitRev, c));
    else ownsFFTGatherRows(in, out, c, h->level[0].block);
    const LargePlan<T> plan{reinterpret_cast<const unsigned char*>(h), h->level, h->levels, h->twiddle};
    LargeCore<T, kInv>(plan, 0, out, work, h->workBytes / Prec<T>::kPair, scaled, scale, !inPlace);
  }
}

template <class T> bool Scaled(const SpecHeader<T>* h, bool inv) { return (inv ? h->invScaled : h->fwdScaled) != 0; }

template <class T, bool kInv>
VspStatus CToC(uint32_t id, const T* src, T* dst, const void* spec, Vsp8u* buf) {
  if (VspStatus st = CheckCall<T>(spec, id, buf, src, dst)) return st;
  const SpecHeader<T>* h = Header<T>(spec);
  const long long n = 1LL << h->order;
  RunComplex<T, kInv>(h, h->order, Whole(const_cast<T*>(src), n), Whole(dst, n), buf, Scaled(h, kInv), h->scale);
  return vspStatOk;
}

// Split form: the two destination arrays serve as the interleaved array, in halves.
// p[2i] = a[i], p[2i + 1] = b[i] for i < n, and the reverse.
template <class T> void ownsFFTInterleave(const T* a, const T* b, T* p, long long n) {
  constexpr int kL = hw::kLanes<T>;
  long long i = 0;
  for (; i + kL <= n; i += kL) {
    const hw::Vec<T> x = hw::LoadU(a + i), y = hw::LoadU(b + i);
    hw::StoreU(hw::InterleaveLo(x, y), p + 2 * i);
    hw::StoreU(hw::InterleaveHi(x, y), p + 2 * i + kL);
  }
  for (; i < n; ++i) p[2 * i] = a[i], p[2 * i + 1] = b[i];
}
template <class T> void ownsFFTDeinterleave(const T* p, T* a, T* b, long long n) {
  constexpr int kL = hw::kLanes<T>;
  long long i = 0;
  for (; i + kL <= n; i += kL) {
    const hw::Vec<T> x = hw::LoadU(p + 2 * i), y = hw::LoadU(p + 2 * i + kL);
    hw::StoreU(hw::RealParts(x, y), a + i);
    hw::StoreU(hw::ImagParts(x, y), b + i);
  }
  for (; i < n; ++i) a[i] = p[2 * i], b[i] = p[2 * i + 1];
}
template <class T> void SwapRanges(T* a, T* b, long long n) {
  constexpr int kL = hw::kLanes<T>;
  long long i = 0;
  for (; i + kL <= n; i += kL) {
    const hw::Vec<T> x = hw::LoadU(a + i), y = hw::LoadU(b + i);
    hw::StoreU(y, a + i);
    hw::StoreU(x, b + i);
  }
  for (; i < n; ++i) {
    const T t = a[i];
    a[i] = b[i];
    b[i] = t;
  }
}
// Interleaves the two halves x[0..h) and y[0..h) of p[0..2h) in place (or the reverse, unzip),
// through `work` (room for `cap` values) once a piece fits: [x1 x2 | y1 y2] becomes
// [x1 y1 | x2 y2] by one swap, and each half is zipped on its own.
template <class T> void Zip(T* p, long long h, T* work, long long cap, bool unzip) {
  if (2 * h <= cap) {
    if (unzip) {
      ownsFFTDeinterleave(p, work, work + h, h);
      std::memcpy(p, work, 2 * h * sizeof(T));
    } else {
      std::memcpy(work, p, 2 * h * sizeof(T));
      ownsFFTInterleave(work, work + h, p, h);
    }
    return;
  }
  const long long q = h / 2;
  if (!unzip) SwapRanges(p + q, p + h, q);
  Zip(p, q, work, cap, unzip);
  Zip(p + h, q, work, cap, unzip);
  if (unzip) SwapRanges(p + q, p + h, q);
}

template <class T, bool kInv>
VspStatus Split(uint32_t id, const T* srcRe, const T* srcIm, T* dstRe, T* dstIm, const void* spec, Vsp8u* buf) {
  if (VspStatus st = CheckCall<T>(spec, id, buf, srcRe, srcIm, dstRe, dstIm)) return st;
  const SpecHeader<T>* h = Header<T>(spec);
  const int c = h->order;
  const long long n = 1LL << c;
  const bool scaled = Scaled(h, kInv);
  if (c <= 5) {
    alignas(hw::kVecBytes) T tmp[64];
    ownsFFTInterleave(srcRe, srcIm, tmp, n);
    ownsFFTDirect<T, kInv>(c, Whole(tmp, n), Whole(tmp, n), scaled, h->scale);
    ownsFFTDeinterleave(tmp, dstRe, dstIm, n);
    return vspStatOk;
  }
  const long long half = n / 2;
  T* work = reinterpret_cast<T*>(Align64(buf));
  const long long cap = h->workBytes / static_cast<long long>(sizeof(T));
  if (srcRe == dstRe && srcIm == dstIm) {
    SwapRanges(dstRe + half, dstIm, half);
    Zip(dstRe, half, work, cap, false);
    Zip(dstIm, half, work, cap, false);
  } else {
    ownsFFTInterleave(srcRe, srcIm, dstRe, half);
    ownsFFTInterleave(srcRe + half, srcIm + half, dstIm, half);
  }
  const Halves<T> d{dstRe, dstIm};
  RunComplex<T, kInv>(h, c, d, d, buf, scaled, h->scale);
  Zip(dstRe, half, work, cap, true);
  Zip(dstIm, half, work, cap, true);
  SwapRanges(dstRe + half, dstIm, half);
  return vspStatOk;
}

template <class T, bool kInv>
VspStatus Real(uint32_t id, Layout lay, const T* src, T* dst, const void* spec, Vsp8u* buf) {
  if (VspStatus st = CheckCall<T>(spec, id, buf, src, dst)) return st;
  const SpecHeader<T>* h = Header<T>(spec);
  const int k = h->order;
  const long long n = 1LL << k, m = n / 2;
  const bool scaled = Scaled(h, kInv);
  auto sc = [&](T v) { return scaled ? v * h->scale : v; };
  if (k == 0) {  // X0 = x0, x0 = X0
    dst[0] = sc(src[0]);
    if (!kInv && lay == Layout::CCS) dst[1] = 0;
    return vspStatOk;
  }
  if (k == 1) {  // X0 = x0 + x1, X1 = x0 - x1, and the same inverse
    const T a = src[0], b = src[lay == Layout::CCS && kInv ? 2 : 1];
    dst[0] = sc(a + b);
    if (!kInv && lay == Layout::CCS) dst[1] = 0, dst[3] = 0;
    dst[!kInv && lay == Layout::CCS ? 2 : 1] = sc(a - b);
    return vspStatOk;
  }
  // Orders up to the direct limit use constant recombination tables and a direct half transform.
  const bool direct = k <= Prec<T>::kRealDirectMax;
  const long long f = !direct && k >= Prec<T>::kRealFactorFrom ? Prec<T>::kRecFactor : 0;
  const RecTable<T> fwdTw{direct ? SmallRecTable<T>(k, false) : h->recFwd, f};
  const RecTable<T> invTw{direct ? SmallRecTable<T>(k, true) : h->recInv, f};
  if (!kInv) {
    RunComplex<T, false>(h, k - 1, Whole(const_cast<T*>(src), m), Whole(dst, m), buf, false, T(0));
    ownsFFTRecombineFwd(dst, m, fwdTw, scaled, h->scale);
    if (lay == Layout::Pack) {
      const T nyq = dst[1];
      std::memmove(dst + 1, dst + 2, (n - 2) * sizeof(T));
      dst[n - 1] = nyq;
    } else if (lay == Layout::CCS) {
      dst[n] = dst[1];
      dst[n + 1] = 0;
      dst[1] = 0;
    }
    return vspStatOk;
  }
  const T x0 = src[0], nyq = lay == Layout::Perm ? src[1] : lay == Layout::Pack ? src[n - 1] : src[n];
  if (lay == Layout::Pack) std::memmove(dst + 2, src + 1, (n - 2) * sizeof(T));
  else if (src != dst) std::memcpy(dst + 2, src + 2, (n - 2) * sizeof(T));
  dst[0] = x0;
  dst[1] = nyq;
  ownsFFTRecombineInv(dst, m, invTw);
  RunComplex<T, true>(h, k - 1, Whole(dst, m), Whole(dst, m), buf, scaled, h->scale);
  return vspStatOk;
}

template <class T> VspStatus GetBufSize(const void* spec, uint32_t id, int* pSize) {
  if (AnyNull(spec, pSize)) return vspStatNullPtr;
  const SpecHeader<T>* h = Header<T>(spec);
  if (!Finished(h, id)) return vspStatBadContext;
  *pSize = h->workBytes > 0 ? h->workBytes + 64 : 0;
  return vspStatOk;
}

}  // namespace
}  // namespace vsp::fft

using vsp::fft::Layout;
namespace F = vsp::fft;

// ---- exports -------------------------------------------------------------------------------

#define VSP_FFT_KIND(kind, T, isReal, idv)                                                                       \
  VSP_IMPL(VspStatus, vspsFFTGetSize_##kind,                                                                     \
           (int order, int flag, VspHintAlgorithm, int* pSpecSize, int* pSpecBufferSize, int* pBufferSize)) {    \
    return F::GetSize<T>(isReal, order, flag, pSpecSize, pSpecBufferSize, pBufferSize);                         \
  }                                                                                                              \
  VSP_IMPL(VspStatus, vspsFFTInit_##kind,                                                                        \
           (VspFFTSpec_##kind * *ppFFTSpec, int order, int flag, VspHintAlgorithm hint, Vsp8u* pMemSpec,        \
            Vsp8u* pMemInit)) {                                                                                  \
    return F::Init<T>(idv, isReal, reinterpret_cast<void**>(ppFFTSpec), order, flag, hint, pMemSpec, pMemInit); \
  }                                                                                                              \
  VspStatus ownsFFTGetBufSize_##kind(const VspFFTSpec_##kind* pSpec, int* pSize) {                              \
    return F::GetBufSize<T>(pSpec, idv, pSize);                                                                  \
  }
VSP_FFT_KIND(C_32fc, Vsp32f, false, F::kIdC32fc)
VSP_FFT_KIND(C_32f, Vsp32f, false, F::kIdC32f)
VSP_FFT_KIND(R_32f, Vsp32f, true, F::kIdR32f)
VSP_FFT_KIND(C_64fc, Vsp64f, false, F::kIdC64fc)
VSP_FFT_KIND(C_64f, Vsp64f, false, F::kIdC64f)
VSP_FFT_KIND(R_64f, Vsp64f, true, F::kIdR64f)
#undef VSP_FFT_KIND

#define VSP_FFT_CTOC(dir, inv, t, T, idc, ids)                                                                          \
  VSP_IMPL(VspStatus, vspsFFT##dir##_CToC_##t##c,                                                                  \
           (const Vsp##t##c * pSrc, Vsp##t##c * pDst, const VspFFTSpec_C_##t##c * pFFTSpec, Vsp8u * pBuffer)) {  \
    return F::CToC<T, inv>(idc, reinterpret_cast<const T*>(pSrc), reinterpret_cast<T*>(pDst), pFFTSpec,       \
                           pBuffer);                                                                               \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsFFT##dir##_CToC_##t##c_I,                                                                \
           (Vsp##t##c * pSrcDst, const VspFFTSpec_C_##t##c * pFFTSpec, Vsp8u * pBuffer)) {                        \
    return F::CToC<T, inv>(idc, reinterpret_cast<const T*>(pSrcDst), reinterpret_cast<T*>(pSrcDst),           \
                           pFFTSpec, pBuffer);                                                                     \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsFFT##dir##_CToC_##t,                                                                     \
           (const T* pSrcRe, const T* pSrcIm, T* pDstRe, T* pDstIm, const VspFFTSpec_C_##t* pFFTSpec,             \
            Vsp8u* pBuffer)) {                                                                                     \
    return F::Split<T, inv>(ids, pSrcRe, pSrcIm, pDstRe, pDstIm, pFFTSpec, pBuffer);                              \
  }                                                                                                                \
  VSP_IMPL(VspStatus, vspsFFT##dir##_CToC_##t##_I,                                                                 \
           (T * pSrcDstRe, T * pSrcDstIm, const VspFFTSpec_C_##t * pFFTSpec, Vsp8u * pBuffer)) {                  \
    return F::Split<T, inv>(ids, pSrcDstRe, pSrcDstIm, pSrcDstRe, pSrcDstIm, pFFTSpec, pBuffer);                 \
  }
VSP_FFT_CTOC(Fwd, false, 32f, Vsp32f, F::kIdC32fc, F::kIdC32f)
VSP_FFT_CTOC(Inv, true, 32f, Vsp32f, F::kIdC32fc, F::kIdC32f)
VSP_FFT_CTOC(Fwd, false, 64f, Vsp64f, F::kIdC64fc, F::kIdC64f)
VSP_FFT_CTOC(Inv, true, 64f, Vsp64f, F::kIdC64fc, F::kIdC64f)
#undef VSP_FFT_CTOC

#define VSP_FFT_REAL(name, inv, lay, t, idv)                                                                      \
  VSP_IMPL(VspStatus, vspsFFT##name##_##t,                                                                        \
           (const Vsp##t * pSrc, Vsp##t * pDst, const VspFFTSpec_R_##t * pFFTSpec, Vsp8u * pBuffer)) {           \
    return F::Real<Vsp##t, inv>(idv, Layout::lay, pSrc, pDst, pFFTSpec, pBuffer);                                 \
  }                                                                                                               \
  VSP_IMPL(VspStatus, vspsFFT##name##_##t##_I, (Vsp##t * pSrcDst, const VspFFTSpec_R_##t * pFFTSpec, Vsp8u * pBuffer)) { \
    return F::Real<Vsp##t, inv>(idv, Layout::lay, pSrcDst, pSrcDst, pFFTSpec, pBuffer);                           \
  }
#define VSP_FFT_REAL_ALL(t, idv)                  \
  VSP_FFT_REAL(Fwd_RToPack, false, Pack, t, idv) \
  VSP_FFT_REAL(Fwd_RToPerm, false, Perm, t, idv) \
  VSP_FFT_REAL(Fwd_RToCCS, false, CCS, t, idv)   \
  VSP_FFT_REAL(Inv_PackToR, true, Pack, t, idv)  \
  VSP_FFT_REAL(Inv_PermToR, true, Perm, t, idv)  \
  VSP_FFT_REAL(Inv_CCSToR, true, CCS, t, idv)
VSP_FFT_REAL_ALL(32f, F::kIdR32f)
VSP_FFT_REAL_ALL(64f, F::kIdR64f)
#undef VSP_FFT_REAL_ALL
#undef VSP_FFT_REAL
