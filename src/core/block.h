// Spec and state blocks in caller memory.
//
// Every family that keeps data between calls lays a block into memory the caller allocated after
// a size query. This kit gives all of them the same four pieces:
//
//  - Arena: one layout function serves both the size query and Init. Run on an Arena without a
//    base it only counts bytes (GetSize); run on an Arena with a base it hands out the same
//    offsets inside the caller's block (Init). Init therefore never uses more than GetSize
//    reported, and the two can never drift apart.
//  - Off<T>: blocks store offsets from the block start, never pointers, so a block holds no
//    address of its own (a copied block does not silently read the original's tables; the caller
//    still re-runs Init after moving a block, as the header says).
//  - Head: the first two words of every block of ours: the identifier (one list for the whole
//    library, below) and a completion mark that Init writes last. A processing call accepts a
//    block only when both match, so a block whose Init failed half-way is refused with -17.
//  - AlignUp / Open: the caller passes any pointer into its memory; every function of a family
//    rounds it up to the family's alignment (64 for transforms and filters, 32 for IIR states)
//    before it reads or writes the block. The reported sizes include that slack.
//
// Typical use:
//
//   template <class A> Layout Lay(A& a, int taps) {          // shared by GetSize and Init
//     Layout l;
//     l.taps = a.template Take<Vsp32f>(taps);
//     l.dly  = a.template Take<Vsp32f>(2 * taps);
//     return l;
//   }
//   GetSize: Arena a; Lay(a, taps); *pSize = SizeWithSlack(a.Bytes(), 64) (after FitsInt).
//   Init:    Block* b = AlignUp<Block>(pMem, 64); Arena a(b, sizeof(Block)); b->lay = Lay(a, taps);
//            ... fill ...; Finish(b->head, kId);
//   Process: const Block* b; if (VspStatus st = Open(pSpec, kId, 64, &b)) return st;
#pragma once

#include <climits>
#include <cstdint>
#include <cstring>

#include "vsp.h"

namespace vsp::block {

// A four-character identifier, most significant byte first ("II01" -> 0x49493031).
constexpr uint32_t Tag(char a, char b, char c, char d) {
  return (uint32_t(uint8_t(a)) << 24) | (uint32_t(uint8_t(b)) << 16) | (uint32_t(uint8_t(c)) << 8) | uint8_t(d);
}

// ---- The identifiers of every block of the library -------------------------------------------
// The values of the FFT, DCT, Hilbert and IIR blocks are part of the interface; the others are
// the library's own choice, four characters that name the family.
enum Id : uint32_t {
  // FFT specs (interface values).
  kFFT_C_32fc = 4, kFFT_C_32f = 5, kFFT_R_32f = 6, kFFT_C_64fc = 7, kFFT_C_64f = 8, kFFT_R_64f = 9,

  // DCT specs (interface values).
  kDCTFwd_32f = 21, kDCTInv_32f = 22, kDCTFwd_64f = 23, kDCTInv_64f = 24,

  // DFT of any length.
  kDFT_C_32fc = Tag('D', 'F', 'T', '1'), kDFT_C_32f = Tag('D', 'F', 'T', '2'), kDFT_R_32f = Tag('D', 'F', 'T', '3'),
  kDFT_C_64fc = Tag('D', 'F', 'T', '4'), kDFT_C_64f = Tag('D', 'F', 'T', '5'), kDFT_R_64f = Tag('D', 'F', 'T', '6'),

  // Hilbert transform (interface value: the bytes "EAMC" read little-endian).
  kHilbert = 0x434D4145,

  // IIR states: "II" and two digits (interface values; the IIR family lists its kinds here).

  // Multi-rate FIR.
  kFIRMR_32f = Tag('F', 'M', 'R', '1'), kFIRMR_32fc = Tag('F', 'M', 'R', '2'),
  kFIRMR_64f = Tag('F', 'M', 'R', '3'), kFIRMR_64fc = Tag('F', 'M', 'R', '4'),

  // Zero-phase IIR.
  kIIRIIR_32f = Tag('Z', 'P', 'I', '1'), kIIRIIR_64f_32f = Tag('Z', 'P', 'I', '2'),

  // Sparse filters.
  kFIRSparse_32f = Tag('S', 'F', 'R', '1'), kIIRSparse_32f = Tag('S', 'I', 'R', '1'),

  // Adaptive FIR.
  kFIRLMS_32f = Tag('L', 'M', 'S', '1'),

  // Median filter.
  kMedian = Tag('M', 'E', 'D', '1'),

  // Resampling.
  kResampleArb = Tag('R', 'S', 'A', '1'), kResampleFixed = Tag('R', 'S', 'F', '1'),

