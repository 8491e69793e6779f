// Element traits: what kernels written once per operation need to know about each element type.
#pragma once

#include <cstddef>
#include <limits>
#include <type_traits>

#include "vsp.h"

namespace vsp {

// Complex element types and their component type.
template <class T> struct ComplexTraits { static constexpr bool kComplex = false; using Base = T; };
template <> struct ComplexTraits<Vsp8sc> { static constexpr bool kComplex = true; using Base = Vsp8s; };
template <> struct ComplexTraits<Vsp16sc> { static constexpr bool kComplex = true; using Base = Vsp16s; };
template <> struct ComplexTraits<Vsp32sc> { static constexpr bool kComplex = true; using Base = Vsp32s; };
template <> struct ComplexTraits<Vsp64sc> { static constexpr bool kComplex = true; using Base = Vsp64s; };
template <> struct ComplexTraits<Vsp32fc> { static constexpr bool kComplex = true; using Base = Vsp32f; };
template <> struct ComplexTraits<Vsp64fc> { static constexpr bool kComplex = true; using Base = Vsp64f; };

template <class T> inline constexpr bool kIsComplex = ComplexTraits<T>::kComplex;
template <class T> using BaseOf = typename ComplexTraits<T>::Base;

// An integer type wide enough to hold the exact sum, difference or product of two elements.
template <class T> struct WideTraits;
template <> struct WideTraits<Vsp8u> { using Type = Vsp32s; };
template <> struct WideTraits<Vsp8s> { using Type = Vsp32s; };
template <> struct WideTraits<Vsp16u> { using Type = Vsp32s; };
template <> struct WideTraits<Vsp16s> { using Type = Vsp32s; };
template <> struct WideTraits<Vsp32u> { using Type = Vsp64s; };
template <> struct WideTraits<Vsp32s> { using Type = Vsp64s; };
template <> struct WideTraits<Vsp64u> { using Type = __int128; };
template <> struct WideTraits<Vsp64s> { using Type = __int128; };
template <class T> using WideOf = typename WideTraits<T>::Type;

// The range a result saturates to.
template <class T> inline constexpr T kMinOf = std::numeric_limits<T>::lowest();
template <class T> inline constexpr T kMaxOf = std::numeric_limits<T>::max();

// An unsigned integer type of the same size, for type-blind kernels (copy, set, swap, flip).
template <size_t Bytes> struct BitsOfSize;
template <> struct BitsOfSize<1> { using Type = Vsp8u; };
template <> struct BitsOfSize<2> { using Type = Vsp16u; };
template <> struct BitsOfSize<4> { using Type = Vsp32u; };
template <> struct BitsOfSize<8> { using Type = Vsp64u; };
template <size_t Bytes> using BitsOf = typename BitsOfSize<Bytes>::Type;

}  // namespace vsp
