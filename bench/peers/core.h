// Plain loops of the data-movement benchmarks. The sources of bench/peers/ are compiled twice:
// into namespace loop_sse3 with -O3 -msse3 (the library's target) and into loop_native with
// -O3 -march=native (this machine). Each loop is what a user would write by hand. Every family
// declares its loops in a header of its own, for both namespaces, as this one does.
#pragma once

#include "vsp.h"

#define VSP_PEER_DECLARE_CORE(ns)                                \
  namespace ns {                                                 \
  void Copy8u(const Vsp8u* s, Vsp8u* d, long long n);            \
  void Set32f(Vsp32f v, Vsp32f* d, long long n);                 \
  void Zero8u(Vsp8u* d, long long n);                            \
  void Move8u(const Vsp8u* s, Vsp8u* d, long long n);            \
  void Flip8u(const Vsp8u* s, Vsp8u* d, long long n);            \
  void Flip16u(const Vsp16u* s, Vsp16u* d, long long n);         \
  void Flip32f(const Vsp32f* s, Vsp32f* d, long long n);         \
  void Flip64fc(const Vsp64fc* s, Vsp64fc* d, long long n);      \
  void Swap16u(const Vsp16u* s, Vsp16u* d, long long n);         \
  void Swap24u(const Vsp8u* s, Vsp8u* d, long long n);           \
  void Swap32u(const Vsp32u* s, Vsp32u* d, long long n);         \
  void Swap64u(const Vsp64u* s, Vsp64u* d, long long n);         \
  }

VSP_PEER_DECLARE_CORE(loop_sse3)
VSP_PEER_DECLARE_CORE(loop_native)