  // Wavelet filter banks.
  kWTFwd = Tag('W', 'T', 'F', '1'), kWTInv = Tag('W', 'T', 'I', '1'),

  // Random generators.
  kRandUniform_16s = Tag('R', 'N', 'U', '1'), kRandUniform_32f = Tag('R', 'N', 'U', '2'),
  kRandUniform_64f = Tag('R', 'N', 'U', '3'), kRandGauss_16s = Tag('R', 'N', 'G', '1'),
  kRandGauss_32f = Tag('R', 'N', 'G', '2'), kRandGauss_64f = Tag('R', 'N', 'G', '3'),
};

// Written last by Init into Head::done; a block without it was never finished.
inline constexpr uint32_t kDone = Tag('D', 'O', 'N', 'E');

// The first eight bytes of every block whose layout is the library's own.
struct Head {
  uint32_t id;
  uint32_t done;
};

// ---- Offsets -----------------------------------------------------------------------------------

// An array of T inside a block, as an offset from the block start.
template <class T> struct Off {
  int64_t off = 0;
  T* In(void* block) const { return reinterpret_cast<T*>(static_cast<unsigned char*>(block) + off); }
  const T* In(const void* block) const {
    return reinterpret_cast<const T*>(static_cast<const unsigned char*>(block) + off);
  }
};

// ---- Layout ------------------------------------------------------------------------------------

// Counts (base == nullptr) or hands out (base != nullptr) the areas of a block. Offsets start
// after `start` bytes (the block's fixed header struct) and are aligned as asked.
class Arena {
 public:
  explicit Arena(int64_t start = 0) : used_(start) {}
  Arena(void* base, int64_t start) : base_(static_cast<unsigned char*>(base)), used_(start) {}

  // Reserves `count` elements of T at an offset aligned to `align` bytes (a power of two).
  template <class T> Off<T> Take(int64_t count, int64_t align = 64) {
    used_ = (used_ + align - 1) & ~(align - 1);
    Off<T> o{used_};
    used_ += count * static_cast<int64_t>(sizeof(T));
    return o;
  }
  // Take in writing mode, as a pointer into the block (nullptr when counting).
  template <class T> T* TakePtr(int64_t count, int64_t align = 64) {
    const Off<T> o = Take<T>(count, align);
    return base_ ? o.In(base_) : nullptr;
  }
  int64_t Bytes() const { return used_; }
  bool Writing() const { return base_ != nullptr; }
  unsigned char* Base() const { return base_; }

 private:
  unsigned char* base_ = nullptr;
  int64_t used_;
};

// The size a query reports for a block of `bytes`: the block plus the slack the functions need
// to align the caller's pointer themselves.
constexpr int64_t SizeWithSlack(int64_t bytes, int align) { return bytes + align; }
constexpr bool FitsInt(int64_t bytes) { return bytes >= 0 && bytes <= INT_MAX; }

// ---- Alignment and checks ----------------------------------------------------------------------

template <class B = unsigned char, class P> inline B* AlignUp(P* p, uintptr_t align) {
  const uintptr_t a = (reinterpret_cast<uintptr_t>(p) + align - 1) & ~(align - 1);
  return reinterpret_cast<B*>(a);
}

// Starts Init: clears the header struct of the block and writes the identifier; the block is
// not accepted until Finish.
template <class B> inline void Begin(B* blk, uint32_t id) {
  std::memset(static_cast<void*>(blk), 0, sizeof(B));
  Head* h = reinterpret_cast<Head*>(blk);
  h->id = id;
  h->done = 0;
}
template <class B> inline void Finish(B* blk) { reinterpret_cast<Head*>(blk)->done = kDone; }

// True when the block at p (already aligned) was finished by the Init of kind `id`.
inline bool IsBlock(const void* p, uint32_t id) {
  const Head* h = static_cast<const Head*>(p);
  return h->id == id && h->done == kDone;
}

// The check every processing call of a family starts with: the block pointer null -> -8; the
// block (after aligning the pointer to `align`) not a finished block of kind `id` -> -17.
template <class B> inline VspStatus Open(const void* p, uint32_t id, uintptr_t align, const B** out) {
  if (p == nullptr) return vspStatNullPtr;
  const B* b = AlignUp<const B>(static_cast<const unsigned char*>(p), align);
  if (!IsBlock(b, id)) return vspStatBadContext;
  *out = b;
  return vspStatOk;
}
template <class B> inline VspStatus Open(void* p, uint32_t id, uintptr_t align, B** out) {
  if (p == nullptr) return vspStatNullPtr;
  B* b = AlignUp<B>(static_cast<unsigned char*>(p), align);
  if (!IsBlock(b, id)) return vspStatBadContext;
  *out = b;
  return vspStatOk;
}

}  // namespace vsp::block
