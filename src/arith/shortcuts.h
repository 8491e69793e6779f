// Short-cuts of the arithmetic implementations through other exports.
#pragma once

#include <climits>
#include <type_traits>

#include "core/impl.h"

namespace vsp {

// The vspsZero_<T> call that settles an all-zero result: the export of D's size and kind
// (16u through 16s, 64u through 64s), with its own checks and status. n may be twice an int
// length (complex members run as real ones of twice the length): such a count is zeroed in
// pieces an int holds, so the short-cut never changes a valid call's status.
template <class D>
VspStatus ZeroPiece(D* p, int len) {
  if constexpr (sizeof(D) == 1) return VSP_CALL(vspsZero_8u)(reinterpret_cast<Vsp8u*>(p), len);
  else if constexpr (std::is_same_v<D, Vsp16sc>) return VSP_CALL(vspsZero_16sc)(p, len);
  else if constexpr (sizeof(D) == 2) return VSP_CALL(vspsZero_16s)(reinterpret_cast<Vsp16s*>(p), len);
  else if constexpr (std::is_same_v<D, Vsp32sc>) return VSP_CALL(vspsZero_32sc)(p, len);
  else if constexpr (sizeof(D) == 4) return VSP_CALL(vspsZero_32s)(reinterpret_cast<Vsp32s*>(p), len);
  else return VSP_CALL(vspsZero_64s)(reinterpret_cast<Vsp64s*>(p), len);
}
template <class D>
VspStatus ZeroOf(D* p, long long n) {
  for (; n > INT_MAX; n -= INT_MAX, p += INT_MAX)
    if (VspStatus st = ZeroPiece(p, INT_MAX)) return st;
  return ZeroPiece(p, static_cast<int>(n));
}

}  // namespace vsp
