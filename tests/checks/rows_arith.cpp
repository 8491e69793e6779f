// Reference rows of arithmetic and logic: one formula per operation serves every type, the
// _I, _Sfs and _ISfs forms and the mixed-type members (the harness scales, rounds and saturates
// into the destination; float formulas round per operation in the element's precision).
#include "support/refrows.h"
#include "vsp.h"

namespace vsptest {
namespace {

bool Zero(const W& v) { return v.re == 0 && v.im == 0; }
bool NonZeroC(const In& a) { return !Zero(a.c); }
bool ZeroX(const In& a) { return Zero(a.x); }

// Bits of an integer element, and an integer of the destination's width from bits.
unsigned long long U(Q v) { return static_cast<unsigned long long>(static_cast<__int128>(v)); }
Q Wrap(const In& a, unsigned long long u) {
  const int bits = 8 * a.src->PartBytes();
  if (bits < 64) u &= (1ULL << bits) - 1;
  if (a.src->isSigned && bits < 64 && (u >> (bits - 1)) & 1) return static_cast<Q>(static_cast<long long>(u | (~0ULL << bits)));
  return a.src->isSigned ? static_cast<Q>(static_cast<long long>(u)) : static_cast<Q>(u);
}
int Width(const In& a) { return 8 * a.src->PartBytes(); }

// round(num * 2^-s / den) to nearest even in 128-bit integers, for 64-bit operands (where a
// quotient in 113 bits can land on a false tie). Doubling stops once beyond every 64-bit value.
Q ExactQuotient(Q num, Q den, int s) {
  if (s >= 64 || num == 0) return 0;  // below 1/2 (or exactly 1/2: to the even 0)
  __int128 a = static_cast<__int128>(num), d = static_cast<__int128>(den);
  if (d < 0) a = -a, d = -d;
  const bool neg = a < 0;
  if (neg) a = -a;
  if (s >= 0) d <<= s;
  __int128 q = a / d, r = a % d;
  for (long long k = s < 0 ? -static_cast<long long>(s) : 0; k > 0 && q < (static_cast<__int128>(1) << 65); --k)
    q = 2 * q + (2 * r >= d), r = 2 * r >= d ? 2 * r - d : 2 * r;
  if (2 * r > d || (2 * r == d && (q & 1))) ++q;
  return static_cast<Q>(neg ? -q : q);
}

std::vector<std::string> Counts(const char* name, int hi) {
  std::vector<std::string> v;
  for (int k = 0; k <= hi; ++k) v.push_back(std::string(name) + "=" + std::to_string(k));
  return v;
}

}  // namespace

VSP_REF_ROWS(kArithRows)({
    {"vspsAdd_*", [](const In& a) { return a.x + a.y; }},
    {"vspsSub_*", [](const In& a) { return a.y - a.x; }},
    {"vspsMul_*", [](const In& a) { return a.Mul(a.x, a.y); }},
    {"vspsMul_32f32fc*", [](const In& a) { return W(a.R(a.x.re * a.y.re), a.R(a.x.re * a.y.im)); }},
    {"vspsAddC_*", [](const In& a) { return a.x + a.c; }},
    {"vspsSubC_*", [](const In& a) { return a.x - a.c; }},
    {"vspsSubCRev_*", [](const In& a) { return a.c - a.x; }},
    {"vspsMulC_*", [](const In& a) { return a.Mul(a.x, a.c); }},
    {"vspsMulC_64f64s_ISfs", [](const In& a) { return W(static_cast<double>(static_cast<double>(a.x.re) * static_cast<double>(a.c.re))); }},
    {"vspsAddProduct_*", [](const In& a) { return a.R(a.d + a.Mul(a.x, a.y)); }},
    {"vspsAddProductC_*", [](const In& a) { return a.R(a.d + a.Mul(a.x, a.c)); }},
    // IEEE quotients; a zero divisor element warns after the whole vector is written.
    {"vspsDiv_*", [](const In& a) { return a.Div(a.y, a.x); }, 0, {""}, ZeroX, vspStatDivByZeroWarn},
    {"vspsDivC_*", [](const In& a) { return a.Div(a.x, a.c); }, 0, {""}, nullptr, 0, NonZeroC},
    {"vspsDivC_32f", [](const In& a) { return W(a.R(a.x.re * a.R(1 / a.c.re))); }, 0, {""}, nullptr, 0, NonZeroC},
    {"vspsDivC_32f_I", [](const In& a) { return W(a.R(a.x.re * a.R(1 / a.c.re))); }, 0, {""}, nullptr, 0, NonZeroC},
    {"vspsDivCRev_32f*", [](const In& a) { return a.Div(a.c, a.x); }, 0, {""}, ZeroX, vspStatDivByZeroWarn},
    // Bitwise logic and shifts by every count from 0 to the width + 2.
    {"vspsAnd_*", [](const In& a) { return W(Wrap(a, U(a.x.re) & U(a.y.re))); }},
    {"vspsOr_*", [](const In& a) { return W(Wrap(a, U(a.x.re) | U(a.y.re))); }},
    {"vspsXor_*", [](const In& a) { return W(Wrap(a, U(a.x.re) ^ U(a.y.re))); }},
    {"vspsAndC_*", [](const In& a) { return W(Wrap(a, U(a.x.re) & U(a.c.re))); }},
    {"vspsOrC_*", [](const In& a) { return W(Wrap(a, U(a.x.re) | U(a.c.re))); }},
    {"vspsXorC_*", [](const In& a) { return W(Wrap(a, U(a.x.re) ^ U(a.c.re))); }},
    {"vspsNot_*", [](const In& a) { return W(Wrap(a, ~U(a.x.re))); }},
    {"vspsLShiftC_*", [](const In& a) {
       const int k = static_cast<int>(a.c.re);
       return W(k >= Width(a) ? Q(0) : Wrap(a, U(a.x.re) << k));
     }, 0, Counts("val", 34)},
    {"vspsRShiftC_*", [](const In& a) {
       const int k = static_cast<int>(a.c.re), w = Width(a);
       if (a.src->isSigned) return W(static_cast<Q>(static_cast<long long>(a.x.re) >> std::min(k, w - 1)));
       return W(k >= w ? Q(0) : static_cast<Q>(U(a.x.re) >> k));
     }, 0, Counts("val", 34)},
});

// Integer quotients: the rational quotient, scaled and rounded by the harness (a zero divisor
// gives +-Inf or NaN here, which saturate to the type's limit or give 0, as the rule says).
VSP_REF_ROWS(kQuotientRows)({
    {"vspsDiv_*Sfs", [](const In& a) { return Zero(a.x) ? W(a.y.re / Q(0), a.y.im / Q(0)) : a.Div(a.y, a.x); },
     0, {"rndMode=0", "rndMode=1", "rndMode=2"}, ZeroX, vspStatDivByZeroWarn},
    {"vspsDivC_*Sfs", [](const In& a) { return a.Div(a.x, a.c); }, 0, {""}, nullptr, 0, NonZeroC},
    {"vspsDivC_64s_ISfs", [](const In& a) { return W(ExactQuotient(a.x.re, a.c.re, a.scale)); }, 0, {""}, nullptr, 0, NonZeroC, true},
    {"vspsDivCRev_16u*", [](const In& a) { return a.Div(a.c, a.x); }, 0, {""}, ZeroX, vspStatDivByZeroWarn},
});

// vspsDiv_32f's quotient comes from a refined reciprocal estimate, with its own reference.
VSP_WAIVERS(kArithWaivers)({
    {"vspsDiv_32f", "FloatArith.Div32fRefinedReciprocal"},
    {"vspsDiv_32f_I", "FloatArith.Div32fRefinedReciprocal"},
});

}  // namespace vsptest
