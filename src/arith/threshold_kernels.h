// The loop of the threshold kernels: a rule maps a vector of elements (real or complex) to the
// thresholded vector. The body applies it to four vectors per step; the head and the tail apply
// it to one element copied into every lane, so every path computes the same formula.
#pragma once

#include <cstring>

#include "core/impl.h"
#include "core/loop.h"
#include "core/simd/sse3.h"
#include "core/types.h"

namespace vsp::thr {

namespace hw = vsp::simd;

// Elements of T in vectors of its component type.
template <class T>
struct ElemVec {
  using Lane = BaseOf<T>;
  using V = hw::Vec<Lane>;
  static constexpr int kLanes = hw::kLanes<T>;  // elements per vector

  static V Load(const T* p) { return hw::LoadU(reinterpret_cast<const Lane*>(p)); }
  static void Store(V v, T* p) { hw::StoreU(v, reinterpret_cast<Lane*>(p)); }
  // x in every element slot of a vector.
  static V Broadcast(const T& x) {
    if constexpr (sizeof(T) == hw::kVecBytes) {
      return Load(&x);
    } else {
      BitsOf<sizeof(T)> bits;
      std::memcpy(&bits, &x, sizeof(T));
      return hw::BitCast<Lane>(hw::Set1(bits));
    }
  }
  // The first element slot of v.
  static void StoreFirst(V v, T* p) {
    if constexpr (sizeof(T) == hw::kVecBytes) {
      Store(v, p);
    } else {
      const BitsOf<sizeof(T)> bits = hw::GetLane0(hw::BitCast<BitsOf<sizeof(T)>>(v));
      std::memcpy(p, &bits, sizeof(T));
    }
  }
};

// Four vectors a step, each loaded, thresholded and stored in turn.
template <class T, class Rule>
struct ThresholdOp {
  using E = ElemVec<T>;
  static constexpr int kVectors = 4;
  static constexpr int kStep = kVectors * E::kLanes;
  const T* src;
  T* dst;
  Rule& rule;
  void Scalar(long long i) { E::StoreFirst(rule(E::Broadcast(src[i])), dst + i); }
  void Vector(long long i) {
    for (int k = 0; k < kVectors; ++k) E::Store(rule(E::Load(src + i + k * E::kLanes)), dst + i + k * E::kLanes);
  }
};

// dst[i] = rule(src[i]); src may equal dst. The rule may keep state (a warning flag).
template <class T, class Rule>
void ownsThreshold(const T* src, T* dst, long long n, Rule& rule) {
  ThresholdOp<T, Rule> op{src, dst, rule};
  ForEachAligned(dst, n, op);
}

}  // namespace vsp::thr

// The out-of-place and in-place exports of one member, prefix<t>(pSrc, pDst, len, params) and
// prefix<t>_I(pSrcDst, len, params), both implemented by fn<Vsp<t>>(src, dst, len, args).
#define VSP_UNWRAP(...) __VA_ARGS__
#define VSP_THRESHOLD_PAIR(prefix, t, fn, params, args)                                              \
  VSP_IMPL(VspStatus, prefix##t, (const Vsp##t* pSrc, Vsp##t* pDst, int len, VSP_UNWRAP params)) {   \
    return fn<Vsp##t>(pSrc, pDst, len, VSP_UNWRAP args);                                             \
  }                                                                                                  \
  VSP_IMPL(VspStatus, prefix##t##_I, (Vsp##t * pSrcDst, int len, VSP_UNWRAP params)) {               \
    return fn<Vsp##t>(pSrcDst, pSrcDst, len, VSP_UNWRAP args);                                       \
  }

// Members with one level of type Vsp<b>: LT and GT (every type), and the relation-operator and Val
// members (16s, 32f, 64f and the complex types). Each file defines the functions they name.
#define VSP_THRESHOLD_LTGT(t, b)                                                          \
  VSP_THRESHOLD_PAIR(vspsThreshold_LT_, t, LT, (Vsp##b level), (level))                  \
  VSP_THRESHOLD_PAIR(vspsThreshold_GT_, t, GT, (Vsp##b level), (level))
#define VSP_THRESHOLD_REL_VAL(t, b)                                                                          \
  VSP_THRESHOLD_PAIR(vspsThreshold_, t, Threshold, (Vsp##b level, VspRelOp relOp), (level, relOp))          \
  VSP_THRESHOLD_PAIR(vspsThreshold_LTVal_, t, LTVal, (Vsp##b level, Vsp##t value), (level, value))          \
  VSP_THRESHOLD_PAIR(vspsThreshold_GTVal_, t, GTVal, (Vsp##b level, Vsp##t value), (level, value))
