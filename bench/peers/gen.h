// Plain loops of the window, tone and random benchmarks: what a user writes by hand with the C
// library's cos, sin and exp and the C++ standard library's random engines.
#pragma once

#include "vsp.h"

#define VSP_PEER_DECLARE_GEN(ns)                                                      \
  namespace ns {                                                                      \
  void WinHann32f(const Vsp32f* s, Vsp32f* d, long long n);                           \
  void WinKaiser32f(const Vsp32f* s, Vsp32f* d, long long n, float alpha);            \
  void WinBlackmanOpt64f(const Vsp64f* s, Vsp64f* d, long long n);                    \
  void Tone32f(Vsp32f* d, long long n, float magn, float rFreq, float phase);         \
  void Triangle32f(Vsp32f* d, long long n, float magn, float rFreq, float phase);     \
  void RandUniform32f(Vsp32f* d, long long n, unsigned seed);                         \
  void RandGauss32f(Vsp32f* d, long long n, unsigned seed);                           \
  }

VSP_PEER_DECLARE_GEN(loop_sse3)
VSP_PEER_DECLARE_GEN(loop_native)
