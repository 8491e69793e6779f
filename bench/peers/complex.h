// Plain loops of the complex-utility and Goertzel benchmarks.
#pragma once

#include "vsp.h"

#define VSP_PEER_DECLARE_COMPLEX(ns)                                              \
  namespace ns {                                                                  \
  void Magnitude32fc(const Vsp32fc* s, Vsp32f* d, long long n);                   \
  void PowerSpectr32fc(const Vsp32fc* s, Vsp32f* d, long long n);                 \
  void Goertz32f(const Vsp32f* s, long long n, float f, float* re, float* im);    \
  }

VSP_PEER_DECLARE_COMPLEX(loop_sse3)
VSP_PEER_DECLARE_COMPLEX(loop_native)
