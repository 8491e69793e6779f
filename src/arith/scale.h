// The scale-factor rule of every integer result: the exact result R, computed in a wide type,
// becomes saturate(round(R * 2^-s)) with rounding to nearest, ties to even. This is the scalar
// form; SIMD bodies must give the same values, and the scalar heads and tails of kernels use
// these functions directly.
#pragma once

#include <type_traits>

#include "core/types.h"

namespace vsp {

// R clamped to the range of D.
template <class D, class W>
constexpr D Saturate(W r) {
  if (r < static_cast<W>(kMinOf<D>)) return kMinOf<D>;
  if (r > static_cast<W>(kMaxOf<D>)) return kMaxOf<D>;
  return static_cast<D>(r);
}

// round(R / 2^s) with ties to the even neighbour, for 1 <= s < bits of W - 1, using the
// flooring right shift: (R + 2^(s-1) - 1 + ((R >> s) & 1)) >> s. The caller keeps
// |R| + 2^(s-1) inside W.
template <class W>
constexpr W RoundShiftEven(W r, int s) {
  return (r + ((W(1) << (s - 1)) - 1) + ((r >> s) & 1)) >> s;
}

// saturate(round(R * 2^-s)) into D for any s.
template <class D, class W>
constexpr D ScaleRule(W r, int s) {
  static_assert(std::is_signed_v<W>, "the exact result is held in a signed wide type");
  constexpr int kBits = static_cast<int>(sizeof(W) * 8);
  if (s == 0) return Saturate<D>(r);
  if (s > 0) {
    // Above kBits - 2 every |R| < 2^(kBits-1) is at most one half after scaling: 0.
    if (s > kBits - 2) return D(0);
    // Shift in two steps where adding the rounding term could leave W.
    using U = std::make_unsigned_t<W>;
    const W half = W(1) << (s - 1);
    if (r > 0 && static_cast<U>(r) + static_cast<U>(half) > static_cast<U>(~U(0) >> 1)) {
      // r + half would overflow: round the quotient without forming the sum.
      W q = r >> s, rem = r - (q << s);
      if (rem > half || (rem == half && (q & 1))) ++q;
      return Saturate<D>(q);
    }
    return Saturate<D>(RoundShiftEven(r, s));
  }
  // s < 0: R * 2^-s, saturating instead of wrapping.
  const int left = -s;
  if (r == 0) return D(0);
  if (left >= kBits - 1) return r > 0 ? kMaxOf<D> : kMinOf<D>;
  const W limit = (~W(0) ^ (W(1) << (kBits - 1))) >> left;  // largest |R| that shifts in range
  if (r > limit) return kMaxOf<D>;
  if (r < -limit) return kMinOf<D>;
  return Saturate<D>(static_cast<W>(static_cast<std::make_unsigned_t<W>>(r) << left));
}

}  // namespace vsp
