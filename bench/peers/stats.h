// Plain loops of the statistics benchmarks, for both peer namespaces (see peers/core.h).
#pragma once

#include "vsp.h"

#define VSP_PEER_DECLARE_STATS(ns)                                                   \
  namespace ns {                                                                     \
  Vsp32f Sum32f(const Vsp32f* s, long long n);                                       \
  Vsp64f Mean64f(const Vsp64f* s, long long n);                                      \
  Vsp32f StdDev32f(const Vsp32f* s, long long n);                                    \
  int MaxIndx32f(const Vsp32f* s, long long n, Vsp32f* max);                         \
  void MinMax16s(const Vsp16s* s, long long n, Vsp16s* min, Vsp16s* max);            \
  Vsp32f NormL2_32f(const Vsp32f* s, long long n);                                   \
  Vsp32f DotProd32f(const Vsp32f* a, const Vsp32f* b, long long n);                  \
  Vsp32fc DotProd32fc(const Vsp32fc* a, const Vsp32fc* b, long long n);              \
  }

VSP_PEER_DECLARE_STATS(loop_sse3)
VSP_PEER_DECLARE_STATS(loop_native)
