// Bit-string copies: vspsCopyLE_1u numbers the bits of a byte from the most significant,
// vspsCopyBE_1u from the least significant. Three paths with the same result: a moving mask
// below 16 bits, whole destination bytes from 16 to 48 bits, and above 48 bits the general
// kernel that also moves eight destination bytes at a time.
#include <cstring>

#include "core/check.h"
#include "core/impl.h"

namespace {

template <bool kMsbFirst>
constexpr unsigned BitMask(int p) {
  return kMsbFirst ? 0x80u >> p : 0x01u << p;
}

// Copies n bits one at a time from absolute bit s of src to absolute bit d of dst.
template <bool kMsbFirst>
void CopyBitByBit(const Vsp8u* src, long long s, Vsp8u* dst, long long d, long long n) {
  for (long long i = 0; i < n; ++i, ++s, ++d) {
    const unsigned m = BitMask<kMsbFirst>(static_cast<int>(d & 7));
    Vsp8u& out = dst[d >> 3];
    if (src[s >> 3] & BitMask<kMsbFirst>(static_cast<int>(s & 7))) out = static_cast<Vsp8u>(out | m);
    else out = static_cast<Vsp8u>(out & ~m);
  }
}

// One destination byte from the eight source bits that start at bit r (1..7) of src[0]: the
// two-byte window shifted by r.
template <bool kMsbFirst>
inline Vsp8u Gather8(const Vsp8u* src, int r) {
  return kMsbFirst ? static_cast<Vsp8u>((src[0] << r) | (src[1] >> (8 - r)))
                   : static_cast<Vsp8u>((src[0] >> r) | (src[1] << (8 - r)));
}

// Eight destination bytes from the 64 source bits that start at bit r (1..7) of src[0]; reads
// src[0..8], all of which hold copied bits.
template <bool kMsbFirst>
inline void Gather64(const Vsp8u* src, int r, Vsp8u* dst) {
  Vsp64u w;
  std::memcpy(&w, src, 8);
  const Vsp64u next = src[8];
  if constexpr (kMsbFirst) {
    w = __builtin_bswap64(w);
    w = (w << r) | (next >> (8 - r));
    w = __builtin_bswap64(w);
  } else {
    w = (w >> r) | (next << (64 - r));
  }
  std::memcpy(dst, &w, 8);
}

// Copies `count` whole destination bytes from the bits that start at absolute bit a of src.
template <bool kMsbFirst, bool kWide>
void CopyWholeBytes(const Vsp8u* src, long long a, Vsp8u* dst, long long count) {
  const Vsp8u* s = src + (a >> 3);
  const int r = static_cast<int>(a & 7);
  if (r == 0) {  // equal bit phases: the middle bytes are copied unchanged
    std::memcpy(dst, s, static_cast<size_t>(count));
    return;
  }
  long long k = 0;
  if constexpr (kWide) {
    for (; k + 8 <= count; k += 8) Gather64<kMsbFirst>(s + k, r, dst + k);
  }
  for (; k < count; ++k) dst[k] = Gather8<kMsbFirst>(s + k, r);
}

template <bool kMsbFirst>
VspStatus CopyBits(const Vsp8u* pSrc, int srcBitOffset, Vsp8u* pDst, int dstBitOffset, int len) {
  if (VspStatus st = vsp::CheckPtrs(pSrc, pDst)) return st;
  if (len < 1 || srcBitOffset < 0 || dstBitOffset < 0) return vspStatBadSize;
  const long long s = srcBitOffset & 7, d = dstBitOffset & 7, n = len;
  if (n < 16) {
    CopyBitByBit<kMsbFirst>(pSrc, s, pDst, d, n);
    return vspStatOk;
  }
  // A partial first destination byte, whole bytes, a partial last byte.
  const long long head = d ? 8 - d : 0;
  CopyBitByBit<kMsbFirst>(pSrc, s, pDst, d, head);
  const long long whole = (n - head) >> 3;
  Vsp8u* out = pDst + (d ? 1 : 0);
  if (n <= 48) CopyWholeBytes<kMsbFirst, false>(pSrc, s + head, out, whole);
  else CopyWholeBytes<kMsbFirst, true>(pSrc, s + head, out, whole);
  const long long done = head + 8 * whole;
  CopyBitByBit<kMsbFirst>(pSrc, s + done, pDst, d + done, n - done);
  return vspStatOk;
}

}  // namespace

VSP_IMPL(VspStatus, vspsCopyLE_1u, (const Vsp8u* pSrc, int srcBitOffset, Vsp8u* pDst, int dstBitOffset, int len)) {
  return CopyBits<true>(pSrc, srcBitOffset, pDst, dstBitOffset, len);
}

VSP_IMPL(VspStatus, vspsCopyBE_1u, (const Vsp8u* pSrc, int srcBitOffset, Vsp8u* pDst, int dstBitOffset, int len)) {
  return CopyBits<false>(pSrc, srcBitOffset, pDst, dstBitOffset, len);
}
