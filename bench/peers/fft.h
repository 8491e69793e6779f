// Plain loops of the packed-spectrum benchmarks, declared for both peer namespaces (see
// peers/core.h): the Perm product and the expansion of a Perm spectrum to N complex bins.
#pragma once

#include "vsp.h"

#define VSP_PEER_DECLARE_FFT(ns)                                                      \
  namespace ns {                                                                      \
  void MulPerm32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n);          \
  void ConjPerm32fc(const Vsp32f* x, Vsp32fc* y, long long n);                        \
  }

VSP_PEER_DECLARE_FFT(loop_sse3)
VSP_PEER_DECLARE_FFT(loop_native)
