// Inputs of the sorting tests: the shapes that break sorts (runs, duplicates, sorted and reversed
// vectors, special float values) and order-preserving keys written from the sort's definition.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "support/buffers.h"
#include "support/types.h"

namespace vsptest {

template <class T> using UnsignedOf = std::make_unsigned_t<std::conditional_t<std::is_floating_point_v<T>,
    std::conditional_t<sizeof(T) == 4, Vsp32s, Vsp64s>, T>>;

template <class T> T FromBits(UnsignedOf<T> u) {
  T x;
  std::memcpy(&x, &u, sizeof(T));
  return x;
}
template <class T> UnsignedOf<T> ToBits(T x) {
  UnsignedOf<T> u;
  std::memcpy(&u, &x, sizeof(T));
  return u;
}

enum class Shape { Random, Narrow, Sorted, Reversed, Equal, FewDistinct, OrganPipe, Sawtooth, Specials };
inline const Shape kShapes[] = {Shape::Random, Shape::Narrow,    Shape::Sorted,   Shape::Reversed, Shape::Equal,
                                Shape::FewDistinct, Shape::OrganPipe, Shape::Sawtooth, Shape::Specials};
inline const char* ShapeName(Shape s) {
  const char* names[] = {"random", "narrow", "sorted", "reversed", "equal", "few", "organpipe", "sawtooth", "specials"};
  return names[static_cast<int>(s)];
}

// A value of T from a small integer, exact in every type (0 .. 120 fits 8u and 8s alike).
template <class T> T Small(long long k) { return static_cast<T>(k); }

// Values for floats that a sort must order by their numeric value: signed zeros, infinities,
// subnormals, the extremes and NaNs of both signs.
template <class T> std::vector<T> FloatSpecials() {
  using L = std::numeric_limits<T>;
  return {T(0), -T(0), L::infinity(), -L::infinity(), L::denorm_min(), -L::denorm_min(), L::max(), L::lowest(),
          L::min(), T(1), T(-1), L::quiet_NaN(), -L::quiet_NaN()};
}

// n values of the given shape. `narrowBits` limits the random bits of Shape::Narrow.
template <class T>
std::vector<T> MakeData(Shape shape, size_t n, Rng& rng, int narrowBits = 8) {
  std::vector<T> v(n);
  auto randomBits = [&](int bits) {
    UnsignedOf<T> u = static_cast<UnsignedOf<T>>(rng.Bits());
    if (bits < static_cast<int>(8 * sizeof(T))) u = static_cast<UnsignedOf<T>>(u & ((UnsignedOf<T>{1} << bits) - 1));
    return FromBits<T>(u);
  };
  auto randomValue = [&]() {
    if constexpr (std::is_floating_point_v<T>) return static_cast<T>(rng.Uniform(-1000, 1000));
    else return randomBits(8 * sizeof(T));
  };
  switch (shape) {
    case Shape::Random:
      for (auto& x : v) x = randomValue();
      break;
    case Shape::Narrow:
      for (auto& x : v) x = randomBits(narrowBits);
      break;
    case Shape::Sorted:
    case Shape::Reversed:
      for (auto& x : v) x = randomValue();
      if constexpr (std::is_floating_point_v<T>) std::sort(v.begin(), v.end());
      else std::sort(v.begin(), v.end());
      if (shape == Shape::Reversed) std::reverse(v.begin(), v.end());
      break;
    case Shape::Equal:
      std::fill(v.begin(), v.end(), Small<T>(rng.Int(0, 120)));
      break;
    case Shape::FewDistinct:
      for (auto& x : v) x = Small<T>(rng.Int(0, 3));
      break;
    case Shape::OrganPipe:
      for (size_t i = 0; i < n; ++i) v[i] = Small<T>(static_cast<long long>(std::min(i, n - 1 - i) % 100));
      break;
    case Shape::Sawtooth:
      for (size_t i = 0; i < n; ++i) v[i] = Small<T>(static_cast<long long>(i % 17));
      break;
    case Shape::Specials:
      if constexpr (std::is_floating_point_v<T>) {
        const std::vector<T> s = FloatSpecials<T>();
        for (auto& x : v) x = rng.Int(0, 2) == 0 ? randomValue() : s[rng.Int(0, static_cast<long long>(s.size()) - 1)];
      } else {
        const T s[] = {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), T(0), T(1)};
        for (auto& x : v) x = rng.Int(0, 2) == 0 ? randomValue() : s[rng.Int(0, 3)];
      }
      break;
  }
  return v;
}

// The bits of v sorted as unsigned numbers: equal for two vectors that are permutations of each
// other, element bits included.
template <class T> std::vector<UnsignedOf<T>> BitMultiset(const T* v, size_t n) {
  std::vector<UnsignedOf<T>> b(n);
  for (size_t i = 0; i < n; ++i) b[i] = ToBits(v[i]);
  std::sort(b.begin(), b.end());
  return b;
}

// True when idx[0 .. n-1] holds every number of 0 .. n-1 once.
template <class I> bool IsPermutation(const I* idx, size_t n) {
  std::vector<char> seen(n, 0);
  for (size_t i = 0; i < n; ++i) {
    if (idx[i] < 0 || static_cast<size_t>(idx[i]) >= n || seen[idx[i]]) return false;
    seen[idx[i]] = 1;
  }
  return true;
}

}  // namespace vsptest
