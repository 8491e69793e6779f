// Plain loops of the arithmetic benchmarks, declared for both peer namespaces (see core.h). The
// scaled loops write the scale-factor rule as a user would for s >= 0: the exact result in int
// (long long for 32s products), the rounding formula, then a clamp.
#pragma once

#include "vsp.h"

#define VSP_PEER_DECLARE_ARITH(ns)                                                              \
  namespace ns {                                                                                \
  void Add32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n);                        \
  void Mul32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n);                        \
  void Div32f(const Vsp32f* a, const Vsp32f* b, Vsp32f* d, long long n);                        \
  void MulC32f(const Vsp32f* a, Vsp32f c, Vsp32f* d, long long n);                              \
  void Add32fc(const Vsp32fc* a, const Vsp32fc* b, Vsp32fc* d, long long n);                    \
  void Mul32fc(const Vsp32fc* a, const Vsp32fc* b, Vsp32fc* d, long long n);                    \
  void AddSfs16s(const Vsp16s* a, const Vsp16s* b, Vsp16s* d, long long n, int s);              \
  void MulSfs16s(const Vsp16s* a, const Vsp16s* b, Vsp16s* d, long long n, int s);              \
  void AddSfs8u(const Vsp8u* a, const Vsp8u* b, Vsp8u* d, long long n, int s);                  \
  void MulSfs32s(const Vsp32s* a, const Vsp32s* b, Vsp32s* d, long long n, int s);              \
  }

VSP_PEER_DECLARE_ARITH(loop_sse3)
VSP_PEER_DECLARE_ARITH(loop_native)
