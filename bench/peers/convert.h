// Plain loops of the conversion, logic and threshold benchmarks (see peers/core.h for the two
// namespaces they are compiled into).
#pragma once

#include "vsp.h"

#define VSP_PEER_DECLARE_CONVERT(ns)                                                      \
  namespace ns {                                                                          \
  void Convert16s32f(const Vsp16s* s, Vsp32f* d, long long n);                            \
  void Convert32s32f(const Vsp32s* s, Vsp32f* d, long long n);                            \
  void Convert32f16sNear(const Vsp32f* s, Vsp16s* d, long long n, float scale);           \
  void Convert32f16sZero(const Vsp32f* s, Vsp16s* d, long long n, float scale);           \
  void Convert32f16sHalfAway(const Vsp32f* s, Vsp16s* d, long long n, float scale);       \
  void Convert32f8uNear(const Vsp32f* s, Vsp8u* d, long long n, float scale);             \
  void And8u(const Vsp8u* a, const Vsp8u* b, Vsp8u* d, long long n);                      \
  void RShift16s(const Vsp16s* s, int k, Vsp16s* d, long long n);                         \
  void ThresholdLT32f(const Vsp32f* s, Vsp32f* d, long long n, float level);              \
  void ThresholdGTAbs32f(const Vsp32f* s, Vsp32f* d, long long n, float level);           \
  void ThresholdLTVal32fc(const Vsp32fc* s, Vsp32fc* d, long long n, float level, Vsp32fc value); \
  }

VSP_PEER_DECLARE_CONVERT(loop_sse3)
VSP_PEER_DECLARE_CONVERT(loop_native)
