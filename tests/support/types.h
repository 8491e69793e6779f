// Type lists for tests that run one body over every member type of a family.
#pragma once

#include <cstring>
#include <string>
#include <type_traits>

#include "vsp.h"

namespace vsptest {

template <class... T> struct TypeList {};

// Calls f.template operator()<T>() for every T of the list:
//   ForEachType(TypeList<Vsp8u, Vsp16s>{}, []<class T>() { ... });
template <class... T, class F>
void ForEachType(TypeList<T...>, F&& f) {
  (f.template operator()<T>(), ...);
}

template <class T> const char* TypeName() {
  if constexpr (std::is_same_v<T, Vsp8u>) return "8u";
  else if constexpr (std::is_same_v<T, Vsp8s>) return "8s";
  else if constexpr (std::is_same_v<T, Vsp16u>) return "16u";
  else if constexpr (std::is_same_v<T, Vsp16s>) return "16s";
  else if constexpr (std::is_same_v<T, Vsp32u>) return "32u";
  else if constexpr (std::is_same_v<T, Vsp32s>) return "32s";
  else if constexpr (std::is_same_v<T, Vsp64u>) return "64u";
  else if constexpr (std::is_same_v<T, Vsp64s>) return "64s";
  else if constexpr (std::is_same_v<T, Vsp32f>) return "32f";
  else if constexpr (std::is_same_v<T, Vsp64f>) return "64f";
  else if constexpr (std::is_same_v<T, Vsp16sc>) return "16sc";
  else if constexpr (std::is_same_v<T, Vsp32sc>) return "32sc";
  else if constexpr (std::is_same_v<T, Vsp64sc>) return "64sc";
  else if constexpr (std::is_same_v<T, Vsp32fc>) return "32fc";
  else if constexpr (std::is_same_v<T, Vsp64fc>) return "64fc";
  else return "?";
}

// Bitwise equality of two elements (NaN payloads and signed zeros included).
template <class T> bool SameBits(const T& a, const T& b) { return std::memcmp(&a, &b, sizeof(T)) == 0; }

}  // namespace vsptest
